#pragma once

#include <InkoraKit/Export.h>

#include <cstddef>
#include <string>

namespace InkoraKit {

/// Where the kit asked for something else than it did when a trace was recorded.
struct INKORA_EXPORT ReplayDeparture {
    std::size_t line;      ///< of the trace, from 1: where the recorded command stands
    std::string recorded;  ///< the command there, `connect 1`; `nothing` at the end of the trace
    std::string given;     ///< the one that came in its place; `nothing` where none came in time

    /// `line 12: recorded connect 1, given nothing`.
    std::string description() const;
};

}  // namespace InkoraKit
