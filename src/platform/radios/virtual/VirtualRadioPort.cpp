#include "platform/radios/virtual/VirtualRadioPort.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/radios/virtual/Cancel.h"
#include "platform/radios/virtual/VirtualErrors.h"
#include "platform/radios/virtual/VirtualLink.h"
#include "platform/radios/virtual/VirtualPeripheralState.h"

#include <array>
#include <cstddef>
#include <utility>

namespace InkoraKit {

VirtualRadioPort::VirtualRadioPort(VirtualRadio& radio) : radio_(&radio) {
    radio.ports_.push_back(this);
}

VirtualRadioPort::~VirtualRadioPort() {
    forgetScanAndAttempts();
    if (!radio_) return;
    std::erase(radio_->ports_, this);
    for (const auto& peripheral : radio_->peripherals_) {
        if (peripheral->state_->link && peripheral->state_->link->isWith(listener_))
            peripheral->state_->link.reset();
    }
    radio_->everyPeripheralChanged();
}

RadioCapabilities VirtualRadioPort::capabilities() const {
    return {.canReadRSSI = radio_ && radio_->canReadRSSI()};
}

void VirtualRadioPort::start(RadioListener& listener) {
    listener_ = &listener;
    reportState();
}

void VirtualRadioPort::reportState() {
    if (!listener_) return;
    listener_->adapterStateChanged(radio_ ? radio_->state() : CBManagerState::unsupported);
}

// Scanning

CBManagerStateReason VirtualRadioPort::stateReason() const {
    using enum CBManagerStateReason;
    constexpr std::array byState = {none, noService, noAdapter, notPermitted, switchedOff, none};
    const CBManagerState state = radio_ ? radio_->state() : CBManagerState::unsupported;
    return byState[static_cast<std::size_t>(state)];
}

void VirtualRadioPort::startScan() {
    scanning_ = true;
    firstHeard_.clear();
    if (radio_) radio_->everyPeripheralChanged();
}

void VirtualRadioPort::stopScan() {
    scanning_ = false;
    if (radio_) radio_->everyPeripheralChanged();
}

void VirtualRadioPort::hear(const VirtualPeripheral& peripheral, bool reportEvenIfKnown) {
    if (!scanning_) return;
    const VirtualAdvertisement& sent = peripheral.advertisement();
    Sighting sighting{.identifier = peripheral.identifier(),
                      .name = peripheral.state_->gapNameKnown ? peripheral.gapName() : std::nullopt,
                      .advertisement = {.localName = sent.localName,
                                        .serviceUUIDs = sent.serviceUUIDs,
                                        .manufacturerData = sent.manufacturerData,
                                        .serviceData = sent.serviceData,
                                        .txPowerLevel = sent.txPowerLevel,
                                        .isConnectable = sent.isConnectable},
                      .rssi = peripheral.rssi(),
                      .reportEvenIfKnown = reportEvenIfKnown};
    if (sent.nameDelay > 0) {
        const double now = RunLoop::main().now();
        const double first = firstHeard_.try_emplace(peripheral.identifier(), now).first->second;
        if (now < first + sent.nameDelay) sighting.advertisement.localName.reset();
    }
    listener_->sighted(sighting);
}

// Connecting

void VirtualRadioPort::connect(const UUID& peripheral) {
    attempts_.try_emplace(peripheral);
    pursue(peripheral);
}

void VirtualRadioPort::pursue(const UUID& identifier) {
    const auto attempt = attempts_.find(identifier);
    if (attempt == attempts_.end()) return;
    std::shared_ptr<Timer>& timer = attempt->second;
    const auto peripheral = radio_ ? radio_->find(identifier) : nullptr;
    if (!peripheral || !peripheral->answersConnect()) return cancel(timer);
    if (timer) return;
    timer = Timer::scheduledTimer(peripheral->state_->connectDelay,
                                  [this, identifier] { settle(identifier); });
}

void VirtualRadioPort::settle(const UUID& identifier) {
    attempts_.erase(identifier);
    const auto peripheral = radio_->find(identifier);
    if (peripheral->state_->connectAnswer == VirtualConnectAnswer::refuse)
        return listener_->connectionFailed(identifier, virtualErrors::connectionRefused());

    peripheral->state_->link = std::make_shared<VirtualLink>(*peripheral, *listener_);
    peripheral->changed();
    if (peripheral->gapName() && !std::exchange(peripheral->state_->gapNameKnown, true))
        listener_->nameChanged(identifier, *peripheral->gapName());
    listener_->connected(identifier);
}

void VirtualRadioPort::disconnect(const UUID& peripheral) {
    if (const auto attempt = attempts_.find(peripheral); attempt != attempts_.end()) {
        cancel(attempt->second);
        attempts_.erase(attempt);
    } else if (VirtualLink* link = linkTo(peripheral)) {
        link->close();
    }
}

void VirtualRadioPort::forgetScanAndAttempts() {
    scanning_ = false;
    for (auto& [peripheral, timer] : attempts_) cancel(timer);
    attempts_.clear();
}

// Over a link

VirtualLink* VirtualRadioPort::linkTo(const UUID& identifier) const {
    const auto peripheral = radio_ ? radio_->find(identifier) : nullptr;
    if (!peripheral) return nullptr;
    VirtualLink* link = peripheral->state_->link.get();
    return link && link->isWith(listener_) ? link : nullptr;
}

void VirtualRadioPort::discoverServices(const UUID& peripheral) {
    if (VirtualLink* link = linkTo(peripheral)) link->discoverServices();
}

void VirtualRadioPort::discoverCharacteristics(const UUID& peripheral, AttributeHandle service) {
    if (VirtualLink* link = linkTo(peripheral)) link->discoverCharacteristics(service);
}

void VirtualRadioPort::read(const UUID& peripheral, AttributeHandle characteristic) {
    if (VirtualLink* link = linkTo(peripheral)) link->read(characteristic);
}

void VirtualRadioPort::subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) {
    if (VirtualLink* link = linkTo(peripheral)) link->subscribe(characteristic, on);
}

void VirtualRadioPort::readRSSI(const UUID& peripheral) {
    if (VirtualLink* link = linkTo(peripheral)) link->readRSSI();
}

}  // namespace InkoraKit
