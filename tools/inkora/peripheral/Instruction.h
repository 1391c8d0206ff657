#pragma once

#include "peripheral/PenControls.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraTool {

/// The longest name that an advertisement has room for, in bytes of UTF-8: it goes into the answer
/// to a scan, 31 bytes of which each field takes two (Bluetooth Core Specification, Vol 3, Part C,
/// 11).
inline constexpr std::size_t longestPenName = 29;

/// Why a pen cannot have that name; empty when it can.
std::string faultOfPenName(const std::string& name);

/// What a line tells a pen to do.
using Instruction = std::function<void(PenControls& pen)>;

/// Reads a line:
///
///     #FF8000 | orange | random     captures that colour, once
///     COLOUR COUNT [SECONDS]        so many times, so far apart
///     battery PERCENT
///     name NAME
///     drop | silent | answer | hide | show | quit
///     raw HEX                       any bytes in place of a colour
///
/// A line that is blank or begins with "# " does nothing.
/// @throws Failure which says what is wrong with it
Instruction instructionOf(std::string_view line);

struct TimedInstruction {
    double time;  // seconds
    Instruction instruction;
};

/// Reads lines with the time before each, `2.5 drop`.
/// @throws Failure which names the line that is wrong, or when the file cannot be read
std::vector<TimedInstruction> readPenScript(const std::string& file);

}  // namespace InkoraTool
