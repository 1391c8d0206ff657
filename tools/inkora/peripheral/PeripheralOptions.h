#pragma once

#include "peripheral/Instruction.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace InkoraTool {

/// What kind of pen `inkora pen` is, and for how long.
struct PeripheralOptions {
    std::string name = "InkoraPen";
    std::uint8_t battery = 100;  // percent
    std::string adapter = {};    // "hci1"; empty for the first that can be a pen
    std::vector<TimedInstruction> script = {};
    bool readsInput = true;                  // for more instructions
    std::uint32_t seed = 1;                  // of random colours
    std::optional<std::int64_t> count = {};  // colours
    std::optional<double> duration = {};     // seconds
    bool json = false;
};

}  // namespace InkoraTool
