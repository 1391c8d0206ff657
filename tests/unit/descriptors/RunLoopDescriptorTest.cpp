#include <InkoraKit/platform/RunLoopSource.h>

#include "unit/loop/RunLoopTest.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

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

class RunLoopDescriptorTest : public RunLoopTest {
protected:
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
};

TEST_F(RunLoopDescriptorTest, WhatAThrowHasLeftIsStillToBeDone) {
    loop.post([] { throw std::runtime_error("host"); });
    loop.post(noting("A"));
    EXPECT_THROW(loop.runOnce(), std::runtime_error);
    EXPECT_EQ(pollUntilQuiet(), 1);
    EXPECT_EQ(order, "A");
}

TEST_F(RunLoopDescriptorTest, TheDescriptorShowsDeadlinesWhenTheyHaveCome) {
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

TEST_F(RunLoopDescriptorTest, ASourceIsServedWhenItWantsToBeAndNotAfterAnotherHasRemovedIt) {
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

TEST_F(RunLoopDescriptorTest, ALoopInsideACallbackServesTimersAndOtherSourcesAndNeverSpins) {
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
