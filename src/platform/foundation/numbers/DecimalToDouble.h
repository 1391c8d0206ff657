#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace InkoraKit {

/// As nearestDouble(), without the short way for numerals of few digits.
std::optional<double> nearestDoubleOfManyDigits(std::uint64_t mantissa,
                                                std::int64_t exponent) noexcept;

/// The double nearest to mantissa × 10^exponent, the even one of two as near: infinite when too
/// large, zero when too small. Assumes the default rounding mode.
/// @return nothing where 128 bits of the power of ten leave the choice open, as for some numbers
/// halfway between two doubles; realFromText() knows those.
inline std::optional<double> nearestDouble(std::uint64_t mantissa, std::int64_t exponent) noexcept {
    // Up to these, doubles hold integers and powers of ten exactly, so that one operation rounds
    // once and correctly (W. D. Clinger, "How to read floating point numbers accurately", 1990).
    constexpr std::uint64_t largestExactInteger = std::uint64_t{1} << 53;
    static constexpr std::array exactPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr auto largestExactPower = static_cast<std::int64_t>(exactPowers.size()) - 1;
    if (mantissa > largestExactInteger || exponent < -largestExactPower ||
        exponent > largestExactPower) {
        return nearestDoubleOfManyDigits(mantissa, exponent);
    }
    const auto integer = static_cast<double>(static_cast<std::int64_t>(mantissa));
    return exponent < 0 ? integer / exactPowers[static_cast<std::size_t>(-exponent)]
                        : integer * exactPowers[static_cast<std::size_t>(exponent)];
}

}  // namespace InkoraKit
