#include "terminal/ColourPatch.h"

#include "palette/NearestColour.h"

#include <vector>

namespace InkoraTool {
namespace {

// As xterm has them where nobody has changed them.
const std::vector<Colour> firstSixteen = {
    {0, 0, 0},     {205, 0, 0},     {0, 205, 0},     {205, 205, 0},  {0, 0, 238}, {205, 0, 205},
    {0, 205, 205}, {229, 229, 229}, {127, 127, 127}, {255, 0, 0},    {0, 255, 0}, {255, 255, 0},
    {92, 92, 255}, {255, 0, 255},   {0, 255, 255},   {255, 255, 255}};

constexpr std::size_t startOfCube = 16;

/// The 256 without the first 16: a cube, and greys between its black and its white.
std::vector<Colour> cubeAndGreys() {
    constexpr std::uint8_t levels[] = {0, 95, 135, 175, 215, 255};
    std::vector<Colour> colours;
    for (const std::uint8_t red : levels)
        for (const std::uint8_t green : levels)
            for (const std::uint8_t blue : levels) colours.push_back({red, green, blue});
    for (unsigned grey = 8; grey <= 238; grey += 10) {
        const auto level = static_cast<std::uint8_t>(grey);
        colours.push_back({level, level, level});
    }
    return colours;
}

std::size_t nearestOfFirst(std::size_t count, const Colour& colour) {
    return NearestColour(
        {firstSixteen.begin(), firstSixteen.begin() + static_cast<std::ptrdiff_t>(count)})(colour);
}

std::size_t nearestOfPalette(const Colour& colour) {
    static const NearestColour nearest(cubeAndGreys());
    return startOfCube + nearest(colour);
}

// ECMA-48's SGR for a background: 48 with the direct or the indexed colour of ITU-T T.416, whose
// parts terminals take with semicolons too; 40 to 47; and 100 to 107, which no standard has, for
// the bright ones.
std::string backgroundParameters(const Colour& colour, TerminalColours colours) {
    switch (colours) {
        case TerminalColours::none:
            break;
        case TerminalColours::eight:
            return std::to_string(40 + nearestOfFirst(8, colour));
        case TerminalColours::sixteen: {
            const std::size_t nearest = nearestOfFirst(16, colour);
            return std::to_string(nearest < 8 ? 40 + nearest : 100 + nearest - 8);
        }
        case TerminalColours::palette:
            return "48;5;" + std::to_string(nearestOfPalette(colour));
        case TerminalColours::direct: {
            std::string parameters = "48;2";
            for (const std::uint8_t byte : colour) parameters += ';' + std::to_string(byte);
            return parameters;
        }
    }
    return "";
}

}  // namespace

std::string colourPatch(const Colour& colour, TerminalColours colours) {
    const std::string background = backgroundParameters(colour, colours);
    return background.empty() ? "" : "\x1b[" + background + "m      \x1b[0m";
}

}  // namespace InkoraTool
