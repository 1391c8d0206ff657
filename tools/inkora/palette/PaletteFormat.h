#pragma once

#include "palette/Palette.h"

#include <span>
#include <string>
#include <string_view>

namespace InkoraTool {

/// How a palette is kept as text or bytes. A further one is a file in `formats/` and a line in the
/// table of `PaletteFormat.cpp`.
struct PaletteFormat {
    std::string_view ending;  ///< of a file's name, in lower case
    std::string (*write)(const Palette& palette);
    /// @throws PaletteFault when it is no such text
    Palette (*read)(std::string_view text);
};

std::span<const PaletteFormat> paletteFormats();

/// The format of a file, by its name's ending in any case; null where there is none.
const PaletteFormat* paletteFormatOf(std::string_view file);

}  // namespace InkoraTool
