// What the board has of the command-line host, in the same code: formats of palettes, names,
// contrasts.
#include "palette/Colour.h"
#include "palette/PaletteFormat.h"
#include "palette/WebColours.h"

#include <emscripten/bind.h>

#include <string>

using emscripten::val;
using namespace InkoraTool;

namespace {

val endings() {
    val array = val::array();
    for (const PaletteFormat& format : paletteFormats())
        array.call<void>("push", std::string(format.ending));
    return array;
}

/// The palette as a file of the other name would hold it, in a Uint8Array; or, as a text, why there
/// is none: what to tell behind the first name.
val converted(const std::string& from, const std::string& bytes, const std::string& to) {
    const PaletteFormat* const reader = paletteFormatOf(from);
    const PaletteFormat* const writer = paletteFormatOf(to);
    if (!reader || !writer) return val(std::string(": its name has no ending of a palette"));
    try {
        const std::string written = writer->write(reader->read(bytes));
        return val::global("Uint8Array")
            .new_(emscripten::typed_memory_view(
                written.size(), reinterpret_cast<const unsigned char*>(written.data())));
    } catch (const PaletteFault& fault) {
        return val(std::string(fault.what()));
    }
}

Colour colourOf(const std::string& hex) {
    return colourOfHex(hex).value_or(Colour{});
}

std::string nearestName(const std::string& hex) {
    return std::string(nearestWebColour(colourOf(hex)).name);
}

double contrastOf(const std::string& one, const std::string& other) {
    return contrast(colourOf(one), colourOf(other));
}

std::string levelOf(double ratio) {
    return std::string(contrastLevel(ratio));
}

}  // namespace

EMSCRIPTEN_BINDINGS(palettes) {
    emscripten::function("endings", endings);
    emscripten::function("converted", converted);
    emscripten::function("nearestName", nearestName);
    emscripten::function("contrast", contrastOf);
    emscripten::function("contrastText", contrastText);
    emscripten::function("contrastLevel", levelOf);
}
