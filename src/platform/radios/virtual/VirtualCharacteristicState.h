#pragma once

#include <InkoraKit/virtual/VirtualCharacteristic.h>

#include <cstdint>
#include <deque>
#include <optional>

namespace InkoraKit {

struct VirtualCharacteristic::State {
    struct ReadAnswer {
        std::optional<Data> value;
        std::optional<NSError> error;
    };

    ReadAnswer nextReadAnswer();

    CBUUID uuid;
    std::uint32_t properties;
    std::optional<Data> value;
    std::deque<ReadAnswer> script = {};
    double readDelay = 0;
};

}  // namespace InkoraKit
