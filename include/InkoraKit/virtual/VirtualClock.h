#pragma once

#include <InkoraKit/platform/Clock.h>

namespace InkoraKit {

/// A clock that stands still while work runs and jumps to the next timer when there is none, so
/// that a test of a six-second time-out takes microseconds and comes out the same every time.
class VirtualClock final : public Clock {
public:
    /// Seconds, 0 at first.
    double now() const override { return now_; }

    /// Jumps ahead; a moment in the past changes nothing.
    bool skipTo(double when) override {
        if (when > now_) now_ = when;
        return true;
    }

private:
    double now_ = 0;
};

}  // namespace InkoraKit
