#pragma once

#include <filesystem>
#include <string_view>

namespace InkoraKit {

/// What keeps an adapter's radio off (rfkill).
enum class RadioBlock {
    none,
    soft,  // the system, which can be told to let it (rfkill unblock)
    hard,  // a switch or a key of the machine
};

/// The kernel tells it to everybody; BlueZ does not before 5.66, and there only as an experiment.
/// Of an adapter blocked both ways it is the hard one. `adapter` is BlueZ's object:
/// /org/bluez/hci0.
RadioBlock radioBlockOf(std::string_view adapter,
                        const std::filesystem::path& controllers = "/sys/class/bluetooth");

}  // namespace InkoraKit
