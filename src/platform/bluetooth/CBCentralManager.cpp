#include <InkoraKit/platform/CBCentralManager.h>

#include "platform/bluetooth/CentralCore.h"
#include "platform/bluetooth/Description.h"
#include "platform/bluetooth/Misuse.h"

#include <utility>

namespace InkoraKit {
namespace {

// A command that comes between a change of the state and its callback is nobody's misuse.
bool mayCommand(const CentralCore& core, const CBCentralManager& manager) {
    if (core.state() == CBManagerState::poweredOn) return core.isReady();
    reportMisuse(manager.description() +
                 " can only accept this command while in the powered on state");
    return false;
}

}  // namespace

CBCentralManagerDelegate::~CBCentralManagerDelegate() = default;

CBCentralManager::CBCentralManager(std::weak_ptr<CBCentralManagerDelegate> delegate)
    : core_(std::make_shared<CentralCore>(*this, std::move(delegate))) {
    core_->open();
}

CBCentralManager::~CBCentralManager() {
    core_->close();
}

std::shared_ptr<CBCentralManagerDelegate> CBCentralManager::delegate() const {
    return core_->delegate.lock();
}

void CBCentralManager::setDelegate(std::weak_ptr<CBCentralManagerDelegate> delegate) {
    core_->delegate = std::move(delegate);
}

CBManagerState CBCentralManager::state() const {
    return core_->state();
}

CBManagerStateReason CBCentralManager::stateReason() const {
    return core_->stateReason();
}

bool CBCentralManager::isScanning() const {
    return core_->isScanning();
}

void CBCentralManager::scanForPeripherals(const std::vector<CBUUID>& services) {
    if (mayCommand(*core_, *this)) core_->startScan(services);
}

void CBCentralManager::stopScan() {
    if (mayCommand(*core_, *this)) core_->stopScan();
}

void CBCentralManager::connect(const std::shared_ptr<CBPeripheral>& peripheral) {
    if (mayCommand(*core_, *this) && peripheral) core_->connect(peripheral);
}

void CBCentralManager::cancelPeripheralConnection(const std::shared_ptr<CBPeripheral>& peripheral) {
    if (mayCommand(*core_, *this) && peripheral) core_->cancel(peripheral);
}

std::string CBCentralManager::description() const {
    return describedObject("CBCentralManager", this) + ">";
}

}  // namespace InkoraKit
