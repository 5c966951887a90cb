#include "murcoredata/data/StringWithCollation.h"

#include "murcoredata/data/ProbeCollation_test.h"
#include "murcoredata/foundation/AllocationCounter_test.h"
#include "murcoredata/foundation/THash.h"

#include <gtest/gtest.h>

#include <unicode/ucol.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using TestSupport::GetProbeCounters;
using TestSupport::MakeOtherProbeCollation;
using TestSupport::MakeProbeCollation;

static_assert(std::is_base_of<RefCntObject, StringWithCollation>::value, "shared by intrusive count");
static_assert(std::has_virtual_destructor<StringWithCollation>::value, "destroyed through RefCntObject");

namespace {

std::string U8(const TString& text) { return text.toStdString(); }

// THash32 (seed 0xDEADBEEF) of the en_US tertiary sort key from a collator opened by hand,
// the trailing zero byte included: what "LEN_RUS" must hash a text to.
unsigned int EnglishReferenceHash(const char16_t* text)
{
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open("en_US", &status);
    EXPECT_TRUE(U_SUCCESS(status));
    std::vector<uint8_t> key(size_t(ucol_getSortKey(collator, text, -1, nullptr, 0)));
    const int32_t length = ucol_getSortKey(collator, text, -1, key.data(), int32_t(key.size()));
    ucol_close(collator);
    return THash32(key.data(), size_t(length), 0xDEADBEEFu);
}

// The binary collator hashes the code units with the seed 1.
unsigned int BinaryReferenceHash(const TString& text) { return THash32(text.constData(), size_t(text.lengthInBytes()), 1u); }

// A string cell that counts how many of its kind are alive, to see where the last reference goes.
std::atomic<int> s_alive{0};
struct CountedString : StringWithCollation
{
    CountedString(const TString& text, const Collation& collation) : StringWithCollation(text, collation)
    {
        ++s_alive;
    }
    ~CountedString() override { --s_alive; }
};

} // namespace

//===--------------------------------------------------------------------===//
// Construction and lifetime
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, CopiesAndMovesTakeTheCachedHashAndStartUnshared)
{
    const Collation english(u"LEN_RUS", 7);
    const StringWithCollationPtr shared = makeRefCnt<StringWithCollation>(TString(u"abc"), english);
    const StringWithCollationPtr other = shared;
    const unsigned int hash = shared->GetHash();

    StringWithCollation copy(*shared);
    EXPECT_EQ(copy.GetReferenceCount(), 0); // a new object, whatever the source's count
    StringWithCollation moved(std::move(copy));
    EXPECT_EQ(moved.GetReferenceCount(), 0);
    EXPECT_TRUE(moved.HasHash());
    EXPECT_EQ(moved.GetHash(), hash);
    EXPECT_EQ(moved.GetString(), TString(u"abc"));
    EXPECT_EQ(moved.GetCollation(), english);
    EXPECT_EQ(shared->GetReferenceCount(), 2);
    EXPECT_FALSE(StringWithCollation(StringWithCollation(TString(u"x"), english)).HasHash());
    const StringWithCollation byMove(TString(u"abc"), Collation(u"LEN_RUS", 7)); // the moving constructor
    EXPECT_EQ(byMove.GetString(), TString(u"abc"));
    EXPECT_EQ(byMove.GetCollation(), english);

    // makeRefCnt from a moved value: counted once, the hash carried along, not recomputed.
    GetProbeCounters().Reset();
    StringWithCollation local(TString(u"abcd"), MakeProbeCollation());
    EXPECT_EQ(local.GetHash(), 4u);
    const StringWithCollationPtr p = makeRefCnt<StringWithCollation>(std::move(local));
    EXPECT_EQ(p->GetReferenceCount(), 1);
    EXPECT_EQ(p->GetString(), TString(u"abcd"));
    EXPECT_EQ(p->GetHash(), 4u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 1);
    local = *p; // the moved-from value is fit for assignment
    EXPECT_EQ(local.GetString(), TString(u"abcd"));
}

