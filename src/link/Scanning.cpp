#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/CBAdvertisementData.h>

#include "link/Magnitude.h"
#include "link/PenName.h"
#include "platform/foundation/process/Fatal.h"

// Finding the pen: the scan, and the choice among what it hears.
namespace InkoraKit {
namespace {

std::optional<std::string> advertisedName(const Dictionary& advertisementData) {
    const auto entry = advertisementData.find(CBAdvertisementDataLocalNameKey);
    if (entry == advertisementData.end()) return std::nullopt;
    return entry->second.as<std::string>();
}

}  // namespace

void InkoraHandler::startScanPeripheral() {
    printThisLineToConsole("startScanPeripheral");
    setCurrentState(ManagerState::DiscoveryStarted);
    if (!isRealDevice()) return;
    const auto central = unwrap(manager());
    if (central->isScanning() || central->state() != CBManagerState::poweredOn) return;
    // For every advertiser: a pen need not advertise its service.
    central->scanForPeripherals();
    startTimeoutMonitor();
}

void InkoraHandler::stopScanPeripheral() {
    printThisLineToConsole("stopScanPeripheral");
    setCurrentState(ManagerState::DiscoveryStopped);
    stopTimeoutMonitor();
    if (isRealDevice() && unwrap(manager())->isScanning()) manager()->stopScan();
    if (isReScanNeeded() && !connectedPeripheral() && isAutoPairEnabled()) {
        // Nothing, on purpose: scanning again is decided where a disconnection is handled.
    }
}

void InkoraHandler::centralManagerDidDiscoverPeripheral(
    CBCentralManager&, const std::shared_ptr<CBPeripheral>& peripheral,
    const Dictionary& advertisementData, const NSNumber& rssi) {
    printThisLineToConsole("peripheral => didDiscover peripheral");
    const auto name = advertisedName(advertisementData);
    if (!name || !isPenName(*name)) return;
    setDeviceName(*name);
    printThisLineToConsole([&] { return "RSSI!:" + rssi.description(); });
    setDeviceProximityValue(magnitude(rssi.integerValue()));
    setConnectedPeripheral(peripheral);
    peripheral->setDelegate(self());
    BluetoothDeviceDiscovered();
    unwrap(manager())->connect(peripheral);
}

void InkoraHandler::BluetoothDeviceDiscovered() {
    printThisLineToConsole("BluetoothDeviceDiscovered");
    setCurrentState(ManagerState::DeviceDiscovered);
    if (!isRealDevice()) {
        StartDiscoveringServicesForPeripheral();
        return;
    }
    stopTimeoutMonitor();
    stopScanPeripheral();  // the state reads DiscoveryStopped from here to the connection
}

void InkoraHandler::ScanPeripheralCompleted() {
    printThisLineToConsole("ScanPeripheralCompleted");
    setCurrentState(random(
        ManagerStateRange(ManagerState::DeviceDiscovered, ManagerState::DeviceDiscoveryTimedout)));
    switch (currentState()) {
        case ManagerState::DeviceDiscovered:
            BluetoothDeviceDiscovered();
            break;
        case ManagerState::DeviceFailedToDiscover:
            startScanPeripheral();
            break;
        case ManagerState::DeviceDiscoveryTimedout:
            connectTimeout();
            break;
        default:
            break;
    }
}

}  // namespace InkoraKit
