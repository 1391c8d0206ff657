#include <InkoraKit/platform/NumberFormatter.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

using Texts = std::vector<std::string>;

/// The number's type and value.
std::string reading(const std::string& text) {
    const auto number = NumberFormatter().numberFromString(text);
    return number ? number->objCType() + (" " + number->stringValue()) : "none";
}

TEST(NumberFormatterTest, ReadsAnIntegerWhenItFitsAndHasNoPoint) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"255", "255"},  {"0", "0"},             {"-0", "0"},      {"007", "7"},     {"-5", "-5"},
        {" 12", "12"},   {"\t\u00a0 12", "12"},  {"1e3", "1000"},  {"1E3", "1000"},  {"10e-1", "1"},
        {"9223372036854775807", "9223372036854775807"},
        {"9223372036854775807e0", "9223372036854775807"}};
    // clang-format on
    for (const auto& [text, value] : cases) EXPECT_EQ(reading(text), std::string("q ") + value);
}

TEST(NumberFormatterTest, ReadsADoubleOtherwise) {
    for (const std::string& text :
         Texts{"9223372036854775808", "18446744073709551616", "12.5", ".5", "-.5", "12.", "12.0",
               "15e-1", "1e300", "1e-400", "1e-99999999999999999999",
               "0." + std::string(400, '0') + "1e+5"})
        EXPECT_EQ(reading(text), "d " + NSNumber(std::strtod(text.c_str(), nullptr)).stringValue());
}

TEST(NumberFormatterTest, RefusesATextThatIsNotANumberToItsEnd) {
    // clang-format off
    for (const std::string& text : Texts{
             "", " ", "-", "--5", "+5", ".", "12 ", "12abc", "255#", "1,000", "1e", "\n12", "NaN",
             "inf", "∞", "0x10", "abc", "1e400", "-1e+99999999999999999999",
             "1" + std::string(400, '0') + "e00"})
        EXPECT_EQ(reading(text), "none") << text;
    // clang-format on
    EXPECT_FALSE(NumberFormatter().numberFromString({}));
}

}  // namespace
}  // namespace InkoraKit
