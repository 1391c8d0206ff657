#pragma once

#include <cstddef>
#include <string_view>

namespace InkoraKit {

/// The length of the longest part of the text, from its start, that is well-formed UTF-8 (Unicode,
/// table 3-7): the whole length, or the offset of the first sequence at fault.
std::size_t wellFormedUtf8Length(std::string_view text) noexcept;

/// The same, as it works where the processor has no SSE2.
std::size_t wellFormedUtf8LengthPortably(std::string_view text) noexcept;

inline bool isUtf8(std::string_view text) noexcept {
    return wellFormedUtf8Length(text) == text.size();
}

/// Writes the one to four bytes of a code point, which is no surrogate; returns the end of them.
char* writeUtf8(char* to, char32_t codePoint) noexcept;

}  // namespace InkoraKit
