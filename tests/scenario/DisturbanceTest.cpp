#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <gtest/gtest.h>

#include <functional>

namespace InkoraKit {
namespace {

using Heard = std::vector<std::string>;

struct Handler : InkoraHandler {
    bool isCurious = false;  // discovers changed services anew

    void peripheralDidModifyServices(const std::shared_ptr<CBPeripheral>& peripheral,
                                     const std::vector<std::shared_ptr<CBService>>&) override {
        if (isCurious) peripheral->discoverServices({});
    }
};

struct Host : InkoraProtocols {
    void didFailToConnectWithBlueTooth(const NSError&) override { hear("disabled"); }
    void didConnectedToPeripheral() override { hear("connected"); }
    void didFailedToInterrogate(const NSError&) override { hear("failed"); }
    void didDisconnectPeripheral() override { hear("disconnected"); }
    void didPeripheralCaptured(const UIColor&) override { hear("colour"); }
    void didPeripheralIndicated(std::int64_t) override { hear("battery"); }
    void didPeripheralSensored(std::int64_t) override { hear("proximity"); }
    void didPeripheralProvided(const std::string& name, const std::string& udid) override {
        handler->stopInkoraHandler();  // which forgets both
        hear(name + (udid.empty() ? " unknown" : ""));
    }

    void hear(const std::string& what) {
        heard.push_back(what);
        if (throws) throw what;
    }
    std::shared_ptr<InkoraHandler> handler;
    bool throws = false;
    Heard heard;
};

class DisturbanceTest : public testing::Test {
protected:
    DisturbanceTest() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        begin();
    }
    void begin() {
        radio = VirtualRadio::install();
        radio->add(pen = std::make_shared<VirtualPen>());
        host->handler = handler = std::make_shared<Handler>();
        handler->publishHandler(host);
    }
    /// Lets the loop run; answers what was thrown out of it.
    static Heard run(double seconds) {
        Heard thrown;
        for (const double end = RunLoop::main().now() + seconds;;) {
            try {
                RunLoop::main().runUntil(end);
                return thrown;
            } catch (const std::string& text) {
                thrown.push_back(text);
            }
        }
    }
    Heard take() { return std::exchange(host->heard, {}); }

    std::shared_ptr<VirtualRadio> radio;
    std::shared_ptr<VirtualPen> pen;
    std::shared_ptr<Host> host = std::make_shared<Host>();
    std::shared_ptr<Handler> handler;
};

TEST_F(DisturbanceTest, WhatAHostThrowsLeavesTheLoopInOrderAndChangesNothing) {
    const std::vector<std::function<void()>> life = {
        [&] { handler->startInkoraHandler(); },
        [&] {
            pen->capture(1, 2, 3);
            handler->requestBatteryLifeValue();
            handler->requestBluetoothSignalInfo();
        },
        [&] {
            pen->setBattery(50);  // which nobody has asked for
            pen->dropLink();
        },
        [&] { handler->requestDeviceGeneralInfo(); },
        [&] {
            pen->setConnectAnswer(VirtualConnectAnswer::refuse);
            handler->startInkoraHandler();
        },
        [&] {
            pen->setName("Lamp");
            handler->startInkoraHandler();
        },
        [&] { radio->setState(CBManagerState::poweredOff); },
        [&] {
            handler->startInkoraHandler();
            handler->startInkoraHandler();
        },
    };
    for (const bool throws : {false, true}) {
        begin();
        host->throws = throws;
        Heard thrown;
        for (const auto& act : life) {
            act();
            for (auto& text : run(10)) thrown.push_back(std::move(text));
        }
        EXPECT_EQ(host->heard,
                  (Heard{"connected", "colour", "colour", "battery", "proximity", "disconnected",
                         "connected", "colour", "InkoraPen", "disconnected", "failed", "failed",
                         "disabled", "disabled", "disabled"}));
        EXPECT_EQ(thrown, throws ? host->heard : Heard{});
        take();
    }
}

TEST_F(DisturbanceTest, AnAdapterThatIsBackInTheSamePassIsToldOfAndScannedOnceMore) {
    pen->setName("Lamp");
    for (const auto state : {CBManagerState::poweredOff, CBManagerState::resetting,
                             CBManagerState::unknown, CBManagerState::unsupported}) {
        handler->startInkoraHandler();
        run(3);
        radio->setState(state);
        radio->setState(CBManagerState::poweredOn);
        EXPECT_FALSE(radio->isScanning());
        handler->startInkoraHandler();
        run(5.9);
        EXPECT_EQ(take(), Heard{"disabled"});
        EXPECT_TRUE(radio->isScanning());
        run(20);
        EXPECT_EQ(take(), Heard{"failed"}) << "one timer, that of the new scan";
    }
}

TEST_F(DisturbanceTest, ServicesThatChangeGoOnWithTheirSubscriptions) {
    handler->startInkoraHandler();
    run(1);
    auto table = pen->services();
    std::uint8_t red = 0;
    for (const bool isCurious : {false, true, true, false}) {
        take();
        handler->isCurious = isCurious;
        table.insert(table.begin(), {CBUUID("180F")});
        table.back().isPrimary = !table.back().isPrimary;  // another service, then
        pen->setServices(table);
        run(0.1);
        pen->capture(++red, 0, 0);
        handler->requestBatteryLifeValue();
        run(0.1);
        EXPECT_EQ(take(), (Heard{"colour", "battery"}));
        const auto& known = *handler->connectedPeripheral()->services();
        EXPECT_TRUE(!isCurious || known.back()->characteristics()->at(0)->isNotifying());
    }
}

TEST(HandlerDeathTest, AHandlerThatNobodySharesSaysSo) {
    Handler onTheStack;
    EXPECT_DEATH(onTheStack.unPublishHandler(), "must be owned by a std::shared_ptr");
}

}  // namespace
}  // namespace InkoraKit
