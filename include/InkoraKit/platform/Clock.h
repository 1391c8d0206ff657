#pragma once

#include <InkoraKit/Export.h>

namespace InkoraKit {

/// The time that a run loop and its timers go by: seconds since any fixed moment, never backwards.
class INKORA_EXPORT Clock {
public:
    virtual ~Clock() = default;

    /// The present reading, in seconds.
    virtual double now() const = 0;

    /// Asked before the loop sleeps until `when`. A clock that is not bound to real time moves
    /// there and answers true, and nobody has to wait; a real clock answers false.
    virtual bool skipTo([[maybe_unused]] double when) { return false; }

    /// Whether it goes by itself, as fast as the machine's monotonic clock does. Only then can the
    /// system be asked to tell of a deadline: see RunLoop::descriptor.
    virtual bool isRealTime() const { return false; }
};

/// The machine's monotonic clock.
class INKORA_EXPORT SystemClock final : public Clock {
public:
    double now() const override;
    bool isRealTime() const override { return true; }
};

}  // namespace InkoraKit
