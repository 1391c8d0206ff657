#include "platform/foundation/numbers/NumberText.h"

#include "platform/foundation/numbers/ShortestDecimal.h"
#include "platform/foundation/text/Bytes16.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace InkoraKit {

namespace {

/// "00" to "99"
constexpr auto digitPairs = [] {
    std::array<std::array<char, 2>, 100> pairs{};
    for (std::size_t index = 0; index < pairs.size(); ++index) {
        pairs[index] = {static_cast<char>('0' + index / 10), static_cast<char>('0' + index % 10)};
    }
    return pairs;
}();

void writePair(char* to, std::uint32_t pair) {
    std::memcpy(to, digitPairs[pair].data(), 2);
}

/// Eight digits in the order of memory, each in the byte that becomes its character. The divisions
/// of all lanes are done at once, by multiplying with a little more than the inverse.
std::uint64_t eightDigits(std::uint32_t value) {
    const std::uint64_t fours = value / 10'000 | static_cast<std::uint64_t>(value % 10'000) << 32;
    const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000F;
    return tens | (pairs - tens * 10) << 8;
}

/// Writes eight characters, the first of which are the digits from the `skipped`th on.
void store(char* to, std::uint64_t digits, unsigned skipped = 0) {
    digits |= 0x3030303030303030;
    if constexpr (std::endian::native == std::endian::little) {
        digits >>= 8 * skipped;
        std::memcpy(to, &digits, sizeof digits);
    } else {
        for (unsigned i = skipped; i < 8; ++i) to[i - skipped] = static_cast<char>(digits >> 8 * i);
    }
}

constexpr std::uint64_t tenToThe8th = 100'000'000;
constexpr std::uint64_t tenToThe16th = tenToThe8th * tenToThe8th;

/// @param value below 10^8
char* writeUpToEight(char* to, std::uint64_t value) {
    const std::uint64_t digits = eightDigits(static_cast<std::uint32_t>(value));
    constexpr std::uint64_t lastDigit = std::uint64_t{1} << 56;  // is written, zero or not
    const auto zeros = static_cast<unsigned>(std::countr_zero(digits | lastDigit)) / 8;
    store(to, digits, zeros);
    return to + 8 - zeros;
}

