#include "platform/foundation/text/TextEncoding.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace InkoraKit {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

// Collects code points into a text of at most so many bytes.
class Utf8Text {
public:
    explicit Utf8Text(std::size_t largestSize) : text_(largestSize, '\0') {}

    void append(char32_t codePoint) { end_ = writeUtf8(end_, codePoint); }

    std::string finish() {
        text_.resize(static_cast<std::size_t>(end_ - text_.data()));
        return std::move(text_);
    }

private:
    std::string text_;
    char* end_ = text_.data();
};

std::optional<std::string> utf8FromAscii(Bytes bytes) {
    if (std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte >= 0x80; }))
        return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

std::string utf8FromLatin1(Bytes bytes) {
    Utf8Text text(2 * bytes.size());
    for (const std::uint8_t byte : bytes) text.append(byte);
    return text.finish();
}

std::optional<std::string> checkedUtf8(Bytes bytes) {
    std::string text(bytes.begin(), bytes.end());
    if (!isUtf8(text)) return std::nullopt;
    return text;
}

std::optional<std::string> utf8FromUtf16(Bytes bytes, std::endian order) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    const std::size_t high = order == std::endian::big ? 0 : 1;
    const auto unitAt = [=](std::size_t i) {
        return static_cast<char32_t>(bytes[i + high] << 8 | bytes[i + 1 - high]);
    };
    Utf8Text text(bytes.size() / 2 * 3);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const char32_t unit = unitAt(i);
        if (isLowSurrogate(unit)) return std::nullopt;
        if (!isHighSurrogate(unit)) {
            text.append(unit);
            continue;
        }
        i += 2;
        if (i == bytes.size() || !isLowSurrogate(unitAt(i))) return std::nullopt;
        text.append(0x10000 + ((unit & 0x3FF) << 10) + (unitAt(i) & 0x3FF));
    }
    return text.finish();
}

std::optional<std::string> utf8FromUtf32(Bytes bytes, std::endian order) {
    if (bytes.size() % 4 != 0) return std::nullopt;
    Utf8Text text(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        char32_t codePoint = 0;
        for (std::size_t k = 0; k < 4; ++k)
            codePoint = codePoint << 8 | bytes[i + (order == std::endian::big ? k : 3 - k)];
        if (isHighSurrogate(codePoint) || isLowSurrogate(codePoint) || codePoint > 0x10FFFF)
            return std::nullopt;
        text.append(codePoint);
    }
    return text.finish();
}

template <std::size_t size>
bool startsWith(Bytes bytes, const std::uint8_t (&mark)[size]) {
    return bytes.size() >= size && std::equal(mark, mark + size, bytes.begin());
}

constexpr std::uint8_t utf8Mark[] = {0xEF, 0xBB, 0xBF};
constexpr std::uint8_t utf16BEMark[] = {0xFE, 0xFF};
constexpr std::uint8_t utf16LEMark[] = {0xFF, 0xFE};
constexpr std::uint8_t utf32BEMark[] = {0x00, 0x00, 0xFE, 0xFF};
constexpr std::uint8_t utf32LEMark[] = {0xFF, 0xFE, 0x00, 0x00};

StringEncoding encodingByZeros(Bytes bytes) {
    const auto isZero = [bytes](std::size_t i) { return bytes[i] == 0; };
    if (bytes.size() < 2) return StringEncoding::utf8;
    if (bytes.size() < 4) {
        if (isZero(0)) return StringEncoding::utf16BE;
        return isZero(1) ? StringEncoding::utf16LE : StringEncoding::utf8;
    }
    if (isZero(0) && isZero(1) && isZero(2)) return StringEncoding::utf32BE;
    if (isZero(1) && isZero(2) && isZero(3)) return StringEncoding::utf32LE;
    if (isZero(0) && isZero(2)) return StringEncoding::utf16BE;
    if (isZero(1) && isZero(3)) return StringEncoding::utf16LE;
    return StringEncoding::utf8;
}

}  // namespace

std::optional<std::string> decoded(std::span<const std::uint8_t> bytes, StringEncoding encoding) {
    switch (encoding) {
        case StringEncoding::ascii:
            return utf8FromAscii(bytes);
        case StringEncoding::utf8:
            return checkedUtf8(bytes);
        case StringEncoding::isoLatin1:
            return utf8FromLatin1(bytes);
        case StringEncoding::utf16:
            if (startsWith(bytes, utf16BEMark))
                return utf8FromUtf16(bytes.subspan(2), std::endian::big);
            if (startsWith(bytes, utf16LEMark)) bytes = bytes.subspan(2);
            return utf8FromUtf16(bytes, std::endian::little);
        case StringEncoding::utf16BE:
            return utf8FromUtf16(bytes, std::endian::big);
        case StringEncoding::utf16LE:
            return utf8FromUtf16(bytes, std::endian::little);
        default:
            return std::nullopt;
    }
}

DetectedText detectEncoding(std::span<const std::uint8_t> bytes) noexcept {
    if (startsWith(bytes, utf8Mark)) return {StringEncoding::utf8, sizeof utf8Mark};
    if (startsWith(bytes, utf32BEMark)) return {StringEncoding::utf32BE, sizeof utf32BEMark};
    // Before UTF-16: its little-endian mark starts this one.
    if (startsWith(bytes, utf32LEMark)) return {StringEncoding::utf32LE, sizeof utf32LEMark};
    if (startsWith(bytes, utf16BEMark)) return {StringEncoding::utf16BE, sizeof utf16BEMark};
    if (startsWith(bytes, utf16LEMark)) return {StringEncoding::utf16LE, sizeof utf16LEMark};
    return {encodingByZeros(bytes), 0};
}

std::optional<std::string> utf8FromDetected(std::span<const std::uint8_t> bytes,
                                            DetectedText detected) {
    const Bytes text = bytes.subspan(detected.markSize);
    if (detected.encoding == StringEncoding::utf32BE) return utf8FromUtf32(text, std::endian::big);
    if (detected.encoding == StringEncoding::utf32LE)
        return utf8FromUtf32(text, std::endian::little);
    return decoded(text, detected.encoding);
}

std::size_t originalOffset(std::string_view text, std::size_t offset,
                           DetectedText detected) noexcept {
    if (detected.encoding == StringEncoding::utf8) return detected.markSize + offset;
    const bool isUtf16 = detected.encoding == StringEncoding::utf16BE ||
                         detected.encoding == StringEncoding::utf16LE;
    const std::size_t unitSize = isUtf16 ? 2 : 4;
    std::size_t units = 0;
    for (const char character : text.substr(0, offset)) {
        const bool needsTwoUnits = isUtf16 && static_cast<std::uint8_t>(character) >= 0xF0;
        const bool continues = (character & 0xC0) == 0x80;
        if (!continues) units += needsTwoUnits ? 2 : 1;
    }
    return detected.markSize + unitSize * units;
}

}  // namespace InkoraKit
