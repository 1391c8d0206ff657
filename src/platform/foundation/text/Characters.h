#pragma once

namespace InkoraKit {

// Characters of ASCII by kind, whatever the locale.

constexpr bool isDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

constexpr char lowered(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

constexpr bool isLetter(char character) noexcept {
    return lowered(character) >= 'a' && lowered(character) <= 'z';
}

constexpr bool isHexDigit(char character) noexcept {
    return isDigit(character) || (lowered(character) >= 'a' && lowered(character) <= 'f');
}

}  // namespace InkoraKit
