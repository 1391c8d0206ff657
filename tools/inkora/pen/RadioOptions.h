#pragma once

#include <InkoraKit/virtual/VirtualRadio.h>

#include "Command.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace InkoraTool {

/// Which radio a command uses, and what is in the air where that is the virtual one.
class RadioOptions {
public:
    RadioOptions() = default;
    RadioOptions(const RadioOptions&) = delete;
    RadioOptions& operator=(const RadioOptions&) = delete;

    /// What is read into this object.
    std::vector<Option> options();

    /// Installs the virtual radio with its pen where that was asked for; it lasts as long as what
    /// is returned. Null for the system's radio.
    std::shared_ptr<InkoraKit::VirtualRadio> install() const;

private:
    std::string radio_ = "system";
    std::uint32_t seed_ = 1;
};

}  // namespace InkoraTool
