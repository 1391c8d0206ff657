#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

using enum ManagerState;

/// A handler whose default is the simulation.
struct Simulated : OpenHandler {
    bool isRealDevice() const override { return false; }
};

class SimulationTest : public testing::Test {
protected:
    SimulationTest() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        handler->publishHandler(host);
        run(0);
    }
    static void run(double seconds) { RunLoop::main().runFor(seconds); }

    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
    std::shared_ptr<Simulated> handler = std::make_shared<Simulated>();
};

TEST_F(SimulationTest, AScanArmsNoTimer) {
    handler->startScanPeripheral();
    EXPECT_EQ(handler->states, std::vector{DiscoveryStarted});
    EXPECT_FALSE(handler->timeoutMonitor());
}

TEST_F(SimulationTest, AScanEndsInADiscoveryOrAnotherScanEachHalfTheTime) {
    int discovered = 0;
    for (int i = 0; i < 400; ++i) {
        handler->states.clear();
        handler->ScanPeripheralCompleted();
        ASSERT_NE(handler->states.at(0), DeviceDiscoveryTimedout);
        if (handler->states.at(0) == DeviceDiscovered)
            ++discovered;
        else
            EXPECT_EQ(handler->states, (std::vector{DeviceFailedToDiscover, DiscoveryStarted}));
    }
    EXPECT_GT(discovered, 120);
    EXPECT_LT(discovered, 280);
}

TEST_F(SimulationTest, ADiscoveryEndsInAConnectionATenthOfASecondLater) {
    handler->BluetoothDeviceDiscovered();
    run(0.09);
    EXPECT_EQ(host->take(), Heard{});
    run(0.02);
    EXPECT_EQ(host->take(), Heard{"connected"});
    EXPECT_EQ(handler->states, (std::vector{DeviceDiscovered, DeviceConnected, DeviceConnected}));
    run(60);
    EXPECT_EQ(host->take(), Heard{});
}

TEST_F(SimulationTest, ACaptureComesAfterTheTimeOutThatWasSet) {
    handler->setColorCaptureTimeout(2.0);
    handler->setCurrentState(DeviceCapturedColor);
    handler->startTimeoutMonitor();
    handler->setColorCaptureTimeout(60.0);  // too late for the timer that runs
    handler->setCurrentState(Unknown);
    run(1.9);
    EXPECT_EQ(handler->currentState(), Unknown);
    run(0.2);
    EXPECT_EQ(handler->currentState(), DeviceCapturedColor);
    EXPECT_EQ(host->take(), Heard{});
}

TEST_F(SimulationTest, OtherStatesArmNothing) {
    for (const ManagerState state :
         {Unknown, BlueToothEnabled, DiscoveryStopped, DeviceConnected}) {
        handler->setCurrentState(state);
        handler->startTimeoutMonitor();
        EXPECT_FALSE(handler->timeoutMonitor());
    }
}

TEST_F(SimulationTest, StoppingDisconnectsAtOnce) {
    handler->BluetoothDeviceDiscovered();
    handler->stopInkoraHandler();
    run(1);
    EXPECT_EQ(host->take(), Heard{"disconnected"});
    EXPECT_EQ(handler->currentState(), DeviceDisconnected);
    EXPECT_TRUE(handler->isReScanNeeded());
}

TEST(TimeoutTest, ATimerReplacedWithoutBeingInvalidatedStillFires) {
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    const auto radio = VirtualRadio::install();
    const auto handler = std::make_shared<OpenHandler>();
    const auto host = std::make_shared<RecordingHost>();
    handler->publishHandler(host);
    handler->initCBCentralManager();
    handler->startTimeoutMonitor();
    handler->startTimeoutMonitor();
    RunLoop::main().runFor(60);
    EXPECT_EQ(host->take(), (Heard{timedOut, timedOut, timedOut})) << "the scan's own among them";
}

}  // namespace
}  // namespace InkoraKit
