#include "platform/foundation/text/TextEncoding.h"

#include "support/EncodedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace InkoraKit {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Text = std::optional<std::string>;
using enum StringEncoding;

// Unicode, table 3-7, row by row: the ranges of the first and of the second byte.
struct Row {
    int first, firstEnd, second, secondEnd;
    std::size_t length;
};
constexpr Row rows[] = {
    {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

std::size_t lengthByTable(std::string_view text) {
    std::size_t checked = 0;
    while (checked < text.size()) {
        const auto lies = [&](std::size_t place, int low, int high) {
            if (checked + place >= text.size()) return false;
            const int byte = static_cast<unsigned char>(text[checked + place]);
            return byte >= low && byte <= high;
        };
        const auto row = std::ranges::find_if(rows, [&](const Row& candidate) {
            return lies(0, candidate.first, candidate.firstEnd) &&
                   (candidate.length < 2 || lies(1, candidate.second, candidate.secondEnd)) &&
                   (candidate.length < 3 || lies(2, 0x80, 0xBF)) &&
                   (candidate.length < 4 || lies(3, 0x80, 0xBF));
        });
        if (row == std::end(rows)) break;
        checked += row->length;
    }
    return checked;
}

TEST(TextEncodingTest, Utf8IsWellFormedExactlyByTheTableWhereverItStands) {
    constexpr std::array<char, 4> others = {'A', '\x80', '\xBF', '\xE3'};
    const std::string fillers[] = {"a", "é", "猫", "😀"};
    std::size_t round = 0;
    for (int first = 0; first < 0x100; ++first)
        for (int second = 0; second < 0x100; ++second)
            for (const char third : others)
                for (const char fourth : others) {
                    // As long as two to three of the blocks that are looked at as a whole, more or
                    // less, and at the end or followed by any of the fillers.
                    const std::string& filler = fillers[++round % 4];
                    std::string text(round % 3, 'a');
                    while (text.size() < round % 37) text += filler;
                    for (const int byte : {first, second}) text += static_cast<char>(byte);
                    text += {third, fourth};
                    for (std::size_t i = 0; i < round % 5 * 3; ++i) text += filler;
                    const std::vector<char> exact(text.begin(), text.end());  // nothing behind
                    const std::string_view view(exact.data(), exact.size());
                    const std::size_t expected = lengthByTable(view);
                    ASSERT_EQ(wellFormedUtf8Length(view), expected) << text;
                    ASSERT_EQ(wellFormedUtf8LengthPortably(view), expected) << text;
                }
}

TEST(TextEncodingTest, BytesAreDecodedOrRefused) {
    // clang-format off
    const struct { Bytes bytes; StringEncoding encoding; Text text; } cases[] = {
        {{}, utf8, ""},                               {{0x22, 0xFF, 0x22}, utf8, {}},
        {{0xEF, 0xBB, 0xBF, 0xC3, 0xA9}, utf8, "\uFEFFé"},
        {{0x00, 0x41, 0x7F}, ascii, std::string("\0A\x7F", 3)},          {{0x41, 0x80}, ascii, {}},
        {{0x41, 0x80, 0xE9, 0xFF}, isoLatin1, "A\u0080éÿ"},
        {{0xFE, 0xFF, 0x30, 0x42}, utf16, "あ"},      {{0xFF, 0xFE, 0x42, 0x30}, utf16, "あ"},
        {{0x42, 0x30}, utf16, "あ"},                  {{0xFF}, utf16, {}},
        {{0xFE, 0xFF, 0x30, 0x42}, utf16BE, "\uFEFFあ"},
        {{0x3D, 0xD8, 0x00, 0xDE, 0x41, 0x00}, utf16LE, "😀A"},
        {{0x30, 0x42, 0x30}, utf16BE, {}},            // amid a unit
        {{0x00, 0x41, 0xD8, 0x3D}, utf16BE, {}},      // amid a pair
        {{0xD8, 0x3D, 0x00, 0x41}, utf16BE, {}},      // high surrogate alone
        {{0xDE, 0x00, 0x00, 0x41}, utf16BE, {}},      // low surrogate alone
        {{0xD8, 0x3D, 0xD8, 0x3D}, utf16BE, {}},
        {{0x41}, windowsCP1252, {}},                  {{0x41, 0x00, 0x00, 0x00}, utf32LE, {}}};
    // clang-format on
    for (const auto& [bytes, encoding, text] : cases)
        EXPECT_EQ(decoded(bytes, encoding), text) << ::testing::PrintToString(bytes);
}

TEST(TextEncodingTest, TheEncodingOfAJSONTextIsToldFromItsFirstBytes) {
    // The first and last characters of each length in each encoding.
    const std::string every = "\"\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF\"";
    // clang-format off
    const std::pair<const char*, StringEncoding> encodings[] = {
        {"UTF-8", utf8}, {"UTF-16BE", utf16BE}, {"UTF-16LE", utf16LE}, {"UTF-32BE", utf32BE},
        {"UTF-32LE", utf32LE}};
    const Bytes faults[] = {
        {0x22, 0xFF, 0x22}, {0xEF, 0xBB}, {0x37, 0x00, 0x37}, {0x00, 0x00, 0x00, 0x37, 0x00},
        {0x00, 0x00, 0xFE, 0xFF, 0x00, 0x00, 0xD8, 0x00},
        {0x00, 0x00, 0xFE, 0xFF, 0x00, 0x00, 0xDF, 0xFF},
        {0x00, 0x00, 0xFE, 0xFF, 0x00, 0x11, 0x00, 0x00}};
    // clang-format on
    for (const auto& [name, encoding] : encodings) {
        for (const std::string mark : {"", "\uFEFF"}) {
            for (const std::string& text : {std::string("7"), std::string("{}"), every}) {
                const std::string encoded = encodedText(mark + text, name);
                const Bytes bytes(encoded.begin(), encoded.end());
                const DetectedText detected = detectEncoding(bytes);
                EXPECT_EQ(detected.encoding, encoding) << name << text;
                EXPECT_EQ(detected.markSize, encodedText(mark, name).size()) << name << text;
                EXPECT_EQ(utf8FromDetected(bytes, detected), text) << name;
                for (std::size_t i = 0; i <= text.size(); ++i) {
                    if (i < text.size() && (text[i] & 0xC0) == 0x80) continue;  // amid a character
                    EXPECT_EQ(originalOffset(text, i, detected),
                              encodedText(mark + text.substr(0, i), name).size());
                }
            }
        }
    }
    EXPECT_EQ(utf8FromDetected({}, detectEncoding({})), "");
    for (const Bytes& bytes : faults) EXPECT_FALSE(utf8FromDetected(bytes, detectEncoding(bytes)));
}

}  // namespace
}  // namespace InkoraKit
