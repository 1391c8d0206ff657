#pragma once

#include <functional>
#include <string>

namespace InkoraTool {

/// Which colours a terminal can show. The first 8 and 16 are whatever its user likes: the ones that
/// are named here are about so.
enum class TerminalColours {
    none,
    eight,
    sixteen,
    palette,  ///< 256: the 16, a cube of 6 by 6 by 6, and 24 greys
    direct,   ///< any, by red, green and blue
};

/// The value of a variable of the environment; empty where there is none.
using Environment = std::function<std::string(const char* name)>;

/// What the environment says of the terminal: by COLORTERM, by what is known of TERM, and by
/// NO_COLOR, which asks for none.
TerminalColours terminalColours(const Environment& environment);

/// Those of standard output; none where it is no terminal.
TerminalColours coloursOfOutput();

/// Whether a line can be shown on standard error and taken back: that is a terminal, which knows
/// how to (TERM) and is not somebody else's just now, be it another job or what standard output is
/// piped into.
bool canTakeLinesBack();

}  // namespace InkoraTool
