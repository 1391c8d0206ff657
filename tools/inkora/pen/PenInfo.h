#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace InkoraTool {

/// What a pen tells of itself; absent where it, or the system, gave no answer.
struct PenInfo {
    std::optional<std::string> name;
    std::optional<std::string> identifier;
    std::optional<std::int64_t> battery;         // percent
    std::optional<std::int64_t> signalStrength;  // dBm

    bool isComplete() const { return name && identifier && battery && signalStrength; }
};

/// In dBm, from the magnitude that the kit reports; absent for 127, which stands for a strength
/// that the adapter does not know (Bluetooth Core Specification, Vol 4, Part E, 7.5.4).
constexpr std::optional<std::int64_t> signalStrengthFrom(std::int64_t magnitude) {
    if (magnitude == 127) return std::nullopt;
    return -magnitude;
}

}  // namespace InkoraTool
