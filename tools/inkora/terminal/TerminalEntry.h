#pragma once

#include <optional>
#include <string>

namespace InkoraTool {

/// What the system's database of terminals (terminfo) says of one.
struct TerminalEntry {
    int count = 0;  ///< of its colours, of which each has a number; 0 for what is not ECMA-48
    bool isDirect = false;  ///< whether it takes colours by red, green and blue
};

/// By what TERM says; nothing where it is not known, or nothing is.
std::optional<TerminalEntry> terminalEntry(const std::string& name);

}  // namespace InkoraTool
