#pragma once

#include <optional>

namespace InkoraKit {

/// What a `JSON` value is.
enum class Type { number, string, bool_, array, dictionary, null, unknown };

/// The type with the raw value, if there is one.
constexpr std::optional<Type> TypeFromRawValue(int rawValue) {
    if (rawValue < 0 || rawValue > static_cast<int>(Type::unknown)) return std::nullopt;
    return static_cast<Type>(rawValue);
}

}  // namespace InkoraKit
