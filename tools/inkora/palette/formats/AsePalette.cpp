#include "Utf8.h"
#include "palette/WebColours.h"
#include "palette/formats/Formats.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace InkoraTool {
namespace {

// Adobe Swatch Exchange: a header and blocks, each a type, its length and contents. Integers and
// floats (IEEE 754) are big-endian, texts are UTF-16 that ends with a zero.
constexpr std::string_view aseSignature = "ASEF";
constexpr std::uint16_t aseVersion = 1;
constexpr std::uint16_t aseColour = 0x0001;
constexpr std::uint16_t aseNormal = 2;  // neither global nor a spot colour

/// A number of another type, of the same bits.
template <class To, class From>
To sameBits(From from) {
    static_assert(sizeof(To) == sizeof from);
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

template <class Number>
void appendBig(std::string& bytes, Number number) {
    for (int shift = 8 * (sizeof(Number) - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
}

std::u16string utf16Of(std::string_view text) {
    std::u16string units;
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (codePoint < 0x10000) {
            units += static_cast<char16_t>(codePoint);
        } else {
            units += static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
            units += static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
        }
    }
    return units;
}

// A surrogate that stands alone becomes the replacement character.
std::string utf8Of(std::u16string_view units) {
    const auto isWithin = [](char16_t unit, char16_t start) { return (unit & 0xFC00) == start; };
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t codePoint = units[i];
        const bool isPair =
            isWithin(units[i], 0xD800) && i + 1 < units.size() && isWithin(units[i + 1], 0xDC00);
        if (isPair) {
            codePoint = 0x10000 + ((codePoint & 0x3FF) << 10) + (units[++i] & 0x3FF);
        } else if ((units[i] & 0xF800) == 0xD800) {
            codePoint = replacementCharacter;
        }
        appendUtf8(text, codePoint);
    }
    return text;
}

// The length of a name and of a block has to fit.
constexpr std::size_t longestName = 1000;

std::string blockOf(const Swatch& swatch) {
    std::u16string name = utf16Of(printableText(swatch.name)).substr(0, longestName);
    name += u'\0';
    std::string contents;
    appendBig(contents, static_cast<std::uint16_t>(name.size()));
    for (const char16_t unit : name) appendBig(contents, static_cast<std::uint16_t>(unit));
    contents += "RGB ";
    for (const std::uint8_t component : swatch.colour)
        appendBig(contents, sameBits<std::uint32_t>(static_cast<float>(component) / 255));
    appendBig(contents, aseNormal);
    std::string block;
    appendBig(block, aseColour);
    appendBig(block, static_cast<std::uint32_t>(contents.size()));
    return block + contents;
}

/// Bytes of a file from some place in it on.
class Bytes {
public:
    explicit Bytes(std::string_view bytes, std::size_t offset = 0)
        : rest_(bytes), offset_(offset) {}

    bool empty() const { return rest_.empty(); }

    std::string_view take(std::size_t size) {
        if (size > rest_.size())
            throw fault("it is cut off: " + std::to_string(size) + " bytes should follow, not " +
                        std::to_string(rest_.size()));
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        offset_ += size;
        return taken;
    }

    Bytes takeBytes(std::size_t size) {
        const std::size_t offset = offset_;
        return Bytes(take(size), offset);
    }

    template <class Number>
    Number number() {
        Number value = 0;
        for (const char byte : take(sizeof(Number)))
            value = static_cast<Number>(value << 8 | static_cast<unsigned char>(byte));
        return value;
    }

    float component() {
        const auto value = sameBits<float>(number<std::uint32_t>());
        if (!std::isfinite(value)) throw fault("a component before this is no number");
        return value;
    }

    PaletteFault fault(const std::string& reason) const {
        return PaletteFault(", byte " + std::to_string(offset_) + " from 0: " + reason);
    }

private:
    std::string_view rest_;
    std::size_t offset_;
};

std::string nameIn(Bytes& block) {
    std::u16string units;
    for (auto count = block.number<std::uint16_t>(); count > 0; --count)
        units += static_cast<char16_t>(block.number<std::uint16_t>());
    return utf8Of(std::u16string_view(units).substr(0, units.find(u'\0')));
}

std::uint8_t byteOf(float component) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.F, 1.F) * 255));
}

Colour colourIn(Bytes& block) {
    const std::string_view model = block.take(4);
    Colour colour{};
    if (model == "RGB ") {
        for (std::uint8_t& component : colour) component = byteOf(block.component());
    } else if (model == "Gray") {
        colour.fill(byteOf(block.component()));
    } else {
        throw block.fault("a colour is in " + printableText(model) + ", not in RGB or Gray");
    }
    return colour;
}

Swatch swatchIn(Bytes block) {
    std::string name = nameIn(block);
    const Colour colour = colourIn(block);
    if (name.empty()) name = nearestWebColour(colour).name;
    return {colour, std::move(name)};
}

}  // namespace

// The format has no place for the title but a group, which not every program reads.
std::string writeAsePalette(const Palette& palette) {
    std::string bytes(aseSignature);
    appendBig(bytes, aseVersion);
    appendBig(bytes, std::uint16_t{0});
    appendBig(bytes, static_cast<std::uint32_t>(palette.swatches.size()));
    for (const Swatch& swatch : palette.swatches) bytes += blockOf(swatch);
    return bytes;
}

// Some programs do not count the ends of groups as blocks.
Palette readAsePalette(std::string_view bytes) {
    if (!bytes.starts_with(aseSignature))
        throw PaletteFault(", byte 0 from 0: it does not start with \"ASEF\"");
    Bytes file(bytes);
    file.take(aseSignature.size());
    if (file.number<std::uint16_t>() != aseVersion)
        throw file.fault("the version before this is not 1");
    file.take(2);
    const auto count = file.number<std::uint32_t>();
    Palette palette;
    for (std::uint32_t i = 0; i < count || !file.empty(); ++i) {
        const auto type = file.number<std::uint16_t>();
        Bytes block = file.takeBytes(file.number<std::uint32_t>());
        if (type == aseColour) palette.swatches.push_back(swatchIn(block));
    }
    return palette;
}

}  // namespace InkoraTool
