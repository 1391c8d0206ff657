#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Block.h>
#include <InkoraKit/platform/Clock.h>

#include <memory>
#include <optional>

namespace InkoraKit {

class RunLoopSource;
class Timer;

/// The one loop on which the whole kit runs: the main queue's blocks, timers, and the radio's
/// traffic. The kit starts no thread of its own; a host either lets the loop run (`run`,
/// `runUntil`, `runOnce`) or embeds it in its own loop, by an adapter of InkoraKit/loops or itself:
///
///     watch descriptor() for reading, and call runPending() when it is readable;
///     a host that draws frames calls runPending() once a frame, and needs no descriptor
///
/// Every operation belongs on the loop's thread, but for `post` and `stop`, which any thread may
/// call. An exception that a block throws leaves through `run…`; no other block is lost by it.
///
/// A callback may run a loop inside itself, this one or the host's own (a modal box does). Such an
/// inner loop serves timers and sources, except those whose callback it runs in. It serves blocks
/// inside a timer's callback only: inside a block, and thus inside almost all that a receiver
/// hears, they wait until that block has returned, and neither the descriptor nor `timeUntilDue`
/// tells of them before. A box that is to hear the pen is therefore not opened inside a callback:
/// queue that on the host's own loop, return, and let that loop open it.
class INKORA_EXPORT RunLoop {
public:
    /// The process's run loop. Its thread is the one that runs it.
    static RunLoop& main();

    /// Neither copied nor moved: there is one.
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Queues a block on the main queue: first in, first out, never inside this call. Any thread.
    void post(Block block);

    /// Runs until `stop`.
    void run();
    /// Runs until the clock shows `when` and what was due by then is done, or until `stop`.
    void runUntil(double when);
    /// `runUntil(now() + seconds)`.
    void runFor(double seconds) { runUntil(now() + seconds); }
    /// One pass: waits at most `longestWait` seconds for something to do (0: not at all), then does
    /// what is due. Answers whether anything was.
    bool runOnce(double longestWait = 0);
    /// Passes without waiting until nothing is due any more, what became due meanwhile included, or
    /// `budget` seconds have gone by on the loop's clock; a pass that has begun is ended. What is
    /// left then is for the next call. Answers whether anything was due.
    bool runPending(double budget = 0.005);
    /// Ends the `run` or `runUntil` in progress, or the next one if there is none. Any thread.
    void stop();

    /// The time by the loop's clock, in seconds.
    double now() const;
    /// Replaces the clock, the machine's monotonic one at first. Timers already scheduled keep the
    /// reading at which they fire.
    void setClock(std::shared_ptr<Clock> clock);

    /// A descriptor that a poll, select or epoll finds readable for as long as there is something
    /// to do, deadlines included. Of a clock that is not real time (Clock::isRealTime) it shows
    /// only what is due already: whoever moves such a clock calls `run…` too. -1 on systems other
    /// than Linux.
    int descriptor() const;
    /// For a host that cannot watch a descriptor: seconds until there is something to do, 0 when
    /// there is already, absent when nothing is scheduled. A block that another thread posts
    /// shortens it.
    std::optional<double> timeUntilDue() const;

    /// Watches a source, which its owner removes before it ends.
    /// @throws std::logic_error on systems other than Linux.
    void addSource(RunLoopSource& source);
    /// Ends the watch; also inside the source's own `service`.
    void removeSource(RunLoopSource& source);
    /// A source's interest or deadline has changed other than in its `service`, perhaps while the
    /// host's loop is asleep on the descriptor.
    void sourcesChanged();

private:
    friend class Timer;
    struct State;
    class Leaving;

    RunLoop();
    ~RunLoop();
    void addTimer(const std::shared_ptr<Timer>& timer);
    void removeTimer(Timer& timer);

    bool serveBlocks();
    bool fireTimers(double due);
    bool serveSources(double due);
    void serve(RunLoopSource& source);
    std::optional<double> deadlineOf(const RunLoopSource& source) const;
    void waitUntil(std::optional<double> when);
    bool pass();
    std::optional<double> nextDeadline() const;
    void show();
    bool takeStop();

    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
