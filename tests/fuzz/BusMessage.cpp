#include "BusMessage.h"

#include "PlainJSON.h"
#include "platform/bus/MessageReader.h"

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

bool write(sd_bus_message* message, const std::string& line) {
    const char kind = line.front();
    const std::string rest = line.substr(std::min<std::size_t>(line.size(), 2));
    const std::int64_t number = std::strtoll(rest.c_str(), nullptr, 10);
    if (kind == '.') return sd_bus_message_close_container(message) >= 0;
    if (kind == 'h') return false;  // a descriptor
    if (std::string_view("aerv").find(kind) != std::string_view::npos)
        return sd_bus_message_open_container(message, kind, rest.c_str()) >= 0;
    const bool isText = std::string_view("sog").find(kind) != std::string_view::npos;
    const void* value = isText ? static_cast<const void*>(rest.c_str()) : &number;
    return sd_bus_message_append_basic(message, kind, value) >= 0;
}

struct Read {
    char letter;
    const char* type;
    const char* otherType;
    bool (*readsNothing)(MessageReader& reader);
};
constexpr std::array<Read, 6> knownReads = {{
    {'t', "s", "o", [](MessageReader& reader) { return reader.readText().empty(); }},
    {'T', "as", "ao", [](MessageReader& reader) { return reader.readTexts().empty(); }},
    {'b', "ay", "ay", [](MessageReader& reader) { return reader.readBytes().empty(); }},
    {'p', "a{sv}", "", [](MessageReader& reader) { return reader.readProperties().empty(); }},
    {'i', "a{sa{sv}}", "", [](MessageReader& reader) { return reader.readInterfaces().empty(); }},
    {'o', "a{oa{sa{sv}}}", "", [](MessageReader& reader) { return reader.readObjects().empty(); }},
}};

// Of what comes next in the message, nothing at its end.
std::string nextType(sd_bus_message* message) {
    char kind = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &kind, &contents) <= 0) return "nothing";
    return kind + std::string(contents ? contents : "");
}

}  // namespace

bool readBusMessage(std::string_view script) {
    std::istringstream lines{std::string(script)};
    std::string reads;
    std::getline(lines, reads);

    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_signal(loneBus(), &made, "/", "any.Interface", "Any") < 0) return false;
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> message(
        made, sd_bus_message_unref);
    for (std::string line; std::getline(lines, line);)
        if (line.empty() || !write(made, line)) return false;
    if (sd_bus_message_seal(made, 1, 0) < 0 || sd_bus_message_rewind(made, true) < 0) return false;

    MessageReader reader(made);
    bool fits = true;
    for (const char letter : reads) {
        const auto* read = std::ranges::find(knownReads, letter, &Read::letter);
        if (read == knownReads.end()) return false;
        const std::string type = nextType(made);
        fits = fits && (type == read->type || type == read->otherType);
        const bool isEmpty = read->readsNothing(reader);
        require(fits || isEmpty, "what does not fit is empty, and so is all that comes after it");
    }
    return fits;
}

}  // namespace InkoraKit
