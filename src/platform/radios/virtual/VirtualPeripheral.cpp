#include <InkoraKit/virtual/VirtualPeripheral.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/bluetooth/RadioErrors.h"
#include "platform/radios/virtual/Cancel.h"
#include "platform/radios/virtual/VirtualLink.h"

#include <utility>

namespace InkoraKit {
namespace {

// A UUID that looks like any other, yet is the same for one name and number in every run: 64-bit
// FNV-1a of both, spread over 128 bits by a second round, marked as a custom UUID (version 8,
// RFC 9562).
UUID identifierFor(const std::string& name, std::uint64_t serialNumber) {
    std::uint64_t hash = 0xcbf29ce484222325;
    const auto mix = [&hash](std::uint8_t byte) { hash = (hash ^ byte) * 0x100000001b3; };

    for (const char character : name) mix(static_cast<std::uint8_t>(character));
    for (int shift = 0; shift < 64; shift += 8)
        mix(static_cast<std::uint8_t>(serialNumber >> shift));
    UUID::Bytes bytes;
    for (std::uint8_t& byte : bytes) {
        mix(0);
        byte = static_cast<std::uint8_t>(hash >> 32);
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x80);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
    return UUID(bytes);
}

}  // namespace

VirtualPeripheral::VirtualPeripheral(std::string name, std::uint64_t serialNumber)
    : identifier_(identifierFor(name, serialNumber)),
      advertisement_{.localName = std::move(name)} {}

VirtualPeripheral::~VirtualPeripheral() {
    cancel(advertisingTimer_);
}

// Advertising

void VirtualPeripheral::setAdvertisement(VirtualAdvertisement advertisement) {
    advertisement_ = std::move(advertisement);
    changed();
}

void VirtualPeripheral::setName(std::optional<std::string> name) {
    advertisement_.localName = std::move(name);
}

void VirtualPeripheral::setAdvertising(bool on) {
    advertising_ = on;
    changed();
}

void VirtualPeripheral::advertiseAgain() {
    if (isHeard()) radio_->hear(*this, true);
}

void VirtualPeripheral::setGapName(std::optional<std::string> name) {
    gapName_ = std::move(name);
    gapNameKnown_ = false;
    if (link_ && gapName_) {
        gapNameKnown_ = true;
        link_->reportName(*gapName_);
    }
}

void VirtualPeripheral::advertise() {
    advertisingTimer_ = Timer::scheduledTimer(advertisement_.interval, [this] { advertise(); });
    radio_->hear(*this, false);
}

bool VirtualPeripheral::isHeard() const {
    return radio_ && radio_->state() == CBManagerState::poweredOn && inRange_ && advertising_ &&
           !link_;
}

// Signal

void VirtualPeripheral::setProximity(VirtualProximity proximity) {
    inRange_ = proximity != VirtualProximity::outOfRange;
    switch (proximity) {
        case VirtualProximity::immediate:
            rssi_ = -40;
            break;
        case VirtualProximity::near:
            rssi_ = -70;
            break;
        case VirtualProximity::far:
            rssi_ = -100;
            break;
        case VirtualProximity::outOfRange:
            break;
    }
    changed();
}

// Connecting

void VirtualPeripheral::setConnectAnswer(VirtualConnectAnswer answer) {
    connectAnswer_ = answer;
    changed();
}

bool VirtualPeripheral::answersConnect() const {
    return isHeard() && advertisement_.isConnectable &&
           connectAnswer_ != VirtualConnectAnswer::none;
}

void VirtualPeripheral::dropLink() {
    endLink(radioErrors::peripheralDisconnected());
}

void VirtualPeripheral::loseLink() {
    if (link_) link_->lose();
}

void VirtualPeripheral::endLink(const std::optional<NSError>& error) {
    const auto link = std::exchange(link_, nullptr);
    if (!link) return;
    changed();
    link->end(error);
}

void VirtualPeripheral::changed() {
    if (link_) link_->rangeChanged();
    if (!isHeard() || !radio_->isScanning()) {
        cancel(advertisingTimer_);
    } else if (!advertisingTimer_) {
        advertisingTimer_ = Timer::scheduledTimer(advertisement_.interval, [this] { advertise(); });
    }
    if (radio_) radio_->peripheralChanged(*this);
}

// Services

void VirtualPeripheral::setServices(std::vector<VirtualService> services) {
    services_ = std::move(services);
    if (link_) link_->servicesChanged();
}

void VirtualPeripheral::notify(const VirtualCharacteristic& characteristic,
                               std::optional<Data> value) {
    if (link_) link_->notify(characteristic, std::move(value));
}

bool VirtualPeripheral::isSubscribed(const VirtualCharacteristic& characteristic) const {
    return link_ && link_->isSubscribed(characteristic);
}

}  // namespace InkoraKit
