#pragma once

#include <cstdint>

namespace InkoraKit {

/// Code in `NSCocoaErrorDomain` of data that could not be read, or written, as what it should be.
inline constexpr std::int64_t propertyListReadCorruptError = 3840;

}  // namespace InkoraKit
