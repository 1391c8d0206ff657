#pragma once

#include "palette/Colour.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace InkoraTool {

/// A colour of a palette.
struct Swatch {
    Colour colour;
    std::string name;       ///< the nearest web colour's, where nobody gave it another
    std::string time = {};  ///< of the capture, in UTC (RFC 3339); empty where nobody knows
};

/// Colours in their order.
struct Palette {
    std::string title;
    std::vector<Swatch> swatches;
};

/// Why a text is no palette: what to tell behind the file's name, `, line 3: ...`.
struct PaletteFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace InkoraTool
