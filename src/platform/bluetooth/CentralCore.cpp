#include "platform/bluetooth/CentralCore.h"

#include <InkoraKit/platform/CBAdvertisementData.h>
#include <InkoraKit/platform/RunLoop.h>

#include "platform/bluetooth/Misuse.h"

#include <algorithm>
#include <utility>

namespace InkoraKit {
namespace {

using State = CBPeripheralState;

Dictionary dictionaryOf(const Advertisement& advertisement) {
    Dictionary entries;
    if (advertisement.localName)
        entries.set(CBAdvertisementDataLocalNameKey, *advertisement.localName);
    if (!advertisement.serviceUUIDs.empty())
        entries.set(CBAdvertisementDataServiceUUIDsKey, advertisement.serviceUUIDs);
    if (advertisement.manufacturerData)
        entries.set(CBAdvertisementDataManufacturerDataKey, *advertisement.manufacturerData);
    if (!advertisement.serviceData.empty())
        entries.set(CBAdvertisementDataServiceDataKey, advertisement.serviceData);
    if (advertisement.txPowerLevel)
        entries.set(CBAdvertisementDataTxPowerLevelKey, *advertisement.txPowerLevel);
    if (advertisement.isConnectable)
        entries.set(CBAdvertisementDataIsConnectable, *advertisement.isConnectable ? 1 : 0);
    return entries;
}

// An empty list asks for everything.
bool isWanted(const CBUUID& uuid, const std::vector<CBUUID>& wanted) {
    return wanted.empty() || std::find(wanted.begin(), wanted.end(), uuid) != wanted.end();
}

template <class Item>
std::shared_ptr<Item> withHandle(const std::vector<std::shared_ptr<Item>>& items,
                                 AttributeHandle handle, AttributeHandle Item::*member) {
    for (const auto& item : items)
        if (item.get()->*member == handle) return item;
    return nullptr;
}

template <class Item>
std::shared_ptr<Item> withHandle(const std::optional<std::vector<std::shared_ptr<Item>>>& items,
                                 AttributeHandle handle, AttributeHandle Item::*member) {
    return items ? withHandle(*items, handle, member) : nullptr;
}

}  // namespace

CentralCore::CentralCore(CBCentralManager& manager,
                         std::weak_ptr<CBCentralManagerDelegate> listener)
    : delegate(std::move(listener)), manager_(&manager) {}

CentralCore::~CentralCore() = default;

void CentralCore::open() {
    post([](CentralCore& core) {
        core.radio_ = openRadio();
        core.radio_->start(core);
    });
}

void CentralCore::close() {
    manager_ = nullptr;
}

template <class Callback>
void CentralCore::post(Callback callback) {
    RunLoop::main().post([self = weak_from_this(), callback = std::move(callback)]() mutable {
        const auto core = self.lock();
        if (core && core->manager_) callback(*core);
    });
}

template <class Callback>
void CentralCore::postForLink(const std::shared_ptr<CBPeripheral>& peripheral, Callback callback) {
    post([held = std::weak_ptr(peripheral), link = peripheral->link_,
          callback = std::move(callback)](CentralCore&) mutable {
        const auto connected = held.lock();
        if (!connected || connected->state_ != State::connected || connected->link_ != link) return;
        CBPeripheralDelegate nobody;
        const auto listener = connected->delegate();
        callback(connected, listener ? *listener : nobody);
    });
}

template <class Callback>
void CentralCore::postForAttempt(const UUID& identifier, Callback callback) {
    const auto peripheral = knownIn(State::connecting, identifier);
    if (!peripheral) return;
    post([held = std::weak_ptr(peripheral), link = peripheral->link_,
          callback = std::move(callback)](CentralCore& core) {
        const auto connecting = held.lock();
        if (!connecting || connecting->state_ != State::connecting || connecting->link_ != link)
            return;
        callback(core, connecting);
    });
}

std::shared_ptr<CBPeripheral> CentralCore::known(const UUID& identifier) const {
    const auto entry = peripherals_.find(identifier);
    return entry == peripherals_.end() ? nullptr : entry->second.lock();
}

std::shared_ptr<CBPeripheral> CentralCore::knownIn(CBPeripheralState state,
                                                   const UUID& identifier) const {
    auto peripheral = known(identifier);
    return peripheral && peripheral->state_ == state ? peripheral : nullptr;
}

std::shared_ptr<CBPeripheral> CentralCore::peripheralFor(const UUID& identifier) {
    if (auto peripheral = known(identifier)) return peripheral;
    std::shared_ptr<CBPeripheral> peripheral(new CBPeripheral(identifier, weak_from_this()));
    peripherals_[identifier] = peripheral;
    return peripheral;
}

// --- adapter ------------------------------------------------------------------------------------

CBManagerStateReason CentralCore::stateReason() const {
    return radio_ ? radio_->stateReason() : CBManagerStateReason::none;
}

void CentralCore::adapterStateChanged(CBManagerState state) {
    if (radioState_ == state) return;
    radioState_ = state;
    ++statesToTell_;
    if (state != CBManagerState::poweredOn) endAllLinks();
    post([state](CentralCore& core) {
        --core.statesToTell_;
        core.state_ = state;
        if (state != CBManagerState::poweredOn) core.isScanning_ = false;
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidUpdateState(*core.manager_);
    });
}

// Without power nothing is left to be reported link by link: the state tells it all.
void CentralCore::endAllLinks() {
    disconnecting_.clear();
    for (const auto& [identifier, weak] : peripherals_) {
        const auto peripheral = weak.lock();
        if (!peripheral) continue;
        linkEnded(peripheral);
        peripheral->connectAgain_ = false;
    }
}

// --- scanning -----------------------------------------------------------------------------------

void CentralCore::startScan(const std::vector<CBUUID>& services) {
    wantedServices_ = services;
    if (std::exchange(isScanning_, true)) return;
    ++scan_;
    reported_.clear();
    radio_->startScan();
}

void CentralCore::stopScan() {
    if (std::exchange(isScanning_, false)) radio_->stopScan();
}

void CentralCore::sighted(const Sighting& sighting) {
    if (!isScanning_) return;
    const auto& services = sighting.advertisement.serviceUUIDs;
    const bool isOfInterest =
        wantedServices_.empty() ||
        std::any_of(services.begin(), services.end(),
                    [&](const CBUUID& uuid) { return isWanted(uuid, wantedServices_); });
    if (!isOfInterest) return;
    const bool isNews = reported_.isNews(sighting.identifier, sighting.advertisement.localName);
    if (isNews || sighting.reportEvenIfKnown) report(sighting);
}

void CentralCore::report(const Sighting& sighting) {
    post([sighting, scan = scan_](CentralCore& core) {
        if (!core.isScanning_ || core.scan_ != scan || !core.isReady()) return;
        const auto peripheral = core.peripheralFor(sighting.identifier);
        if (sighting.name) peripheral->ownName_ = sighting.name;
        if (sighting.advertisement.localName)
            peripheral->advertisedName_ = sighting.advertisement.localName;
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidDiscoverPeripheral(
                *core.manager_, peripheral, dictionaryOf(sighting.advertisement), sighting.rssi);
    });
}

void CentralCore::nameChanged(const UUID& identifier, const std::string& name) {
    if (const auto peripheral = known(identifier)) peripheral->ownName_ = name;
}

// --- connecting ---------------------------------------------------------------------------------

void CentralCore::connect(const std::shared_ptr<CBPeripheral>& peripheral) {
    switch (peripheral->state_) {
        case State::disconnected:
            return beginConnecting(*peripheral);
        case State::connecting:
            return;
        case State::disconnecting:
            peripheral->connectAgain_ = true;
            return;
        case State::connected:
            break;
    }
    post([peripheral](CentralCore& core) {
        const auto listener = core.delegate.lock();
        if (listener && peripheral->state_ == State::connected)
            listener->centralManagerDidConnectPeripheral(*core.manager_, peripheral);
    });
}

void CentralCore::beginConnecting(CBPeripheral& peripheral) {
    peripheral.state_ = State::connecting;
    ++peripheral.link_;
    radio_->connect(peripheral.identifier_);
}

void CentralCore::cancel(const std::shared_ptr<CBPeripheral>& peripheral) {
    peripheral->connectAgain_ = false;
    if (peripheral->state_ == State::connected) {
        peripheral->state_ = State::disconnecting;
        disconnecting_.push_back(peripheral);
        radio_->disconnect(peripheral->identifier_);
        return;
    }
    if (peripheral->state_ != State::connecting) return;
    linkEnded(peripheral);
    radio_->disconnect(peripheral->identifier_);
    post([peripheral](CentralCore& core) {
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidDisconnectPeripheral(*core.manager_, peripheral,
                                                            std::nullopt);
    });
}

void CentralCore::connected(const UUID& identifier) {
    postForAttempt(identifier, [](CentralCore& core, const auto& peripheral) {
        peripheral->state_ = State::connected;
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidConnectPeripheral(*core.manager_, peripheral);
    });
}

void CentralCore::connectionFailed(const UUID& identifier, const NSError& error) {
    postForAttempt(identifier, [error](CentralCore& core, const auto& peripheral) {
        core.linkEnded(peripheral);
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidFailToConnectPeripheral(*core.manager_, peripheral, error);
    });
}

void CentralCore::disconnected(const UUID& identifier, const std::optional<NSError>& error) {
    const auto peripheral = known(identifier);
    if (!peripheral) return;
    post([held = std::weak_ptr(peripheral), link = peripheral->link_, error](CentralCore& core) {
        const auto ending = held.lock();
        if (!ending || ending->link_ != link) return;
        if (ending->state_ != State::connected && ending->state_ != State::disconnecting) return;
        core.linkEnded(ending);
        std::erase(core.disconnecting_, ending);
        if (ending->connectAgain_) core.postConnectAgain(ending);
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidDisconnectPeripheral(*core.manager_, ending, error);
    });
}

// Behind the callback of the link's end, which may take it back, and may throw.
void CentralCore::postConnectAgain(const std::shared_ptr<CBPeripheral>& peripheral) {
    post([peripheral](CentralCore& core) {
        const bool isWanted = std::exchange(peripheral->connectAgain_, false);
        if (isWanted && core.isReady() && peripheral->state_ == State::disconnected)
            core.beginConnecting(*peripheral);
    });
}

void CentralCore::linkEnded(const std::shared_ptr<CBPeripheral>& peripheral) {
    peripheral->state_ = State::disconnected;
    peripheral->services_.reset();
    peripheral->carriedOver_.clear();
    peripheral->discoveries_.clear();
}

void CentralCore::released(CBPeripheral& peripheral) {
    peripherals_.erase(peripheral.identifier_);
    if (peripheral.state_ == State::disconnected || !isReady()) return;
    reportMisuse("Cancelling connection for unused peripheral " + peripheral.description() +
                 ", Did you forget to keep a reference to it?");
    radio_->disconnect(peripheral.identifier_);
}

// --- services, characteristics, values ----------------------------------------------------------

void CentralCore::servicesDiscovered(const UUID& identifier, std::vector<RemoteService> services,
                                     const std::optional<NSError>& error) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral || peripheral->discoveries_.empty()) return;
    const std::vector<CBUUID> wanted = std::move(peripheral->discoveries_.front());
    peripheral->discoveries_.pop_front();
    auto& found = peripheral->services_;
    if (!error && !found) found.emplace();
    for (const RemoteService& service : services) {
        if (error || !isWanted(service.uuid, wanted)) continue;
        if (withHandle(found, service.handle, &CBService::handle_)) continue;
        found->emplace_back(new CBService(service.handle, service.uuid, service.isPrimary));
    }
    postForLink(peripheral, [error](const auto& connected, CBPeripheralDelegate& listener) {
        listener.peripheralDidDiscoverServices(connected, error);
    });
}

