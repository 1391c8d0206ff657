#pragma once

#include <InkoraKit/Export.h>

extern "C" {

/// The kit's version as a number.
INKORA_EXPORT extern const double InkoraKitVersionNumber;

/// The kit's version as a what-marker line, which the `what` command finds in a binary.
INKORA_EXPORT extern const char InkoraKitVersionString[];
}
