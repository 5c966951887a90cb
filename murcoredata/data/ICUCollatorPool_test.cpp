#include "murcoredata/data/ICUCollatorPool.h"

#include "murcoredata/data/Collation.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <unicode/uloc.h>

#include <atomic>
#include <new>
#include <thread>

namespace {

ICUCollatorPool* Pool(const char16_t* name, unsigned int flags = 0)
{
    return ICUCollatorPool::Factory(ICUCollator::Id(TString(name), flags));
}

std::string U8(const TString& text) { return text.toStdString(); }

// Starts `count` threads that run `body(index)` as nearly at once as threads can.
template <typename Body>
void RunTogether(int count, Body body)
{
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t)
        threads.emplace_back([&, t] {
            ready.fetch_add(1);
            while (ready.load() < count)
                std::this_thread::yield();
            body(t);
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

TEST(ICUCollatorPool, OneKeyOnePool)
{
    ICUCollatorPool* a = Pool(u"LEN_RUS");
    EXPECT_EQ(Pool(u"LEN_RUS"), a);
    EXPECT_NE(Pool(u"LEN_RUS", 1), a); // same name, other flags
    EXPECT_NE(Pool(u"LEN_RUS_S3"), a); // same collator, other text
    EXPECT_EQ(a->GetName(), TString(u"LEN_RUS"));
    EXPECT_EQ(a->GetID(), ICUCollator::Id(TString(u"LEN_RUS"), 0));
    EXPECT_EQ(a->AcquireCollator(), a->AcquireICUCollator());
}

TEST(ICUCollatorPool, FieldsFollowTheName)
{
    const unsigned int Any = 0xFFFFFFFFu;
    struct Row
    {
        const char16_t* name;
        unsigned int flags;
        bool caseSensitive;
        const char* language;
        unsigned int lcid; // Any: not checked
        const char* locale;
        unsigned int cmpFlags;
        bool wordSort;
        bool windows;
    } const rows[] = {
        {u"LEN_RUS", 0, true, "en", 0x409, "en_US", 0, false, false},
        {u"AS_LEN_RUS", 0, true, "en", 0x409, "en_US", 4, false, false},
        {u"AS_LEN_RUS_S3", 0, true, "en", 0x409, "en_US", 4, false, false},
        {u"LEN_RUS_S2", 0, false, "en", 0x409, "en_US", 1, false, false},
        {u"AS_LEN_RUS_S2", 0, false, "en", 0x409, "en_US", 5, false, false},
        {u"LEN_RUS_S1", 0x1000, false, "en", 0x409, "en_US", 0x1003, false, false},
        {u"AS_LEN_RUS_S1", 0, false, "en", 0x409, "en_US", 7, false, false},
        // Case level plays no part: accent-insensitive and case-sensitive still reads 3.
        {u"EO_LEN_RUS_S1", 0, false, "en", 0x409, "en_US", 3, false, false},
        // Above tertiary the alternate handling is not looked at.
        {u"AS_LEN_RUS_S4", 0, true, "en", 0x409, "en_US", 0, false, false},
        {u"LEN_RUS_SI", 0, true, "en", 0x409, "en_US", 0, false, false},
        {u"LEN_RUS_VWIN", 0, true, "en", 0x409, "en_US_WIN", 0x80000000u, false, true},
        {u"AS_LEN_RUS_S2_VWIN_WO", 0, false, "en", 0x409, "en_US_WIN", 0x80000005u, true, true},
        {u"LDE_RDE_WO", 0, true, "de", 0x407, "de_DE", 0, true, false},
        {u"LDE_RDE_WX", 0, true, "de", 0x407, "de_DE", 0, false, false},
        // ICU reads no language out of "root", and has no id for it.
        {u"LROOT", 0, true, "", 1024, "root", 0, false, false},
        {u"", 0, true, "", 1024, "", 0, false, false},
        {u"LEN__RUS", 0, true, "en", 0x409, "en_US", 0, false, false},
        {u"LZH_RTW_ZHANT", 0, true, "zh", Any, "zh_TW_HANT", 0, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(TString(row.name)));
        const ICUCollatorPool* pool = Pool(row.name, row.flags);
        EXPECT_EQ(pool->IsCaseSensitive(), row.caseSensitive);
        EXPECT_EQ(U8(pool->GetLanguage()), row.language);
        if (row.lcid != Any) {
            EXPECT_EQ(pool->GetLCID(), row.lcid);
        }
        EXPECT_EQ(U8(pool->GetLocaleString()), row.locale);
        EXPECT_EQ(pool->GetCmpFlags(), row.cmpFlags);
        EXPECT_EQ(pool->HasWordSort(), row.wordSort);
        EXPECT_EQ(pool->IsWindowsSpecific(), row.windows);
    }
    // Only the text "_WIN" marks a Windows locale: a language that spells it does not.
    EXPECT_FALSE(Pool(u"LWINDOWS")->IsWindowsSpecific());
    EXPECT_TRUE(Pool(u"LEN_VWINX")->IsWindowsSpecific());
}

TEST(ICUCollatorPool, DisplayNamesInTheDefaultLocale)
{
    if (std::string(uloc_getDefault()).compare(0, 2, "en") != 0)
        GTEST_SKIP() << "display names are in the process's default locale, " << uloc_getDefault();
    const ICUCollatorPool* pool = Pool(u"LDE_RDE_S2");
    EXPECT_EQ(U8(pool->GetDisplayLanguage()), "German");
    EXPECT_EQ(U8(pool->GetDisplayCountry()), "Germany");
    EXPECT_EQ(U8(Pool(u"LFR")->GetDisplayCountry()), "");
}

TEST(ICUCollatorPool, RejectedNamesRegisterNothing)
{
    for (const char16_t* name : {u"CU_LEN_RUS", u"LEN_RUS_CL", u"len_rus", u"BINARY", u"LEN_RUS_IO"}) {
        SCOPED_TRACE(U8(TString(name)));
        for (int attempt = 0; attempt < 2; ++attempt) {
            try {
                Pool(name);
                ADD_FAILURE() << "expected a failure";
            } catch (const StringException& e) {
                EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x5EA10C35u);
            }
        }
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            Pool(u"RUS");
            ADD_FAILURE() << "expected a failure";
        } catch (const LogicException& e) {
            EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0xCDB3EB65u);
        }
    }
}

