#pragma once

#include <cstdint>

namespace InkoraKit {

/// How often this program has asked the heap for memory so far.
std::uint64_t allocationCount() noexcept;

}  // namespace InkoraKit
