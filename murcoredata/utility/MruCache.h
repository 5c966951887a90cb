#pragma once

#include "murcoredata/foundation/Locks.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/utility/CacheDimensions.h"

#include <iterator>
#include <list>
#include <map>
#include <utility>

/// A size-bounded most-recently-used cache, safe from any thread: every entry point holds
/// the cache's recursive mutex for the whole call.
///
/// Each entry has a cost along N axes; inserting beyond the capacity evicts from the least
/// recently used end until the total fits again. An entry that could never fit (its cost
/// above the capacity) is refused silently, so a cache of capacity 0 holds nothing.
/// `Find` moves a hit to the front and allocates nothing. Values are copied out, so a value
/// found outlives its eviction when it is a counted pointer.
template <typename Key, typename Value, size_t N = 1>
class MruCache
{
public:
    explicit MruCache(const CacheDimensions<N>& capacity) : m_mutex(0), m_capacity(capacity) {}
    virtual ~MruCache() { Clear(); }
    MruCache(const MruCache&) = delete;
    MruCache& operator=(const MruCache&) = delete;

    /// True and `out` set when `key` is cached; `out` is untouched otherwise.
    bool Find(const Key& key, Value& out)
    {
        AutoSynchronize lock(m_mutex, 0, __FILE__, __func__, __LINE__);
        return FindImpl(key, out);
    }

    /// Caches `value` under `key` (replacing what was there) at `cost`; a cost of 0 counts
    /// as 1, so that every entry counts.
    void Insert(const Key& key, const Value& value, const CacheDimensions<N>& cost)
    {
        Value local(value);
        if (Exceeds(cost, m_capacity))
            return;
        CacheDimensions<N> counted = cost;
        for (unsigned long& d : counted.m_dimensions)
            if (d == 0)
                d = 1;
        AutoSynchronize lock(m_mutex, 0, __FILE__, __func__, __LINE__);
        InsertImpl(key, std::move(local), counted);
    }

    void Clear()
    {
        AutoSynchronize lock(m_mutex, 0, __FILE__, __func__, __LINE__);
        m_index.clear();
        m_entries.clear();
        m_used = CacheDimensions<N>();
    }

    CacheDimensions<N> GetUsed()
    {
        AutoSynchronize lock(m_mutex, 0, __FILE__, __func__, __LINE__);
        return m_used;
    }
    const CacheDimensions<N>& GetCapacity() const { return m_capacity; }
    size_t GetCount()
    {
        AutoSynchronize lock(m_mutex, 0, __FILE__, __func__, __LINE__);
        return m_entries.size();
    }

protected:
    /// The locked part of `Find`: no lock, no allocation, no throw.
    bool FindImpl(const Key& key, Value& out) noexcept
    {
        const auto it = m_index.find(key);
        if (it == m_index.end())
            return false;
        const auto entry = it->second;
        out = entry->m_value;
        if (entry != m_entries.begin())
            m_entries.splice(m_entries.begin(), m_entries, entry);
        return true;
    }

    /// The body of `Insert`, under the lock.
    void InsertImpl(const Key& key, Value&& value, const CacheDimensions<N>& cost)
    {
        const auto found = m_index.find(key);
        if (found != m_index.end()) {
            const auto entry = found->second;
            // The old value leaves with the caller's local, outside our bookkeeping.
            std::swap(entry->m_value, value);
            m_used -= entry->m_cost;
            entry->m_cost = cost;
            if (entry != m_entries.begin())
                m_entries.splice(m_entries.begin(), m_entries, entry);
        } else {
            const auto result = m_index.emplace(key, m_entries.end());
            MUR_LOGIC_ASSERT(result.second == true, LogicAssert_0x4CE9D476);
            m_entries.push_front(Entry{&result.first->first, std::move(value), cost});
            result.first->second = m_entries.begin();
        }
        m_used += m_entries.front().m_cost;
        while (Exceeds(m_used, m_capacity) && !m_entries.empty()) {
            Entry& victim = m_entries.back();
            m_used -= victim.m_cost;
            m_index.erase(*victim.m_key);
            m_entries.pop_back();
        }
    }

private:
    struct Entry
    {
        const Key* m_key; // the key inside its map node
        Value m_value;
        CacheDimensions<N> m_cost;
    };
    using EntryList = std::list<Entry>;

    EntryList m_entries;
    std::map<Key, typename EntryList::iterator> m_index;
    TRecursiveMutex m_mutex;
    CacheDimensions<N> m_used;
    const CacheDimensions<N> m_capacity;
};
