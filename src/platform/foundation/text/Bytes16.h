#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace InkoraKit {

/// Sixteen bytes looked at in one step. Masks have one bit for each byte, the first one lowest.
/// SSE2 is part of every x86-64; elsewhere compilers make vector code of the plain loops.
class Bytes16 {
public:
#if defined(__SSE2__)
    static Bytes16 load(const void* from) noexcept {
        return Bytes16(_mm_loadu_si128(static_cast<const __m128i*>(from)));
    }
    /// Two words as they stand in memory one after the other.
    static Bytes16 of(std::uint64_t first, std::uint64_t second) noexcept {
        return Bytes16(
            _mm_set_epi64x(static_cast<long long>(second), static_cast<long long>(first)));
    }
    void store(void* to) const noexcept {
        _mm_storeu_si128(static_cast<__m128i*>(to), bytes_);
    }

    std::uint32_t equalTo(char byte) const noexcept {
        return mask(_mm_cmpeq_epi8(bytes_, _mm_set1_epi8(byte)));
    }
    /// The bytes, taken as unsigned, that are at most `limit`.
    std::uint32_t atMost(char limit) const noexcept {
        return mask(_mm_cmpeq_epi8(_mm_min_epu8(bytes_, _mm_set1_epi8(limit)), bytes_));
    }
    /// The bytes of 0x80 and above.
    std::uint32_t nonASCII() const noexcept {
        return mask(bytes_);
    }
    /// The bytes from "0" to "9".
    std::uint32_t digits() const noexcept {
        const __m128i values = _mm_sub_epi8(bytes_, _mm_set1_epi8('0'));
        return mask(_mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values));
    }
    std::uint32_t equalTo(Bytes16 other) const noexcept {
        return mask(_mm_cmpeq_epi8(bytes_, other.bytes_));
    }
    friend Bytes16 operator|(Bytes16 left, Bytes16 right) noexcept {
        return Bytes16(_mm_or_si128(left.bytes_, right.bytes_));
    }
    /// The bytes below `count`, and zeros for the others.
    Bytes16 first(std::uint32_t count) const noexcept {
        const __m128i positions =
            _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
        const __m128i limit = _mm_set1_epi8(static_cast<char>(count));
        return Bytes16(_mm_and_si128(bytes_, _mm_cmplt_epi8(positions, limit)));
    }

private:
    explicit Bytes16(__m128i bytes) noexcept : bytes_(bytes) {}
    static std::uint32_t mask(__m128i bytes) noexcept {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
    }
    __m128i bytes_;
#else
    static Bytes16 load(const void* from) noexcept {
        Bytes16 result;
        std::memcpy(result.bytes_.data(), from, 16);
        return result;
    }
    static Bytes16 of(std::uint64_t first, std::uint64_t second) noexcept {
        Bytes16 result;
        std::memcpy(result.bytes_.data(), &first, 8);
        std::memcpy(result.bytes_.data() + 8, &second, 8);
        return result;
    }
    void store(void* to) const noexcept {
        std::memcpy(to, bytes_.data(), 16);
    }

    std::uint32_t equalTo(char byte) const noexcept {
        return maskOf([&](std::size_t i) { return bytes_[i] == static_cast<std::uint8_t>(byte); });
    }
    std::uint32_t atMost(char limit) const noexcept {
        return maskOf([&](std::size_t i) { return bytes_[i] <= static_cast<std::uint8_t>(limit); });
    }
    std::uint32_t nonASCII() const noexcept {
        return maskOf([&](std::size_t i) { return bytes_[i] >= 0x80; });
    }
    std::uint32_t digits() const noexcept {
        return maskOf([&](std::size_t i) { return bytes_[i] >= '0' && bytes_[i] <= '9'; });
    }
    std::uint32_t equalTo(Bytes16 other) const noexcept {
        return maskOf([&](std::size_t i) { return bytes_[i] == other.bytes_[i]; });
    }
    friend Bytes16 operator|(Bytes16 left, Bytes16 right) noexcept {
        for (std::size_t i = 0; i < 16; ++i) left.bytes_[i] |= right.bytes_[i];
        return left;
    }
    Bytes16 first(std::uint32_t count) const noexcept {
        Bytes16 result = *this;
        for (std::size_t i = count; i < 16; ++i) result.bytes_[i] = 0;
        return result;
    }

private:
    Bytes16() = default;
    template <class Test>
    std::uint32_t maskOf(Test test) const noexcept {
        std::uint32_t mask = 0;
        for (std::size_t i = 0; i < 16; ++i) mask |= (test(i) ? 1u : 0u) << i;
        return mask;
    }
    std::array<std::uint8_t, 16> bytes_;
#endif
};

}  // namespace InkoraKit