/// @param value below 10^16
Bytes16 sixteenCharacters(std::uint64_t value) {
    const auto upper = static_cast<std::uint32_t>(value / tenToThe8th);
    const auto lower = static_cast<std::uint32_t>(value % tenToThe8th);
#if defined(__SSE2__)
    // What eightDigits() does, for both at once.
    const __m128i eights = _mm_set_epi64x(lower, upper);
    __m128i quotients = _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi64x(0xD1B71759)), 45);
    __m128i rests = _mm_sub_epi64(eights, _mm_mul_epu32(quotients, _mm_set1_epi64x(10'000)));
    const __m128i fours = _mm_or_si128(quotients, _mm_slli_epi64(rests, 32));
    quotients = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
    rests = _mm_sub_epi16(fours, _mm_mullo_epi16(quotients, _mm_set1_epi16(100)));
    const __m128i pairs = _mm_or_si128(quotients, _mm_slli_epi32(rests, 16));
    quotients = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
    rests = _mm_sub_epi16(pairs, _mm_mullo_epi16(quotients, _mm_set1_epi16(10)));
    const __m128i digits = _mm_or_si128(quotients, _mm_slli_epi16(rests, 8));
    const __m128i characters = _mm_or_si128(digits, _mm_set1_epi8('0'));
    return Bytes16::load(&characters);
#else
    std::array<char, 16> characters;
    store(characters.data(), eightDigits(upper));
    store(characters.data() + 8, eightDigits(lower));
    return Bytes16::load(characters.data());
#endif
}

char* writeDigits(char* to, std::uint64_t value) {
    if (value < tenToThe8th) return writeUpToEight(to, value);
    if (value < tenToThe16th) {
        to = writeUpToEight(to, value / tenToThe8th);
        store(to, eightDigits(static_cast<std::uint32_t>(value % tenToThe8th)));
        return to + 8;
    }
    to = writeUpToEight(to, value / tenToThe16th);
    sixteenCharacters(value % tenToThe16th).store(to);
    return to + 16;
}

/// Writes the digits of a decimal.
/// @return how many there are but for zeros at the end
int writeDigits(char* to, ShortestDecimal decimal) {
    *to = static_cast<char>('0' + decimal.digits / tenToThe16th);
    const Bytes16 others = sixteenCharacters(decimal.digits % tenToThe16th);
    others.store(to + 1);
    return 17 - std::countl_one(others.equalTo('0') << 16);
}

char* writeWord(char* to, std::string_view word) {
    return std::copy(word.begin(), word.end(), to);
}

/// As in 12.5, 0.0125. The decimal is not whole.
char* writePlain(char* to, ShortestDecimal decimal) {
    const int whole = 17 + decimal.exponent;  // digits ahead of the point
    if (whole <= 0) {
        to = writeWord(to, "0.000") - 3 - whole;
        return to + writeDigits(to, decimal);
    }
    const int count = writeDigits(to, decimal);
    char* const point = to + whole;
    Bytes16::load(point).store(point + 1);
    *point = '.';
    return to + count + 1;
}

/// As in 1e-05, 1.25e+300.
char* writeScientific(char* to, ShortestDecimal decimal) {
    const int count = writeDigits(to + 1, decimal);
    to[0] = to[1];
    to[1] = '.';
    to += count == 1 ? 1 : count + 1;
    *to++ = 'e';
    const int exponent = 16 + decimal.exponent;
    *to++ = exponent < 0 ? '-' : '+';
    const auto magnitude = static_cast<std::uint32_t>(std::abs(exponent));
    if (magnitude >= 100) *to++ = static_cast<char>('0' + magnitude / 100);
    writePair(to, magnitude % 100);
    return to + 2;
}

template <class Real>
char* writeShortestOf(char* to, Real value, Real largestPlain) {
    if (std::isnan(value)) return writeWord(to, "nan");
    *to = '-';
    to += std::signbit(value);  // without a branch, which signs at random would mislead
    const Real magnitude = std::abs(value);
    if (magnitude <= largestPlain && magnitude < static_cast<Real>(0x1p63)) {
        const auto integer = static_cast<std::int64_t>(magnitude);
        if (static_cast<Real>(integer) == magnitude)
            return writeDigits(to, static_cast<std::uint64_t>(integer));
    }
    if (std::isinf(value)) return writeWord(to, "inf");
    const ShortestDecimal decimal = shortestDecimal(magnitude);
    const bool isPlain = magnitude >= static_cast<Real>(1e-4) && magnitude <= largestPlain;
    return isPlain ? writePlain(to, decimal) : writeScientific(to, decimal);
}

template <class Real>
void appendShortestOf(std::string& text, Real value, Real largestPlain) {
    std::array<char, longestRealText> buffer;
    text.append(buffer.data(), writeShortestOf(buffer.data(), value, largestPlain));
}

}  // namespace

char* writeInteger(char* to, std::uint64_t value) noexcept {
    return writeDigits(to, value);
}

char* writeInteger(char* to, std::int64_t value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    *to = '-';
    to += value < 0;  // without a branch, which signs at random would mislead
    return writeDigits(to, value < 0 ? 0 - bits : bits);
}

char* writeShortest(char* to, double value, double largestPlain) noexcept {
    return writeShortestOf(to, value, largestPlain);
}

void appendShortest(std::string& text, double value, double largestPlain) {
    appendShortestOf(text, value, largestPlain);
}

void appendShortest(std::string& text, float value, float largestPlain) {
    appendShortestOf(text, value, largestPlain);
}

}  // namespace InkoraKit
