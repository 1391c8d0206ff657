#include "JsonLine.h"
#include "json/JsonTextFault.h"
#include "palette/WebColours.h"
#include "palette/formats/Formats.h"

#include <InkoraKit/JSON.h>
#include <InkoraKit/JSONViews.h>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

JSON documentIn(std::string_view text) {
    try {
        return JSONSerialization::jsonObject(text,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError& error) {
        throw PaletteFault(jsonTextFault("", text, error));
    }
}

std::string memberText(const JSON& object, std::string_view key, const std::string& where) {
    const JSON* const found = object.find(key);
    if (!found) return "";
    if (found->type() != Type::string)
        throw PaletteFault(": " + where + '"' + std::string(key) + "\" is no text");
    return std::string(found->stringView());
}

Swatch swatchIn(const JSON& element, std::size_t position) {
    const std::string where = "at [\"colours\"," + std::to_string(position) + "] ";
    const auto colour = colourOfHex(memberText(element, "hex", where));
    if (!colour) throw PaletteFault(": " + where + R"(there is no "hex" like "#FF8000")");
    std::string name = memberText(element, "name", where);
    if (name.empty()) name = nearestWebColour(*colour).name;
    return {*colour, std::move(name), memberText(element, "time", where)};
}

}  // namespace

std::string writeJsonPalette(const Palette& palette) {
    std::string text = "{\n  \"title\": " + jsonString(palette.title) + ",\n  \"colours\": [";
    std::string_view separator = "\n    ";
    for (const Swatch& swatch : palette.swatches) {
        JsonLine line;
        line.add("hex", hexText(swatch.colour)).add("name", swatch.name);
        if (!swatch.time.empty()) line.add("time", swatch.time);
        text += separator;
        text += line.text();
        separator = ",\n    ";
    }
    return text + "\n  ]\n}\n";
}

Palette readJsonPalette(std::string_view text) {
    const JSON document = documentIn(text);
    const JSON* const colours = document.find("colours");
    if (!colours || colours->type() != Type::array)
        throw PaletteFault(": there is no array \"colours\"");
    Palette palette{memberText(document, "title", ""), {}};
    for (const JSON& element : colours->elements())
        palette.swatches.push_back(swatchIn(element, palette.swatches.size()));
    return palette;
}

}  // namespace InkoraTool
