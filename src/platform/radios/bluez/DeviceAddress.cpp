#include "platform/radios/bluez/DeviceAddress.h"

#include <algorithm>
#include <charconv>

namespace InkoraKit {
namespace {

constexpr std::size_t addressLength = 17;
constexpr std::array<std::uint8_t, 6> mark = {'I', 'n', 'k', 'o', 'r', 'a'};
constexpr std::uint8_t version = 0x80;
constexpr std::uint8_t variant = 0x80;

std::optional<DeviceAddress::Type> typeFromText(std::string_view text) {
    if (text == "public") return DeviceAddress::Type::lePublic;
    if (text == "random") return DeviceAddress::Type::leRandom;
    return std::nullopt;
}

}  // namespace

std::optional<DeviceAddress> DeviceAddress::fromText(std::string_view address,
                                                     std::string_view typeText) {
    const auto type = typeFromText(typeText);
    if (!type || address.size() != addressLength) return std::nullopt;
    DeviceAddress result{{}, *type};
    for (std::size_t i = 0; i < result.bytes.size(); ++i) {
        const char* const digits = address.data() + 3 * i;
        const auto read = std::from_chars(digits, digits + 2, result.bytes[i], 16);
        if (read.ptr != digits + 2) return std::nullopt;
        if (i + 1 < result.bytes.size() && digits[2] != ':') return std::nullopt;
    }
    return result;
}

std::optional<DeviceAddress> DeviceAddress::fromIdentifier(const UUID& identifier) {
    const UUID::Bytes& from = identifier.bytes();
    if (from[7] != 1 && from[7] != 2) return std::nullopt;
    DeviceAddress result{{}, static_cast<Type>(from[7])};
    std::copy(from.begin() + 10, from.end(), result.bytes.begin());
    if (result.identifier() != identifier) return std::nullopt;  // some other kind of UUID
    return result;
}

UUID DeviceAddress::identifier() const {
    UUID::Bytes into{};
    std::copy(mark.begin(), mark.end(), into.begin());
    into[6] = version;
    into[7] = static_cast<std::uint8_t>(type);
    into[8] = variant;
    std::copy(bytes.begin(), bytes.end(), into.begin() + 10);
    return UUID(into);
}

}  // namespace InkoraKit