TEST(StringWithCollation, AssignmentTakesTextCollationAndHash)
{
    StringWithCollation target(TString(u"old"), Collation(u"LEN_RUS"));
    target.GetHash();
    ASSERT_TRUE(target.HasHash());

    // An unhashed source clears the target's hash: the old one belongs to the old text.
    const StringWithCollation unhashed(TString(u"new"), GetBinaryCollation());
    target = unhashed;
    EXPECT_EQ(target.GetString(), TString(u"new"));
    EXPECT_EQ(target.GetCollation(), GetBinaryCollation());
    EXPECT_FALSE(target.HasHash());
    EXPECT_EQ(target.GetHash(), BinaryReferenceHash(TString(u"new")));

    StringWithCollation hashed(TString(u"abc"), Collation(u"LEN_RUS"));
    const unsigned int hash = hashed.GetHash();
    target = std::move(hashed);
    EXPECT_EQ(target.GetString(), TString(u"abc"));
    EXPECT_EQ(target.GetCollation(), Collation(u"LEN_RUS"));
    EXPECT_TRUE(target.HasHash());
    EXPECT_EQ(target.GetHash(), hash);

    // Self-assignment, both kinds, changes nothing.
    StringWithCollation& alias = target;
    target = alias;
    target = std::move(alias);
    EXPECT_EQ(target.GetString(), TString(u"abc"));
    EXPECT_EQ(target.GetHash(), hash);
}

//===--------------------------------------------------------------------===//
// Hash
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, HashIsTheCollatorsHashOfTheText)
{
    const Collation english(u"LEN_RUS");
    for (const char16_t* text : {u"", u"A", u"Stra\u00DFe", u"co-op", u"\xD800"}) {
        SCOPED_TRACE(U8(TString(text)));
        const StringWithCollation s(TString(text), english);
        EXPECT_FALSE(s.HasHash());
        EXPECT_EQ(s.GetHash(), EnglishReferenceHash(text));
        EXPECT_TRUE(s.HasHash()); // none of these hashes to 0
        EXPECT_EQ(StringWithCollation(TString(text), GetBinaryCollation()).GetHash(), BinaryReferenceHash(TString(text)));
    }

    GetProbeCounters().Reset(); // computed once, but 0 reads as "not computed": asked every time
    const StringWithCollation s(TString(u"abc"), MakeProbeCollation());
    EXPECT_EQ(s.GetHash() + s.GetHash(), 6u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 1);
    GetProbeCounters().Reset();
    const StringWithCollation empty(TString(), MakeProbeCollation());
    EXPECT_EQ(empty.GetHash(), 0u);
    EXPECT_FALSE(empty.HasHash());
    EXPECT_EQ(empty.GetHash(), 0u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 2);
}

//===--------------------------------------------------------------------===//
// Equality and order
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, EqualityIsTheCollations)
{
    const Collation en(u"LEN_RUS"), en2(u"LEN_RUS_S2"), bin = GetBinaryCollation();
    struct Row { const char16_t* a; int aLength; Collation collationA; const char16_t* b; int bLength; Collation collationB; bool equal; } const rows[] = {
        {u"abc", -1, en, u"abc", -1, en, true},  {u"abc", -1, en, u"ABC", -1, en, false},
        {u"abc", -1, en2, u"ABC", -1, en2, true}, {u"", -1, en, u"", -1, en, true},
        {u"", -1, en, u"a", -1, en, false},
        // Different code units, equal to ICU; unequal to the binary collator.
        {u"\u00E4", -1, en, u"a\u0308", -1, en, true},
        {u"\u00E4", -1, bin, u"a\u0308", -1, bin, false},
        // Equivalent collations: another charset, another name of the same collator.
        {u"abc", -1, Collation(u"LEN_RUS", 1), u"abc", -1, Collation(u"LEN_RUS", 2), true},
        {u"co-op", -1, Collation(u"AS_LEN_RUS_S3"), u"coop", -1, Collation(u"AS_LEN_RUS"), true},
        // Not equivalent: the same text is not the same string.
        {u"abc", -1, en, u"abc", -1, en2, false}, {u"abc", -1, en, u"abc", -1, bin, false},
        // The texts are read up to the first NUL, as they are hashed.
        {u"a\0b", 3, en, u"a\0c", 3, en, true}, {u"a\0b", 3, en, u"ab", 2, en, false},
    };
    for (const Row& row : rows) {
        const StringWithCollation a(TString(row.a, row.aLength), row.collationA);
        const StringWithCollation b(TString(row.b, row.bLength), row.collationB);
        SCOPED_TRACE(U8(a.GetString()) + " [" + U8(row.collationA.GetName()) + "] / " + U8(b.GetString()) + " [" +
                     U8(row.collationB.GetName()) + "]");
        // The same answers before and after both hashes are cached; equal strings hash alike and
        // are not ordered either way.
        for (int cached = 0; cached < 2; ++cached) {
            EXPECT_EQ(a == b, row.equal);
            EXPECT_EQ(b == a, row.equal);
            EXPECT_EQ(a != b, !row.equal);
            if (row.equal) {
                EXPECT_EQ(a.GetHash(), b.GetHash());
                EXPECT_FALSE(a < b || b < a);
            }
            (void)a.GetHash();
            (void)b.GetHash();
        }
    }
}

