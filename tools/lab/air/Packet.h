#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A packet between host and controller (Bluetooth Core, volume 4, part A): its kind, then as part
/// E of that volume has it.
using Packet = std::vector<std::uint8_t>;

enum class PacketKind : std::uint8_t { command = 1, data = 2, event = 4 };

inline PacketKind kindOf(const Packet& packet) {
    return PacketKind{packet.front()};
}

/// The number of 16 bits at a place, 0 beyond the packet's end.
inline std::uint16_t numberAt(const Packet& packet, std::size_t place) {
    if (packet.size() < place + 2) return 0;
    return static_cast<std::uint16_t>(packet[place] | packet[place + 1] << 8);
}

/// The byte at a place, 0 beyond the packet's end.
inline std::uint8_t byteAt(const Packet& packet, std::size_t place) {
    return place < packet.size() ? packet[place] : std::uint8_t{0};
}
