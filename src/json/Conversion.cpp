#include "Conversion.h"

#include <InkoraKit/JSON.h>

#include "platform/foundation/values/Storage.h"

#include <algorithm>
#include <vector>

namespace InkoraKit {

namespace {

bool isJSON(const Any& value) {
    return value.as<JSON>() != nullptr;
}

bool isDictionary(const Any& value) {
    return Storage::tag(value) == AnySlot::dictionary;
}

bool allElements(const Any& array, bool (*is)(const Any&)) {
    const auto elements = Storage::elements(array);
    return std::all_of(elements.begin(), elements.end(), is);
}

/// The container with another value in place of each part.
template <class Replacement>
Any withParts(const Any& container, Replacement replacement) {
    if (isDictionary(container)) {
        Any members = Storage::emptyDictionary();
        for (const MemberSlots& member : Storage::members(container))
            Storage::set(members, member.key.text(), replacement(Storage::asAny(member.value)));
        return members;
    }
    Any elements = Storage::emptyArray();
    for (const Any& element : Storage::elements(container))
        Storage::append(elements, replacement(element));
    return elements;
}

bool isDictionaryOfJSON(const Any& value) {
    if (!isDictionary(value)) return false;
    const auto members = Storage::members(value);
    return std::all_of(members.begin(), members.end(), [](const MemberSlots& member) {
        return isJSON(Storage::asAny(member.value));
    });
}

template <class Map>
std::optional<Any> dictionaryFrom(const Any& value) {
    const Map* const map = value.as<Map>();
    if (!map) return std::nullopt;
    Dictionary members;
    for (const auto& [key, member] : *map) members.set(key, Any(member));
    return members;
}

}  // namespace

bool isArrayOfJSON(const Any& value) {
    if (value.as<std::vector<JSON>>()) return true;
    return Storage::tag(value) == AnySlot::array && Storage::count(value) > 0 &&
           allElements(value, isJSON);
}

std::optional<Any> dictionaryFromMap(const Any& value) {
    if (auto members = dictionaryFrom<std::map<std::string, JSON>>(value)) return members;
    if (auto members = dictionaryFrom<std::map<std::string, JSON, std::less<>>>(value))
        return members;
    return dictionaryFrom<std::unordered_map<std::string, JSON>>(value);
}

Any unwrapped(Any value) {
    std::vector<Any*> places{&value};
    for (std::size_t i = 0; i < places.size(); ++i) {  // which grow on the way
        Any& place = *places[i];
        if (!place.slot().isForeign()) continue;
        if (const JSON* const json = place.as<JSON>()) {
            place = json->object();
        } else if (isArrayOfJSON(place)) {
            place = JSON(place).object();
        } else if (isForeignContainer(place)) {
            const bool isArray = Storage::tag(place) == AnySlot::array;
            if (isArray && !allElements(place, isDictionary)) continue;
            for (std::size_t part = Storage::count(place); part-- > 0;)
                places.push_back(&Storage::writablePart(place, part));
        }
    }
    // Where nothing of the kind is left, nothing is to be looked for any more.
    for (; !places.empty(); places.pop_back())
        if (isForeignContainer(*places.back())) Storage::noteParts(*places.back());
    return value;
}

JSON JSON::fromElements(std::span<const JSON> elements) {
    JSON result;
    result.value_ = Storage::emptyArray();
    Storage::reserve(result.value_, elements.size());
    for (const JSON& element : elements) Storage::append(result.value_, element.object());
    result.settle();
    return result;
}

JSON JSON::fromAny(Any value) {
    JSON result;
    if (!value.slot().isForeign()) {
        result.value_ = std::move(value);
        return result;
    }
    if (const auto* const data = value.as<Data>()) return JSON(*data);
    if (const auto* const elements = value.as<std::vector<JSON>>()) return fromElements(*elements);
    if (auto members = dictionaryFromMap(value)) value = *std::move(members);
    if (isArrayOfJSON(value) || isDictionaryOfJSON(value))
        value = withParts(value, [](const Any& part) { return part.as<JSON>()->object(); });
    result.value_ = std::move(value);
    result.settle();
    return result;
}

Any JSON::withShownParts(const Any& container) {
    return withParts(container, [](const Any& part) { return JSON(part).value_; });
}

}  // namespace InkoraKit
