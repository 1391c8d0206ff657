#include "platform/foundation/loop/Waiter.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <vector>

namespace InkoraKit {
namespace {

using Interest = RunLoopSource::Interest;

std::uint32_t eventsFor(Interest interest) {
    switch (interest) {
        case Interest::readable:
            return EPOLLIN;
        case Interest::writable:
            return EPOLLOUT;
        case Interest::both:
            return EPOLLIN | EPOLLOUT;
        case Interest::none:
            break;
    }
    return 0;
}

int checked(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
    return result;
}

// Rounded up: a wait that ends early would only be repeated.
int milliseconds(std::optional<double> seconds) {
    if (!seconds) return -1;
    const double wanted = std::ceil(*seconds * 1000.0);
    if (!(wanted > 0)) return 0;
    return wanted < INT_MAX ? static_cast<int>(wanted) : INT_MAX;
}

// From now on; all zero disarms.
itimerspec alarmTime(std::optional<double> seconds) {
    constexpr double longest = 1e9;
    itimerspec time{};
    if (!seconds) return time;
    const double wanted = std::clamp(*seconds, 1e-9, longest);
    const double whole = std::floor(wanted);
    time.it_value.tv_sec = static_cast<time_t>(whole);
    time.it_value.tv_nsec =
        static_cast<long>(std::min(std::ceil((wanted - whole) * 1e9), 999'999'999.0));
    return time;
}

}  // namespace

struct Waiter::State {
    struct Watched {
        RunLoopSource* source;
        Interest interest;
    };

    int poll = checked(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1");
    int wakeUp = checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd");
    int alarm = checked(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd");
    std::atomic<bool> woken = false;
    std::vector<Watched> watched;
    std::vector<RunLoopSource*> ready;

    void control(int operation, RunLoopSource& source, Interest interest) const {
        epoll_event event{};
        event.events = eventsFor(interest);
        event.data.ptr = &source;
        ::epoll_ctl(poll, operation, source.descriptor(), &event);
    }
};

Waiter::Waiter() : state_(std::make_unique<State>()) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = nullptr;
    for (const int own : {state_->wakeUp, state_->alarm})
        checked(::epoll_ctl(state_->poll, EPOLL_CTL_ADD, own, &event), "epoll_ctl");
}

Waiter::~Waiter() {
    ::close(state_->alarm);
    ::close(state_->wakeUp);
    ::close(state_->poll);
}

void Waiter::add(RunLoopSource& source) {
    const Interest interest = source.interest();
    state_->watched.push_back({&source, interest});
    state_->control(EPOLL_CTL_ADD, source, interest);
}

void Waiter::remove(RunLoopSource& source) {
    std::erase_if(state_->watched, [&](const auto& entry) { return entry.source == &source; });
    std::erase(state_->ready, &source);
    state_->control(EPOLL_CTL_DEL, source, Interest::none);
}

void Waiter::refresh() {
    for (State::Watched& entry : state_->watched) {
        const Interest interest = entry.source->interest();
        if (interest == entry.interest) continue;
        entry.interest = interest;
        state_->control(EPOLL_CTL_MOD, *entry.source, interest);
    }
}

void Waiter::setAlarm(std::optional<double> seconds) {
    const itimerspec time = alarmTime(seconds);
    ::timerfd_settime(state_->alarm, 0, &time, nullptr);
}

void Waiter::wait(std::optional<double> seconds) {
    state_->ready.clear();
    const bool onlyLooking = seconds && *seconds <= 0;
    if (onlyLooking && state_->watched.empty() && !state_->woken) return;
    std::array<epoll_event, 16> events;
    const int count = ::epoll_wait(state_->poll, events.data(), static_cast<int>(events.size()),
                                   milliseconds(seconds));
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = events[static_cast<std::size_t>(i)];
        if (event.data.ptr) {
            state_->ready.push_back(static_cast<RunLoopSource*>(event.data.ptr));
            continue;
        }
        // A wake-up, or the alarm, which setting it anew silences.
        std::uint64_t wakeUps = 0;
        if (::read(state_->wakeUp, &wakeUps, sizeof wakeUps) > 0) state_->woken = false;
    }
}

RunLoopSource* Waiter::takeReady() {
    if (state_->ready.empty()) return nullptr;
    RunLoopSource* const next = state_->ready.front();
    state_->ready.erase(state_->ready.begin());
    return next;
}

void Waiter::wake() {
    if (state_->woken.exchange(true)) return;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto put = ::write(state_->wakeUp, &one, sizeof one);
}

int Waiter::descriptor() const {
    return state_->poll;
}

}  // namespace InkoraKit
