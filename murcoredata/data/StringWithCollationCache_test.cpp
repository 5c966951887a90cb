#include "murcoredata/data/StringWithCollationCache.h"

#include "murcoredata/data/ProbeCollation_test.h"
#include "murcoredata/foundation/AllocationCounter_test.h"
#include "murcoredata/utility/CoreDataOptions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using TestSupport::MakeProbeCollation;

namespace {

// A string the caller holds once is cached exactly when the cache holds the other reference.
bool IsCached(const StringWithCollationPtr& p) { return p->GetReferenceCount() == 2; }

} // namespace

//===--------------------------------------------------------------------===//
// Hits and misses
//===--------------------------------------------------------------------===//

TEST(StringWithCollationCache, AHitSharesTheObjectAndAllocatesNothing)
{
    const Collation english(u"LEN_RUS", 3);
    StringWithCollationCache cache(english, 10);
    EXPECT_EQ(cache.GetCollation(), english);
    EXPECT_EQ(cache.GetCount(), 0u);

    const StringWithCollationPtr first = cache.Lookup(TString(u"Stra\u00DFe"));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->GetString(), TString(u"Stra\u00DFe"));
    EXPECT_EQ(first->GetCollation(), english);
    EXPECT_EQ(first->GetCollation().GetCharsetID(), 3);
    EXPECT_TRUE(first->HasHash()); // the key was its hash
    EXPECT_EQ(first->GetHash(), StringWithCollation(TString(u"Stra\u00DFe"), english).GetHash());
    EXPECT_TRUE(IsCached(first));
    EXPECT_EQ(cache.GetCount(), 1u);

    StringWithCollationPtr second;
    const TString same(u"Stra\u00DFe");
    const size_t allocations = TestSupport::CountAllocations([&] { second = cache.Lookup(same); });
    EXPECT_EQ(second.get(), first.get());
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(first->GetReferenceCount(), 3);
    EXPECT_EQ(cache.GetCount(), 1u);
}

TEST(StringWithCollationCache, CapacityZeroHoldsNothing)
{
    StringWithCollationCache cache(Collation(u"LEN_RUS"), 0);
    const StringWithCollationPtr a = cache.Lookup(TString(u"a"));
    const StringWithCollationPtr b = cache.Lookup(TString(u"a"));
    ASSERT_TRUE(a);
    ASSERT_TRUE(b);
    EXPECT_NE(a.get(), b.get());
    EXPECT_TRUE(*a == *b);
    EXPECT_EQ(a->GetReferenceCount(), 1);
    EXPECT_EQ(b->GetReferenceCount(), 1);
    EXPECT_EQ(cache.GetCount(), 0u);
}

TEST(StringWithCollationCache, TheLeastRecentlyUsedGoesFirst)
{
    StringWithCollationCache cache(Collation(u"LEN_RUS"), 2);
    const StringWithCollationPtr a = cache.Lookup(TString(u"a"));
    const StringWithCollationPtr b = cache.Lookup(TString(u"b"));
    const StringWithCollationPtr a2 = cache.Lookup(TString(u"a")); // a is now the most recent
    const StringWithCollationPtr c = cache.Lookup(TString(u"c"));  // so b goes
    EXPECT_EQ(a2.get(), a.get());
    EXPECT_EQ(cache.GetCount(), 2u);
    EXPECT_EQ(a->GetReferenceCount(), 3); // a, a2 and the cache
    EXPECT_EQ(b->GetReferenceCount(), 1); // evicted, but alive for its holder
    EXPECT_EQ(b->GetString(), TString(u"b"));
    EXPECT_TRUE(IsCached(c));

    EXPECT_EQ(cache.Lookup(TString(u"a")).get(), a.get());
    EXPECT_EQ(cache.Lookup(TString(u"c")).get(), c.get());
    const StringWithCollationPtr b2 = cache.Lookup(TString(u"b")); // a new object; a goes now
    EXPECT_NE(b2.get(), b.get());
    EXPECT_EQ(a->GetReferenceCount(), 2);
    EXPECT_TRUE(IsCached(c));
}

//===--------------------------------------------------------------------===//
// One string per key
//===--------------------------------------------------------------------===//

TEST(StringWithCollationCache, ACollationEqualVariantReplacesTheCachedString)
{
    StringWithCollationCache cache(Collation(u"LEN_RUS_S2"), 10); // case is ignored
    const StringWithCollationPtr lower = cache.Lookup(TString(u"abc"));
    const StringWithCollationPtr upper = cache.Lookup(TString(u"ABC"));
    ASSERT_NE(lower.get(), upper.get());
    EXPECT_EQ(upper->GetString(), TString(u"ABC")); // the caller's text, not the cached one
    EXPECT_TRUE(*lower == *upper);
    EXPECT_EQ(lower->GetHash(), upper->GetHash()); // one key
    EXPECT_EQ(cache.GetCount(), 1u);
    EXPECT_EQ(lower->GetReferenceCount(), 1); // replaced
    EXPECT_TRUE(IsCached(upper));

    EXPECT_EQ(cache.Lookup(TString(u"ABC")).get(), upper.get());
    const StringWithCollationPtr lowerAgain = cache.Lookup(TString(u"abc"));
    EXPECT_NE(lowerAgain.get(), lower.get());
    EXPECT_EQ(lowerAgain->GetString(), TString(u"abc"));
    EXPECT_EQ(upper->GetReferenceCount(), 1);
}

