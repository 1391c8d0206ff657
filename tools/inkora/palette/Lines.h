#pragma once

#include "palette/Palette.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace InkoraTool {

/// The text without such characters at its ends.
constexpr std::string_view trimmed(std::string_view text, std::string_view characters) {
    const std::size_t start = text.find_first_not_of(characters);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(characters) - start + 1);
}

/// Takes the text up to the next line feed, and that.
constexpr std::string_view takeLine(std::string_view& rest) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    return line;
}

/// @param number the line's, from 1
inline PaletteFault faultInLine(std::size_t number, const std::string& reason) {
    return PaletteFault(", line " + std::to_string(number) + ": " + reason);
}

}  // namespace InkoraTool
