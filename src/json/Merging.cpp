#include <InkoraKit/JSON.h>

#include "JSONError.h"
#include "platform/foundation/values/Storage.h"

namespace InkoraKit {

namespace {

bool areBoth(AnySlot::Tag tag, const Any& left, const Any& right) {
    return Storage::tag(left) == tag && Storage::tag(right) == tag;
}

/// Appends in place. Elements that are absent, or that no JSON can hold, become null, and bytes
/// what they are read as.
void appendElements(Any& array, const Any& others) {
    if (!array.slot().isPlain()) {
        const Any before = std::exchange(array, Storage::emptyArray());
        appendElements(array, before);
    }
    Storage::reserve(array, std::size_t{Storage::count(array)} + Storage::count(others));
    for (const Any& element : Storage::elements(others))
        Storage::append(array, JSON(element).object());
}

/// A dictionary, and the other one whose members are to be merged into it.
struct PendingMerge {
    Any* members;
    Any others;
};

/// Merges members, except for the contents of two dictionaries, which it puts off.
void mergeMembers(const PendingMerge& pending, std::vector<PendingMerge>& rest) {
    std::vector<std::pair<std::string_view, Any>> nested;
    for (const MemberSlots& other : Storage::members(pending.others)) {
        const std::string_view key = other.key.text();
        Any value = JSON(Storage::asAny(other.value)).object();
        Any& member = Storage::writableMember(*pending.members, key);
        Storage::slot(*pending.members).note(value.slot());
        if (member.slot().isForeign()) member = JSON(member).object();
        if (areBoth(AnySlot::dictionary, member, value)) {
            nested.emplace_back(key, std::move(value));
        } else if (areBoth(AnySlot::array, member, value)) {
            appendElements(member, value);
        } else {
            member = std::move(value);
        }
    }
    // Only now, with all members added, do their places stay where they are.
    for (auto& [key, value] : nested)
        rest.push_back({&Storage::writableMember(*pending.members, key), std::move(value)});
}

void mergeDictionaries(Any& members, const Any& others) {
    std::vector<PendingMerge> rest{{&members, others}};
    while (!rest.empty()) {
        const PendingMerge pending = std::move(rest.back());
        rest.pop_back();
        mergeMembers(pending, rest);
    }
}

}  // namespace

void JSON::merge(const JSON& other) & {
    if (type() != other.type())
        throw jsonError(ErrorWrongType,
                        "Couldn't merge, because the JSONs differ in type on top level.");
    // A copy, since it may be what changes. NOLINTNEXTLINE(performance-unnecessary-copy-init*)
    const Any others = other.contents();
    if (type() != Type::dictionary && type() != Type::array) {
        *this = other;
        return;
    }
    Any formerArray = takeFormerArray();
    if (type() == Type::dictionary) {
        mergeDictionaries(value_, others);
    } else {
        appendElements(value_, others);
    }
    settle(std::move(formerArray));
}

JSON JSON::merged(const JSON& other) const {
    JSON result = *this;
    result.merge(other);
    return result;
}

}  // namespace InkoraKit
