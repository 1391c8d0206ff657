#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include <functional>

namespace InkoraTool {

/// Brings the signals that ask a process to end (SIGINT, SIGTERM, SIGHUP) to the main run loop. It
/// takes the first one only: the next ends the process at once. There is one at a time.
class SignalSource final : public InkoraKit::RunLoopSource {
public:
    explicit SignalSource(std::function<void()> askedToEnd);
    ~SignalSource() override;
    SignalSource(const SignalSource&) = delete;
    SignalSource& operator=(const SignalSource&) = delete;

    int descriptor() const override;
    void service() override;

private:
    std::function<void()> askedToEnd_;
};

}  // namespace InkoraTool
