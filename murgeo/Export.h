#pragma once

// Symbols of the geometry library that other modules call.
#if defined(_WIN32)
#  if defined(MURGEO_BUILDING)
#    define MURGEO_EXPORT __declspec(dllexport)
#  else
#    define MURGEO_EXPORT __declspec(dllimport)
#  endif
#else
#  define MURGEO_EXPORT __attribute__((visibility("default")))
#endif
