#include "murcoredata/foundation/RefCnt.h"
#include "murcoredata/utility/MruCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Cache = MruCache<unsigned, int, 1>;

bool Holds(Cache& cache, unsigned key)
{
    int out = -1;
    return cache.Find(key, out);
}

} // namespace

TEST(MruCache, EvictsTheLeastRecentlyUsed)
{
    Cache cache(2);
    cache.Insert(1, 10, 1);
    cache.Insert(2, 20, 1);
    int out = 0;
    ASSERT_TRUE(cache.Find(1, out)); // 1 is now the most recent
    EXPECT_EQ(out, 10);
    cache.Insert(3, 30, 1);
    EXPECT_TRUE(Holds(cache, 1));
    EXPECT_FALSE(Holds(cache, 2));
    EXPECT_TRUE(Holds(cache, 3));
    EXPECT_EQ(cache.GetUsed(), CacheDimensions<1>(2));
    EXPECT_EQ(cache.GetCount(), 2u);
}

TEST(MruCache, FindLeavesOutUntouchedOnAMiss)
{
    Cache cache(4);
    int out = 77;
    EXPECT_FALSE(cache.Find(5, out));
    EXPECT_EQ(out, 77);
}

TEST(MruCache, CostsAreCountedReplacedAndRefusedAboveCapacity)
{
    Cache cache(10);
    cache.Insert(1, 1, 4);
    cache.Insert(2, 2, 11); // could never fit: refused, nothing changes
    EXPECT_FALSE(Holds(cache, 2));
    EXPECT_EQ(cache.GetUsed(), CacheDimensions<1>(4));
    cache.Insert(1, 5, 7); // same key, other cost: used moves by the difference
    EXPECT_EQ(cache.GetUsed(), CacheDimensions<1>(7));
    int out = 0;
    ASSERT_TRUE(cache.Find(1, out));
    EXPECT_EQ(out, 5);
    cache.Insert(3, 3, 0); // a cost of 0 counts as 1
    EXPECT_EQ(cache.GetUsed(), CacheDimensions<1>(8));
    cache.Insert(4, 4, 3); // 11 > 10: the least recent (1) goes
    EXPECT_FALSE(Holds(cache, 1));
    EXPECT_EQ(cache.GetUsed(), CacheDimensions<1>(4));
    cache.Clear();
    EXPECT_TRUE(cache.GetUsed().IsZero());
    cache.Insert(9, 9, 1);
    EXPECT_TRUE(Holds(cache, 9));
}

TEST(MruCache, ACacheOfCapacityZeroHoldsNothing)
{
    Cache cache(0);
    cache.Insert(1, 1, 1);
    cache.Insert(2, 2, 0);
    EXPECT_FALSE(Holds(cache, 1));
    EXPECT_FALSE(Holds(cache, 2));
    EXPECT_TRUE(cache.GetUsed().IsZero());
}

TEST(CacheDimensions, SubtractingBelowZeroIsALogicFailure)
{
    CacheDimensions<2> a;
    a.m_dimensions[0] = 3;
    a.m_dimensions[1] = 1;
    CacheDimensions<2> b;
    b.m_dimensions[0] = 1;
    b.m_dimensions[1] = 2;
    EXPECT_TRUE(Exceeds(b, a)); // one axis over is enough
    try {
        a -= b;
        FAIL() << "no assertion";
    } catch (const LogicException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x2D8C440Du);
        EXPECT_NE(e.GetMessagesFront().indexOf(TString(u"m_dimensions[i] >= rhs.m_dimensions[i]")), -1);
    }
}

namespace {

std::atomic<int> s_live{0};

struct Payload : RefCntObject
{
    explicit Payload(int v) : value(v) { ++s_live; }
    ~Payload() override { --s_live; }
    int value;
};

} // namespace

TEST(MruCache, FoundValuesOutliveEvictionAndThreadsShareTheCache)
{
    {
        MruCache<unsigned, RefCntPtr<Payload>, 1> cache(8);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&cache, t] {
                for (int i = 0; i < 5000; ++i) {
                    const unsigned key = unsigned((i * 7 + t) % 16);
                    RefCntPtr<Payload> found;
                    if (cache.Find(key, found))
                        EXPECT_EQ(found->value, int(key));
                    else
                        cache.Insert(key, makeRefCnt<Payload>(int(key)), 1);
                }
            });
        for (auto& t : threads)
            t.join();
        EXPECT_LE(cache.GetCount(), 8u);
        RefCntPtr<Payload> kept;
        cache.Insert(100, makeRefCnt<Payload>(100), 1);
        ASSERT_TRUE(cache.Find(100, kept));
        cache.Clear();
        EXPECT_EQ(kept->value, 100); // our reference keeps it alive
    }
    EXPECT_EQ(s_live.load(), 0);
}
