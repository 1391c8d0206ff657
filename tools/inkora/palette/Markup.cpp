#include "palette/Markup.h"

#include "Utf8.h"
#include "palette/formats/Formats.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace InkoraTool {
namespace {

using Escapes = std::initializer_list<std::pair<char, std::string_view>>;

std::string escapedText(std::string_view text, Escapes escapes) {
    std::string escaped;
    for (const char c : text) {
        const auto* const found = std::find_if(
            escapes.begin(), escapes.end(), [c](const auto& escape) { return escape.first == c; });
        if (found == escapes.end()) {
            escaped += c;
        } else {
            escaped += found->second;
        }
    }
    return escaped;
}

}  // namespace

std::string escapedMarkup(std::string_view text) {
    return escapedText(printableText(text),
                       {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}});
}

// Only a JSON text, not what is around it, can hold these characters.
std::string embeddedJson(const Palette& palette) {
    return escapedText(writeJsonPalette(palette),
                       {{'&', "\\u0026"}, {'<', "\\u003c"}, {'>', "\\u003e"}});
}

Palette paletteWithin(std::string_view text, std::string_view start, std::string_view end) {
    const std::size_t found = text.find(start);
    const std::size_t stop = found == std::string_view::npos ? found : text.find(end, found);
    if (stop == std::string_view::npos)
        throw PaletteFault(": there is no palette within it, as inkora writes one");
    const std::size_t from = found + start.size();
    try {
        return readJsonPalette(text.substr(from, stop - from));
    } catch (const PaletteFault& fault) {
        throw PaletteFault(std::string(": in the palette within it") + fault.what());
    }
}

}  // namespace InkoraTool
