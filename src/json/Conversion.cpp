#include "Conversion.h"

#include <InkoraKit/JSON.h>

#include "platform/foundation/values/Storage.h"

#include <algorithm>

namespace InkoraKit {

namespace {

bool isJSON(const Any& value) {
    return value.as<JSON>() != nullptr;
}

bool isDictionaryOfJSON(const Any& value) {
    if (Storage::tag(value) != AnySlot::dictionary || Storage::count(value) == 0) return false;
    return std::ranges::all_of(Storage::members(value), [](const MemberSlots& member) {
        return isJSON(Storage::asAny(member.value));
    });
}

template <class Map>
std::optional<Any> dictionaryFrom(const Any& value) {
    const Map* const map = value.as<Map>();
    if (!map) return std::nullopt;
    Dictionary members;
    members.reserve(map->size());
    for (const auto& [key, member] : *map) members.set(key, Any(member));
    return members;
}

}  // namespace

bool isArrayOfJSON(const Any& value) {
    if (value.as<std::vector<JSON>>()) return true;
    return Storage::tag(value) == AnySlot::array && Storage::count(value) > 0 &&
           std::ranges::all_of(Storage::elements(value), isJSON);
}

std::optional<Any> dictionaryFromMap(const Any& value) {
    if (auto members = dictionaryFrom<std::map<std::string, JSON>>(value)) return members;
    if (auto members = dictionaryFrom<std::map<std::string, JSON, std::less<>>>(value))
        return members;
    return dictionaryFrom<std::unordered_map<std::string, JSON>>(value);
}

JSON JSON::fromElements(const std::vector<JSON>& elements) {
    JSON result;
    result.value_ = Storage::emptyArray();
    Storage::reserve(result.value_, elements.size());
    for (const JSON& element : elements) Storage::append(result.value_, element.object());
    return result;
}

JSON JSON::fromAny(Any value) {
    JSON result;
    result.value_ = std::move(value);
    if (!mayBeConverted(result.value_)) return result;

    if (const auto* const data = result.value_.as<Data>()) return JSON(*data);
    if (const auto* const elements = result.value_.as<std::vector<JSON>>())
        return fromElements(*elements);
    if (isArrayOfJSON(result.value_)) {
        Array elements;
        for (const Any& element : Storage::elements(result.value_))
            elements.append(element.as<JSON>()->object());
        result.value_ = elements;
        return result;
    }
    if (auto members = dictionaryFromMap(result.value_)) result.value_ = *std::move(members);
    if (isDictionaryOfJSON(result.value_)) {
        Dictionary members;
        for (const MemberSlots& member : Storage::members(result.value_))
            members.set(member.key.text(), Storage::asAny(member.value).as<JSON>()->object());
        result.value_ = members;
    }
    return result;
}

}  // namespace InkoraKit
