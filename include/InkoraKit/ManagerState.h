#pragma once

#include <InkoraKit/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// Where the link to the pen stands. States are ordered by their raw values.
enum class ManagerState {
    Unknown = 0,                  ///< before anything is known of Bluetooth
    BlueToothDisabled = 1,        ///< Bluetooth cannot be used
    BlueToothEnabled = 2,         ///< Bluetooth has come on; a scan follows at once
    DiscoveryStarted = 3,         ///< a scan was asked for
    DiscoveryStopped = 4,         ///< no scan; also while the pen that was found is being connected
    DeviceDiscovered = 5,         ///< a pen was found; passing
    DeviceFailedToDiscover = 6,   ///< none was found; in the simulation alone, passing
    DeviceDiscoveryTimedout = 7,  ///< the scan's time was up; passing
    DeviceConnected = 8,          ///< a pen is connected and has told no colour yet
    DeviceFailedToConnect = 9,    ///< the pen could not be connected; passing
    DeviceDisconnected = 10,      ///< the link has ended
    DeviceCapturedColor = 11,     ///< the pen has told a colour
};

/// The state's number, from 0 to 11.
constexpr int rawValue(ManagerState state) noexcept {
    return static_cast<int>(state);
}

/// The state with that raw value; absent outside 0 to 11.
constexpr std::optional<ManagerState> ManagerStateFromRawValue(int rawValue) noexcept {
    if (rawValue < 0 || rawValue > 11) return std::nullopt;
    return static_cast<ManagerState>(rawValue);
}

/// A text for people: "BlueToothEnabled State". The one of `DeviceDiscoveryTimedout` has no suffix.
INKORA_EXPORT std::string_view description(ManagerState state) noexcept;

/// What a log line shows of a state: the bare name of its case, "BlueToothEnabled".
INKORA_EXPORT std::string printed(ManagerState state);

/// The states from `lower` to `upper`. A lower bound above the upper one is a fatal stop.
class INKORA_EXPORT ManagerStateRange {
public:
    /// Both bounds are of the range.
    ManagerStateRange(ManagerState lower, ManagerState upper);

    /// The first and the last of the states.
    ManagerState lowerBound() const noexcept { return lower_; }
    ManagerState upperBound() const noexcept { return upper_; }

private:
    ManagerState lower_;
    ManagerState upper_;
};

/// A state drawn evenly from `lower` up to, but never including, `upper`; `lower` when the two are
/// the same. A lower bound above the upper one is a fatal stop.
INKORA_EXPORT ManagerState random(ManagerState lower, ManagerState upper);

/// The same between the bounds of a range: here, too, the upper bound is never drawn.
INKORA_EXPORT ManagerState random(const ManagerStateRange& range);

}  // namespace InkoraKit
