#pragma once

/// Marks what the shared library exports; everything else stays hidden. For hosts that link the
/// static library and define `INKORA_STATIC`, nothing: what they build exports none of the kit.
#if defined(INKORA_STATIC)
#define INKORA_EXPORT
#elif defined(_WIN32)
#if defined(INKORA_BUILDING)
#define INKORA_EXPORT __declspec(dllexport)
#else
#define INKORA_EXPORT __declspec(dllimport)
#endif
#else
#define INKORA_EXPORT __attribute__((visibility("default")))
#endif
