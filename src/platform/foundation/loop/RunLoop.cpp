#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/RunLoopSource.h>
#include <InkoraKit/platform/Timer.h>

#include "platform/foundation/loop/Waiter.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

// The loop that serves a block or a source on this thread. Until that has ended the loop's blocks
// wait, also from a loop that runs inside it; and what is queued meanwhile needs no wake-up, since
// the loop looks once more.
thread_local const void* holdsBlocks = nullptr;

// Sets a variable for as long as a scope lasts.
template <class T>
class Scoped {
public:
    Scoped(T& variable, T value) : variable_(variable), before_(std::exchange(variable, value)) {}
    ~Scoped() { variable_ = before_; }
    Scoped(const Scoped&) = delete;
    Scoped& operator=(const Scoped&) = delete;

private:
    T& variable_;
    T before_;
};

}  // namespace

struct RunLoop::State {
    using TimerKey = std::pair<double, std::uint64_t>;

    mutable std::mutex mutex;  // guards `posted`
    std::vector<Block> posted;

    std::vector<Block> served;  // the snapshot being run, from `next` on
    std::size_t next = 0;

    std::map<TimerKey, std::shared_ptr<Timer>> timers;
    std::uint64_t timersAdded = 0;
    std::vector<std::shared_ptr<Timer>> dueTimers;

    struct Service {
        RunLoopSource* source;  // none when it was removed meanwhile
        bool isUnwatched;
    };
    std::vector<RunLoopSource*> sources;
    std::vector<Service> services;  // under way, the innermost last

    std::shared_ptr<Clock> clock = std::make_shared<SystemClock>();
    std::optional<double> alarm;  // the deadline that the waiter was told
    std::atomic<bool> stopping = false;
    Waiter waiter;

    bool mayServeBlocks() const { return holdsBlocks != this; }
    bool hasBlocks() const {
        if (!mayServeBlocks()) return false;
        const std::lock_guard lock(mutex);
        return !posted.empty() || next < served.size();
    }

    auto findService(const RunLoopSource& source) {
        return std::find_if(services.begin(), services.end(),
                            [&](const Service& service) { return service.source == &source; });
    }
};

// Shows a host what is left to do when a run ends, be it by an exception.
class RunLoop::Leaving {
public:
    explicit Leaving(RunLoop& loop) : loop_(loop) {}
    ~Leaving() { loop_.show(); }
    Leaving(const Leaving&) = delete;
    Leaving& operator=(const Leaving&) = delete;

private:
    RunLoop& loop_;
};

RunLoop& RunLoop::main() {
    // Never destroyed: objects that outlive main() may still cancel a timer on it.
    static RunLoop* const loop = new RunLoop;
    return *loop;
}

RunLoop::RunLoop() : state_(std::make_unique<State>()) {}
RunLoop::~RunLoop() = default;

void RunLoop::post(Block block) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->posted.push_back(std::move(block));
    }
    if (state_->mayServeBlocks()) state_->waiter.wake();
}

void RunLoop::run() {
    runUntil(std::numeric_limits<double>::infinity());
}

void RunLoop::runUntil(double when) {
    const Leaving leaving(*this);
    while (!takeStop()) {
        const bool busy = pass();
        const double reading = now();
        if (reading > when || (reading >= when && !busy)) {
            takeStop();
            break;
        }
        // The pass may have taken the wake-up of a stop.
        if (busy || state_->stopping) continue;
        const auto deadline = nextDeadline();
        waitUntil(when < std::numeric_limits<double>::infinity()
                      ? std::min(when, deadline.value_or(when))
                      : deadline);
    }
}

bool RunLoop::runOnce(double longestWait) {
    const Leaving leaving(*this);
    if (pass()) return true;
    if (!(longestWait > 0)) return false;
    const double end = now() + longestWait;
    waitUntil(std::min(end, nextDeadline().value_or(end)));
    return pass();
}

bool RunLoop::runPending(double budget) {
    const Leaving leaving(*this);
    const double end = now() + budget;
    bool busy = false;
    while (pass()) {
        busy = true;
        if (now() >= end) break;
    }
    return busy;
}

void RunLoop::stop() {
    state_->stopping = true;
    state_->waiter.wake();
}

bool RunLoop::takeStop() {
    return state_->stopping.exchange(false);
}

double RunLoop::now() const {
    return state_->clock->now();
}

void RunLoop::setClock(std::shared_ptr<Clock> clock) {
    state_->clock = std::move(clock);
    state_->alarm.reset();
    state_->waiter.setAlarm(std::nullopt);
    show();
}

int RunLoop::descriptor() const {
    return state_->waiter.descriptor();
}

std::optional<double> RunLoop::timeUntilDue() const {
    if (state_->hasBlocks()) return 0.0;
    const auto deadline = nextDeadline();
    if (!deadline) return std::nullopt;
    return std::max(0.0, *deadline - now());
}

void RunLoop::addSource(RunLoopSource& source) {
    state_->waiter.add(source);
    state_->sources.push_back(&source);
    show();
}

