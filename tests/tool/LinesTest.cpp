#include "JsonLine.h"
#include "doctor/Report.h"
#include "pen/JsonFormat.h"
#include "pen/TextFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

namespace InkoraTool {
namespace {

const std::string replaced = "\xEF\xBF\xBD";

TEST(JsonString, OfANameFromTheAir) {
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},                      {"\"quoted\" \\ back/slash", R"(\"quoted\" \\ back/slash)"},
        {"InkoraPen", "InkoraPen"},    {"line\nend\ttab\x1b", R"(line\u000aend\u0009tab\u001b)"},
        {"Hügel € 🖊", "Hügel € 🖊"},  {std::string("zero\0byte", 9), R"(zero\u0000byte)"},
        {"\x7f\xC2\x9B", R"(\u007f\u009b)"},       {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        // Cut short, overlong, a surrogate, above the last code point, no lead byte at all.
        {"\xE2\x82", replaced + replaced},           {"\xC0\xAF", replaced + replaced},
        {"\x80 \xFF", replaced + " " + replaced},    {"\xC3(", replaced + "("},
        {"\xED\xA0\x80", replaced + replaced + replaced},
        {"\xF4\x90\x80\x80", replaced + replaced + replaced + replaced}};
    // clang-format on
    for (const auto& [name, json] : cases) EXPECT_EQ(jsonString(name), '"' + json + '"');
}

TEST(DoctorReport, WrapsWordsAndLeavesCommandsWhole) {
    std::string words;
    for (int i = 0; i < 30; ++i) words += "wörter ";
    const std::string command = "mend " + std::string(90, 'x');
    const std::string text =
        textOf({"name", Finding::State::warning, words + words, command, "Advice at the end"});
    EXPECT_EQ(text.find("warning  name             wörter wörter"), 0U);
    EXPECT_EQ(text.find("\n         $ " + command), text.size() - command.size() - 12);
    EXPECT_NE(text.find("wörter . Advice"), std::string::npos);
    std::istringstream lines(text.substr(0, text.find('$')));
    for (std::string line; std::getline(lines, line);) {
        const auto bytesBeyond = std::ranges::count(line, '\xB6');  // ö has two
        EXPECT_LE(static_cast<std::ptrdiff_t>(line.size()) - bytesBeyond, 80) << line;
    }
}

TEST(JsonLine, HoldsNumbersThatReadBack) {
    EXPECT_EQ(JsonLine().text(), "{}");
    EXPECT_EQ(JsonLine()
                  .add("third", 1 / 3.0)
                  .add("one", 1.0)
                  .add("least", std::numeric_limits<std::int64_t>::min())
                  .add("none", std::numeric_limits<double>::quiet_NaN())
                  .text(),
              R"({"third":0.3333333333333333,"one":1,"least":-9223372036854775808,"none":null})");
}

TEST(TextFormat, DoesNotLetANameMoveTheCursor) {
    EXPECT_EQ(TextFormat().connected("Inkora\x1b[2JPen\r\n", "ID"),
              "connected   Inkora" + replaced + "[2JPen" + replaced + replaced + " ID");
}

TEST(TextFormat, ShowsTheNearestColourThatHasAHexadecimalForm) {
    const TextFormat format;
    EXPECT_EQ(format.colour({1, 0.5, 0, 1}), "colour      #FF8000  1.000  0.500  0.000");
    EXPECT_EQ(format.colour({1.25, -0.5, 0.001, 1}), "colour      #FF0000  1.250  -0.500  0.001");
    EXPECT_EQ(TextFormat(TerminalColours::direct).colour({0, 0, 1, 1}),
              "colour      \x1b[48;2;0;0;255m      \x1b[0m #0000FF  0.000  0.000  1.000");
}

TEST(Formats, SayWhenThereIsNoAnswer) {
    EXPECT_EQ(TextFormat().info({}),
              "name        not available\nidentifier  not available\n"
              "battery     not available\nproximity   not available");
    EXPECT_EQ(JsonFormat().info({}),
              "{\"name\":null,\"identifier\":null,\"batteryPercent\":null,\"proximityDBm\":null}");
}

}  // namespace
}  // namespace InkoraTool
