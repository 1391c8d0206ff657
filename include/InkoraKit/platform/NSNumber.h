#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/ComparisonResult.h>
#include <InkoraKit/platform/Integer.h>
#include <InkoraKit/platform/NSDecimalNumber.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace InkoraKit {

/// A number of any kind: truth value, integer, floating point or decimal. It remembers what it was
/// made from and converts to every other kind. Immutable; copies need no heap.
class INKORA_EXPORT NSNumber {
public:
    /// Of the kind of its argument, exactly; without one, the integer 0. Implicit.
    constexpr NSNumber() noexcept : NSNumber(0) {}
    template <std::same_as<bool> Bool>  // exactly: a pointer must not become a truth value
    constexpr NSNumber(Bool value) noexcept : integer_(value), kind_(Kind::boolean) {}
    template <Integer Value>
    constexpr NSNumber(Value value) noexcept
        : integer_(static_cast<std::int64_t>(value)), kind_(kindOf(value)) {}
    constexpr NSNumber(float value) noexcept
        : real_(static_cast<double>(value)), kind_(Kind::float32) {}
    constexpr NSNumber(double value) noexcept : real_(value), kind_(Kind::float64) {}
    constexpr NSNumber(const NSDecimalNumber& value) noexcept
        : decimal_(value), kind_(Kind::decimal) {}

    /// The type encoding of the stored kind: "B" truth value, "c" "s" "i" "q" signed integer of
    /// 8 to 64 bits, "Q" integer above `INT64_MAX`, "f" float, "d" double or decimal. Unsigned
    /// integers are kept in the next wider signed kind.
    const char* objCType() const noexcept;

    /// Whether it was made from a truth value. The numbers 1 and 0 were not.
    bool isBool() const noexcept { return kind_ == Kind::boolean; }

    /// Whether it is anything but zero. "Not a number" is.
    bool boolValue() const noexcept;

    /// The integer of each width. Integers keep the low bits of the width asked for. Floating point
    /// is cut toward zero, kept within 64 bits, then narrowed in the same way; "not a number" gives
    /// 0.
    std::int8_t charValue() const noexcept { return static_cast<std::int8_t>(integerValue()); }
    std::uint8_t unsignedCharValue() const noexcept {
        return static_cast<std::uint8_t>(integerValue());
    }
    std::int16_t shortValue() const noexcept { return static_cast<std::int16_t>(integerValue()); }
    std::uint16_t unsignedShortValue() const noexcept {
        return static_cast<std::uint16_t>(integerValue());
    }
    std::int32_t intValue() const noexcept { return static_cast<std::int32_t>(integerValue()); }
    std::uint32_t unsignedIntValue() const noexcept {
        return static_cast<std::uint32_t>(integerValue());
    }
    std::int64_t longLongValue() const noexcept { return integerValue(); }
    std::uint64_t unsignedLongLongValue() const noexcept { return unsignedIntegerValue(); }
    std::int64_t integerValue() const noexcept;
    std::uint64_t unsignedIntegerValue() const noexcept;

    /// The nearest one; infinite where that would be out of range.
    float floatValue() const;
    double doubleValue() const;

    /// Exact for integers; for floating point the shortest decimal that reads back to it.
    NSDecimalNumber decimalValue() const;

    /// Integers in full; truth values as 1 and 0; floating point as the shortest text that reads
    /// back to the same value, laid out as by `%g`: 3, 0.1, 1e+16, nan, -inf.
    std::string stringValue() const;
    std::string description() const { return stringValue(); }

    /// Exact between integers, floating point and truth values (which count as 0 and 1), and
    /// between integers and decimals; a decimal meets floating point as its `doubleValue()`.
    /// "Not a number" is the same as itself, and comes after the negative numbers and before zero.
    ComparisonResult compare(const NSNumber& other) const;

    /// Whether `compare` finds the same, whatever the kinds: true, 1 and 1.0 are equal.
    bool isEqual(const NSNumber& other) const {
        return compare(other) == ComparisonResult::orderedSame;
    }

    /// As `compare` finds, save that a truth value is neither equal to a number of another kind nor
    /// in any order with it.
    friend bool operator==(const NSNumber& left, const NSNumber& right) {
        return left.isBool() == right.isBool() && left.isEqual(right);
    }
    friend std::partial_ordering operator<=>(const NSNumber& left, const NSNumber& right) {
        if (left.isBool() != right.isBool()) return std::partial_ordering::unordered;
        return static_cast<int>(left.compare(right)) <=> 0;
    }

    /// Equal numbers of whatever kinds have equal hashes.
    std::size_t hash() const;

private:
    friend class Any;

    enum class Kind : std::uint8_t {
        boolean,
        int8,
        int16,
        int32,
        int64,
        uint64,
        float32,
        float64,
        decimal
    };

    template <Integer Value>
    static constexpr Kind kindOf(Value value) noexcept {
        constexpr std::size_t size = sizeof(Value) * (std::unsigned_integral<Value> ? 2 : 1);
        if constexpr (size == 1) return Kind::int8;
        if constexpr (size == 2) return Kind::int16;
        if constexpr (size == 4) return Kind::int32;
        return std::in_range<std::int64_t>(value) ? Kind::int64 : Kind::uint64;
    }

    bool isReal() const noexcept { return kind_ == Kind::float32 || kind_ == Kind::float64; }
    bool isDecimal() const noexcept { return kind_ == Kind::decimal; }

    union {
        std::int64_t integer_;  // the bit pattern, where the kind is uint64
        double real_;           // holds every float exactly
        NSDecimalNumber decimal_;
    };
    Kind kind_;
};

}  // namespace InkoraKit

template <>
struct std::hash<InkoraKit::NSNumber> {
    std::size_t operator()(const InkoraKit::NSNumber& number) const { return number.hash(); }
};
