#pragma once

#include "Command.h"

#include <optional>
#include <string>
#include <vector>

namespace InkoraTool {

struct Suggestion {
    std::string typed;
    std::string meant;
};

/// For the first word of a command line that is like a known word and yet is none; nothing where
/// there is no such word. One letter in three may be wrong, and one in a shorter word: another one,
/// left out, too much, or in its neighbour's place. Capitals are no fault, and an end that was left
/// out is one.
std::optional<Suggestion> suggestion(const Command& program, const std::vector<std::string>& words);

}  // namespace InkoraTool
