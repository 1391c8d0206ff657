#pragma once

#include <malloc.h>

#include <cstddef>
#include <deque>
#include <string_view>

namespace InkoraKit {

/// The bytes of heap that the allocator has given out.
inline double heapInUse() {
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// The bytes that a `Parsed` made of the text takes, itself included. It is the mean of many: the
/// allocator counts the small blocks that it keeps for the thread as given out.
template <class Parsed>
double liveMemory(std::string_view text) {
    constexpr std::size_t enoughText = 8 << 20;
    const std::size_t count = 1 + enoughText / text.size();
    std::deque<Parsed> values;
    const double before = heapInUse();
    for (std::size_t i = 0; i < count; ++i) values.emplace_back(text);
    return (heapInUse() - before) / static_cast<double>(count);
}

}  // namespace InkoraKit
