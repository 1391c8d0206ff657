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
/// `runUntil`, `runOnce`) or embeds it in its own loop:
///
///     watch descriptor() for reading and wake up after timeUntilDue() seconds at the latest;
///     then, on either, call runOnce(0)
///
/// Every operation belongs on the loop's thread, but for `post` and `stop`, which any thread may
/// call. An exception that a block throws leaves through `run…`; no other block is lost by it.
class INKORA_EXPORT RunLoop {
public:
    /// The process's run loop. Its thread is the one that runs it.
    static RunLoop& main();

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
    /// Ends the `run` or `runUntil` in progress, or the next one if there is none. Any thread.
    void stop();

    /// The time by the loop's clock, in seconds.
    double now() const;
    /// Replaces the clock, the machine's monotonic one at first. Timers already scheduled keep the
    /// reading at which they fire.
    void setClock(std::shared_ptr<Clock> clock);

    /// A descriptor that a poll, select or epoll finds readable when `runOnce` has something to do,
    /// also when that is a block posted, or an earlier deadline set, from outside the loop. -1 on
    /// systems other than Linux, where only the deadline is to be had.
    int descriptor() const;
    /// Seconds until `runOnce` must be called even though the descriptor stays quiet: 0 when
    /// something is due, absent when nothing is scheduled. Ask right before each wait.
    std::optional<double> timeUntilDue() const;

    /// Watches a source, which its owner removes before it ends.
    /// @throws std::logic_error on systems other than Linux.
    void addSource(RunLoopSource& source);
    void removeSource(RunLoopSource& source);

private:
    friend class Timer;
    struct State;

    RunLoop();
    ~RunLoop();
    void addTimer(const std::shared_ptr<Timer>& timer);
    void removeTimer(Timer& timer);

    bool serveBlocks();
    bool fireTimers(double due);
    bool serveSources();
    void waitUntil(std::optional<double> when);
    bool pass();
    std::optional<double> nextDeadline() const;
    bool takeStop();

    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
