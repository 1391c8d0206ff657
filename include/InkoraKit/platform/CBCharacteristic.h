#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSObject.h>

#include <cstdint>
#include <optional>
#include <string>

namespace InkoraKit {

/// A characteristic of a connected peripheral's service. Once the link has ended it is a relic:
/// commands on it are ignored.
class INKORA_EXPORT CBCharacteristic final : public NSObject {
public:
    /// The type. A service may have several characteristics of one.
    const CBUUID& uuid() const noexcept { return uuid_; }

    /// The property bits of the Bluetooth Core Specification, Vol 3, Part G, 3.3.1.1: 0x02 read,
    /// 0x10 notify, and so on.
    std::uint32_t properties() const noexcept { return properties_; }

    /// The last value read or notified: absent until there was one, possibly of no bytes.
    const std::optional<Data>& value() const noexcept { return value_; }

    /// Whether the peripheral has confirmed a subscription.
    bool isNotifying() const noexcept { return isNotifying_; }

    /// UUID, properties, value and subscription, for logs: `<CBCharacteristic: 0x…, UUID = 1F14,
    /// …>`.
    std::string description() const;

private:
    friend class CentralCore;
    friend class CBPeripheral;
    friend class CBService;

    CBCharacteristic(std::uint32_t handle, const CBUUID& uuid, std::uint32_t properties)
        : handle_(handle), uuid_(uuid), properties_(properties) {}

    std::uint32_t handle_;
    CBUUID uuid_;
    std::uint32_t properties_;
    std::optional<Data> value_;
    bool isNotifying_ = false;
    bool wantsNotifications_ = false;  // from the request on: values may overtake its confirmation
};

}  // namespace InkoraKit
