#pragma once

#include <InkoraKit/virtual/ReplayRadio.h>

#include "platform/radios/trace/Trace.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace InkoraKit {

class Timer;

/// Plays a trace to a listener, and compares what is asked with what was asked then.
class TracePlayer : public std::enable_shared_from_this<TracePlayer> {
public:
    explicit TracePlayer(Trace trace) : trace_(std::move(trace)) { toNextCommand(); }

    /// Whether nobody has taken it before: it plays to one listener.
    bool take() noexcept { return !std::exchange(isTaken_, true); }

    void start(RadioListener& listener);
    void stop();
    /// As if the adapter were pulled out.
    void abandon();
    void given(const TraceCommand& command);
    const TraceAnswers& answers() const noexcept { return answers_; }

    bool isOver() const noexcept { return nextEvent_ == trace_.size(); }
    const std::vector<ReplayDeparture>& departures() const noexcept { return departures_; }

    std::function<void()> whenOver;
    std::function<void(const ReplayDeparture&)> whenDeparted;

private:
    void play();
    bool playNext();
    void playIn(double seconds);
    void toNextCommand();
    void depart(const std::string& given);
    void endLink(const UUID& peripheral);

    Trace trace_;
    std::size_t nextEvent_ = 0;    // to be played: an event, or the end
    std::size_t nextCommand_ = 0;  // to be given; at the end of the trace that of it
    double began_ = 0;
    bool isTaken_ = false;
    RadioListener* listener_ = nullptr;
    TraceAnswers answers_;
    std::shared_ptr<Timer> timer_;
    std::vector<ReplayDeparture> departures_;
};

}  // namespace InkoraKit
