#pragma once

#include <InkoraKit/platform/Any.h>

#include <optional>

namespace InkoraKit {

/// Whether a `JSON` made of the value may hold something else than the value: bytes are read, and
/// arrays and dictionaries of `JSON` become plain ones. What a reader makes never needs it, and
/// the answer costs a look at the first element at most.
inline bool mayBeConverted(const Any& value) noexcept {
    return value.slot().tag() == AnySlot::object || value.slot().startsWithObject();
}

/// Whether the value is an array of `JSON`: a `std::vector` of them, or an `Array` that holds
/// nothing else and is not empty.
bool isArrayOfJSON(const Any& value);

/// The platform's dictionary of `JSON` objects, if the value is a standard map of `JSON`.
std::optional<Any> dictionaryFromMap(const Any& value);

}  // namespace InkoraKit
