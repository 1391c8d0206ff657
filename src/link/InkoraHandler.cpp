#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraErrorDomain.h>
#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/RunLoop.h>

#include "link/Telling.h"
#include "platform/foundation/process/Fatal.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

// The handler itself: its one instance, its fields, and its life from publishing to stopping. The
// stages of the link have a file each beside this one.
namespace InkoraKit {

// --- the one instance ---------------------------------------------------------------------------

const std::shared_ptr<InkoraHandler>& InkoraHandler::getInstance() {
    return instance();
}

const std::shared_ptr<InkoraHandler>& InkoraHandler::instance() {
    // Never destroyed, so that a host's own static objects may still call the kit at exit.
    static const auto* const sharedInstance = new std::shared_ptr<InkoraHandler>(new InkoraHandler);
    return *sharedInstance;
}

InkoraHandler::InkoraHandler() = default;

InkoraHandler::~InkoraHandler() {
    delegate_.reset();
    manager_.reset();
    connectedPeripheral_.reset();
    batterLifeCharacterstic_.reset();
    timeoutMonitor_.reset();
}

std::shared_ptr<InkoraHandler> InkoraHandler::self() {
    const auto owned = weak_from_this().lock();
    if (!owned) fatalError("an InkoraHandler must be owned by a std::shared_ptr before it is used");
    return std::static_pointer_cast<InkoraHandler>(owned);
}

NSObject::Method InkoraHandler::methodForSelector(std::string_view selector) const {
    struct Step {
        std::string_view name;
        Method method;
    };
#define INKORA_STEP(name) \
    { #name, static_cast < Method>(&InkoraHandler::name) }
    static constexpr std::array steps = std::to_array<Step>({
        INKORA_STEP(unPublishHandler),
        INKORA_STEP(startInkoraHandler),
        INKORA_STEP(stopInkoraHandler),
        INKORA_STEP(requestBluetoothSignalInfo),
        INKORA_STEP(requestBatteryLifeValue),
        INKORA_STEP(requestDeviceGeneralInfo),
        INKORA_STEP(StartInkoraHandlerManager),
        INKORA_STEP(disconnectAllPeripherals),
        INKORA_STEP(ScanPeripheralCompleted),
        INKORA_STEP(ServiceDiscoveryForPeripheralCompleted),
        INKORA_STEP(StartDiscoveringServicesForPeripheral),
        INKORA_STEP(didUpdateValueForPeripheralCharacterstic),
        INKORA_STEP(startTimeoutMonitor),
        INKORA_STEP(stopTimeoutMonitor),
        INKORA_STEP(BluetoothDeviceDiscovered),
        INKORA_STEP(BluetoothDeviceConnected),
        INKORA_STEP(BluetoothDeviceFailedToConnect),
        INKORA_STEP(startScanPeripheral),
        INKORA_STEP(stopScanPeripheral),
        INKORA_STEP(connectTimeout),
        INKORA_STEP(initCBCentralManager),
    });
#undef INKORA_STEP
    const auto* const found = std::ranges::find(steps, selector, &Step::name);
    return found == steps.end() ? nullptr : found->method;
}

// --- fields -------------------------------------------------------------------------------------

std::shared_ptr<InkoraProtocols> InkoraHandler::delegate() const {
    return delegate_.lock();
}
void InkoraHandler::setDelegate(const std::shared_ptr<InkoraProtocols>& delegate) {
    delegate_ = delegate;
}

CBManagerStateReason InkoraHandler::bluetoothStateReason() const {
    const auto central = manager();
    return central ? central->stateReason() : CBManagerStateReason::none;
}

std::shared_ptr<CBCentralManager> InkoraHandler::manager() const {
    return manager_;
}
void InkoraHandler::setManager(const std::shared_ptr<CBCentralManager>& manager) {
    manager_ = manager;
}

std::shared_ptr<CBPeripheral> InkoraHandler::connectedPeripheral() const {
    return connectedPeripheral_;
}
void InkoraHandler::setConnectedPeripheral(const std::shared_ptr<CBPeripheral>& peripheral) {
    connectedPeripheral_ = peripheral;
}

std::shared_ptr<CBCharacteristic> InkoraHandler::batterLifeCharacterstic() const {
    return batterLifeCharacterstic_;
}
void InkoraHandler::setBatterLifeCharacterstic(const std::shared_ptr<CBCharacteristic>& battery) {
    batterLifeCharacterstic_ = battery;
}

std::shared_ptr<Timer> InkoraHandler::timeoutMonitor() const {
    return timeoutMonitor_;
}
void InkoraHandler::setTimeoutMonitor(const std::shared_ptr<Timer>& timer) {
    timeoutMonitor_ = timer;
}

double InkoraHandler::colorCaptureTimeout() const {
    return colorCaptureTimeout_;
}
void InkoraHandler::setColorCaptureTimeout(double seconds) {
    colorCaptureTimeout_ = seconds;
}

ManagerState InkoraHandler::currentState() const {
    return currentState_;
}
void InkoraHandler::setCurrentState(ManagerState state) {
    currentState_ = state;
}

const std::string& InkoraHandler::deviceName() const {
    return deviceName_;
}
void InkoraHandler::setDeviceName(const std::string& name) {
    deviceName_ = name;
}

const std::string& InkoraHandler::deviceUdid() const {
    return deviceUdid_;
}
void InkoraHandler::setDeviceUdid(const std::string& identifier) {
    deviceUdid_ = identifier;
}

bool InkoraHandler::isRealDevice() const {
    return isRealDevice_;
}
void InkoraHandler::setIsRealDevice(bool isRealDevice) {
    isRealDevice_ = isRealDevice;
}

bool InkoraHandler::isAutoPairEnabled() const {
    return isAutoPairEnabled_;
}
void InkoraHandler::setIsAutoPairEnabled(bool isEnabled) {
    isAutoPairEnabled_ = isEnabled;
}

bool InkoraHandler::isReScanNeeded() const {
    return isReScanNeeded_;
}
void InkoraHandler::setIsReScanNeeded(bool isNeeded) {
    isReScanNeeded_ = isNeeded;
}

bool InkoraHandler::isBatteryInfoRequested() const {
    return isBatteryInfoRequested_;
}
void InkoraHandler::setIsBatteryInfoRequested(bool isRequested) {
    isBatteryInfoRequested_ = isRequested;
}

bool InkoraHandler::isProximityInfoRequested() const {
    return isProximityInfoRequested_;
}
void InkoraHandler::setIsProximityInfoRequested(bool isRequested) {
    isProximityInfoRequested_ = isRequested;
}

const std::optional<std::string>& InkoraHandler::capturedColorValue() const {
    return capturedColorValue_;
}
void InkoraHandler::setCapturedColorValue(const std::optional<std::string>& value) {
    capturedColorValue_ = value;
    capturedColorValueChanged();
}

std::optional<std::int64_t> InkoraHandler::batteryLevelValue() const {
    return batteryLevelValue_;
}
void InkoraHandler::setBatteryLevelValue(std::optional<std::int64_t> level) {
    batteryLevelValue_ = level;
    batteryLevelValueChanged();
}

std::optional<std::int64_t> InkoraHandler::deviceProximityValue() const {
    return deviceProximityValue_;
}
void InkoraHandler::setDeviceProximityValue(std::optional<std::int64_t> proximity) {
    deviceProximityValue_ = proximity;
    deviceProximityValueChanged();
}

// --- from publishing to stopping ----------------------------------------------------------------

void InkoraHandler::publishHandler(const std::shared_ptr<InkoraProtocols>& receiver) {
    RunLoop::main().post([handler = self(), receiver] {
        handler->setDelegate(receiver);
        handler->setIsRealDevice(true);
    });
}

void InkoraHandler::unPublishHandler() {
    RunLoop::main().post([handler = self()] { handler->setDelegate(nullptr); });
}

void InkoraHandler::startInkoraHandler() {
    printThisLineToConsole("startInkoraHandler");
    setIsReScanNeeded(true);
    StartInkoraHandlerManager();
}

void InkoraHandler::StartInkoraHandlerManager() {
    printThisLineToConsole("StartInkoraHandlerManager");
    const auto central = manager();
    if (!central) {
        initCBCentralManager();
        return;
    }
    printThisLineToConsole([&] { return "current state " + printed(currentState()); });
    if (currentState() == ManagerState::BlueToothDisabled) {
        stopTimeoutMonitor();
        reportBluetoothDisabled();
        return;
    }
    if (!central->isScanning()) startScanPeripheral();
}

void InkoraHandler::initCBCentralManager() {
    printThisLineToConsole("initCBCentralManager");
    setManager(std::make_shared<CBCentralManager>(self()));
}

void InkoraHandler::centralManagerDidUpdateState(CBCentralManager& central) {
    printThisLineToConsole("centralManagerDidUpdateState");
    if (central.state() == CBManagerState::poweredOn) {
        setCurrentState(ManagerState::BlueToothEnabled);
        startScanPeripheral();
        return;
    }
    // Passing states (unknown, resetting) are no different: nothing can be scanned in them either.
    printThisLineToConsole("Bluetooth not available.");
    setCurrentState(ManagerState::BlueToothDisabled);
    stopTimeoutMonitor();
    reportBluetoothDisabled();
}

void InkoraHandler::reportBluetoothDisabled() const {
    tell(&InkoraProtocols::didFailToConnectWithBlueTooth,
         NSError(std::string(InkoraErrorDomain::BlueToothNotEnabled),
                 InkoraErrorCodes::inSufficientResources));
}

void InkoraHandler::stopInkoraHandler() {
    printThisLineToConsole("stopInkoraHandler");
    stopTimeoutMonitor();
    setIsReScanNeeded(false);  // for the disconnection that follows
    if (!isRealDevice()) {
        BluetoothDeviceDisconnected(false);
        return;
    }
    if (!connectedPeripheral()) return;
    resetDeviceInfoCache();
    stopScanPeripheral();
}

void InkoraHandler::disconnectAllPeripherals() {
    printThisLineToConsole("disconnectAllPeripherals");
    const auto central = manager();
    const auto pen = connectedPeripheral();
    if (!central || !pen) return;
    central->cancelPeripheralConnection(pen);
    pen->setDelegate({});
    setConnectedPeripheral(nullptr);
    setBatterLifeCharacterstic(nullptr);
}

}  // namespace InkoraKit