TEST(ICUCollatorPool, HostileLocaleTextStillGivesACollator)
{
    // A lone surrogate and an embedded NUL in the language: ICU falls back, nothing breaks.
    const TString withNul(u"LEN\0X_RUS", 9);
    for (const TString& name : {TString(u"L\xD800"), withNul, TString(u"LXX_RYY"), TString(u"L\u00C4")}) {
        SCOPED_TRACE(U8(name));
        ICUCollatorPool* pool = ICUCollatorPool::Factory(ICUCollator::Id(name, 0));
        EXPECT_EQ(pool->GetName(), name);
        EXPECT_LT(pool->AcquireCollator()->Compare(u"a", u"b"), 0);
        EXPECT_NE(pool->GetLCID(), 0u);
    }
}

TEST(ICUCollatorPool, RacingThreadsGetOnePool)
{
    for (unsigned int round = 0; round < 20; ++round) {
        // A key no one has asked for yet: the flags make it new.
        const ICUCollator::Id id(TString(u"LFR_RCA_S2"), 0x10000u + round);
        constexpr int threads = 4;
        ICUCollatorPool* seen[threads] = {};
        int compared[threads] = {};
        RunTogether(threads, [&](int t) {
            seen[t] = ICUCollatorPool::Factory(id);
            // The winner's collator on every thread, the losers' own pools gone.
            compared[t] = seen[t]->AcquireCollator()->Compare(u"C\u00F4te", u"cote");
        });
        for (int t = 0; t < threads; ++t) {
            EXPECT_EQ(seen[t], seen[0]) << "round " << round << " thread " << t;
            EXPECT_GT(compared[t], 0);
        }
        EXPECT_EQ(seen[0]->GetCmpFlags(), (0x10000u + round) | CmpFlags::IgnoreCase);
    }
}

