#pragma once

namespace InkoraKit {

/// Where the receiver of a comparison stands in relation to its argument.
enum class ComparisonResult {
    orderedAscending = -1,  ///< before it
    orderedSame = 0,        ///< neither before nor after it
    orderedDescending = 1,  ///< after it
};

}  // namespace InkoraKit
