#pragma once

#include <compare>
#include <cstdint>

namespace InkoraKit {

/// An integer of 128 bits. Not every machine's compiler has a type for it.
struct TwoWords {
    std::uint64_t high;
    std::uint64_t low;

    friend constexpr auto operator<=>(const TwoWords&, const TwoWords&) = default;
};

/// left × right + addend, for which two words always have room.
constexpr TwoWords multiplied(std::uint64_t left, std::uint64_t right,
                              std::uint64_t addend = 0) noexcept {
#if defined(__SIZEOF_INT128__)
    __extension__ typedef unsigned __int128 Product;
    const Product product = static_cast<Product>(left) * right + addend;
    return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
#else
    // By halves, each sum of which one word has room for.
    constexpr std::uint64_t half = 0xFFFFFFFF;
    const std::uint64_t bottom = (left & half) * (right & half) + (addend & half);
    const std::uint64_t cross = (left >> 32) * (right & half) + (bottom >> 32) + (addend >> 32);
    const std::uint64_t middle = (left & half) * (right >> 32) + (cross & half);
    return {(left >> 32) * (right >> 32) + (cross >> 32) + (middle >> 32),
            middle << 32 | (bottom & half)};
#endif
}

/// The quotient of a word, preceded by what remained of the words above it.
/// @param remainder less than the divisor, before and after
constexpr std::uint64_t divided(std::uint64_t word, std::uint32_t divisor,
                                std::uint64_t& remainder) noexcept {
    const auto half = [&](std::uint64_t digit) {
        const std::uint64_t dividend = remainder << 32 | digit;
        remainder = dividend % divisor;
        return dividend / divisor;
    };
    const std::uint64_t high = half(word >> 32);
    return high << 32 | half(word & 0xFFFFFFFF);
}

}  // namespace InkoraKit
