#include <InkoraKit/platform/NSNull.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/Printing.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Pen {

enum class Mode { capturing };
std::string printed(Mode) {
    return "capturing";
}

struct Silent {};

}  // namespace Pen

namespace InkoraKit {
namespace {

static_assert(isPrintable<std::vector<std::optional<Pen::Mode>>>);
static_assert(!isPrintable<std::vector<Pen::Silent>>);
static_assert(!isPrintable<int*>);

TEST(PrintingTest, FloatingPointAlwaysShowsThatItIs) {
    EXPECT_EQ(printed(128 / 255.0), "0.5019607843137255");
    for (const char* text :
         {"1.0", "-0.0", "0.0001", "1e-05", "9007199254740992.0", "9.007199254740994e+15", "nan"})
        EXPECT_EQ(printed(std::strtod(text, nullptr)), text);
    for (const char* text : {"0.1", "16777216.0", "1.6777218e+07"})
        EXPECT_EQ(printed(std::strtof(text, nullptr)), text);
}

TEST(PrintingTest, OtherValuesPrintAsTheirTextAndWhatTheyHold) {
    using Texts = std::vector<std::string>;
    using Bytes = std::vector<std::uint8_t>;
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {printed("abc"), "abc"},             {printed(std::string("abc")), "abc"},
        {printed(true), "true"},             {printed(std::uint8_t{65}), "65"},
        {printed(NSNull()), "<null>"},       {printed(INT64_MIN), "-9223372036854775808"},
        {printed(NSNumber(true)), "1"},      {printed(NSNumber(-58)), "-58"},
        {printed(Bytes{}), "[]"},            {printed(Bytes{1, 255, 128, 0}), "[1, 255, 128, 0]"},
        {printed(std::optional(5)), "Optional(5)"},    {printed(std::optional<int>()), "nil"},
        {printed(std::optional(NSNumber(1.5))), "Optional(1.5)"},
        {printed(std::optional(std::string("abc"))), R"(Optional("abc"))"},
        {printed(Texts{"abc", ""}), R"(["abc", ""])"},
        {printed(std::vector<bool>{true, false}), "[true, false]"},
        {printed(std::vector{Pen::Mode::capturing}), "[capturing]"},
        {printed(std::vector{std::optional(Texts{"a"}), {}}), R"([Optional(["a"]), nil])"}};
    // clang-format on
    for (const auto& [text, wanted] : cases) EXPECT_EQ(text, wanted);
}

}  // namespace
}  // namespace InkoraKit
