#pragma once

#include <bit>
#include <cstddef>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The text in UTF-16 or UTF-32, as the size of a unit in bytes tells.
inline std::string encodedText(std::u32string_view text, std::size_t unitSize, std::endian order) {
    std::string bytes;
    const auto append = [&](char32_t unit) {
        for (std::size_t i = 0; i < unitSize; ++i) {
            const std::size_t place = order == std::endian::little ? i : unitSize - 1 - i;
            bytes += static_cast<char>(unit >> 8 * place);
        }
    };
    for (const char32_t character : text) {
        if (unitSize == 4 || character < 0x10000) {
            append(character);
        } else {
            append(0xD800 + ((character - 0x10000) >> 10));
            append(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return bytes;
}

}  // namespace InkoraKit
