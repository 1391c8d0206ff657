#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include <functional>

namespace InkoraTool {

/// Notices on the main run loop that nobody reads standard output any more, where that is a pipe or
/// a terminal, even while there is nothing to be written.
class ReaderSource final : public InkoraKit::RunLoopSource {
public:
    explicit ReaderSource(std::function<void()> readerLeft);
    ~ReaderSource() override;
    ReaderSource(const ReaderSource&) = delete;
    ReaderSource& operator=(const ReaderSource&) = delete;

    int descriptor() const override;
    /// None: what is waited for is an error, which is always told.
    Interest interest() const override { return Interest::none; }
    void service() override;

private:
    std::function<void()> readerLeft_;
    bool isWatching_ = true;
};

}  // namespace InkoraTool
