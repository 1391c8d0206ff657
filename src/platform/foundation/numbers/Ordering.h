#pragma once

#include <InkoraKit/platform/ComparisonResult.h>

namespace InkoraKit {

/// How two values that have a total order compare.
template <class T>
constexpr ComparisonResult ordered(const T& left, const T& right) noexcept {
    if (left < right) return ComparisonResult::orderedAscending;
    if (right < left) return ComparisonResult::orderedDescending;
    return ComparisonResult::orderedSame;
}

/// The result of the same comparison with its sides exchanged.
constexpr ComparisonResult reversed(ComparisonResult result) noexcept {
    return static_cast<ComparisonResult>(-static_cast<int>(result));
}

}  // namespace InkoraKit
