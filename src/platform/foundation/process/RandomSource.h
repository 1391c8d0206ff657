#pragma once

#include <cstdint>

namespace InkoraKit {

/// An unbiased draw from 0 up to, but not including, `bound`; 0 for bounds of 0 and 1. Any thread.
std::uint32_t randomBelow(std::uint32_t bound);

}  // namespace InkoraKit
