#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace InkoraKit {

/// `<CBService: 0x14c72a810`: how the description of an object of this layer begins.
inline std::string describedObject(const char* type, const void* object) {
    char address[2 + 2 * sizeof(std::uintptr_t) + 1];
    std::snprintf(address, sizeof address, "0x%jx",
                  static_cast<std::uintmax_t>(reinterpret_cast<std::uintptr_t>(object)));
    std::string text = "<";
    text.append(type).append(": ").append(address);
    return text;
}

}  // namespace InkoraKit
