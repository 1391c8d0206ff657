#include "platform/radios/bluez/Properties.h"
#include "support/PenScenario.h"

#include <regex>

namespace InkoraKit {
namespace {

/// The kit compiled with its console log on.
class LogLinesTest : public PenScenario {
protected:
    /// The console's lines since the last call, objects' addresses replaced by 0x….
    static std::string lines() {
        std::fflush(stdout);
        std::string text = testing::internal::GetCapturedStdout();
        testing::internal::CaptureStdout();
        return std::regex_replace(text, std::regex("0x[0-9a-f]{5,}"), "0x…");
    }
    LogLinesTest() { testing::internal::CaptureStdout(); }
    ~LogLinesTest() override { testing::internal::GetCapturedStdout(); }
};

TEST_F(LogLinesTest, OfAWholeSession) {
    pen->colour()->setValue(Data{1, 255, 128, 0});
    handler->publishHandler(host);
    handler->startInkoraHandler();
    EXPECT_EQ(lines(), "startInkoraHandler\nStartInkoraHandlerManager\ninitCBCentralManager\n");
    run(0);
    EXPECT_EQ(lines(), "centralManagerDidUpdateState\nstartScanPeripheral\nstartTimeoutMonitor\n");
    handler->startInkoraHandler();
    EXPECT_EQ(lines(),
              "startInkoraHandler\nStartInkoraHandlerManager\n"
              "current state DiscoveryStarted\n");
    run(1);
    EXPECT_EQ(lines(),
              "peripheral => didDiscover peripheral\n"
              "RSSI!:-60\n"
              "Sensored new proximity value\n"
              "BluetoothDeviceDiscovered\n"
              "stopTimeoutMonitor\n"
              "stopScanPeripheral\n"
              "stopTimeoutMonitor\n"
              "peripheral => didConnect peripheral\n" +
                  pen->identifier().uuidString() +
                  "\n"
                  "InkoraPen\n"
                  "BluetoothDeviceConnected\n"
                  "New RSSI!:-60\n"
                  "Sensored new proximity value\n"
                  "peripheral => didDiscoverServices\n"
                  "<CBService: 0x…, isPrimary = YES, UUID = 1F1F>\n"
                  "peripheral => didDiscoverCharacteristicsFor\n"
                  "1F14\n"
                  "1F17\n"
                  "peripheral => didUpdateValueFor characteristic\n"
                  "rec 1\nrec 255\nrec 128\nrec 0\n"
                  "read characterstics - [1, 255, 128, 0] 255#128#0#\n"
                  "captured new value\n"
                  "1.0\n0.5019607843137255\n0.0\n"
                  "peripheral => didUpdateValueFor characteristic\n"
                  "Data Value 64\n"
                  "battery value 100\n"
                  "Indicated new battery level\n");
    pen->notify(*pen->colour(), std::nullopt);
    pen->notify(*pen->battery(), std::nullopt);
    run(0);
    EXPECT_EQ(lines(),
              "peripheral => didUpdateValueFor characteristic\nNo Value\n"
              "peripheral => didUpdateValueFor characteristic\nNo Value\n");
    handler->requestBatteryLifeValue();
    handler->requestBluetoothSignalInfo();
    handler->requestDeviceGeneralInfo();
    EXPECT_EQ(lines(),
              "requestBatteryLifeValue\nrequestBluetoothSignalInfo\nrequestDeviceGeneralInfo\n");
    run(0);
    lines();
    pen->dropLink();
    run(0);
    EXPECT_EQ(lines(),
              "peripheral => didDisconnectPeripheral\n"
              "reset device information cache\n"
              "captured new value\n"
              "Sensored new proximity value\n"
              "Indicated new battery level\n"
              "disconnectAllPeripherals\n"
              "BluetoothDeviceDisconnected\n"
              "startScanPeripheral\n"
              "startTimeoutMonitor\n");
    radio->setState(CBManagerState::poweredOff);
    run(0);
    EXPECT_EQ(lines(),
              "centralManagerDidUpdateState\nBluetooth not available.\nstopTimeoutMonitor\n");
}

TEST_F(LogLinesTest, OfFailures) {
    pen->setAdvertising(false);
    start();
    lines();
    run(6);
    EXPECT_EQ(lines(), "connectTimeout\nstopScanPeripheral\nstopTimeoutMonitor\n");
    pen->setAdvertising(true);
    pen->setConnectAnswer(VirtualConnectAnswer::refuse);
    handler->startInkoraHandler();
    run(1);
    EXPECT_TRUE(
        lines().ends_with("peripheral => did Fail to connect\n"
                          "BluetoothDeviceFailedToConnect\n"
                          "stopScanPeripheral\nstopTimeoutMonitor\n"));
    handler->stopInkoraHandler();
    EXPECT_TRUE(lines().starts_with("stopInkoraHandler\nstopTimeoutMonitor\n"));
}

TEST_F(LogLinesTest, OfTheSimulation) {
    struct Simulated : OpenHandler {
        bool isRealDevice() const override { return false; }
    };
    const auto simulated = std::make_shared<Simulated>();
    simulated->BluetoothDeviceDiscovered();
    run(1);
    simulated->didUpdateValueForPeripheralCharacterstic();
    EXPECT_EQ(lines(),
              "BluetoothDeviceDiscovered\nStartDiscoveringServicesForPeripheral\n"
              "startTimeoutMonitor\nstopTimeoutMonitor\n"
              "ServiceDiscoveryForPeripheralCompleted\nBluetoothDeviceConnected\n"
              "didUpdateValueForPeripheralCharacterstic\n");
}

TEST_F(LogLinesTest, OfAPropertyOfAnotherType) {
    EXPECT_EQ(find<bool>({{"Powered", std::string("yes")}}, "Powered"), nullptr);
    EXPECT_EQ(lines(), "D-Bus: Powered has a type that it should not have\n");
}

}  // namespace
}  // namespace InkoraKit
