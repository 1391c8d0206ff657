#pragma once

#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSObject.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace InkoraKit {

/// The path of an object on the bus, which a message marks as such.
struct ObjectPath {
    std::string text;

    friend bool operator==(const ObjectPath&, const ObjectPath&) = default;
};

/// A value in one of the types that BlueZ uses where anybody here looks; the first alternative
/// stands for every other type.
using Variant = std::variant<std::monostate, bool, std::int16_t, std::uint16_t, std::string,
                             ObjectPath, std::vector<std::string>, Data,
                             std::map<std::uint16_t, Data>, std::map<std::string, Data>>;

using Properties = std::map<std::string, Variant, std::less<>>;
using Interfaces = std::map<std::string, Properties, std::less<>>;
using Objects = std::map<std::string, Interfaces, std::less<>>;

/// The property if it is there and of that type, otherwise null: a value of another type than the
/// documented one is as good as none, but for a line in the log.
template <class T>
const T* find(const Properties& properties, std::string_view name) {
    const auto entry = properties.find(name);
    if (entry == properties.end()) return nullptr;
    const T* value = std::get_if<T>(&entry->second);
    if (!value)
        NSObject::printThisLineToConsole(
            [&] { return "D-Bus: " + std::string(name) + " has a type that it should not have"; });
    return value;
}

}  // namespace InkoraKit
