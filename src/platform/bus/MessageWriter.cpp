#include "platform/bus/MessageWriter.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <iterator>
#include <type_traits>

namespace InkoraKit {

template <class Fill>
void MessageWriter::within(char kind, const std::string& contents, Fill fill) {
    if (result_ >= 0) result_ = sd_bus_message_open_container(message_, kind, contents.c_str());
    if (result_ < 0) return;
    fill();
    if (result_ >= 0) result_ = sd_bus_message_close_container(message_);
}

void MessageWriter::writeBasic(char type, const void* value) {
    if (result_ >= 0) result_ = sd_bus_message_append_basic(message_, type, value);
}

template <class Entry>
void MessageWriter::writeEntry(char keyType, const Entry& entry) {
    if constexpr (std::is_same_v<typename Entry::first_type, const std::string>)
        writeBasic(keyType, entry.first.c_str());
    else
        writeBasic(keyType, &entry.first);
    if constexpr (std::is_same_v<typename Entry::second_type, Data>)
        write(Variant(entry.second));
    else
        write(entry.second);
}

template <class Map>
void MessageWriter::writeMap(const std::string& entry, const Map& map) {
    within('a', "{" + entry + "}", [&] {
        for (const auto& each : map) within('e', entry, [&] { writeEntry(entry.front(), each); });
    });
}

void MessageWriter::write(const std::string& text) {
    writeBasic('s', text.c_str());
}

void MessageWriter::write(const ObjectPath& path) {
    writeBasic('o', path.text.c_str());
}

void MessageWriter::write(const std::vector<std::string>& texts) {
    within('a', "s", [&] {
        for (const std::string& text : texts) write(text);
    });
}

void MessageWriter::write(const Data& bytes) {
    if (result_ >= 0)
        result_ = sd_bus_message_append_array(message_, 'y', bytes.data(), bytes.size());
}

void MessageWriter::write(const Variant& value) {
    // By the alternatives of Variant, in their order.
    static constexpr const char* types[] = {"i", "b",  "n",  "q",     "s",
                                            "o", "as", "ay", "a{qv}", "a{sv}"};
    static_assert(std::size(types) == std::variant_size_v<Variant>);
    within('v', types[value.index()], [&] { writeContents(value); });
}

void MessageWriter::writeContents(const Variant& value) {
    const auto writeAlternative = [this]<class T>(const T& alternative) {
        if constexpr (std::is_same_v<T, std::monostate>) {
            const std::int32_t number = 0;
            writeBasic('i', &number);
        } else if constexpr (std::is_same_v<T, bool>) {
            const int truth = alternative;
            writeBasic('b', &truth);
        } else if constexpr (std::is_integral_v<T>) {
            writeBasic(std::is_signed_v<T> ? 'n' : 'q', &alternative);
        } else if constexpr (std::is_same_v<T, std::map<std::uint16_t, Data>>) {
            writeMap("qv", alternative);
        } else if constexpr (std::is_same_v<T, std::map<std::string, Data>>) {
            writeMap("sv", alternative);
        } else {
            write(alternative);
        }
    };
    std::visit(writeAlternative, value);
}

void MessageWriter::write(const Properties& properties) {
    writeMap("sv", properties);
}

void MessageWriter::write(const Interfaces& interfaces) {
    writeMap("sa{sv}", interfaces);
}

void MessageWriter::write(const Objects& objects) {
    writeMap("oa{sa{sv}}", objects);
}

}  // namespace InkoraKit
