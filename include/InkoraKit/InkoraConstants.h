#pragma once

#include <InkoraKit/Export.h>

#include <string_view>

namespace InkoraKit {

/// The kit's compiled-in settings.
struct INKORA_EXPORT InkoraConstants {
    InkoraConstants() = delete;  ///< There are no objects of it.

    /// Whether the kit logs its steps to standard output; a build option, off as shipped.
    static const bool LOG;

    /// Seconds that a scan may take to find a pen.
    static constexpr double BluetoothTimeout = 6.0;
    /// Seconds between the steps of the simulation mode.
    static constexpr double PeripheralFlowTimeout = 0.1;
    /// Seconds before a simulated capture, unless the handler was told otherwise.
    static constexpr double CaptureColorTimeout = 5.0;

    /// An advertiser is a pen when its local name contains one of these.
    static constexpr std::string_view PeripheralName = "HuveloPen";
    static constexpr std::string_view PeripheralName2 = "InkoraPen";

    /// The pen's service, and in it the colour and the battery characteristic: 16-bit UUIDs.
    static constexpr std::string_view PeripheralServiceUuid = "1F1F";
    static constexpr std::string_view PeripeheralCharactersticUuid = "1F14";
    static constexpr std::string_view PeripeheralCharactersticBatteryUuid = "1F17";
};

}  // namespace InkoraKit
