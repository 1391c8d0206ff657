#include "doctor/Waiting.h"

#include <InkoraKit/platform/RunLoop.h>

using InkoraKit::RunLoop;

namespace InkoraTool {

bool waitUntil(const std::function<bool()>& holds, double seconds) {
    RunLoop& loop = RunLoop::main();
    const double end = loop.now() + seconds;
    while (!holds()) {
        const double left = end - loop.now();
        if (left <= 0) return false;
        loop.runOnce(left);
    }
    return true;
}

bool Waiting::until(const std::function<bool()>& holds, double seconds) const {
    const bool isOver = waitUntil([&] { return isInterrupted_ || holds(); }, seconds);
    if (isInterrupted_) throw Interrupted();
    return isOver;
}

}  // namespace InkoraTool
