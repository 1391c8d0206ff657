#include <InkoraKit/platform/CBUUID.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace InkoraKit {
namespace {

// Bytes 4 to 15 of the Bluetooth base UUID; the first four hold the short form.
constexpr std::array<std::uint8_t, 12> baseTail = {0x00, 0x00, 0x10, 0x00, 0x80, 0x00,
                                                   0x00, 0x80, 0x5F, 0x9B, 0x34, 0xFB};
constexpr std::string_view baseTailText = "-0000-1000-8000-00805F9B34FB";

UUID parse(std::string_view text) {
    std::string whole(text);
    if (text.size() == 4) whole.insert(0, "0000");
    if (whole.size() == 8) whole += baseTailText;
    if (const auto uuid = UUID::fromString(whole)) return *uuid;
    throw std::invalid_argument("String " + std::string(text) + " does not represent a valid UUID");
}

// The services of the assigned numbers that a central meets on nearly every device.
struct AssignedService {
    std::string_view uuid;
    std::string_view name;
};
constexpr std::array<AssignedService, 5> assignedServices = {{
    {"1800", "Generic Access"},
    {"1801", "Generic Attribute"},
    {"180A", "Device Information"},
    {"180D", "Heart Rate"},
    {"180F", "Battery"},
}};

}  // namespace

CBUUID::CBUUID(std::string_view text) : uuid_(parse(text)) {}

std::string CBUUID::uuidString() const {
    const UUID::Bytes& bytes = uuid_.bytes();
    if (!std::equal(baseTail.begin(), baseTail.end(), bytes.begin() + 4)) return uuid_.uuidString();
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = bytes[0] == 0 && bytes[1] == 0 ? 2 : 0; i < 4; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0x0f];
    }
    return text;
}

std::string CBUUID::description() const {
    std::string text = uuidString();
    for (const AssignedService& service : assignedServices)
        if (service.uuid == text) return std::string(service.name);
    return text;
}

}  // namespace InkoraKit
