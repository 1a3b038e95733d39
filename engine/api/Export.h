#pragma once

/// Marks the few functions that a library of the engine shows.
#ifdef _WIN32
#define ZEL_EXPORT __declspec(dllexport)
#else
#define ZEL_EXPORT __attribute__((visibility("default")))
#endif
