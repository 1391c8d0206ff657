#include <InkoraKit/platform/Clock.h>

#include <chrono>

namespace InkoraKit {

double SystemClock::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace InkoraKit
