#pragma once

#include <cstdint>

namespace InkoraKit {

/// Code in `NSCocoaErrorDomain` of data that could not be read, or written, as what it should be.
inline constexpr std::int64_t propertyListReadCorruptError = 3840;

/// Codes in the same domain of a file that could not be read, or written, for the system's reasons.
inline constexpr std::int64_t fileReadUnknownError = 256;
inline constexpr std::int64_t fileWriteUnknownError = 512;

}  // namespace InkoraKit
