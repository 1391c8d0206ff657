#include "platform/foundation/loop/Waiter.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

// For systems that the kit has no closer acquaintance with: waits with the standard library's
// means, which know no descriptors. Such a system has no radio but the virtual one.
namespace InkoraKit {

struct Waiter::State {
    std::mutex mutex;
    std::condition_variable woke;
    bool isWoken = false;
};

Waiter::Waiter() : state_(std::make_unique<State>()) {}
Waiter::~Waiter() = default;

void Waiter::add(RunLoopSource&) {
    throw std::logic_error("the run loop cannot watch descriptors on this system");
}

void Waiter::remove(RunLoopSource&) {}
void Waiter::refresh() {}
void Waiter::setAlarm(std::optional<double>) {}

void Waiter::wait(std::optional<double> seconds) {
    // Longer waits than this come to nothing but another one; the clocks below cannot count on for
    // ever.
    constexpr double longest = 86400;
    std::unique_lock lock(state_->mutex);
    const auto isWoken = [this] { return state_->isWoken; };
    if (!seconds) {
        state_->woke.wait(lock, isWoken);
    } else if (*seconds > 0) {
        state_->woke.wait_for(lock, std::chrono::duration<double>(std::min(*seconds, longest)),
                              isWoken);
    }
    state_->isWoken = false;
}

RunLoopSource* Waiter::takeReady() {
    return nullptr;
}

void Waiter::wake() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->isWoken = true;
    }
    state_->woke.notify_one();
}

int Waiter::descriptor() const {
    return -1;
}

}  // namespace InkoraKit
