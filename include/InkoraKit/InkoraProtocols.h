#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UIColor.h>

#include <cstdint>
#include <string>

namespace InkoraKit {

/// What a host hears from the kit. Override what is of interest; the rest does nothing. The kit
/// holds its receiver weakly: the host keeps it alive. Every call comes on the main run loop, with
/// one exception: a start while Bluetooth is off, and `requestInkoraDeviceGeneralInfo`, answer on
/// the thread that asks, before the request returns.
///
/// What a receiver throws disturbs nothing and is not lost: the kit completes what it was at, and
/// the exception leaves through `RunLoop::run…` in a block of its own, several in the order in
/// which they were thrown. That also goes for calls that come before a request returns.
class INKORA_EXPORT InkoraProtocols {
public:
    virtual ~InkoraProtocols();

    /// Bluetooth is off, missing or denied: "Bluetooth setting is disabled.", code 17. Comes with
    /// every change of the adapter to such a state, and in answer to a start in it. The kit scans
    /// by itself once Bluetooth is on.
    virtual void didFailToConnectWithBlueTooth([[maybe_unused]] const NSError& error) {}

    /// Declared for completeness; the kit never sends it.
    virtual void didDiscoverPeripheral() {}

    /// A pen is connected. Its colours follow as they are captured, the one that it captured last
    /// to begin with.
    virtual void didConnectedToPeripheral() {}

    /// No pen was found in time ("Device is timed out to connect.", code 19) or the one found could
    /// not be connected ("Device is failed to connect.", code 18). The kit is idle until it is
    /// started again.
    virtual void didFailedToInterrogate([[maybe_unused]] const NSError& error) {}

    /// The link has ended. Unless the host had stopped the kit, a new scan follows at once.
    virtual void didDisconnectPeripheral() {}

    /// A colour was captured; a colour equal to the last one is not reported again. One captured
    /// between the first reading of a connection and the subscription that follows it is lost: the
    /// pen tells the next one.
    virtual void didPeripheralCaptured([[maybe_unused]] const UIColor& colour) {}

    /// The battery level as the pen counts it, in percent, once for each request.
    virtual void didPeripheralIndicated([[maybe_unused]] std::int64_t batteryLevel) {}

    /// The pen's signal strength, once for each request: the magnitude of a value in dBm (57 means
    /// -57 dBm; smaller is nearer).
    virtual void didPeripheralSensored([[maybe_unused]] std::int64_t signalStrength) {}

    /// The pen's advertised name and its identifier, both empty while no pen is connected.
    virtual void didPeripheralProvided([[maybe_unused]] const std::string& deviceName,
                                       [[maybe_unused]] const std::string& deviceUdid) {}
};

}  // namespace InkoraKit
