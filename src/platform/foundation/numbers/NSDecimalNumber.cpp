#include <InkoraKit/platform/NSDecimalNumber.h>

#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/numbers/Ordering.h"
#include "platform/foundation/numbers/Words.h"
#include "platform/foundation/text/Characters.h"

#include <algorithm>
#include <limits>

namespace InkoraKit {

namespace {

using Mantissa = TwoWords;

constexpr Mantissa zeroMantissa{0, 0};
constexpr int leastExponent = std::numeric_limits<std::int8_t>::min();
constexpr int greatestExponent = std::numeric_limits<std::int8_t>::max();

struct Quotient {
    Mantissa mantissa;
    std::uint64_t remainder = 0;
};

constexpr Quotient quotientOf(Mantissa mantissa, std::uint32_t divisor) {
    Quotient quotient;
    quotient.mantissa.high = divided(mantissa.high, divisor, quotient.remainder);
    quotient.mantissa.low = divided(mantissa.low, divisor, quotient.remainder);
    return quotient;
}

/// The mantissa with one more digit at its end; of a result that is too large the low bits.
constexpr Mantissa withDigit(Mantissa mantissa, unsigned digit) {
    const TwoWords low = multiplied(mantissa.low, 10, digit);
    return {mantissa.high * 10 + low.high, low.low};
}

/// The largest mantissa is this one with the digit 5 at its end.
constexpr Mantissa largestTenth = quotientOf({~std::uint64_t{0}, ~std::uint64_t{0}}, 10).mantissa;

std::string digitsOf(Mantissa mantissa) {
    if (mantissa.high == 0) return std::to_string(mantissa.low);
    const Quotient billions = quotientOf(mantissa, 1'000'000'000);
    const std::string low = std::to_string(billions.remainder);
    return digitsOf(billions.mantissa) + std::string(9 - low.size(), '0') + low;
}

ComparisonResult compareMagnitudes(Mantissa left, int leftExponent, Mantissa right,
                                   int rightExponent) {
    if (leftExponent < rightExponent) {
        return reversed(compareMagnitudes(right, rightExponent, left, leftExponent));
    }
    for (int zeros = leftExponent - rightExponent; zeros > 0; --zeros) {
        if (left > largestTenth) return ComparisonResult::orderedDescending;
        left = withDigit(left, 0);
    }
    return ordered(left, right);
}

/// Takes the first character off the text if it is one of those wanted.
bool take(std::string_view& text, std::string_view wanted) {
    if (text.empty() || wanted.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

/// Takes an optional sign off the text.
/// @return whether it was a minus.
bool takeSign(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    take(text, "+-");
    return isNegative;
}

/// The digits of a numeral on their way into the mantissa.
struct Significand {
    Mantissa mantissa = zeroMantissa;
    std::int64_t exponent = 0;
    bool hasDigits = false;
    bool isFull = false;

    void takeDigits(std::string_view& text, bool isFraction) {
        for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
            append(static_cast<unsigned>(text.front() - '0'), isFraction);
        }
    }

    void append(unsigned digit, bool isFraction) {
        hasDigits = true;
        isFull = isFull || mantissa > largestTenth || (mantissa == largestTenth && digit > 5);
        if (!isFull) mantissa = withDigit(mantissa, digit);
        // A digit after the point moves the point; one before it that found no room does so the
        // other way.
        if (isFraction != isFull) exponent += isFraction ? -1 : 1;
    }
};

}  // namespace

NSDecimalNumber::NSDecimalNumber(std::string_view text) noexcept : NSDecimalNumber(parsed(text)) {}

NSDecimalNumber::NSDecimalNumber(std::uint64_t mantissaHigh, std::uint64_t mantissaLow,
                                 int exponent, bool isNegative) noexcept {
    Mantissa mantissa{mantissaHigh, mantissaLow};
    const bool isZero = mantissa == zeroMantissa;
    if (isZero) exponent = 0;
    for (; !isZero && exponent < greatestExponent; ++exponent) {
        const Quotient tens = quotientOf(mantissa, 10);
        if (tens.remainder != 0) break;
        mantissa = tens.mantissa;
    }
    mantissaHigh_ = mantissa.high;
    mantissaLow_ = mantissa.low;
    exponent_ = static_cast<std::int8_t>(exponent);
    isNegative_ = isNegative && !isZero;
}

NSDecimalNumber NSDecimalNumber::parsed(std::string_view text) noexcept {
    const bool startsWithExponent = text.starts_with('e') || text.starts_with('E');
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = takeSign(text);

    Significand significand;
    significand.takeDigits(text, false);
    if (take(text, ".")) {
        significand.takeDigits(text, true);
    }
    if (!significand.hasDigits && !startsWithExponent) return notANumber();

    if (take(text, "eE")) {
        const bool isExponentNegative = takeSign(text);
        int exponent = 0;
        for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
            exponent = exponent * 10 + (text.front() - '0');
            if (exponent > 2 * greatestExponent) return notANumber();
        }
        significand.exponent += isExponentNegative ? -exponent : exponent;
    }
    if (significand.exponent < leastExponent || significand.exponent > greatestExponent) {
        return notANumber();
    }
    return NSDecimalNumber(significand.mantissa.high, significand.mantissa.low,
                           static_cast<int>(significand.exponent), isNegative);
}

NSDecimalNumber NSDecimalNumber::notANumber() noexcept {
    NSDecimalNumber result = zero();
    result.isNaN_ = true;
    return result;
}

bool NSDecimalNumber::boolValue() const noexcept {
    return *this != zero();
}

std::int64_t NSDecimalNumber::integerValue() const noexcept {
    return static_cast<std::int64_t>(unsignedIntegerValue());
}

std::uint64_t NSDecimalNumber::unsignedIntegerValue() const noexcept {
    Mantissa magnitude{mantissaHigh_, mantissaLow_};
    for (int exponent = exponent_; exponent < 0; ++exponent)
        magnitude = quotientOf(magnitude, 10).mantissa;
    for (int exponent = exponent_; exponent > 0; --exponent) magnitude = withDigit(magnitude, 0);
    return isNegative_ ? 0 - magnitude.low : magnitude.low;
}

double NSDecimalNumber::doubleValue() const {
    return isNaN_ ? std::numeric_limits<double>::quiet_NaN() : realFromText(stringValue());
}

std::string NSDecimalNumber::stringValue() const {
    if (isNaN_) return "NaN";
    std::string digits = digitsOf({mantissaHigh_, mantissaLow_});
    if (exponent_ >= 0) {
        digits.append(static_cast<std::size_t>(exponent_), '0');
    } else {
        const auto fraction = static_cast<std::size_t>(-exponent_);
        if (digits.size() <= fraction) digits.insert(0, fraction + 1 - digits.size(), '0');
        digits.insert(digits.size() - fraction, 1, '.');
    }
    return isNegative_ ? '-' + digits : digits;
}

ComparisonResult NSDecimalNumber::compare(const NSDecimalNumber& other) const noexcept {
    const auto rank = [](const NSDecimalNumber& number) {
        if (number.isNaN_) return 0;
        return number.isNegative_ ? -1 : 1;
    };
    if (rank(*this) != rank(other)) return ordered(rank(*this), rank(other));
    const ComparisonResult magnitudes =
        compareMagnitudes({mantissaHigh_, mantissaLow_}, exponent_,
                          {other.mantissaHigh_, other.mantissaLow_}, other.exponent_);
    return isNegative_ ? reversed(magnitudes) : magnitudes;
}

std::size_t NSDecimalNumber::hash() const {
    return std::hash<double>{}(doubleValue());
}

}  // namespace InkoraKit
