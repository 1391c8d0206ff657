#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/CBManagerState.h>
#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/CBPeripheral.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/NSObject.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

class CBCentralManager;
class CentralCore;

/// Hears of the adapter, of advertisers and of links. Held weakly; called on the main run loop,
/// never from inside the command that causes the event. Override what is of interest.
class INKORA_EXPORT CBCentralManagerDelegate {
public:
    virtual ~CBCentralManagerDelegate();

    /// Comes once after the manager was created, whatever the state is, then with each change.
    virtual void centralManagerDidUpdateState([[maybe_unused]] CBCentralManager& central) {}

    /// An advertiser was heard: once in a scan, and once more each time its advertised name arrives
    /// late or changes. The keys are those of CBAdvertisementData.h; `rssi` is in dBm.
    virtual void centralManagerDidDiscoverPeripheral(
        [[maybe_unused]] CBCentralManager& central,
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const Dictionary& advertisementData,
        [[maybe_unused]] const NSNumber& rssi) {}

    /// A link is up; its services are not known yet. Also the answer to connecting a peripheral
    /// that is connected already.
    virtual void centralManagerDidConnectPeripheral(
        [[maybe_unused]] CBCentralManager& central,
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral) {}

    /// An attempt to connect has failed and is over. The error is of `CBErrorDomain`, with the
    /// radio's words for people.
    virtual void centralManagerDidFailToConnectPeripheral(
        [[maybe_unused]] CBCentralManager& central,
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::optional<NSError>& error) {}

    /// A link, or an attempt at one, has ended: without an error when that was asked for. When the
    /// adapter stops being powered on, its links end without this call.
    virtual void centralManagerDidDisconnectPeripheral(
        [[maybe_unused]] CBCentralManager& central,
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::optional<NSError>& error) {}
};

/// The Bluetooth LE central role of this machine, through the system's radio or through the one
/// that was installed before the manager was created.
///
/// While the state is not `poweredOn` every command is ignored, with a line on standard error, and
/// leaves no trace. Destroying the manager ends its scan and its links without callbacks. Belongs
/// to the main run loop's thread.
class INKORA_EXPORT CBCentralManager final : public NSObject {
public:
    /// Opens the radio in the run loop's next pass; the delegate hears of its state then.
    explicit CBCentralManager(std::weak_ptr<CBCentralManagerDelegate> delegate);
    ~CBCentralManager() override;
    /// Neither copied nor moved: its delegate is handed references to it.
    CBCentralManager(const CBCentralManager&) = delete;
    CBCentralManager& operator=(const CBCentralManager&) = delete;

    /// Who hears of events, also of those that are queued already. Null while there is nobody.
    std::shared_ptr<CBCentralManagerDelegate> delegate() const;
    void setDelegate(std::weak_ptr<CBCentralManagerDelegate> delegate);

    /// `unknown` until the radio has answered. It changes with the callback that tells of it, and
    /// commands between a loss of power and that callback are ignored without a word.
    CBManagerState state() const;

    /// Why the adapter cannot be used now, for people and logs: asked for anew with each call, and
    /// so perhaps a moment ahead of `state`.
    CBManagerStateReason stateReason() const;

    /// True from `scanForPeripherals` to `stopScan`, or to the callback of a loss of power, which
    /// ends a scan for good.
    bool isScanning() const;

    /// Reports advertisers that announce at least one of these services, every advertiser when the
    /// list is empty. While a scan is running only its filter is replaced.
    void scanForPeripherals(const std::vector<CBUUID>& services = {});
    /// Ends the scan; what it has heard and not told yet is dropped. Harmless without one.
    void stopScan();

    /// Connects, however long it takes: an attempt waits until the device comes into range.
    /// Connecting a connected peripheral reports the connection again.
    void connect(const std::shared_ptr<CBPeripheral>& peripheral);

    /// Ends a link or an attempt. Silent when there is neither.
    void cancelPeripheralConnection(const std::shared_ptr<CBPeripheral>& peripheral);

    /// Its address, for logs: `<CBCentralManager: 0x115480c60>`.
    std::string description() const;

private:
    std::shared_ptr<CentralCore> core_;
};

}  // namespace InkoraKit
