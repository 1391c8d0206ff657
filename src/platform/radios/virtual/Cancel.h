#pragma once

#include <InkoraKit/platform/Timer.h>

#include <memory>
#include <utility>

namespace InkoraKit {

/// Stops and forgets a timer, if there is one.
inline void cancel(std::shared_ptr<Timer>& timer) {
    if (timer) std::exchange(timer, nullptr)->invalidate();
}

}  // namespace InkoraKit
