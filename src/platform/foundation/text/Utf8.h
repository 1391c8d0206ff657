#pragma once

#include <cstddef>
#include <string_view>

namespace InkoraKit {

/// The length of the longest part of the text, from its start, that is well-formed UTF-8 (Unicode,
/// table 3-7): the whole length, or the offset of the first sequence at fault.
std::size_t wellFormedUtf8Length(std::string_view text) noexcept;

/// The same, as it works where the processor has no AVX2.
std::size_t wellFormedUtf8LengthPortably(std::string_view text) noexcept;

inline bool isUtf8(std::string_view text) noexcept {
    return wellFormedUtf8Length(text) == text.size();
}

/// Writes the one to four bytes of a code point, which is no surrogate; returns the end of them.
inline char* writeUtf8(char* to, char32_t codePoint) noexcept {
    const auto write = [&to](char32_t byte) { *to++ = static_cast<char>(byte); };
    const auto writeContinuation = [&](int shift) { write(0x80 | (codePoint >> shift & 0x3F)); };
    if (codePoint < 0x80) {
        write(codePoint);
        return to;
    }
    if (codePoint < 0x800) {
        write(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        write(0xE0 | codePoint >> 12);
        writeContinuation(6);
    } else {
        write(0xF0 | codePoint >> 18);
        writeContinuation(12);
        writeContinuation(6);
    }
    writeContinuation(0);
    return to;
}

}  // namespace InkoraKit
