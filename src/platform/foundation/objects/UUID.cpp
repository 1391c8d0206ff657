#include <InkoraKit/platform/UUID.h>

#include <cstring>
#include <random>

namespace InkoraKit {
namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenAt(std::size_t position) {
    return position == 8 || position == 13 || position == 18 || position == 23;
}

std::optional<std::uint8_t> hexValue(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
    if (digit >= 'a' && digit <= 'f') return static_cast<std::uint8_t>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F') return static_cast<std::uint8_t>(digit - 'A' + 10);
    return std::nullopt;
}

}  // namespace

UUID::UUID() : bytes_{} {
    std::random_device source;
    for (std::uint8_t& byte : bytes_) byte = static_cast<std::uint8_t>(source());
    bytes_[6] = static_cast<std::uint8_t>((bytes_[6] & 0x0f) | 0x40);  // version 4
    bytes_[8] = static_cast<std::uint8_t>((bytes_[8] & 0x3f) | 0x80);  // RFC 4122 variant
}

std::optional<UUID> UUID::fromString(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    Bytes bytes{};
    std::size_t digits = 0;
    for (std::size_t position = 0; position < textLength; ++position) {
        if (isHyphenAt(position)) {
            if (text[position] != '-') return std::nullopt;
            continue;
        }
        const auto value = hexValue(text[position]);
        if (!value) return std::nullopt;
        bytes[digits / 2] = static_cast<std::uint8_t>((bytes[digits / 2] << 4) | *value);
        ++digits;
    }
    return UUID(bytes);
}

std::string UUID::uuidString() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const std::uint8_t byte : bytes_) {
        if (isHyphenAt(text.size())) text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    }
    return text;
}

}  // namespace InkoraKit

std::size_t std::hash<InkoraKit::UUID>::operator()(const InkoraKit::UUID& uuid) const noexcept {
    // Either half may be constant (every UUID on the Bluetooth base ends alike), so both count.
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::memcpy(&high, uuid.bytes().data(), sizeof high);
    std::memcpy(&low, uuid.bytes().data() + sizeof high, sizeof low);
    return std::hash<std::uint64_t>{}(high ^ (low * 0x9E3779B97F4A7C15u));
}
