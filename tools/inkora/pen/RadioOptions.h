#pragma once

#include "Command.h"
#include "pen/PenSession.h"
#include "pen/SessionRadio.h"

#include <cstdint>
#include <string>
#include <vector>

namespace InkoraTool {

/// Which radio a command uses, what is in the air where that is the virtual one, and whether what
/// passes is recorded.
class RadioOptions {
public:
    RadioOptions() = default;
    RadioOptions(const RadioOptions&) = delete;
    RadioOptions& operator=(const RadioOptions&) = delete;

    /// What is read into this object; the second ones are for a command that can record.
    std::vector<Option> options();
    std::vector<Flag> flags();
    std::vector<Option> recordingOptions();
    std::vector<Flag> recordingFlags();

    /// Runs a session on the radio that was asked for.
    /// @return what the session has returned; `unreadable` where there is a fault with a trace
    ExitStatus run(PenSession& session) const;

private:
    SessionRadio install() const;

    std::string radio_ = "system";
    std::uint32_t seed_ = 1;
    bool atOnce_ = false;
    std::string recording_;
    bool withAddresses_ = false;
};

}  // namespace InkoraTool