void CentralCore::characteristicsDiscovered(const UUID& identifier, AttributeHandle handle,
                                            std::vector<RemoteCharacteristic> characteristics,
                                            const std::optional<NSError>& error) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral) return;
    const auto service = withHandle(peripheral->services_, handle, &CBService::handle_);
    if (!service || service->discoveries_.empty()) return;
    const std::vector<CBUUID> wanted = std::move(service->discoveries_.front());
    service->discoveries_.pop_front();
    auto& found = service->characteristics_;
    if (!error && !found) found.emplace();
    for (const RemoteCharacteristic& characteristic : characteristics) {
        if (error || !isWanted(characteristic.uuid, wanted)) continue;
        if (withHandle(found, characteristic.handle, &CBCharacteristic::handle_)) continue;
        found->emplace_back(new CBCharacteristic(characteristic.handle, characteristic.uuid,
                                                 characteristic.properties));
        const auto earlier =
            withHandle(peripheral->carriedOver_, characteristic.handle, &CBCharacteristic::handle_);
        if (!earlier) continue;
        found->back()->wantsNotifications_ = earlier->wantsNotifications_;
        found->back()->isNotifying_ = earlier->isNotifying_;
    }
    postForLink(
        peripheral, [service, error](const auto& connected, CBPeripheralDelegate& listener) {
            listener.peripheralDidDiscoverCharacteristicsForService(connected, service, error);
        });
}

