#include "doctor/bluez/Checks.h"

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* name = "other programs";

template <class T>
T valueOr(const T* value, T preset) {
    return value ? *value : preset;
}

// A pen that is linked does not advertise. The kit would take it over, and end the link in the end.
std::optional<Finding> heldPen(const Machine& machine) {
    const auto text = [&](const std::string& device, const char* property) {
        return valueOr(machine.objects.property<std::string>(device, ObjectTree::device, property),
                       {});
    };
    for (const std::string& device : machine.objects.below(machine.adapter, ObjectTree::device)) {
        const bool isConnected =
            valueOr(machine.objects.property<bool>(device, ObjectTree::device, "Connected"), false);
        if (!isConnected || !isPenName(text(device, "Name"))) continue;
        const std::string address = text(device, "Address");
        return Finding{name, Finding::State::fault,
                       "connected to " + shown(text(device, "Name")) + ' ' + address +
                           ", or left so by one that has ended",
                       "bluetoothctl disconnect " + address, "End that program, or its link:"};
    }
    return std::nullopt;
}

}  // namespace

Findings lookAtOtherPrograms(Machine& machine) {
    if (const auto held = heldPen(machine)) return {*held};
    const bool isScanning = valueOr(
        machine.objects.property<bool>(machine.adapter, ObjectTree::adapter, "Discovering"), false);
    if (isScanning)
        return {{name, Finding::State::warning, "one scans, which slows connecting", "",
                 "Close the settings of Bluetooth, or what else looks for devices."}};
    return {{name, Finding::State::ok, "none scans, none is connected to a pen"}};
}

}  // namespace InkoraTool
