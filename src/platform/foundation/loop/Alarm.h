#pragma once

#include <InkoraKit/platform/Timer.h>

#include <functional>
#include <memory>
#include <utility>

namespace InkoraKit {

/// A timer that belongs to an object: it is stopped when set anew, cancelled, or destroyed.
class Alarm {
public:
    Alarm() = default;
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
    ~Alarm() { cancel(); }

    void set(double seconds, std::function<void()> action) {
        cancel();
        timer_ = Timer::scheduledTimer(seconds, [this, action = std::move(action)] {
            timer_.reset();
            action();
        });
    }

    void cancel() {
        if (timer_) std::exchange(timer_, nullptr)->invalidate();
    }

    bool isSet() const { return timer_ != nullptr; }

private:
    std::shared_ptr<Timer> timer_;
};

}  // namespace InkoraKit
