#pragma once

#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/Owner.h>

#include "platform/foundation/values/Region.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace InkoraKit {

/// A member of a dictionary. The key is a text.
struct MemberSlots {
    AnySlot key;
    AnySlot value;
};

/// The inside of `Any`, for what works on whole documents.
///
/// An array is its elements one after the other, a dictionary its members in the order in which
/// they were added. Both are preceded by a `NodeHeader`. A dictionary with room for more than a few
/// members is followed by a table that finds the position of a key (see DictionaryIndex.h).
///
/// Nodes that a reader made live in a region and never change. A node that changes is on the heap
/// and has an owner of its own. It may have been copied from a region: its children then still
/// live there, uncounted, and it is itself one user of the region for all of them together.
class Storage {
public:
    static const AnySlot& slot(const Any& value) noexcept { return value.slot_; }
    static AnySlot& slot(Any& value) noexcept { return value.slot_; }
    static const Any& asAny(const AnySlot& slot) noexcept {
        return reinterpret_cast<const Any&>(slot);  // of which it is the only member
    }
    static Any& asAny(AnySlot& slot) noexcept { return reinterpret_cast<Any&>(slot); }

    static AnySlot::Tag tag(const Any& value) noexcept { return value.slot_.tag(); }
    static Owner& owner(const AnySlot& shared) noexcept { return *shared.owner(); }
    static NodeHeader& header(const AnySlot& container) noexcept { return container.header(); }
    static std::uint32_t count(const Any& container) noexcept {
        return header(container.slot_).count;
    }

    static std::span<const Any> elements(const Any& array) noexcept {
        return {reinterpret_cast<const Any*>(array.slot_.pointer()), count(array)};
    }
    static std::span<const MemberSlots> members(const Any& dictionary) noexcept {
        return {reinterpret_cast<const MemberSlots*>(dictionary.slot_.pointer()),
                count(dictionary)};
    }
    /// The value of the member, or null.
    static const Any* member(const Any& dictionary, std::string_view key) noexcept {
        return reinterpret_cast<const Any*>(AnySlot::member(dictionary.slot_, AnySlot::view(key)));
    }

    static void append(Any& array, Any element);
    static void reserve(Any& container, std::size_t count);
    static void set(Any& array, std::size_t position, Any element);
    static void set(Any& dictionary, std::string_view key, Any value);

    /// The place of an element or member to write to, after making the container its own; the
    /// place of a member that is new holds an absent value. Valid until the container changes,
    /// which is to take note (`AnySlot::note`) of what is put there.
    static Any& writableElement(Any& array, std::size_t position);
    static Any& writableMember(Any& dictionary, std::string_view key);
    /// Of an array the element, of a dictionary the value of the member at a position.
    static Any& writablePart(Any& container, std::size_t position);
    /// Takes note anew of what the container holds.
    static void noteParts(Any& container) noexcept;

    static Any emptyArray() noexcept;
    static Any emptyDictionary() noexcept;

    static NSNumber number(const Any& value) noexcept { return value.number(); }
    static std::string_view text(const Any& value) noexcept { return value.slot_.text(); }

    /// Whether two values are equal that are not both arrays or both dictionaries.
    static bool areEqualLeaves(const Any& left, const Any& right);

    /// Takes down an owner that has lost its last user, and what thereby loses its own, in a loop:
    /// how deep the contents are nested does not matter.
    static void destroy(Owner* owner) noexcept;

private:
    static void destroyObject(Owner* owner) noexcept;
};

}  // namespace InkoraKit
