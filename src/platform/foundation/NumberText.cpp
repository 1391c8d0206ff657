#include "NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace InkoraKit {

namespace {

template <class Real>
void append(std::string& text, Real value, Real largestPlain) {
    if (std::isnan(value)) {  // without the sign that the conversion below would show
        text += "nan";
        return;
    }
    const Real magnitude = std::abs(value);
    const bool isPlain =
        magnitude == 0 || (magnitude >= static_cast<Real>(1e-4) && magnitude <= largestPlain);
    std::array<char, 32> buffer;
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    text.append(buffer.data(), result.ptr);
}

/// The exponent written after the "e" of a numeral, 0 without one.
std::int64_t writtenExponent(std::string_view numeral) {
    const std::size_t mark = numeral.find_first_of("eE");
    if (mark == std::string_view::npos) return 0;
    std::string_view digits = numeral.substr(mark + 1);
    const bool isNegative = digits.front() == '-';
    if (isNegative || digits.front() == '+') digits.remove_prefix(1);
    std::int64_t exponent = std::numeric_limits<std::int64_t>::max() / 2;  // if too long to read
    std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    return isNegative ? -exponent : exponent;
}

/// What a numeral out of the range of double stands for. Its first digit other than 0 tells its
/// magnitude by its distance from the point.
double limitOf(std::string_view numeral) {
    const std::string_view mantissa = numeral.substr(0, numeral.find_first_of("eE"));
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
    const bool isLarge = point - first + writtenExponent(numeral) > 0;
    const double magnitude = isLarge ? std::numeric_limits<double>::infinity() : 0.0;
    return numeral.front() == '-' ? -magnitude : magnitude;
}

}  // namespace

void appendShortest(std::string& text, double value, double largestPlain) {
    append(text, value, largestPlain);
}

void appendShortest(std::string& text, float value, float largestPlain) {
    append(text, value, largestPlain);
}

double realFromText(std::string_view text) noexcept {
    double value = std::numeric_limits<double>::quiet_NaN();
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ptr != end) return std::numeric_limits<double>::quiet_NaN();
    return result.ec == std::errc::result_out_of_range ? limitOf(text) : value;
}

}  // namespace InkoraKit
