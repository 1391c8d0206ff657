#include <InkoraKit/platform/NSNumber.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <tuple>
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

const auto decimal = [](const char* text) { return NSNumber(NSDecimalNumber(text)); };

static_assert(std::is_trivially_copyable_v<NSNumber> && sizeof(NSNumber) <= 32);
static_assert(!std::is_convertible_v<const char*, NSNumber>);
static_assert(!std::is_convertible_v<std::nullptr_t, NSNumber>);

TEST(NSNumberTest, RemembersWhatItWasMadeFrom) {
    // clang-format off
    const std::pair<std::string, std::vector<NSNumber>> cases[] = {
        {"B", {true, false}},                {"c", {static_cast<signed char>(1)}},
        {"s", {std::uint8_t{127}, short{1}}}, {"i", {std::uint16_t{1}, 1}},
        {"f", {1.0f}},                        {"d", {1.0, decimal("1")}},
        {"q", {1u, std::int64_t{1}, 1LL, 1UL, std::uint64_t{int64Max}}},
        {"Q", {std::uint64_t{int64Max} + 1}}};
    // clang-format on
    for (const auto& [code, numbers] : cases) {
        for (const NSNumber& number : numbers) {
            EXPECT_EQ(number.objCType(), code) << number.stringValue();
            EXPECT_EQ(number.isBool(), code == "B") << number.stringValue();
        }
    }
}

TEST(NSNumberTest, ConvertsToIntegersOfEveryWidth) {
    using std::tuple, std::int64_t, std::uint64_t;
    // clang-format off
    const struct { NSNumber number; int64_t integer; uint64_t unsignedInteger; } cases[] = {
        {true, 1, 1},      {300, 300, 300},     {-1, -1, uint64Max},  {uint64Max, -1, uint64Max},
        {300.7, 300, 300}, {255.9f, 255, 255},  {-0.5, 0, 0},  {-300.7, -300, uint64Max - 299},
        {1e10, 10000000000, 10000000000},          {1e19, int64Max, 10000000000000000000u},
        {1e21, int64Max, uint64Max},               {-1e21, int64Min, uint64_t{1} << 63},
        {0x1p64, int64Max, uint64Max}, {0x1p63, int64Max, uint64_t{1} << 63},     {-inf, int64Min, uint64_t{1} << 63},
        {nan, 0, 0},                               {decimal("128"), 128, 128},
        {decimal("x"), 0, 0},                      {decimal("-129.9"), -129, uint64Max - 128},
        {decimal("18446744073709551615"), -1, uint64Max}};
    // clang-format on
    for (const auto& [number, integer, unsignedInteger] : cases) {
        SCOPED_TRACE(number.stringValue());
        EXPECT_EQ(tuple(number.integerValue(), number.unsignedIntegerValue(),
                        number.longLongValue(), number.unsignedLongLongValue()),
                  tuple(integer, unsignedInteger, integer, unsignedInteger));
        // The narrower ones keep the low bits, also of what was cut to 64.
        EXPECT_EQ(tuple(number.intValue(), number.shortValue(), number.charValue()),
                  tuple(static_cast<std::int32_t>(integer), static_cast<std::int16_t>(integer),
                        static_cast<std::int8_t>(integer)));
        EXPECT_EQ(tuple(number.unsignedIntValue(), number.unsignedShortValue(),
                        number.unsignedCharValue()),
                  tuple(static_cast<std::uint32_t>(integer), static_cast<std::uint16_t>(integer),
                        static_cast<std::uint8_t>(integer)));
    }
}

TEST(NSNumberTest, ConvertsToTruthAndFloatingPoint) {
    for (const NSNumber& number :
         std::vector<NSNumber>{0.5, -1, nan, uint64Max, 1e-45f, decimal("0.1"), decimal("x")})
        EXPECT_TRUE(number.boolValue()) << number.stringValue();
    for (const NSNumber& number : std::vector<NSNumber>{{}, false, -0.0, decimal("0.0")})
        EXPECT_FALSE(number.boolValue()) << number.stringValue();

    constexpr float largest = std::numeric_limits<float>::max();
    // clang-format off
    const struct { NSNumber number; double real; float shortened; } cases[] = {
        {uint64Max, 0x1p64, 0x1p64f},            {decimal("0.1"), 0.1, 0.1f},
        {0.1f, 0.10000000149011612, 0.1f},       {16777217, 16777217, 16777216},
        {-1e300, -1e300, -static_cast<float>(inf)},
        {0x1.fffffe8p127, 0x1.fffffe8p127, largest}, {0x1.ffffffp127, 0x1.ffffffp127, static_cast<float>(inf)}};
    // clang-format on
    for (const auto& [number, real, shortened] : cases) {
        EXPECT_EQ(number.doubleValue(), real);
        EXPECT_EQ(number.floatValue(), shortened);
    }
    EXPECT_TRUE(std::isnan(NSNumber(nan).floatValue()));
}

