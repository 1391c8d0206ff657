#include "doctor/bluez/Checks.h"

#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/InkoraManager.h>
#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/platform/RunLoop.h>

#include "pen/HexColour.h"

#include <array>
#include <cstdio>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// Seconds
constexpr double longestConnection = 30;
constexpr double longestAnswer = 10;
constexpr double longestLetGo = 5;

/// A host like any other.
struct Host final : InkoraProtocols {
    void didFailToConnectWithBlueTooth(const NSError& error) override { failure = error.domain(); }
    void didFailedToInterrogate(const NSError& error) override { failure = error.domain(); }
    void didConnectedToPeripheral() override { isConnected = true; }
    void didDisconnectPeripheral() override {
        isConnected = false;
        if (value.empty()) failure = "The link was lost.";
    }
    void didPeripheralCaptured(const UIColor& colour) override {
        value = "colour " + hexText(colour);
    }
    void didPeripheralIndicated(std::int64_t level) override {
        value = "battery " + std::to_string(level) + " %";
    }

    bool isConnected = false;
    std::string value;
    std::string failure;
};

void letGo() {
    if (const auto pen = InkoraHandler::getInstance()->connectedPeripheral()) {
        InkoraManager::stopPairingDevice();
        waitUntil([&] { return pen->state() == CBPeripheralState::disconnected; }, longestLetGo);
    }
    InkoraManager::unRegisterInkoraManager();
}

std::string secondsSince(double begin) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f s", RunLoop::main().now() - begin);
    return text.data();
}

Finding fault(const char* name, const std::string& text) {
    return {name, Finding::State::fault, text, "bluetoothctl power off && bluetoothctl power on",
            "Bring the pen near, switch it off and on; if that does not help:"};
}

Findings tryPen(const Waiting& waiting, Host& host) {
    const double began = RunLoop::main().now();
    waiting.until([&] { return host.isConnected || !host.failure.empty(); }, longestConnection);
    if (!host.isConnected)
        return {fault(named::connection, host.failure.empty() ? "none within 30 s" : host.failure)};
    const Finding connected{named::connection, Finding::State::ok, "after " + secondsSince(began)};
    waiting.until([&] { return !host.value.empty() || !host.failure.empty(); }, longestAnswer);
    if (!host.value.empty())
        return {
            connected,
            {named::firstValue, Finding::State::ok, host.value + ", after " + secondsSince(began)}};
    return {connected,
            fault(named::firstValue, host.failure.empty() ? "none within 10 s" : host.failure)};
}

}  // namespace

Findings tryAPen(Machine& machine) {
    const auto host = std::make_shared<Host>();
    InkoraManager::registerInkoraManager(host);
    RunLoop::main().post([] {
        InkoraManager::requestInkoraDeviceBatteryInfo();
        InkoraManager::startDevicePairing();
    });
    try {
        Findings findings = tryPen(machine.waiting, *host);
        letGo();
        return findings;
    } catch (const Interrupted&) {
        letGo();
        throw;
    }
}

}  // namespace InkoraTool
