// A host in a page: what it hears is written down in `seen`, for the page's test to compare.
#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/c/inkorakit.h>
#include <InkoraKit/web/ChoosePen.h>

#include <emscripten.h>

#include <cstdio>

using namespace InkoraKit;

// clang-format off
EM_JS(void, tell, (const char* line), { seen.push(UTF8ToString(line)); });
// clang-format on

namespace {

struct Host final : InkoraProtocols {
    void didConnectedToPeripheral() override { tell("connected"); }
    void didDisconnectPeripheral() override { tell("disconnected"); }
    void didFailToConnectWithBlueTooth(const NSError& error) override { failed(error); }
    void didFailedToInterrogate(const NSError& error) override { failed(error); }
    void didPeripheralCaptured(const UIColor& colour) override {
        char text[16];
        const auto byte = [](double component) { return static_cast<int>(component * 255 + 0.5); };
        std::snprintf(text, sizeof text, "#%02x%02x%02x", byte(colour.red()), byte(colour.green()),
                      byte(colour.blue()));
        tell(text);
    }
    void didPeripheralIndicated(std::int64_t level) override {
        tell(("battery " + std::to_string(level)).c_str());
    }
    void didPeripheralSensored(std::int64_t proximity) override {
        tell(("proximity " + std::to_string(proximity)).c_str());
    }
    void didPeripheralProvided(const std::string& name, const std::string& udid) override {
        tell((name + " " + udid).c_str());
    }
    static void failed(const NSError& error) {
        tell((error.domain() + " " + std::to_string(error.code())).c_str());
    }
};

std::shared_ptr<Host> host;

}  // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE void pair() {
    InkoraManager::startDevicePairing();
}

EMSCRIPTEN_KEEPALIVE void choose(bool pairs) {
    choosePen([pairs](const std::optional<NSError>& error) {
        tell(error ? error->localizedDescription().c_str() : "chosen");
        if (!error && pairs) pair();
    });
}

EMSCRIPTEN_KEEPALIVE void battery() {
    InkoraManager::requestInkoraDeviceBatteryInfo();
}

EMSCRIPTEN_KEEPALIVE void proximity() {
    InkoraManager::requestInkoraDeviceProximityInfo();
}

EMSCRIPTEN_KEEPALIVE void info() {
    InkoraManager::requestInkoraDeviceGeneralInfo();
}

EMSCRIPTEN_KEEPALIVE void reason() {
    tell(inkora_bluetooth_reason());
}

EMSCRIPTEN_KEEPALIVE void stop() {
    InkoraManager::stopPairingDevice();
}
}

int main() {
    host = std::make_shared<Host>();
    InkoraManager::registerInkoraManager(host);
    tell("ready");
}
