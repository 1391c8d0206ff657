#include "palette/PaletteFormat.h"

#include "palette/formats/Formats.h"

#include <algorithm>

namespace InkoraTool {
namespace {

constexpr PaletteFormat formats[] = {
    {".json", writeJsonPalette, readJsonPalette}, {".gpl", writeGplPalette, readGplPalette},
    {".ase", writeAsePalette, readAsePalette},    {".css", writeCssPalette, readCssPalette},
    {".svg", writeSvgPalette, readSvgPalette},    {".html", writeHtmlPalette, readHtmlPalette},
};

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::span<const PaletteFormat> paletteFormats() {
    return formats;
}

const PaletteFormat* paletteFormatOf(std::string_view file) {
    std::string name(file);
    std::ranges::transform(name, name.begin(), lowered);
    const auto* const found = std::ranges::find_if(
        formats, [&](const PaletteFormat& format) { return name.ends_with(format.ending); });
    return found == std::end(formats) ? nullptr : found;
}

}  // namespace InkoraTool
