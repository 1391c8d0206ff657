#pragma once

#include <algorithm>
#include <bit>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The text, which is well-formed UTF-8, in an encoding by its usual name: UTF-8, UTF-16LE and the
/// like. The C library's conversions are modules, which a program for another machine has not.
inline std::string encodedText(std::string_view text, std::string_view encoding) {
    if (encoding == "UTF-8") return std::string(text);
    const std::size_t unitSize = encoding.starts_with("UTF-16") ? 2 : 4;
    std::string result;
    const auto append = [&](char32_t unit) {
        for (std::size_t i = 0; i < unitSize; ++i)
            result += static_cast<char>(unit >> 8 * (unitSize - 1 - i));
        if (encoding.ends_with("LE"))
            std::reverse(result.end() - static_cast<std::ptrdiff_t>(unitSize), result.end());
    };
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        const auto length = static_cast<std::size_t>(std::max(std::countl_one(first), 1));
        char32_t character = first & 0xFFu >> length;
        for (const char next : text.substr(1, length - 1))
            character = character << 6 | (static_cast<unsigned char>(next) & 0x3F);
        text.remove_prefix(length);
        const bool needsPair = unitSize == 2 && character > 0xFFFF;
        if (needsPair) append(0xD7C0 + (character >> 10));
        append(needsPair ? 0xDC00 + (character & 0x3FF) : character);
    }
    return result;
}

}  // namespace InkoraKit
