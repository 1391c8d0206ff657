#include <InkoraKit/platform/NSNumber.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

constexpr auto nan = std::numeric_limits<double>::quiet_NaN();
constexpr auto inf = std::numeric_limits<double>::infinity();
constexpr auto int64Max = std::numeric_limits<std::int64_t>::max();
constexpr auto int64Min = std::numeric_limits<std::int64_t>::min();
constexpr auto uint64Max = std::numeric_limits<std::uint64_t>::max();

NSNumber decimal(const char* text) {
    return NSDecimalNumber(text);
}

static_assert(std::is_trivially_copyable_v<NSNumber> && sizeof(NSNumber) <= 32);
static_assert(!std::is_convertible_v<const char*, NSNumber>);
static_assert(!std::is_convertible_v<std::nullptr_t, NSNumber>);

TEST(NSNumberTest, RemembersWhatItWasMadeFrom) {
    const std::pair<std::string, std::vector<NSNumber>> cases[] = {
        {"B", {true, false}},
        {"c", {static_cast<signed char>(1)}},
        {"s", {std::uint8_t{127}, short{1}}},
        {"i", {std::uint16_t{1}, 1}},
        {"q", {1u, 1L, 1LL, 1UL, std::uint64_t{int64Max}}},
        {"Q", {std::uint64_t{int64Max} + 1}},
        {"f", {1.0f}},
        {"d", {1.0, decimal("1")}}};
    for (const auto& [code, numbers] : cases) {
        for (const NSNumber& number : numbers) {
            EXPECT_EQ(number.objCType(), code) << number.stringValue();
            EXPECT_EQ(number.isBool(), code == "B") << number.stringValue();
        }
    }
}

TEST(NSNumberTest, ConvertsToIntegersOfEveryWidth) {
    const struct {
        NSNumber number;
        std::int64_t int64;
        std::int32_t int32;
        std::int16_t int16;
        std::int8_t int8;
        std::uint8_t uint8;
        std::uint16_t uint16;
        std::uint32_t uint32;
        std::uint64_t uint64;
    } cases[] = {
        {true, 1, 1, 1, 1, 1, 1, 1, 1},
        {300, 300, 300, 300, 44, 44, 300, 300, 300},
        {-1, -1, -1, -1, -1, 255, 65535, 4294967295, uint64Max},
        {uint64Max, -1, -1, -1, -1, 255, 65535, 4294967295, uint64Max},
        {300.7, 300, 300, 300, 44, 44, 300, 300, 300},
        {-300.7, -300, -300, -300, -44, 212, 65236, 4294966996, 18446744073709551316u},
        {255.9f, 255, 255, 255, -1, 255, 255, 255, 255},
        {-0.5, 0, 0, 0, 0, 0, 0, 0, 0},
        {1e10, 10000000000, 1410065408, -7168, 0, 0, 58368, 1410065408, 10000000000},
        {1e19, int64Max, -1, -1, -1, 255, 65535, 4294967295, 10000000000000000000u},
        {1e21, int64Max, -1, -1, -1, 255, 65535, 4294967295, uint64Max},
        {-1e21, int64Min, 0, 0, 0, 0, 0, 0, std::uint64_t{1} << 63},
        {0x1p63, int64Max, -1, -1, -1, 255, 65535, 4294967295, std::uint64_t{1} << 63},
        {-inf, int64Min, 0, 0, 0, 0, 0, 0, std::uint64_t{1} << 63},
        {nan, 0, 0, 0, 0, 0, 0, 0, 0},
        {decimal("128"), 128, 128, 128, -128, 128, 128, 128, 128},
        {decimal("-129.9"), -129, -129, -129, 127, 127, 65407, 4294967167, uint64Max - 128},
        {decimal("18446744073709551615"), -1, -1, -1, -1, 255, 65535, 4294967295, uint64Max},
        {decimal("x"), 0, 0, 0, 0, 0, 0, 0, 0}};
    for (const auto& wanted : cases) {
        const NSNumber& number = wanted.number;
        SCOPED_TRACE(number.stringValue());
        EXPECT_EQ(number.integerValue(), wanted.int64);
        EXPECT_EQ(number.longLongValue(), wanted.int64);
        EXPECT_EQ(number.intValue(), wanted.int32);
        EXPECT_EQ(number.shortValue(), wanted.int16);
        EXPECT_EQ(number.charValue(), wanted.int8);
        EXPECT_EQ(number.unsignedCharValue(), wanted.uint8);
        EXPECT_EQ(number.unsignedShortValue(), wanted.uint16);
        EXPECT_EQ(number.unsignedIntValue(), wanted.uint32);
        EXPECT_EQ(number.unsignedIntegerValue(), wanted.uint64);
        EXPECT_EQ(number.unsignedLongLongValue(), wanted.uint64);
    }
}

