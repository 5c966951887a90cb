#pragma once

// Test support: a collation whose engine is a probe. It compares ASCII letters without regard
// to case and hashes a text to its length, so that tests can make hashes collide, make them
// differ for texts the engine would call equal, or make a hash 0 (the empty text). It counts
// the calls of `Compare` and `Hash` made on all threads.

#include "murcoredata/data/Collation.h"

#include <atomic>

namespace TestSupport {

struct ProbeCounters
{
    std::atomic<int> compares{0};
    std::atomic<int> hashes{0};

    void Reset()
    {
        compares = 0;
        hashes = 0;
    }
};

/// The counters of the probe engine, shared by all probe collations.
ProbeCounters& GetProbeCounters();

/// A collation on the probe pool, named "probe" unless told; every call gives the same pool,
/// so all probe collations are equivalent.
Collation MakeProbeCollation(const TString& name = TString(u"probe"), unsigned short charset = 0);

/// A probe collation on a pool of its own, which says it is not equivalent to the first.
Collation MakeOtherProbeCollation();

} // namespace TestSupport
