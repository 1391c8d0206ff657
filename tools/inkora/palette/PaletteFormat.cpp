#include "palette/PaletteFormat.h"

#include "Text.h"
#include "palette/formats/Formats.h"

#include <algorithm>
#include <iterator>

namespace InkoraTool {
namespace {

constexpr PaletteFormat formats[] = {
    {".json", writeJsonPalette, readJsonPalette}, {".gpl", writeGplPalette, readGplPalette},
    {".ase", writeAsePalette, readAsePalette},    {".css", writeCssPalette, readCssPalette},
    {".svg", writeSvgPalette, readSvgPalette},    {".html", writeHtmlPalette, readHtmlPalette},
};

}  // namespace

std::span<const PaletteFormat> paletteFormats() {
    return formats;
}

const PaletteFormat* paletteFormatOf(std::string_view file) {
    const std::string name = lowered(file);
    const auto* const found =
        std::find_if(std::begin(formats), std::end(formats),
                     [&](const PaletteFormat& format) { return name.ends_with(format.ending); });
    return found == std::end(formats) ? nullptr : found;
}

}  // namespace InkoraTool
