#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>

#include <cstdio>
#include <utility>

namespace InkoraKit {
namespace {

constexpr double shortestInterval = 0.0001;

double moment(double interval) {
    return RunLoop::main().now() + (interval > 0 ? interval : shortestInterval);
}

}  // namespace

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, std::shared_ptr<NSObject> target,
                                             std::string selector) {
    return scheduledTimer(interval, [target = std::move(target), selector = std::move(selector)] {
        if (target->performSelector(selector)) return;
        std::fprintf(stderr, "API MISUSE: a timer's target has no operation %s\n",
                     selector.c_str());
    });
}

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, std::function<void()> action) {
    std::shared_ptr<Timer> timer(new Timer(moment(interval), std::move(action)));
    RunLoop::main().addTimer(timer);
    return timer;
}

Timer::Timer(double fireDate, std::function<void()> action)
    : fireDate_(fireDate), action_(std::move(action)) {}

Timer::~Timer() = default;

void Timer::invalidate() {
    if (!valid_) return;
    RunLoop::main().removeTimer(*this);
    valid_ = false;
    action_ = nullptr;
}

void Timer::fire() {
    // Out of the member, so that an operation that invalidates its own timer does not destroy the
    // function it runs in. The timer ends, also by an exception, when the operation has.
    struct Ending {
        bool& valid;
        ~Ending() { valid = false; }
    } ending{valid_};
    const std::function<void()> running = std::exchange(action_, nullptr);
    running();
}

}  // namespace InkoraKit
