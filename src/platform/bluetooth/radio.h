#pragma once

#include <InkoraKit/platform/CBManagerState.h>
#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UUID.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The radio port: the one seam at which a Bluetooth stack is plugged in below the central manager.
///
/// A radio carries out commands and reports events. It keeps no rule that a host can see: when a
/// callback is delivered, what is reported once, what is dropped, belongs to the classes above. It
/// runs on the main run loop, starts no thread and never blocks.
namespace InkoraKit {

/// Names a service or characteristic within one link; meaningless once the link has ended.
using AttributeHandle = std::uint32_t;

/// In the place of a signal strength in dBm that the system does not know.
inline constexpr int unknownRSSI = 127;

/// What an advertiser sent, advertisement and scan response together: all of it that the radio has
/// heard in this scan, not only what is new.
struct Advertisement {
    std::optional<std::string> localName;
    std::vector<CBUUID> serviceUUIDs;
    std::optional<Data> manufacturerData;
    std::map<CBUUID, Data> serviceData;
    std::optional<int> txPowerLevel;  // dBm
    std::optional<bool> isConnectable;
};

/// An advertiser heard while scanning.
struct Sighting {
    UUID identifier;                  // the same for one device on this machine, always
    std::optional<std::string> name;  // the device's own (GAP) name where the system knows it
    Advertisement advertisement;
    int rssi = unknownRSSI;          // dBm
    bool reportEvenIfKnown = false;  // asks for a report although this scan had one already
};

struct RemoteService {
    AttributeHandle handle;
    CBUUID uuid;
    bool isPrimary = true;
};

struct RemoteCharacteristic {
    AttributeHandle handle;
    CBUUID uuid;
    std::uint32_t properties =
        0;  // the bits of the Bluetooth Core Specification, Vol 3, G, 3.3.1.1
};

/// What a radio cannot do on this system, so that the layer above can answer honestly.
struct RadioCapabilities {
    bool canReadRSSI = true;  // of a connected device
};

/// Where a radio reports to. Every call comes on the main run loop's thread; it may come from
/// inside a command. Errors say what went wrong in the system's own words.
class RadioListener {
public:
    virtual void adapterStateChanged(CBManagerState state) = 0;
    virtual void sighted(const Sighting& sighting) = 0;

    /// The device's own name became known or changed.
    virtual void nameChanged(const UUID& peripheral, const std::string& name) = 0;

    /// The link is up and the remote services can be asked for.
    virtual void connected(const UUID& peripheral) = 0;
    virtual void connectionFailed(const UUID& peripheral, const NSError& error) = 0;
    /// An established link has ended: without an error when `disconnect` asked for it.
    virtual void disconnected(const UUID& peripheral, const std::optional<NSError>& error) = 0;

    virtual void servicesDiscovered(const UUID& peripheral, std::vector<RemoteService> services,
                                    const std::optional<NSError>& error) = 0;
    virtual void characteristicsDiscovered(const UUID& peripheral, AttributeHandle service,
                                           std::vector<RemoteCharacteristic> characteristics,
                                           const std::optional<NSError>& error) = 0;
    /// The peripheral changed its table of services during the link: these services are no longer
    /// what they were, and their handles name nothing. What was subscribed stays so where the new
    /// table has the same characteristic (same service and characteristic UUID): its handle goes on
    /// naming it. The list is empty where the table has only grown.
    virtual void servicesInvalidated(const UUID& peripheral,
                                     const std::vector<AttributeHandle>& services) = 0;
    /// Exactly one answer to each `read`. A read that succeeds may still carry no value.
    virtual void valueRead(const UUID& peripheral, AttributeHandle characteristic,
                           std::optional<Data> value, const std::optional<NSError>& error) = 0;
    /// A notification or indication: one call for each that the peripheral sent, in its order.
    virtual void valueNotified(const UUID& peripheral, AttributeHandle characteristic,
                               std::optional<Data> value) = 0;
    virtual void subscriptionChanged(const UUID& peripheral, AttributeHandle characteristic,
                                     bool isNotifying, const std::optional<NSError>& error) = 0;
    /// The answer to `readRSSI`, in dBm; absent, with an error, where it could not be read.
    virtual void rssiRead(const UUID& peripheral, std::optional<int> rssi,
                          const std::optional<NSError>& error) = 0;

protected:
    ~RadioListener() = default;
};

class Radio {
public:
    virtual ~Radio() = default;

    virtual RadioCapabilities capabilities() const = 0;

    /// Called once, first of all. The radio reports its adapter's state as soon as it knows it, and
    /// each change from then on. The listener outlives the radio.
    virtual void start(RadioListener& listener) = 0;

    /// Why the adapter cannot be used now, where the radio knows.
    virtual CBManagerStateReason stateReason() const { return CBManagerStateReason::none; }

    /// Reports every advertiser heard from now on, as often as the system lets it be heard.
    virtual void startScan() = 0;
    virtual void stopScan() = 0;

    /// Answered by one `connected` or `connectionFailed`, however long it takes.
    virtual void connect(const UUID& peripheral) = 0;
    /// Ends a link, answered by `disconnected`, or an attempt to connect, answered by nothing:
    /// after it the attempt reports no more, and a new `connect` may follow at once.
    virtual void disconnect(const UUID& peripheral) = 0;

    // The rest is called for connected peripherals only, and with handles of their present link.
    virtual void discoverServices(const UUID& peripheral) = 0;
    virtual void discoverCharacteristics(const UUID& peripheral, AttributeHandle service) = 0;
    virtual void read(const UUID& peripheral, AttributeHandle characteristic) = 0;
    virtual void subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) = 0;
    virtual void readRSSI(const UUID& peripheral) = 0;
};

using RadioFactory = std::function<std::unique_ptr<Radio>()>;

/// Decides which radio a central manager created from now on opens, until its owner takes it back.
void installRadio(RadioFactory factory, const void* owner = nullptr);

/// Brings back the system's own radio, unless another owner has installed one meanwhile.
void uninstallRadio(const void* owner = nullptr);

using RadioWrapper = std::function<std::unique_ptr<Radio>(std::unique_ptr<Radio>)>;

/// Puts something between each radio opened from now on and its central manager; an empty wrapper
/// puts nothing there.
void wrapRadios(RadioWrapper wrapper);

/// The installed radio, or the system's own where none was.
std::unique_ptr<Radio> openRadio();

/// The radio of this operating system; where the kit has none for it, one that reports
/// `unsupported`.
std::unique_ptr<Radio> openSystemRadio();

}  // namespace InkoraKit
