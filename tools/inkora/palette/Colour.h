#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace InkoraTool {

/// Red, green and blue in sRGB, from 0 to 255, as a pen tells them.
using Colour = std::array<std::uint8_t, 3>;

/// `#FF8000`.
std::string hexText(const Colour& colour);

/// What `#FF8000` or `#f80` says; nothing for any other text.
std::optional<Colour> colourOfHex(std::string_view text);

/// The component without sRGB's transfer function (IEC 61966-2-1), from 0 to 1.
double linear(std::uint8_t component);

/// The contrast ratio of WCAG 2.x, from 1 to 21, by the relative luminance of both.
double contrast(const Colour& one, const Colour& other);

/// `8.33 : 1`. Rounded down: a ratio that misses a level does not look as if it reached it.
std::string contrastText(double ratio);

/// What such a contrast is enough for: WCAG 2.x asks for 4.5 (AA) and 7 (AAA) of text, and for 3 of
/// large text.
std::string_view contrastLevel(double ratio);

}  // namespace InkoraTool
