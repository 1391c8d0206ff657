#include "platform/radios/bluez/RadioSwitch.h"

#include <fstream>
#include <string>
#include <system_error>

namespace InkoraKit {

// hci0/rfkill3/soft and hci0/rfkill3/hard hold a 0 or a 1.
bool isRadioBlocked(std::uint16_t controller, const std::filesystem::path& controllers) {
    std::error_code none;  // a controller without a switch, or a system without rfkill
    const auto folder = controllers / ("hci" + std::to_string(controller));
    for (std::filesystem::directory_iterator entry(folder, none), end; entry != end;
         entry.increment(none)) {
        if (!entry->path().filename().string().starts_with("rfkill")) continue;
        for (const char* kind : {"soft", "hard"}) {
            int isBlocked = 0;
            std::ifstream(entry->path() / kind) >> isBlocked;
            if (isBlocked != 0) return true;
        }
    }
    return false;
}

}  // namespace InkoraKit
