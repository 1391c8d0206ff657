#pragma once

#include <InkoraKit/platform/UIColor.h>

#include <array>
#include <cstdint>
#include <string>

namespace InkoraTool {

/// Red, green and blue from 0 to 255, the nearest within sRGB.
std::array<std::uint8_t, 3> bytesOf(const InkoraKit::UIColor& colour);

/// The same as `#FF8000`.
std::string hexText(const InkoraKit::UIColor& colour);

}  // namespace InkoraTool