void CentralCore::servicesInvalidated(const UUID& identifier,
                                      const std::vector<AttributeHandle>& services) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral || !peripheral->services_) return;
    auto& carriedOver = peripheral->carriedOver_;
    std::vector<std::shared_ptr<CBService>> invalidated;
    for (const AttributeHandle handle : services) {
        const auto service = withHandle(peripheral->services_, handle, &CBService::handle_);
        if (!service) continue;
        std::erase(*peripheral->services_, service);
        invalidated.push_back(service);
        if (!service->characteristics_) continue;
        for (const auto& characteristic : *service->characteristics_) {
            if (!characteristic->wantsNotifications_) continue;
            carriedOver.insert(carriedOver.begin(), characteristic);
        }
    }
    postForLink(peripheral, [invalidated = std::move(invalidated)](const auto& connected,
                                                                   CBPeripheralDelegate& listener) {
        listener.peripheralDidModifyServices(connected, invalidated);
    });
}

std::shared_ptr<CBCharacteristic> CentralCore::characteristicOf(const CBPeripheral& peripheral,
                                                                AttributeHandle handle) {
    if (peripheral.services_) {
        for (const auto& service : *peripheral.services_) {
            auto found = withHandle(service->characteristics_, handle, &CBCharacteristic::handle_);
            if (found) return found;
        }
    }
    return withHandle(peripheral.carriedOver_, handle, &CBCharacteristic::handle_);
}

