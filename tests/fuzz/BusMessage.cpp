#include "BusMessage.h"

#include "PlainJSON.h"
#include "platform/radios/bluez/MessageReader.h"

#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

namespace InkoraKit {
namespace {

// Messages belong to a bus, but nobody needs to be at its other end.
sd_bus* loneBus() {
    static const std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)> bus = [] {
        std::array<int, 2> ends{};
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data());
        sd_bus* made = nullptr;
        sd_bus_new(&made);
        sd_bus_set_fd(made, ends[0], ends[0]);
        sd_bus_start(made);
        return std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>(made, sd_bus_close_unref);
    }();
    return bus.get();
}

// The first complete type of a signature, which sd-bus is to judge.
std::string_view firstType(std::string_view signature) {
    std::size_t length = std::min(signature.find_first_not_of('a'), signature.size());
    int depth = 0;
    do {
        if (length == signature.size()) return signature;
        const char type = signature[length++];
        if (type == '(' || type == '{') ++depth;
        if (type == ')' || type == '}') --depth;
    } while (depth > 0);
    return signature.substr(0, length);
}

class Writer {
public:
    Writer(sd_bus_message* message, std::istringstream& lines) : message_(message), lines_(lines) {}

    bool write(std::string_view signature) {
        while (!signature.empty()) {
            const std::string type(firstType(signature));
            signature.remove_prefix(type.size());
            if (!writeOne(type)) return false;
        }
        return true;
    }

private:
    bool writeOne(const std::string& type) {
        if (type.front() == '{') return enclose('e', type.substr(1, type.size() - 2), 1);
        if (type.front() == '(') return enclose('r', type.substr(1, type.size() - 2), 1);
        std::string line;
        std::getline(lines_, line);
        if (type.front() == 'v') return enclose('v', line, 1);
        const std::int64_t number = std::strtoll(line.c_str(), nullptr, 10);
        if (type.front() == 'a')
            return enclose('a', type.substr(1), std::min<std::int64_t>(number, 100));
        if (type.front() == 'h') return false;  // a descriptor
        const bool isText = std::string_view("sog").find(type.front()) != std::string_view::npos;
        const void* value = isText ? static_cast<const void*>(line.c_str()) : &number;
        return sd_bus_message_append_basic(message_, type.front(), value) >= 0;
    }

    bool enclose(char kind, const std::string& contents, std::int64_t times) {
        if (sd_bus_message_open_container(message_, kind, contents.c_str()) < 0) return false;
        for (; times > 0; --times)
            if (!write(contents)) return false;
        return sd_bus_message_close_container(message_) >= 0;
    }

    sd_bus_message* message_;
    std::istringstream& lines_;
};

// Reads what the letter stands for, of one of two types. Answers whether nothing was read.
bool readsNothing(char letter, MessageReader& reader, std::string_view type, bool& fits) {
    const auto expect = [&](std::string_view one, std::string_view other = {}) {
        fits = fits && !type.empty() && (type == one || type == other);
    };
    switch (letter) {
        case 't':
            expect("s", "o");
            return reader.readText().empty();
        case 'T':
            expect("as", "ao");
            return reader.readTexts().empty();
        case 'b':
            expect("ay");
            return reader.readBytes().empty();
        case 'p':
            expect("a{sv}");
            return reader.readProperties().empty();
        case 'i':
            expect("a{sa{sv}}");
            return reader.readInterfaces().empty();
        default:
            expect("a{oa{sa{sv}}}");
            return reader.readObjects().empty();
    }
}

}  // namespace

bool readBusMessage(std::string_view script) {
    std::istringstream lines{std::string(script)};
    std::string signature;
    std::string reads;
    std::getline(lines, signature);
    std::getline(lines, reads);

    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_signal(loneBus(), &made, "/", "any.Interface", "Any") < 0) return false;
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> message(
        made, sd_bus_message_unref);
    if (!Writer(made, lines).write(signature)) return false;
    if (sd_bus_message_seal(made, 1, 0) < 0 || sd_bus_message_rewind(made, true) < 0) return false;

    MessageReader reader(made);
    std::string_view left = signature;
    bool fits = true;
    for (const char letter : reads) {
        const std::string_view type = left.empty() ? left : firstType(left);
        left.remove_prefix(type.size());
        const bool isEmpty = readsNothing(letter, reader, type, fits);
        require(fits || isEmpty, "what does not fit is empty, and so is all that comes after it");
    }
    return fits;
}

}  // namespace InkoraKit
