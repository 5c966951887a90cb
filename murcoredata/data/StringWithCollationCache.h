#pragma once

// Interning of string cells for one collation. A column with few distinct texts then costs
// one `StringWithCollation` per distinct text instead of one per cell.
//
// The cache is keyed by the collation's hash of the text alone, never by the text, and holds
// one string per key: a hit is used only when its text is the same, code unit for code unit,
// and anything else under that key (a hash collision, or a variant the collation calls equal,
// such as "ABC" after "abc" when case is ignored) replaces it. So the cache never changes
// which text a caller gets, only whether the object is shared.
//
// Capacity is counted in entries; the least recently used entry goes first, and a cache of
// capacity 0 holds nothing. A string handed out keeps its own reference and outlives its
// eviction and the cache.
//
// Threads: `Lookup` may be called from any thread. It hashes and compares outside the lock
// and takes the cache's lock once to look and, on a miss, once more to insert; two threads
// that miss on one text both make an object, and the later one stays cached.

#include "murcoredata/data/StringWithCollation.h"
#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/TString.h"

#include <cstddef>
#include <memory>

class StringWithCollationCacheImpl;

/// Hands out shared `StringWithCollation` objects for texts under one collation.
class MURCOREDATA_EXPORT StringWithCollationCache
{
public:
    /// An empty cache for `collation` (copied) holding at most `capacity` strings.
    StringWithCollationCache(const Collation& collation, unsigned long capacity);
    /// Gives back every cached reference; strings still held elsewhere live on.
    ~StringWithCollationCache();
    StringWithCollationCache(const StringWithCollationCache&) = delete;
    StringWithCollationCache& operator=(const StringWithCollationCache&) = delete;

    /// A string of exactly `text` under the cache's collation: the cached object when it has
    /// that text, otherwise a new one (count 1 to the caller), which is cached in its place.
    /// On a hit nothing is allocated.
    StringWithCollationPtr Lookup(const TString& text);

    const Collation& GetCollation() const;
    /// How many strings are held now.
    size_t GetCount() const;

    /// The size that higher layers give their per-thread string pools (default 1000). Kept
    /// here for them only: nothing in this library is sized by it, and it is not validated
    /// (0 is accepted). Set it before threads start.
    static void SetStringPoolThreadLocalCacheSize(unsigned long size);
    static unsigned long GetStringPoolThreadLocalCacheSize();

private:
    std::unique_ptr<StringWithCollationCacheImpl> m_impl;
};

/// The value behind `StringWithCollationCache::Get/SetStringPoolThreadLocalCacheSize`.
extern MURCOREDATA_EXPORT unsigned long g_stringPoolThreadLocalCacheSize;
