#include "Utf8.h"
#include "palette/Lines.h"
#include "palette/WebColours.h"
#include "palette/formats/Formats.h"

#include <charconv>
#include <system_error>

namespace InkoraTool {
namespace {

// GIMP's palettes: a first line, headers, then a colour a line: red, green, blue, and a name to the
// end of the line. UTF-8.
constexpr std::string_view gplStart = "GIMP Palette";
constexpr std::string_view gplTitle = "Name:";
constexpr std::string_view gplBlanks = " \t\r";

std::string rightAligned(std::uint8_t component) {
    const std::string digits = std::to_string(component);
    return std::string(3 - digits.size(), ' ') + digits;
}

Swatch swatchIn(std::string_view line, std::size_t number) {
    Colour colour;
    std::string_view rest = line;
    for (std::uint8_t& component : colour) {
        rest = trimmed(rest, gplBlanks);
        const auto [stop, error] =
            std::from_chars(rest.data(), rest.data() + rest.size(), component);
        rest.remove_prefix(static_cast<std::size_t>(stop - rest.data()));
        const bool isApart = rest.empty() || gplBlanks.find(rest.front()) != std::string_view::npos;
        if (error != std::errc() || !isApart)
            throw faultInLine(number, "it does not start with three numbers from 0 to 255");
    }
    const std::string_view name = trimmed(rest, gplBlanks);
    return {colour, name.empty() ? std::string(nearestWebColour(colour).name) : std::string(name)};
}

}  // namespace

std::string writeGplPalette(const Palette& palette) {
    std::string text = "GIMP Palette\nName: " + printableText(palette.title) + "\nColumns: 8\n#\n";
    for (const Swatch& swatch : palette.swatches) {
        for (const std::uint8_t component : swatch.colour) text += rightAligned(component) + ' ';
        text.back() = '\t';
        text += printableText(swatch.name) + '\n';
    }
    return text;
}

Palette readGplPalette(std::string_view text) {
    Palette palette;
    std::size_t number = 0;
    while (!text.empty() || number == 0) {
        const std::string_view line = trimmed(takeLine(text), gplBlanks);
        if (++number == 1) {
            if (line != gplStart) throw faultInLine(number, "it is not \"GIMP Palette\"");
        } else if (palette.swatches.empty() && line.starts_with(gplTitle)) {
            palette.title = trimmed(line.substr(gplTitle.size()), gplBlanks);
        } else if (!line.empty() && line[0] != '#' && !line.starts_with("Columns:")) {
            palette.swatches.push_back(swatchIn(line, number));
        }
    }
    return palette;
}

}  // namespace InkoraTool
