#pragma once

#include "platform/foundation/values/Storage.h"

#include <cstddef>
#include <cstdint>

/// How a dictionary finds its keys. Few members are compared one by one; many have a hash table of
/// their positions besides, so that the time does not grow with their number.
namespace InkoraKit::DictionaryIndex {

constexpr std::uint32_t mostWithoutTable = 16;

/// The bytes that the members and their table take together.
std::size_t size(std::uint32_t capacity) noexcept;

/// @param key not in one of the dictionaries without a table
const MemberSlots* findInTable(const MemberSlots* members, const NodeHeader& header,
                               const AnySlot& key) noexcept;

/// Enters the key at `position`, which is not in the table yet.
void insert(MemberSlots* members, const NodeHeader& header, std::uint32_t position) noexcept;

/// Enters the first `header.count` keys into a table of which nothing is known.
/// @return whether they are all different, as far as there is a table
bool build(MemberSlots* members, const NodeHeader& header) noexcept;

/// Whether two texts are the same of which the first is malformed, or both are long. Apart from
/// what is inlined, where a slot that is looked into could not stay in registers.
[[gnu::noinline]] bool areEqualTexts(const AnySlot& left, AnySlot right) noexcept;

/// Whether the key of a member is the one of a probe or of another member.
inline bool areEqual(const AnySlot& left, AnySlot right) noexcept {
    if (left.tag() == AnySlot::shortText)
        return left.payload() == right.payload() && left.rest() == right.rest();
    return areEqualTexts(left, right);
}

/// The member that has the key, or null.
inline const MemberSlots* find(const MemberSlots* members, const NodeHeader& header,
                               AnySlot key) noexcept {
    if (header.capacity > mostWithoutTable) return findInTable(members, header, key);
    for (const MemberSlots* member = members; member != members + header.count; ++member)
        if (areEqual(member->key, key)) return member;
    return nullptr;
}

}  // namespace InkoraKit::DictionaryIndex
