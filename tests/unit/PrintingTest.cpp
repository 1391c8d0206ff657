#include <InkoraKit/platform/NSNull.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/Printing.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
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
    for (const char* text : {"1.0", "0.0", "-0.0", "0.00392156862745098", "0.30000000000000004",
                             "0.0001", "1e-05", "9007199254740992.0", "9.007199254740994e+15",
                             "1e+16", "1.5e+300", "inf", "-inf", "nan"}) {
        EXPECT_EQ(printed(std::strtod(text, nullptr)), text);
    }
    for (const char* text : {"0.1", "16777216.0", "1.6777218e+07"}) {
        EXPECT_EQ(printed(std::strtof(text, nullptr)), text);
    }
}

TEST(PrintingTest, ScalarsPrintAsTheirText) {
    EXPECT_EQ(printed("abc"), "abc");
    EXPECT_EQ(printed(std::string("abc")), "abc");
    EXPECT_EQ(printed(true), "true");
    EXPECT_EQ(printed(std::uint8_t{65}), "65");
    EXPECT_EQ(printed(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(printed(NSNumber(-58)), "-58");
    EXPECT_EQ(printed(NSNumber(true)), "1");
    EXPECT_EQ(printed(NSNull()), "<null>");
}

TEST(PrintingTest, ListsAndOptionalsPrintWhatTheyHold) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(printed(std::vector<std::uint8_t>{1, 255, 128, 0}), "[1, 255, 128, 0]");
    EXPECT_EQ(printed(std::vector<std::uint8_t>{}), "[]");
    EXPECT_EQ(printed(std::vector<bool>{true, false}), "[true, false]");
    EXPECT_EQ(printed(Texts{"abc", ""}), R"(["abc", ""])");
    EXPECT_EQ(printed(std::optional(5)), "Optional(5)");
    EXPECT_EQ(printed(std::optional(std::string("abc"))), R"(Optional("abc"))");
    EXPECT_EQ(printed(std::optional<int>()), "nil");
    EXPECT_EQ(printed(std::vector<std::optional<Texts>>{Texts{"a"}, std::nullopt}),
              R"([Optional(["a"]), nil])");
    EXPECT_EQ(printed(std::vector{Pen::Mode::capturing}), "[capturing]");
    EXPECT_EQ(printed(std::optional(NSNumber(1.5))), "Optional(1.5)");
}

}  // namespace
}  // namespace InkoraKit
