#include "murcoredata/core/RandomCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

using IntCache = RandomCache<int, int>;

// The keys of `candidates` that the cache holds.
std::set<int> Present(IntCache& cache, const std::set<int>& candidates)
{
    std::set<int> out;
    for (int k : candidates)
        if (cache.Contains(k))
            out.insert(k);
    return out;
}

} // namespace

TEST(RandomCache, CapacityIsAtLeastFive)
{
    IntCache small(2, u"small");
    EXPECT_EQ(small.GetCapacity(), 5u);
    EXPECT_EQ(small.GetName(), TString(u"small"));
    for (int k = 0; k < 10; ++k)
        small.Insert(k, k);
    EXPECT_EQ(small.GetStatistics().size, 5u);

    IntCache zero(0, nullptr);
    EXPECT_EQ(zero.GetCapacity(), 5u);
    EXPECT_TRUE(zero.GetName().isEmpty());
    EXPECT_EQ(IntCache(6).GetCapacity(), 6u);
}

TEST(RandomCache, FindCountsLookupsAndHits)
{
    IntCache cache(8);
    int value = -1;
    EXPECT_FALSE(cache.Find(1, value));
    EXPECT_EQ(value, -1);
    EXPECT_EQ(cache.Insert(1, 10), 10);
    EXPECT_TRUE(cache.Find(1, value));
    EXPECT_EQ(value, 10);
    EXPECT_TRUE(cache.Find(1, value));
    const RandomCacheStatistics s = cache.GetStatistics();
    EXPECT_EQ(s.lookups, 3u);
    EXPECT_EQ(s.hits, 2u);
    EXPECT_EQ(s.inserts, 1u);
    EXPECT_EQ(s.size, 1u);
    EXPECT_EQ(s.capacity, 8u);
}

TEST(RandomCache, AnInsertOfAPresentKeyKeepsTheFirstValue)
{
    IntCache cache(5);
    EXPECT_EQ(cache.Insert(7, 70), 70);
    EXPECT_EQ(cache.Insert(7, 71), 70); // as when another thread inserted first
    int value = 0;
    ASSERT_TRUE(cache.Find(7, value));
    EXPECT_EQ(value, 70);
    EXPECT_EQ(cache.GetStatistics().inserts, 2u);
    EXPECT_EQ(cache.GetStatistics().size, 1u);
}

TEST(RandomCache, OneInsertOverCapacityEvictsOneOlderEntry)
{
    IntCache cache(5);
    const std::set<int> first{0, 1, 2, 3, 4};
    for (int k : first)
        cache.Insert(k, k);
    EXPECT_EQ(Present(cache, first), first);
    cache.Insert(5, 5);
    EXPECT_EQ(cache.GetStatistics().size, 5u);
    EXPECT_TRUE(cache.Contains(5));
    EXPECT_EQ(Present(cache, first).size(), 4u);
}

TEST(RandomCache, TheNewEntryIsNeverTheVictim)
{
    IntCache cache(5);
    for (int k = 0; k < 5000; ++k) {
        cache.Insert(k, k);
        ASSERT_TRUE(cache.Contains(k)) << k;
        ASSERT_EQ(cache.GetStatistics().size, std::min(k + 1, 5));
    }
}

TEST(RandomCache, VictimsAreDrawnUniformly)
{
    // With capacity c, the entry inserted just before is the victim with probability 1/c.
    // A draw that favours the end or the start of the slot array lands far from 1000.
    const int capacity = 10;
    IntCache cache(capacity);
    for (int k = 0; k < capacity; ++k)
        cache.Insert(k, k);
    int previousEvicted = 0;
    const int rounds = 10000;
    for (int k = capacity; k < capacity + rounds; ++k) {
        cache.Insert(k, k);
        if (!cache.Contains(k - 1))
            ++previousEvicted;
    }
    EXPECT_GT(previousEvicted, 800);
    EXPECT_LT(previousEvicted, 1200);
}

TEST(RandomCache, EvictionIsReproducible)
{
    // The generator has its default seed: two caches fed alike keep the same keys.
    IntCache a(7), b(7);
    std::set<int> all;
    for (int k = 0; k < 200; ++k) {
        a.Insert(k, k);
        b.Insert(k, k);
        all.insert(k);
    }
    EXPECT_EQ(Present(a, all), Present(b, all));
}

