#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/RunLoopSource.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace InkoraKit {
namespace {

class RunLoopTest : public testing::Test {
protected:
    void SetUp() override {
        loop.setClock(std::make_shared<VirtualClock>());
        loop.runOnce();  // of what an earlier test has left
    }

    void note(const char* word) { order += word; }
    auto noting(const char* word) {
        return [this, word] { note(word); };
    }
    bool watchesDescriptors() const { return loop.descriptor() >= 0; }
    bool isDescriptorReadable() const {
        pollfd watched{loop.descriptor(), POLLIN, 0};
        return ::poll(&watched, 1, 0) == 1;
    }

    RunLoop& loop = RunLoop::main();
    std::string order;
};

TEST_F(RunLoopTest, BlocksRunInTheOrderPostedAndThoseTheyPostWaitForTheNextPass) {
    loop.post([this] {
        note("A");
        loop.post(noting("C"));
    });
    loop.post(noting("B"));
    EXPECT_EQ(order, "");
    EXPECT_TRUE(loop.runOnce());
    EXPECT_EQ(order, "AB");
    EXPECT_TRUE(loop.runOnce());
    EXPECT_EQ(order, "ABC");
    EXPECT_FALSE(loop.runOnce());
}

TEST_F(RunLoopTest, TimersFireInTheOrderOfTheirDatesAndEqualOnesInTheOrderOfAddition) {
    Timer::scheduledTimer(0.2, noting("3"));
    Timer::scheduledTimer(0.1, noting("1"));
    Timer::scheduledTimer(0.1, noting("2"));
    Timer::scheduledTimer(std::numeric_limits<double>::quiet_NaN(), noting("0"));
    loop.runFor(0.15);
    EXPECT_EQ(order, "012");
    EXPECT_DOUBLE_EQ(loop.now(), 0.15);
    loop.runFor(1);
    EXPECT_EQ(order, "0123");
}

TEST_F(RunLoopTest, ATimerDueInTheSamePassCanStillBeInvalidated) {
    std::shared_ptr<Timer> second;
    Timer::scheduledTimer(0.1, [&] {
        note("first");
        second->invalidate();
        second->invalidate();
    });
    second = Timer::scheduledTimer(0.1, noting("second"));
    loop.runFor(1);
    EXPECT_EQ(order, "first");
    EXPECT_FALSE(second->isValid());
}

TEST_F(RunLoopTest, ATimerIsValidInsideItsFiringAndHoldsItsTargetUntilThen) {
    struct Target : NSObject {
        explicit Target(std::string& log) : log_(log) {}
        ~Target() override { log_ += "gone"; }
        void ring() { log_ += "ring,"; }
        Method methodForSelector(std::string_view selector) const override {
            return selector == "ring" ? static_cast<Method>(&Target::ring) : nullptr;
        }
        std::string& log_;
    };
    Timer::scheduledTimer(0.1, std::make_shared<Target>(order), "ring");
    std::shared_ptr<Timer> timer;
    timer = Timer::scheduledTimer(0.2, [&] { note(timer->isValid() ? ",valid" : ",invalid"); });
    EXPECT_EQ(order, "");
    loop.runFor(1);
    EXPECT_EQ(order, "ring,gone,valid");
    EXPECT_FALSE(timer->isValid());
}

TEST_F(RunLoopTest, ATargetWithoutTheOperationIsReportedAndNothingElse) {
    struct Nobody : NSObject {};
    testing::internal::CaptureStderr();
    Timer::scheduledTimer(0.1, std::make_shared<Nobody>(), "ring");
    loop.runFor(1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "API MISUSE: a timer's target has no operation ring\n");
}

TEST_F(RunLoopTest, ABlockThatThrowsLosesNoOther) {
    loop.post([] { throw std::runtime_error("host"); });
    loop.post(noting("next"));
    EXPECT_THROW(loop.runFor(1), std::runtime_error);
    EXPECT_EQ(order, "");
    loop.runFor(1);
    EXPECT_EQ(order, "next");
}

TEST_F(RunLoopTest, ALoopRunFromInsideABlockServesTimersButNoBlocks) {
    loop.post([this] {
        loop.post(noting("block"));
        Timer::scheduledTimer(0.1, noting("timer,"));
        loop.runFor(1);
        note("inner done,");
    });
    loop.runFor(2);
    EXPECT_EQ(order, "timer,inner done,block");
}

TEST_F(RunLoopTest, StopEndsTheRunInProgressOrTheNext) {
    loop.post([this] { loop.stop(); });
    loop.run();
    loop.stop();
    loop.run();
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

TEST_F(RunLoopTest,
       AnEmbeddingHostIsToldOfWorkFromOutsideByTheDescriptorAndOfTheRestByTheDeadline) {
    if (!watchesDescriptors()) GTEST_SKIP();
    EXPECT_FALSE(loop.timeUntilDue());
    EXPECT_FALSE(isDescriptorReadable());
    loop.post([this] { loop.post(noting("inner")); });
    EXPECT_EQ(loop.timeUntilDue(), 0.0);
    EXPECT_TRUE(isDescriptorReadable());
    loop.runOnce();
    EXPECT_TRUE(isDescriptorReadable()) << "a block was left for the next pass";
    loop.runOnce();
    EXPECT_EQ(order, "inner");
    EXPECT_FALSE(isDescriptorReadable()) << "a host would spin";
    const auto timer = Timer::scheduledTimer(0.5, noting("timer"));
    EXPECT_TRUE(isDescriptorReadable()) << "the deadline has moved while the host may be asleep";
    EXPECT_EQ(loop.timeUntilDue(), 0.5);
    loop.runOnce();
    EXPECT_FALSE(isDescriptorReadable());
    timer->invalidate();
    EXPECT_FALSE(loop.timeUntilDue());
}

TEST_F(RunLoopTest, ASourceIsServedWhenItsDescriptorIsReadyOrItsDeadlineHasCome) {
    if (!watchesDescriptors()) GTEST_SKIP();
    struct Pipe : RunLoopSource {
        Pipe() { EXPECT_EQ(::pipe(ends.data()), 0); }
        ~Pipe() override {
            ::close(ends[0]);
            ::close(ends[1]);
        }
        int descriptor() const override { return ends[0]; }
        std::optional<double> deadline() const override { return due; }
        void service() override {
            due.reset();
            ++served;
            char byte = 0;
            pollfd ready{ends[0], POLLIN, 0};
            if (::poll(&ready, 1, 0) != 1) return;
            EXPECT_EQ(::read(ends[0], &byte, 1), 1);
        }
        std::array<int, 2> ends{};
        std::optional<double> due;
        int served = 0;
    } source;
    loop.addSource(source);
    loop.runFor(1);
    EXPECT_EQ(source.served, 0);
    ASSERT_EQ(::write(source.ends[1], "x", 1), 1);
    EXPECT_TRUE(isDescriptorReadable());
    loop.runFor(1);
    EXPECT_EQ(source.served, 1);
    source.due = loop.now() + 0.5;
    loop.runFor(0.4);
    EXPECT_EQ(source.served, 1);
    loop.runFor(0.2);
    EXPECT_EQ(source.served, 2);
    loop.removeSource(source);
    ASSERT_EQ(::write(source.ends[1], "x", 1), 1);
    loop.runFor(1);
    EXPECT_EQ(source.served, 2);
}

}  // namespace
}  // namespace InkoraKit
