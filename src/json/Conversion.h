#pragma once

#include <InkoraKit/platform/Any.h>

#include <optional>

namespace InkoraKit {

/// Whether the value is an array or dictionary that may hold what a `JSON` shows otherwise than it
/// stands there: bytes are read, and arrays and dictionaries of `JSON` become plain ones. What a
/// reader makes is none.
inline bool isForeignContainer(const Any& value) noexcept {
    return value.slot().isContainer() && value.slot().isForeign();
}

/// Whether the value is an array of `JSON`: a `std::vector` of them, or an `Array` that holds
/// nothing else and is not empty.
bool isArrayOfJSON(const Any& value);

/// The platform's dictionary of `JSON` objects, if the value is a standard map of `JSON`.
std::optional<Any> dictionaryFromMap(const Any& value);

/// The value with all `JSON` in dictionaries, arrays of `JSON` and arrays of dictionaries, at any
/// depth, replaced by what it holds.
Any unwrapped(Any value);

}  // namespace InkoraKit
