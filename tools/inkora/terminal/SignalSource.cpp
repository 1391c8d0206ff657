#include "terminal/SignalSource.h"

#include <InkoraKit/platform/RunLoop.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace InkoraTool {
namespace {

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP};

// A pipe from the signal handler to the loop; a handler can reach nothing but globals.
std::array<int, 2> wakeUpPipe = {-1, -1};

extern "C" void writeToPipe(int) {
    const int before = errno;
    const char byte = 0;
    [[maybe_unused]] const auto put = ::write(wakeUpPipe[1], &byte, 1);
    errno = before;
}

// What was ignored on purpose, as under nohup, stays so. (A shell's background jobs start with
// SIGINT ignored, and yet are to end by it.)
bool isToStayIgnored(int signal) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    return signal == SIGHUP && current.sa_handler == SIG_IGN;
}

void handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : endingSignals)
        if (!isToStayIgnored(signal)) ::sigaction(signal, &action, nullptr);
}

}  // namespace

SignalSource::SignalSource(std::function<void()> askedToEnd) : askedToEnd_(std::move(askedToEnd)) {
    if (::pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe2");
    handle(writeToPipe);
    InkoraKit::RunLoop::main().addSource(*this);
}

SignalSource::~SignalSource() {
    handle(SIG_DFL);
    InkoraKit::RunLoop::main().removeSource(*this);
    for (int& end : wakeUpPipe) ::close(std::exchange(end, -1));
}

int SignalSource::descriptor() const {
    return wakeUpPipe[0];
}

void SignalSource::service() {
    std::array<char, 16> bytes;
    while (::read(wakeUpPipe[0], bytes.data(), bytes.size()) > 0) {
    }
    handle(SIG_DFL);
    askedToEnd_();
}

}  // namespace InkoraTool
