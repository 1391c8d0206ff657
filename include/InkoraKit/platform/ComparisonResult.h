#pragma once

namespace InkoraKit {

/// Where the receiver of a comparison stands in relation to its argument.
enum class ComparisonResult { orderedAscending = -1, orderedSame = 0, orderedDescending = 1 };

}  // namespace InkoraKit
