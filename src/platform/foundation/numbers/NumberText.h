#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The room that the writers below need at `to`, in characters.
constexpr std::size_t longestIntegerText = 20;
constexpr std::size_t longestRealText = 40;

/// The last values that numbers show in plain digits, as `%g` does with the digits that a type is
/// good for.
constexpr double largestPlainDouble = 9'999'999'999'999'998;  // 16 digits
constexpr float largestPlainFloat = 9'999'999;                // 7 digits

/// Writes the decimal digits, after a minus if negative.
/// @return the end of what was written, which no null character follows.
char* writeInteger(char* to, std::uint64_t value) noexcept;
char* writeInteger(char* to, std::int64_t value) noexcept;

/// Writes the shortest decimal that reads back to the same value, of several the nearest to it: in
/// plain digits from 0.0001 to `largestPlain` (from 0 to below 2^63), beyond these with an exponent
/// of at least two digits (1e-05, 1.5e+300). The words are "inf", "-inf" and "nan".
/// @return the end of what was written, which no null character follows.
char* writeShortest(char* to, double value, double largestPlain) noexcept;

/// Appends what writeShortest() writes, for float that of its own precision.
void appendShortest(std::string& text, double value, double largestPlain);
void appendShortest(std::string& text, float value, float largestPlain);

/// The double nearest to the numeral that fills the whole text, whatever the locale: infinite when
/// too large, zero when too small, "not a number" when the text is no such numeral.
double realFromText(std::string_view text) noexcept;

}  // namespace InkoraKit
