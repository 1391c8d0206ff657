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
constexpr double attributeTime = 40;

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
        if (std::find(flags->begin(), flags->end(), flag.name) != flags->end()) bits |= flag.bit;
    return bits;
}

std::optional<CBUUID> uuidOf(const Properties& attribute) {
    const auto* text = find<std::string>(attribute, "UUID");
    const auto uuid = text ? UUID::fromString(*text) : std::nullopt;
    if (!uuid) return std::nullopt;
    return CBUUID(*uuid);
}

// Of a characteristic; of a service it is the device.
std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

}  // namespace

GattSession::GattSession(const UUID& peripheral, std::string devicePath, BluezDaemon& daemon,
                         RadioListener& listener)
    : peripheral_(peripheral),
      devicePath_(std::move(devicePath)),
      daemon_(daemon),
      listener_(listener) {
    for (const char* interface : {ObjectTree::service, ObjectTree::characteristic})
        for (std::string& path : daemon_.objects().below(devicePath_, interface))
            table_.insert(std::move(path));
}

AttributeHandle GattSession::handleAt(const std::string& path) const {
    const auto known =
        std::find_if(attributes_.begin(), attributes_.end(),
                     [&](const Attribute& attribute) { return attribute.path == path; });
    if (known == attributes_.end()) return 0;
    return static_cast<AttributeHandle>(known - attributes_.begin() + 1);
}

AttributeHandle GattSession::handleOf(const std::string& path) {
    if (const auto known = handleAt(path)) return known;
    attributes_.push_back({path, uuidAt(path)});
    return static_cast<AttributeHandle>(attributes_.size());
}

std::string GattSession::uuidAt(const std::string& path) const {
    const auto textAt = [this](const std::string& at, const char* interface) {
        return daemon_.objects().property<std::string>(at, interface, "UUID");
    };
    const auto* own = textAt(path, ObjectTree::characteristic);
    const auto* service = textAt(parentOf(path), ObjectTree::service);
    return own && service ? *service + "/" + *own : std::string();
}

// Null for a handle that names nothing, or nothing any more.
GattSession::Attribute* GattSession::attribute(AttributeHandle handle) {
    if (handle == 0 || handle > attributes_.size()) return nullptr;
    Attribute& found = attributes_[handle - 1];
    return found.path.empty() ? nullptr : &found;
}

// --- the table ----------------------------------------------------------------------------------

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

void GattSession::attributeAdded(const std::string& path) {
    if (!table_.insert(path).second) return;
    forget(parentOf(path));
    carryOver();
    tableChange_.set(0, [this] { tellTableChanged(); });
}

void GattSession::attributeRemoved(const std::string& path) {
    table_.erase(path);
    forget(path);
    forget(parentOf(path));
    tableChange_.set(0, [this] { tellTableChanged(); });
}

void GattSession::forget(const std::string& path) {
    const AttributeHandle handle = handleAt(path);
    if (handle == 0) return;
    Attribute& gone = attributes_[handle - 1];
    gone.path.clear();
    if (gone.uuid.empty()) invalidated_.push_back(handle);
}

// Subscribes anew to what the table has at another place now. The host, who has not asked for it,
// hears of it only if it fails.
void GattSession::carryOver() {
    const auto paths = daemon_.objects().below(devicePath_, ObjectTree::characteristic);
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        Attribute& lost = attributes_[i];
        if (!lost.isSubscribed || !lost.path.empty()) continue;
        const auto found = std::find_if(paths.begin(), paths.end(), [&](const std::string& path) {
            return handleAt(path) == 0 && uuidAt(path) == lost.uuid;
        });
        if (found == paths.end()) continue;
        lost.path = *found;
        sendSubscription(static_cast<AttributeHandle>(i + 1), true, false);
    }
}

void GattSession::tellTableChanged() {
    listener_.servicesInvalidated(peripheral_, std::exchange(invalidated_, {}));
}

// --- reading ------------------------------------------------------------------------------------

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
        arguments(Properties{}), attributeTime);
}

