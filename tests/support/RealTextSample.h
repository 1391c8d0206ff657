#pragma once

#include "platform/foundation/numbers/DecimalToDouble.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/numbers/ShortestDecimal.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace InkoraKit {

/// mantissa × 10^exponent
struct Decimal {
    std::uint64_t mantissa;
    std::int64_t exponent;

    std::string text() const { return std::to_string(mantissa) + 'e' + std::to_string(exponent); }
};

/// As the standard library reads it, which is exact.
inline double standardReading(const Decimal& decimal) {
    return std::strtod(decimal.text().c_str(), nullptr);
}

/// As the standard library writes it, in the layout of writeShortest().
inline std::string standardWriting(double value, double largestPlain) {
    if (std::isnan(value)) return "nan";
    const double magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= 1e-4 && magnitude <= largestPlain);
    std::array<char, 64> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    return {buffer.data(), end.ptr};
}

/// What differs from the standard library, empty when nothing does. nearestDouble() may leave open
/// what is halfway between two doubles.
inline std::string differenceInReading(const Decimal& decimal) {
    const double wanted = standardReading(decimal);
    const double value = nearestDouble(decimal.mantissa, decimal.exponent).value_or(wanted);
    if (std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(wanted)) return {};
    return decimal.text() + " read as " + standardWriting(value, 0) + " instead of " +
           standardWriting(wanted, 0);
}

inline std::string differenceInWriting(double value, double largestPlain) {
    const std::string wanted = standardWriting(value, largestPlain);
    std::array<char, longestRealText> buffer;
    const std::string text(buffer.data(), writeShortest(buffer.data(), value, largestPlain));
    return text == wanted ? "" : text + " written instead of " + wanted;
}

/// Draws values of all the kinds that take different ways through the reader and the writer.
class RealTextSample {
public:
    explicit RealTextSample(std::uint64_t seed) : random_(seed) {}

    /// Reads one value and writes one.
    /// @return what differs from the standard library, empty when nothing does
    std::string nextDifference() {
        const double largestPlain = below(2) == 0 ? 9'999'999'999'999'998 : 0x1p53;
        const Decimal decimal = drawDecimal();
        const std::string difference = differenceInReading(decimal);
        if (!difference.empty()) return difference;
        return differenceInWriting(standardReading(decimal), largestPlain);
    }

private:
    Decimal drawDecimal() {
        switch (below(4)) {
            case 0:  // any
                return {random_() >> below(64), static_cast<std::int64_t>(below(660)) - 346};
            case 1:  // short, as people write them
                return {below(1'000'000), static_cast<std::int64_t>(below(31)) - 8};
            case 2: {  // that of any double, mostly of 16 or 17 digits
                const double value = std::abs(std::bit_cast<double>(random_() | 1));
                if (!std::isfinite(value)) return {1, 0};
                const ShortestDecimal decimal = shortestDecimal(value);
                return {decimal.digits, decimal.exponent};
            }
            default: {  // a double, or halfway between two, or next to these
                constexpr std::array<std::uint64_t, 5> fives{1, 5, 25, 125, 625};
                const std::uint64_t halfway = (std::uint64_t{1} << 53) | random_() >> 11;
                const auto power = static_cast<std::size_t>(below(fives.size()));
                return {halfway * fives[power] + below(3) - 1, -static_cast<std::int64_t>(power)};
            }
        }
    }

    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    std::mt19937_64 random_;
};

}  // namespace InkoraKit