TEST(StringWithCollationCache, KeyedByTheHashAloneSoCollisionsReplace)
{
    // The probe hashes a text to its length: "ab", "cd" and "ef" share a key.
    StringWithCollationCache cache(MakeProbeCollation(), 10);
    const StringWithCollationPtr ab = cache.Lookup(TString(u"ab"));
    const StringWithCollationPtr abc = cache.Lookup(TString(u"abc"));
    const StringWithCollationPtr cd = cache.Lookup(TString(u"cd"));
    EXPECT_EQ(cache.GetCount(), 2u);
    EXPECT_EQ(cd->GetString(), TString(u"cd"));
    EXPECT_EQ(ab->GetReferenceCount(), 1);
    EXPECT_TRUE(IsCached(abc));
    EXPECT_TRUE(IsCached(cd));
    EXPECT_EQ(cache.Lookup(TString(u"cd")).get(), cd.get());
    EXPECT_NE(cache.Lookup(TString(u"ab")).get(), ab.get());
}

TEST(StringWithCollationCache, AHashOfZeroIsAKeyLikeAnyOther)
{
    // The probe hashes the empty text to 0, which the string never caches.
    StringWithCollationCache cache(MakeProbeCollation(), 10);
    const StringWithCollationPtr first = cache.Lookup(TString());
    EXPECT_FALSE(first->HasHash());
    EXPECT_EQ(cache.Lookup(TString()).get(), first.get());
    EXPECT_EQ(cache.GetCount(), 1u);
}

TEST(StringWithCollationCache, TextsAreMatchedByCodeUnitsNotByCollation)
{
    // Composed and decomposed forms are equal to ICU but are not the same cell text.
    StringWithCollationCache cache(Collation(u"LEN_RUS"), 10);
    const StringWithCollationPtr composed = cache.Lookup(TString(u"\u00E4"));
    const StringWithCollationPtr decomposed = cache.Lookup(TString(u"a\u0308"));
    EXPECT_NE(composed.get(), decomposed.get());
    EXPECT_EQ(decomposed->GetString(), TString(u"a\u0308"));
    EXPECT_TRUE(*composed == *decomposed);
    EXPECT_EQ(cache.GetCount(), 1u);
}

//===--------------------------------------------------------------------===//
// Lifetime and options
//===--------------------------------------------------------------------===//

TEST(StringWithCollationCache, DestroyingTheCacheGivesBackItsReferences)
{
    StringWithCollationPtr kept;
    {
        StringWithCollationCache cache(Collation(u"LEN_RUS"), 4);
        kept = cache.Lookup(TString(u"kept"));
        cache.Lookup(TString(u"dropped"));
        EXPECT_EQ(kept->GetReferenceCount(), 2);
    }
    EXPECT_EQ(kept->GetReferenceCount(), 1);
    EXPECT_EQ(kept->GetString(), TString(u"kept"));
}

TEST(StringWithCollationCache, ThreadLocalPoolSizeIsKeptForTheLayersAbove)
{
    EXPECT_EQ(StringWithCollationCache::GetStringPoolThreadLocalCacheSize(), 1000u);
    CoreDataOptions::SetStringPoolThreadLocalCacheSize(0); // accepted, not validated
    EXPECT_EQ(StringWithCollationCache::GetStringPoolThreadLocalCacheSize(), 0u);
    EXPECT_EQ(g_stringPoolThreadLocalCacheSize, 0u);
    StringWithCollationCache::SetStringPoolThreadLocalCacheSize(123456);
    EXPECT_EQ(g_stringPoolThreadLocalCacheSize, 123456u);

    // Nothing here is sized by it: a cache holds what its constructor said.
    CoreDataOptions::SetStringPoolThreadLocalCacheSize(1);
    StringWithCollationCache cache(Collation(u"LEN_RUS"), 3);
    for (const char16_t* text : {u"a", u"b", u"c", u"d"})
        cache.Lookup(TString(text));
    EXPECT_EQ(cache.GetCount(), 3u);
    CoreDataOptions::SetStringPoolThreadLocalCacheSize(1000);
}

//===--------------------------------------------------------------------===//
// Threads
//===--------------------------------------------------------------------===//

TEST(StringWithCollationCache, LookupFromManyThreads)
{
    // More texts than room, in case pairs that fight over one key (case is ignored), so that
    // hits, misses, replacements and evictions all race.
    const Collation collation(u"LEN_RUS_S2");
    StringWithCollationCache cache(collation, 16);
    std::vector<TString> texts;
    for (int i = 0; i < 24; ++i) {
        const TString text = TString(u"value ") + TString::number(i);
        texts.push_back(text);
        texts.push_back(text.toUpper());
    }
    constexpr int kThreads = 4;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < 400; ++round) {
                // Each thread walks the texts with a stride of its own, asking twice each time.
                const TString& text = texts[size_t((round * (2 * t + 1) + t) % int(texts.size()))];
                for (int k = 0; k < 2; ++k) {
                    const StringWithCollationPtr p = cache.Lookup(text);
                    if (!p || p->GetString() != text || p->GetCollation() != collation)
                        ++wrong;
                }
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_LE(cache.GetCount(), 16u);

    // Quiet again, the cache behaves as before.
    const StringWithCollationPtr a = cache.Lookup(texts[0]);
    EXPECT_EQ(cache.Lookup(texts[0]).get(), a.get());
}
