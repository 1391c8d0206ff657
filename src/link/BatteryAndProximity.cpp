#include <InkoraKit/InkoraHandler.h>

#include "link/Magnitude.h"
#include "link/Telling.h"
#include "platform/foundation/process/Fatal.h"

#include <charconv>

// Battery level, proximity and name: kept up to date, reported when the host asks.
namespace InkoraKit {
namespace {

constexpr std::size_t longestLevel = 8;  // bytes of a signed 64-bit number

std::optional<std::int64_t> levelFromHex(std::string_view hex) {
    if (hex.size() > 2 * longestLevel) return std::nullopt;
    std::int64_t level = 0;
    const auto [end, error] = std::from_chars(hex.data(), hex.data() + hex.size(), level, 16);
    if (error != std::errc() || end != hex.data() + hex.size()) return std::nullopt;
    return level;
}

}  // namespace

void InkoraHandler::batteryLevelReceived(const std::shared_ptr<CBCharacteristic>& characteristic) {
    const std::optional<Data>& bytes = characteristic->value();
    if (!bytes) {
        printThisLineToConsole("No Value");
        return;
    }
    if (!batterLifeCharacterstic()) setBatterLifeCharacterstic(characteristic);
    const std::string hex = bytes->hexEncodedString();
    printThisLineToConsole([&] { return "Data Value " + hex; });
    const std::int64_t level = *unwrap(levelFromHex(hex));
    printThisLineToConsole([&] { return "battery value " + std::to_string(level); });
    setBatteryLevelValue(level);
}

void InkoraHandler::batteryLevelValueChanged() {
    printThisLineToConsole("Indicated new battery level");
    if (!hasHostAndPen() || !isBatteryInfoRequested()) return;
    tell(delegate(), &InkoraProtocols::didPeripheralIndicated, *unwrap(batteryLevelValue()));
    setIsBatteryInfoRequested(false);
}

void InkoraHandler::peripheralDidReadRSSI(const std::shared_ptr<CBPeripheral>&,
                                          const NSNumber& rssi, const std::optional<NSError>&) {
    printThisLineToConsole([&] { return "New RSSI!:" + rssi.description(); });
    setDeviceProximityValue(magnitude(rssi.integerValue()));
}

void InkoraHandler::deviceProximityValueChanged() {
    printThisLineToConsole("Sensored new proximity value");
    if (!hasHostAndPen() || !isProximityInfoRequested()) return;
    tell(delegate(), &InkoraProtocols::didPeripheralSensored, *unwrap(deviceProximityValue()));
    setIsProximityInfoRequested(false);
}

void InkoraHandler::requestBatteryLifeValue() {
    printThisLineToConsole("requestBatteryLifeValue");
    setIsBatteryInfoRequested(true);
    if (const auto pen = connectedPeripheral()) pen->readValue(unwrap(batterLifeCharacterstic()));
}

void InkoraHandler::requestBluetoothSignalInfo() {
    printThisLineToConsole("requestBluetoothSignalInfo");
    setIsProximityInfoRequested(true);
    if (const auto pen = connectedPeripheral()) pen->readRSSI();
}

void InkoraHandler::requestDeviceGeneralInfo() {
    printThisLineToConsole("requestDeviceGeneralInfo");
    tell(delegate(), &InkoraProtocols::didPeripheralProvided, deviceName(), deviceUdid());
}

void InkoraHandler::resetDeviceInfoCache() {
    printThisLineToConsole("reset device information cache");
    setDeviceName("");  // first: without a name none of the stores below is reported
    setDeviceUdid("");
    setCapturedColorValue("");
    setDeviceProximityValue(0);
    setBatteryLevelValue(0);
    disconnectAllPeripherals();
}

}  // namespace InkoraKit
