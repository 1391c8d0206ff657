#pragma once

#include <functional>

namespace InkoraTool {

/// Somebody wants the process to end.
struct Interrupted {};

/// Runs the main run loop for a function that needs what comes by it, and reads top to bottom.
class Waiting {
public:
    /// Ends the present wait, and each one after it.
    void interrupt() { isInterrupted_ = true; }

    /// Waits until something holds, at most for so many seconds.
    /// @return whether it holds
    /// @throws Interrupted
    bool until(const std::function<bool()>& holds, double seconds) const;

private:
    bool isInterrupted_ = false;
};

/// The same for what has to be done even after an interruption.
bool waitUntil(const std::function<bool()>& holds, double seconds);

}  // namespace InkoraTool
