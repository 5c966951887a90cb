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
static_assert(std::is_same<StringWithCollationPtr, RefCntPtr<StringWithCollation>>::value,
              "the pointer a value holds is the default RefCntPtr");

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
unsigned int BinaryReferenceHash(const TString& text)
{
    return THash32(text.constData(), size_t(text.lengthInBytes()), 1u);
}

// A string cell that counts how many of its kind are alive, to see where the last
// reference goes.
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

TEST(StringWithCollation, ConstructorsKeepTextAndCollationAndStartUnhashed)
{
    const Collation english(u"LEN_RUS", 7);
    const TString text(u"Stra\u00DFe");
    const StringWithCollation byCopy(text, english);
    EXPECT_EQ(byCopy.GetString(), text);
    EXPECT_EQ(byCopy.GetCollation(), english);
    EXPECT_EQ(byCopy.GetCollation().GetCharsetID(), 7);
    EXPECT_FALSE(byCopy.HasHash());
    EXPECT_EQ(byCopy.GetReferenceCount(), 0);

    TString movedText(text);
    Collation movedCollation(english);
    const StringWithCollation byMove(std::move(movedText), std::move(movedCollation));
    EXPECT_EQ(byMove.GetString(), text);
    EXPECT_EQ(byMove.GetCollation(), english);
    EXPECT_FALSE(byMove.HasHash());
}

TEST(StringWithCollation, CopiesAndMovesTakeTheCachedHashAndStartUnshared)
{
    const StringWithCollationPtr shared = makeRefCnt<StringWithCollation>(TString(u"abc"), Collation(u"LEN_RUS"));
    const StringWithCollationPtr other = shared;
    ASSERT_EQ(shared->GetReferenceCount(), 2);
    const unsigned int hash = shared->GetHash();

    StringWithCollation copy(*shared);
    EXPECT_EQ(copy.GetReferenceCount(), 0); // a new object, whatever the source's count
    EXPECT_TRUE(copy.HasHash());
    EXPECT_EQ(copy.GetString(), TString(u"abc"));

    StringWithCollation moved(std::move(copy));
    EXPECT_EQ(moved.GetReferenceCount(), 0);
    EXPECT_TRUE(moved.HasHash());
    EXPECT_EQ(moved.GetHash(), hash);
    EXPECT_EQ(moved.GetString(), TString(u"abc"));
    EXPECT_EQ(shared->GetReferenceCount(), 2);

    // An unhashed source gives an unhashed copy.
    const StringWithCollation fresh(TString(u"x"), Collation(u"LEN_RUS"));
    EXPECT_FALSE(StringWithCollation(fresh).HasHash());
}

TEST(StringWithCollation, MakeRefCntFromAMovedStringCountsOne)
{
    GetProbeCounters().Reset();
    StringWithCollation local(TString(u"abcd"), MakeProbeCollation());
    EXPECT_EQ(local.GetHash(), 4u);

    const StringWithCollationPtr p = makeRefCnt<StringWithCollation>(std::move(local));
    ASSERT_TRUE(p);
    EXPECT_EQ(p->GetReferenceCount(), 1);
    EXPECT_EQ(p->GetString(), TString(u"abcd"));
    EXPECT_EQ(p->GetCollation(), MakeProbeCollation());
    EXPECT_TRUE(p->HasHash());
    EXPECT_EQ(p->GetHash(), 4u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 1); // the hash came along, not recomputed

    // The moved-from local is fit for assignment.
    local = *p;
    EXPECT_EQ(local.GetString(), TString(u"abcd"));
    EXPECT_EQ(p->GetReferenceCount(), 1);
}

TEST(StringWithCollation, LastReferenceDestroysOnce)
{
    s_alive = 0;
    {
        StringWithCollationPtr a(new CountedString(TString(u"x"), GetBinaryCollation()));
        StringWithCollationPtr b = a;
        EXPECT_EQ(a->GetReferenceCount(), 2);
        a.reset();
        EXPECT_EQ(s_alive.load(), 1);
        EXPECT_EQ(b->GetReferenceCount(), 1);
    }
    EXPECT_EQ(s_alive.load(), 0);
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
    EXPECT_EQ(target.GetReferenceCount(), 0);
}

//===--------------------------------------------------------------------===//
// Hash
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, HashIsTheCollatorsHashOfTheText)
{
    const Collation english(u"LEN_RUS");
    for (const char16_t* text : {u"", u"a", u"A", u"abc", u"\u00E4", u"Stra\u00DFe", u"co-op", u"\xD800"}) {
        SCOPED_TRACE(U8(TString(text)));
        const StringWithCollation s(TString(text), english);
        EXPECT_FALSE(s.HasHash());
        EXPECT_EQ(s.GetHash(), EnglishReferenceHash(text));
        EXPECT_TRUE(s.HasHash()); // none of these hashes to 0
        EXPECT_EQ(StringWithCollation(TString(text), GetBinaryCollation()).GetHash(), BinaryReferenceHash(TString(text)));
    }
    // Known values of the probe engine (the length), by hand.
    EXPECT_EQ(StringWithCollation(TString(u"hello"), MakeProbeCollation()).GetHash(), 5u);
}

