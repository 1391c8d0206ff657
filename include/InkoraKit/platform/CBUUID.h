#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/UUID.h>

#include <compare>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// A Bluetooth UUID: 16, 32 or 128 bits. Two are equal when their 128-bit values are; the short
/// forms stand on the base UUID of the Bluetooth Core Specification (Vol 3, Part B, 2.5.1),
/// 0000xxxx-0000-1000-8000-00805F9B34FB.
class INKORA_EXPORT CBUUID {
public:
    /// Reads 4 or 8 hexadecimal digits or the 36-character form, in either case.
    /// @throws std::invalid_argument for anything else.
    explicit CBUUID(std::string_view text);
    /// The UUID of these 128 bits.
    explicit CBUUID(const UUID& uuid) noexcept : uuid_(uuid) {}

    /// The 128-bit value.
    const UUID& uuid() const noexcept { return uuid_; }

    /// Upper case, in the shortest form that the value has: four digits, eight, or 36 characters.
    std::string uuidString() const;

    /// The name of a service assigned by the Bluetooth SIG ("Battery"), else `uuidString()`.
    std::string description() const;

    /// By the 128-bit values.
    friend auto operator<=>(const CBUUID&, const CBUUID&) = default;

private:
    UUID uuid_;
};

}  // namespace InkoraKit

template <>
struct std::hash<InkoraKit::CBUUID> {
    std::size_t operator()(const InkoraKit::CBUUID& uuid) const noexcept {
        return std::hash<InkoraKit::UUID>{}(uuid.uuid());
    }
};
