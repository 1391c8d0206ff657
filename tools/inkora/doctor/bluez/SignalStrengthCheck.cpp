#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"
#include "platform/radios/bluez/ManagementSocket.h"

using namespace InkoraKit;

namespace InkoraTool {

Findings lookAtSignalStrength(Machine&) {
    constexpr const char* name = "signal strength";
    if (ManagementSocket::isPermitted())
        return {{name, Finding::State::ok, "told of connected pens too"}};
    return {{name, Finding::State::warning, "not told of a connected pen without CAP_NET_ADMIN",
             remedies::allowSignalStrength(), "A host of your own needs it likewise."}};
}

}  // namespace InkoraTool
