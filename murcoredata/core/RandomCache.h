#pragma once

// A bounded map with random replacement, shared between threads.
//
// A hit takes the read lock only and changes nothing but the counters; an insert takes the
// write lock. When an insert takes the cache over its capacity, one older entry, drawn
// uniformly by a Mersenne Twister with its default seed (5489), is evicted; the entry just
// inserted is never the victim. The entries are also kept in a slot array, so that the
// draw and the removal are constant time. The draws are deterministic for a given sequence
// of inserts, which keeps runs reproducible.
//
// Values are handed out by copy: a `shared_ptr` value stays alive in the hands of a caller
// after its entry is evicted.

#include "murcoredata/foundation/Locks.h"
#include "murcoredata/foundation/TString.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

/// The counters of a cache, read together.
struct RandomCacheStatistics
{
    uint32_t capacity = 0;
    uint32_t size = 0;
    uint32_t lookups = 0;
    uint32_t hits = 0;
    uint32_t inserts = 0;
};

template <typename Key, typename Value, typename Hash = std::hash<Key>, typename KeyEqual = std::equal_to<Key>>
class RandomCache
{
public:
    /// The smallest capacity; a smaller request is raised to it.
    static constexpr uint32_t kMinimumCapacity = 5;

    /// `name` may be null (no name); it is only for diagnostics.
    explicit RandomCache(unsigned capacity, const char16_t* name = nullptr);
    virtual ~RandomCache() { Clear(); }

    RandomCache(const RandomCache&) = delete;
    RandomCache& operator=(const RandomCache&) = delete;

    /// Copies the value of `key` into `value` and answers true, or answers false. Counts a
    /// lookup, and a hit when found; holds the read lock only.
    bool Find(const Key& key, Value& value);

    /// Inserts `value` under `key` and returns the value now in the cache: when the key is
    /// already there (another thread inserted it first) the present value stays and is
    /// returned. May evict one other entry.
    Value Insert(const Key& key, Value value);

    /// Removes the entry of `key`; false when there was none.
    bool Remove(const Key& key);

    /// Removes every entry. The counters stay.
    void Clear();

    const TString& GetName() const { return m_name; }
    uint32_t GetCapacity() const { return m_capacity; }
    RandomCacheStatistics GetStatistics();
    /// Whether `key` is present; neither a lookup nor a hit.
    bool Contains(const Key& key);

private:
    struct EntryData
    {
        Value value;
        uint32_t position; // index in m_slots
    };
    using Entries = std::unordered_map<Key, EntryData, Hash, KeyEqual>;
    using Entry = typename Entries::value_type;

    void EvictOneLocked();

    TReadWriteLock m_lock{0};
    const TString m_name;
    const uint32_t m_capacity;
    // Counted under the read lock by several threads at once, hence atomic.
    std::atomic<uint32_t> m_lookups{0};
    std::atomic<uint32_t> m_hits{0};
    uint32_t m_inserts = 0;
    // Node-based: the addresses in m_slots survive a rehash.
    Entries m_entries;
    std::vector<Entry*> m_slots;
    std::mt19937 m_random; // default seed 5489
};

// Inline implementation

template <typename Key, typename Value, typename Hash, typename KeyEqual>
RandomCache<Key, Value, Hash, KeyEqual>::RandomCache(unsigned capacity, const char16_t* name)
    : m_name(name != nullptr ? TString(name) : TString()),
      m_capacity(std::max<uint32_t>(capacity, kMinimumCapacity))
{
    // One more than the capacity: an insert appends before it evicts.
    m_slots.reserve(size_t(m_capacity) + 1);
    m_entries.reserve(size_t(m_capacity) + 1);
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
bool RandomCache<Key, Value, Hash, KeyEqual>::Find(const Key& key, Value& value)
{
    ScopedReadLock guard(m_lock);
    m_lookups.fetch_add(1, std::memory_order_relaxed);
    const auto it = m_entries.find(key);
    if (it == m_entries.end())
        return false;
    m_hits.fetch_add(1, std::memory_order_relaxed);
    value = it->second.value;
    return true;
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
Value RandomCache<Key, Value, Hash, KeyEqual>::Insert(const Key& key, Value value)
{
    ScopedLock guard(m_lock);
    ++m_inserts;
    const auto inserted =
        m_entries.emplace(key, EntryData{std::move(value), static_cast<uint32_t>(m_slots.size())});
    Entry& entry = *inserted.first;
    if (!inserted.second)
        return entry.second.value;
    m_slots.push_back(&entry);
    if (m_entries.size() > m_capacity)
        EvictOneLocked();
    return entry.second.value;
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
void RandomCache<Key, Value, Hash, KeyEqual>::EvictOneLocked()
{
    // n counts the entry just added, which sits in the last slot; the draw stops one short.
    const uint32_t n = static_cast<uint32_t>(m_slots.size());
    std::uniform_int_distribution<uint32_t> draw(0, n - 2);
    const uint32_t i = draw(m_random);
    Entry* victim = m_slots[i];
    std::swap(m_slots[i], m_slots[n - 2]);
    m_slots[i]->second.position = i;
    m_slots.erase(m_slots.begin() + (n - 2)); // the new entry moves down one
    m_slots[n - 2]->second.position = n - 2;
    m_entries.erase(m_entries.find(victim->first));
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
bool RandomCache<Key, Value, Hash, KeyEqual>::Remove(const Key& key)
{
    ScopedLock guard(m_lock);
    const auto it = m_entries.find(key);
    if (it == m_entries.end())
        return false;
    const uint32_t i = it->second.position;
    std::swap(m_slots[i], m_slots.back());
    m_slots[i]->second.position = i;
    m_slots.pop_back();
    m_entries.erase(it);
    return true;
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
void RandomCache<Key, Value, Hash, KeyEqual>::Clear()
{
    ScopedLock guard(m_lock);
    m_slots.clear();
    m_entries.clear();
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
RandomCacheStatistics RandomCache<Key, Value, Hash, KeyEqual>::GetStatistics()
{
    ScopedReadLock guard(m_lock);
    RandomCacheStatistics s;
    s.capacity = m_capacity;
    s.size = static_cast<uint32_t>(m_entries.size());
    s.lookups = m_lookups.load(std::memory_order_relaxed);
    s.hits = m_hits.load(std::memory_order_relaxed);
    s.inserts = m_inserts;
    return s;
}

template <typename Key, typename Value, typename Hash, typename KeyEqual>
bool RandomCache<Key, Value, Hash, KeyEqual>::Contains(const Key& key)
{
    ScopedReadLock guard(m_lock);
    return m_entries.find(key) != m_entries.end();
}