TEST(RandomCache, RemoveAndClear)
{
    IntCache cache(5);
    for (int k = 0; k < 5; ++k)
        cache.Insert(k, k);
    EXPECT_TRUE(cache.Remove(2));
    EXPECT_FALSE(cache.Remove(2));
    EXPECT_FALSE(cache.Remove(99));
    EXPECT_EQ(Present(cache, {0, 1, 2, 3, 4}), (std::set<int>{0, 1, 3, 4}));
    // The freed place is used before anything is evicted.
    cache.Insert(5, 5);
    EXPECT_EQ(Present(cache, {0, 1, 3, 4, 5}), (std::set<int>{0, 1, 3, 4, 5}));
    cache.Clear();
    EXPECT_EQ(cache.GetStatistics().size, 0u);
    EXPECT_TRUE(Present(cache, {0, 1, 3, 4, 5}).empty());
    // Usable after Clear; the counters stay.
    cache.Insert(1, 1);
    EXPECT_TRUE(cache.Contains(1));
    EXPECT_EQ(cache.GetStatistics().inserts, 7u);
}

TEST(RandomCache, MixedOperationsKeepTheSlotsConsistent)
{
    // Removals move entries between slots; a position left wrong would make a later draw
    // or removal reach the wrong entry (or a freed one, which the sanitizer reports).
    IntCache cache(8);
    std::set<int> model;
    std::mt19937 random(42);
    for (int step = 0; step < 20000; ++step) {
        const int key = int(random() % 24);
        switch (random() % 3) {
        case 0:
        case 1: {
            const bool had = cache.Contains(key);
            cache.Insert(key, key * 3);
            ASSERT_TRUE(cache.Contains(key));
            if (!had) {
                const std::set<int> before = model;
                model = Present(cache, before);
                ASSERT_LE(before.size() - model.size(), 1u);
                model.insert(key);
            }
            break;
        }
        case 2:
            ASSERT_EQ(cache.Remove(key), model.erase(key) == 1);
            break;
        }
        ASSERT_EQ(cache.GetStatistics().size, model.size());
        ASSERT_LE(model.size(), 8u);
        int value = 0;
        if (cache.Find(key, value)) {
            ASSERT_EQ(value, key * 3);
        }
    }
}

TEST(RandomCache, AnEvictedValueLivesOnInTheCallersHands)
{
    RandomCache<int, std::shared_ptr<const TString>> cache(5);
    std::shared_ptr<const TString> kept = cache.Insert(0, std::make_shared<const TString>(u"zero"));
    for (int k = 1; k < 100; ++k)
        cache.Insert(k, std::make_shared<const TString>(TString::number(k)));
    EXPECT_FALSE(cache.Contains(0));
    EXPECT_EQ(*kept, TString(u"zero"));
    EXPECT_EQ(kept.use_count(), 1);
}

TEST(RandomCache, TStringKeys)
{
    RandomCache<TString, int> cache(5, u"names");
    cache.Insert(TString(u"a"), 1);
    int value = 0;
    EXPECT_TRUE(cache.Find(TString(u"a"), value));
    EXPECT_FALSE(cache.Find(TString(u"A"), value));
}

TEST(RandomCache, ConcurrentReadersAndWriters)
{
    // Keys 0..63 over a cache of 16: constant misses, inserts and evictions from four
    // threads while others hit. A found value must always be the one for its key.
    IntCache cache(16);
    const int threads = 4;
    const int perThread = 20000;
    std::atomic<int> wrongValues{0};
    std::atomic<uint32_t> finds{0};
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([&, t] {
            std::mt19937 random(unsigned(t) + 1);
            for (int i = 0; i < perThread; ++i) {
                const int key = int(random() % 64);
                int value = 0;
                finds.fetch_add(1);
                if (cache.Find(key, value)) {
                    if (value != key * 7)
                        wrongValues.fetch_add(1);
                } else if (cache.Insert(key, key * 7) != key * 7) {
                    wrongValues.fetch_add(1);
                }
                if (i % 97 == 0)
                    cache.Remove(int(random() % 64));
            }
        });
    }
    for (auto& th : pool)
        th.join();
    EXPECT_EQ(wrongValues.load(), 0);
    const RandomCacheStatistics s = cache.GetStatistics();
    EXPECT_EQ(s.lookups, finds.load());
    EXPECT_EQ(s.lookups - s.hits, s.inserts); // every miss inserted once
    EXPECT_LE(s.size, 16u);
    EXPECT_GT(s.hits, 0u);
}
