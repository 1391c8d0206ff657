#include "platform/foundation/text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace InkoraKit {
namespace {

bool isAscii(char character) {
    return (character & 0x80) == 0;
}

const char* skipAsciiWords(const char* text, const char* end) {
    for (std::uint64_t word = 0; end - text >= 8; text += 8) {
        std::memcpy(&word, text, sizeof word);
        if ((word & 0x8080808080808080) != 0) break;
    }
    return text;
}

// The first four bytes of a text, the first one lowest. Behind the end they read as zero, which
// continues no sequence.
std::uint32_t leadingBytes(const char* text, const char* end) {
    char padded[4] = {};
    if (end - text < 4) {
        std::copy(text, end, padded);
        text = padded;
    }
    const auto byte = [text](int i) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[i]));
    };
    return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
}

// Whether the bytes, the first one lowest, start with a well-formed sequence of that length.
bool startsWithTwo(std::uint32_t bytes) {
    const bool isOverlong = (bytes & 0x1E) == 0;
    return (bytes & 0xC0E0) == 0x80C0 && !isOverlong;
}

bool startsWithThree(std::uint32_t bytes) {
    const std::uint32_t range = bytes & 0x200F;
    const bool isOverlong = range == 0;        // E0 80 to E0 9F
    const bool isSurrogate = range == 0x200D;  // ED A0 to ED BF
    return (bytes & 0xC0C0F0) == 0x8080E0 && !isOverlong && !isSurrogate;
}

bool startsWithFour(std::uint32_t bytes) {
    const std::uint32_t plane = (bytes & 0x07) << 2 | (bytes >> 12 & 0x03);
    return (bytes & 0xC0C0C0F8) == 0x808080F0 && plane >= 1 && plane <= 16;
}

#if defined(__x86_64__)
// What may be wrong with two neighbours. Two of them share a bit, as no first byte allows both.
enum Fault : std::uint8_t {
    noContinuation = 0x01,      // a lead, and then none
    strayContinuation = 0x02,   // ASCII, and then one
    secondContinuation = 0x80,  // which is right where a longer sequence is due
    overlongTwo = 0x20,         // C0, C1
    overlongThree = 0x04,       // E0 80 to E0 9F
    surrogate = 0x10,           // ED A0 to ED BF
    overlongFour = 0x40,        // F0 80 to F0 8F
    tooLarge = 0x08,            // F4 90 and above
    tooLargeInAnyCase = 0x40    // F5 80 and above
};

alignas(16) constexpr auto faultsByFirstHigh = [] {
    std::array<std::uint8_t, 16> faults{};
    for (std::size_t high = 0; high < 16; ++high)
        faults[high] = high < 8    ? strayContinuation
                       : high < 12 ? secondContinuation
                                   : noContinuation;
    faults[0xC] |= overlongTwo;
    faults[0xE] |= overlongThree | surrogate;
    faults[0xF] |= overlongFour | tooLarge | tooLargeInAnyCase;
    return faults;
}();
alignas(16) constexpr auto faultsByFirstLow = [] {
    std::array<std::uint8_t, 16> faults{};
    for (std::size_t low = 0; low < 16; ++low) {
        faults[low] = noContinuation | strayContinuation | secondContinuation;
        if (low >= 4) faults[low] |= tooLarge;
        if (low >= 5) faults[low] |= tooLargeInAnyCase;
    }
    faults[0x0] |= overlongTwo | overlongThree | overlongFour;
    faults[0x1] |= overlongTwo;
    faults[0xD] |= surrogate;
    return faults;
}();
alignas(16) constexpr auto faultsBySecondHigh = [] {
    std::array<std::uint8_t, 16> faults{};
    faults.fill(noContinuation);
    for (std::size_t high = 0x8; high <= 0xB; ++high)
        faults[high] = strayContinuation | secondContinuation | overlongTwo |
                       (high < 0xA ? overlongThree : surrogate) |
                       (high < 0x9 ? overlongFour | tooLargeInAnyCase : tooLarge);
    return faults;
}();

