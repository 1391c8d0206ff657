#include <InkoraKit/platform/CBPeripheral.h>

#include "platform/bluetooth/CentralCore.h"
#include "platform/bluetooth/Description.h"
#include "platform/bluetooth/Misuse.h"

#include <algorithm>
#include <array>
#include <utility>

namespace InkoraKit {
namespace {

const char* nameOf(CBPeripheralState state) {
    constexpr std::array names = {"disconnected", "connecting", "connected", "disconnecting"};
    return names[static_cast<std::size_t>(state)];
}

void reportRelic(const CBPeripheral& peripheral) {
    reportMisuse(peripheral.description() +
                 " was given a command on a service or characteristic that is not its own");
}

template <class Item>
bool isIn(const std::vector<std::shared_ptr<Item>>& items, const std::shared_ptr<Item>& item) {
    return std::find(items.begin(), items.end(), item) != items.end();
}

}  // namespace

CBPeripheralDelegate::~CBPeripheralDelegate() = default;

CBPeripheral::CBPeripheral(const UUID& identifier, std::weak_ptr<CentralCore> core)
    : identifier_(identifier), core_(std::move(core)) {}

CBPeripheral::~CBPeripheral() {
    if (const auto core = core_.lock()) core->released(*this);
}

void CBPeripheral::setDelegate(std::weak_ptr<CBPeripheralDelegate> delegate) {
    delegate_ = std::move(delegate);
}

void CBPeripheral::discoverServices(const std::vector<CBUUID>& services) {
    const auto core = coreForCommand();
    if (!core) return;
    if (delegate_.expired()) {
        reportMisuse("Discovering services for peripheral " + description() +
                     " while delegate is nil");
        return;
    }
    discoveries_.push_back(services);
    core->radio().discoverServices(identifier_);
}

void CBPeripheral::discoverCharacteristics(const std::vector<CBUUID>& characteristics,
                                           const std::shared_ptr<CBService>& service) {
    const auto core = coreForCommand();
    if (!core) return;
    if (!owns(service)) return reportRelic(*this);
    service->discoveries_.push_back(characteristics);
    core->radio().discoverCharacteristics(identifier_, service->handle_);
}

void CBPeripheral::readValue(const std::shared_ptr<CBCharacteristic>& characteristic) {
    const auto core = coreForCommand();
    if (!core) return;
    if (!owns(characteristic)) return reportRelic(*this);
    core->radio().read(identifier_, characteristic->handle_);
}

void CBPeripheral::setNotifyValue(bool enabled,
                                  const std::shared_ptr<CBCharacteristic>& characteristic) {
    const auto core = coreForCommand();
    if (!core) return;
    if (!owns(characteristic)) return reportRelic(*this);
    characteristic->wantsNotifications_ = enabled;
    if (characteristic->isNotifying_ == enabled) {
        core->reportNotificationState(self(), characteristic, std::nullopt);
    } else {
        core->radio().subscribe(identifier_, characteristic->handle_, enabled);
    }
}

void CBPeripheral::readRSSI() {
    if (const auto core = coreForCommand()) core->radio().readRSSI(identifier_);
}

std::string CBPeripheral::description() const {
    return describedObject("CBPeripheral", this) + ", identifier = " + identifier_.uuidString() +
           ", name = " + name().value_or("(null)") + ", state = " + nameOf(state_) + ">";
}

std::shared_ptr<CentralCore> CBPeripheral::coreForCommand() const {
    auto core = core_.lock();
    if (core && state_ == CBPeripheralState::connected) return core;
    reportMisuse(description() + " can only accept commands while in the connected state");
    return nullptr;
}

std::shared_ptr<CBPeripheral> CBPeripheral::self() {
    return std::static_pointer_cast<CBPeripheral>(shared_from_this());
}

bool CBPeripheral::owns(const std::shared_ptr<CBService>& service) const {
    return service && services_ && isIn(*services_, service);
}

bool CBPeripheral::owns(const std::shared_ptr<CBCharacteristic>& characteristic) const {
    if (!characteristic) return false;
    if (isIn(carriedOver_, characteristic)) return true;
    if (!services_) return false;
    return std::any_of(services_->begin(), services_->end(), [&](const auto& service) {
        const auto& all = service->characteristics_;
        return all && isIn(*all, characteristic);
    });
}

}  // namespace InkoraKit
