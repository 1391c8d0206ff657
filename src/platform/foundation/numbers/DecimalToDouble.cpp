#include "platform/foundation/numbers/DecimalToDouble.h"

#include "platform/foundation/numbers/PowersOfTen.h"
#include "platform/foundation/numbers/Words.h"

#include <bit>
#include <cstring>
#include <limits>

namespace InkoraKit {

namespace {

constexpr int storedBits = 52;
constexpr int exponentBias = 1023;
constexpr int infiniteExponent = 2047;

}  // namespace

// The algorithm of M. Eisel and D. Lemire ("Number parsing at a gigabyte per second", 2021): the
// leading bits of mantissa × 5^exponent, which need more of the power than the table has only where
// they look like a number halfway between two doubles.
std::optional<double> nearestDoubleOfManyDigits(std::uint64_t mantissa,
                                                std::int64_t exponent) noexcept {
    if (mantissa == 0 || exponent < smallestPowerOfTen) return 0.0;
    if (exponent > std::numeric_limits<double>::max_exponent10) {
        return std::numeric_limits<double>::infinity();
    }
    const auto power = static_cast<int>(exponent);
    const PowerOfTen& five = powerOfTen(power);
    const int leadingZeros = std::countl_zero(mantissa);
    mantissa <<= leadingZeros;

    // The upper 128 bits of a product of 192.
    const auto [carry, low] = multiplied(mantissa, five.low);
    const auto [high, middle] = multiplied(mantissa, five.high, carry);

    // The 53 bits of a double and one that rounds.
    const int topBit = static_cast<int>(high >> 63);
    const int dropped = topBit + 9;
    std::uint64_t bits = high >> dropped;
    const std::uint64_t rest = high - (bits << dropped);

    int biasedExponent = floorLog2OfPowerOfTen(power) + 63 + topBit - leadingZeros + exponentBias;
    const bool isExact = power >= 0 && power <= largestExactPowerOfTen;
    if (!isExact && middle == ~std::uint64_t{0} && rest == (std::uint64_t{1} << dropped) - 1) {
        // What the power lacks may carry into the bits kept, all the same if they round up anyhow.
        if ((bits & 1) == 0 || biasedExponent <= 0) return std::nullopt;
    }
    // With a rounded power no product is a tie: the true one is above.
    if (isExact && rest == 0 && middle == 0 && low == 0) {
        bits -= static_cast<std::uint64_t>((bits & 3) == 1);  // of two as near the even one
    }
    if (biasedExponent >= infiniteExponent) return std::numeric_limits<double>::infinity();
    if (biasedExponent <= 0) {  // subnormal, never a tie: no 64 bits hold so many factors of five
        if (biasedExponent < -storedBits) return 0.0;
        bits >>= 1 - biasedExponent;
        biasedExponent = 1;
    }
    // The leading one of the 53 bits adds itself to the exponent, and so does a carry.
    bits = (bits + 1) >> 1;
    bits += static_cast<std::uint64_t>(biasedExponent - 1) << storedBits;
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

}  // namespace InkoraKit
