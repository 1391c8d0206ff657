#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include <functional>
#include <optional>
#include <string>

namespace InkoraTool {

/// Brings the lines of standard input to the main run loop, which never waits for them: from a
/// terminal, a pipe or a file. What is behind the last line feed is a line as well.
class LineSource final : public InkoraKit::RunLoopSource {
public:
    /// Bytes. Of a line that is longer only the beginning is handed on, so much and one more.
    static constexpr std::size_t longestLine = 4096;

    explicit LineSource(std::function<void(const std::string&)> lineCame);
    ~LineSource() override;
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;

    /// What is not read stays where it is, and its writer waits.
    void setPaused(bool isPaused);

    int descriptor() const override;
    std::optional<double> deadline() const override;
    void service() override;

private:
    bool hasInput() const;
    void take(char character);
    void endLine();
    void watch(bool isOn);

    const std::function<void(const std::string&)> lineCame_;
    const bool isAlwaysReady_;
    std::string line_;
    bool isWatched_ = false;
    bool isAtEnd_ = false;
};

}  // namespace InkoraTool
