#pragma once

#include <string>
#include <vector>

namespace InkoraTool {

/// What one look at the machine has shown, and what is to be done about it.
struct Finding {
    enum class State {
        ok,
        warning,      ///< a pen can be used all the same
        fault,        ///< no pen can be used; what depends on it is not looked at
        notLookedAt,  ///< for a fault before it, or an interruption
    };

    std::string name;
    State state;
    std::string text = {};
    std::string remedy = {};  ///< the command that mends it; empty where none does
    std::string advice = {};  ///< besides, or in its place: words
};

using Findings = std::vector<Finding>;

}  // namespace InkoraTool
