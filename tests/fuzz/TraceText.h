#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace InkoraKit {

/// Plays the text as a trace to a central manager that nobody uses, records that, and reads the
/// recording. Ends the process where a refusal names no line, or the recording is refused.
/// @return the recording; none where the text is no trace
std::optional<std::string> replayTrace(std::string_view text);

}  // namespace InkoraKit
