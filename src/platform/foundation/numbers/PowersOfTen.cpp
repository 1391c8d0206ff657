#include "platform/foundation/numbers/PowersOfTen.h"

#include "platform/foundation/numbers/Words.h"

#include <algorithm>
#include <bit>

namespace InkoraKit {

namespace {

/// An integer of up to 960 bits, least significant limb first. It holds 5^324, and it keeps more
/// than 128 bits of its top bit divided by 5^342.
using Limbs = std::array<std::uint64_t, 15>;

constexpr void multiplyByFive(Limbs& integer) {
    std::uint64_t carry = 0;
    for (std::uint64_t& limb : integer) {
        const TwoWords product = multiplied(limb, 5, carry);
        limb = product.low;
        carry = product.high;
    }
}

/// Rounds down, which done again and again is as good as one division rounded down.
constexpr void divideByFive(Limbs& integer) {
    std::uint64_t remainder = 0;
    for (std::size_t index = integer.size(); index-- > 0;)
        integer[index] = divided(integer[index], 5, remainder);
}

constexpr PowerOfTen leadingBits(const Limbs& integer) {
    std::size_t top = integer.size() - 1;
    while (integer[top] == 0) --top;
    const auto limb = [&](std::size_t below) { return below > top ? 0 : integer[top - below]; };
    const int shift = std::countl_zero(integer[top]);
    if (shift == 0) return {limb(0), limb(1)};
    return {limb(0) << shift | limb(1) >> (64 - shift), limb(1) << shift | limb(2) >> (64 - shift)};
}

constexpr auto makePowersOfTen() {
    std::array<PowerOfTen, largestPowerOfTen - smallestPowerOfTen + 1> powers{};
    constexpr std::size_t one = -smallestPowerOfTen;

    Limbs integer{1};
    for (std::size_t index = one; index < powers.size(); ++index) {
        powers[index] = leadingBits(integer);
        multiplyByFive(integer);
    }

    integer = {};
    integer.back() = std::uint64_t{1} << 63;
    for (std::size_t index = one; index-- > 0;) {
        divideByFive(integer);
        powers[index] = leadingBits(integer);
    }
    return powers;
}

}  // namespace

constexpr std::array<PowerOfTen, largestPowerOfTen - smallestPowerOfTen + 1> powersOfTen =
    makePowersOfTen();

// Adding one to the low half rounds up.
static_assert(std::none_of(powersOfTen.begin(), powersOfTen.end(),
                           [](const PowerOfTen& power) { return power.low == ~std::uint64_t{0}; }));

}  // namespace InkoraKit
