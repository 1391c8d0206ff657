#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

using BatteryTest = PenScenario;
using BatteryDeathTest = PenScenario;
using ProximityTest = PenScenario;
using GeneralInfoTest = PenScenario;

constexpr const char* nilFound =
    "Fatal error: unexpectedly found nil while unwrapping an Optional value";

TEST_F(BatteryTest, BytesAreOneBigEndianNumber) {
    const struct {
        Data bytes;
        std::int64_t level;
    } cases[] = {
        {{0x64}, 100},
        {{0x00, 0x64}, 100},
        {{0x64, 0x00}, 25600},
        {{0x01, 0x00}, 256},
        {{0x7f, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}, INT64_MAX},
    };
    connect();
    for (const auto& [bytes, level] : cases) {
        pen->notify(*pen->battery(), bytes);
        run(0.1);
        EXPECT_EQ(handler->batteryLevelValue(), level);
    }
    EXPECT_EQ(host->take(), Heard{}) << "nobody has asked";
}

TEST_F(BatteryTest, ARequestIsAnsweredOnce) {
    connect();
    pen->setBattery(42);
    run(0.1);
    handler->requestBatteryLifeValue();
    run(0.1);
    pen->setBattery(41);
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"battery 42"});
}

TEST_F(BatteryTest, ARequestWaitsForTheConnectionAndOutlivesTheNext) {
    handler->requestBatteryLifeValue();
    start();
    EXPECT_EQ(host->take(), (Heard{"connected", "colour", "battery 100"}));
    pen->battery()->setReadDelay(5);
    handler->requestBatteryLifeValue();
    pen->dropLink();
    run(0.05);
    EXPECT_EQ(handler->batteryLevelValue(), 0);
    EXPECT_FALSE(handler->batterLifeCharacterstic());
    pen->battery()->setReadDelay(0);
    run(1);
    EXPECT_EQ(host->take(), (Heard{"disconnected", "connected", "colour", "battery 100"}));
}

TEST_F(BatteryTest, AnAbsentValueIsNoAnswer) {
    pen->battery()->setValue(std::nullopt);
    handler->requestBatteryLifeValue();
    start();
    EXPECT_EQ(host->take(), (Heard{"connected", "colour"}));
    EXPECT_FALSE(handler->batterLifeCharacterstic());
    pen->setBattery(7);
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"battery 7"});
}

TEST_F(BatteryDeathTest, AValueThatIsNoNumberIsAFatalStop) {
    connect();
    for (const Data& bytes :
         {Data{}, Data{0x80, 0, 0, 0, 0, 0, 0, 0}, Data{0, 0, 0, 0, 0, 0, 0, 0, 1}})
        EXPECT_DEATH(
            {
                pen->notify(*pen->battery(), bytes);
                run(0.1);
            },
            nilFound);
}

TEST_F(BatteryDeathTest, ARequestOnALinkWithoutABatteryValueYetIsAFatalStop) {
    pen->setServices({});
    start();
    EXPECT_DEATH(handler->requestBatteryLifeValue(), nilFound);
}

TEST_F(ProximityTest, TheMagnitudeIsReportedOncePerRequest) {
    connect();
    pen->setRSSI(-57);
    handler->requestBluetoothSignalInfo();
    run(0.1);
    pen->setProximity(VirtualProximity::immediate);
    run(10);
    EXPECT_EQ(host->take(), Heard{"proximity 57"});
    EXPECT_EQ(handler->deviceProximityValue(), 57);
    handler->requestBluetoothSignalInfo();
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"proximity 40"});
}

TEST_F(ProximityTest, ARequestBeforePairingIsAnsweredByTheAdvertisement) {
    pen->setRSSI(-73);
    handler->requestBluetoothSignalInfo();
    start();
    EXPECT_EQ(host->take(), (Heard{"proximity 73", "connected", "colour"}));
}

TEST_F(ProximityTest, WhereItCannotBeReadTheRequestStaysOpen) {
    radio->setCanReadRSSI(false);
    connect();
    handler->requestBluetoothSignalInfo();
    run(60);
    EXPECT_EQ(host->take(), Heard{});
    EXPECT_EQ(handler->deviceProximityValue(), 60) << "the advertisement's, and nothing made up";
}

TEST_F(GeneralInfoTest, NameAndIdentifierAreToldAsTheyStand) {
    handler->publishHandler(host);
    run(0);
    handler->requestDeviceGeneralInfo();
    EXPECT_EQ(host->take(), Heard{"name '' ''"});
    connect();
    handler->requestDeviceGeneralInfo();
    EXPECT_EQ(host->take(), Heard{"name 'InkoraPen' '" + pen->identifier().uuidString() + "'"});
    pen->setAdvertising(false);
    pen->dropLink();
    run(0.1);
    host->take();
    handler->requestDeviceGeneralInfo();
    EXPECT_EQ(host->take(), Heard{"name '' ''"});
}

}  // namespace
}  // namespace InkoraKit
