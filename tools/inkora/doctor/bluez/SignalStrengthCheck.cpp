#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"
#include "platform/radios/bluez/ManagementSocket.h"

using namespace InkoraKit;

namespace InkoraTool {

Findings lookAtSignalStrength(Machine&) {
    if (ManagementSocket::isPermitted())
        return {{named::signalStrength, Finding::State::ok, "told of connected pens too"}};
    return {{named::signalStrength, Finding::State::warning,
             "not told of a connected pen without CAP_NET_ADMIN", remedies::allowSignalStrength(),
             "A host of your own needs it likewise."}};
}

}  // namespace InkoraTool
