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

// The loop whose pass is under way on this thread. What is queued meanwhile needs no wake-up: the
// loop looks once more before it sleeps.
thread_local const void* inPass = nullptr;

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
    bool servingBlocks = false;

    std::map<TimerKey, std::shared_ptr<Timer>> timers;
    std::uint64_t timersAdded = 0;
    std::vector<std::shared_ptr<Timer>> dueTimers;

    std::vector<RunLoopSource*> sources;
    std::shared_ptr<Clock> clock = std::make_shared<SystemClock>();
    std::atomic<bool> stopping = false;
    Waiter waiter;

    bool hasBlocks() const {
        const std::lock_guard lock(mutex);
        return !posted.empty() || next < served.size();
    }

    void wakeFromOutside() {
        if (inPass != this) waiter.wake();
    }
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
    state_->wakeFromOutside();
}

void RunLoop::run() {
    runUntil(std::numeric_limits<double>::infinity());
}

void RunLoop::runUntil(double when) {
    const Scoped<const void*> scope(inPass, state_.get());
    while (!takeStop()) {
        const bool busy = pass();
        const double reading = now();
        if (reading > when || (reading >= when && !busy)) {
            takeStop();
            break;
        }
        if (busy) continue;
        const auto deadline = nextDeadline();
        waitUntil(when < std::numeric_limits<double>::infinity()
                      ? std::min(when, deadline.value_or(when))
                      : deadline);
    }
    if (state_->hasBlocks()) state_->waiter.wake();
}

bool RunLoop::runOnce(double longestWait) {
    bool busy = false;
    {
        const Scoped<const void*> scope(inPass, state_.get());
        busy = pass();
        if (!busy && longestWait > 0) {
            const double end = now() + longestWait;
            waitUntil(std::min(end, nextDeadline().value_or(end)));
            busy = pass();
        }
    }
    if (state_->hasBlocks()) state_->waiter.wake();
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
    state_->sources.push_back(&source);
    state_->waiter.add(source);
    state_->wakeFromOutside();
}

void RunLoop::removeSource(RunLoopSource& source) {
    std::erase(state_->sources, &source);
    state_->waiter.remove(source);
}

void RunLoop::addTimer(const std::shared_ptr<Timer>& timer) {
    timer->order_ = state_->timersAdded++;
    state_->timers.emplace(State::TimerKey{timer->fireDate_, timer->order_}, timer);
    state_->wakeFromOutside();
}

void RunLoop::removeTimer(Timer& timer) {
    state_->timers.erase({timer.fireDate_, timer.order_});
}

// Blocks first, then the timers due when the pass began, so that neither kind can starve the other;
// what either queues or schedules waits for the next pass.
bool RunLoop::pass() {
    const double began = now();
    bool busy = serveSources();
    busy |= serveBlocks();
    busy |= fireTimers(began);
    state_->waiter.refresh();
    return busy;
}

bool RunLoop::serveBlocks() {
    if (state_->servingBlocks) return false;  // a loop run from inside a block serves timers only
    const Scoped<bool> scope(state_->servingBlocks, true);
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

bool RunLoop::serveSources() {
    bool busy = false;
    const double reading = now();
    for (RunLoopSource* source : std::vector(state_->sources)) {
        const auto deadline = source->deadline();
        if (!deadline || *deadline > reading) continue;
        if (std::ranges::find(state_->sources, source) == state_->sources.end()) continue;
        source->service();
        busy = true;
    }
    for (RunLoopSource* source : std::vector(state_->waiter.wait(0.0))) {
        if (std::ranges::find(state_->sources, source) == state_->sources.end()) continue;
        source->service();
        busy = true;
    }
    return busy;
}

std::optional<double> RunLoop::nextDeadline() const {
    std::optional<double> earliest;
    if (!state_->timers.empty()) earliest = state_->timers.begin()->first.first;
    for (const RunLoopSource* source : state_->sources) {
        const auto deadline = source->deadline();
        if (deadline && (!earliest || *deadline < *earliest)) earliest = deadline;
    }
    return earliest;
}

void RunLoop::waitUntil(std::optional<double> when) {
    // A loop run from inside a block cannot serve the blocks that wait for that one to end.
    if (!state_->servingBlocks && state_->hasBlocks()) return;
    if (when && state_->clock->skipTo(*when)) return;
    std::optional<double> seconds;
    if (when) seconds = std::max(0.0, *when - now());
    state_->waiter.wait(seconds);
}

}  // namespace InkoraKit