TEST(StringWithCollation, HashIsComputedOnceAndZeroIsNeverCached)
{
    GetProbeCounters().Reset();
    const StringWithCollation s(TString(u"abc"), MakeProbeCollation());
    EXPECT_EQ(s.GetHash(), 3u);
    EXPECT_EQ(s.GetHash(), 3u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 1);

    // The probe hashes the empty text to 0, which reads as "not computed": asked every time.
    GetProbeCounters().Reset();
    const StringWithCollation empty(TString(), MakeProbeCollation());
    EXPECT_EQ(empty.GetHash(), 0u);
    EXPECT_FALSE(empty.HasHash());
    EXPECT_EQ(empty.GetHash(), 0u);
    EXPECT_EQ(GetProbeCounters().hashes.load(), 2);
}

TEST(StringWithCollation, EqualStringsHashAlike)
{
    // Built differently but equal: case under a case-insensitive collation, composed and
    // decomposed forms, ignorable punctuation, an equivalent collation with another charset.
    struct Pair
    {
        const char16_t* a;
        const char16_t* collationA;
        unsigned short charsetA;
        const char16_t* b;
        const char16_t* collationB;
        unsigned short charsetB;
    } const rows[] = {
        {u"abc", u"LEN_RUS_S2", 0, u"ABC", u"LEN_RUS_S2", 0},
        {u"\u00E4", u"LEN_RUS", 0, u"a\u0308", u"LEN_RUS", 0},
        {u"co-op", u"AS_LEN_RUS", 0, u"coop", u"AS_LEN_RUS_S3", 0},
        {u"abc", u"LEN_RUS", 1, u"abc", u"LEN_RUS", 2},
    };
    for (const Pair& row : rows) {
        SCOPED_TRACE(U8(TString(row.a)) + " / " + U8(TString(row.b)));
        const StringWithCollation a(TString(row.a), Collation(row.collationA, row.charsetA));
        const StringWithCollation b(TString(row.b), Collation(row.collationB, row.charsetB));
        ASSERT_TRUE(a == b);
        EXPECT_EQ(a.GetHash(), b.GetHash());
        EXPECT_TRUE(a == b); // and still equal with both hashes cached
    }
}

//===--------------------------------------------------------------------===//
// Equality and order
//===--------------------------------------------------------------------===//

