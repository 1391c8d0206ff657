#pragma once

#include <cstdint>

namespace InkoraKit {

/// The domain of the errors with which links end or fail, and its codes.
inline constexpr const char* CBErrorDomain = "CBErrorDomain";

enum class CBError : std::int64_t {
    unknown = 0,
    connectionTimeout = 6,       ///< the link was lost: nothing was heard for too long
    peripheralDisconnected = 7,  ///< the other end closed the link
    connectionFailed = 10,       ///< no link could be established
    operationNotSupported = 15,
};

/// The domain of what a peripheral answers instead of a value; its codes are those of the attribute
/// protocol (Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1).
inline constexpr const char* CBATTErrorDomain = "CBATTErrorDomain";

}  // namespace InkoraKit
