#pragma once

#include <cstdint>

namespace InkoraKit {

/// The codes of the errors that a host hears, each paired with a text of `InkoraErrorDomain`.
struct InkoraErrorCodes {
    InkoraErrorCodes() = delete;  ///< There are no objects of it.

    static constexpr std::int64_t inSufficientResources = 17;    ///< Bluetooth is not powered on
    static constexpr std::int64_t deviceFailedToConnect = 18;    ///< the pen could not be connected
    static constexpr std::int64_t deviceConnectionTimeout = 19;  ///< no pen was found in time
};

}  // namespace InkoraKit
