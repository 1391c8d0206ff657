#include <InkoraKit/JSON.h>

#include "Aside.h"
#include "platform/foundation/values/Storage.h"

namespace InkoraKit {

namespace {

/// A place for a copy of a container.
struct PendingCopy {
    Any* place;
    const Any* original;
};

/// A copy of a value that is neither array nor dictionary.
Any detachedLeaf(const Any& leaf) {
    if (const auto text = leaf.as<std::string_view>()) return *text;
    if (const auto number = leaf.as<NSNumber>()) return *number;
    return leaf;
}

/// Puts a copy into the place, except for the contents of a container, which it puts off.
void detach(Any& place, const Any& original, std::vector<PendingCopy>& rest) {
    const bool isContainer =
        original.kind() == Any::Kind::array || original.kind() == Any::Kind::dictionary;
    if (isContainer) {
        rest.push_back({&place, &original});
    } else {
        place = detachedLeaf(original);
    }
}

void detachContents(const PendingCopy& pending, std::vector<PendingCopy>& rest) {
    const std::size_t count = Storage::count(*pending.original);
    const bool isArray = Storage::tag(*pending.original) == AnySlot::array;
    Any& copy = *pending.place;
    copy = isArray ? Storage::emptyArray() : Storage::emptyDictionary();
    Storage::reserve(copy, count);  // so that the places stay where they are
    for (std::size_t i = 0; i < count; ++i) {
        if (isArray) {
            Storage::append(copy, Any());
            detach(Storage::writableElement(copy, i), Storage::elements(*pending.original)[i],
                   rest);
        } else {
            const MemberSlots& member = Storage::members(*pending.original)[i];
            detach(Storage::writableMember(copy, member.key.text()), Storage::asAny(member.value),
                   rest);
        }
    }
    Storage::slot(copy).copyNotes(Storage::slot(*pending.original));
}

Any detachedCopy(const Any& original) {
    Any result;
    std::vector<PendingCopy> rest;
    detach(result, original, rest);
    while (!rest.empty()) {
        const PendingCopy pending = rest.back();
        rest.pop_back();
        detachContents(pending, rest);
    }
    return result;
}

}  // namespace

JSON JSON::detached() const {
    JSON result;
    result.value_ = detachedCopy(contents());
    const Aside* const aside = this->aside();
    if (!aside) return result;
    result.value_ =
        Aside{result.value_, aside->code, aside->step, detachedCopy(aside->formerArray), {}};
    return result;
}

}  // namespace InkoraKit
