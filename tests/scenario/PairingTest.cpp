#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

using enum ManagerState;
using PairingTest = PenScenario;

TEST_F(PairingTest, APenIsFoundByNameAndConnected) {
    start();
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
    EXPECT_EQ(handler->states,
              (std::vector{BlueToothEnabled, DiscoveryStarted, DeviceDiscovered, DiscoveryStopped,
                           DeviceConnected, DeviceCapturedColor}));
    EXPECT_FALSE(radio->isScanning());
    EXPECT_EQ(handler->deviceUdid(), pen->identifier().uuidString());
}

TEST_F(PairingTest, OnlyANameThatHoldsAPensNameIsAccepted) {
    const struct {
        std::optional<std::string> name;
        bool isPen;
    } cases[] = {
        {"InkoraPen", true},      {"HuveloPen", true},
        {"My InkoraPen 2", true}, {"HuveloPen/InkoraPen", true},
        {"inkorapen", false},     {"HUVELOPEN", false},
        {"InkoraPe", false},      {"", false},
        {std::nullopt, false},    {std::string("Inkora\0Pen", 10), false},
    };
    for (const auto& [name, isPen] : cases) {
        const auto advertiser = std::make_shared<VirtualPeripheral>("Advertiser");
        advertiser->setName(name);
        radio->remove(pen);
        radio->add(advertiser);
        handler = std::make_shared<OpenHandler>();
        start();
        EXPECT_EQ(host->take(), isPen ? Heard{"connected"} : Heard{}) << name.value_or("(none)");
        EXPECT_EQ(handler->deviceName(), isPen ? *name : "");
        handler->stopInkoraHandler();
        run(10);
        host->take();
        radio->remove(advertiser);
    }
}

TEST_F(PairingTest, ANameThatArrivesInALateScanResponseIsStillAccepted) {
    VirtualAdvertisement late = pen->advertisement();
    late.nameDelay = 3;
    pen->setAdvertisement(late);
    pen->setGapName("GAP InkoraPen");  // which is not what is looked at
    start();
    EXPECT_EQ(host->take(), Heard{});
    run(4);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
    EXPECT_EQ(handler->deviceName(), "InkoraPen");
}

TEST_F(PairingTest, AFruitlessScanEndsAfterSixSecondsAndStaysEnded) {
    pen->setAdvertising(false);
    start();
    run(4.99);
    EXPECT_EQ(host->take(), Heard{});
    EXPECT_TRUE(radio->isScanning());
    run(0.02);
    EXPECT_EQ(host->take(), Heard{timedOut});
    EXPECT_EQ(handler->states, (std::vector{BlueToothEnabled, DiscoveryStarted,
                                            DeviceDiscoveryTimedout, DiscoveryStopped}));
    EXPECT_FALSE(handler->timeoutMonitor());
    pen->setAdvertising(true);
    run(60);
    EXPECT_EQ(host->take(), Heard{});
    handler->startInkoraHandler();
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
}

TEST_F(PairingTest, AConnectionThatIsRefusedIsReportedOnceAndNotTriedAgain) {
    pen->setConnectAnswer(VirtualConnectAnswer::refuse);
    start();
    run(60);
    EXPECT_EQ(host->take(), Heard{notConnected});
    EXPECT_EQ(handler->currentState(), DiscoveryStopped);
    EXPECT_FALSE(radio->isScanning());
}

TEST_F(PairingTest, AConnectionThatIsNeverAnsweredHasNoTimeOutAndCanBeStopped) {
    pen->setConnectAnswer(VirtualConnectAnswer::none);
    start();
    run(600);
    EXPECT_EQ(host->take(), Heard{});
    EXPECT_EQ(handler->currentState(), DiscoveryStopped);
    handler->stopInkoraHandler();
    run(600);
    EXPECT_EQ(host->take(), Heard{"disconnected"});
    EXPECT_FALSE(radio->isScanning());
}

TEST_F(PairingTest, ALostLinkIsReportedAndThePenFoundAgain) {
    for (auto lose : {&VirtualPeripheral::dropLink, &VirtualPeripheral::loseLink}) {
        connect();
        ((*pen).*lose)();
        run(10);
        EXPECT_EQ(host->take(), (Heard{"disconnected", "connected", "colour"}));
        EXPECT_EQ(handler->states,
                  (std::vector{DeviceDisconnected, DiscoveryStarted, DeviceDiscovered,
                               DiscoveryStopped, DeviceConnected, DeviceCapturedColor}));
        handler->stopInkoraHandler();
        run(1);
        host->take();
    }
}

TEST_F(PairingTest, StoppingSuppressesTheRescanOfThatOneDisconnection) {
    connect();
    handler->stopInkoraHandler();
    run(60);
    EXPECT_EQ(host->take(), Heard{"disconnected"});
    EXPECT_EQ(handler->states, (std::vector{DiscoveryStopped, DeviceDisconnected}));
    EXPECT_FALSE(pen->isConnected());
    EXPECT_FALSE(radio->isScanning());
    EXPECT_TRUE(handler->isReScanNeeded());
    EXPECT_EQ(handler->deviceName() + handler->deviceUdid(), "");
    handler->startInkoraHandler();
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
}

