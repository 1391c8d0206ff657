#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include <memory>
#include <optional>

namespace InkoraKit {

/// What a run loop asks of the operating system: to sleep until a descriptor is ready, until it is
/// woken, or for a time. One implementation per system.
class Waiter {
public:
    Waiter();
    ~Waiter();
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

    void add(RunLoopSource& source);
    void remove(RunLoopSource& source);

    /// Passes the sources' present interests on to the system.
    void refresh();

    /// Ends a wait, and makes the descriptor readable, in `seconds`; never when absent. In force
    /// until it is set anew.
    void setAlarm(std::optional<double> seconds);

    /// Sleeps for `seconds` at most, for ever when absent.
    void wait(std::optional<double> seconds);

    /// The next of the sources whose descriptors the last wait found ready; none when all of them
    /// were taken.
    RunLoopSource* takeReady();

    /// Ends the present or the next wait. Any thread.
    void wake();

    /// Readable while a source is ready, a wake-up is pending or the alarm has gone off; -1 where
    /// there is no such thing.
    int descriptor() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
