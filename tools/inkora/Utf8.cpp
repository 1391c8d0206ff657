#include "Utf8.h"

#include <cstddef>

namespace InkoraTool {
namespace {

// The length of a sequence and the least code point that needs it, by its first byte.
struct Lead {
    std::size_t length;
    char32_t bits;
    char32_t least;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80) return {1, byte, 0};
    if ((byte & 0xE0) == 0xC0) return {2, byte & 0x1FU, 0x80};
    if ((byte & 0xF0) == 0xE0) return {3, byte & 0x0FU, 0x800};
    if ((byte & 0xF8) == 0xF0) return {4, byte & 0x07U, 0x10000};
    return {0, 0, 0};
}

bool isSurrogate(char32_t codePoint) {
    return codePoint >= 0xD800 && codePoint < 0xE000;
}

}  // namespace

char32_t takeCodePoint(std::string_view& rest) {
    const auto byteAt = [text = rest](std::size_t i) {
        return static_cast<unsigned char>(text[i]);
    };
    const auto malformed = [&rest] {
        rest.remove_prefix(1);
        return replacementCharacter;
    };
    const auto [length, bits, least] = leadOf(byteAt(0));
    if (length == 0 || length > rest.size()) return malformed();
    char32_t codePoint = bits;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) return malformed();
        codePoint = codePoint << 6 | (byteAt(i) & 0x3FU);
    }
    if (codePoint < least || codePoint > 0x10FFFF || isSurrogate(codePoint)) return malformed();
    rest.remove_prefix(length);
    return codePoint;
}

void appendUtf8(std::string& text, char32_t codePoint) {
    const auto continuation = [&](int shift) {
        text += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | (codePoint >> 6));
        continuation(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | (codePoint >> 12));
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (codePoint >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

std::size_t codePointCount(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) takeCodePoint(text);
    return count;
}

std::string_view firstCodePoints(std::string_view text, std::size_t most) {
    std::string_view rest = text;
    for (std::size_t i = 0; i < most && !rest.empty(); ++i) takeCodePoint(rest);
    return text.substr(0, text.size() - rest.size());
}

std::string printableText(std::string_view text) {
    std::string printable;
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        appendUtf8(printable, isControl(codePoint) ? replacementCharacter : codePoint);
    }
    return printable;
}

}  // namespace InkoraTool
