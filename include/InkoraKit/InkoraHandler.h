#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/ManagerState.h>
#include <InkoraKit/platform/CBCentralManager.h>
#include <InkoraKit/platform/CBPeripheral.h>
#include <InkoraKit/platform/NSObject.h>
#include <InkoraKit/platform/Timer.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace InkoraKit {

/// The engine behind `InkoraManager`: it finds the pen, connects to it, subscribes to its values
/// and reports them to the host's receiver.
///
/// Every step and every field is a virtual operation, so that a subclass can replace any one of
/// them; a subclass that sets `isRealDevice` to false runs the simulation mode, in which timers and
/// random draws stand in for the radio. The steps without arguments can also be run by name
/// (`performSelector`), which is how timers call them.
///
/// An instance of a subclass belongs to a `std::shared_ptr` before anything is asked of it; the
/// first step that needs to hand itself on ends the process, saying so, where it does not.
///
/// Nothing is locked. Everything belongs on the main run loop's thread, but for `publishHandler`
/// and `unPublishHandler`, which only queue their work there.
class INKORA_EXPORT InkoraHandler : public NSObject,
                                    public CBCentralManagerDelegate,
                                    public CBPeripheralDelegate {
public:
    /// The process's one handler, created on first use and never destroyed. Any thread.
    static const std::shared_ptr<InkoraHandler>& getInstance();

    ~InkoraHandler() override;

    /// The host's receiver, held weakly; null where there is none.
    virtual std::shared_ptr<InkoraProtocols> delegate() const;
    virtual void setDelegate(const std::shared_ptr<InkoraProtocols>& delegate);

    /// Why Bluetooth cannot be used at present, where `didFailToConnectWithBlueTooth` has told that
    /// it cannot: for people and logs. `none` before the first start.
    CBManagerStateReason bluetoothStateReason() const;

protected:
    /// The central manager, created by the first start and kept.
    virtual std::shared_ptr<CBCentralManager> manager() const;
    virtual void setManager(const std::shared_ptr<CBCentralManager>& manager);

public:
    /// The pen that was found last, until it is disconnected: still there after an attempt to
    /// connect it has failed, and when the adapter has gone. Null before and after.
    virtual std::shared_ptr<CBPeripheral> connectedPeripheral() const;
    virtual void setConnectedPeripheral(const std::shared_ptr<CBPeripheral>& peripheral);

    /// The battery characteristic, known from its first value until its pen is disconnected; so
    /// not forgotten where another pen takes that one's place, or the adapter goes.
    virtual std::shared_ptr<CBCharacteristic> batterLifeCharacterstic() const;
    virtual void setBatterLifeCharacterstic(const std::shared_ptr<CBCharacteristic>& battery);

    /// The one pending time-out.
    virtual std::shared_ptr<Timer> timeoutMonitor() const;
    virtual void setTimeoutMonitor(const std::shared_ptr<Timer>& timer);

protected:
    /// Seconds: see `setColorCaptureTimeout`.
    virtual double colorCaptureTimeout() const;

    /// Where the link stands: what the last step has set. From the moment a pen is found until it
    /// is connected that is `DiscoveryStopped`; each colour makes it `DeviceCapturedColor`.
    virtual ManagerState currentState() const;
    virtual void setCurrentState(ManagerState state);

public:
    /// The pen's advertised name; empty while there is no pen.
    virtual const std::string& deviceName() const;
    virtual void setDeviceName(const std::string& name);

    /// The connected pen's identifier; empty while there is none.
    virtual const std::string& deviceUdid() const;
    virtual void setDeviceUdid(const std::string& identifier);

protected:
    /// True drives the real radio, false the simulation. Publishing a receiver sets it true.
    virtual bool isRealDevice() const;
    virtual void setIsRealDevice(bool isRealDevice);

    /// Without effect, and true at first: `isReScanNeeded` alone decides about a new scan.
    virtual bool isAutoPairEnabled() const;
    virtual void setIsAutoPairEnabled(bool isEnabled);

    /// Whether the next disconnection is followed by a new scan: not from a stop until the end of
    /// the link, or the next start.
    virtual bool isReScanNeeded() const;
    virtual void setIsReScanNeeded(bool isNeeded);

    /// Whether the host has asked for the battery level, or the proximity, and was not answered
    /// yet.
    virtual bool isBatteryInfoRequested() const;
    virtual void setIsBatteryInfoRequested(bool isRequested);
    virtual bool isProximityInfoRequested() const;
    virtual void setIsProximityInfoRequested(bool isRequested);

    /// The last values received. Every store is followed by a look whether the host is to be told.
    virtual const std::optional<std::string>& capturedColorValue() const;
    virtual void setCapturedColorValue(const std::optional<std::string>& value);
    virtual std::optional<std::int64_t> batteryLevelValue() const;
    virtual void setBatteryLevelValue(std::optional<std::int64_t> level);
    virtual std::optional<std::int64_t> deviceProximityValue() const;
    virtual void setDeviceProximityValue(std::optional<std::int64_t> proximity);

    /// For derived classes; hosts take `getInstance`.
    InkoraHandler();

public:
    /// Queues that the receiver takes the place of the one before, and that the real radio is
    /// driven (`isRealDevice`). Any thread.
    virtual void publishHandler(const std::shared_ptr<InkoraProtocols>& receiver);
    /// Queues that the receiver is dropped; a link stays up. Any thread.
    virtual void unPublishHandler();
    /// What `InkoraManager::startDevicePairing` calls.
    virtual void startInkoraHandler();
    /// What `InkoraManager::stopPairingDevice` calls. In the simulation the host hears of the
    /// disconnection before it returns.
    virtual void stopInkoraHandler();
    /// What the requests of `InkoraManager` call, for proximity, battery and general information.
    virtual void requestBluetoothSignalInfo();
    virtual void requestBatteryLifeValue();
    virtual void requestDeviceGeneralInfo();
    /// The start itself: the first one makes the central manager, which tells of Bluetooth's state
    /// later; those after it tell of Bluetooth that is off, or scan unless a scan goes on.
    virtual void StartInkoraHandlerManager();

    /// Seconds until the simulation mode captures a colour (the setter of `colorCaptureTimeout`);
    /// any value is taken as it is. A timer already running keeps its own.
    virtual void setColorCaptureTimeout(double seconds);

protected:
    /// Forgets name, identifier and values, of which the host hears nothing, and disconnects the
    /// pen.
    virtual void resetDeviceInfoCache();

public:
    /// Ends the link, or the attempt at one, and forgets the pen and its battery characteristic.
    virtual void disconnectAllPeripherals();
    /// Simulation: draws whether the scan has found a pen, and goes on as with one, or scans anew.
    virtual void ScanPeripheralCompleted();
    /// Simulation: draws how the connection went, which comes out as connected, and tells the host.
    virtual void ServiceDiscoveryForPeripheralCompleted();
    /// Simulation: lets `ServiceDiscoveryForPeripheralCompleted` follow after 0.1 s.
    virtual void StartDiscoveringServicesForPeripheral();
    /// Simulation: a capture, which sets the state and tells no colour.
    virtual void didUpdateValueForPeripheralCharacterstic();
    /// Lets `connectTimeout` follow after 6 s; one that is pending still fires. In the simulation:
    /// lets the next step of the state follow, in place of what is pending.
    virtual void startTimeoutMonitor();
    /// Invalidates the pending time-out. Harmless without one.
    virtual void stopTimeoutMonitor();
    /// A pen was found: ends the scan. In the simulation: goes on with its services.
    virtual void BluetoothDeviceDiscovered();
    /// A pen is connected: sets the state and tells the host.
    virtual void BluetoothDeviceConnected();
    /// The pen that was found could not be connected: tells the host, with code 18.
    virtual void BluetoothDeviceFailedToConnect();
    /// The link has ended: tells the host, and scans then if that is needed.
    virtual void BluetoothDeviceDisconnected(bool isRescanNeeded);
    /// Scans for at most 6 s, for every advertiser, unless a scan goes on or Bluetooth is off. Sets
    /// the state in any case. A fatal stop before the first start, without a central manager.
    virtual void startScanPeripheral();
    /// Ends the scan and its time-out, and sets the state. Without a central manager likewise.
    virtual void stopScanPeripheral();
    /// The scan's time is up: ends it and tells the host, with code 19.
    virtual void connectTimeout();
    /// Makes the central manager, which tells of Bluetooth's state in the run loop's next pass.
    virtual void initCBCentralManager();

    /// What the engine makes of the radio's events: it scans when Bluetooth comes on, connects each
    /// advertiser with a pen's name in place of the pen before, asks for the pen's service, and
    /// tells the host of the end of a link, after which it scans (`isReScanNeeded`).
    void centralManagerDidUpdateState(CBCentralManager& central) override;
    void centralManagerDidDiscoverPeripheral(CBCentralManager& central,
                                             const std::shared_ptr<CBPeripheral>& peripheral,
                                             const Dictionary& advertisementData,
                                             const NSNumber& rssi) override;
    void centralManagerDidConnectPeripheral(
        CBCentralManager& central, const std::shared_ptr<CBPeripheral>& peripheral) override;
    void centralManagerDidDisconnectPeripheral(CBCentralManager& central,
                                               const std::shared_ptr<CBPeripheral>& peripheral,
                                               const std::optional<NSError>& error) override;
    void centralManagerDidFailToConnectPeripheral(CBCentralManager& central,
                                                  const std::shared_ptr<CBPeripheral>& peripheral,
                                                  const std::optional<NSError>& error) override;

    /// What the engine makes of the pen's answers: it reads both characteristics and subscribes to
    /// them, and takes in values. A first discovery that fails is a fatal stop, and so are a
    /// battery level that is no number of 63 bits and a colour of fewer than three bytes.
    void peripheralDidDiscoverServices(const std::shared_ptr<CBPeripheral>& peripheral,
                                       const std::optional<NSError>& error) override;
    void peripheralDidDiscoverCharacteristicsForService(
        const std::shared_ptr<CBPeripheral>& peripheral, const std::shared_ptr<CBService>& service,
        const std::optional<NSError>& error) override;
    void peripheralDidReadRSSI(const std::shared_ptr<CBPeripheral>& peripheral,
                               const NSNumber& rssi, const std::optional<NSError>& error) override;
    void peripheralDidUpdateValueForCharacteristic(
        const std::shared_ptr<CBPeripheral>& peripheral,
        const std::shared_ptr<CBCharacteristic>& characteristic,
        const std::optional<NSError>& error) override;

protected:
    /// Finds the steps that take no arguments.
    Method methodForSelector(std::string_view selector) const override;

private:
    static const std::shared_ptr<InkoraHandler>& instance();
    std::shared_ptr<InkoraHandler> self();

    void capturedColorValueChanged();
    void batteryLevelValueChanged();
    void deviceProximityValueChanged();
    void colourReceived(const CBCharacteristic& characteristic);
    void batteryLevelReceived(const std::shared_ptr<CBCharacteristic>& characteristic);
    void reportBluetoothDisabled() const;
    bool hasHostAndPen() const;

    struct Fields;
    std::unique_ptr<Fields> fields_;
};

}  // namespace InkoraKit
