#include "murcoredata/foundation/CoreThreadContext.h"
#include "murcoredata/foundation/InitOnce.h"
#include "murcoredata/foundation/Locks.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/RefCnt.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

std::atomic<int> s_alive{0};

struct Counted : RefCntObject
{
    Counted() { ++s_alive; }
    ~Counted() override { --s_alive; }
    int value = 7;
};

} // namespace

TEST(RefCntPtr, CountsCopiesMovesAndDestroysAtZero)
{
    {
        RefCntPtr<Counted> a = makeRefCnt<Counted>();
        EXPECT_EQ(a->GetReferenceCount(), 1);
        RefCntPtr<Counted> b = a;
        EXPECT_EQ(a->GetReferenceCount(), 2);
        RefCntPtr<Counted> c = std::move(b);
        EXPECT_FALSE(b);
        EXPECT_EQ(a->GetReferenceCount(), 2);
        c = nullptr;
        EXPECT_EQ(a->GetReferenceCount(), 1);
        a = a; // self-assignment keeps the object
        EXPECT_EQ(a->value, 7);
        EXPECT_EQ(s_alive.load(), 1);
    }
    EXPECT_EQ(s_alive.load(), 0);
}

TEST(RefCntPtr, NullUseIsReportedNotACrash)
{
    RefCntPtr<Counted> empty;
    EXPECT_THROW((void)*empty, LogicException);
    try {
        (void)empty->value;
        FAIL() << "no exception";
    } catch (const LogicException& e) {
        EXPECT_EQ(e.GetMessagesFront(), TString(u"Null pointer dereferenced"));
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x00BF554Au);
        EXPECT_EQ(e.GetErrorInfo().GetError().GetName(), TString(u"LogicException_LogicAssert_0x00BF554A"));
    }
}

TEST(RefCntPtr, CountsStayExactUnderTwoRacingThreads)
{
    RefCntPtr<Counted> shared = makeRefCnt<Counted>();
    auto churn = [&] {
        for (int i = 0; i < 200000; ++i) {
            RefCntPtr<Counted> copy = shared;
            RefCntPtr<Counted> moved = std::move(copy);
            (void)moved;
        }
    };
    std::thread t1(churn), t2(churn);
    t1.join();
    t2.join();
    EXPECT_EQ(shared->GetReferenceCount(), 1);
    shared.reset();
    EXPECT_EQ(s_alive.load(), 0);
}

namespace {

std::atomic<int> s_factoryCalls{0};

struct SlowFactory
{
    std::vector<int> operator()(void*) const
    {
        ++s_factoryCalls;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return std::vector<int>{1, 2, 3};
    }
};

} // namespace

TEST(InitOnce, RacingFirstCallersGetOneObject)
{
    static InitOnceSlot slot;
    using Helper = InitOnceHelper<false, true, SlowFactory, std::vector<int>>;
    std::vector<std::thread> threads;
    std::vector<const std::vector<int>*> seen(8);
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([i, &seen] { seen[i] = &Helper::Get(slot); });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(s_factoryCalls.load(), 1);
    for (const auto* p : seen) {
        EXPECT_EQ(p, seen[0]);
        EXPECT_EQ(p->size(), 3u);
    }
    // The checked form refuses a slot that holds another type.
    EXPECT_EQ((InitOnceHelper<false, true, SlowFactory, int>::GetAddress(slot)), nullptr);
}

TEST(InitOnce, SharedHoldsTheObjectBehindAPointer)
{
    struct Factory
    {
        int operator()(void* context) const { return *static_cast<int*>(context); }
    };
    static InitOnceSlot slot;
    int seed = 41;
    using Helper = InitOnceHelper<true, true, Factory, int>;
    EXPECT_EQ(++Helper::Get(slot, &seed), 42);
    EXPECT_EQ(Helper::Get(slot), 42);
}

TEST(Locks, ReadersShareAndWritersExclude)
{
    TReadWriteLock lock(0);
    int value = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 10000; ++i) {
                if (i % 4 == 0) {
                    ScopedLock write(lock);
                    ++value;
                } else {
                    ScopedReadLock read(lock);
                    (void)value;
                }
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(value, 4 * 2500);

    TRecursiveMutex mutex(0);
    AutoSynchronize outer(mutex, 1, __FILE__, __func__, __LINE__);
    AutoSynchronize inner(mutex, 2, __FILE__, __func__, __LINE__); // re-entry does not deadlock
}

TEST(CoreThreadContext, SessionObjectsAreSharedAndThreadObjectsAreNot)
{
    EXPECT_FALSE(CoreThreadContext::HasSessionId());
    EXPECT_TRUE(CoreThreadContext::GetGenericObject(TString(u"locale")).empty());

    auto session = std::make_shared<CoreSession>(TString(u"s-1"));
    session->SetObject(TString(u"locale"), std::make_shared<TString>(u"de_DE"));
    CoreThreadContext::SetSession(session);
    EXPECT_TRUE(CoreThreadContext::HasSessionId());
    ASSERT_TRUE(CoreThreadContext::GetObject<TString>(TString(u"locale")));
    EXPECT_EQ(*CoreThreadContext::GetObject<TString>(TString(u"locale")), TString(u"de_DE"));
    EXPECT_FALSE(CoreThreadContext::GetObject<int>(TString(u"locale"))); // wrong type gives null

    CoreThreadContext::SetGenericUnsynchronizedObject(TString(u"k"), std::make_shared<boost::any>(5));
    std::thread other([session] {
        EXPECT_FALSE(CoreThreadContext::HasSessionId());
        EXPECT_EQ(CoreThreadContext::GetGenericUnsynchronizedObject(TString(u"k")), nullptr);
        CoreThreadContext::SetSession(session);
        EXPECT_TRUE(CoreThreadContext::GetObject<TString>(TString(u"locale")) != nullptr);
    });
    other.join();
    ASSERT_NE(CoreThreadContext::GetGenericUnsynchronizedObject(TString(u"k")), nullptr);
    EXPECT_EQ(boost::any_cast<int>(*CoreThreadContext::GetGenericUnsynchronizedObject(TString(u"k"))), 5);
    CoreThreadContext::SetSession(nullptr);
    CoreThreadContext::SetGenericUnsynchronizedObject(TString(u"k"), nullptr);
}
