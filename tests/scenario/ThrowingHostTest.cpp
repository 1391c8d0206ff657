#include "support/PenScenario.h"

#include <functional>

namespace InkoraKit {
namespace {

struct ThrowingHost : InkoraProtocols {
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

using ThrowingHostTest = PenScenario;

/// Lets the loop run; answers what was thrown out of it.
Heard thrownIn(double seconds) {
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

TEST_F(ThrowingHostTest, EveryStepIsCompletedAndEveryExceptionLeavesTheLoopInOrder) {
    const std::vector<std::function<void()>> life = {
        [&] { handler->startInkoraHandler(); },
        [&] {
            pen->capture(1, 2, 3);
            handler->requestBatteryLifeValue();
            handler->requestBluetoothSignalInfo();
        },
        [&] { pen->setBattery(50); },  // which nobody has asked for
        [&] { pen->dropLink(); },
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
    const auto lead = [&](bool throws) {
        radio = VirtualRadio::install();
        radio->add(pen = std::make_shared<VirtualPen>());
        handler = std::make_shared<OpenHandler>();
        const auto told = std::make_shared<ThrowingHost>();
        told->handler = handler;
        told->throws = throws;
        handler->publishHandler(told);
        Heard thrown;
        for (const auto& act : life) {
            act();
            for (auto& text : thrownIn(10)) thrown.push_back(std::move(text));
        }
        EXPECT_EQ(thrown, throws ? told->heard : Heard{});
        return std::pair(told->heard, handler->states);
    };
    const auto quiet = lead(false);
    EXPECT_EQ(quiet.first,
              (Heard{"connected", "colour", "colour", "battery", "proximity", "disconnected",
                     "connected", "colour", "InkoraPen", "disconnected", "failed", "failed",
                     "disabled", "disabled", "disabled"}));
    EXPECT_EQ(lead(true), quiet);
}

TEST(HandlerDeathTest, AHandlerThatNobodySharesSaysSo) {
    OpenHandler onTheStack;
    EXPECT_DEATH(onTheStack.unPublishHandler(), "must be owned by a std::shared_ptr");
}

}  // namespace
}  // namespace InkoraKit
