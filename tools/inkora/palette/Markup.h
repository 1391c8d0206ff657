#pragma once

#include "palette/Palette.h"

#include <string>
#include <string_view>

namespace InkoraTool {

/// The text as it stands in HTML or XML, between tags and in quotes.
std::string escapedMarkup(std::string_view text);

/// The palette as JSON that needs no escapes in markup: a page or a picture carries it within it,
/// and so is read back without a loss.
std::string embeddedJson(const Palette& palette);

/// What stands between the first `start` and the next `end`.
/// @throws PaletteFault when that is no palette, or there is none
Palette paletteWithin(std::string_view text, std::string_view start, std::string_view end);

}  // namespace InkoraTool
