#pragma once

#include "Text.h"
#include "palette/Palette.h"

#include <cstddef>
#include <string>

namespace InkoraTool {

/// @param number the line's, from 1
inline PaletteFault faultInLine(std::size_t number, const std::string& reason) {
    return PaletteFault(", line " + std::to_string(number) + ": " + reason);
}

}  // namespace InkoraTool
