// Compares how doubles are read and written with the standard library, for as long as wanted:
//     check-doubles [values] [seed]

#include "support/RealTextSample.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argumentCount, char** arguments) {
    const std::uint64_t values =
        argumentCount > 1 ? std::strtoull(arguments[1], nullptr, 10) : 100'000'000;
    const std::uint64_t seed = argumentCount > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;

    InkoraKit::RealTextSample sample(seed);
    for (std::uint64_t index = 0; index < values; ++index) {
        const std::string difference = sample.nextDifference();
        if (difference.empty()) continue;
        std::printf("value %ju of seed %ju: %s\n", std::uintmax_t{index}, std::uintmax_t{seed},
                    difference.c_str());
        return EXIT_FAILURE;
    }
    std::printf("%ju values as the standard library has them\n", std::uintmax_t{values});
    return EXIT_SUCCESS;
}