TEST(StringWithCollation, EqualityIsTheCollations)
{
    struct Row
    {
        const char16_t* a;
        int aLength;
        Collation collationA;
        const char16_t* b;
        int bLength;
        Collation collationB;
        bool equal;
    } const rows[] = {
        {u"abc", -1, Collation(u"LEN_RUS"), u"abc", -1, Collation(u"LEN_RUS"), true},
        {u"abc", -1, Collation(u"LEN_RUS"), u"ABC", -1, Collation(u"LEN_RUS"), false},
        {u"abc", -1, Collation(u"LEN_RUS_S2"), u"ABC", -1, Collation(u"LEN_RUS_S2"), true},
        {u"abc", -1, Collation(u"LEN_RUS"), u"abd", -1, Collation(u"LEN_RUS"), false},
        {u"", -1, Collation(u"LEN_RUS"), u"", -1, Collation(u"LEN_RUS"), true},
        {u"", -1, Collation(u"LEN_RUS"), u"a", -1, Collation(u"LEN_RUS"), false},
        // Different code units, equal to ICU; unequal to the binary collator.
        {u"\u00E4", -1, Collation(u"LEN_RUS"), u"a\u0308", -1, Collation(u"LEN_RUS"), true},
        {u"\u00E4", -1, GetBinaryCollation(), u"a\u0308", -1, GetBinaryCollation(), false},
        {u"abc", -1, GetBinaryCollation(), u"ABC", -1, GetBinaryCollation(), false},
        // Equivalent collations: another charset, another name of the same collator.
        {u"abc", -1, Collation(u"LEN_RUS", 1), u"abc", -1, Collation(u"LEN_RUS", 2), true},
        {u"co-op", -1, Collation(u"AS_LEN_RUS_S3"), u"coop", -1, Collation(u"AS_LEN_RUS"), true},
        // Not equivalent: the same text is not the same string.
        {u"abc", -1, Collation(u"LEN_RUS"), u"abc", -1, Collation(u"LEN_RUS_S2"), false},
        {u"abc", -1, Collation(u"LEN_RUS"), u"abc", -1, GetBinaryCollation(), false},
        {u"abc", -1, GetBinaryCollation(), u"abc", -1, Collation(u"LEN_RUS"), false},
        // The texts are read up to the first NUL, as they are hashed.
        {u"a\0b", 3, Collation(u"LEN_RUS"), u"a\0c", 3, Collation(u"LEN_RUS"), true},
        {u"a\0b", 3, Collation(u"LEN_RUS"), u"ab", 2, Collation(u"LEN_RUS"), false},
    };
    for (const Row& row : rows) {
        const StringWithCollation a(TString(row.a, row.aLength), row.collationA);
        const StringWithCollation b(TString(row.b, row.bLength), row.collationB);
        SCOPED_TRACE(U8(a.GetString()) + " [" + U8(row.collationA.GetName()) + "] / " + U8(b.GetString()) + " [" +
                     U8(row.collationB.GetName()) + "]");
        EXPECT_EQ(a == b, row.equal);
        EXPECT_EQ(b == a, row.equal);
        EXPECT_EQ(a != b, !row.equal);
        // The same answers once both hashes are cached, and equal strings hash alike.
        const bool sameHash = a.GetHash() == b.GetHash();
        if (row.equal) {
            EXPECT_TRUE(sameHash);
        }
        EXPECT_EQ(a == b, row.equal);
        EXPECT_EQ(b == a, row.equal);
        // Equal strings are not ordered either way.
        if (row.equal) {
            EXPECT_FALSE(a < b);
            EXPECT_FALSE(b < a);
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
    EXPECT_FALSE(ab.HasHash());
    EXPECT_FALSE(abc.HasHash());

    // One hashed: still the collator.
    ab.GetHash();
    GetProbeCounters().Reset();
    EXPECT_FALSE(ab == abc);
    EXPECT_EQ(GetProbeCounters().compares.load(), 1);
    EXPECT_FALSE(abc.HasHash());

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

TEST(StringWithCollation, NonEquivalentCollationsAreUnequalWithoutComparingTexts)
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
}

TEST(StringWithCollation, OrderIsByCollationThenByText)
{
    struct Row
    {
        const char16_t* a;
        Collation collationA;
        const char16_t* b;
        Collation collationB;
        bool aLess;
        bool bLess;
    } const rows[] = {
        {u"a", Collation(u"LEN_RUS"), u"b", Collation(u"LEN_RUS"), true, false},
        {u"a", Collation(u"LEN_RUS"), u"A", Collation(u"LEN_RUS"), true, false}, // lower case first at tertiary strength
        {u"a", Collation(u"LEN_RUS_S2"), u"A", Collation(u"LEN_RUS_S2"), false, false},
        {u"a", Collation(u"LEN_RUS"), u"B", Collation(u"LEN_RUS"), true, false},
        {u"a", GetBinaryCollation(), u"B", GetBinaryCollation(), false, true}, // code units: "B" is 0x42
        {u"\u00E4", Collation(u"LEN_RUS"), u"b", Collation(u"LEN_RUS"), true, false},
        {u"\u00E4", Collation(u"LSV_RSE"), u"z", Collation(u"LSV_RSE"), false, true}, // Swedish sorts it last
        // Not equivalent: the collations decide, by charset and then by name.
        {u"zzz", Collation(u"LEN_RUS"), u"aaa", Collation(u"LEN_RUS_S2"), true, false},
        {u"aaa", Collation(u"LEN_RUS", 1), u"zzz", Collation(u"LEN_RUS_S2", 0), false, true},
        {u"aaa", Collation(u"LEN_RUS"), u"zzz", GetBinaryCollation(), true, false}, // "L" before "b"
        // Equivalent: the texts decide, whatever the collations' own order.
        {u"b", Collation(u"LEN_RUS", 1), u"a", Collation(u"LEN_RUS", 2), false, true},
        {u"a", Collation(u"LEN_RUS", 2), u"b", Collation(u"LEN_RUS", 1), true, false},
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

TEST(StringWithCollation, EquivalentCollationsOnOnePoolCompareTexts)
{
    // Two names on one pool are equivalent at once, so the order is the texts' even though
    // "alpha" < "zeta" as collations.
    const StringWithCollation a(TString(u"b"), MakeProbeCollation(TString(u"alpha")));
    const StringWithCollation b(TString(u"A"), MakeProbeCollation(TString(u"zeta")));
    EXPECT_FALSE(a < b);
    EXPECT_TRUE(b < a);
    EXPECT_TRUE(StringWithCollation(TString(u"B"), MakeProbeCollation(TString(u"zeta"))) == a);
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
