#pragma once

namespace InkoraTool {

/// Whether standard output is a terminal that says it shows 24-bit colours (COLORTERM) and nobody
/// asked for none (NO_COLOR).
bool outputShowsTrueColour();

}  // namespace InkoraTool
