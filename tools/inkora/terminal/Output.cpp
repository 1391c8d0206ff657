#include "terminal/Output.h"

#include "Failure.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace InkoraTool {

// Needs SIGPIPE to be ignored.
Output::Outcome Output::line(const std::string& text) {
    const std::string line = text + '\n';
    const bool isOut =
        std::fwrite(line.data(), 1, line.size(), stdout) == line.size() && std::fflush(stdout) == 0;
    if (isOut) return Outcome::written;
    error_ = errno;
    return error_ == EPIPE ? Outcome::closed : Outcome::failed;
}

std::string Output::failure() const {
    return std::generic_category().message(error_);
}

bool printText(const std::string& text) {
    Output output;
    const Output::Outcome outcome = output.line(text);
    if (outcome == Output::Outcome::failed)
        throw Failure(ExitStatus::failure, "standard output: " + output.failure());
    return outcome == Output::Outcome::written;
}

}  // namespace InkoraTool
