#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualPen.h>

#include "platform/radios/virtual/Cancel.h"

#include <random>
#include <string>

namespace InkoraKit {
namespace {

// The byte before red, green and blue; a central skips it.
constexpr std::uint8_t colourPrefix = 0x01;
constexpr std::uint8_t fullBattery = 100;

}  // namespace

struct VirtualPen::State {
    std::shared_ptr<VirtualCharacteristic> colour = std::make_shared<VirtualCharacteristic>(
        CBUUID(InkoraConstants::PeripeheralCharactersticUuid), Data{colourPrefix, 0, 0, 0});
    std::shared_ptr<VirtualCharacteristic> battery = std::make_shared<VirtualCharacteristic>(
        CBUUID(InkoraConstants::PeripeheralCharactersticBatteryUuid), Data{fullBattery});
    std::mt19937 random;
    std::shared_ptr<Timer> captureTimer;
};

VirtualPen::VirtualPen(std::uint64_t serialNumber)
    : VirtualPeripheral(std::string(InkoraConstants::PeripheralName2), serialNumber),
      state_(std::make_unique<State>()) {
    const CBUUID service(InkoraConstants::PeripheralServiceUuid);
    VirtualAdvertisement sent = advertisement();
    sent.serviceUUIDs = {service};
    setAdvertisement(std::move(sent));
    setServices({{service, {state_->colour, state_->battery}}});
}

VirtualPen::~VirtualPen() {
    cancel(state_->captureTimer);
}

const std::shared_ptr<VirtualCharacteristic>& VirtualPen::colour() const noexcept {
    return state_->colour;
}

const std::shared_ptr<VirtualCharacteristic>& VirtualPen::battery() const noexcept {
    return state_->battery;
}

void VirtualPen::capture(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const Data value{colourPrefix, red, green, blue};
    state_->colour->setValue(value);
    notify(*state_->colour, value);
}

void VirtualPen::setBattery(std::uint8_t percent) {
    state_->battery->setValue(Data{percent});
    notify(*state_->battery, Data{percent});
}

void VirtualPen::startCapturing(double interval, std::uint32_t seed) {
    stopCapturing();
    state_->random.seed(seed);
    scheduleCapture(interval);
}

void VirtualPen::stopCapturing() {
    cancel(state_->captureTimer);
}

void VirtualPen::scheduleCapture(double interval) {
    state_->captureTimer = Timer::scheduledTimer(interval, [this, interval] {
        scheduleCapture(interval);
        if (!isSubscribed(*state_->colour)) return;
        const auto drawn = state_->random();
        capture(static_cast<std::uint8_t>(drawn >> 16), static_cast<std::uint8_t>(drawn >> 8),
                static_cast<std::uint8_t>(drawn));
    });
}

}  // namespace InkoraKit
