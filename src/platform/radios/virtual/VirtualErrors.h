#pragma once

#include <InkoraKit/platform/NSError.h>

namespace InkoraKit::virtualErrors {

// The domains, codes and texts under which a Core Bluetooth central reports these situations.

inline NSError inDomain(const char* domain, int code, const char* text) {
    return NSError(domain, code, {{NSLocalizedDescriptionKey, text}});
}

inline NSError linkTimedOut() {
    return inDomain("CBErrorDomain", 6, "The connection has timed out unexpectedly.");
}
inline NSError closedByPeripheral() {
    return inDomain("CBErrorDomain", 7, "The specified device has disconnected from us.");
}
inline NSError connectionRefused() {
    return inDomain("CBErrorDomain", 10, "The connection has failed unexpectedly.");
}
inline NSError rssiUnavailable() {
    return inDomain("CBErrorDomain", 15, "The operation is not supported.");
}

// Codes of the attribute protocol: Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1.
inline NSError readNotPermitted() {
    return inDomain("CBATTErrorDomain", 2, "Reading is not permitted.");
}
inline NSError requestNotSupported() {
    return inDomain("CBATTErrorDomain", 6, "The request is not supported.");
}

}  // namespace InkoraKit::virtualErrors
