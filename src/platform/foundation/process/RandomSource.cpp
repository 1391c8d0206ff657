#include "platform/foundation/process/RandomSource.h"

#include <random>

namespace InkoraKit {

std::uint32_t randomBelow(std::uint32_t bound) {
    if (bound < 2) return 0;
    std::random_device source;
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(source);
}

}  // namespace InkoraKit
