#include "support/RealTextSample.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace InkoraKit {
namespace {

constexpr auto inf = std::numeric_limits<double>::infinity();
constexpr auto nan = std::numeric_limits<double>::quiet_NaN();

TEST(RealTextTest, HardDecimalsReadAsTheNearestDouble) {
    constexpr std::int64_t far = std::int64_t{1} << 62;
    // clang-format off
    const Decimal cases[] = {
        // the smallest, and half of it, which is neither's; subnormal next to normal
        {5, -324}, {2470328229206232720u, -342}, {2470328229206232721u, -342}, {1, -1000},
        {22250738585072011u, -324}, {22250738585072012u, -324}, {22250738585072014u, -324},
        // the largest, and halfway to the next power of two
        {17976931348623157u, 292}, {1797693134862315807u, 290}, {1797693134862315808u, 290},
        {1, 309}, {0, 999}, {1, far}, {1, -far},
        // where doubles stop holding every integer: ties go to the even one
        {9007199254740991u, 0}, {9007199254740993u, 0}, {9007199254740995u, 0},
        {9007199254740997u, 0}, {18446744073709551615u, 0}, {18446744073709550591u, 0},
        {18446744073709550592u, 0},
        // exact in many digits, with powers of ten that are not
        {1500000000000000000u, -18}, {10000000000000000000u, -19}, {12500000000000000000u, -2},
        {9007199254740993000u, -2},
        // at the ends of what one multiplication or division does
        {9007199254740992u, 22}, {9007199254740992u, -22}, {1, 23}, {1, -23},
        {123456789012345678u, 5}};
    // clang-format on
    for (const Decimal& decimal : cases) {
        EXPECT_EQ(differenceInReading(decimal), "");
        EXPECT_EQ(realFromText(decimal.text()), standardReading(decimal)) << decimal.text();
    }
    EXPECT_EQ(nearestDouble(9007199254740995u, 0), 0x1p53 + 4);
}

TEST(RealTextTest, LongNumeralsNextToHalfwayReadAsTheNearestDouble) {
    const std::string zeros(900, '0');
    const std::string halfways[] = {
        "9007199254740993.", "-9007199254740995.", "0." + zeros + "9007199254740993",
        "179769313486231580793728971405303415079934132710037826936173778980444968292764750946649017"
        "977587207096330286416692887910946555547851940402630657488671505820681908902000708383676273"
        "854845817711531764475730270069855571366959622842914819860834936475292719074168444365510704"
        "342711559699508093042880."};  // to the power of two beyond the largest
    for (const std::string& halfway : halfways)
        for (const std::string& more : {std::string(), zeros, zeros + "1"}) {
            const std::string text = halfway + more;
            EXPECT_EQ(realFromText(text), std::strtod(text.c_str(), nullptr)) << text;
        }
    for (const char* text : {"", "-", ".", "e5", "1e", "1e+", "1..2", "1e5x", "+1", " 1", "inf"})
        EXPECT_TRUE(std::isnan(realFromText(text))) << text;
}

TEST(RealTextTest, DrawnDoublesAreReadAndWrittenAsTheStandardLibraryDoes) {
    // Others each time with --gtest_shuffle, and as many as wanted with --gtest_repeat.
    const int seed = testing::UnitTest::GetInstance()->random_seed();
    RealTextSample sample(static_cast<std::uint64_t>(seed));
    for (int i = 0; i < 300'000; ++i) ASSERT_EQ(sample.nextDifference(), "") << "seed " << seed;
}

TEST(RealTextTest, DoublesAreWrittenInTheirLayout) {
    // clang-format off
    const double values[] = {
        0.0, 1.0, 100.0, 0.1, 12.5, 1000.5, 1500.0, 1e-4, 1.0000000000000002e-4, inf, nan,
        0x1.a36e2eb1c432cp-14, 4.999999999999999, 0x1p53, 0x1p53 + 2, 9'999'999'999'999'998.0,
        1e16, 1e23, 1.5e-323, 1.7976931348623157e308};
    // clang-format on
    for (const double largestPlain : {1000.0, 0x1p53, 9'999'999'999'999'998.0, 0x1p62})
        for (const double value : values)
            for (const double signedValue : {value, -value})
                EXPECT_EQ(differenceInWriting(signedValue, largestPlain), "");
    std::string text = "=";
    appendShortest(text, -1.25e-5, 1);
    EXPECT_EQ(text, "=-1.25e-05");
}

TEST(RealTextTest, PowersOfTwoAndTheirNeighboursAreWrittenShortest) {
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, inf)}) {
            EXPECT_EQ(differenceInWriting(value, 0x1p53), "");
        }
    }
}

TEST(RealTextTest, IntegersOfEveryLengthAreWritten) {
    std::array<char, longestIntegerText> buffer;
    const auto written = [&](auto value) {
        return std::string(buffer.data(), writeInteger(buffer.data(), value));
    };
    std::uint64_t power = 1;
    for (int length = 1; length <= 20; ++length, power *= 10) {
        for (const std::uint64_t value : {power, power / 9 * 7, power - 1, 0 - power,
                                          std::uint64_t{1} << 63, std::uint64_t{UINT64_MAX}}) {
            const auto integer = static_cast<std::int64_t>(value);
            EXPECT_EQ(written(value), std::to_string(value));
            EXPECT_EQ(written(integer), std::to_string(integer));
        }
    }
}

}  // namespace
}  // namespace InkoraKit
