#pragma once

#include <InkoraKit/platform/UIColor.h>

#include "palette/Colour.h"

#include <string>

namespace InkoraTool {

/// The nearest colour within sRGB.
Colour bytesOf(const InkoraKit::UIColor& colour);

/// The same as `#FF8000`.
std::string hexText(const InkoraKit::UIColor& colour);

}  // namespace InkoraTool
