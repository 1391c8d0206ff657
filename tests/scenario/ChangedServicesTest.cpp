#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

/// Discovers the changed services anew when told to.
struct CuriousHandler : OpenHandler {
    bool isCurious = false;
    int changes = 0;

    void peripheralDidModifyServices(const std::shared_ptr<CBPeripheral>& peripheral,
                                     const std::vector<std::shared_ptr<CBService>>&) override {
        ++changes;
        if (isCurious) peripheral->discoverServices({});
    }
};

struct ChangedServicesTest : PenScenario {
    ChangedServicesTest() { handler = curious; }

    /// What the host hears of a colour and the battery over the pen's own characteristics.
    Heard captured(std::uint8_t red) {
        pen->capture(red, 0, 0);
        handler->requestBatteryLifeValue();
        run(0.1);
        return host->take();
    }

    std::shared_ptr<CuriousHandler> curious = std::make_shared<CuriousHandler>();
};

TEST_F(ChangedServicesTest, TheEngineHearsOnWhetherOrNotItDiscoversThemAnew) {
    connect();
    auto table = pen->services();
    for (const bool isCurious : {false, true, true, false}) {
        curious->isCurious = isCurious;
        table.insert(table.begin(), {CBUUID("180F")});
        table.back().isPrimary = !table.back().isPrimary;  // another service, then
        pen->setServices(table);
        run(0.1);
        EXPECT_EQ(std::exchange(curious->changes, 0), 1);
        EXPECT_EQ(host->take(), Heard{});
        EXPECT_EQ(captured(isCurious ? 1 : 2), (Heard{"colour", "battery 100"}));
        EXPECT_EQ(captured(3), (Heard{"colour", "battery 100"}));
    }
}

TEST_F(ChangedServicesTest, ANewObjectTakesTheSubscriptionOver) {
    connect();
    const auto peripheral = handler->connectedPeripheral();
    const auto colourOf = [&] { return peripheral->services()->at(0)->characteristics()->at(0); };
    const auto before = colourOf();
    curious->isCurious = true;
    pen->setServices({{pen->services()[0].uuid, {pen->colour()}}});
    EXPECT_EQ(peripheral->services()->size(), 0u);
    run(0.1);
    ASSERT_NE(colourOf(), before);
    EXPECT_TRUE(colourOf()->isNotifying());
    captured(7);
    EXPECT_EQ(colourOf()->value(), (Data{1, 7, 0, 0}));
    EXPECT_NE(before->value(), colourOf()->value());
}

}  // namespace
}  // namespace InkoraKit
