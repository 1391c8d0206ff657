#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace InkoraKit {

/// What is done at every value of a document when it is walked through for the clock.
struct Tally {
    void node() noexcept { ++nodes; }
    void text(std::size_t size) noexcept { lengths += size; }
    void number(double number) noexcept { sum += number; }

    std::uint64_t nodes = 0;    ///< Values of any type, the document itself included.
    std::uint64_t lengths = 0;  ///< Bytes of all texts and keys.
    double sum = 0;
};

/// What a document holds, as a library shows it. A wrong number shows however small it is among the
/// others, the order of members and the last bit of a number do not.
struct Contents {
    void node() noexcept { ++nodes; }
    void text(std::size_t size) noexcept { lengths += size; }
    void number(double number) noexcept {
        int exponent = 0;
        mantissas += std::frexp(number, &exponent);
        exponents += exponent;
    }

    bool isSameAs(const Contents& other) const noexcept {
        return nodes == other.nodes && lengths == other.lengths && exponents == other.exponents &&
               std::abs(mantissas - other.mantissas) < 1e-6;
    }

    std::uint64_t nodes = 0;
    std::uint64_t lengths = 0;
    std::int64_t exponents = 0;
    double mantissas = 0;
};

}  // namespace InkoraKit
