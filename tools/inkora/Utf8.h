#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace InkoraTool {

/// What stands for bytes that are no UTF-8: the replacement character.
inline constexpr char32_t replacementCharacter = 0xFFFD;

/// Takes the first code point from a text, which must not be empty. Malformed UTF-8 (The Unicode
/// Standard, table 3-7) is taken a byte at a time, each as the replacement character.
char32_t takeCodePoint(std::string_view& rest);

std::size_t codePointCount(std::string_view text);

/// The start of the text, of so many code points at the most.
std::string_view firstCodePoints(std::string_view text, std::size_t most);

void appendUtf8(std::string& text, char32_t codePoint);

/// C0 and C1 controls and DEL, which a terminal would obey.
constexpr bool isControl(char32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

/// The text with the replacement character for all that is malformed or would move a terminal's
/// cursor: names come over the air from whoever is near.
std::string printableText(std::string_view text);

}  // namespace InkoraTool
