#include <InkoraKit/InkoraKit.h>

#include <cstdio>
#include <memory>

// Prints the seconds from the start of pairing to the first colour, on the system's radio.
namespace {

using namespace InkoraKit;

struct FirstColour : InkoraProtocols {
    void didPeripheralCaptured(const UIColor&) override {
        if (isSeen) return;
        isSeen = true;
        std::printf("%.3f\n", RunLoop::main().now() - began);
        InkoraManager::stopPairingDevice();
    }
    void didDisconnectPeripheral() override { RunLoop::main().stop(); }
    void didFailedToInterrogate(const NSError& error) override { fail(error); }
    void didFailToConnectWithBlueTooth(const NSError& error) override { fail(error); }

    void fail(const NSError& error) {
        std::fprintf(stderr, "%s\n", error.domain().c_str());
        RunLoop::main().stop();
    }

    double began = RunLoop::main().now();
    bool isSeen = false;
};

}  // namespace

int main() {
    const auto host = std::make_shared<FirstColour>();
    InkoraManager::registerInkoraManager(host);
    InkoraManager::startDevicePairing();
    RunLoop::main().runFor(30);
    return host->isSeen ? 0 : 1;
}
