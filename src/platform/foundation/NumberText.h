#pragma once

#include <string>
#include <string_view>

namespace InkoraKit {

/// Appends the shortest decimal that reads back to the same value: in plain digits from 0.0001 to
/// `largestPlain`, beyond these with an exponent of at least two digits (1e-05, 1.5e+300).
void appendShortest(std::string& text, double value, double largestPlain);
void appendShortest(std::string& text, float value, float largestPlain);

/// The double nearest to the numeral that fills the whole text, whatever the locale: infinite when
/// too large, zero when too small, "not a number" when the text is no such numeral.
/// The words inf and nan are numerals too.
double realFromText(std::string_view text) noexcept;

}  // namespace InkoraKit
