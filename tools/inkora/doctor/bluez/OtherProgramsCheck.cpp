#include "doctor/bluez/Checks.h"

#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/platform/CBUUID.h>

#include "link/PenName.h"

#include <algorithm>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// BlueZ puts the name that a device has within in the place of the one that it advertises once it
// was connected; what a pen offers stays.
bool isPen(const Machine& machine, const std::string& device) {
    if (isPenName(machine.objects.valueOf<std::string>(device, ObjectTree::device, "Name")))
        return true;
    const CBUUID ofPens(InkoraConstants::PeripheralServiceUuid);
    const auto services =
        machine.objects.valueOf<std::vector<std::string>>(device, ObjectTree::device, "UUIDs");
    return std::ranges::any_of(services, [&](const std::string& service) {
        const auto uuid = UUID::fromString(service);
        return uuid && CBUUID(*uuid) == ofPens;
    });
}

// A pen that is linked does not advertise. The kit would take it over, and end the link in the end.
std::string heldPen(const Machine& machine) {
    for (const std::string& device : machine.objects.below(machine.adapter, ObjectTree::device))
        if (machine.objects.valueOf<bool>(device, ObjectTree::device, "Connected") &&
            isPen(machine, device))
            return device;
    return {};
}

}  // namespace

Findings lookAtOtherPrograms(Machine& machine) {
    if (const std::string pen = heldPen(machine); !pen.empty()) {
        const auto address =
            machine.objects.valueOf<std::string>(pen, ObjectTree::device, "Address");
        return {{named::otherPrograms, Finding::State::fault,
                 "connected to " +
                     shown(machine.objects.valueOf<std::string>(pen, ObjectTree::device, "Alias")) +
                     ' ' + address + ", or left so by one that has ended",
                 "bluetoothctl disconnect " + address, "End that program, or its link:"}};
    }
    if (machine.objects.valueOf<bool>(machine.adapter, ObjectTree::adapter, "Discovering"))
        return {{named::otherPrograms, Finding::State::warning, "one scans, which slows connecting",
                 "", "Close the settings of Bluetooth, or what else looks for devices."}};
    return {{named::otherPrograms, Finding::State::ok, "none scans, none is connected to a pen"}};
}

}  // namespace InkoraTool
