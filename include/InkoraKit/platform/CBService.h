#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/CBCharacteristic.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/NSObject.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

/// A service of a connected peripheral.
class INKORA_EXPORT CBService final : public NSObject {
public:
    /// The type. A peripheral may have several services of one.
    const CBUUID& uuid() const noexcept { return uuid_; }
    /// Not a secondary service, which only others refer to (Bluetooth Core Specification, Vol 3,
    /// Part G, 3.1).
    bool isPrimary() const noexcept { return isPrimary_; }

    /// The characteristics discovered so far, in the peripheral's order: absent before the first
    /// successful discovery, empty when none was found.
    const std::optional<std::vector<std::shared_ptr<CBCharacteristic>>>& characteristics()
        const noexcept {
        return characteristics_;
    }

    /// UUID and whether it is primary, for logs: `<CBService: 0x…, isPrimary = YES, UUID = 1F1F>`.
    std::string description() const;

private:
    friend class CentralCore;
    friend class CBPeripheral;

    CBService(std::uint32_t handle, const CBUUID& uuid, bool isPrimary)
        : handle_(handle), uuid_(uuid), isPrimary_(isPrimary) {}

    std::uint32_t handle_;
    CBUUID uuid_;
    bool isPrimary_;
    std::optional<std::vector<std::shared_ptr<CBCharacteristic>>> characteristics_;
    std::deque<std::vector<CBUUID>> discoveries_;  // what each open discovery asked for
};

}  // namespace InkoraKit
