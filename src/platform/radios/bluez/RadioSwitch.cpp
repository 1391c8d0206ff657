#include "platform/radios/bluez/RadioSwitch.h"

#include "platform/radios/bluez/ObjectTree.h"

#include <fstream>
#include <system_error>

namespace InkoraKit {
namespace {

bool isSet(const std::filesystem::path& file) {
    int value = 0;
    std::ifstream(file) >> value;
    return value != 0;
}

}  // namespace

// hci0/rfkill3/soft and hci0/rfkill3/hard hold a 0 or a 1.
RadioBlock radioBlockOf(std::string_view adapter, const std::filesystem::path& controllers) {
    RadioBlock block = RadioBlock::none;
    std::error_code none;  // a controller without a switch, or a system without rfkill
    const auto folder = controllers / nameOfObject(adapter);
    for (std::filesystem::directory_iterator entry(folder, none), end; entry != end;
         entry.increment(none)) {
        if (!entry->path().filename().string().starts_with("rfkill")) continue;
        if (isSet(entry->path() / "hard")) return RadioBlock::hard;
        if (isSet(entry->path() / "soft")) block = RadioBlock::soft;
    }
    return block;
}

}  // namespace InkoraKit
