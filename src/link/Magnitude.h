#pragma once

#include <cstdint>
#include <limits>

namespace InkoraKit {

/// The absolute value; of the one number that has none, the largest there is.
constexpr std::int64_t magnitude(std::int64_t value) noexcept {
    if (value >= 0) return value;
    return value == std::numeric_limits<std::int64_t>::min()
               ? std::numeric_limits<std::int64_t>::max()
               : -value;
}

}  // namespace InkoraKit
