#pragma once

#include "ExitStatus.h"

#include <stdexcept>
#include <string>

namespace InkoraTool {

/// Ends the program: what to tell its user, and what the process ends with.
struct Failure : std::runtime_error {
    Failure(ExitStatus code, const std::string& message)
        : std::runtime_error(message), status(code) {}

    ExitStatus status;
};

}  // namespace InkoraTool
