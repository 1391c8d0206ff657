#pragma once

#include <string_view>

namespace InkoraKit {

/// The domains of the errors that a host hears. The domain is the message: there is no other text.
struct InkoraErrorDomain {
    InkoraErrorDomain() = delete;

    static constexpr std::string_view BlueToothNotEnabled = "Bluetooth setting is disabled.";
    static constexpr std::string_view DeviceFailedToConnect = "Device is failed to connect.";
    static constexpr std::string_view DeviceConnectionTimeout = "Device is timed out to connect.";
};

}  // namespace InkoraKit
