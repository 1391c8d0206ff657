#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace InkoraKit {

class Owner;

/// What precedes the elements of an array or the members of a dictionary, wherever they live.
struct NodeHeader {
    std::uint32_t count;
    std::uint32_t capacity;
    Owner* owner;
};

/// The sixteen bytes that an `Any` consists of, and of which arrays and dictionaries are made.
/// An implementation detail of `Any`; hosts have no use for it.
///
///     byte  0       7 8      11 12   13  14   15
///          | payload           | unused     |tag|   number, truth value; null and absent are all 0
///          | text, ended by zeros      |size|tag|   text of up to 14 bytes
///          | pointer  | size   | unused     |tag|   longer text
///          | pointer  | unused              |tag|   decimal, array, dictionary, object
///
/// What a pointer leads to is preceded by a pointer to its `Owner`, which counts its users. The
/// highest bit of the tag tells that this slot is one of them. A slot within an array or dictionary
/// need not be, where the container keeps what it leads to alive by other means.
struct AnySlot {
    enum Tag : std::uint8_t {
        absent,
        null,
        boolean,  // from here on in the order of NSNumber's kinds
        int8,
        int16,
        int32,
        int64,
        uint64,
        float32,
        float64,
        shortText,
        longText,  // from here on with a pointer
        malformedText,
        decimal,
        array,
        dictionary,
        object
    };

    static constexpr std::size_t longestShortText = 14;
    static constexpr std::uint8_t countedFlag = 0x80;

    constexpr AnySlot() noexcept : bytes{} {}
    AnySlot(Tag tag, std::uint64_t payload) noexcept : bytes{} {
        std::memcpy(bytes.data(), &payload, sizeof payload);
        bytes[15] = tag;
    }
    AnySlot(Tag tag, const void* pointer, std::uint32_t size = 0) noexcept : bytes{} {
        std::memcpy(bytes.data(), &pointer, sizeof pointer);
        std::memcpy(bytes.data() + 8, &size, sizeof size);
        bytes[15] = tag;
    }

    Tag tag() const noexcept { return static_cast<Tag>(bytes[15] & ~countedFlag); }
    bool isShared() const noexcept { return tag() >= longText; }
    bool isCounted() const noexcept { return (bytes[15] & countedFlag) != 0; }
    void setCounted() noexcept { bytes[15] |= countedFlag; }
    void clearCounted() noexcept { bytes[15] &= static_cast<std::uint8_t>(~countedFlag); }

    bool isNumber() const noexcept {
        return (tag() >= boolean && tag() <= float64) || tag() == decimal;
    }
    /// Text that is well-formed UTF-8.
    bool isText() const noexcept { return tag() == shortText || tag() == longText; }

    bool isContainer() const noexcept { return tag() == array || tag() == dictionary; }
    /// An integer of 64 bits, or of fewer.
    bool isInteger() const noexcept { return tag() >= int8 && tag() <= int64; }

    std::uint64_t payload() const noexcept {
        std::uint64_t word;
        std::memcpy(&word, bytes.data(), sizeof word);
        return word;
    }
    /// What follows the payload: with it, all of a short text.
    std::uint64_t rest() const noexcept {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + 8, sizeof word);
        return word;
    }
    std::int64_t integer() const noexcept { return static_cast<std::int64_t>(payload()); }
    double real() const noexcept { return std::bit_cast<double>(payload()); }
    bool truth() const noexcept { return bytes[0] != 0; }

    std::byte* pointer() const noexcept {
        std::byte* address;
        std::memcpy(&address, bytes.data(), sizeof address);
        return address;
    }
    /// Of an array or dictionary.
    NodeHeader& header() const noexcept { return reinterpret_cast<NodeHeader*>(pointer())[-1]; }
    /// Of what a pointer leads to.
    Owner* owner() const noexcept { return reinterpret_cast<Owner**>(pointer())[-1]; }
    /// Whether the first element, or the value of the first member, is an object.
    bool startsWithObject() const noexcept {
        if (!isContainer() || header().count == 0) return false;
        const auto* const first = reinterpret_cast<const AnySlot*>(pointer());
        return first[tag() == dictionary ? 1 : 0].tag() == object;
    }
    std::uint32_t size() const noexcept {
        std::uint32_t number;
        std::memcpy(&number, bytes.data() + 8, sizeof number);
        return number;
    }
    std::string_view text() const noexcept {
        if (tag() == shortText) return {reinterpret_cast<const char*>(bytes.data()), bytes[14]};
        return {reinterpret_cast<const char*>(pointer()), size()};
    }

    alignas(8) std::array<std::uint8_t, 16> bytes;
};

static_assert(sizeof(AnySlot) == 16);

}  // namespace InkoraKit
