#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/ComparisonResult.h>
#include <InkoraKit/platform/Integer.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// A decimal number, exact for at least 38 digits: sign, 128-bit mantissa, and a power of ten from
/// -128 to 127; or "not a number". There is no negative zero. Immutable; copies need no heap.
class INKORA_EXPORT NSDecimalNumber {
public:
    /// The integer, exactly.
    template <Integer Value>
    NSDecimalNumber(Value value) noexcept
        : NSDecimalNumber(0, magnitude(value), 0, value < Value{}) {}

    /// Reads the longest numeral at the start of the text and ignores the rest:
    /// `[white space] [sign] digits [.digits] [e[sign]digits]`, whatever the locale.
    /// Digits that the mantissa has no room for become zeros before the point and are cut after it.
    /// Gives "not a number" when there is no digit (save after a leading "e", which reads as zero)
    /// and when the power of ten is out of range.
    explicit NSDecimalNumber(std::string_view text) noexcept;

    /// 0; and the value of a text that is no number.
    static NSDecimalNumber zero() noexcept { return 0; }
    static NSDecimalNumber notANumber() noexcept;

    /// Whether it is "not a number".
    bool isNaN() const noexcept { return isNaN_; }

    /// True for everything but zero, as for `NSNumber`.
    bool boolValue() const noexcept;

    /// The integer part, cut toward zero; of larger ones the low 64 bits. Zero for "not a number".
    std::int64_t integerValue() const noexcept;
    std::uint64_t unsignedIntegerValue() const noexcept;

    /// The nearest double.
    double doubleValue() const;

    /// All digits, never an exponent, no superfluous zeros: "12.5", "1000", "NaN".
    std::string stringValue() const;
    std::string description() const { return stringValue(); }

    /// Exact. "Not a number" is the same as itself, and comes after the negative numbers and before
    /// zero.
    ComparisonResult compare(const NSDecimalNumber& other) const noexcept;
    bool isEqual(const NSDecimalNumber& other) const noexcept { return *this == other; }
    friend bool operator==(const NSDecimalNumber&, const NSDecimalNumber&) = default;

    /// The hash of an equal `NSNumber` too.
    std::size_t hash() const;

private:
    NSDecimalNumber(std::uint64_t mantissaHigh, std::uint64_t mantissaLow, int exponent,
                    bool isNegative) noexcept;

    static NSDecimalNumber parsed(std::string_view text) noexcept;

    template <Integer Value>
    static constexpr std::uint64_t magnitude(Value value) noexcept {
        const auto pattern = static_cast<std::uint64_t>(value);
        return value < Value{} ? 0 - pattern : pattern;
    }

    // The mantissa ends in a zero only where the exponent can grow no further, and is zero with
    // exponent zero in "not a number": one value has one form, so equality compares members.
    // Halves, because a 128-bit member would align, and so fill, the number to 32 bytes.
    std::uint64_t mantissaHigh_;
    std::uint64_t mantissaLow_;
    std::int8_t exponent_;
    bool isNegative_;
    bool isNaN_ = false;
};

}  // namespace InkoraKit

template <>
struct std::hash<InkoraKit::NSDecimalNumber> {
    std::size_t operator()(const InkoraKit::NSDecimalNumber& number) const { return number.hash(); }
};
