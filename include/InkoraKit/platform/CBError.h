#pragma once

#include <cstdint>

namespace InkoraKit {

/// The domain of the errors with which links end or fail, and its codes.
inline constexpr const char* CBErrorDomain = "CBErrorDomain";

enum class CBError : std::int64_t {
    connectionTimeout = 6,       ///< the link was lost: nothing was heard for too long
    peripheralDisconnected = 7,  ///< the other end closed the link
    connectionFailed = 10,       ///< no link could be established
};

}  // namespace InkoraKit
