#pragma once

#include <InkoraKit/platform/UUID.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The address by which a Bluetooth LE device is reached, and the identifier made from it.
///
/// The identifier is a UUID of version 8 (RFC 9562, section 5.8), from which the address can be had
/// back, so that an identifier kept by a host is good for ever and nothing has to be stored:
///
///     bytes 0..5   "Inkora"
///     byte 6       0x80, the version
///     byte 7       the type of the address
///     byte 8       0x80, the variant
///     byte 9       0
///     bytes 10..15 the address, as written
struct DeviceAddress {
    /// As the kernel's management interface numbers them.
    enum class Type : std::uint8_t { lePublic = 1, leRandom = 2 };

    std::array<std::uint8_t, 6> bytes;
    Type type;

    /// From BlueZ's properties Address ("00:11:22:33:44:55") and AddressType ("public", "random").
    static std::optional<DeviceAddress> fromText(std::string_view address, std::string_view type);
    static std::optional<DeviceAddress> fromIdentifier(const UUID& identifier);

    UUID identifier() const;

    friend bool operator==(const DeviceAddress&, const DeviceAddress&) = default;
};

}  // namespace InkoraKit
