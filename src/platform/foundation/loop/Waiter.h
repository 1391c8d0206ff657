#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include <memory>
#include <optional>
#include <vector>

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

    /// Sleeps for `seconds` at most, for ever when absent, and answers the sources whose
    /// descriptors are ready.
    const std::vector<RunLoopSource*>& wait(std::optional<double> seconds);

    /// Ends the present or the next wait. Any thread.
    void wake();

    /// Readable while a source is ready or a wake-up is pending.
    int descriptor() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
