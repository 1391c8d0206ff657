#pragma once

#include "palette/Palette.h"

#include <string>
#include <string_view>

namespace InkoraTool {

// The formats, each in a source of its own. Readers throw a `PaletteFault`.

std::string writeJsonPalette(const Palette& palette);
Palette readJsonPalette(std::string_view text);

std::string writeGplPalette(const Palette& palette);
Palette readGplPalette(std::string_view text);

std::string writeAsePalette(const Palette& palette);
Palette readAsePalette(std::string_view bytes);

std::string writeCssPalette(const Palette& palette);
Palette readCssPalette(std::string_view text);

std::string writeSvgPalette(const Palette& palette);
Palette readSvgPalette(std::string_view text);

std::string writeHtmlPalette(const Palette& palette);
Palette readHtmlPalette(std::string_view text);

}  // namespace InkoraTool
