#pragma once

#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/RunLoop.h>

#include "support/Transcript.h"

#include <cmath>
#include <string>

namespace InkoraKit {

/// A handler whose steps and stores are noted in a transcript.
class TranscribedHandler final : public InkoraHandler {
public:
    explicit TranscribedHandler(Transcript& transcript) : transcript_(transcript) {
        transcript_.facts = [this]() -> std::vector<std::string> {
            const auto pen = lastFound_.lock();
            if (!pen) return {};
            return {shown(pen) + "'s delegate: " + (pen->delegate() ? "handler" : "none")};
        };
    }
    ~TranscribedHandler() override { transcript_.facts = nullptr; }

    /// Lets timers and draws stand in for the radio.
    void simulate() { InkoraHandler::setIsRealDevice(false); }

#define STEP(name, parameters, arguments)            \
    void name parameters override {                  \
        const auto within = transcript_.step(#name); \
        InkoraHandler::name arguments;               \
    }
    STEP(startInkoraHandler, (), ())
    STEP(stopInkoraHandler, (), ())
    STEP(StartInkoraHandlerManager, (), ())
    STEP(initCBCentralManager, (), ())
    STEP(resetDeviceInfoCache, (), ())
    STEP(disconnectAllPeripherals, (), ())
    STEP(requestBluetoothSignalInfo, (), ())
    STEP(requestBatteryLifeValue, (), ())
    STEP(requestDeviceGeneralInfo, (), ())
    STEP(startScanPeripheral, (), ())
    STEP(stopScanPeripheral, (), ())
    STEP(startTimeoutMonitor, (), ())
    STEP(stopTimeoutMonitor, (), ())
    STEP(connectTimeout, (), ())
    STEP(BluetoothDeviceDiscovered, (), ())
    STEP(BluetoothDeviceConnected, (), ())
    STEP(BluetoothDeviceFailedToConnect, (), ())
    STEP(BluetoothDeviceDisconnected, (bool rescan), (rescan))
    STEP(ScanPeripheralCompleted, (), ())
    STEP(StartDiscoveringServicesForPeripheral, (), ())
    STEP(ServiceDiscoveryForPeripheralCompleted, (), ())
    STEP(didUpdateValueForPeripheralCharacterstic, (), ())
    STEP(centralManagerDidUpdateState, (CBCentralManager & central), (central))
    STEP(centralManagerDidConnectPeripheral,
         (CBCentralManager & central, const std::shared_ptr<CBPeripheral>& pen), (central, pen))
    STEP(centralManagerDidDisconnectPeripheral,
         (CBCentralManager & central, const std::shared_ptr<CBPeripheral>& pen,
          const std::optional<NSError>& error),
         (central, pen, error))
    STEP(centralManagerDidFailToConnectPeripheral,
         (CBCentralManager & central, const std::shared_ptr<CBPeripheral>& pen,
          const std::optional<NSError>& error),
         (central, pen, error))
    STEP(peripheralDidDiscoverServices,
         (const std::shared_ptr<CBPeripheral>& pen, const std::optional<NSError>& error),
         (pen, error))
    STEP(peripheralDidDiscoverCharacteristicsForService,
         (const std::shared_ptr<CBPeripheral>& pen, const std::shared_ptr<CBService>& service,
          const std::optional<NSError>& error),
         (pen, service, error))
    STEP(peripheralDidReadRSSI,
         (const std::shared_ptr<CBPeripheral>& pen, const NSNumber& rssi,
          const std::optional<NSError>& error),
         (pen, rssi, error))
    STEP(peripheralDidUpdateValueForCharacteristic,
         (const std::shared_ptr<CBPeripheral>& pen,
          const std::shared_ptr<CBCharacteristic>& characteristic,
          const std::optional<NSError>& error),
         (pen, characteristic, error))
#undef STEP

    void centralManagerDidDiscoverPeripheral(CBCentralManager& central,
                                             const std::shared_ptr<CBPeripheral>& found,
                                             const Dictionary& sent,
                                             const NSNumber& rssi) override {
        const auto within = transcript_.step("centralManagerDidDiscoverPeripheral");
        lastFound_ = found;
        InkoraHandler::centralManagerDidDiscoverPeripheral(central, found, sent, rssi);
    }

    bool isAutoPairEnabled() const override {
        transcript_.note("isAutoPairEnabled is asked for");
        return InkoraHandler::isAutoPairEnabled();
    }

// Read back, so that a store that stores nothing is seen.
#define STORE(setter, field, Type)                       \
    void setter(Type value) override {                   \
        InkoraHandler::setter(value);                    \
        transcript_.note(#field " = " + shown(field())); \
    }
    STORE(setDelegate, delegate, const std::shared_ptr<InkoraProtocols>&)
    STORE(setManager, manager, const std::shared_ptr<CBCentralManager>&)
    STORE(setConnectedPeripheral, connectedPeripheral, const std::shared_ptr<CBPeripheral>&)
    STORE(setBatterLifeCharacterstic, batterLifeCharacterstic,
          const std::shared_ptr<CBCharacteristic>&)
    STORE(setTimeoutMonitor, timeoutMonitor, const std::shared_ptr<Timer>&)
    STORE(setColorCaptureTimeout, colorCaptureTimeout, double)
    STORE(setCurrentState, currentState, ManagerState)
    STORE(setDeviceName, deviceName, const std::string&)
    STORE(setDeviceUdid, deviceUdid, const std::string&)
    STORE(setIsRealDevice, isRealDevice, bool)
    STORE(setIsAutoPairEnabled, isAutoPairEnabled, bool)
    STORE(setIsReScanNeeded, isReScanNeeded, bool)
    STORE(setIsBatteryInfoRequested, isBatteryInfoRequested, bool)
    STORE(setIsProximityInfoRequested, isProximityInfoRequested, bool)
#undef STORE

// Of the fields that are looked at after each store.
#define OBSERVED_STORE(setter, field, Type)                                 \
    void setter(Type value) override {                                      \
        const auto within = transcript_.step(#field " = " + shown(*value)); \
        InkoraHandler::setter(value);                                       \
    }
    OBSERVED_STORE(setCapturedColorValue, capturedColorValue, const std::optional<std::string>&)
    OBSERVED_STORE(setBatteryLevelValue, batteryLevelValue, std::optional<std::int64_t>)
    OBSERVED_STORE(setDeviceProximityValue, deviceProximityValue, std::optional<std::int64_t>)
#undef OBSERVED_STORE

private:
    template <class Value>
    static std::string shown(const Value& value) {
        return printedInside(value);
    }
    template <class Object>
    static std::string shown(const std::shared_ptr<Object>& object) {
        return object ? "set" : "none";
    }
    static std::string shown(const std::shared_ptr<CBPeripheral>& pen) {
        return pen ? "pen " + std::to_string(pen->identifier().bytes().back()) : "none";
    }
    static std::string shown(const std::shared_ptr<CBCharacteristic>& characteristic) {
        return characteristic ? characteristic->uuid().uuidString() : "none";
    }
    static std::string shown(const std::shared_ptr<Timer>& timer) {
        if (!timer) return "none";
        const double left = timer->fireDate() - RunLoop::main().now();
        return "in " + std::to_string(std::lround(left * 1000)) + " ms";
    }

    Transcript& transcript_;
    std::weak_ptr<CBPeripheral> lastFound_;
};

}  // namespace InkoraKit
