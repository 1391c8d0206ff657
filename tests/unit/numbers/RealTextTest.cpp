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

std::string written(double value, double largestPlain) {
    std::array<char, longestRealText> buffer;
    return {buffer.data(), writeShortest(buffer.data(), value, largestPlain)};
}

template <class Integer>
std::string writtenInteger(Integer value) {
    std::array<char, longestIntegerText> buffer;
    return {buffer.data(), writeInteger(buffer.data(), value)};
}

TEST(RealTextTest, HardDecimalsReadAsTheNearestDouble) {
    // clang-format off
    const struct { Decimal decimal; double nearest; } cases[] = {
        // the smallest, and half of it, which is neither's
        {{5, -324}, 0x1p-1074},             {{2470328229206232720u, -342}, 0.0},
        {{2470328229206232721u, -342}, 0x1p-1074},  {{1, std::int64_t{-1} << 62}, 0.0},
        // subnormal next to normal
        {{22250738585072011u, -324}, 0x0.fffffffffffffp-1022},
        {{22250738585072012u, -324}, 0x1p-1022},    {{22250738585072014u, -324}, 0x1p-1022},
        // the largest, and halfway to the next power of two
        {{17976931348623157u, 292}, 0x1.fffffffffffffp1023},
        {{1797693134862315807u, 290}, 0x1.fffffffffffffp1023},
        {{1797693134862315808u, 290}, inf},         {{1, 309}, inf},
        {{1, std::int64_t{1} << 62}, inf},          {{0, 999}, 0.0},
        // where doubles stop holding every integer: ties go to the even one
        {{9007199254740991u, 0}, 0x1p53 - 1},       {{9007199254740993u, 0}, 0x1p53},
        {{9007199254740995u, 0}, 0x1p53 + 4},       {{9007199254740997u, 0}, 0x1p53 + 4},
        {{18446744073709551615u, 0}, 0x1p64},       {{18446744073709550591u, 0}, 0x1.fffffffffffffp63},
        {{18446744073709550592u, 0}, 0x1p64},
        // exact in many digits, with powers of ten that are not
        {{1500000000000000000u, -18}, 1.5},         {{10000000000000000000u, -19}, 1.0},
        {{12500000000000000000u, -2}, 125e15},      {{9007199254740993000u, -2}, 90071992547409930.0},
        // at the ends of what one multiplication or division does
        {{9007199254740992u, 22}, 0x1p53 * 1e22},   {{9007199254740992u, -22}, 0x1p53 / 1e22},
        {{1, 23}, 1e23},                            {{1, -23}, 1e-23},
        {{123456789012345678u, 5}, 123456789012345678e5}};
    // clang-format on
    for (const auto& [decimal, nearest] : cases) {
        EXPECT_EQ(nearestDouble(decimal.mantissa, decimal.exponent), nearest) << decimal.text();
        EXPECT_EQ(realFromText(decimal.text()), nearest) << decimal.text();
    }
}

TEST(RealTextTest, EveryPowerOfTenReadsAsTheNearestDouble) {
    for (int exponent = -350; exponent <= 320; ++exponent) {
        for (const std::uint64_t mantissa : {1u, 3u, 4294967295u}) {
            EXPECT_EQ(differenceInReading({mantissa, exponent}), "");
        }
    }
}

TEST(RealTextTest, DoublesAreWrittenInTheirLayout) {
    constexpr double sixteenDigits = 9'999'999'999'999'998;
    // clang-format off
    const struct { double value; double largestPlain; const char* text; } cases[] = {
        {0.0, 0x1p53, "0"},                      {-0.0, 0x1p53, "-0"},
        {inf, 0x1p53, "inf"},                    {-inf, 0x1p53, "-inf"},
        {nan, 0x1p53, "nan"},                    {-nan, 0x1p53, "nan"},
        {1, 0x1p53, "1"},                        {-100, 0x1p53, "-100"},
        {0.1, 0x1p53, "0.1"},                    {-12.5, 0x1p53, "-12.5"},
        {1e-4, 0x1p53, "0.0001"},                {0x1.a36e2eb1c432cp-14, 0x1p53, "9.999999999999999e-05"},
        {-1.0000000000000002e-4, 0x1p53, "-0.00010000000000000002"},
        {4.999999999999999, 0x1p53, "4.999999999999999"},
        {0x1p53, 0x1p53, "9007199254740992"},    {0x1p53 + 2, 0x1p53, "9.007199254740994e+15"},
        {sixteenDigits, sixteenDigits, "9999999999999998"},
        {1e16, sixteenDigits, "1e+16"},          {0x1p60, 0x1p62, "1152921504606846976"},
        {1500, 1000, "1.5e+03"},                 {1000.5, 1000, "1.0005e+03"},
        {5e-324, 0x1p53, "5e-324"},              {1e-323, 0x1p53, "1e-323"},
        {1.5e-323, 0x1p53, "1.5e-323"},          {-0x1p-1022, 0x1p53, "-2.2250738585072014e-308"},
        {0x1.fffffffffffffp1023, 0x1p53, "1.7976931348623157e+308"},
        {1e23, 0x1p53, "1e+23"},                 {0x1p-44, 0x1p53, "5.684341886080802e-14"}};
    // clang-format on
    for (const auto& [value, largestPlain, text] : cases) {
        EXPECT_EQ(written(value, largestPlain), text);
        std::string appended = "=";
        appendShortest(appended, value, largestPlain);
        EXPECT_EQ(appended, std::string("=") + text);
    }
}

TEST(RealTextTest, PowersOfTwoAndTheirNeighboursAreWrittenShortest) {
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, inf)}) {
            EXPECT_EQ(differenceInWriting(value, 0x1p53), "");
        }
    }
}

TEST(RealTextTest, AnyDoublesAreReadAndWrittenAsTheStandardLibraryDoes) {
    RealTextSample sample(20'240'229);
    for (int count = 0; count < 300'000; ++count) ASSERT_EQ(sample.nextDifference(), "");
}

TEST(RealTextTest, IntegersOfEveryLengthAreWritten) {
    EXPECT_EQ(writtenInteger(std::uint64_t{0}), "0");
    std::uint64_t power = 1;
    for (int length = 1; length <= 19; ++length, power *= 10) {
        for (const std::uint64_t value : {power, power + 1, power / 9 * 7, power * 10 - 1}) {
            EXPECT_EQ(writtenInteger(value), std::to_string(value));
        }
    }
    EXPECT_EQ(writtenInteger(std::uint64_t{UINT64_MAX}), "18446744073709551615");
    EXPECT_EQ(writtenInteger(std::int64_t{INT64_MAX}), "9223372036854775807");
    EXPECT_EQ(writtenInteger(std::int64_t{INT64_MIN}), "-9223372036854775808");
    EXPECT_EQ(writtenInteger(std::int64_t{-7}), "-7");
}

}  // namespace
}  // namespace InkoraKit
