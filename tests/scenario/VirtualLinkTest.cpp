#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "support/PenScript.h"

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

struct Handler : InkoraHandler {};

struct Host : InkoraProtocols {
    void didConnectedToPeripheral() override { heard += "connected "; }
    void didDisconnectPeripheral() override { heard += "disconnected "; }
    void didPeripheralCaptured(const UIColor&) override { heard += "colour "; }
    void didPeripheralIndicated(std::int64_t) override { heard += "battery "; }
    void didPeripheralSensored(std::int64_t) override { heard += "proximity "; }
    std::string heard;
};

TEST(VirtualLinkTest, ALinkLostAtAnyMomentIsFoundAgainAndServesUntilItIsStopped) {
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    const auto run = [](double seconds) { RunLoop::main().runFor(seconds); };
    const auto radio = VirtualRadio::install();
    const auto pen = std::make_shared<VirtualPen>();
    pen->setAnswerDelay(0.1);
    radio->add(pen);
    for (int moment = 0; moment < 24; ++moment) {
        const auto host = std::make_shared<Host>();
        const auto handler = std::make_shared<Handler>();
        handler->publishHandler(host);
        handler->startInkoraHandler();
        run(0.15 + 0.05 * (moment / 2));
        moment % 2 ? pen->dropLink() : pen->loseLink();
        run(8);
        host->heard.clear();
        pen->capture(1, 2, static_cast<std::uint8_t>(moment));
        handler->requestBatteryLifeValue();
        handler->requestBluetoothSignalInfo();
        run(1);
        handler->stopInkoraHandler();
        run(60);
        EXPECT_EQ(host->heard, "colour battery proximity disconnected ") << moment;
        EXPECT_FALSE(pen->isConnected() || radio->isScanning()) << moment;
    }
}

TEST(HandlerTest, OneThatNobodySharesSaysSo) {
    Handler onTheStack;
    EXPECT_THROW(onTheStack.unPublishHandler(), FatalStop);
}

}  // namespace
}  // namespace InkoraKit
