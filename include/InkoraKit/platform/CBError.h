#pragma once

#include <cstdint>

namespace InkoraKit {

/// The domain of the errors with which links end or fail.
inline constexpr const char* CBErrorDomain = "CBErrorDomain";

/// The codes of `CBErrorDomain`.
enum class CBError : std::int64_t {
    unknown = 0,                 ///< the radio's reason has no code
    connectionTimeout = 6,       ///< the link was lost: nothing was heard for too long
    peripheralDisconnected = 7,  ///< the other end closed the link
    connectionFailed = 10,       ///< no link could be established
    operationNotSupported = 15,  ///< the system does not offer it
};

/// The domain of what a peripheral answers instead of a value; its codes are those of the attribute
/// protocol (Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1).
inline constexpr const char* CBATTErrorDomain = "CBATTErrorDomain";

}  // namespace InkoraKit
