#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraErrorDomain.h>
#include <InkoraKit/InkoraHandler.h>

#include "link/Telling.h"

// The connection, its time-outs, and its end.
namespace InkoraKit {

void InkoraHandler::startTimeoutMonitor() {
    printThisLineToConsole("startTimeoutMonitor");
    if (isRealDevice()) {
        // A timer that is still pending is let go, not invalidated: it fires all the same.
        setTimeoutMonitor(
            Timer::scheduledTimer(InkoraConstants::BluetoothTimeout, self(), "connectTimeout"));
        return;
    }
    stopTimeoutMonitor();
    switch (currentState()) {
        case ManagerState::DeviceCapturedColor:
            setTimeoutMonitor(Timer::scheduledTimer(colorCaptureTimeout(), self(),
                                                    "didUpdateValueForPeripheralCharacterstic"));
            break;
        case ManagerState::DiscoveryStarted:
            setTimeoutMonitor(Timer::scheduledTimer(InkoraConstants::PeripheralFlowTimeout, self(),
                                                    "ScanPeripheralCompleted"));
            break;
        case ManagerState::DeviceDiscovered:
        case ManagerState::DeviceFailedToConnect:
            setTimeoutMonitor(Timer::scheduledTimer(InkoraConstants::PeripheralFlowTimeout, self(),
                                                    "ServiceDiscoveryForPeripheralCompleted"));
            break;
        default:
            break;
    }
}

void InkoraHandler::stopTimeoutMonitor() {
    printThisLineToConsole("stopTimeoutMonitor");
    const auto timer = timeoutMonitor();
    if (!timer) return;
    timer->invalidate();
    setTimeoutMonitor(nullptr);
}

// Bounds the scan only, whatever its name says: it is disarmed before a connection is asked for.
void InkoraHandler::connectTimeout() {
    printThisLineToConsole("connectTimeout");
    setCurrentState(ManagerState::DeviceDiscoveryTimedout);
    setTimeoutMonitor(nullptr);
    stopScanPeripheral();
    tell(delegate(), &InkoraProtocols::didFailedToInterrogate,
         NSError(std::string(InkoraErrorDomain::DeviceConnectionTimeout),
                 InkoraErrorCodes::deviceConnectionTimeout));
}

void InkoraHandler::centralManagerDidConnectPeripheral(
    CBCentralManager&, const std::shared_ptr<CBPeripheral>& peripheral) {
    printThisLineToConsole("peripheral => didConnect peripheral");
    printThisLineToConsole([&] { return peripheral->identifier().uuidString(); });
    printThisLineToConsole([&] { return peripheral->name().value_or("No name"); });
    peripheral->readRSSI();
    setDeviceUdid(peripheral->identifier().uuidString());
    BluetoothDeviceConnected();
    peripheral->discoverServices({CBUUID(InkoraConstants::PeripheralServiceUuid)});
}

void InkoraHandler::BluetoothDeviceConnected() {
    printThisLineToConsole("BluetoothDeviceConnected");
    setCurrentState(ManagerState::DeviceConnected);
    tell(delegate(), &InkoraProtocols::didConnectedToPeripheral);
}

void InkoraHandler::centralManagerDidFailToConnectPeripheral(CBCentralManager&,
                                                             const std::shared_ptr<CBPeripheral>&,
                                                             const std::optional<NSError>&) {
    printThisLineToConsole("peripheral => did Fail to connect");
    BluetoothDeviceFailedToConnect();
}

void InkoraHandler::BluetoothDeviceFailedToConnect() {
    printThisLineToConsole("BluetoothDeviceFailedToConnect");
    setCurrentState(ManagerState::DeviceFailedToConnect);
    stopScanPeripheral();
    tell(delegate(), &InkoraProtocols::didFailedToInterrogate,
         NSError(std::string(InkoraErrorDomain::DeviceFailedToConnect),
                 InkoraErrorCodes::deviceFailedToConnect));
}

void InkoraHandler::centralManagerDidDisconnectPeripheral(CBCentralManager&,
                                                          const std::shared_ptr<CBPeripheral>&,
                                                          const std::optional<NSError>&) {
    printThisLineToConsole("peripheral => didDisconnectPeripheral");
    resetDeviceInfoCache();
    BluetoothDeviceDisconnected(isReScanNeeded());
}

void InkoraHandler::BluetoothDeviceDisconnected(bool isRescanNeeded) {
    printThisLineToConsole("BluetoothDeviceDisconnected");
    setCurrentState(ManagerState::DeviceDisconnected);
    // A stop suppresses the rescan of the one disconnection that it causes.
    setIsReScanNeeded(true);
    tell(delegate(), &InkoraProtocols::didDisconnectPeripheral);
    if (isRescanNeeded) startScanPeripheral();
}

}  // namespace InkoraKit
