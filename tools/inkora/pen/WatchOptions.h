#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace InkoraTool {

/// When `inkora watch` ends by itself and what else it asks for.
struct WatchOptions {
    std::optional<std::int64_t> count = {};  // colours
    std::optional<double> duration = {};     // seconds
    std::optional<double> askEvery = {};     // seconds
    std::string palette = {};                // the file that keeps the colours; none keeps none
};

}  // namespace InkoraTool
