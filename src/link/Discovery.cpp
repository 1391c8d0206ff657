#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/InkoraHandler.h>

#include "platform/foundation/process/Fatal.h"

// The pen's service and characteristics, once it is connected; and what stands in for their
// discovery in the simulation mode.
namespace InkoraKit {

void InkoraHandler::peripheralDidDiscoverServices(const std::shared_ptr<CBPeripheral>& peripheral,
                                                  const std::optional<NSError>&) {
    printThisLineToConsole("peripheral => didDiscoverServices");
    for (const auto& service : *unwrap(peripheral->services())) {
        printThisLineToConsole(*service);
        if (service->uuid().uuidString() != InkoraConstants::PeripheralServiceUuid) continue;
        peripheral->discoverCharacteristics(
            {CBUUID(InkoraConstants::PeripeheralCharactersticUuid),
             CBUUID(InkoraConstants::PeripeheralCharactersticBatteryUuid)},
            service);
    }
}

void InkoraHandler::peripheralDidDiscoverCharacteristicsForService(
    const std::shared_ptr<CBPeripheral>& peripheral, const std::shared_ptr<CBService>& service,
    const std::optional<NSError>&) {
    printThisLineToConsole("peripheral => didDiscoverCharacteristicsFor");
    for (const auto& characteristic : *unwrap(service->characteristics())) {
        const std::string uuid = characteristic->uuid().uuidString();
        printThisLineToConsole(uuid);
        if (uuid != InkoraConstants::PeripeheralCharactersticUuid &&
            uuid != InkoraConstants::PeripeheralCharactersticBatteryUuid)
            continue;
        peripheral->readValue(characteristic);
        unwrap(connectedPeripheral())->setNotifyValue(true, characteristic);
    }
}

void InkoraHandler::StartDiscoveringServicesForPeripheral() {
    printThisLineToConsole("StartDiscoveringServicesForPeripheral");
    startTimeoutMonitor();
}

void InkoraHandler::ServiceDiscoveryForPeripheralCompleted() {
    printThisLineToConsole("ServiceDiscoveryForPeripheralCompleted");
    setCurrentState(random(
        ManagerStateRange(ManagerState::DeviceConnected, ManagerState::DeviceFailedToConnect)));
    if (currentState() == ManagerState::DeviceFailedToConnect) {
        StartDiscoveringServicesForPeripheral();
    } else if (currentState() == ManagerState::DeviceConnected) {
        BluetoothDeviceConnected();
    }
}

}  // namespace InkoraKit