TEST(NSNumberTest, ConvertsToDecimal) {
    // clang-format off
    const std::pair<NSNumber, NSDecimalNumber> cases[] = {
        {true, 1}, {int64Min, int64Min}, {uint64Max, uint64Max},
        {0.1f, NSDecimalNumber("0.1")}, {-1e21, NSDecimalNumber("-1e21")}};
    // clang-format on
    for (const auto& [number, value] : cases) EXPECT_EQ(number.decimalValue(), value);
    for (const double value : {1e-300, -inf, nan})
        EXPECT_TRUE(NSNumber(value).decimalValue().isNaN());
}

TEST(NSNumberTest, HasTheShortestTextThatReadsBack) {
    // clang-format off
    const std::pair<NSNumber, const char*> cases[] = {
        {true, "1"}, {int64Min, "-9223372036854775808"}, {uint64Max, "18446744073709551615"},
        {-nan, "nan"}, {decimal("12.50"), "12.5"}};
    for (const auto& [number, text] : cases) EXPECT_EQ(number.stringValue(), text);
    for (const char* text : {
             "3", "-0", "0.30000000000000004", "9999999999999998", "1e+16", "0.0001",
             "9.999999999999999e-05", "nan", "-inf"})
        EXPECT_EQ(NSNumber(std::strtod(text, nullptr)).stringValue(), text);
    for (const char* text : {"0.1", "0.0001", "3", "9999999", "1e+07", "1.6777216e+07",
                             "3.4028235e+38", "nan", "-inf"})
        EXPECT_EQ(NSNumber(std::strtof(text, nullptr)).stringValue(), text);
    // clang-format on
}

TEST(NSNumberTest, ComparesExactlyAcrossKinds) {
    // Ascending groups of equal numbers.
    // clang-format off
    const std::vector<std::vector<NSNumber>> groups = {
        {-inf}, {int64Min, -0x1p63}, {-1.5}, {-1, -1.0f, decimal("-1")},
        {nan, -nan, std::nanf(""), decimal("x")},
        {false, 0, 0u, -0.0, 0.0, decimal("0")},
        {0.1, decimal("0.1")}, {0.1f}, {true, 1, std::int8_t{1}, 1.0, decimal("1")}, {1.1},
        {9007199254740992.0}, {9007199254740993}, {int64Max}, {0x1p63, std::uint64_t{1} << 63},
        {uint64Max, decimal("18446744073709551615")}, {1e300}, {inf}};
    // clang-format on
    std::vector<std::pair<std::size_t, NSNumber>> ranked;
    for (std::size_t rank = 0; rank < groups.size(); ++rank)
        for (const NSNumber& number : groups[rank]) ranked.emplace_back(rank, number);
    for (const auto& [leftRank, left] : ranked) {
        for (const auto& [rightRank, right] : ranked) {
            SCOPED_TRACE(left.stringValue() + " and " + right.stringValue());
            const int wanted = (leftRank > rightRank) - (leftRank < rightRank);
            EXPECT_EQ(static_cast<int>(left.compare(right)), wanted);
            EXPECT_EQ(left.isEqual(right), wanted == 0);
            EXPECT_TRUE(wanted != 0 || left.hash() == right.hash());
        }
    }
    const NSNumber number = decimal("9007199254740993");  // exact to integers, to others a double
    EXPECT_TRUE(number.isEqual(9007199254740993) && !number.isEqual(9007199254740992));
    EXPECT_TRUE(number.isEqual(9007199254740992.0));
    EXPECT_EQ(number.hash(), NSNumber(9007199254740992.0).hash());
}

}  // namespace
}  // namespace InkoraKit
