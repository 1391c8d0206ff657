#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace InkoraTool {

/// What a shell can offer for the last of the words behind the program's name: a line each, a word,
/// a tab and its help. A line that begins with the tab asks for the names of files, each behind
/// what follows in the line.
std::string completions(const Command& program, std::vector<std::string> words);

}  // namespace InkoraTool
