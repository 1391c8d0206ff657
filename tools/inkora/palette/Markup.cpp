#include "palette/Markup.h"

#include "Utf8.h"
#include "palette/formats/Formats.h"

namespace InkoraTool {

std::string escapedMarkup(std::string_view text) {
    std::string escaped;
    for (const char c : printableText(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

// Only a JSON text, not what is around it, can hold these characters.
std::string embeddedJson(const Palette& palette) {
    std::string json;
    for (const char c : writeJsonPalette(palette)) {
        switch (c) {
            case '&':
                json += "\\u0026";
                break;
            case '<':
                json += "\\u003c";
                break;
            case '>':
                json += "\\u003e";
                break;
            default:
                json += c;
        }
    }
    return json;
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
