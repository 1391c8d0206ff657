#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/InkoraManager.h>

namespace InkoraKit {

void InkoraManager::registerInkoraManager(const std::shared_ptr<InkoraProtocols>& receiver) {
    InkoraHandler::getInstance()->publishHandler(receiver);
}

void InkoraManager::unRegisterInkoraManager() {
    InkoraHandler::getInstance()->unPublishHandler();
}

void InkoraManager::startDevicePairing() {
    InkoraHandler::getInstance()->startInkoraHandler();
}

void InkoraManager::stopPairingDevice() {
    InkoraHandler::getInstance()->stopInkoraHandler();
}

void InkoraManager::requestInkoraDeviceBatteryInfo() {
    InkoraHandler::getInstance()->requestBatteryLifeValue();
}

void InkoraManager::requestInkoraDeviceProximityInfo() {
    InkoraHandler::getInstance()->requestBluetoothSignalInfo();
}

void InkoraManager::requestInkoraDeviceGeneralInfo() {
    InkoraHandler::getInstance()->requestDeviceGeneralInfo();
}

}  // namespace InkoraKit
