#include "platform/foundation/text/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
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

#if defined(__SSE2__)
bool isContinuation(char character) {
    return (character & 0xC0) == 0x80;
}

// The length of a well-formed part of the text that ends between two characters: all but the last
// bytes where the text is without fault, else less than what comes before the fault.
//
// Of each block of 16 bytes, leads and continuations become bits; shifted by one to three places
// the leads tell where continuations are due. What is due in the next block is carried over.
std::size_t wellFormedBlocksLength(std::string_view text) {
    const auto every = [](int byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
    const auto bits = [](__m128i block) { return static_cast<unsigned>(_mm_movemask_epi8(block)); };
    const auto load = [](const char* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    };
    const char* next = text.data();
    const char* const end = next + text.size();
    unsigned due = 0;
    for (; end - next > 16; next += 16) {
        const __m128i block = load(next);
        if ((bits(block) | due) == 0) continue;

        const auto atLeast = [&](int byte) {
            return _mm_cmpeq_epi8(_mm_max_epu8(block, every(byte)), block);
        };
        const unsigned allDue =
            bits(atLeast(0xC0)) << 1 | bits(atLeast(0xE0)) << 2 | bits(atLeast(0xF0)) << 3 | due;
        const unsigned continuations = bits(_mm_cmplt_epi8(block, every(0xC0)));

        const __m128i second = load(next + 1);
        const __m128i belowA0 = _mm_cmplt_epi8(second, every(0xA0));
        const __m128i below90 = _mm_cmplt_epi8(second, every(0x90));
        const auto is = [&](int byte) { return _mm_cmpeq_epi8(block, every(byte)); };
        const __m128i overlong = _mm_or_si128(
            _mm_cmpeq_epi8(_mm_and_si128(block, every(0xFE)), every(0xC0)),
            _mm_or_si128(_mm_and_si128(is(0xE0), belowA0), _mm_and_si128(is(0xF0), below90)));
        const __m128i surrogate = _mm_andnot_si128(belowA0, is(0xED));
        const __m128i tooLarge = _mm_or_si128(_mm_andnot_si128(below90, is(0xF4)), atLeast(0xF5));
        const __m128i fault = _mm_or_si128(_mm_or_si128(overlong, surrogate), tooLarge);

        if ((allDue & 0xFFFF) != continuations || bits(fault) != 0) break;
        due = allDue >> 16;
    }
    if (due == 0) return static_cast<std::size_t>(next - text.data());
    do {
        --next;
    } while (isContinuation(*next));
    return static_cast<std::size_t>(next - text.data());
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
#if defined(__SSE2__)
    checked = wellFormedBlocksLength(text);
#endif
    return checked + wellFormedUtf8LengthPortably(text.substr(checked));
}

}  // namespace InkoraKit
