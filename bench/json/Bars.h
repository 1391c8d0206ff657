#pragma once

#include "Table.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// A figure that a bar is held against, and, where it is the worst of several, the row it is from.
struct Figure {
    double value;
    std::string row;
};

/// What a workload has to reach, or (a goal) would like to; or a figure that is shown beside those.
struct Bar {
    enum class Kind { bar, goal, note };
    enum class Limit { atLeast, atMost };

    std::string workload;
    Kind kind;
    std::string text;
    Limit limit;
    double value;
    std::function<std::optional<Figure>(const Report&)> figure;  // empty where not measured

    bool isReachedBy(double measured) const {
        return limit == Limit::atLeast ? measured >= value : measured <= value;
    }
};

/// In the order of the workloads.
const std::vector<Bar>& bars();

/// Those peers whose figures count as a peer's: Boost.JSON does with its default resource only.
bool isJudged(std::string_view library);

}  // namespace InkoraKit
