#pragma once

#include "platform/bluetooth/RadioErrors.h"

namespace InkoraKit::virtualErrors {

inline NSError linkTimedOut() {
    return radioErrors::error(CBError::connectionTimeout,
                              "The connection has timed out unexpectedly.");
}
inline NSError connectionRefused() {
    return radioErrors::error(CBError::connectionFailed, "The connection has failed unexpectedly.");
}
inline NSError rssiUnavailable() {
    return radioErrors::error(CBError::operationNotSupported, "The operation is not supported.");
}
inline NSError invalidHandle() {
    return radioErrors::attributeError(0x01, "The handle is invalid.");
}
inline NSError readNotPermitted() {
    return radioErrors::attributeError(0x02, "Reading is not permitted.");
}
inline NSError requestNotSupported() {
    return radioErrors::attributeError(0x06, "The request is not supported.");
}

}  // namespace InkoraKit::virtualErrors
