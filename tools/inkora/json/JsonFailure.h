#pragma once

#include "ExitStatus.h"

#include <stdexcept>
#include <string>

namespace InkoraTool {

/// Ends `inkora json`: what to tell its user, and what the process ends with.
struct JsonFailure : std::runtime_error {
    JsonFailure(ExitStatus code, const std::string& message)
        : std::runtime_error(message), status(code) {}

    ExitStatus status;
};

}  // namespace InkoraTool
