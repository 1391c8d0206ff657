#include "platform/radios/virtual/VirtualLink.h"

#include <InkoraKit/virtual/VirtualPeripheral.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/radios/virtual/Cancel.h"
#include "platform/radios/virtual/VirtualErrors.h"

#include <utility>

namespace InkoraKit {
namespace {

constexpr int unavailableRSSI = 127;

}  // namespace

VirtualLink::VirtualLink(VirtualPeripheral& peripheral, RadioListener& listener)
    : peripheral_(peripheral), listener_(listener) {
    for (const VirtualService& service : peripheral.services()) {
        attributes_.push_back({service.uuid, service.isPrimary, nullptr});
        for (const auto& characteristic : service.characteristics)
            attributes_.push_back({characteristic->uuid(), false, characteristic});
    }
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
        AttributeHandle handle = 0;
        for (const Attribute& attribute : attributes_) {
            ++handle;
            if (attribute.characteristic) continue;
            services.push_back({handle, attribute.uuid, attribute.isPrimary});
        }
        listener_.servicesDiscovered(peripheral_.identifier(), std::move(services), std::nullopt);
    });
}

void VirtualLink::discoverCharacteristics(AttributeHandle service) {
    ask(0, [this, service] {
        if (const auto error = takeDiscoveryError())
            return listener_.characteristicsDiscovered(peripheral_.identifier(), service, {},
                                                       error);
        std::vector<RemoteCharacteristic> characteristics;
        AttributeHandle handle = service + 1;
        for (; handle <= attributes_.size() && at(handle).characteristic; ++handle)
            characteristics.push_back(
                {handle, at(handle).uuid, at(handle).characteristic->properties()});
        listener_.characteristicsDiscovered(peripheral_.identifier(), service,
                                            std::move(characteristics), std::nullopt);
    });
}

void VirtualLink::read(AttributeHandle handle) {
    ask(at(handle).characteristic->readDelay(), [this, handle] {
        auto [value, error] = at(handle).characteristic->nextReadAnswer();
        listener_.valueRead(peripheral_.identifier(), handle, std::move(value), error);
    });
}

void VirtualLink::subscribe(AttributeHandle handle, bool on) {
    ask(0, [this, handle, on] {
        constexpr auto subscribable =
            VirtualCharacteristic::notifiable | VirtualCharacteristic::indicatable;
        Attribute& attribute = at(handle);
        std::optional<NSError> error;
        if (attribute.characteristic->properties() & subscribable) {
            attribute.isSubscribed = on;
        } else {
            error = virtualErrors::requestNotSupported();
        }
        listener_.subscriptionChanged(peripheral_.identifier(), handle, attribute.isSubscribed,
                                      error);
    });
}

void VirtualLink::readRSSI() {
    ask(0, [this] {
        if (!peripheral_.radio_->canReadRSSI() || peripheral_.rssi() == unavailableRSSI)
            return listener_.rssiRead(peripheral_.identifier(), std::nullopt,
                                      virtualErrors::rssiUnavailable());
        listener_.rssiRead(peripheral_.identifier(), peripheral_.rssi(), std::nullopt);
    });
}

std::optional<NSError> VirtualLink::takeDiscoveryError() {
    return std::exchange(peripheral_.discoveryError_, std::nullopt);
}

void VirtualLink::ask(double extraDelay, std::function<void()> answer) {
    requests_.push_back({peripheral_.answerDelay_ + extraDelay, std::move(answer)});
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

// Notifications

void VirtualLink::notify(const VirtualCharacteristic& characteristic, std::optional<Data> value) {
    const AttributeHandle handle = subscribedHandle(characteristic);
    if (!handle) return;
    // A link layer repeats what was not acknowledged, so that nothing is lost while the link lives.
    if (!carries()) return heldBack_.push_back({handle, std::move(value)});
    listener_.valueNotified(peripheral_.identifier(), handle, std::move(value));
}

bool VirtualLink::isSubscribed(const VirtualCharacteristic& characteristic) const {
    return subscribedHandle(characteristic) != 0;
}

AttributeHandle VirtualLink::subscribedHandle(const VirtualCharacteristic& characteristic) const {
    AttributeHandle handle = 0;
    for (const Attribute& attribute : attributes_) {
        ++handle;
        if (attribute.isSubscribed && attribute.characteristic.get() == &characteristic)
            return handle;
    }
    return 0;
}

void VirtualLink::sendHeldBack() {
    const auto self = shared_from_this();  // a listener may end the link
    while (carries() && !heldBack_.empty()) {
        Notification notification = std::move(heldBack_.front());
        heldBack_.pop_front();
        listener_.valueNotified(peripheral_.identifier(), notification.characteristic,
                                std::move(notification.value));
    }
}

void VirtualLink::reportName(const std::string& name) {
    listener_.nameChanged(peripheral_.identifier(), name);
}

// The end

bool VirtualLink::carries() const {
    return phase_ == Phase::open && peripheral_.inRange_;
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
        endTimer_ = Timer::scheduledTimer(peripheral_.supervisionTimeout_, [this] {
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
