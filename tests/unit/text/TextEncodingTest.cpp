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

TEST(TextEncodingTest, Utf8IsWellFormedByTheTableOfUnicode) {
    // Table 3-7, row by row: the ends of the ranges of the first and second byte, and what is next.
    // clang-format off
    const std::pair<std::string, std::size_t> sequences[] = {
        {"\x7F", 1}, {"\x80\x80", 0}, {"\xC1\xBF", 0}, {"\xC2\x80", 2}, {"\xDF\xBF", 2}, {"\xC2\x7F", 0},
        {"\xDF\xC0", 0}, {"\xE0\x9F\xBF", 0}, {"\xE0\xA0\x80", 3}, {"\xEC\xBF\xBF", 3}, {"\xED\x9F\xBF", 3},
        {"\xED\xA0\x80", 0}, {"\xED\xBF\xBF", 0}, {"\xEE\x80\x80", 3}, {"\xEF\xBF\xBF", 3}, {"\xE1\x7F\x80", 0},
        {"\xE1\xC0\x80", 0}, {"\xE1\x80\x7F", 0}, {"\xE1\x80\xC0", 0}, {"\xF0\x8F\xBF\xBF", 0},
        {"\xF0\x90\x80\x80", 4}, {"\xF3\xBF\xBF\xBF", 4}, {"\xF4\x8F\xBF\xBF", 4}, {"\xF4\x90\x80\x80", 0},
        {"\xF1\xC0\x80\x80", 0}, {"\xF1\x80\xC0\x80", 0}, {"\xF1\x80\x80\xC0", 0}, {"\xF1\x80\x7F\x80", 0},
        {"\xF1\x80\x80\x7F", 0}, {"\xF5\x80\x80\x80", 0}, {"\xF8\x88\x80\x80", 0}, {"\xFF", 0}};
    // clang-format on
    for (const auto& [sequence, length] : sequences) {
        for (std::size_t i = 0; i <= sequence.size(); ++i) {
            const std::size_t expected = i < sequence.size() ? 0 : length;
            EXPECT_EQ(wellFormedUtf8LengthPortably(sequence.substr(0, i)), expected) << sequence;
        }
    }
}

TEST(TextEncodingTest, Utf8IsCheckedAlikeInBlocksWhereverItStands) {
    constexpr std::array<char, 4> others = {'A', '\x80', '\xBF', '\xE3'};
    const std::string fillers[] = {"a", "é", "猫", "😀"};
    for (std::uint32_t round = 0; round < 0x100000; ++round) {
        // Any two bytes and then two others, in a text as long as two to three of the blocks that
        // are looked at as a whole, more or less.
        const std::string& filler = fillers[round % 7 % 4];
        std::string text(round % 3, 'a');
        while (text.size() < round % 37) text += filler;
        text += {static_cast<char>(round >> 12), static_cast<char>(round >> 4),
                 others[round >> 2 & 3], others[round & 3]};
        for (std::size_t i = 0; i < round % 5 * 3; ++i) text += filler;
        const std::vector<char> exact(text.begin(), text.end());  // nothing behind
        const std::string_view view(exact.data(), exact.size());
        ASSERT_EQ(wellFormedUtf8Length(view), wellFormedUtf8LengthPortably(view)) << text;
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
