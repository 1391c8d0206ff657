#include "terminal/LineSource.h"

#include <InkoraKit/platform/RunLoop.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// Files, and devices like /dev/null, can be read at any time, and cannot be watched.
bool isAlwaysReady() {
    struct stat status {};
    if (::fstat(STDIN_FILENO, &status) != 0) return true;
    return !S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode) && ::isatty(STDIN_FILENO) == 0;
}

}  // namespace

// In the background of a terminal a read fails, instead of stopping the process, and ends the
// input.
LineSource::LineSource(std::function<void(const std::string&)> lineCame)
    : lineCame_(std::move(lineCame)), isAlwaysReady_(isAlwaysReady()) {
    std::signal(SIGTTIN, SIG_IGN);
    watch(true);
}

LineSource::~LineSource() {
    watch(false);
    std::signal(SIGTTIN, SIG_DFL);
}

void LineSource::setPaused(bool isPaused) {
    watch(!isPaused && !isAtEnd_);
}

// Out of the loop while nothing is to be read, for there a writer that has left would be told again
// and again.
void LineSource::watch(bool isOn) {
    if (isOn == std::exchange(isWatched_, isOn)) return;
    if (isOn)
        RunLoop::main().addSource(*this);
    else
        RunLoop::main().removeSource(*this);
}

int LineSource::descriptor() const {
    return STDIN_FILENO;
}

std::optional<double> LineSource::deadline() const {
    return isAlwaysReady_ ? std::optional(RunLoop::main().now()) : std::nullopt;
}

void LineSource::service() {
    if (!hasInput()) return;
    std::array<char, 4096> bytes;
    const auto size = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) return;
    for (ssize_t i = 0; i < size; ++i) take(bytes[static_cast<std::size_t>(i)]);
    if (size > 0) return;
    isAtEnd_ = true;
    watch(false);
    if (!line_.empty()) endLine();
}

// Somebody else who reads the same input may have been faster.
bool LineSource::hasInput() const {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return isAlwaysReady_ || ::poll(&input, 1, 0) > 0;
}

void LineSource::take(char character) {
    if (character == '\n') return endLine();
    if (line_.size() <= longestLine) line_ += character;
}

void LineSource::endLine() {
    lineCame_(std::exchange(line_, {}));
}

}  // namespace InkoraTool