TEST(ICUCollatorPool, EachThreadHasItsOwnCollator)
{
    ICUCollatorPool* pool = Pool(u"LEN_RUS_S2");
    ICUCollator* mine = pool->AcquireICUCollator();
    ICUCollator* theirs = nullptr;
    int compared = -5;
    std::thread([&] {
        theirs = pool->AcquireICUCollator();
        compared = theirs->Compare(u"abc", u"ABC");
        EXPECT_EQ(pool->AcquireICUCollator(), theirs); // stable on its thread
    }).join();
    EXPECT_NE(theirs, mine);
    EXPECT_EQ(compared, 0);
    // A new thread builds a fresh collator with the same answers.
    std::thread([&] { EXPECT_EQ(pool->AcquireICUCollator()->Compare(u"abc", u"ABC"), 0); }).join();
    EXPECT_EQ(pool->AcquireICUCollator(), mine);
}

TEST(ICUCollatorPool, APoolGoneTakesItsCollatorOfThisThread)
{
    // A later pool at the same address must not be served the old pool's collator.
    alignas(ICUCollatorPool) unsigned char storage[sizeof(ICUCollatorPool)];
    auto* first = new (storage) ICUCollatorPool(ICUCollator::Id(TString(u"LEN_RUS_S2"), 0));
    EXPECT_EQ(first->AcquireCollator()->Compare(u"a", u"A"), 0);
    first->~ICUCollatorPool();
    auto* second = new (storage) ICUCollatorPool(ICUCollator::Id(TString(u"LEN_RUS"), 0));
    ASSERT_EQ(static_cast<void*>(second), static_cast<void*>(first));
    EXPECT_LT(second->AcquireCollator()->Compare(u"a", u"A"), 0);
    second->~ICUCollatorPool();
}

TEST(ICUCollatorPool, ManyPoolsFromManyThreadsAtOnce)
{
    // Every thread compares, hashes and searches under every collation, and must get the
    // answers this thread got alone.
    const char16_t* const names[] = {u"LEN_RUS",    u"LEN_RUS_S2",  u"LEN_RUS_S1",   u"AS_LEN_RUS", u"LEN_RUS_WO",
                                     u"LEN_RUS_XO", u"LDE_RDE",     u"LSV_RSE_S2",   u"LFR_RFR_S1", u"LEN_RUS_VWIN",
                                     u"LTR_RTR",    u"LJA_RJP",     u"binary"};
    const char16_t* const texts[] = {u"apple", u"Apple", u"\u00C4pfel", u"co-op", u"coop", u"r\u00E9sum\u00E9",
                                     u"Zebra", u"\u00E5sa", u"item 12", u"item 3", u"\u3042"};
    struct Expected
    {
        std::vector<int> compares;
        std::vector<unsigned int> hashes;
        std::vector<int> searches;
    };
    const auto measure = [&](const Collation& c) {
        Expected e;
        for (const char16_t* a : texts) {
            e.hashes.push_back(c.Hash(a));
            e.searches.push_back(c.Search(a, u"e"));
            for (const char16_t* b : texts) {
                const int r = c.Compare(a, b);
                e.compares.push_back(r < 0 ? -1 : (r > 0 ? 1 : 0));
            }
        }
        return e;
    };
    std::vector<Collation> collations;
    std::vector<Expected> expected;
    for (const char16_t* name : names) {
        collations.emplace_back(name);
        expected.push_back(measure(collations.back()));
    }

    std::atomic<int> mismatches{0};
    RunTogether(4, [&](int t) {
        for (int round = 0; round < 40; ++round)
            for (size_t i = 0; i < collations.size(); ++i) {
                const size_t k = (i + size_t(t) * 3 + size_t(round)) % collations.size();
                const Expected got = measure(collations[k]);
                if (got.compares != expected[k].compares || got.hashes != expected[k].hashes ||
                    got.searches != expected[k].searches)
                    mismatches.fetch_add(1);
            }
    });
    EXPECT_EQ(mismatches.load(), 0);
}