void RunLoop::removeSource(RunLoopSource& source) {
    std::erase(state_->sources, &source);
    const auto service = state_->findService(source);
    if (service != state_->services.end()) service->source = nullptr;
    state_->waiter.remove(source);
    show();
}

void RunLoop::sourcesChanged() {
    show();
}

void RunLoop::addTimer(const std::shared_ptr<Timer>& timer) {
    timer->order_ = state_->timersAdded++;
    state_->timers.emplace(State::TimerKey{timer->fireDate_, timer->order_}, timer);
    show();
}

void RunLoop::removeTimer(Timer& timer) {
    if (state_->timers.erase({timer.fireDate_, timer.order_}) != 0) show();
}

// Blocks first, then the timers due when the pass began, so that neither kind can starve the other;
// what either queues or schedules waits for the next pass.
bool RunLoop::pass() {
    const double began = now();
    bool busy = serveSources(began);
    busy |= serveBlocks();
    busy |= fireTimers(began);
    return busy;
}

bool RunLoop::serveBlocks() {
    if (!state_->mayServeBlocks()) return false;
    const Scoped<const void*> scope(holdsBlocks, state_.get());
    if (state_->next == state_->served.size()) {
        state_->served.clear();
        state_->next = 0;
        const std::lock_guard lock(state_->mutex);
        std::swap(state_->posted, state_->served);
    }
    if (state_->served.empty()) return false;
    // Counted before it runs: when a block throws, the next pass goes on behind it.
    while (state_->next < state_->served.size()) {
        Block block = std::move(state_->served[state_->next++]);
        block();
    }
    return true;
}

bool RunLoop::fireTimers(double due) {
    std::vector<std::shared_ptr<Timer>> firing = std::exchange(state_->dueTimers, {});
    for (const auto& [key, timer] : state_->timers) {
        if (key.first > due) break;
        firing.push_back(timer);
    }
    bool busy = false;
    for (const std::shared_ptr<Timer>& timer : firing) {
        // Not there any more: an earlier one of this pass invalidated it, or a nested loop fired
        // it.
        if (state_->timers.erase({timer->fireDate_, timer->order_}) == 0) continue;
        timer->fire();
        busy = true;
    }
    firing.clear();
    state_->dueTimers = std::move(firing);  // for the room it has
    return busy;
}

bool RunLoop::serveSources(double due) {
    bool busy = false;
    std::size_t next = 0;
    while (next < state_->sources.size()) {  // a service may remove some
        RunLoopSource& source = *state_->sources[next++];
        const auto deadline = deadlineOf(source);
        if (!deadline || *deadline > due) continue;
        serve(source);
        busy = true;
    }
    state_->waiter.refresh();
    state_->waiter.wait(0.0);
    while (RunLoopSource* const source = state_->waiter.takeReady()) {
        const auto service = state_->findService(*source);
        if (service == state_->services.end()) {
            serve(*source);
            busy = true;
        } else {
            // It would stay ready, and a loop inside its service spin.
            state_->waiter.remove(*source);
            service->isUnwatched = true;
        }
    }
    return busy;
}

void RunLoop::serve(RunLoopSource& source) {
    const Scoped<const void*> scope(holdsBlocks, state_.get());
    struct Ending {
        State& state;
        ~Ending() {
            const State::Service ended = state.services.back();
            state.services.pop_back();
            if (ended.source && ended.isUnwatched) state.waiter.add(*ended.source);
        }
    };
    state_->services.push_back({&source, false});
    const Ending ending{*state_};
    source.service();
}

std::optional<double> RunLoop::deadlineOf(const RunLoopSource& source) const {
    if (state_->findService(source) != state_->services.end()) return std::nullopt;
    return source.deadline();
}

std::optional<double> RunLoop::nextDeadline() const {
    std::optional<double> earliest;
    if (!state_->timers.empty()) earliest = state_->timers.begin()->first.first;
    for (const RunLoopSource* source : state_->sources) {
        const auto deadline = deadlineOf(*source);
        if (deadline && (!earliest || *deadline < *earliest)) earliest = deadline;
    }
    return earliest;
}

void RunLoop::waitUntil(std::optional<double> when) {
    if (state_->hasBlocks()) return;
    if (when && state_->clock->skipTo(*when)) return;
    show();
    std::optional<double> seconds;
    if (when) seconds = std::max(0.0, *when - now());
    state_->waiter.wait(seconds);
}

// Makes the descriptor say what there is to do, and when. Costs a system call only where that has
// changed.
void RunLoop::show() {
    state_->waiter.refresh();
    std::optional<double> deadline = nextDeadline();
    const double reading = deadline ? now() : 0;
    if (state_->hasBlocks() || (deadline && *deadline <= reading)) state_->waiter.wake();
    if (!state_->clock->isRealTime()) deadline.reset();
    if (deadline == state_->alarm) return;
    state_->alarm = deadline;
    state_->waiter.setAlarm(deadline ? std::optional(*deadline - reading) : std::nullopt);
}

}  // namespace InkoraKit
