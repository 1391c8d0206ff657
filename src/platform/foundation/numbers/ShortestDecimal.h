#pragma once

#include <cstdint>

namespace InkoraKit {

/// digits × 10^exponent. There are 17 digits, the last of which may be zeros.
struct ShortestDecimal {
    std::uint64_t digits;
    int exponent;
};

/// Of the decimals with the fewest digits that read back to the value, the nearest to it.
/// @param magnitude finite and above 0
ShortestDecimal shortestDecimal(double magnitude) noexcept;
ShortestDecimal shortestDecimal(float magnitude) noexcept;

}  // namespace InkoraKit
