#pragma once

#include <InkoraKit/platform/Any.h>

#include "platform/foundation/Storage.h"

#include <optional>

namespace InkoraKit {

/// Whether a `JSON` made of the value may hold something else than the value: bytes are read, and
/// arrays and dictionaries of `JSON` become plain ones. What a reader makes never needs it, and
/// the answer costs a look at the first element at most.
inline bool mayBeConverted(const Any& value) noexcept {
    switch (Storage::tag(value)) {
        case AnySlot::object:
            return true;
        case AnySlot::array:
            return Storage::count(value) > 0 &&
                   Storage::tag(Storage::elements(value).front()) == AnySlot::object;
        case AnySlot::dictionary:
            return Storage::count(value) > 0 &&
                   Storage::members(value).front().value.tag() == AnySlot::object;
        default:
            return false;
    }
}

/// Whether the value is an array of `JSON`: a `std::vector` of them, or an `Array` that holds
/// nothing else and is not empty.
bool isArrayOfJSON(const Any& value);

/// The platform's dictionary of `JSON` objects, if the value is a standard map of `JSON`.
std::optional<Any> dictionaryFromMap(const Any& value);

}  // namespace InkoraKit
