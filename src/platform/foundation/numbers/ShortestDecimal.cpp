#include "platform/foundation/numbers/ShortestDecimal.h"

#include "platform/foundation/numbers/PowersOfTen.h"
#include "platform/foundation/numbers/Words.h"

#include <cstring>
#include <limits>

namespace InkoraKit {

namespace {

/// factor × power / 2^128, rounded to odd: the last bit is set if anything was cut off, so that
/// comparisons with even numbers come out as they would before rounding.
/// @param power too large by one at most, which is too little to show in 64 bits of a fraction.
/// That a fraction shows if there is one is proven with the algorithm below.
std::uint64_t scaled(std::uint64_t factor, PowerOfTen power) {
    const auto [whole, fraction] =
        multiplied(factor, power.high, multiplied(factor, power.low).high);
    return whole | static_cast<std::uint64_t>(fraction != 0);
}

constexpr int floorLog10OfPowerOfTwo(int exponent) {
    return (exponent * 1262611) >> 22;
}

constexpr int floorLog10OfThreeQuartersPowerOfTwo(int exponent) {
    return (exponent * 1262611 - 524031) >> 22;
}

constexpr std::uint64_t smallestOf17Digits = 10'000'000'000'000'000;

// The algorithm of R. Giulietti ("The Schubfach way to render doubles", 2020): an interval of the
// numbers that read back to the value, scaled so that it holds at least one whole number but at
// most one multiple of ten. All scaled numbers are four times as large, for the bounds to be whole.
template <class Real, class Bits>
ShortestDecimal shortestDecimalOf(Real magnitude) noexcept {
    using Limits = std::numeric_limits<Real>;
    static_assert(sizeof(Real) == sizeof(Bits));
    constexpr int fractionBits = Limits::digits - 1;
    constexpr std::uint64_t hiddenBit = std::uint64_t{1} << fractionBits;
    constexpr int smallestExponent = Limits::min_exponent - Limits::digits;  // of the last bit

    Bits bits;
    std::memcpy(&bits, &magnitude, sizeof bits);
    const auto biasedExponent = static_cast<int>(bits >> fractionBits);
    const std::uint64_t fraction = bits & (hiddenBit - 1);
    const std::uint64_t mantissa = biasedExponent == 0 ? fraction : fraction | hiddenBit;
    const int binaryExponent = smallestExponent + (biasedExponent == 0 ? 0 : biasedExponent - 1);

    // The next smaller double is half as far away below a power of two.
    const bool isLowerNear = fraction == 0 && biasedExponent > 1;
    const int exponent = isLowerNear ? floorLog10OfThreeQuartersPowerOfTwo(binaryExponent)
                                     : floorLog10OfPowerOfTwo(binaryExponent);
    PowerOfTen power = powerOfTen(-exponent);
    ++power.low;  // rounded up; no entry ends in 64 ones
    const int shift = binaryExponent + floorLog2OfPowerOfTen(-exponent) + 1;
    // Halfway texts are read as the even mantissa, to which the bounds therefore belong.
    const std::uint64_t isOpen = mantissa & 1;
    const std::uint64_t lower = scaled((4 * mantissa - 2 + isLowerNear) << shift, power) + isOpen;
    const std::uint64_t upper = scaled((4 * mantissa + 2) << shift, power) - isOpen;
    const std::uint64_t value = scaled((4 * mantissa) << shift, power);
    const std::uint64_t isOdd = value >> 2 & 1;
    std::uint64_t nearest = (value + 1 + isOdd) >> 2;            // the even one of two as near
    nearest += static_cast<std::uint64_t>(4 * nearest < lower);  // if outside the short half

    // Which one it is and how long cannot be foreseen, so both are chosen without a branch. Only
    // floats and subnormal numbers have fewer than 16 digits.
    const std::uint64_t tens = upper / 40;
    ShortestDecimal decimal{40 * tens >= lower ? 10 * tens : nearest, exponent};
    const bool isShort = decimal.digits < smallestOf17Digits;
    decimal.digits *= isShort ? 10 : 1;
    decimal.exponent -= isShort;
    for (; decimal.digits < smallestOf17Digits; --decimal.exponent) decimal.digits *= 10;
    return decimal;
}

}  // namespace

ShortestDecimal shortestDecimal(double magnitude) noexcept {
    return shortestDecimalOf<double, std::uint64_t>(magnitude);
}

ShortestDecimal shortestDecimal(float magnitude) noexcept {
    return shortestDecimalOf<float, std::uint32_t>(magnitude);
}

}  // namespace InkoraKit
