#pragma once

// Symbols of the shared library that other modules call.
#if defined(_WIN32)
#  if defined(MURCOREDATA_BUILDING)
#    define MURCOREDATA_EXPORT __declspec(dllexport)
#  else
#    define MURCOREDATA_EXPORT __declspec(dllimport)
#  endif
#else
#  define MURCOREDATA_EXPORT __attribute__((visibility("default")))
#endif
