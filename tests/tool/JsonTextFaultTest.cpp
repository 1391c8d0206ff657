#include "json/JsonTextFault.h"

#include <InkoraKit/platform/JSONSerialization.h>

#include <gtest/gtest.h>

#include <string>

namespace InkoraTool {
namespace {

using namespace InkoraKit;

std::string faultOf(const std::string& text) {
    try {
        JSONSerialization::jsonObject(text, JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError& error) {
        return jsonTextFault("f", text, error);
    }
    return "no fault";
}

std::string times(std::size_t count, const std::string& text) {
    return count == 0 ? "" : text + times(count - 1, text);
}

TEST(JsonTextFault, ShowsTheLineAndThePlaceInIt) {
    // clang-format off
    const struct { std::string text, place, line; std::size_t caret; } cases[] = {
        {"01", "line 1, column 2 (characters from 1; byte 1 from 0)", "01", 1},
        {"{\n \"a\": ?\n}", "line 2, column 7 (characters from 1; byte 8 from 0)", " \"a\": ?", 6},
        {"[1]\r\n\r\n?", "line 3, column 1 (characters from 1; byte 7 from 0)", "?", 0},
        {" \n ", "line 2, column 2 (characters from 1; byte 3 from 0)", " ", 1},
        {"{\"ü€🖊\":?}", "line 1, column 8 (characters from 1; byte 13 from 0)", "{\"ü€🖊\":?}", 7},
        {"\xEF\xBB\xBF[\"ü\",?]", "line 1, column 6 (characters from 1; byte 9 from 0)",
         "[\"ü\",?]", 5},
        {"[\x1b\x7f\xC2\x9B]", "line 1, column 2 (characters from 1; byte 1 from 0)", "[␛␡\uFFFD]", 1},
        {"[\"\xFF\xC3\"]", "line 1, column 3 (characters from 1; byte 2 from 0)",
         "[\"\uFFFD\uFFFD\"]", 2},
        {"[\"b\nc\"]", "line 1, column 4 (characters from 1; byte 3 from 0)", "[\"b", 3},
        {std::string("?\0", 2) + "a", "line 1, column 1 (characters from 1; byte 0 from 0)", "?␀a", 0},
        // Only what is near of a long line.
        {"[" + times(39, " ") + "?" + times(39, "€"),
         "line 1, column 41 (characters from 1; byte 40 from 0)",
         "[" + times(39, " ") + "?" + times(39, "€"), 40},
        {"[" + times(99, "\"€\",") + "?" + times(99, "€"),
         "line 1, column 398 (characters from 1; byte 595 from 0)",
         "…" + times(10, "\"€\",") + "?" + times(39, "€") + "…", 41}};
    // clang-format on
    for (const auto& [text, place, line, caret] : cases) {
        const std::string fault = faultOf(text);
        EXPECT_EQ(fault.substr(0, fault.find("): ") + 1), "f, " + place);
        EXPECT_EQ(fault.substr(fault.find('\n')),
                  "\n    " + line + "\n    " + std::string(caret, ' ') + '^');
        EXPECT_EQ(fault.find("around line"), std::string::npos) << fault;
    }
}

TEST(JsonTextFault, HasNoLineToShow) {
    EXPECT_EQ(faultOf(""), "f: Unable to parse empty data");
    EXPECT_EQ(faultOf({"\xFF\xFE[\0\xE9\0]\0", 8}),
              "f: Invalid value around line 1, column 1 (column from 0; byte 4 from 0; not shown, "
              "since the text is in UTF-16 or UTF-32)");
}

}  // namespace
}  // namespace InkoraTool
