#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

using DiscoveryTest = PenScenario;
using DiscoveryDeathTest = PenScenario;

TEST_F(DiscoveryTest, APenWithoutItsServiceOrItsCharacteristicsStaysConnectedAndSilent) {
    const CBUUID service(InkoraConstants::PeripheralServiceUuid);
    const std::vector<std::vector<VirtualService>> tables = {
        {},
        {{CBUUID("180F"), {pen->colour(), pen->battery()}}},
        {{service, {}}},
        {{service, {std::make_shared<VirtualCharacteristic>(CBUUID("2A19"))}}},
    };
    for (const auto& table : tables) {
        pen->setServices(table);
        start();
        run(60);
        EXPECT_EQ(host->take(), Heard{"connected"});
        EXPECT_TRUE(pen->isConnected());
        EXPECT_FALSE(pen->isSubscribed(*pen->colour()));
        handler->stopInkoraHandler();
        run(1);
        host->take();
    }
}

TEST_F(DiscoveryTest, ASecondServiceOfTheSameKindIsSubscribedToo) {
    const auto second = std::make_shared<VirtualCharacteristic>(
        CBUUID(InkoraConstants::PeripeheralCharactersticUuid), Data{1, 4, 5, 6});
    auto table = pen->services();
    table.push_back({CBUUID(InkoraConstants::PeripheralServiceUuid), {second}});
    pen->setServices(table);
    start();
    EXPECT_EQ(host->take(), (Heard{"connected", "colour", "colour"}));
    pen->notify(*second, Data{1, 7, 8, 9});
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"colour"});
}

TEST_F(DiscoveryTest, OneCharacteristicAloneIsEnough) {
    pen->setServices({{CBUUID(InkoraConstants::PeripheralServiceUuid), {pen->battery()}}});
    handler->requestBatteryLifeValue();
    start();
    EXPECT_EQ(host->take(), (Heard{"connected", "battery 100"}));
}

TEST_F(DiscoveryTest, AReadThatFailsLeavesTheSubscriptionWorking) {
    pen->colour()->failNextRead(NSError("ATT", 2));
    start();
    EXPECT_EQ(host->take(), Heard{"connected"});
    pen->capture(1, 2, 3);
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"colour"});
}

TEST_F(DiscoveryTest, ALinkLostAtAnyMomentOfDiscoveryIsFoundAgain) {
    pen->setAnswerDelay(0.1);
    for (int step = 0; step < 12; ++step) {
        handler = std::make_shared<OpenHandler>();
        handler->publishHandler(host);
        handler->startInkoraHandler();
        run(0.15 + 0.05 * step);
        pen->dropLink();
        run(5);
        EXPECT_TRUE(pen->isSubscribed(*pen->colour())) << step;
        EXPECT_TRUE(pen->isSubscribed(*pen->battery())) << step;
        handler->stopInkoraHandler();
        run(1);
    }
}

TEST_F(DiscoveryDeathTest, ADiscoveryThatFailsIsAFatalStop) {
    EXPECT_DEATH(
        {
            pen->failNextDiscovery(NSError("ATT", 1));
            start();
        },
        "Fatal error: unexpectedly found nil while unwrapping an Optional value");
}

}  // namespace
}  // namespace InkoraKit
