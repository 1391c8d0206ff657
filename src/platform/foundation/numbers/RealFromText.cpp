#include "platform/foundation/numbers/DecimalToDouble.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/numbers/Words.h"
#include "platform/foundation/text/Characters.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstring>
#include <limits>
#include <optional>

namespace InkoraKit {

namespace {

/// digits × 10^exponent, or the negative of that. A point may stand among the digits.
struct Numeral {
    std::string_view digits;
    std::int64_t exponent;
    bool isNegative;
};

/// What is written of an exponent, from the "e" on: 0 where nothing is.
std::optional<std::int64_t> exponentFrom(std::string_view text) {
    if (text.empty()) return 0;
    if (lowered(text.front()) != 'e') return std::nullopt;
    text.remove_prefix(1);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    std::int64_t exponent = 0;
    constexpr std::int64_t farBeyond = 1'000'000'000'000'000;  // any range
    for (const char digit : text) {
        if (!isDigit(digit)) return std::nullopt;
        if (exponent < farBeyond) exponent = exponent * 10 + (digit - '0');
    }
    return isNegative ? -exponent : exponent;
}

std::optional<Numeral> numeralFrom(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative) text.remove_prefix(1);
    std::size_t end = 0;
    std::int64_t fractionDigits = 0;
    bool hasPoint = false;
    for (; end < text.size(); ++end) {
        if (isDigit(text[end])) {
            fractionDigits += hasPoint;
        } else if (text[end] == '.' && !hasPoint) {
            hasPoint = true;
        } else {
            break;
        }
    }
    const auto exponent = exponentFrom(text.substr(end));
    if (!exponent || end == static_cast<std::size_t>(hasPoint)) return std::nullopt;
    return Numeral{text.substr(0, end), *exponent - fractionDigits, isNegative};
}

/// What takeDigits() has taken, and left.
struct Taken {
    std::int64_t exponent;  // of the last digit taken
    bool isMore;            // whether any other digit is not 0
};

/// Hands on the digits from the first one other than 0 on, `most` of them.
template <class Append>
Taken takeDigits(const Numeral& numeral, int most, Append append) {
    Taken taken{numeral.exponent, false};
    int count = 0;
    for (const char character : numeral.digits) {
        if (character == '.') continue;
        const auto digit = static_cast<std::uint64_t>(character - '0');
        if (count < most) {
            append(digit);
            count += count > 0 || digit != 0;
        } else {
            ++taken.exponent;
            taken.isMore |= digit != 0;
        }
    }
    return taken;
}

/// An integer of up to 4096 bits: more than comparing any double with 769 digits takes.
class LargeInteger {
public:
    void multiply(std::uint64_t factor, std::uint64_t addend = 0) {
        for (std::size_t i = 0; i < size_; ++i) {
            const TwoWords product = multiplied(limbs_[i], factor, addend);
            limbs_[i] = product.low;
            addend = product.high;
        }
        if (addend != 0) limbs_[size_++] = addend;
    }

    /// @param base at most 10
    void multiplyByPower(std::uint64_t base, std::int64_t exponent) {
        constexpr int step = 16;
        std::uint64_t power = 1;
        for (int i = 0; i < step; ++i) power *= base;
        for (; exponent >= step; exponent -= step) multiply(power);
        for (; exponent > 0; --exponent) multiply(base);
    }

    friend bool operator<(const LargeInteger& left, const LargeInteger& right) {
        return std::lexicographical_compare(left.limbs_.rbegin(), left.limbs_.rend(),
                                            right.limbs_.rbegin(), right.limbs_.rend());
    }

private:
    std::array<std::uint64_t, 64> limbs_{};  // the least significant first
    std::size_t size_ = 0;
};

/// The double nearest to the numeral's magnitude, of two as near the even one.
/// @param bits of a double that is that one or the next below it
std::uint64_t nearestOfTwo(const Numeral& numeral, std::uint64_t bits) {
    // What is halfway between two doubles has no more digits. Of what follows it is enough to know
    // whether it is more than nothing, which a digit of its own says.
    LargeInteger decimal;
    const auto [lastTaken, isMore] =
        takeDigits(numeral, 768, [&](std::uint64_t digit) { decimal.multiply(10, digit); });
    decimal.multiply(10, static_cast<std::uint64_t>(isMore));
    const std::int64_t exponent = lastTaken - 1;

    constexpr int fractionBits = 52;
    constexpr std::uint64_t hiddenBit = std::uint64_t{1} << fractionBits;
    const auto biasedExponent = static_cast<int>(bits >> fractionBits);
    const std::uint64_t fraction = bits & (hiddenBit - 1);
    const std::uint64_t mantissa = biasedExponent == 0 ? fraction : fraction | hiddenBit;
    const int binaryExponent = std::max(biasedExponent, 1) - 1076;
    LargeInteger halfway;
    halfway.multiply(1, 2 * mantissa + 1);

    (exponent > 0 ? decimal : halfway).multiplyByPower(10, std::abs(exponent));
    (binaryExponent > 0 ? halfway : decimal).multiplyByPower(2, std::abs(binaryExponent));
    const bool isTie = !(decimal < halfway) && !(halfway < decimal);
    const bool isAbove = isTie ? mantissa % 2 != 0 : halfway < decimal;
    return bits + static_cast<std::uint64_t>(isAbove);
}

double nearestMagnitude(const Numeral& numeral) {
    std::uint64_t mantissa = 0;  // has room for 19 digits
    const auto [exponent, isMore] =
        takeDigits(numeral, 19, [&](std::uint64_t digit) { mantissa = mantissa * 10 + digit; });
    const auto value = nearestDouble(mantissa, exponent);
    if (value && (!isMore || value == nearestDouble(mantissa + 1, exponent))) return *value;

    // Open is only what is next to halfway, and long: one less is still next to it, but below.
    double lower = value ? *value : nearestDouble(mantissa - 1, exponent).value_or(0);
    std::uint64_t bits;
    std::memcpy(&bits, &lower, sizeof bits);
    bits = nearestOfTwo(numeral, bits);
    std::memcpy(&lower, &bits, sizeof bits);
    return lower;
}

}  // namespace

double realFromText(std::string_view text) noexcept {
    const auto numeral = numeralFrom(text);
    if (!numeral) return std::numeric_limits<double>::quiet_NaN();
    const double magnitude = nearestMagnitude(*numeral);
    return numeral->isNegative ? -magnitude : magnitude;
}

}  // namespace InkoraKit
