#include "c/Start.h"

#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/InkoraManager.h>
#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/CBPeripheral.h>

#include "c/Boundary.h"

#include <memory>

// The facade, and where the link stands.
namespace InkoraKit {
namespace {

bool started = false;

// The pen that was stopped, which the engine forgets at once.
std::weak_ptr<CBPeripheral> leaving;

inkora_link_state linkState() {
    const auto& handler = InkoraHandler::getInstance();
    if (const auto pen = handler->connectedPeripheral()) {
        if (pen->state() == CBPeripheralState::connecting) return INKORA_LINK_CONNECTING;
        if (pen->state() == CBPeripheralState::connected)
            return handler->batterLifeCharacterstic() ? INKORA_LINK_READY : INKORA_LINK_CONNECTED;
    }
    // The engine's one timer bounds the scan.
    if (handler->timeoutMonitor()) return INKORA_LINK_SCANNING;
    const auto left = leaving.lock();
    return left && left->state() == CBPeripheralState::disconnecting ? INKORA_LINK_DISCONNECTING
                                                                     : INKORA_LINK_NONE;
}

}  // namespace

bool wasStarted() {
    return started;
}

}  // namespace InkoraKit

using namespace InkoraKit;

extern "C" {

inkora_status inkora_start(void) {
    return onLoopThread([] {
        switch (linkState()) {
            case INKORA_LINK_NONE:
            case INKORA_LINK_DISCONNECTING:
                break;
            case INKORA_LINK_SCANNING:
                throw Refusal(INKORA_ALREADY_DONE, "a scan is under way");
            default:
                throw Refusal(INKORA_ALREADY_DONE, "there is a pen; stop first");
        }
        started = true;
        InkoraManager::startDevicePairing();
    });
}

inkora_status inkora_stop(void) {
    return onLoopThread([] {
        const bool isScanning = linkState() == INKORA_LINK_SCANNING;
        if (const auto pen = InkoraHandler::getInstance()->connectedPeripheral()) leaving = pen;
        InkoraManager::stopPairingDevice();
        // Without a pen the kit lets a scan run to its end, and would take what it finds.
        if (isScanning) InkoraHandler::getInstance()->stopScanPeripheral();
    });
}

int inkora_link(void) {
    inkora_link_state state = INKORA_LINK_NONE;
    const inkora_status status = onLoopThread([&] { state = linkState(); });
    return status == INKORA_OK ? static_cast<int>(state) : static_cast<int>(status);
}

const char* inkora_bluetooth_reason(void) {
    const char* text = "";
    onLoopThread(
        [&] { text = description(InkoraHandler::getInstance()->bluetoothStateReason()).data(); });
    return text;
}

inkora_status inkora_request_battery(void) {
    return onLoopThread([] {
        const auto& handler = InkoraHandler::getInstance();
        // Where the kit would end the process.
        if (handler->connectedPeripheral() && !handler->batterLifeCharacterstic())
            throw Refusal(INKORA_TOO_EARLY, "the pen has not told its battery level yet");
        InkoraManager::requestInkoraDeviceBatteryInfo();
    });
}

inkora_status inkora_request_proximity(void) {
    return onLoopThread([] { InkoraManager::requestInkoraDeviceProximityInfo(); });
}

inkora_status inkora_request_information(void) {
    return onLoopThread([] { InkoraManager::requestInkoraDeviceGeneralInfo(); });
}
}
