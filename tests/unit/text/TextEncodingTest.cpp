#include "platform/foundation/text/TextEncoding.h"

#include <gtest/gtest.h>

#include <algorithm>
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

std::size_t lengthByTable(const int* bytes, std::size_t size) {
    const auto lies = [](int byte, int low, int high) { return byte >= low && byte <= high; };
    std::size_t checked = 0;
    while (checked < size) {
        const int* next = bytes + checked;
        const auto row = std::find_if(std::begin(rows), std::end(rows), [&](const Row& candidate) {
            return lies(*next, candidate.first, candidate.firstEnd);
        });
        if (row == std::end(rows) || row->length > size - checked) break;
        if (row->length > 1 && !lies(next[1], row->second, row->secondEnd)) break;
        if (row->length > 2 && !lies(next[2], 0x80, 0xBF)) break;
        if (row->length > 3 && !lies(next[3], 0x80, 0xBF)) break;
        checked += row->length;
    }
    return checked;
}

// Puts the sequence into the text, whose other bytes are without fault, and asks both scanners.
void check(std::vector<char>& text, std::size_t position, const int* bytes, std::size_t size) {
    std::transform(bytes, bytes + size, text.begin() + static_cast<std::ptrdiff_t>(position),
                   [](int byte) { return static_cast<char>(byte); });
    const std::size_t checked = lengthByTable(bytes, size);
    const std::size_t expected = checked == size ? text.size() : position + checked;
    const std::string_view view(text.data(), text.size());
    if (wellFormedUtf8Length(view) != expected || wellFormedUtf8LengthPortably(view) != expected)
        FAIL() << "at " << position << " of " << text.size() << ": "
               << ::testing::PrintToString(std::vector<int>(bytes, bytes + size));
}

TEST(TextEncodingTest, Utf8IsWellFormedExactlyByTheTableForEveryThreeBytes) {
    std::vector<char> text(40, 'a');  // exact, so that a sanitizer sees what reads past the end
    std::size_t position = 0;
    // One ASCII byte stands for all: what follows it is judged as two bytes.
    for (int bytes[3] = {0x7F}; bytes[0] < 0x100; ++bytes[0])
        for (bytes[1] = 0; bytes[1] < 0x100; ++bytes[1])
            for (bytes[2] = 0; bytes[2] < 0x100; ++bytes[2]) {
                ASSERT_NO_FATAL_FAILURE(check(text, position, bytes, 3));
                std::fill_n(text.begin() + static_cast<std::ptrdiff_t>(position), 3, 'a');
                position = (position + 1) % 38;
            }
}

