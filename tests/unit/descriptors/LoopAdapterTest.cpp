#include <InkoraKit/loops/LoopAdapter.h>
#include <InkoraKit/platform/Clock.h>
#include <InkoraKit/platform/Timer.h>

#include <gtest/gtest.h>
#include <poll.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace InkoraKit {
namespace {

// A foreign loop in its barest form, which serves until there is nothing to do or it is stopped.
class BareLoop : public LoopAdapter {
public:
    BareLoop() : LoopAdapter([this] { isStopped_ = true; }) {}
    using LoopAdapter::serve;

    // What ended the loop, or else nothing.
    std::string run() {
        isStopped_ = false;
        while (!isStopped_ && isReadable()) serve();
        EXPECT_EQ(isWatched_, !isStopped_);
        try {
            rethrow();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

private:
    static bool isReadable() {
        pollfd watched{RunLoop::main().descriptor(), POLLIN, 0};
        return ::poll(&watched, 1, 0) == 1;
    }
    void watch() override { isWatched_ = true; }
    void unwatch() override { isWatched_ = false; }

    bool isWatched_ = true;
    bool isStopped_ = false;
};

TEST(LoopAdapter, EachThatIsThrownEndsTheLoopOnceAndNothingElseIsLost) {
    BareLoop host;
    std::string order;
    RunLoop& kit = RunLoop::main();
    kit.setClock(std::make_shared<SystemClock>());
    kit.post([&] {
        // A modal box: a loop inside the callback, which ends by an exception as the callback does.
        Timer::scheduledTimer(0, [] { throw std::runtime_error("inner"); });
        while (kit.timeUntilDue() != 0) continue;
        host.serve();
        order += "a";
        throw std::runtime_error("outer");
    });
    kit.post([&] { order += "b"; });
    EXPECT_EQ(host.run(), "inner");
    EXPECT_EQ(order, "a");
    EXPECT_EQ(host.run(), "outer");
    EXPECT_EQ(order, "ab");
    kit.post([&] { order += "c"; });
    EXPECT_EQ(host.run(), "");
    EXPECT_EQ(order, "abc");
}

}  // namespace
}  // namespace InkoraKit
