#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraErrorDomain.h>
#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/RunLoop.h>

#include "link/Telling.h"
#include "platform/foundation/process/Fatal.h"

#include <array>
#include <string_view>
#include <utility>

// The handler itself: its one instance, its fields, and its life from publishing to stopping. The
// stages of the link have a file each beside this one.
namespace InkoraKit {

struct InkoraHandler::Fields {
    std::weak_ptr<InkoraProtocols> delegate;
    std::shared_ptr<CBCentralManager> manager;
    std::shared_ptr<CBPeripheral> connectedPeripheral;
    std::shared_ptr<CBCharacteristic> batterLifeCharacterstic;
    std::shared_ptr<Timer> timeoutMonitor;
    double colorCaptureTimeout = InkoraConstants::CaptureColorTimeout;
    ManagerState currentState = ManagerState::Unknown;
    std::string deviceName;
    std::string deviceUdid;
    bool isRealDevice = true;
    bool isAutoPairEnabled = true;
    bool isReScanNeeded = true;
    bool isBatteryInfoRequested = false;
    bool isProximityInfoRequested = false;
    std::optional<std::string> capturedColorValue;
    std::optional<std::int64_t> batteryLevelValue;
    std::optional<std::int64_t> deviceProximityValue;
};

// --- the one instance ---------------------------------------------------------------------------

const std::shared_ptr<InkoraHandler>& InkoraHandler::getInstance() {
    return instance();
}

const std::shared_ptr<InkoraHandler>& InkoraHandler::instance() {
    // Never destroyed, so that a host's own static objects may still call the kit at exit.
    static const auto* const sharedInstance = new std::shared_ptr<InkoraHandler>(new InkoraHandler);
    return *sharedInstance;
}

InkoraHandler::InkoraHandler() : fields_(std::make_unique<Fields>()) {}

InkoraHandler::~InkoraHandler() {
    fields_->delegate.reset();
    fields_->manager.reset();
    fields_->connectedPeripheral.reset();
    fields_->batterLifeCharacterstic.reset();
    fields_->timeoutMonitor.reset();
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
    for (const Step& step : steps)
        if (step.name == selector) return step.method;
    return nullptr;
}

// --- fields -------------------------------------------------------------------------------------

std::shared_ptr<InkoraProtocols> InkoraHandler::delegate() const {
    return fields_->delegate.lock();
}
void InkoraHandler::setDelegate(const std::shared_ptr<InkoraProtocols>& delegate) {
    fields_->delegate = delegate;
}

CBManagerStateReason InkoraHandler::bluetoothStateReason() const {
    const auto central = manager();
    return central ? central->stateReason() : CBManagerStateReason::none;
}

std::shared_ptr<CBCentralManager> InkoraHandler::manager() const {
    return fields_->manager;
}
void InkoraHandler::setManager(const std::shared_ptr<CBCentralManager>& manager) {
    fields_->manager = manager;
}

std::shared_ptr<CBPeripheral> InkoraHandler::connectedPeripheral() const {
    return fields_->connectedPeripheral;
}
void InkoraHandler::setConnectedPeripheral(const std::shared_ptr<CBPeripheral>& peripheral) {
    fields_->connectedPeripheral = peripheral;
}

std::shared_ptr<CBCharacteristic> InkoraHandler::batterLifeCharacterstic() const {
    return fields_->batterLifeCharacterstic;
}
void InkoraHandler::setBatterLifeCharacterstic(const std::shared_ptr<CBCharacteristic>& battery) {
    fields_->batterLifeCharacterstic = battery;
}

std::shared_ptr<Timer> InkoraHandler::timeoutMonitor() const {
    return fields_->timeoutMonitor;
}
void InkoraHandler::setTimeoutMonitor(const std::shared_ptr<Timer>& timer) {
    fields_->timeoutMonitor = timer;
}

double InkoraHandler::colorCaptureTimeout() const {
    return fields_->colorCaptureTimeout;
}
void InkoraHandler::setColorCaptureTimeout(double seconds) {
    fields_->colorCaptureTimeout = seconds;
}

ManagerState InkoraHandler::currentState() const {
    return fields_->currentState;
}
void InkoraHandler::setCurrentState(ManagerState state) {
    fields_->currentState = state;
}

const std::string& InkoraHandler::deviceName() const {
    return fields_->deviceName;
}
void InkoraHandler::setDeviceName(const std::string& name) {
    fields_->deviceName = name;
}

const std::string& InkoraHandler::deviceUdid() const {
    return fields_->deviceUdid;
}
void InkoraHandler::setDeviceUdid(const std::string& identifier) {
    fields_->deviceUdid = identifier;
}

bool InkoraHandler::isRealDevice() const {
    return fields_->isRealDevice;
}
void InkoraHandler::setIsRealDevice(bool isRealDevice) {
    fields_->isRealDevice = isRealDevice;
}

bool InkoraHandler::isAutoPairEnabled() const {
    return fields_->isAutoPairEnabled;
}
void InkoraHandler::setIsAutoPairEnabled(bool isEnabled) {
    fields_->isAutoPairEnabled = isEnabled;
}

bool InkoraHandler::isReScanNeeded() const {
    return fields_->isReScanNeeded;
}
void InkoraHandler::setIsReScanNeeded(bool isNeeded) {
    fields_->isReScanNeeded = isNeeded;
}

bool InkoraHandler::isBatteryInfoRequested() const {
    return fields_->isBatteryInfoRequested;
}
void InkoraHandler::setIsBatteryInfoRequested(bool isRequested) {
    fields_->isBatteryInfoRequested = isRequested;
}

bool InkoraHandler::isProximityInfoRequested() const {
    return fields_->isProximityInfoRequested;
}
void InkoraHandler::setIsProximityInfoRequested(bool isRequested) {
    fields_->isProximityInfoRequested = isRequested;
}

const std::optional<std::string>& InkoraHandler::capturedColorValue() const {
    return fields_->capturedColorValue;
}
void InkoraHandler::setCapturedColorValue(const std::optional<std::string>& value) {
    fields_->capturedColorValue = value;
    capturedColorValueChanged();
}

std::optional<std::int64_t> InkoraHandler::batteryLevelValue() const {
    return fields_->batteryLevelValue;
}
void InkoraHandler::setBatteryLevelValue(std::optional<std::int64_t> level) {
    fields_->batteryLevelValue = level;
    batteryLevelValueChanged();
}

std::optional<std::int64_t> InkoraHandler::deviceProximityValue() const {
    return fields_->deviceProximityValue;
}
void InkoraHandler::setDeviceProximityValue(std::optional<std::int64_t> proximity) {
    fields_->deviceProximityValue = proximity;
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
    tell(delegate(), &InkoraProtocols::didFailToConnectWithBlueTooth,
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
