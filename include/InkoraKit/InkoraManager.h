#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSObject.h>

#include <memory>

namespace InkoraKit {

class InkoraProtocols;

/// The host's way into the kit: register a receiver, start pairing, and listen. All of it forwards
/// to the process's one `InkoraHandler`. Belongs to the main run loop's thread, but for registering
/// and unregistering, which any thread may call.
class INKORA_EXPORT InkoraManager : public NSObject {
public:
    /// Makes `receiver` the one that hears from the kit, from the main run loop's next pass on.
    static void registerInkoraManager(const std::shared_ptr<InkoraProtocols>& receiver);

    /// Drops the receiver, likewise. A link stays up: stop pairing first to end it.
    static void unRegisterInkoraManager();

    /// Looks for a pen and connects to the first one found. While a scan goes on it changes
    /// nothing. While a pen is being connected or is connected it scans besides: what it finds
    /// takes that pen's place, whose link is closed without `didDisconnectPeripheral`; finding none
    /// is told like any scan without a pen (code 19), the link staying as it is.
    static void startDevicePairing();

    /// Disconnects the pen without scanning for it again. While no pen was found yet there is
    /// nothing to disconnect: a scan in progress then runs until it finds one or its time is up.
    static void stopPairingDevice();

    /// Asks for the battery level, answered once by `didPeripheralIndicated`. Before a connection
    /// it is kept for the first reading. Where the link before ended without
    /// `didDisconnectPeripheral` (another pen took its place, or the adapter went) the answer is
    /// the next level that the pen tells of its own accord. Between the connection and the first
    /// battery value there is no characteristic to read yet, and asking is a fatal stop: ask before
    /// pairing, or when `InkoraHandler::batterLifeCharacterstic()` is there.
    static void requestInkoraDeviceBatteryInfo();

    /// Asks for the signal strength, answered once by `didPeripheralSensored`. Before a connection
    /// it is kept for the first reading, the one of the pen's advertisement. Where the system does
    /// not tell the strength of a link (BlueZ does not, without CAP_NET_ADMIN) it waits for the
    /// next advertisement too, and so until the link has ended.
    static void requestInkoraDeviceProximityInfo();

    /// Asks for the pen's name and identifier, answered by `didPeripheralProvided` at once.
    static void requestInkoraDeviceGeneralInfo();
};

}  // namespace InkoraKit
