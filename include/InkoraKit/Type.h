#pragma once

#include <optional>

namespace InkoraKit {

/// What a `JSON` value is.
enum class Type {
    number,      ///< integer, floating point or decimal
    string,      ///< a text
    bool_,       ///< a truth value
    array,       ///< values by their positions
    dictionary,  ///< values by their keys
    null,        ///< null, or what is not there
    unknown      ///< nothing that JSON can hold
};

/// The type with the raw value, if there is one.
constexpr std::optional<Type> TypeFromRawValue(int rawValue) {
    if (rawValue < 0 || rawValue > static_cast<int>(Type::unknown)) return std::nullopt;
    return static_cast<Type>(rawValue);
}

}  // namespace InkoraKit
