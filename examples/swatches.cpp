#include <InkoraKit/InkoraKit.h>

#include <cstdio>

using namespace InkoraKit;

struct Swatches : InkoraProtocols {
    void didConnectedToPeripheral() override { std::puts("connected"); }

    void didPeripheralCaptured(const UIColor& colour) override {
        std::puts(colour.description().c_str());
    }

    void didFailedToInterrogate(const NSError& error) override { giveUp(error); }
    void didFailToConnectWithBlueTooth(const NSError& error) override { giveUp(error); }

    void giveUp(const NSError& error) {
        std::fprintf(stderr, "%s\n", error.domain().c_str());
        status = 1;
        RunLoop::main().stop();
    }

    int status = 0;
};

int main() {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);
    InkoraManager::startDevicePairing();
    RunLoop::main().run();
    return swatches->status;
}
