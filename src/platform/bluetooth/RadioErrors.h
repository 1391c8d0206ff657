#pragma once

#include <InkoraKit/platform/CBError.h>
#include <InkoraKit/platform/NSError.h>

#include <string>

/// The errors that a radio reports, the same for each.
namespace InkoraKit::radioErrors {

inline NSError error(CBError code, const std::string& text) {
    return NSError(CBErrorDomain, static_cast<std::int64_t>(code),
                   {{NSLocalizedDescriptionKey, text}});
}

/// With a code of the attribute protocol: Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1.
inline NSError attributeError(int code, const std::string& text) {
    return NSError(CBATTErrorDomain, code, {{NSLocalizedDescriptionKey, text}});
}

inline NSError peripheralDisconnected() {
    return error(CBError::peripheralDisconnected, "The specified device has disconnected from us.");
}

}  // namespace InkoraKit::radioErrors
