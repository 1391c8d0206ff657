#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSObject.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace InkoraKit {

class RunLoop;

/// Calls an operation of an object, or a function, once the run loop's clock has reached a moment.
/// The run loop holds a scheduled timer and the timer holds its target until it has fired or was
/// invalidated, so dropping one's own reference does not stop it. A run loop never fires a timer
/// early. Belongs to the run loop's thread.
class INKORA_EXPORT Timer final : public NSObject {
public:
    /// Schedules a one-shot timer on the main run loop that runs the target's operation `selector`.
    /// Of intervals not above zero 0.0001 seconds are made.
    static std::shared_ptr<Timer> scheduledTimer(double interval, std::shared_ptr<NSObject> target,
                                                 std::string selector);
    /// The same, running a function.
    static std::shared_ptr<Timer> scheduledTimer(double interval, std::function<void()> action);

    /// Neither copied nor moved: the run loop refers to it.
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() override;

    /// Never fires from now on, even if it was due already. Harmless when called again.
    void invalidate();

    /// True until it was invalidated or its one firing has ended; still true while it fires.
    bool isValid() const noexcept { return valid_; }

    /// When it fires, on the run loop's clock.
    double fireDate() const noexcept { return fireDate_; }

private:
    friend class RunLoop;

    Timer(double fireDate, std::function<void()> action);
    void fire();

    double fireDate_;
    std::uint64_t order_ = 0;  // among timers of one fire date: the order of addition
    std::function<void()> action_;
    bool valid_ = true;
};

}  // namespace InkoraKit
