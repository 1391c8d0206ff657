#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace InkoraKit {

/// The leading 128 bits of a power of ten, the first of which is set: rounded down, which is exact
/// from 10^0 to 10^55 (ten to the n has the leading bits of five to the n).
struct PowerOfTen {
    std::uint64_t high;
    std::uint64_t low;
};

constexpr int smallestPowerOfTen = -342;  // below, 64-bit integers times the power read as zero
constexpr int largestPowerOfTen = 324;    // what scales the smallest double to an integer
constexpr int largestExactPowerOfTen = 55;

extern const std::array<PowerOfTen, largestPowerOfTen - smallestPowerOfTen + 1> powersOfTen;

inline const PowerOfTen& powerOfTen(int exponent) noexcept {
    return powersOfTen[static_cast<std::size_t>(exponent - smallestPowerOfTen)];
}

/// The exponent of the leading bit of a power of ten in the range of the table.
constexpr int floorLog2OfPowerOfTen(int exponent) noexcept {
    return (exponent * 217706) >> 16;  // log2(10) is 217705.9… / 2^16
}

}  // namespace InkoraKit
