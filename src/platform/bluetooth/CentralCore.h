#pragma once

#include <InkoraKit/platform/CBCentralManager.h>

#include "platform/bluetooth/ReportedAdvertisers.h"
#include "platform/bluetooth/radio.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace InkoraKit {

/// What a central manager and its peripherals share: the radio below them, and the rules by which a
/// radio's events become callbacks.
///
/// Every callback is a block of its own on the main queue, posted in the order of the radio's
/// events. What an event changes it changes when it arrives, but for the adapter's state, the
/// outcome of a connection, and values: those change right before their callback, so that the
/// callback finds what it is told of. A callback of a link that has ended by the time its block
/// runs is dropped.
class CentralCore final : public RadioListener, public std::enable_shared_from_this<CentralCore> {
public:
    CentralCore(CBCentralManager& manager, std::weak_ptr<CBCentralManagerDelegate> delegate);
    ~CentralCore();

    /// Opens the radio with the main queue's next service: nobody hears of a manager before its
    /// creator has it in hand.
    void open();
    /// The manager is gone; nobody is called from now on.
    void close();

    std::weak_ptr<CBCentralManagerDelegate> delegate;
    /// As the delegate was told last.
    CBManagerState state() const { return state_; }
    CBManagerStateReason stateReason() const;
    bool isScanning() const { return isScanning_; }

    void startScan(const std::vector<CBUUID>& services);
    void stopScan();
    void connect(const std::shared_ptr<CBPeripheral>& peripheral);
    void cancel(const std::shared_ptr<CBPeripheral>& peripheral);

    /// Whether the radio takes commands, which it does not while the delegate has yet to hear of a
    /// change of its state: what the delegate knows has ended with it.
    bool isReady() const { return state_ == CBManagerState::poweredOn && statesToTell_ == 0; }

    // Of connected peripherals, whose side has checked that they are.
    Radio& radio() { return *radio_; }
    void reportNotificationState(const std::shared_ptr<CBPeripheral>& peripheral,
                                 const std::shared_ptr<CBCharacteristic>& characteristic,
                                 const std::optional<NSError>& error);
    void released(CBPeripheral& peripheral);

    // RadioListener
    void adapterStateChanged(CBManagerState state) override;
    void sighted(const Sighting& sighting) override;
    void nameChanged(const UUID& identifier, const std::string& name) override;
    void connected(const UUID& identifier) override;
    void connectionFailed(const UUID& identifier, const NSError& error) override;
    void disconnected(const UUID& identifier, const std::optional<NSError>& error) override;
    void servicesDiscovered(const UUID& identifier, std::vector<RemoteService> services,
                            const std::optional<NSError>& error) override;
    void characteristicsDiscovered(const UUID& identifier, AttributeHandle service,
                                   std::vector<RemoteCharacteristic> characteristics,
                                   const std::optional<NSError>& error) override;
    void servicesInvalidated(const UUID& identifier,
                             const std::vector<AttributeHandle>& services) override;
    void valueRead(const UUID& identifier, AttributeHandle characteristic,
                   std::optional<Data> value, const std::optional<NSError>& error) override;
    void valueNotified(const UUID& identifier, AttributeHandle characteristic,
                       std::optional<Data> value) override;
    void subscriptionChanged(const UUID& identifier, AttributeHandle characteristic,
                             bool isNotifying, const std::optional<NSError>& error) override;
    void rssiRead(const UUID& identifier, std::optional<int> rssi,
                  const std::optional<NSError>& error) override;

private:
    /// Queues `callback(*this)`, to run if the manager still exists.
    template <class Callback>
    void post(Callback callback);
    /// Queues `callback(*this, peripheral)`, to run if the attempt to connect that goes on now is
    /// still the one that goes on.
    template <class Callback>
    void postForAttempt(const UUID& identifier, Callback callback);
    /// Queues `callback(peripheral, delegate)`, to run if the peripheral is still on the link it is
    /// on now.
    template <class Callback>
    void postForLink(const std::shared_ptr<CBPeripheral>& peripheral, Callback callback);

    std::shared_ptr<CBPeripheral> known(const UUID& identifier) const;
    std::shared_ptr<CBPeripheral> knownIn(CBPeripheralState state, const UUID& identifier) const;
    std::shared_ptr<CBPeripheral> peripheralFor(const UUID& identifier);
    static std::shared_ptr<CBCharacteristic> characteristicOf(const CBPeripheral& peripheral,
                                                              AttributeHandle handle);
    void report(const Sighting& sighting);
    void beginConnecting(CBPeripheral& peripheral);
    void postConnectAgain(const std::shared_ptr<CBPeripheral>& peripheral);
    void linkEnded(const std::shared_ptr<CBPeripheral>& peripheral);
    void endAllLinks();

    CBCentralManager* manager_;  // null once it is gone
    std::unique_ptr<Radio> radio_;
    std::optional<CBManagerState> radioState_;  // absent until the radio has told
    CBManagerState state_ = CBManagerState::unknown;
    int statesToTell_ = 0;

    bool isScanning_ = false;
    std::uint64_t scan_ = 0;  // counts scans, to tell a report of an earlier one
    std::vector<CBUUID> wantedServices_;
    ReportedAdvertisers reported_;  // by this scan

    std::unordered_map<UUID, std::weak_ptr<CBPeripheral>> peripherals_;
    // A peripheral whose link is being ended is kept until that is done and reported.
    std::vector<std::shared_ptr<CBPeripheral>> disconnecting_;
};

}  // namespace InkoraKit