TEST(StringWithCollation, DifferentCachedHashesRejectWithoutTheCollator)
{
    const Collation probe = MakeProbeCollation();
    const StringWithCollation ab(TString(u"ab"), probe);
    const StringWithCollation abc(TString(u"abc"), probe);
    const StringWithCollation upper(TString(u"AB"), probe);

    // Neither hashed: the collator decides, and no hash is computed for the test.
    GetProbeCounters().Reset();
    EXPECT_FALSE(ab == abc);
    EXPECT_EQ(GetProbeCounters().compares.load(), 1);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 0);

    // One hashed: still the collator.
    ab.GetHash();
    GetProbeCounters().Reset();
    EXPECT_FALSE(ab == abc);
    EXPECT_EQ(GetProbeCounters().compares.load(), 1);

    // Both hashed and different: rejected on the hashes alone.
    abc.GetHash();
    GetProbeCounters().Reset();
    EXPECT_FALSE(ab == abc);
    EXPECT_FALSE(abc == ab);
    EXPECT_EQ(GetProbeCounters().compares.load(), 0);

    // Both hashed and equal: the collator still has the last word.
    upper.GetHash();
    GetProbeCounters().Reset();
    EXPECT_TRUE(ab == upper);
    EXPECT_EQ(GetProbeCounters().compares.load(), 1);
}

TEST(StringWithCollation, ProbePoolsDecideEquivalenceWithoutComparingTexts)
{
    const StringWithCollation a(TString(u"same"), MakeProbeCollation());
    const StringWithCollation b(TString(u"same"), MakeOtherProbeCollation());
    GetProbeCounters().Reset();
    EXPECT_FALSE(a == b);
    EXPECT_EQ(GetProbeCounters().compares.load(), 0);
    // And they order as their collations ("probe" before "probe2"), whatever the texts.
    const StringWithCollation z(TString(u"zzz"), MakeProbeCollation());
    const StringWithCollation y(TString(u"aaa"), MakeOtherProbeCollation());
    EXPECT_TRUE(z < y);
    EXPECT_FALSE(y < z);
    EXPECT_EQ(GetProbeCounters().compares.load(), 0);

    // Two names on one pool are equivalent at once: the order is the texts' though "alpha" < "zeta".
    const StringWithCollation b2(TString(u"b"), MakeProbeCollation(TString(u"alpha")));
    const StringWithCollation a2(TString(u"A"), MakeProbeCollation(TString(u"zeta")));
    EXPECT_FALSE(b2 < a2);
    EXPECT_TRUE(a2 < b2);
    EXPECT_TRUE(StringWithCollation(TString(u"B"), MakeProbeCollation(TString(u"zeta"))) == b2);
}

TEST(StringWithCollation, OrderIsByCollationThenByText)
{
    const Collation en(u"LEN_RUS"), en2(u"LEN_RUS_S2"), bin = GetBinaryCollation();
    struct Row { const char16_t* a; Collation collationA; const char16_t* b; Collation collationB; bool aLess, bLess; } const rows[] = {
        {u"a", en, u"A", en, true, false}, // lower case first at tertiary strength
        {u"a", en2, u"A", en2, false, false},
        {u"a", bin, u"B", bin, false, true}, // code units: "B" is 0x42
        {u"\u00E4", Collation(u"LSV_RSE"), u"z", Collation(u"LSV_RSE"), false, true}, // Swedish sorts it last
        // Not equivalent: the collations decide, by charset and then by name.
        {u"zzz", en, u"aaa", en2, true, false},
        {u"aaa", Collation(u"LEN_RUS", 1), u"zzz", Collation(u"LEN_RUS_S2", 0), false, true},
        {u"aaa", en, u"zzz", bin, true, false}, // "L" before "b"
        // Equivalent: the texts decide, whatever the collations' own order.
        {u"b", Collation(u"LEN_RUS", 1), u"a", Collation(u"LEN_RUS", 2), false, true},
        {u"b", Collation(u"AS_LEN_RUS"), u"a", Collation(u"AS_LEN_RUS_S3"), false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(TString(row.a)) + " [" + U8(row.collationA.GetName()) + "] / " + U8(TString(row.b)) + " [" +
                     U8(row.collationB.GetName()) + "]");
        const StringWithCollation a(TString(row.a), row.collationA);
        const StringWithCollation b(TString(row.b), row.collationB);
        EXPECT_EQ(a < b, row.aLess);
        EXPECT_EQ(b < a, row.bLess);
        EXPECT_FALSE(a < a);
    }
}