void CentralCore::valueRead(const UUID& identifier, AttributeHandle handle,
                            std::optional<Data> value, const std::optional<NSError>& error) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral) return;
    postForLink(peripheral, [handle, value = std::move(value), error](
                                const auto& connected, CBPeripheralDelegate& listener) mutable {
        const auto characteristic = characteristicOf(*connected, handle);
        if (!characteristic) return;
        if (!error) characteristic->value_ = std::move(value);
        listener.peripheralDidUpdateValueForCharacteristic(connected, characteristic, error);
    });
}

void CentralCore::valueNotified(const UUID& identifier, AttributeHandle handle,
                                std::optional<Data> value) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral) return;
    postForLink(peripheral, [handle, value = std::move(value)](
                                const auto& connected, CBPeripheralDelegate& listener) mutable {
        const auto characteristic = characteristicOf(*connected, handle);
        if (!characteristic || !characteristic->wantsNotifications_) return;
        characteristic->value_ = std::move(value);
        listener.peripheralDidUpdateValueForCharacteristic(connected, characteristic, std::nullopt);
    });
}

void CentralCore::subscriptionChanged(const UUID& identifier, AttributeHandle handle,
                                      bool isNotifying, const std::optional<NSError>& error) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral) return;
    const auto characteristic = characteristicOf(*peripheral, handle);
    if (!characteristic) return;
    characteristic->isNotifying_ = isNotifying;
    if (error) characteristic->wantsNotifications_ = isNotifying;
    reportNotificationState(peripheral, characteristic, error);
}

void CentralCore::reportNotificationState(const std::shared_ptr<CBPeripheral>& peripheral,
                                          const std::shared_ptr<CBCharacteristic>& characteristic,
                                          const std::optional<NSError>& error) {
    postForLink(peripheral,
                [characteristic, error](const auto& connected, CBPeripheralDelegate& listener) {
                    listener.peripheralDidUpdateNotificationStateForCharacteristic(
                        connected, characteristic, error);
                });
}

void CentralCore::rssiRead(const UUID& identifier, std::optional<int> rssi,
                           const std::optional<NSError>& error) {
    const auto peripheral = knownIn(State::connected, identifier);
    if (!peripheral || !rssi) return;
    postForLink(peripheral,
                [rssi = *rssi, error](const auto& connected, CBPeripheralDelegate& listener) {
                    listener.peripheralDidReadRSSI(connected, rssi, error);
                });
}

}  // namespace InkoraKit
