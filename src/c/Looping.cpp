#include <InkoraKit/platform/RunLoop.h>

#include "c/Boundary.h"

#include <cmath>
#include <limits>

using namespace InkoraKit;

extern "C" {

int inkora_loop_descriptor(void) {
    int descriptor = -1;
    onAnyThread([&] { descriptor = RunLoop::main().descriptor(); });
    return descriptor;
}

inkora_status inkora_loop_run(void) {
    return onLoopThread([] { RunLoop::main().run(); });
}

inkora_status inkora_loop_run_for(double seconds) {
    return onLoopThread([&] {
        expectWithin(0, seconds, longestSeconds, "the time to run");
        RunLoop::main().runFor(seconds);
    });
}

inkora_status inkora_loop_run_once(double longest_wait, bool* was_busy) {
    return onLoopThread([&] {
        expectWithin(0, longest_wait, longestSeconds, "the longest wait");
        const bool busy = RunLoop::main().runOnce(longest_wait);
        if (was_busy) *was_busy = busy;
    });
}

inkora_status inkora_loop_run_pending(double budget, bool* was_busy) {
    return onLoopThread([&] {
        expectWithin(0, budget, longestSeconds, "the budget");
        const bool busy = RunLoop::main().runPending(budget);
        if (was_busy) *was_busy = busy;
    });
}

inkora_status inkora_loop_stop(void) {
    return onAnyThread([] { RunLoop::main().stop(); });
}

inkora_status inkora_loop_post(void (*work)(void* context), void* context) {
    return onAnyThread([&] {
        if (!work) throw Refusal(INKORA_INVALID_ARGUMENT, "there is nothing to call");
        RunLoop::main().post([work, context] { work(context); });
    });
}

double inkora_loop_now(void) {
    double now = std::nan("");
    onLoopThread([&] { now = RunLoop::main().now(); });
    return now;
}

double inkora_loop_time_until_due(void) {
    double seconds = std::nan("");
    onLoopThread([&] {
        seconds = RunLoop::main().timeUntilDue().value_or(std::numeric_limits<double>::infinity());
    });
    return seconds;
}
}
