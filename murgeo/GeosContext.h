#pragma once

// Internal to murgeo: the GEOS context of the calling thread. GEOS's reentrant API wants one context a thread;
// shapes themselves are not tied to a context, so a shape made on one thread may be read
// and freed on another.

#include <geos_c.h>

#include <string>

namespace murgeo {
namespace detail {

GEOSContextHandle_t GeosContext();
/// The last error GEOS reported on this thread, cleared by `ClearGeosError`.
const std::string& LastGeosError();
void ClearGeosError();

} // namespace detail
} // namespace murgeo
