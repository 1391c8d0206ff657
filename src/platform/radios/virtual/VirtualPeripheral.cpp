#include <InkoraKit/virtual/VirtualPeripheral.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "platform/bluetooth/RadioErrors.h"
#include "platform/radios/virtual/Cancel.h"
#include "platform/radios/virtual/VirtualLink.h"
#include "platform/radios/virtual/VirtualPeripheralState.h"

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
    : state_(new State{.identifier = identifierFor(name, serialNumber),
                       .advertisement = {.localName = std::move(name)}}) {}

VirtualPeripheral::~VirtualPeripheral() {
    cancel(state_->advertisingTimer);
}

const UUID& VirtualPeripheral::identifier() const noexcept {
    return state_->identifier;
}

// Advertising

const VirtualAdvertisement& VirtualPeripheral::advertisement() const noexcept {
    return state_->advertisement;
}

void VirtualPeripheral::setAdvertisement(VirtualAdvertisement advertisement) {
    state_->advertisement = std::move(advertisement);
    changed();
}

void VirtualPeripheral::setName(std::optional<std::string> name) {
    state_->advertisement.localName = std::move(name);
}

bool VirtualPeripheral::isAdvertising() const noexcept {
    return state_->advertising;
}

void VirtualPeripheral::setAdvertising(bool on) {
    state_->advertising = on;
    changed();
}

void VirtualPeripheral::advertiseAgain() {
    if (isHeard()) state_->radio->hear(*this, true);
}

const std::optional<std::string>& VirtualPeripheral::gapName() const noexcept {
    return state_->gapName;
}

void VirtualPeripheral::setGapName(std::optional<std::string> name) {
    state_->gapName = std::move(name);
    state_->gapNameKnown = false;
    if (state_->link && state_->gapName) {
        state_->gapNameKnown = true;
        state_->link->reportName(*state_->gapName);
    }
}

void VirtualPeripheral::advertise() {
    state_->advertisingTimer =
        Timer::scheduledTimer(state_->advertisement.interval, [this] { advertise(); });
    state_->radio->hear(*this, false);
}

bool VirtualPeripheral::isHeard() const {
    return state_->radio && state_->radio->state() == CBManagerState::poweredOn &&
           state_->inRange && state_->advertising && !state_->link;
}

// Signal

int VirtualPeripheral::rssi() const noexcept {
    return state_->rssi;
}

void VirtualPeripheral::setRSSI(int rssi) {
    state_->rssi = rssi;
}

void VirtualPeripheral::setProximity(VirtualProximity proximity) {
    state_->inRange = proximity != VirtualProximity::outOfRange;
    switch (proximity) {
        case VirtualProximity::immediate:
            state_->rssi = -40;
            break;
        case VirtualProximity::near:
            state_->rssi = -70;
            break;
        case VirtualProximity::far:
            state_->rssi = -100;
            break;
        case VirtualProximity::outOfRange:
            break;
    }
    changed();
}

// Connecting

void VirtualPeripheral::setConnectAnswer(VirtualConnectAnswer answer) {
    state_->connectAnswer = answer;
    changed();
}

void VirtualPeripheral::setConnectDelay(double seconds) {
    state_->connectDelay = seconds;
}

bool VirtualPeripheral::isConnected() const noexcept {
    return state_->link != nullptr;
}

void VirtualPeripheral::setSupervisionTimeout(double seconds) {
    state_->supervisionTimeout = seconds;
}

bool VirtualPeripheral::answersConnect() const {
    return isHeard() && state_->advertisement.isConnectable &&
           state_->connectAnswer != VirtualConnectAnswer::none;
}

void VirtualPeripheral::dropLink() {
    endLink(radioErrors::peripheralDisconnected());
}

void VirtualPeripheral::loseLink() {
    if (state_->link) state_->link->lose();
}

void VirtualPeripheral::endLink(const std::optional<NSError>& error) {
    const auto link = std::exchange(state_->link, nullptr);
    if (!link) return;
    changed();
    link->end(error);
}

void VirtualPeripheral::changed() {
    if (state_->link) state_->link->rangeChanged();
    if (!isHeard() || !state_->radio->isScanning()) {
        cancel(state_->advertisingTimer);
    } else if (!state_->advertisingTimer) {
        state_->advertisingTimer =
            Timer::scheduledTimer(state_->advertisement.interval, [this] { advertise(); });
    }
    if (state_->radio) state_->radio->peripheralChanged(*this);
}

// Services

const std::vector<VirtualService>& VirtualPeripheral::services() const noexcept {
    return state_->services;
}

void VirtualPeripheral::setServices(std::vector<VirtualService> services) {
    state_->services = std::move(services);
    if (state_->link) state_->link->servicesChanged();
}

void VirtualPeripheral::failNextDiscovery(const NSError& error) {
    state_->discoveryError = error;
}

void VirtualPeripheral::setAnswerDelay(double seconds) {
    state_->answerDelay = seconds;
}

void VirtualPeripheral::notify(const VirtualCharacteristic& characteristic,
                               std::optional<Data> value) {
    if (state_->link) state_->link->notify(characteristic, std::move(value));
}

bool VirtualPeripheral::isSubscribed(const VirtualCharacteristic& characteristic) const {
    return state_->link && state_->link->isSubscribed(characteristic);
}

}  // namespace InkoraKit
