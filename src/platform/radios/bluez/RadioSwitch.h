#pragma once

#include <cstdint>
#include <filesystem>

namespace InkoraKit {

/// Whether a switch of the machine, or the system, keeps a controller off (rfkill). The kernel
/// tells it to everybody; BlueZ does not before 5.66, and there only as an experiment.
bool isRadioBlocked(std::uint16_t controller,
                    const std::filesystem::path& controllers = "/sys/class/bluetooth");

}  // namespace InkoraKit
