#pragma once

// Process-wide switches of the library. A host sets them once, before it starts threads;
// none is synchronised.

#include "murcoredata/foundation/Export.h"

/// The options a host sets; each forwards to the holder that keeps it.
class MURCOREDATA_EXPORT CoreDataOptions
{
public:
    CoreDataOptions() = delete;

    /// The size higher layers give their per-thread string pools; see
    /// `StringWithCollationCache::SetStringPoolThreadLocalCacheSize`.
    static void SetStringPoolThreadLocalCacheSize(unsigned long size);
};
