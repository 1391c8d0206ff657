#pragma once

#include <string_view>

namespace InkoraKit {

/// The domains of the errors that a host hears. The domain is the message: there is no other text.
struct InkoraErrorDomain {
    InkoraErrorDomain() = delete;  ///< There are no objects of it.

    /// With code 17: Bluetooth is off, missing or not permitted.
    static constexpr std::string_view BlueToothNotEnabled = "Bluetooth setting is disabled.";
    /// With code 18: the pen that was found could not be connected.
    static constexpr std::string_view DeviceFailedToConnect = "Device is failed to connect.";
    /// With code 19: no pen was found in time.
    static constexpr std::string_view DeviceConnectionTimeout = "Device is timed out to connect.";
};

}  // namespace InkoraKit
