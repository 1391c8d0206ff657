#pragma once

#include <cstdio>
#include <string_view>

namespace InkoraKit {

/// Writes a line to standard output, whether or not the kit's console log is on.
inline void printConsoleLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
}

}  // namespace InkoraKit
