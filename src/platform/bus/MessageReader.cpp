#include "platform/bus/MessageReader.h"

#include <InkoraKit/platform/NSObject.h>

#include <systemd/sd-bus.h>

#include <cstddef>
#include <span>
#include <utility>

namespace InkoraKit {

std::string MessageReader::sender() const {
    const char* sender = sd_bus_message_get_sender(message_);
    return sender ? sender : "";
}

std::uint64_t MessageReader::serial() const {
    std::uint64_t serial = 0;
    sd_bus_message_get_cookie(message_, &serial);
    return serial;
}

std::string MessageReader::path() const {
    const char* path = sd_bus_message_get_path(message_);
    return path ? path : "";
}

std::string MessageReader::member() const {
    const char* member = sd_bus_message_get_member(message_);
    return member ? member : "";
}

void MessageReader::refuse(const char* expected) {
    if (std::exchange(isRefused_, true)) return;
    NSObject::printThisLineToConsole([&] {
        const char* signature = sd_bus_message_get_signature(message_, true);
        return "D-Bus: " + member() + " of " + path() + " is " + (signature ? signature : "empty") +
               ", without the " + expected + " that belongs there";
    });
}

std::string MessageReader::readText() {
    const char* text = nullptr;
    char type = 0;
    sd_bus_message_peek_type(message_, &type, nullptr);
    const bool isText = type == SD_BUS_TYPE_STRING || type == SD_BUS_TYPE_OBJECT_PATH;
    if (isRefused_ || !isText || sd_bus_message_read_basic(message_, type, &text) <= 0) {
        refuse("s");
        return {};
    }
    return text;
}

std::vector<std::string> MessageReader::readTexts() {
    const char* contents = nullptr;
    char type = 0;
    sd_bus_message_peek_type(message_, &type, &contents);
    const std::string element = type == SD_BUS_TYPE_ARRAY ? contents : "";
    const bool isTexts = element == "s" || element == "o";
    if (isRefused_ || !isTexts ||
        sd_bus_message_enter_container(message_, type, element.c_str()) <= 0) {
        refuse("as");
        return {};
    }
    std::vector<std::string> texts;
    const char* text = nullptr;
    while (sd_bus_message_read_basic(message_, element.front(), &text) > 0)
        texts.emplace_back(text);
    sd_bus_message_exit_container(message_);
    return texts;
}

Data MessageReader::readBytes() {
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (isRefused_ || sd_bus_message_read_array(message_, SD_BUS_TYPE_BYTE, &bytes, &size) <= 0) {
        refuse("ay");
        return {};
    }
    return Data(std::span(static_cast<const std::uint8_t*>(bytes), size));
}

template <class Map, class ReadKey, class ReadValue>
Map MessageReader::readMap(const char* entry, ReadKey readKey, ReadValue readValue) {
    Map map;
    const std::string contents = std::string("{") + entry + "}";
    if (isRefused_ ||
        sd_bus_message_enter_container(message_, SD_BUS_TYPE_ARRAY, contents.c_str()) <= 0) {
        refuse(("a" + contents).c_str());
        return map;
    }
    while (sd_bus_message_enter_container(message_, SD_BUS_TYPE_DICT_ENTRY, entry) > 0) {
        auto key = readKey();
        map.insert_or_assign(std::move(key), readValue());
        sd_bus_message_exit_container(message_);
    }
    sd_bus_message_exit_container(message_);
    return map;
}

Variant MessageReader::readVariant() {
    const char* peeked = nullptr;
    char type = 0;
    if (sd_bus_message_peek_type(message_, &type, &peeked) <= 0) return {};
    if (type != SD_BUS_TYPE_VARIANT) return {};
    const std::string contents = peeked;
    if (sd_bus_message_enter_container(message_, type, contents.c_str()) <= 0) return {};

    const auto readDataInVariant = [this] {
        const Variant variant = readVariant();
        const Data* data = std::get_if<Data>(&variant);
        return data ? *data : Data();
    };
    Variant value;
    if (contents == "b") {
        int truth = 0;
        sd_bus_message_read_basic(message_, SD_BUS_TYPE_BOOLEAN, &truth);
        value = truth != 0;
    } else if (contents == "n") {
        std::int16_t number = 0;
        sd_bus_message_read_basic(message_, SD_BUS_TYPE_INT16, &number);
        value = number;
    } else if (contents == "q") {
        std::uint16_t number = 0;
        sd_bus_message_read_basic(message_, SD_BUS_TYPE_UINT16, &number);
        value = number;
    } else if (contents == "s") {
        value = readText();
    } else if (contents == "o") {
        value = ObjectPath{readText()};
    } else if (contents == "as" || contents == "ao") {
        value = readTexts();
    } else if (contents == "ay") {
        value = readBytes();
    } else if (contents == "a{qv}") {
        const auto readCompany = [this] {
            std::uint16_t company = 0;
            sd_bus_message_read_basic(message_, SD_BUS_TYPE_UINT16, &company);
            return company;
        };
        value = readMap<std::map<std::uint16_t, Data>>("qv", readCompany, readDataInVariant);
    } else if (contents == "a{sv}") {
        value = readMap<std::map<std::string, Data>>(
            "sv", [this] { return readText(); }, readDataInVariant);
    } else {
        sd_bus_message_skip(message_, contents.c_str());
    }
    sd_bus_message_exit_container(message_);
    return value;
}

Properties MessageReader::readProperties() {
    return readMap<Properties>(
        "sv", [this] { return readText(); }, [this] { return readVariant(); });
}

Interfaces MessageReader::readInterfaces() {
    return readMap<Interfaces>(
        "sa{sv}", [this] { return readText(); }, [this] { return readProperties(); });
}

Objects MessageReader::readObjects() {
    return readMap<Objects>(
        "oa{sa{sv}}", [this] { return readText(); }, [this] { return readInterfaces(); });
}

}  // namespace InkoraKit