void GattSession::readAnswered(AttributeHandle handle, Answer& answer) {
    Attribute& characteristic = attributes_[handle - 1];
    const std::vector<HeldValue> held = std::exchange(characteristic.held, {});
    const bool isGone = characteristic.path.empty();  // then this is the answer to all
    const int answers = isGone ? std::exchange(characteristic.readsAsked, 0) : 1;
    if (!isGone && --characteristic.readsAsked > 0) sendRead(handle);

    std::optional<Data> value;
    std::optional<NSError> error;
    if (answer.error) {
        error = bluezErrors::attributeError(*answer.error);
    } else {
        value = answer.body.readBytes();
    }
    const auto report = [&] {
        if (value) attributes_[handle - 1].sieve.read(*value);
        for (int i = 0; i < answers; ++i) listener_.valueRead(peripheral_, handle, value, error);
    };
    // The change closest to the answer that shows its value is the read's own; the value is
    // reported in its place.
    const auto last = std::find_if(held.rbegin(), held.rend(), [&](const HeldValue& candidate) {
        return candidate.value == value;
    });
    const auto own = last == held.rend() ? held.end() : std::prev(last.base());
    for (auto other = held.begin(); other != held.end(); ++other) {
        if (other == own) {
            report();
        } else if (other->isSubscribed) {
            tell(handle, attributes_[handle - 1].sieve.notified(other->value, other->serial));
        }
    }
    if (own == held.end()) report();
}

// --- subscriptions ------------------------------------------------------------------------------

void GattSession::subscribe(AttributeHandle handle, bool on) {
    if (attribute(handle)) sendSubscription(handle, on, true);
}

void GattSession::sendSubscription(AttributeHandle handle, bool on, bool isAskedFor) {
    Attribute& characteristic = attributes_[handle - 1];
    const bool* isNotifying = daemon_.objects().property<bool>(
        characteristic.path, ObjectTree::characteristic, "Notifying");
    characteristic.sieve.begin(!isNotifying || !*isNotifying);
    // From now on, not from the answer on: the first value may come before that.
    characteristic.isSubscribed = on;
    // Not AcquireNotify: it shuts out other clients, and BlueZ before 5.84 never answers one that
    // the peripheral refuses.
    daemon_.call(
        characteristic.path, ObjectTree::characteristic, on ? "StartNotify" : "StopNotify",
        [weak = weak_from_this(), handle, on, isAskedFor](Answer& answer) {
            const auto self = weak.lock();
            if (self && (isAskedFor || answer.error))
                self->subscriptionAnswered(handle, on, answer.error);
        },
        {}, attributeTime);
}

void GattSession::subscriptionAnswered(AttributeHandle handle, bool on,
                                       const std::optional<BusError>& error) {
    if (!error || (!on && bluezErrors::isNotSubscribed(*error)))
        return listener_.subscriptionChanged(peripheral_, handle, on, std::nullopt);
    attributes_[handle - 1].isSubscribed = !on;
    listener_.subscriptionChanged(peripheral_, handle, !on, bluezErrors::attributeError(*error));
}

// A StartNotify that BlueZ comes to read only after its sender has left the bus is a subscription
// for ever (5.66): from then on every value is signalled once more, to whoever comes next.
void GattSession::hangUp() {
    for (const Attribute& each : attributes_)
        if (each.isSubscribed && !each.path.empty())
            daemon_.send(each.path, ObjectTree::characteristic, "StopNotify");
}

// --- notifications ------------------------------------------------------------------------------

void GattSession::heard(ValueSieve::Serial serial) {
    serial_ = serial;
    for (std::size_t i = 0; i < attributes_.size(); ++i)
        tell(static_cast<AttributeHandle>(i + 1), attributes_[i].sieve.heard(serial));
}

void GattSession::valueSignalled(const std::string& path) {
    const AttributeHandle handle = handleAt(path);
    const Data* value = daemon_.objects().property<Data>(path, ObjectTree::characteristic, "Value");
    if (handle == 0 || !value) return;
    Attribute& characteristic = attributes_[handle - 1];
    if (characteristic.readsAsked > 0) {
        characteristic.held.push_back({*value, serial_, characteristic.isSubscribed});
    } else if (characteristic.isSubscribed) {
        tell(handle, characteristic.sieve.signalled(*value));
        makeSure();
    }
}

void GattSession::tell(AttributeHandle handle, const std::optional<Data>& notified) {
    if (notified) listener_.valueNotified(peripheral_, handle, *notified);
}

// Has bluetoothd say something, so that what was signalled can be told apart by what comes next.
void GattSession::makeSure() {
    const auto isUndecided = [](const Attribute& each) { return each.sieve.isUndecided(); };
    if (isMakingSure_ || std::none_of(attributes_.begin(), attributes_.end(), isUndecided)) return;
    isMakingSure_ = true;
    daemon_.ping([weak = weak_from_this()](Answer&) {
        if (const auto self = weak.lock()) self->madeSure();
    });
}

void GattSession::madeSure() {
    isMakingSure_ = false;
    for (std::size_t i = 0; i < attributes_.size(); ++i)
        tell(static_cast<AttributeHandle>(i + 1), attributes_[i].sieve.decide());
}

}  // namespace InkoraKit