TEST(NSNumberTest, ConvertsToTruthAndFloatingPoint) {
    for (const NSNumber& number : {NSNumber(0.5), NSNumber(-1), NSNumber(nan), NSNumber(uint64Max),
                                   NSNumber(1e-45f), decimal("0.1"), decimal("x")}) {
        EXPECT_TRUE(number.boolValue()) << number.stringValue();
    }
    for (const NSNumber& number : {NSNumber(), NSNumber(false), NSNumber(-0.0), decimal("0.0")}) {
        EXPECT_FALSE(number.boolValue()) << number.stringValue();
    }

    EXPECT_EQ(NSNumber(uint64Max).doubleValue(), 18446744073709551616.0);
    EXPECT_EQ(NSNumber(uint64Max).floatValue(), 18446744073709551616.0f);
    EXPECT_EQ(NSNumber(0.1f).doubleValue(), 0.10000000149011612);
    EXPECT_EQ(decimal("0.1").doubleValue(), 0.1);
    EXPECT_EQ(decimal("0.1").floatValue(), 0.1f);
    EXPECT_EQ(NSNumber(16777217).floatValue(), 16777216.0f);
    EXPECT_EQ(NSNumber(-1e300).floatValue(), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSNumber(0x1.fffffe8p127).floatValue(), std::numeric_limits<float>::max());
    EXPECT_EQ(NSNumber(0x1.ffffffp127).floatValue(), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(NSNumber(nan).floatValue()));
}

TEST(NSNumberTest, ConvertsToDecimal) {
    EXPECT_EQ(NSNumber(true).decimalValue(), 1);
    EXPECT_EQ(NSNumber(int64Min).decimalValue(), int64Min);
    EXPECT_EQ(NSNumber(uint64Max).decimalValue(), uint64Max);
    EXPECT_EQ(NSNumber(0.1f).decimalValue(), NSDecimalNumber("0.1"));
    EXPECT_EQ(NSNumber(-1e21).decimalValue(), NSDecimalNumber("-1e21"));
    for (const double value : {1e-300, -inf, nan}) {
        EXPECT_TRUE(NSNumber(value).decimalValue().isNaN());
    }
}

TEST(NSNumberTest, HasTheShortestTextThatReadsBack) {
    EXPECT_EQ(NSNumber(true).stringValue(), "1");
    EXPECT_EQ(NSNumber(int64Min).stringValue(), "-9223372036854775808");
    EXPECT_EQ(NSNumber(uint64Max).stringValue(), "18446744073709551615");
    EXPECT_EQ(decimal("12.50").stringValue(), "12.5");
    EXPECT_EQ(NSNumber(-nan).stringValue(), "nan");
    for (const char* text : {"1.5",
                             "0.1",
                             "3",
                             "-0",
                             "0.3333333333333333",
                             "0.30000000000000004",
                             "9348.31",
                             "1000000000000000",
                             "9999999999999998",
                             "1e+16",
                             "1e+21",
                             "0.0001",
                             "9.999999999999999e-05",
                             "1e-05",
                             "1e-07",
                             "5e-324",
                             "-1.7976931348623157e+308",
                             "nan",
                             "inf",
                             "-inf"}) {
        EXPECT_EQ(NSNumber(std::strtod(text, nullptr)).stringValue(), text);
    }
    for (const char* text : {"0.1", "0.0001", "3", "9999999", "1e+07", "1.6777216e+07",
                             "3.4028235e+38", "nan", "-inf"}) {
        EXPECT_EQ(NSNumber(std::strtof(text, nullptr)).stringValue(), text);
    }
}

TEST(NSNumberTest, ComparesExactlyAcrossKinds) {
    // Ascending rows of equal numbers.
    const std::vector<std::vector<NSNumber>> rows = {{-inf},
                                                     {int64Min, -0x1p63},
                                                     {-1.5},
                                                     {-1, -1.0f, decimal("-1")},
                                                     {nan, -nan, std::nanf(""), decimal("x")},
                                                     {false, 0, 0u, -0.0, 0.0, decimal("0")},
                                                     {0.1, decimal("0.1")},
                                                     {0.1f},
                                                     {true, 1, std::int8_t{1}, 1.0, decimal("1")},
                                                     {1.1},
                                                     {9007199254740992.0},
                                                     {9007199254740993},
                                                     {int64Max},
                                                     {0x1p63, std::uint64_t{1} << 63},
                                                     {uint64Max, decimal("18446744073709551615")},
                                                     {1e300},
                                                     {inf}};
    for (const auto& leftRow : rows) {
        for (const auto& rightRow : rows) {
            const int wanted = (&leftRow > &rightRow) - (&leftRow < &rightRow);
            for (const NSNumber& left : leftRow) {
                for (const NSNumber& right : rightRow) {
                    SCOPED_TRACE(left.stringValue() + " and " + right.stringValue());
                    EXPECT_EQ(static_cast<int>(left.compare(right)), wanted);
                    EXPECT_EQ(left.isEqual(right), wanted == 0);
                    EXPECT_TRUE(wanted != 0 || left.hash() == right.hash());
                }
            }
        }
    }
}

TEST(NSNumberTest, ADecimalMeetsIntegersExactlyAndFloatingPointAsADouble) {
    const NSNumber number = decimal("9007199254740993");
    EXPECT_TRUE(number.isEqual(9007199254740993));
    EXPECT_FALSE(number.isEqual(9007199254740992));
    EXPECT_TRUE(number.isEqual(9007199254740992.0));
    EXPECT_EQ(number.hash(), NSNumber(9007199254740992.0).hash());
}

}  // namespace
}  // namespace InkoraKit
