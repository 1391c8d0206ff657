#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/RunLoopSource.h>
#include <InkoraKit/platform/Timer.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

struct Pipe : RunLoopSource {
    explicit Pipe(std::function<void()> action) : served(std::move(action)) {
        EXPECT_EQ(::pipe(ends.data()), 0);
        RunLoop::main().addSource(*this);
    }
    ~Pipe() override {
        RunLoop::main().removeSource(*this);
        ::close(ends[0]);
        ::close(ends[1]);
    }
    void write() const { EXPECT_EQ(::write(ends[1], "x", 1), 1); }
    void setDeadline(double seconds) {
        due = RunLoop::main().now() + seconds;
        RunLoop::main().sourcesChanged();
    }
    int descriptor() const override { return ends[0]; }
    Interest interest() const override { return wanted; }
    std::optional<double> deadline() const override { return ++asked, due; }
    void service() override {
        served();
        char byte = 0;
        if (std::exchange(due, {})) return;
        EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    }
    std::function<void()> served;
    std::array<int, 2> ends{};
    std::optional<double> due;
    Interest wanted = Interest::readable;
    mutable int asked = 0;
};

class RunLoopTest : public testing::Test {
protected:
    void SetUp() override {
        loop.setClock(clock);
        loop.runOnce();  // of what an earlier test has left
    }

    void note(const char* word) { order += word; }
    auto noting(const char* word) {
        return [this, word] { note(word); };
    }
    bool watchesDescriptors() const { return loop.descriptor() >= 0; }
    bool isDescriptorReadable(int milliseconds = 0) const {
        pollfd watched{loop.descriptor(), POLLIN, 0};
        return ::poll(&watched, 1, milliseconds) == 1;
    }
    // A host's loop, until there was nothing to do for a while. Answers how often it was woken.
    int pollUntilQuiet() {
        int passes = 0;
        for (; passes < 20 && isDescriptorReadable(30); ++passes) loop.runPending();
        EXPECT_EQ(loop.timeUntilDue(), std::nullopt);
        return passes;
    }

    std::shared_ptr<VirtualClock> clock = std::make_shared<VirtualClock>();
    RunLoop& loop = RunLoop::main();
    std::string order;
};

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
    EXPECT_EQ(isDescriptorReadable(), watchesDescriptors());
    EXPECT_TRUE(loop.runOnce());
    EXPECT_EQ(order, "AB");
    EXPECT_EQ(loop.timeUntilDue(), 0.0);
    EXPECT_EQ(isDescriptorReadable(), watchesDescriptors());
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

TEST_F(RunLoopTest, TheDescriptorShowsDeadlinesWhenTheyHaveCome) {
    if (!watchesDescriptors()) GTEST_SKIP();
    Timer::scheduledTimer(0.001, noting("virtual,"));
    loop.runOnce();
    EXPECT_FALSE(isDescriptorReadable(5)) << "a clock that stands still must not be waited for";
    EXPECT_EQ(loop.timeUntilDue(), 0.001);
    clock->skipTo(0.001);
    loop.setClock(clock);
    EXPECT_EQ(pollUntilQuiet(), 1);

    loop.setClock(std::make_shared<SystemClock>());
    const auto near = Timer::scheduledTimer(0.001, noting("near,"));
    loop.setClock(clock);
    EXPECT_FALSE(isDescriptorReadable(5)) << "an alarm by the clock before";
    near->invalidate();
    loop.setClock(std::make_shared<SystemClock>());
    Pipe source(noting("source,"));
    source.setDeadline(3600);
    Timer::scheduledTimer(0.001, noting("never,"))->invalidate();
    EXPECT_FALSE(isDescriptorReadable(5));
    EXPECT_FALSE(loop.runPending());
    source.setDeadline(0.001);
    EXPECT_EQ(pollUntilQuiet(), 1);
    Timer::scheduledTimer(0.001, noting("timer,"));
    loop.setClock(std::make_shared<SystemClock>());
    EXPECT_EQ(pollUntilQuiet(), 1);
    Timer::scheduledTimer(0.001, noting("run,"));
    source.asked = 0;
    loop.runFor(0.03);
    EXPECT_LT(source.asked, 50) << "the loop span";
    EXPECT_EQ(order, "virtual,source,timer,run,");
}

TEST_F(RunLoopTest, ASourceIsServedWhenItWantsToBeAndNotAfterAnotherHasRemovedIt) {
    if (!watchesDescriptors()) GTEST_SKIP();
    std::optional<Pipe> second(noting("second,"));
    Pipe first([&] {
        note("first,");
        second.reset();
    });
    first.wanted = RunLoopSource::Interest::none;
    loop.sourcesChanged();
    first.write();
    EXPECT_EQ(pollUntilQuiet(), 0);
    first.wanted = RunLoopSource::Interest::readable;
    loop.sourcesChanged();
    second->write();
    EXPECT_EQ(pollUntilQuiet(), 1);
    EXPECT_EQ(order, "first,");
}

TEST_F(RunLoopTest, ALoopInsideACallbackServesTimersAndOtherSourcesAndNeverSpins) {
    if (!watchesDescriptors()) GTEST_SKIP();
    loop.setClock(std::make_shared<SystemClock>());
    Pipe other(noting("other,"));
    const auto box = [&] {
        loop.post(noting("block,"));
        std::thread([this] { loop.post(noting("posted,")); }).join();
        Timer::scheduledTimer(0.001, noting("timer,"));
        other.write();
        EXPECT_LE(pollUntilQuiet(), 3);
        loop.runFor(0.001);
        note("closed,");
    };
    Pipe own(box);
    const auto openedIn = [this](const std::function<void()>& callback) {
        order.clear();
        callback();
        EXPECT_LE(pollUntilQuiet(), 3);
        return order;
    };
    const std::string held = "other,timer,closed,block,posted,";
    EXPECT_EQ(openedIn([&] { loop.post(box); }), held);
    EXPECT_EQ(openedIn([&] { own.write(); }), held);
    EXPECT_EQ(openedIn([&] { own.write(); }), held) << "watched again";
    EXPECT_EQ(openedIn([&] { own.setDeadline(0); }), held);
    EXPECT_EQ(openedIn([&] { Timer::scheduledTimer(0, box); }), "other,block,posted,timer,closed,");
}

}  // namespace
}  // namespace InkoraKit
