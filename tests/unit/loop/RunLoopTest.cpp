#include "unit/loop/RunLoopTest.h"

#include <functional>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>

namespace InkoraKit {
namespace {

TEST_F(RunLoopTest, BlocksRunInOrderThoseTheyPostInTheNextPassAndNoneIsLostByAThrow) {
    loop.post([this] {
        note("A");
        loop.post(noting("C"));
    });
    loop.post([] { throw std::runtime_error("host"); });
    loop.post(noting("B"));
    EXPECT_EQ(order, "");
    EXPECT_THROW(loop.runOnce(), std::runtime_error);
    EXPECT_EQ(order, "A");
    EXPECT_TRUE(loop.runOnce());
    EXPECT_EQ(order, "AB");
    EXPECT_EQ(loop.timeUntilDue(), 0.0);
    EXPECT_TRUE(loop.runOnce());
    EXPECT_EQ(order, "ABC");
    EXPECT_FALSE(loop.runOnce());
}

TEST_F(RunLoopTest, TimersFireByDateThenInTheOrderOfAdditionUnlessInvalidatedInTime) {
    std::shared_ptr<Timer> second;
    std::shared_ptr<Timer> cut;
    Timer::scheduledTimer(0.2, noting("3"));
    Timer::scheduledTimer(0.1, noting("1"));
    second = Timer::scheduledTimer(0.1, [&] {
        note(second->isValid() ? "2" : "invalid while it fires");
        cut->invalidate();
        cut->invalidate();
    });
    cut = Timer::scheduledTimer(0.1, noting("cut"));
    Timer::scheduledTimer(std::numeric_limits<double>::quiet_NaN(), noting("0"));
    loop.runFor(0.15);
    EXPECT_EQ(order, "012");
    EXPECT_FALSE(second->isValid());
    EXPECT_DOUBLE_EQ(loop.now(), 0.15);
    loop.runFor(1);
    EXPECT_EQ(order, "0123");
}

TEST_F(RunLoopTest, ATimerHoldsItsTargetUntilItHasFiredAndReportsOneWithoutTheOperation) {
    struct Nobody : NSObject {};
    auto target = std::make_shared<Nobody>();
    const std::weak_ptr<NSObject> held = target;
    Timer::scheduledTimer(0.1, std::exchange(target, nullptr), "ring");
    EXPECT_FALSE(held.expired());
    testing::internal::CaptureStderr();
    loop.runFor(1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "API MISUSE: a timer's target has no operation ring\n");
    EXPECT_TRUE(held.expired());
}

TEST_F(RunLoopTest, APendingRunDoesWhatBecomesDueMeanwhileWithinItsBudget) {
    const std::function<void()> again = [&] {
        note(".");
        clock->skipTo(clock->now() + 0.002);
        if (order.size() < 5) loop.post(again);
    };
    loop.post(again);
    EXPECT_TRUE(loop.runPending(0.005));
    EXPECT_EQ(order, "...");
    Timer::scheduledTimer(0.001, noting("timer"));
    loop.runPending();
    EXPECT_EQ(order, ".....timer");
    EXPECT_FALSE(loop.runPending());
}

TEST_F(RunLoopTest, StopEndsTheRunInProgressOrTheNext) {
    loop.post([this] { loop.stop(); });
    loop.run();
    loop.stop();
    loop.run();
    struct StopInsideAPass : Clock {
        double now() const override {
            if (std::exchange(isFirst, false)) RunLoop::main().stop();
            return 0;
        }
        mutable bool isFirst = true;
    };
    loop.setClock(std::make_shared<StopInsideAPass>());
    loop.run();
    loop.setClock(clock);
    Timer::scheduledTimer(1, noting("later"));
    loop.runFor(2);
    EXPECT_EQ(order, "later");
}

TEST_F(RunLoopTest, APostFromAnotherThreadWakesALoopThatSleepsForEver) {
    loop.setClock(std::make_shared<SystemClock>());
    std::thread poster([this] {
        for (int i = 0; i < 1000; ++i) loop.post(noting("."));
        loop.post([this] { loop.stop(); });
    });
    loop.run();
    poster.join();
    EXPECT_EQ(order.size(), 1000u);
}

}  // namespace
}  // namespace InkoraKit
