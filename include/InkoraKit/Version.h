#pragma once

#include <InkoraKit/c/Export.h>

/// The version of these headers, MAJOR.MINOR.PATCH. The build reads it here; which library is
/// running, `inkora_version` tells.
#define INKORA_VERSION_MAJOR 1
#define INKORA_VERSION_MINOR 0
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
