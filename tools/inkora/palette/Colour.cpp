#include "palette/Colour.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace InkoraTool {
namespace {

// WCAG 2.x, "relative luminance".
double luminance(const Colour& colour) {
    return 0.2126 * linear(colour[0]) + 0.7152 * linear(colour[1]) + 0.0722 * linear(colour[2]);
}

}  // namespace

std::string hexText(const Colour& colour) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "#";
    for (const std::uint8_t component : colour) {
        text += digits[component >> 4];
        text += digits[component & 0xF];
    }
    return text;
}

std::optional<Colour> colourOfHex(std::string_view text) {
    if (!text.starts_with('#') || (text.size() != 4 && text.size() != 7)) return std::nullopt;
    const std::size_t width = text.size() / 3;
    Colour colour;
    for (std::size_t i = 0; i < colour.size(); ++i) {
        const char* const start = text.data() + 1 + i * width;
        const auto [stop, error] = std::from_chars(start, start + width, colour[i], 16);
        if (error != std::errc() || stop != start + width) return std::nullopt;
        if (width == 1) colour[i] = static_cast<std::uint8_t>(colour[i] * 0x11);
    }
    return colour;
}

double linear(std::uint8_t component) {
    const double value = component / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double contrast(const Colour& one, const Colour& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

std::string contrastText(double ratio) {
    constexpr double rounding = 1e-6;  // far above the errors of the sums before, which may be low
    const auto hundredths = std::to_string(std::lround(std::floor(ratio * 100 + rounding)));
    const std::size_t whole = hundredths.size() - 2;
    return hundredths.substr(0, whole) + '.' + hundredths.substr(whole) + " : 1";
}

std::string_view contrastLevel(double ratio) {
    if (ratio >= 7) return "AAA";
    if (ratio >= 4.5) return "AA";
    return ratio >= 3 ? "large text" : "too low";
}

}  // namespace InkoraTool
