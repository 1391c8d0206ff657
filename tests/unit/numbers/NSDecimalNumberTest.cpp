#include <InkoraKit/platform/NSDecimalNumber.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

const auto decimal = [](const std::string& text) { return NSDecimalNumber(text); };

TEST(NSDecimalNumberTest, ReadsTheLongestNumeralAtTheStartAsFarAsThereIsRoom) {
    const std::string zeros(127, '0');
    const std::string largest = "34028236692093846346337460743176821145";
    const std::string digits = "123456789012345678901234567890123456789";
    const std::string nines(39, '9');
    // clang-format off
    const std::pair<std::string, std::vector<std::string>> readings[] = {
        {"12", {"12", " \t\n12", "00012", "+12", "12.", "12abc", "12,5", "12e", "12e-x"}},
        {"1000", {"1e3", "1E+3", "1000.000", "10000e-1"}},   {"0.5", {".5", "5e-1"}},
        {"-12.5", {"-12.50", "-12.5.5"}},   {"3.14", {"3.14notanumber"}},   {"0.0000001", {"1e-7"}},
        {"0", {"0", "-0", "-0.0e1", "0e5", "0x10", "e", "en", "e5"}},
        {"NaN", {"", " ", "-", ".", "--1", "-e5", "x1", "abc", "nan", "inf", "٣",
                 "0." + zeros + "1e255", "1e128", "1e-129", "1e200", "1e-200", "0e200",
                 "1e99999999999999999999"}},
        {"1" + zeros, {"1e127"}},            {"10" + zeros, {"10e127", "1.0e128"}},
        {"0." + zeros + "1", {"1e-128"}},    {"1" + zeros.substr(1), {"0." + zeros + "1e254"}},
        {"100000000000000000000000007", {"100000000000000000000000007"}},
        {largest + "5", {largest + "5"}},    {largest + "0", {largest + "6", largest + "6.5"}},
        {nines.substr(1) + "0", {nines + ".5"}},
        {digits + "000", {digits + "099"}},  {"1." + digits.substr(1), {"1." + digits.substr(1) + "099"}}};
    // clang-format on
    for (const auto& [value, texts] : readings) {
        for (const std::string& text : texts) {
            EXPECT_EQ(decimal(text).stringValue(), value) << text;
            EXPECT_EQ(decimal(text).isNaN(), value == "NaN") << text;
            EXPECT_EQ(decimal(text), decimal(value)) << text;
            EXPECT_EQ(decimal(text).hash(), decimal(value).hash()) << text;
        }
    }
}

TEST(NSDecimalNumberTest, ConvertsToTheExactIntegerPart) {
    // clang-format off
    const std::pair<const char*, std::int64_t> cases[] = {
        {"-12.99", -12},                {"0.9", 0},                  {"1e-128", 0},
        {"18446744073709551615", -1},   {"1e127", 0},                {"x", 0},
        {"-18446744073709551617", -1},  {"18446744073709551616.5", 0},
        {"348188955398766593", 348188955398766593},
        {"100000000000000000000", 7766279631452241920}};
    // clang-format on
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(decimal(text).integerValue(), value) << text;
        EXPECT_EQ(decimal(text).unsignedIntegerValue(), static_cast<std::uint64_t>(value)) << text;
    }
}

TEST(NSDecimalNumberTest, ConvertsToTheNearestDouble) {
    for (const std::string text : {"0.1", "-9348.31", "1.7976931348623157e126", "9007199254740993"})
        EXPECT_EQ(decimal(text).doubleValue(), std::stod(text));
    EXPECT_TRUE(std::isnan(NSDecimalNumber::notANumber().doubleValue()));
}

TEST(NSDecimalNumberTest, ComparesExactly) {
    // In ascending order.
    // clang-format off
    const std::vector<NSDecimalNumber> numbers = {
        decimal("-1e127"), decimal("-2"), decimal("-1e-128"), decimal("NaN"), 0,
        decimal("1e-128"), decimal("0.3"), decimal("9007199254740992.9"), 9007199254740993,
        std::numeric_limits<std::uint64_t>::max(),
        decimal("340282366920938463463374607431768211455"),
        decimal("35000000000000000000000000000000000001e1"), decimal("1e127")};
    // clang-format on
    for (const auto& left : numbers) {
        for (const auto& right : numbers) {
            const int wanted = (&left > &right) - (&left < &right);
            EXPECT_EQ(static_cast<int>(left.compare(right)), wanted)
                << left.stringValue() << " and " << right.stringValue();
            EXPECT_EQ(left == right, &left == &right);
        }
    }
}

}  // namespace
}  // namespace InkoraKit
