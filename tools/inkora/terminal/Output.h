#pragma once

#include <string>

namespace InkoraTool {

/// Standard output, line by line: a line is out when `line` returns, also into a pipe.
class Output {
public:
    enum class Outcome {
        written,
        closed,  ///< nobody reads any more
        failed,
    };

    Outcome line(const std::string& text);

    /// Why the last line failed, in the system's words.
    std::string failure() const;

private:
    int error_ = 0;
};

/// Writes a text and a line break to standard output.
/// @return whether somebody still reads
/// @throws Failure when that cannot be
bool printText(const std::string& text);

}  // namespace InkoraTool