TEST(StringWithCollation, WarmHashAndComparisonsAllocateNothing)
{
    const StringWithCollation a(TString(u"Stra\u00DFe"), Collation(u"LEN_RUS"));
    const StringWithCollation b(TString(u"strasse"), Collation(u"LEN_RUS"));
    StringWithCollation c(TString(u"Strasse"), Collation(u"LEN_RUS"));
    // Warm the thread's collator and the sort-key buffer.
    (void)(a == b);
    (void)(a < b);
    (void)StringWithCollation(TString(u"warm-up text long enough to size the key"), Collation(u"LEN_RUS")).GetHash();
    bool equal = true;
    bool less = false;
    const size_t allocations = TestSupport::CountAllocations([&] {
        equal = a == b;
        less = a < b;
        c.GetHash();
    });
    EXPECT_EQ(allocations, 0u);
    EXPECT_FALSE(equal);
    EXPECT_FALSE(less); // "Straße" > "strasse": "ß" against "s" at the primary level
}

//===--------------------------------------------------------------------===//
// Threads
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, SharedStringsAcrossThreads)
{
    // Case variants under a case-insensitive collation, so that some pairs are equal.
    const Collation collation(u"LEN_RUS_S2");
    constexpr int kStrings = 32;
    std::vector<TString> texts;
    for (int i = 0; i < kStrings; ++i) {
        TString text = TString(u"item ") + TString::number(i / 2);
        texts.push_back(i % 2 == 0 ? text : text.toUpper());
    }
    // Expected answers from objects of their own, so that the shared ones stay unhashed and
    // the threads race on the first hash.
    std::vector<unsigned int> hashes;
    std::vector<std::vector<int>> relation(kStrings, std::vector<int>(kStrings));
    for (int i = 0; i < kStrings; ++i) {
        const StringWithCollation a(texts[size_t(i)], collation);
        hashes.push_back(a.GetHash());
        for (int j = 0; j < kStrings; ++j) {
            const StringWithCollation b(texts[size_t(j)], collation);
            relation[size_t(i)][size_t(j)] = a == b ? 0 : (a < b ? -1 : 1);
        }
    }
    ASSERT_EQ(relation[0][1], 0);
    ASSERT_EQ(relation[0][2], -1); // "item 0" < "item 1"

    s_alive = 0;
    constexpr int kThreads = 4;
    std::vector<std::vector<StringWithCollationPtr>> perThread(kThreads);
    {
        std::vector<StringWithCollationPtr> shared;
        for (const TString& text : texts)
            shared.emplace_back(new CountedString(text, collation));
        for (auto& mine : perThread)
            mine = shared;
    } // from here the threads own every string, and one of them destroys each

    std::atomic<int> wrongHashes{0};
    std::atomic<int> wrongRelations{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            // The thread's list goes when the thread ends: the last of them destroys each string.
            std::vector<StringWithCollationPtr> mine = std::move(perThread[size_t(t)]);
            for (int round = 0; round < 100 + 50 * t; ++round) {
                for (int i = 0; i < kStrings; ++i) {
                    const StringWithCollationPtr a = mine[size_t(i)]; // copies race on the count
                    const int j = (i * 7 + round + t) % kStrings;
                    const StringWithCollationPtr b = mine[size_t(j)];
                    if (a->GetHash() != hashes[size_t(i)])
                        ++wrongHashes;
                    const int r = *a == *b ? 0 : (*a < *b ? -1 : 1);
                    if (r != relation[size_t(i)][size_t(j)])
                        ++wrongRelations;
                }
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrongHashes.load(), 0);
    EXPECT_EQ(wrongRelations.load(), 0);
    EXPECT_EQ(s_alive.load(), 0);
}