TEST(TextEncodingTest, Utf8IsJudgedAlikeWhereverItStandsAndWhateverStandsAround) {
    const Bytes firsts = {0x00, 0x7F, 0x80, 0xBF, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1,
                          0xEC, 0xED, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
    const Bytes seconds = {0x41, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC2};
    const Bytes others = {0x41, 0x80, 0xBF, 0xE3};
    for (const std::string filler : {"a", "é", "猫", "😀"})
        for (std::size_t position = 0; position < 36; ++position)
            for (const int tail : {0, 1, 9}) {
                std::string around(position % filler.size(), 'a');
                while (around.size() < position) around += filler;
                around += "aaaa";
                for (int i = 0; i < tail; ++i) around += filler;
                std::vector<char> text(around.begin(), around.end());
                for (const int first : firsts)
                    for (const int second : seconds)
                        for (const int third : others)
                            for (const int fourth : others) {
                                const int bytes[] = {first, second, third, fourth};
                                ASSERT_NO_FATAL_FAILURE(check(text, position, bytes, 4));
                            }
            }
}

TEST(TextEncodingTest, BytesAreDecodedOrRefused) {
    const struct {
        Bytes bytes;
        StringEncoding encoding;
        Text text;
    } cases[] = {
        {{}, utf8, ""},
        {{0xEF, 0xBB, 0xBF, 0xC3, 0xA9}, utf8, "\uFEFFé"},
        {{0x22, 0xFF, 0x22}, utf8, {}},
        {{0x00, 0x41, 0x7F}, ascii, std::string("\0A\x7F", 3)},
        {{0x41, 0x80}, ascii, {}},
        {{0x41, 0x80, 0xE9, 0xFF}, isoLatin1, "A\u0080éÿ"},
        {{0xFE, 0xFF, 0x30, 0x42}, utf16, "あ"},
        {{0xFF, 0xFE, 0x42, 0x30}, utf16, "あ"},
        {{0x42, 0x30}, utf16, "あ"},
        {{0xFF}, utf16, {}},
        {{0xFE, 0xFF, 0x30, 0x42}, utf16BE, "\uFEFFあ"},
        {{0x3D, 0xD8, 0x00, 0xDE, 0x41, 0x00}, utf16LE, "😀A"},
        {{0xDB, 0xFF, 0xDF, 0xFF, 0xD7, 0xFF, 0xE0, 0x00},
         utf16BE,
         "\U0010FFFF\xED\x9F\xBF\xEE\x80\x80"},
        {{0x00, 0x7F, 0x07, 0xFF, 0x08, 0x00, 0xFF, 0xFF, 0xD8, 0x00, 0xDC, 0x00},
         utf16BE,
         "\x7F\u07FF\u0800\uFFFF\U00010000"},
        {{0x30, 0x42, 0x30}, utf16BE, {}},        // amid a unit
        {{0x00, 0x41, 0xD8, 0x3D}, utf16BE, {}},  // amid a pair
        {{0xD8, 0x3D, 0x00, 0x41}, utf16BE, {}},  // high surrogate alone
        {{0xDE, 0x00, 0x00, 0x41}, utf16BE, {}},  // low surrogate alone
        {{0xDE, 0x00, 0xD8, 0x3D}, utf16BE, {}},  // the wrong way round
        {{0xD8, 0x3D, 0xD8, 0x3D}, utf16BE, {}},
        {{0x41}, windowsCP1252, {}},
        {{0x41, 0x00, 0x00, 0x00}, utf32, {}},
        {{0x41, 0x00, 0x00, 0x00}, utf32LE, {}},
    };
    for (const auto& [bytes, encoding, text] : cases)
        EXPECT_EQ(decoded(bytes, encoding), text) << ::testing::PrintToString(bytes);
}

TEST(TextEncodingTest, TheEncodingOfAJSONTextIsToldFromItsFirstBytes) {
    const struct {
        Bytes bytes;
        StringEncoding encoding;
        std::size_t markSize;
        Text text;
    } cases[] = {
        {{}, utf8, 0, ""},
        {{0x37}, utf8, 0, "7"},
        {{0x7B, 0x7D}, utf8, 0, "{}"},
        {{0xEF, 0xBB, 0xBF, 0x7B, 0x7D}, utf8, 3, "{}"},
        {{0x22, 0xFF, 0x22}, utf8, 0, {}},
        {{0xEF, 0xBB}, utf8, 0, {}},
        {{0x00, 0x7B, 0x00, 0x7D}, utf16BE, 0, "{}"},
        {{0x7B, 0x00, 0x7D, 0x00}, utf16LE, 0, "{}"},
        {{0x00, 0x37}, utf16BE, 0, "7"},
        {{0x37, 0x00}, utf16LE, 0, "7"},
        {{0x37, 0x00, 0x37}, utf16LE, 0, {}},
        {{0xFE, 0xFF, 0x00, 0x37}, utf16BE, 2, "7"},
        {{0xFF, 0xFE, 0x22, 0x00, 0x42, 0x30, 0x22, 0x00}, utf16LE, 2, "\"あ\""},
        {{0xFF, 0xFE}, utf16LE, 2, ""},
        {{0x00, 0x00, 0x00, 0x37}, utf32BE, 0, "7"},
        {{0x7B, 0x00, 0x00, 0x00, 0x7D, 0x00, 0x00, 0x00}, utf32LE, 0, "{}"},
        {{0x00, 0x00, 0xFE, 0xFF, 0x00, 0x01, 0xF6, 0x00}, utf32BE, 4, "😀"},
        {{0xFF, 0xFE, 0x00, 0x00, 0x37, 0x00, 0x00, 0x00}, utf32LE, 4, "7"},
        {{0x00, 0x00, 0x00, 0x37, 0x00}, utf32BE, 0, {}},
        {{0x00, 0x00, 0xFE, 0xFF, 0x00, 0x00, 0xD8, 0x00}, utf32BE, 4, {}},
        {{0x00, 0x00, 0xFE, 0xFF, 0x00, 0x11, 0x00, 0x00}, utf32BE, 4, {}},
        {{0xFF, 0xFE, 0x00, 0x00, 0xFF, 0xFF, 0x10, 0x00}, utf32LE, 4, "\U0010FFFF"},
    };
    for (const auto& [bytes, encoding, markSize, text] : cases) {
        const DetectedText detected = detectEncoding(bytes);
        EXPECT_EQ(detected.encoding, encoding) << ::testing::PrintToString(bytes);
        EXPECT_EQ(detected.markSize, markSize) << ::testing::PrintToString(bytes);
        EXPECT_EQ(utf8FromDetected(bytes, detected), text) << ::testing::PrintToString(bytes);
    }
}

TEST(TextEncodingTest, AnErrorIsPlacedInTheBytesThatCame) {
    const std::string text = "aé猫😀b";
    const std::size_t starts[] = {0, 1, 3, 6, 10, 11};  // of each character, and the end
    const std::pair<DetectedText, std::vector<std::size_t>> cases[] = {
        {{utf8, 3}, {3, 4, 6, 9, 13, 14}},
        {{utf16BE, 0}, {0, 2, 4, 6, 10, 12}},
        {{utf16LE, 2}, {2, 4, 6, 8, 12, 14}},
        {{utf32BE, 0}, {0, 4, 8, 12, 16, 20}},
        {{utf32LE, 4}, {4, 8, 12, 16, 20, 24}}};
    for (const auto& [detected, expected] : cases)
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(originalOffset(text, starts[i], detected), expected[i]);
}

}  // namespace
}  // namespace InkoraKit