TEST_F(PairingTest, StoppingWithoutAPenLeavesTheScanRunning) {
    pen->setAdvertising(false);
    start();
    handler->stopInkoraHandler();
    run(60);
    EXPECT_TRUE(radio->isScanning());
    EXPECT_EQ(host->take(), Heard{});
    pen->setAdvertising(true);
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
}

TEST_F(PairingTest, StartingTwiceIsHarmless) {
    handler->startInkoraHandler();
    handler->startInkoraHandler();  // before the adapter has told its state
    start();
    handler->startInkoraHandler();  // while connected: scans again, and the first pen found counts
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
    run(10);
    EXPECT_EQ(host->take(), Heard{timedOut});
    EXPECT_TRUE(pen->isConnected());
}

TEST_F(PairingTest, AnAdapterThatIsNotOnIsReportedWhateverTheReasonAndAgainByEachStart) {
    using enum CBManagerState;
    for (const CBManagerState state : {poweredOff, resetting, unauthorized, unsupported}) {
        radio->setState(state);
        handler = std::make_shared<OpenHandler>();
        start();
        EXPECT_EQ(host->take(), Heard{disabled});
        handler->startInkoraHandler();
        EXPECT_EQ(host->take(), Heard{disabled}) << "at once, on the caller's thread";
        EXPECT_EQ(handler->currentState(), BlueToothDisabled);
        radio->setState(poweredOn);
        run(1);
        EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
        handler->stopInkoraHandler();
        run(1);
        host->take();
    }
}

TEST_F(PairingTest, PowerLostWhileScanningEndsTheTimeOutAndWhileConnectedTheLink) {
    pen->setAdvertising(false);
    start();
    radio->setState(CBManagerState::poweredOff);
    run(60);
    EXPECT_EQ(host->take(), Heard{disabled});
    pen->setAdvertising(true);
    radio->setState(CBManagerState::poweredOn);
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
    radio->setState(CBManagerState::poweredOff);
    run(1);
    EXPECT_EQ(host->take(), Heard{disabled}) << "and nothing of a disconnection";
    testing::internal::CaptureStderr();
    handler->requestBatteryLifeValue();
    handler->stopInkoraHandler();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("API MISUSE"), std::string::npos);
    radio->setState(CBManagerState::poweredOn);
    run(1);
    EXPECT_EQ(host->take(), (Heard{"connected", "colour", "battery 100"}));
}

TEST_F(PairingTest, PublishingAndUnpublishingTakeEffectInOrderOnTheMainQueue) {
    handler->publishHandler(host);
    EXPECT_FALSE(handler->delegate());
    run(0);
    EXPECT_EQ(handler->delegate(), host);
    handler->unPublishHandler();
    handler->publishHandler(host);
    handler->unPublishHandler();
    run(0);
    EXPECT_FALSE(handler->delegate());
}

TEST_F(PairingTest, AHostThatIsGoneOrDeafIsNotMissed) {
    connect();
    host.reset();
    pen->capture(1, 2, 3);
    pen->dropLink();
    run(10);
    EXPECT_TRUE(pen->isConnected());
    const auto deaf = std::make_shared<InkoraProtocols>();
    handler->publishHandler(deaf);
    run(0);
    pen->capture(3, 2, 1);
    handler->requestBatteryLifeValue();
    handler->requestBluetoothSignalInfo();
    handler->requestDeviceGeneralInfo();
    pen->dropLink();
    run(10);
    EXPECT_TRUE(pen->isConnected());
}

TEST_F(PairingTest, AHostMayStopFromInsideAnyCallback) {
    struct Stopping : RecordingHost {
        void didConnectedToPeripheral() override { stop("connected"); }
        void didPeripheralCaptured(const UIColor& colour) override {
            RecordingHost::didPeripheralCaptured(colour);
            stop("colour");
        }
        void didDisconnectPeripheral() override {
            RecordingHost::didDisconnectPeripheral();
            stop("disconnected");
        }
        void stop(const std::string& event) {
            if (event == when) handler->stopInkoraHandler();
        }
        InkoraHandler* handler = nullptr;
        std::string when;
    };
    for (const char* when : {"connected", "colour", "disconnected"}) {
        const auto stopping = std::make_shared<Stopping>();
        stopping->handler = handler.get();
        stopping->when = when;
        handler->publishHandler(stopping);
        handler->startInkoraHandler();
        run(1);
        pen->dropLink();
        run(0.05);
        EXPECT_FALSE(pen->isConnected()) << when;
        EXPECT_EQ(stopping->heard.back(), "disconnected") << when;
        handler->stopInkoraHandler();
        run(10);
        pen->dropLink();
        run(1);
    }
}

TEST(SelectorTest, EveryStepCanBeCalledByNameInItsMostDerivedForm) {
    struct Replaced : OpenHandler {
        void connectTimeout() override { replaced = true; }
        bool replaced = false;
    };
    const auto handler = std::make_shared<Replaced>();
    EXPECT_TRUE(handler->performSelector("connectTimeout"));
    EXPECT_TRUE(handler->replaced);
    EXPECT_FALSE(handler->respondsToSelector("connecttimeout"));
    EXPECT_FALSE(handler->performSelector(""));
}

}  // namespace
}  // namespace InkoraKit
