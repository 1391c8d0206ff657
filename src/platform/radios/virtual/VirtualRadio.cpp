#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/radios/virtual/VirtualErrors.h"
#include "platform/radios/virtual/VirtualLink.h"
#include "platform/radios/virtual/VirtualPeripheralState.h"
#include "platform/radios/virtual/VirtualRadioPort.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

namespace InkoraKit {
std::shared_ptr<VirtualRadio> VirtualRadio::install() {
    std::shared_ptr<VirtualRadio> radio(new VirtualRadio);
    installRadio([air = radio.get()] { return std::make_unique<VirtualRadioPort>(*air); },
                 radio.get());
    return radio;
}

VirtualRadio::~VirtualRadio() {
    uninstallRadio(this);
    setState(CBManagerState::unsupported);
    for (const auto& peripheral : peripherals_) peripheral->state_->radio = nullptr;
    for (VirtualRadioPort* port : ports_) port->radioGone();
}

void VirtualRadio::setState(CBManagerState state) {
    if (state == state_) return;
    state_ = state;
    if (state_ != CBManagerState::poweredOn) {
        for (VirtualRadioPort* port : ports_) port->forgetScanAndAttempts();
        for (const auto& peripheral : peripherals_) peripheral->state_->link.reset();
    }
    everyPeripheralChanged();
    for (VirtualRadioPort* port : ports_) port->reportState();
}

void VirtualRadio::add(std::shared_ptr<VirtualPeripheral> peripheral) {
    if (peripheral->state_->radio || find(peripheral->identifier()))
        throw std::invalid_argument("a virtual peripheral with identifier " +
                                    peripheral->identifier().uuidString() + " was added already");
    peripheral->state_->radio = this;
    peripherals_.push_back(std::move(peripheral));
    peripherals_.back()->changed();
}

void VirtualRadio::remove(const std::shared_ptr<VirtualPeripheral>& peripheral) {
    const auto entry = std::find(peripherals_.begin(), peripherals_.end(), peripheral);
    if (entry == peripherals_.end()) return;
    const auto removed = std::move(*entry);  // which may be what the caller's reference is to
    peripherals_.erase(entry);
    peripheralChanged(*removed);
    removed->state_->radio = nullptr;
    removed->changed();
    removed->endLink(virtualErrors::linkTimedOut());
}

bool VirtualRadio::isScanning() const {
    return std::any_of(ports_.begin(), ports_.end(), std::mem_fn(&VirtualRadioPort::isScanning));
}

std::shared_ptr<VirtualPeripheral> VirtualRadio::find(const UUID& identifier) const {
    for (const auto& peripheral : peripherals_)
        if (peripheral->identifier() == identifier) return peripheral;
    return nullptr;
}

void VirtualRadio::hear(VirtualPeripheral& peripheral, bool reportEvenIfKnown) {
    for (VirtualRadioPort* port : ports_) port->hear(peripheral, reportEvenIfKnown);
}

void VirtualRadio::peripheralChanged(VirtualPeripheral& peripheral) {
    for (VirtualRadioPort* port : ports_) port->pursue(peripheral.identifier());
}

void VirtualRadio::everyPeripheralChanged() {
    for (const auto& peripheral : peripherals_) peripheral->changed();
}

}  // namespace InkoraKit
