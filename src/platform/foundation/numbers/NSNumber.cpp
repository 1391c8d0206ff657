#include <InkoraKit/platform/NSNumber.h>

#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/numbers/Ordering.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace InkoraKit {

namespace {

constexpr std::int64_t largestInt64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallestInt64 = std::numeric_limits<std::int64_t>::min();

// The conversions below say what happens out of range, where a cast would be undefined.

std::int64_t int64From(double value) noexcept {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63) return largestInt64;
    if (value < -0x1p63) return smallestInt64;
    return static_cast<std::int64_t>(value);
}

std::uint64_t uint64From(double value) noexcept {
    if (value >= 0x1p64) return std::numeric_limits<std::uint64_t>::max();
    if (value >= 0x1p63) return static_cast<std::uint64_t>(value);
    return static_cast<std::uint64_t>(int64From(value));
}

float floatFrom(double value) noexcept {
    constexpr float largest = std::numeric_limits<float>::max();
    constexpr double firstInfinite = 0x1.ffffffp127;  // half a step above the largest float
    const double magnitude = std::abs(value);
    if (magnitude <= largest || std::isnan(value)) return static_cast<float>(value);
    const float limit =
        magnitude < firstInfinite ? largest : std::numeric_limits<float>::infinity();
    return value < 0 ? -limit : limit;
}

/// Numeric, "not a number" between the negative numbers and zero.
ComparisonResult compareReals(double left, double right) noexcept {
    if (!std::isnan(left) && !std::isnan(right)) return ordered(left, right);
    const auto rank = [](double value) {
        if (std::isnan(value)) return 0;
        return value < 0 ? -1 : 1;
    };
    return ordered(rank(left), rank(right));
}

/// Exact, although neither type holds all values of the other.
template <class Integer>
ComparisonResult compareExactly(Integer integer, double real) noexcept {
    const auto nearest = static_cast<double>(integer);
    if (nearest != real) return compareReals(nearest, real);  // rounding changes no order
    constexpr double firstTooLarge = std::is_signed_v<Integer> ? 0x1p63 : 0x1p64;
    if (real == firstTooLarge) return ComparisonResult::orderedAscending;
    return ordered(integer, static_cast<Integer>(real));
}

}  // namespace

const char* NSNumber::objCType() const noexcept {
    switch (kind_) {
        case Kind::boolean:
            return "B";
        case Kind::int8:
            return "c";
        case Kind::int16:
            return "s";
        case Kind::int32:
            return "i";
        case Kind::int64:
            return "q";
        case Kind::uint64:
            return "Q";
        case Kind::float32:
            return "f";
        case Kind::float64:
        case Kind::decimal:
            break;
    }
    return "d";
}

bool NSNumber::boolValue() const noexcept {
    if (isReal()) return real_ != 0;
    if (isDecimal()) return decimal_.boolValue();
    return integer_ != 0;
}

std::int64_t NSNumber::integerValue() const noexcept {
    if (isReal()) return int64From(real_);
    if (isDecimal()) return decimal_.integerValue();
    return integer_;
}

std::uint64_t NSNumber::unsignedIntegerValue() const noexcept {
    if (isReal()) return uint64From(real_);
    if (isDecimal()) return decimal_.unsignedIntegerValue();
    return static_cast<std::uint64_t>(integer_);
}

float NSNumber::floatValue() const {
    if (isReal()) return floatFrom(real_);
    if (isDecimal()) return floatFrom(decimal_.doubleValue());
    if (kind_ == Kind::uint64) return static_cast<float>(unsignedIntegerValue());
    return static_cast<float>(integer_);
}

double NSNumber::doubleValue() const {
    if (isReal()) return real_;
    if (isDecimal()) return decimal_.doubleValue();
    if (kind_ == Kind::uint64) return static_cast<double>(unsignedIntegerValue());
    return static_cast<double>(integer_);
}

NSDecimalNumber NSNumber::decimalValue() const {
    if (isReal()) return NSDecimalNumber(stringValue());
    if (isDecimal()) return decimal_;
    if (kind_ == Kind::uint64) return unsignedIntegerValue();
    return integer_;
}

std::string NSNumber::stringValue() const {
    std::string text;
    switch (kind_) {
        case Kind::decimal:
            return decimal_.stringValue();
        case Kind::uint64:
            return std::to_string(unsignedIntegerValue());
        case Kind::float64:
            appendShortest(text, real_, largestPlainDouble);
            return text;
        case Kind::float32:
            appendShortest(text, floatFrom(real_), largestPlainFloat);
            return text;
        default:
            return std::to_string(integer_);
    }
}

ComparisonResult NSNumber::compare(const NSNumber& other) const {
    const auto compareWithReal = [](const NSNumber& integer, double real) {
        return integer.kind_ == Kind::uint64 ? compareExactly(integer.unsignedIntegerValue(), real)
                                             : compareExactly(integer.integer_, real);
    };
    const auto isBeyondInt64 = [](const NSNumber& integer) {
        return integer.kind_ == Kind::uint64 && integer.integer_ < 0;
    };
    if (isReal() && (other.isReal() || other.isDecimal()))
        return compareReals(real_, other.doubleValue());
    if (isDecimal() && other.isReal()) return compareReals(doubleValue(), other.real_);
    if (isDecimal() || other.isDecimal()) return decimalValue().compare(other.decimalValue());
    if (isReal()) return reversed(compareWithReal(other, real_));
    if (other.isReal()) return compareWithReal(*this, other.real_);
    if (isBeyondInt64(*this) != isBeyondInt64(other))
        return ordered(isBeyondInt64(*this), isBeyondInt64(other));
    return ordered(integer_, other.integer_);  // beyond int64 their bits have the same order
}

std::size_t NSNumber::hash() const {
    // Through double, because a decimal equals every double that it is converted to.
    const double value = doubleValue();
    return std::hash<double>{}(std::isnan(value) ? std::numeric_limits<double>::quiet_NaN()
                                                 : value);
}

}  // namespace InkoraKit
