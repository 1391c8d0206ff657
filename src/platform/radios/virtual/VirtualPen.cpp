#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/virtual/VirtualPen.h>

#include "platform/radios/virtual/Cancel.h"

#include <string>

namespace InkoraKit {
namespace {

// The byte before red, green and blue; a central skips it.
constexpr std::uint8_t colourPrefix = 0x01;
constexpr std::uint8_t fullBattery = 100;

}  // namespace

VirtualPen::VirtualPen(std::uint64_t serialNumber)
    : VirtualPeripheral(std::string(InkoraConstants::PeripheralName2), serialNumber),
      colour_(std::make_shared<VirtualCharacteristic>(
          CBUUID(InkoraConstants::PeripeheralCharactersticUuid), Data{colourPrefix, 0, 0, 0})),
      battery_(std::make_shared<VirtualCharacteristic>(
          CBUUID(InkoraConstants::PeripeheralCharactersticBatteryUuid), Data{fullBattery})) {
    const CBUUID service(InkoraConstants::PeripheralServiceUuid);
    VirtualAdvertisement sent = advertisement();
    sent.serviceUUIDs = {service};
    setAdvertisement(std::move(sent));
    setServices({{service, {colour_, battery_}}});
}

VirtualPen::~VirtualPen() {
    cancel(captureTimer_);
}

void VirtualPen::capture(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const Data value{colourPrefix, red, green, blue};
    colour_->setValue(value);
    notify(*colour_, value);
}

void VirtualPen::setBattery(std::uint8_t percent) {
    battery_->setValue(Data{percent});
    notify(*battery_, Data{percent});
}

void VirtualPen::startCapturing(double interval, std::uint32_t seed) {
    stopCapturing();
    random_.seed(seed);
    scheduleCapture(interval);
}

void VirtualPen::stopCapturing() {
    cancel(captureTimer_);
}

void VirtualPen::scheduleCapture(double interval) {
    captureTimer_ = Timer::scheduledTimer(interval, [this, interval] {
        scheduleCapture(interval);
        if (!isSubscribed(*colour_)) return;
        const auto drawn = random_();
        capture(static_cast<std::uint8_t>(drawn >> 16), static_cast<std::uint8_t>(drawn >> 8),
                static_cast<std::uint8_t>(drawn));
    });
}

}  // namespace InkoraKit
