#pragma once

#include "platform/foundation/values/Storage.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// How a dictionary finds its keys. Few members are compared one by one. Beyond that each key has a
/// byte of its hash, its fingerprint, and sixteen of these are compared in one step. Many members
/// have a hash table of their positions besides, so that the time does not grow with their number.
namespace InkoraKit::DictionaryIndex {

constexpr std::uint32_t mostWithoutFingerprints = 16;
constexpr std::uint32_t mostWithoutTable = 64;

/// The bytes that the members and their index take together.
std::size_t size(std::uint32_t capacity) noexcept;

/// @param key not in one of the dictionaries without an index
std::optional<std::uint32_t> findInIndex(const MemberSlots* members, const NodeHeader& header,
                                         const AnySlot& key) noexcept;

/// Enters the key at `position`, which is not in the index yet.
void insert(MemberSlots* members, const NodeHeader& header, std::uint32_t position) noexcept;

/// Enters the first `header.count` keys into an index of which nothing is known.
void build(MemberSlots* members, const NodeHeader& header) noexcept;

/// Whether any two of the members, which are more than a few and in the index, have one key.
bool hasRepeatedKey(const MemberSlots* members, const NodeHeader& header) noexcept;

/// Whether the key of a member is the one of a probe or of another member.
inline bool areEqual(const AnySlot& left, const AnySlot& right) noexcept {
    if (left.tag() != right.tag()) {
        const bool isMalformed = left.tag() == AnySlot::malformedText;
        return isMalformed && left.text() == right.text();
    }
    if (left.tag() == AnySlot::shortText)
        return left.payload() == right.payload() && left.rest() == right.rest();
    return left.size() == right.size() &&
           std::memcmp(left.pointer(), right.pointer(), left.size()) == 0;
}

inline std::optional<std::uint32_t> find(const MemberSlots* members, const NodeHeader& header,
                                         const AnySlot& key) noexcept {
    if (header.capacity > mostWithoutFingerprints) return findInIndex(members, header, key);
    for (std::uint32_t position = 0; position < header.count; ++position) {
        if (areEqual(members[position].key, key)) return position;
    }
    return std::nullopt;
}

/// A view of a key in the form that slots have, to compare it with them. It owns nothing.
inline AnySlot probe(std::string_view key) noexcept {
    const std::size_t size = key.size();
    if (size > AnySlot::longestShortText)
        return AnySlot(AnySlot::longText, key.data(), static_cast<std::uint32_t>(size));
    AnySlot slot;
    if constexpr (std::endian::native == std::endian::little) {
        // The slot's two words are put together where they are soon wanted, in registers, from
        // loads that overlap: bytes that both have are the same.
        const auto wordOf = [&](auto word, std::size_t offset) {
            std::memcpy(&word, key.data() + offset, sizeof word);
            return std::uint64_t{word};
        };
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        if (size >= 8) {
            first = wordOf(std::uint64_t{}, 0);
            if (size > 8) second = wordOf(std::uint64_t{}, size - 8) >> 8 * (16 - size);
        } else if (size >= 4) {
            first = wordOf(std::uint32_t{}, 0) | wordOf(std::uint32_t{}, size - 4)
                                                     << 8 * (size - 4);
        } else if (size > 0) {
            first = wordOf(std::uint8_t{}, 0) | wordOf(std::uint8_t{}, size / 2) << 8 * (size / 2) |
                    wordOf(std::uint8_t{}, size - 1) << 8 * (size - 1);
        }
        second |= std::uint64_t{size} << 48 | std::uint64_t{AnySlot::shortText} << 56;
        std::memcpy(slot.bytes.data(), &first, sizeof first);
        std::memcpy(slot.bytes.data() + 8, &second, sizeof second);
    } else {
        std::memcpy(slot.bytes.data(), key.data(), size);
        slot.bytes[14] = static_cast<std::uint8_t>(size);
        slot.bytes[15] = AnySlot::shortText;
    }
    return slot;
}

}  // namespace InkoraKit::DictionaryIndex
