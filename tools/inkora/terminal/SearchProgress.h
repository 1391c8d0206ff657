#pragma once

#include <InkoraKit/platform/Timer.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace InkoraTool {

/// A line on standard error that tells for how long something is being looked for, where
/// `canTakeLinesBack()`. It counts seconds on the main run loop, and leaves no trace.
class SearchProgress {
public:
    /// @param text for a number of seconds; empty for no line
    explicit SearchProgress(std::function<std::string(std::int64_t seconds)> text);
    ~SearchProgress() { stop(); }
    SearchProgress(const SearchProgress&) = delete;
    SearchProgress& operator=(const SearchProgress&) = delete;

    /// Counts from now on, unless it is counting already.
    void start();
    void stop();

    /// Takes the line back until the next second, so that others can be shown.
    void hide();

private:
    void tickLater();
    void show(const std::string& text);

    std::function<std::string(std::int64_t seconds)> text_;
    std::shared_ptr<InkoraKit::Timer> timer_;
    std::chrono::steady_clock::time_point start_;
    std::size_t width_ = 0;  // of what is shown
};

}  // namespace InkoraTool
