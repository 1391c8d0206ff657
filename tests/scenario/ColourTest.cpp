#include "support/PenScenario.h"

namespace InkoraKit {
namespace {

using ColourTest = PenScenario;
using ColourDeathTest = PenScenario;

TEST_F(ColourTest, BytesBecomeColours) {
    const struct {
        Data bytes;
        const char* stored;
        UIColor colour;
    } cases[] = {
        {{1, 255, 128, 0}, "255#128#0#", {1, 128 / 255.0, 0, 1}},
        {{1, 255, 128, 0, 127}, "255#128#0#127#", {1, 128 / 255.0, 0, 1}},
        {{0, 0, 0, 0}, "0#0#0#", {0, 0, 0, 1}},
        {{7, 1, 2}, "1#2#", {1 / 255.0, 2 / 255.0, 0, 1}},
    };
    connect();
    for (const auto& [bytes, stored, colour] : cases) {
        pen->notify(*pen->colour(), bytes);
        run(0.1);
        EXPECT_EQ(host->take(), Heard{"colour"}) << stored;
        EXPECT_EQ(host->colours.back(), colour) << stored;
        EXPECT_EQ(handler->capturedColorValue(), stored);
        EXPECT_EQ(handler->currentState(), ManagerState::DeviceCapturedColor);
    }
}

TEST_F(ColourTest, AnEqualColourIsNotReportedAgainUntilTheNextConnection) {
    pen->colour()->setValue(Data{1, 9, 9, 9});
    connect();
    pen->capture(9, 9, 9);  // what the first read has brought
    pen->capture(1, 2, 3);
    pen->capture(1, 2, 3);
    pen->capture(9, 9, 9);
    run(0.1);
    EXPECT_EQ(host->take(), (Heard{"colour", "colour"}));
    pen->dropLink();
    run(1);
    EXPECT_EQ(host->take(), (Heard{"disconnected", "connected", "colour"}));
    EXPECT_EQ(host->colours.back(), UIColor(9 / 255.0, 9 / 255.0, 9 / 255.0, 1));
}

TEST_F(ColourTest, AMillionNotificationsArriveAllAndInOrder) {
    struct Counting : InkoraProtocols {
        void didPeripheralCaptured(const UIColor& colour) override {
            const auto number = static_cast<int>(colour.red() * 255 + 0.5) * 65536 +
                                static_cast<int>(colour.green() * 255 + 0.5) * 256 +
                                static_cast<int>(colour.blue() * 255 + 0.5);
            inOrder &= number == ++last;
        }
        int last = 0;
        bool inOrder = true;
    };
    connect();
    const auto counting = std::make_shared<Counting>();
    handler->publishHandler(counting);
    run(0);
    const int count = 1'000'000;
    for (int i = 1; i <= count; ++i) {
        pen->capture(static_cast<std::uint8_t>(i >> 16), static_cast<std::uint8_t>(i >> 8),
                     static_cast<std::uint8_t>(i));
        if (i % 1000 == 0) run(0);
    }
    EXPECT_EQ(counting->last, count);
    EXPECT_TRUE(counting->inOrder);
}

TEST_F(ColourTest, AnAbsentValueChangesNothing) {
    connect();
    pen->capture(1, 2, 3);
    pen->notify(*pen->colour(), std::nullopt);
    pen->capture(1, 2, 3);
    run(0.1);
    EXPECT_EQ(host->take(), Heard{"colour"});
}

TEST_F(ColourTest, WithoutAHostTheValueIsStoredButNobodyHearsOfItLaterEither) {
    connect();
    handler->unPublishHandler();
    run(0);
    handler->states.clear();
    pen->capture(1, 2, 3);
    run(0.1);
    EXPECT_EQ(handler->capturedColorValue(), "1#2#3#");
    EXPECT_TRUE(handler->states.empty());
    pen->notify(*pen->colour(), Data{1, 77});  // harmless as long as nobody is to be told
    run(0.1);
    pen->capture(1, 2, 3);
    run(0.1);
    handler->publishHandler(host);
    run(0);
    pen->capture(1, 2, 3);
    run(0.1);
    EXPECT_EQ(host->take(), Heard{});
}

TEST_F(ColourDeathTest, AColourTooShortIsAFatalStop) {
    connect();
    for (const Data& bytes : {Data{17}, Data{17, 17}, Data{}})
        EXPECT_DEATH(
            {
                pen->notify(*pen->colour(), bytes);
                run(0.1);
            },
            "Fatal error: Index out of range");
}

}  // namespace
}  // namespace InkoraKit
