// How a host tests its own receiver: with a pen that needs no Bluetooth, by a clock on which nobody
// waits. Ends with 0 if the receiver did what it should.
#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <cstdio>
#include <memory>
#include <vector>

using namespace InkoraKit;

// The receiver under test: a palette of the colours captured, which survives the loss of a link.
struct Palette : InkoraProtocols {
    void didConnectedToPeripheral() override { isConnected = true; }
    void didDisconnectPeripheral() override { isConnected = false; }
    void didPeripheralCaptured(const UIColor& colour) override { colours.push_back(colour); }

    std::vector<UIColor> colours;
    bool isConnected = false;
};

int failures = 0;

void expect(bool condition, const char* what) {
    std::printf("%s: %s\n", condition ? "ok" : "FAILED", what);
    if (!condition) ++failures;
}

int main() {
    RunLoop& loop = RunLoop::main();
    loop.setClock(std::make_shared<VirtualClock>());
    const auto radio = VirtualRadio::install();
    const auto pen = std::make_shared<VirtualPen>();
    radio->add(pen);

    const auto palette = std::make_shared<Palette>();
    InkoraManager::registerInkoraManager(palette);
    InkoraManager::startDevicePairing();
    loop.runFor(1);
    expect(palette->isConnected, "the pen is found and connected");

    palette->colours.clear();  // a pen begins with the colour it captured last
    pen->capture(255, 0, 0);
    loop.runFor(1);
    expect(palette->colours == std::vector{UIColor(1, 0, 0, 1)}, "a captured colour is kept");

    pen->setProximity(VirtualProximity::outOfRange);
    loop.runFor(5);
    expect(!palette->isConnected, "a pen that is carried away is lost");

    pen->setProximity(VirtualProximity::near);
    loop.runFor(1);
    pen->capture(0, 0, 255);
    loop.runFor(1);
    expect(palette->isConnected && palette->colours.back() == UIColor(0, 0, 1, 1),
           "it is found again and goes on");
    return failures == 0 ? 0 : 1;
}
