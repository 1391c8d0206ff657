#pragma once

#include <cstdint>

namespace InkoraKit {

/// The domain of every error that `JSON` makes, and the codes within it.
inline constexpr const char* ErrorDomain = "LitheJSONErrorDomain";
inline constexpr std::int64_t ErrorUnsupportedType = 999;   ///< The value is nothing JSON can hold.
inline constexpr std::int64_t ErrorIndexOutOfBounds = 900;  ///< The array has no such position.
inline constexpr std::int64_t ErrorWrongType = 901;         ///< The value is of another type.
inline constexpr std::int64_t ErrorNotExist = 500;          ///< The dictionary has no such key.
inline constexpr std::int64_t ErrorInvalidJSON = 490;       ///< The value cannot be written.

}  // namespace InkoraKit
