#include "platform/radios/trace/TracePlayer.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/Timer.h>

#include <utility>

namespace InkoraKit {
namespace {

// Seconds that an event waits for the commands that were given before it, and the end for what it
// follows.
constexpr double patience = 1.0;

// Commands that may have been left out before one that is given counts as another one.
constexpr std::size_t mostLeftOut = 8;

const TraceCommand* commandOf(const TraceEntry& entry) {
    return std::get_if<TraceCommand>(&entry.what);
}

}  // namespace

void TracePlayer::start(RadioListener& listener) {
    listener_ = &listener;
    began_ = RunLoop::main().now();
    playIn(0);
}

void TracePlayer::stop() {
    listener_ = nullptr;
    if (timer_) std::exchange(timer_, nullptr)->invalidate();
}

void TracePlayer::abandon() {
    RadioListener* const listener = listener_;
    stop();
    answers_ = {CBManagerStateReason::noAdapter, {.canReadRSSI = false}};
    if (listener) listener->adapterStateChanged(CBManagerState::unsupported);
}

// Events

void TracePlayer::playIn(double seconds) {
    if (timer_) timer_->invalidate();
    timer_ = Timer::scheduledTimer(seconds, [this] { play(); });
}

void TracePlayer::play() {
    const auto self = shared_from_this();  // a listener may end it
    timer_.reset();
    while (listener_ && !isOver() && playNext()) {
    }
    if (isOver() && whenOver) std::exchange(whenOver, nullptr)();
}

/// Answers whether the next one may be played as well.
bool TracePlayer::playNext() {
    const TraceEntry& entry = trace_[nextEvent_];
    if (commandOf(entry)) return ++nextEvent_, true;
    const double due = began_ + entry.at;
    const bool isAwaited = nextCommand_ < nextEvent_;
    const double now = RunLoop::main().now();
    if (now < due) return playIn(due - now), false;
    if (isAwaited && now < due + patience) return playIn(due + patience - now), false;
    while (nextCommand_ < nextEvent_) {
        depart("nothing");
        ++nextCommand_;
        toNextCommand();
    }
    const auto* const event = std::get_if<TraceEvent>(&entry.what);
    // What the last events lead to is still a part of it.
    const bool isUnsettled = !event && RunLoop::main().timeUntilDue() == 0.0;
    if (isUnsettled && now < due + patience) return playIn(0), false;
    ++nextEvent_;
    if (event) (*event)(*listener_, answers_);
    return true;
}

// Commands

void TracePlayer::toNextCommand() {
    while (nextCommand_ < trace_.size() && !commandOf(trace_[nextCommand_])) ++nextCommand_;
}

void TracePlayer::given(const TraceCommand& command) {
    if (!listener_) return;
    const bool isExpected =
        nextCommand_ < trace_.size() && *commandOf(trace_[nextCommand_]) == command;
    if (!isExpected && !isOver()) depart(command.description());
    if (!isExpected && command.name == "disconnect") endLink(*command.peripheral);

    std::size_t leftOut = 0;
    for (auto i = nextCommand_; i < trace_.size() && leftOut < mostLeftOut; ++i) {
        const TraceCommand* const recorded = commandOf(trace_[i]);
        if (recorded && *recorded == command) {
            nextCommand_ = i + 1;
            toNextCommand();
            break;
        }
        leftOut += recorded ? 1 : 0;
    }
    if (!isOver()) playIn(0);  // what has waited for it
}

void TracePlayer::depart(const std::string& given) {
    const bool isEnd = nextCommand_ == trace_.size();
    departures_.push_back({isEnd ? trace_.back().line : trace_[nextCommand_].line,
                           isEnd ? "nothing" : commandOf(trace_[nextCommand_])->description(),
                           given});
    if (whenDeparted) whenDeparted(departures_.back());
}

/// The recording cannot tell how, so it is done at once: nobody is to wait for it in vain.
void TracePlayer::endLink(const UUID& peripheral) {
    Timer::scheduledTimer(0, [weak = weak_from_this(), peripheral] {
        const auto self = weak.lock();
        if (self && self->listener_) self->listener_->disconnected(peripheral, std::nullopt);
    });
}

}  // namespace InkoraKit
