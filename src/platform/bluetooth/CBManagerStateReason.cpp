#include <InkoraKit/platform/CBManagerStateReason.h>

#include <array>
#include <cstddef>

namespace InkoraKit {
namespace {

struct Words {
    std::string_view name;
    std::string_view text;
};
constexpr std::array<Words, 7> words = {{
    {"none", ""},
    {"noBus", "There is no system bus."},
    {"noService", "There is no Bluetooth service, or it does not answer."},
    {"noAdapter", "There is no Bluetooth LE adapter."},
    {"switchedOff", "The adapter is switched off."},
    {"blocked", "The adapter is blocked (rfkill)."},
    {"notPermitted", "The system does not permit the use of Bluetooth."},
}};

}  // namespace

std::string_view description(CBManagerStateReason reason) noexcept {
    return words[static_cast<std::size_t>(reason)].text;
}

std::string printed(CBManagerStateReason reason) {
    return std::string(words[static_cast<std::size_t>(reason)].name);
}

}  // namespace InkoraKit
