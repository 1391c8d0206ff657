#include <InkoraKit/platform/NumberFormatter.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

TEST(NumberFormatterTest, ReadsAnIntegerWhenItFitsAndHasNoPoint) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"255", 255},
        {"0", 0},
        {"-0", 0},
        {"007", 7},
        {"-5", -5},
        {" 12", 12},
        {"\t\u00a0 12", 12},
        {"1e3", 1000},
        {"1E3", 1000},
        {"10e-1", 1},
        {"9223372036854775807", 9223372036854775807},
        {"9223372036854775807e0", 9223372036854775807}};
    for (const auto& [text, value] : cases) {
        const auto number = NumberFormatter().numberFromString(text);
        ASSERT_TRUE(number) << text;
        EXPECT_STREQ(number->objCType(), "q") << text;
        EXPECT_EQ(number->integerValue(), value) << text;
    }
}

TEST(NumberFormatterTest, ReadsADoubleOtherwise) {
    for (const std::string& text : std::vector<std::string>{
             "9223372036854775808", "18446744073709551616", "12.5", ".5", "-.5", "12.", "12.0",
             "15e-1", "1e300", "1e-400", "1e-99999999999999999999",
             "0." + std::string(400, '0') + "1e+5"}) {
        const auto number = NumberFormatter().numberFromString(text);
        ASSERT_TRUE(number) << text;
        EXPECT_STREQ(number->objCType(), "d") << text;
        EXPECT_EQ(number->doubleValue(), std::strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(NumberFormatterTest, RefusesATextThatIsNotANumberToItsEnd) {
    for (const std::string text :
         {"", " ", "-", "--5", "+5", ".", "12 ", "12abc", "255#", "1,000", "1e", "\n12", "NaN",
          "inf", "∞", "0x10", "abc", "1e400", "-1e+99999999999999999999"}) {
        EXPECT_FALSE(NumberFormatter().numberFromString(text)) << text;
    }
    EXPECT_FALSE(NumberFormatter().numberFromString("1" + std::string(400, '0') + "e00"));
    EXPECT_FALSE(NumberFormatter().numberFromString({}));
}

}  // namespace
}  // namespace InkoraKit
