#include "platform/radios/bluez/GattSession.h"

#include "platform/radios/bluez/BluezErrors.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace InkoraKit {
namespace {

// BlueZ gives up on a silent peripheral after 30 s, as the attribute protocol has it (Bluetooth
// Core Specification, Vol 3, Part F, 3.3.3), and says so.
constexpr double answerTime = 40;

struct Flag {
    std::string_view name;
    std::uint32_t bit;
};
// Bluetooth Core Specification, Vol 3, Part G, 3.3.1.1
constexpr std::array<Flag, 8> propertyFlags = {{
    {"broadcast", 0x01},
    {"read", 0x02},
    {"write-without-response", 0x04},
    {"write", 0x08},
    {"notify", 0x10},
    {"indicate", 0x20},
    {"authenticated-signed-writes", 0x40},
    {"extended-properties", 0x80},
}};

std::uint32_t propertiesOf(const Properties& characteristic) {
    std::uint32_t bits = 0;
    const auto* flags = find<std::vector<std::string>>(characteristic, "Flags");
    if (!flags) return bits;
    for (const Flag& flag : propertyFlags)
        if (std::ranges::find(*flags, flag.name) != flags->end()) bits |= flag.bit;
    return bits;
}

std::optional<CBUUID> uuidOf(const Properties& attribute) {
    const auto* text = find<std::string>(attribute, "UUID");
    const auto uuid = text ? UUID::fromString(*text) : std::nullopt;
    if (!uuid) return std::nullopt;
    return CBUUID(*uuid);
}

}  // namespace

GattSession::GattSession(const UUID& peripheral, std::string devicePath, BluezDaemon& daemon,
                         RadioListener& listener)
    : peripheral_(peripheral),
      devicePath_(std::move(devicePath)),
      daemon_(daemon),
      listener_(listener) {}

AttributeHandle GattSession::handleOf(const std::string& path) {
    auto known = std::ranges::find(attributes_, path, &Attribute::path);
    if (known == attributes_.end()) known = attributes_.insert(known, Attribute{path});
    return static_cast<AttributeHandle>(known - attributes_.begin() + 1);
}

GattSession::Attribute* GattSession::attribute(AttributeHandle handle) {
    if (handle == 0 || handle > attributes_.size()) return nullptr;
    return &attributes_[handle - 1];
}

void GattSession::discoverServices() {
    std::vector<RemoteService> services;
    for (const std::string& path : daemon_.objects().below(devicePath_, ObjectTree::service)) {
        const Properties& service = *daemon_.objects().properties(path, ObjectTree::service);
        const auto uuid = uuidOf(service);
        if (!uuid) continue;
        const bool* isPrimary = find<bool>(service, "Primary");
        services.push_back({handleOf(path), *uuid, !isPrimary || *isPrimary});
    }
    listener_.servicesDiscovered(peripheral_, std::move(services), std::nullopt);
}

void GattSession::discoverCharacteristics(AttributeHandle handle) {
    const Attribute* service = attribute(handle);
    if (!service) return;
    std::vector<RemoteCharacteristic> characteristics;
    const auto paths = daemon_.objects().below(service->path, ObjectTree::characteristic);
    for (const std::string& path : paths) {
        const Properties& characteristic =
            *daemon_.objects().properties(path, ObjectTree::characteristic);
        const auto uuid = uuidOf(characteristic);
        if (!uuid) continue;
        characteristics.push_back({handleOf(path), *uuid, propertiesOf(characteristic)});
    }
    listener_.characteristicsDiscovered(peripheral_, handle, std::move(characteristics),
                                        std::nullopt);
}

// One at a time for each characteristic: of two at once BlueZ answers both with one.
void GattSession::read(AttributeHandle handle) {
    Attribute* characteristic = attribute(handle);
    if (characteristic && characteristic->readsAsked++ == 0) sendRead(handle);
}

void GattSession::sendRead(AttributeHandle handle) {
    daemon_.call(
        attribute(handle)->path, ObjectTree::characteristic, "ReadValue",
        [weak = weak_from_this(), handle](Answer& answer) {
            if (const auto self = weak.lock()) self->readAnswered(handle, answer);
        },
        BluezDaemon::Options{}, answerTime);
}

void GattSession::readAnswered(AttributeHandle handle, Answer& answer) {
    Attribute& characteristic = *attribute(handle);
    const std::vector<HeldValue> held = std::exchange(characteristic.held, {});
    if (--characteristic.readsAsked > 0) sendRead(handle);

    if (answer.error) {
        for (const HeldValue& other : held)
            if (other.isSubscribed) listener_.valueNotified(peripheral_, handle, other.value);
        listener_.valueRead(peripheral_, handle, std::nullopt,
                            bluezErrors::attributeError(*answer.error));
        return;
    }
    const Data value = answer.body.readBytes();
    // The change closest to the answer that shows its value is the read's own; the value is
    // reported in its place.
    const auto last = std::find_if(held.rbegin(), held.rend(), [&](const HeldValue& candidate) {
        return candidate.value == value;
    });
    const auto own = last == held.rend() ? held.end() : std::prev(last.base());
    for (auto other = held.begin(); other != held.end(); ++other) {
        if (other == own) {
            listener_.valueRead(peripheral_, handle, value, std::nullopt);
        } else if (other->isSubscribed) {
            listener_.valueNotified(peripheral_, handle, other->value);
        }
    }
    if (own == held.end()) listener_.valueRead(peripheral_, handle, value, std::nullopt);
}

void GattSession::subscribe(AttributeHandle handle, bool on) {
    Attribute* characteristic = attribute(handle);
    if (!characteristic) return;
    // From now on, not from the answer on: the first value may come before that.
    characteristic->isSubscribed = on;
    // Not AcquireNotify: BlueZ before 5.84 never answers one that the peripheral refuses.
    daemon_.call(
        characteristic->path, ObjectTree::characteristic, on ? "StartNotify" : "StopNotify",
        [weak = weak_from_this(), handle, on](Answer& answer) {
            if (const auto self = weak.lock()) self->subscriptionAnswered(handle, on, answer.error);
        },
        std::nullopt, answerTime);
}

void GattSession::subscriptionAnswered(AttributeHandle handle, bool on,
                                       const std::optional<BusError>& error) {
    if (!error || (!on && bluezErrors::isNotSubscribed(*error)))
        return listener_.subscriptionChanged(peripheral_, handle, on, std::nullopt);
    attribute(handle)->isSubscribed = !on;
    listener_.subscriptionChanged(peripheral_, handle, !on, bluezErrors::attributeError(*error));
}

// A StartNotify that BlueZ comes to read only after its sender has left the bus is a subscription
// for ever (5.66): from then on every value is signalled once more, to whoever comes next.
void GattSession::hangUp() {
    for (const Attribute& each : attributes_)
        if (each.isSubscribed) daemon_.send(each.path, ObjectTree::characteristic, "StopNotify");
}

void GattSession::valueSignalled(const std::string& path) {
    const auto known = std::ranges::find(attributes_, path, &Attribute::path);
    if (known == attributes_.end()) return;
    const Data* value = daemon_.objects().property<Data>(path, ObjectTree::characteristic, "Value");
    if (!value) return;
    if (known->readsAsked > 0) {
        known->held.push_back({*value, known->isSubscribed});
    } else if (known->isSubscribed) {
        const auto handle = static_cast<AttributeHandle>(known - attributes_.begin() + 1);
        listener_.valueNotified(peripheral_, handle, *value);
    }
}

}  // namespace InkoraKit
