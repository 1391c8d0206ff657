#include <InkoraKit/ManagerState.h>

#include "platform/foundation/process/Fatal.h"
#include "platform/foundation/process/RandomSource.h"

#include <array>
#include <cstddef>

namespace InkoraKit {
namespace {

constexpr std::array<std::string_view, 12> descriptions = {
    "Unknown State",
    "BlueToothDisabled State",
    "BlueToothEnabled State",
    "DiscoveryStarted State",
    "DiscoveryStopped State",
    "DeviceDiscovered State",
    "DeviceFailedToDiscover State",
    "DeviceDiscoveryTimedout",
    "DeviceConnected State",
    "DeviceFailedToConnect State",
    "DeviceDisconnected State",
    "DeviceCapturedColor State",
};

}  // namespace

std::string_view description(ManagerState state) noexcept {
    return descriptions[static_cast<std::size_t>(state)];
}

std::string printed(ManagerState state) {
    const std::string_view text = description(state);
    return std::string(text.substr(0, text.find(' ')));
}

ManagerStateRange::ManagerStateRange(ManagerState lower, ManagerState upper)
    : lower_(lower), upper_(upper) {
    if (upper < lower) fatalError("Can't form Range with upperBound < lowerBound");
}

ManagerState random(ManagerState lower, ManagerState upper) {
    const int difference = rawValue(upper) - rawValue(lower);
    if (difference < 0) fatalError("Negative value is not representable");
    const auto drawn = static_cast<int>(randomBelow(static_cast<std::uint32_t>(difference)));
    return static_cast<ManagerState>(rawValue(lower) + drawn);
}

ManagerState random(const ManagerStateRange& range) {
    return random(range.lowerBound(), range.upperBound());
}

}  // namespace InkoraKit
