#pragma once

#include "platform/foundation/values/Storage.h"

#include <cstddef>
#include <cstdint>
#include <optional>

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

}  // namespace InkoraKit::DictionaryIndex
