#pragma once

#include "palette/Colour.h"
#include "terminal/Terminal.h"

#include <string>

namespace InkoraTool {

/// Blanks on a background of the colour, or of the nearest one that the terminal can show; nothing
/// where it shows none.
std::string colourPatch(const Colour& colour, TerminalColours colours);

}  // namespace InkoraTool
