// A fuzzer of what reads palettes: any bytes are a palette or refused with words, and what is
// written of a palette, in each format, is read back with the same colours.
#include "palette/PaletteFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

using namespace InkoraTool;

namespace {

std::optional<Palette> paletteIn(std::string_view text, const PaletteFormat& format) {
    try {
        return format.read(text);
    } catch (const PaletteFault&) {
        return std::nullopt;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    for (const PaletteFormat& format : paletteFormats()) {
        const auto palette = paletteIn({reinterpret_cast<const char*>(bytes), size}, format);
        if (!palette) continue;
        for (const PaletteFormat& other : paletteFormats()) {
            const auto back = paletteIn(other.write(*palette), other);
            const bool isSame = back && std::ranges::equal(back->swatches, palette->swatches, {},
                                                           &Swatch::colour, &Swatch::colour);
            if (!isSame) std::abort();
        }
    }
    return 0;
}
