#include "palette/Markup.h"
#include "palette/formats/Formats.h"

#include <algorithm>

namespace InkoraTool {
namespace {

constexpr std::string_view svgStart = "<metadata id=\"palette\">";
constexpr std::string_view svgEnd = "</metadata>";

// Pixels.
constexpr std::size_t svgColumns = 4;
constexpr std::size_t svgCellWidth = 180;
constexpr std::size_t svgCellHeight = 176;
constexpr std::size_t svgMargin = 12;

/// ` name="12"`.
std::string attribute(std::string_view name, std::size_t value) {
    return ' ' + std::string(name) + "=\"" + std::to_string(value) + '"';
}

// What does not fit into a cell is cut off at its edge.
std::string cellOf(const Swatch& swatch, std::size_t position) {
    const std::size_t x = svgMargin + position % svgColumns * svgCellWidth;
    const std::size_t y = svgMargin + position / svgColumns * svgCellHeight;
    const std::string hex = hexText(swatch.colour);
    const std::string name = escapedMarkup(swatch.name);
    return "<svg" + attribute("x", x) + attribute("y", y) +
           attribute("width", svgCellWidth - svgMargin) + attribute("height", svgCellHeight) +
           "><title>" + name + ' ' + hex +
           R"(</title><rect width="100%" height="120" rx="6" fill=")" + hex +
           R"(" stroke="#808080" stroke-opacity="0.4"/><text y="140">)" + name +
           R"(</text><text y="158" fill="#5C5F68" font-family="monospace">)" + hex +
           "</text></svg>\n";
}

}  // namespace

std::string writeSvgPalette(const Palette& palette) {
    const std::size_t count = std::max<std::size_t>(palette.swatches.size(), 1);
    const std::size_t width = std::min(count, svgColumns) * svgCellWidth + svgMargin;
    const std::size_t height = (count + svgColumns - 1) / svgColumns * svgCellHeight + svgMargin;
    std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attribute("width", width) +
                       attribute("height", height) + " viewBox=\"0 0 " + std::to_string(width) +
                       ' ' + std::to_string(height) +
                       "\" font-family=\"sans-serif\" font-size=\"14\">\n<title>" +
                       escapedMarkup(palette.title) + "</title>\n";
    text += svgStart;
    text += embeddedJson(palette);
    text += svgEnd;
    text += "\n<rect width=\"100%\" height=\"100%\" fill=\"#FFFFFF\"/>\n";
    for (std::size_t i = 0; i < palette.swatches.size(); ++i)
        text += cellOf(palette.swatches[i], i);
    return text + "</svg>\n";
}

Palette readSvgPalette(std::string_view text) {
    return paletteWithin(text, svgStart, svgEnd);
}

}  // namespace InkoraTool
