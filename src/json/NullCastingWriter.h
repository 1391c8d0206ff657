#pragma once

#include <InkoraKit/platform/Any.h>

#include <cstdint>
#include <optional>
#include <string>

namespace InkoraKit {

/// The compact text of an array or dictionary, with absent values as null. Keys are written as they
/// stand; in texts only quotes and backslashes are escaped. Absent when a value below has no text,
/// or is nested deeper than `mostNested`: the elements of the container have depth 1.
std::optional<std::string> textCastingNilToNull(const Any& container, std::int64_t mostNested);

}  // namespace InkoraKit
