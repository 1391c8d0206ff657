#pragma once

#include "palette/Colour.h"

#include <string_view>

namespace InkoraTool {

/// One of the 148 colours that have a name in CSS (CSS Color Module Level 4).
struct WebColour {
    std::string_view name;
    Colour colour;
};

/// The one of that name, in any case; null when there is none.
const WebColour* webColourNamed(std::string_view name);

/// The one that looks most like the colour.
const WebColour& nearestWebColour(const Colour& colour);

}  // namespace InkoraTool
