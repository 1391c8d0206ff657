#pragma once

#include <InkoraKit/c/Export.h>

// The version of these headers, MAJOR.MINOR.PATCH, which the build reads here. The version of the
// library that is running is told by inkora_version.

/// Changes where hosts have to be compiled anew, or changed.
#define INKORA_VERSION_MAJOR 1
/// Changes where something was added.
#define INKORA_VERSION_MINOR 0
/// Changes where something was mended.
#define INKORA_VERSION_PATCH 0

#ifdef __cplusplus
extern "C" {
#endif

/// The kit's version as a number.
INKORA_EXPORT extern const double InkoraKitVersionNumber;

/// The kit's version as a what-marker line, which the `what` command finds in a binary.
INKORA_EXPORT extern const char InkoraKitVersionString[];

#ifdef __cplusplus
}
#endif
