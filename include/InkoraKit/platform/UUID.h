#pragma once

#include <InkoraKit/Export.h>

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// A universally unique identifier (RFC 4122): 16 bytes in network order.
class INKORA_EXPORT UUID {
public:
    /// In network order.
    using Bytes = std::array<std::uint8_t, 16>;

    /// A new random UUID (version 4).
    UUID();
    /// The UUID of these bytes, of any version.
    constexpr explicit UUID(const Bytes& bytes) noexcept : bytes_(bytes) {}

    /// Reads the 36-character form, in either case; absent when the text is malformed.
    static std::optional<UUID> fromString(std::string_view text);

    /// The first one is that of the text's first two digits.
    const Bytes& bytes() const noexcept { return bytes_; }

    /// 36 characters, upper case: 26F927A3-C31C-D452-AEBA-FB2D5FC71825.
    std::string uuidString() const;
    std::string description() const { return uuidString(); }

    /// Byte by byte, as the texts sort.
    friend bool operator==(const UUID&, const UUID&) = default;
    friend constexpr std::strong_ordering operator<=>(const UUID& left,
                                                      const UUID& right) noexcept {
        if (left.bytes_ == right.bytes_) return std::strong_ordering::equal;
        return left.bytes_ < right.bytes_ ? std::strong_ordering::less
                                          : std::strong_ordering::greater;
    }

private:
    Bytes bytes_;
};

}  // namespace InkoraKit

template <>
struct INKORA_EXPORT std::hash<InkoraKit::UUID> {
    std::size_t operator()(const InkoraKit::UUID& uuid) const noexcept;
};