// The length of a well-formed part of the text that ends between two characters: all but the last
// bytes where the text is without fault, else less than what comes before the fault.
//
// Three halves of bytes tell what is wrong with two neighbours (J. Keiser, D. Lemire, "Validating
// UTF-8 in less than one instruction per byte", 2020).
[[gnu::target("avx2")]] std::size_t wellFormedBlocksLength(std::string_view text) {
    using Block = __m256i;
    const auto* const bytes = text.data();
    const Block highest = _mm256_set1_epi8(static_cast<char>(0x80));
    const Block half = _mm256_set1_epi8(0x0F);
    const Block byFirstHigh = _mm256_broadcastsi128_si256(
        _mm_load_si128(reinterpret_cast<const __m128i*>(faultsByFirstHigh.data())));
    const Block byFirstLow = _mm256_broadcastsi128_si256(
        _mm_load_si128(reinterpret_cast<const __m128i*>(faultsByFirstLow.data())));
    const Block bySecondHigh = _mm256_broadcastsi128_si256(
        _mm_load_si128(reinterpret_cast<const __m128i*>(faultsBySecondHigh.data())));

    Block before = _mm256_setzero_si256();
    std::size_t checked = 0;
    for (; text.size() - checked >= sizeof(Block); checked += sizeof(Block)) {
        Block block;
        std::memcpy(&block, bytes + checked, sizeof block);
        const Block around = _mm256_permute2x128_si256(before, block, 0x21);
        before = block;
        if (_mm256_testz_si256(_mm256_or_si256(around, block), highest) != 0) continue;

        const Block first = _mm256_alignr_epi8(block, around, 15);
        const Block firstHigh = _mm256_and_si256(_mm256_srli_epi16(first, 4), half);
        const Block secondHigh = _mm256_and_si256(_mm256_srli_epi16(block, 4), half);
        const Block faults = _mm256_and_si256(
            _mm256_and_si256(_mm256_shuffle_epi8(byFirstHigh, firstHigh),
                             _mm256_shuffle_epi8(byFirstLow, _mm256_and_si256(first, half))),
            _mm256_shuffle_epi8(bySecondHigh, secondHigh));
        // From E0 two bytes before on, and F0 three before, a second continuation has to be.
        const Block dueByTwo =
            _mm256_subs_epu8(_mm256_alignr_epi8(block, around, 14), _mm256_set1_epi8(0xE0 - 0x80));
        const Block dueByThree =
            _mm256_subs_epu8(_mm256_alignr_epi8(block, around, 13), _mm256_set1_epi8(0xF0 - 0x80));
        const Block due = _mm256_and_si256(_mm256_or_si256(dueByTwo, dueByThree), highest);
        const Block wrong = _mm256_xor_si256(faults, due);
        if (_mm256_testz_si256(wrong, wrong) == 0) break;
    }
    if (checked == 0 || isAscii(bytes[checked - 1])) return checked;
    do {
        --checked;  // the last character, of which there may be more
    } while ((bytes[checked] & 0xC0) == 0x80);
    return checked;
}
#endif

}  // namespace

std::size_t wellFormedUtf8LengthPortably(std::string_view text) noexcept {
    const char* next = text.data();
    const char* const end = next + text.size();
    while (next != end) {
        if (isAscii(*next)) {
            next = skipAsciiWords(next + 1, end);
            continue;
        }
        const std::uint32_t bytes = leadingBytes(next, end);
        if (startsWithThree(bytes)) {
            next += 3;
        } else if (startsWithTwo(bytes)) {
            next += 2;
        } else if (startsWithFour(bytes)) {
            next += 4;
        } else {
            break;
        }
    }
    return static_cast<std::size_t>(next - text.data());
}

std::size_t wellFormedUtf8Length(std::string_view text) noexcept {
    std::size_t checked = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) checked = wellFormedBlocksLength(text);
#endif
    return checked + wellFormedUtf8LengthPortably(text.substr(checked));
}

}  // namespace InkoraKit
