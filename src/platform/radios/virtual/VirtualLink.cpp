#include "platform/radios/virtual/VirtualLink.h"

#include <InkoraKit/virtual/VirtualPeripheral.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/radios/virtual/Cancel.h"
#include "platform/radios/virtual/VirtualCharacteristicState.h"
#include "platform/radios/virtual/VirtualErrors.h"
#include "platform/radios/virtual/VirtualPeripheralState.h"

#include <algorithm>
#include <utility>

namespace InkoraKit {
VirtualLink::VirtualLink(VirtualPeripheral& peripheral, RadioListener& listener)
    : peripheral_(peripheral), listener_(listener) {
    for (const VirtualService& service : peripheral.services())
        services_.push_back(numbered(service));
}

VirtualLink::~VirtualLink() {
    stop();
}

// Requests

void VirtualLink::discoverServices() {
    ask(0, [this] {
        if (const auto error = takeDiscoveryError())
            return listener_.servicesDiscovered(peripheral_.identifier(), {}, error);
        std::vector<RemoteService> services;
        for (const Service& service : services_)
            services.push_back({service.handle, service.uuid, service.isPrimary});
        listener_.servicesDiscovered(peripheral_.identifier(), std::move(services), std::nullopt);
    });
}

void VirtualLink::discoverCharacteristics(AttributeHandle handle) {
    ask(0, [this, handle] {
        std::optional<NSError> error = takeDiscoveryError();
        std::vector<RemoteCharacteristic> characteristics;
        const auto service =
            std::find_if(services_.begin(), services_.end(),
                         [&](const Service& candidate) { return candidate.handle == handle; });
        if (!error && service == services_.end()) error = virtualErrors::invalidHandle();
        if (!error) {
            for (const auto& [number, sent, isSubscribed] : service->characteristics)
                characteristics.push_back({number, sent->uuid(), sent->properties()});
        }
        listener_.characteristicsDiscovered(peripheral_.identifier(), handle,
                                            std::move(characteristics), error);
    });
}

void VirtualLink::read(AttributeHandle handle) {
    const Characteristic* const asked = find(handle);
    ask(asked ? asked->sent->readDelay() : 0, [this, handle] {
        const Characteristic* const characteristic = find(handle);
        if (!characteristic)
            return listener_.valueRead(peripheral_.identifier(), handle, std::nullopt,
                                       virtualErrors::invalidHandle());
        auto [value, error] = characteristic->sent->state_->nextReadAnswer();
        listener_.valueRead(peripheral_.identifier(), handle, std::move(value), error);
    });
}

void VirtualLink::subscribe(AttributeHandle handle, bool on) {
    ask(0, [this, handle, on] {
        constexpr auto subscribable =
            VirtualCharacteristic::notifiable | VirtualCharacteristic::indicatable;
        Characteristic* const characteristic = find(handle);
        std::optional<NSError> error;
        if (!characteristic) {
            error = virtualErrors::invalidHandle();
        } else if (characteristic->sent->properties() & subscribable) {
            characteristic->isSubscribed = on;
        } else {
            error = virtualErrors::requestNotSupported();
        }
        listener_.subscriptionChanged(peripheral_.identifier(), handle,
                                      characteristic && characteristic->isSubscribed, error);
    });
}

void VirtualLink::readRSSI() {
    ask(0, [this] {
        if (!peripheral_.state_->radio->canReadRSSI() || peripheral_.rssi() == unknownRSSI)
            return listener_.rssiRead(peripheral_.identifier(), std::nullopt,
                                      virtualErrors::rssiUnavailable());
        listener_.rssiRead(peripheral_.identifier(), peripheral_.rssi(), std::nullopt);
    });
}

std::optional<NSError> VirtualLink::takeDiscoveryError() {
    return std::exchange(peripheral_.state_->discoveryError, std::nullopt);
}

void VirtualLink::ask(double extraDelay, std::function<void()> answer) {
    requests_.push_back({peripheral_.state_->answerDelay + extraDelay, std::move(answer)});
    scheduleRequest();
}

void VirtualLink::scheduleRequest() {
    if (requests_.empty() || requestTimer_ || !carries()) return;
    requestTimer_ = Timer::scheduledTimer(requests_.front().delay, [this] { answerRequest(); });
}

void VirtualLink::answerRequest() {
    requestTimer_.reset();
    if (!carries()) return;  // asked again when the peripheral is back in range
    const std::function<void()> answer = std::move(requests_.front().answer);
    requests_.pop_front();
    scheduleRequest();
    answer();
}

// The table

VirtualLink::Service VirtualLink::numbered(const VirtualService& service) {
    Service result{++lastHandle_, service.uuid, service.isPrimary, {}};
    for (const auto& sent : service.characteristics)
        result.characteristics.push_back({++lastHandle_, sent});
    return result;
}

void VirtualLink::servicesChanged() {
    const AttributeHandle lastBefore = lastHandle_;
    std::vector<Service> gone = std::exchange(services_, {});
    for (const VirtualService& service : peripheral_.services()) {
        const auto same = std::find_if(gone.begin(), gone.end(), [&](const Service& earlier) {
            return isSame(earlier, service);
        });
        services_.push_back(same == gone.end() ? numbered(service) : std::move(*same));
        if (same != gone.end()) gone.erase(same);
    }
    std::vector<AttributeHandle> handles;
    for (const Service& service : gone) {
        handles.push_back(service.handle);
        for (const Characteristic& characteristic : service.characteristics)
            bequeath(service, characteristic, lastBefore);
    }
    send([this, handles = std::move(handles)] {
        listener_.servicesInvalidated(peripheral_.identifier(), handles);
    });
}

bool VirtualLink::isSame(const Service& earlier, const VirtualService& service) {
    return earlier.uuid == service.uuid && earlier.isPrimary == service.isPrimary &&
           std::equal(earlier.characteristics.begin(), earlier.characteristics.end(),
                      service.characteristics.begin(), service.characteristics.end(),
                      [](const Characteristic& one, const auto& sent) { return one.sent == sent; });
}

// Gives handle and subscription to the first of the same UUIDs that is new and has none yet.
void VirtualLink::bequeath(const Service& gone, const Characteristic& characteristic,
                           AttributeHandle lastBefore) {
    for (Service& service : services_) {
        if (service.uuid != gone.uuid) continue;
        for (Characteristic& heir : service.characteristics) {
            if (heir.handle <= lastBefore || heir.sent->uuid() != characteristic.sent->uuid())
                continue;
            heir.handle = characteristic.handle;
            heir.isSubscribed = characteristic.isSubscribed;
            return;
        }
    }
}

VirtualLink::Characteristic* VirtualLink::find(AttributeHandle handle) {
    for (Service& service : services_)
        for (Characteristic& characteristic : service.characteristics)
            if (characteristic.handle == handle) return &characteristic;
    return nullptr;
}

// Notifications

void VirtualLink::notify(const VirtualCharacteristic& characteristic, std::optional<Data> value) {
    const AttributeHandle handle = subscribedHandle(characteristic);
    if (!handle) return;
    send([this, handle, value = std::move(value)] {
        listener_.valueNotified(peripheral_.identifier(), handle, value);
    });
}

// A link layer repeats what was not acknowledged, so that nothing is lost while the link lives.
void VirtualLink::send(std::function<void()> report) {
    if (carries()) return report();
    heldBack_.push_back(std::move(report));
}

bool VirtualLink::isSubscribed(const VirtualCharacteristic& characteristic) const {
    return subscribedHandle(characteristic) != 0;
}

AttributeHandle VirtualLink::subscribedHandle(const VirtualCharacteristic& characteristic) const {
    for (const Service& service : services_) {
        for (const Characteristic& one : service.characteristics)
            if (one.isSubscribed && one.sent.get() == &characteristic) return one.handle;
    }
    return 0;
}

void VirtualLink::sendHeldBack() {
    const auto self = shared_from_this();  // a listener may end the link
    while (carries() && !heldBack_.empty()) {
        const std::function<void()> report = std::move(heldBack_.front());
        heldBack_.pop_front();
        report();
    }
}

void VirtualLink::reportName(const std::string& name) {
    listener_.nameChanged(peripheral_.identifier(), name);
}

// The end

bool VirtualLink::carries() const {
    return phase_ == Phase::open && peripheral_.state_->inRange;
}

void VirtualLink::close() {
    stop();
    phase_ = Phase::closing;
    endTimer_ = Timer::scheduledTimer(0, [this] { peripheral_.endLink(std::nullopt); });
}

void VirtualLink::lose() {
    if (phase_ != Phase::open) return;
    phase_ = Phase::lost;
    rangeChanged();
}

void VirtualLink::rangeChanged() {
    if (carries()) {
        cancel(endTimer_);
        scheduleRequest();
        sendHeldBack();
    } else if (!endTimer_) {
        endTimer_ = Timer::scheduledTimer(peripheral_.state_->supervisionTimeout, [this] {
            peripheral_.endLink(virtualErrors::linkTimedOut());
        });
    }
}

void VirtualLink::stop() {
    phase_ = Phase::ended;
    requests_.clear();
    heldBack_.clear();
    cancel(requestTimer_);
    cancel(endTimer_);
}

void VirtualLink::end(const std::optional<NSError>& error) {
    const bool askedFor = phase_ == Phase::closing;
    stop();
    listener_.disconnected(peripheral_.identifier(), askedFor ? std::nullopt : error);
}

}  // namespace InkoraKit
