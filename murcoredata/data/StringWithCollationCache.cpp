#include "murcoredata/data/StringWithCollationCache.h"

#include "murcoredata/utility/MruCache.h"

#include <utility>

unsigned long g_stringPoolThreadLocalCacheSize = 1000;

/// The collation of the cache and the strings, keyed by their hash.
class StringWithCollationCacheImpl
{
public:
    StringWithCollationCacheImpl(const Collation& collation, unsigned long capacity)
        : m_collation(collation), m_cache(capacity)
    {
    }

    StringWithCollationPtr Lookup(const TString& text);

    Collation m_collation;
    MruCache<unsigned int, RefCntPtr<StringWithCollation, RefCntObject>, 1> m_cache;
};

StringWithCollationPtr StringWithCollationCacheImpl::Lookup(const TString& text)
{
    // Built on the stack: a hit then costs a hash and no allocation.
    StringWithCollation candidate(text, m_collation);
    const unsigned int key = candidate.GetHash();

    StringWithCollationPtr found;
    // Code units, not the collation: a cell keeps the very text it was given.
    if (m_cache.Find(key, found) && found->GetString() == text)
        return found;

    // A miss, or another text under the key: the new string takes the key over.
    StringWithCollationPtr created = makeRefCnt<StringWithCollation>(std::move(candidate));
    m_cache.Insert(key, created, 1);
    return created;
}

StringWithCollationCache::StringWithCollationCache(const Collation& collation, unsigned long capacity)
    : m_impl(new StringWithCollationCacheImpl(collation, capacity))
{
}

StringWithCollationCache::~StringWithCollationCache() = default;

StringWithCollationPtr StringWithCollationCache::Lookup(const TString& text) { return m_impl->Lookup(text); }

const Collation& StringWithCollationCache::GetCollation() const { return m_impl->m_collation; }

size_t StringWithCollationCache::GetCount() const { return m_impl->m_cache.GetCount(); }

void StringWithCollationCache::SetStringPoolThreadLocalCacheSize(unsigned long size)
{
    g_stringPoolThreadLocalCacheSize = size;
}

unsigned long StringWithCollationCache::GetStringPoolThreadLocalCacheSize() { return g_stringPoolThreadLocalCacheSize; }
