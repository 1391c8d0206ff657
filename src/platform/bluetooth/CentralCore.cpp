#include "platform/bluetooth/CentralCore.h"

#include <InkoraKit/platform/CBAdvertisementData.h>
#include <InkoraKit/platform/RunLoop.h>

#include "platform/bluetooth/Misuse.h"

#include <algorithm>
#include <utility>

namespace InkoraKit {
namespace {

using State = CBPeripheralState;

// An advertisement and its scan response make one picture; what came later counts.
void merge(Advertisement& known, const Advertisement& news) {
    if (news.localName) known.localName = news.localName;
    if (!news.serviceUUIDs.empty()) known.serviceUUIDs = news.serviceUUIDs;
    if (news.manufacturerData) known.manufacturerData = news.manufacturerData;
    for (const auto& [uuid, data] : news.serviceData)
        known.serviceData.insert_or_assign(uuid, data);
    if (news.txPowerLevel) known.txPowerLevel = news.txPowerLevel;
    if (news.isConnectable) known.isConnectable = news.isConnectable;
}

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
    return wanted.empty() || std::ranges::find(wanted, uuid) != wanted.end();
}

template <class Item>
std::shared_ptr<Item> withHandle(const std::optional<std::vector<std::shared_ptr<Item>>>& items,
                                 AttributeHandle handle, AttributeHandle Item::*member) {
    if (!items) return nullptr;
    for (const auto& item : *items)
        if (item.get()->*member == handle) return item;
    return nullptr;
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

bool CentralCore::isPoweredOn() const {
    return state_ == CBManagerState::poweredOn;
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

CBManagerState CentralCore::state() const {
    return state_.value_or(CBManagerState::unknown);
}

CBManagerStateReason CentralCore::stateReason() const {
    return radio_ ? radio_->stateReason() : CBManagerStateReason::none;
}

void CentralCore::adapterStateChanged(CBManagerState state) {
    if (state_ == state) return;
    state_ = state;
    if (!isPoweredOn()) {
        isScanning_ = false;
        endAllLinks();
    }
    post([](CentralCore& core) {
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidUpdateState(*core.manager_);
    });
}

// Without power nothing is left to be reported link by link: the state tells it all.
void CentralCore::endAllLinks() {
    disconnecting_.clear();
    for (const auto& [identifier, weak] : peripherals_)
        if (const auto peripheral = weak.lock()) linkEnded(peripheral);
}

// --- scanning -----------------------------------------------------------------------------------

void CentralCore::startScan(const std::vector<CBUUID>& services) {
    wantedServices_ = services;
    if (std::exchange(isScanning_, true)) return;
    ++scan_;
    heard_.clear();
    radio_->startScan();
}

void CentralCore::stopScan() {
    if (std::exchange(isScanning_, false)) radio_->stopScan();
}

void CentralCore::sighted(const Sighting& sighting) {
    if (!isScanning_) return;
    Heard& heard = heard_[sighting.identifier];
    merge(heard.advertisement, sighting.advertisement);
    const bool isOfInterest =
        wantedServices_.empty() ||
        std::ranges::any_of(heard.advertisement.serviceUUIDs,
                            [&](const CBUUID& uuid) { return isWanted(uuid, wantedServices_); });
    if (!isOfInterest) return;
    const bool isRenamed = heard.advertisement.localName != heard.reportedName;
    if (heard.isReported && !isRenamed && !sighting.reportEvenIfKnown) return;
    heard.isReported = true;
    heard.reportedName = heard.advertisement.localName;
    Sighting whole = sighting;
    whole.advertisement = heard.advertisement;
    report(whole);
}

void CentralCore::report(const Sighting& sighting) {
    post([sighting, scan = scan_](CentralCore& core) {
        if (!core.isScanning_ || core.scan_ != scan) return;
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
        const bool connectAgain = ending->connectAgain_;
        core.linkEnded(ending);
        std::erase(core.disconnecting_, ending);
        if (const auto listener = core.delegate.lock())
            listener->centralManagerDidDisconnectPeripheral(*core.manager_, ending, error);
        if (connectAgain && core.isPoweredOn() && ending->state_ == State::disconnected)
            core.beginConnecting(*ending);
    });
}

void CentralCore::linkEnded(const std::shared_ptr<CBPeripheral>& peripheral) {
    peripheral->state_ = State::disconnected;
    peripheral->connectAgain_ = false;
    peripheral->services_.reset();
    peripheral->discoveries_.clear();
}

void CentralCore::released(CBPeripheral& peripheral) {
    peripherals_.erase(peripheral.identifier_);
    if (peripheral.state_ == State::disconnected || !isPoweredOn()) return;
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
    }
    postForLink(
        peripheral, [service, error](const auto& connected, CBPeripheralDelegate& listener) {
            listener.peripheralDidDiscoverCharacteristicsForService(connected, service, error);
        });
}

std::shared_ptr<CBCharacteristic> CentralCore::characteristicOf(const CBPeripheral& peripheral,
                                                                AttributeHandle handle) {
    if (!peripheral.services_) return nullptr;
    for (const auto& service : *peripheral.services_) {
        auto found = withHandle(service->characteristics_, handle, &CBCharacteristic::handle_);
        if (found) return found;
    }
    return nullptr;
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
