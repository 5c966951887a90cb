#include "murcoredata/data/Collation.h"

#include "murcoredata/data/BinaryCollator.h"
#include "murcoredata/data/CollationAdapter.h"
#include "murcoredata/data/ICUCollatorPool.h"

#include "murcoredata/foundation/Caught_test.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace {

using C = Collation;

std::string U8(const TString& text) { return text.toStdString(); }

enum Relation
{
    Less,
    Equal
};

struct Link
{
    Relation relation;
    const char16_t* text;
};

// Each line against the one before, as ICU's collation test files write orders: the
// relation must hold both ways round, and equal texts must hash alike.
void CheckChain(const Collation& c, std::initializer_list<Link> chain)
{
    const Link* previous = nullptr;
    for (const Link& link : chain) {
        if (previous != nullptr) {
            SCOPED_TRACE(U8(c.GetName()) + ": " + U8(TString(previous->text)) + " vs " + U8(TString(link.text)));
            if (link.relation == Less) {
                EXPECT_LT(c.Compare(previous->text, link.text), 0);
                EXPECT_GT(c.Compare(link.text, previous->text), 0);
            } else {
                EXPECT_EQ(c.Compare(previous->text, link.text), 0);
                EXPECT_EQ(c.Compare(link.text, previous->text), 0);
                EXPECT_EQ(c.Hash(previous->text), c.Hash(link.text));
            }
        }
        previous = &link;
    }
}

} // namespace

//===--------------------------------------------------------------------===//
// Construction
//===--------------------------------------------------------------------===//

TEST(Collation, ConstructorsFindTheirPools)
{
    EXPECT_EQ(U8(Collation().GetName()), "LROOT");
    EXPECT_EQ(Collation(), GetUnknownCollation());
    EXPECT_EQ(Collation(nullptr, 0).GetPool(), GetUnknownCollation().GetPool());
    EXPECT_EQ(Collation(u"binary").GetPool(), BinaryCollatorPool::Singleton());
    EXPECT_EQ(Collation(1, 0x80000007u, 0).GetPool(), BinaryCollatorPool::Singleton());

    const Collation byId(0x409, 1, 7);
    EXPECT_EQ(U8(byId.GetName()), "LEN_RUS_S2");
    EXPECT_TRUE(byId.HasCharsetID());
    EXPECT_EQ(byId.GetCmpFlags(), 1u);
    EXPECT_FALSE(byId.HasWordSort()); // no word sort from a locale id

    const Collation byLocale("en-US", false, C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctDefault, 0);
    EXPECT_EQ(byLocale.GetPool(), Collation(u"LEN_RUS_S2").GetPool());
    EXPECT_EQ(U8(byLocale.GetLocale()), "en_US");
    EXPECT_EQ(U8(byLocale.GetLanguage()), "en");

    const Collation created = Collation::Create(u"LEN_RUS", 0x1000, 2);
    EXPECT_EQ(created.GetCmpFlags(), 0x1000u);
    EXPECT_NE(created.GetPool(), Collation(u"LEN_RUS").GetPool());
    EXPECT_EQ(created, Collation(u"LEN_RUS", 2)); // identity is name and charset only

    const Collation given(TString(u"anything"), 3, BinaryCollatorPool::Singleton());
    EXPECT_EQ(given.GetPool(), BinaryCollatorPool::Singleton());
}

TEST(Collation, OnlyTheExactBinaryNameIsBinary)
{
    for (const char16_t* name : {u"BINARY", u"Binary", u"binaryx"}) {
        SCOPED_TRACE(U8(TString(name)));
        EXPECT_THROW(Collation{name}, StringException);
    }
    // A shorter text is an ICU name, too, and a readable one at that.
    EXPECT_EQ(Collation(u"").GetPool(), ICUCollatorPool::Factory(ICUCollator::Id(TString(), 0)));
}

//===--------------------------------------------------------------------===//
// Orders
//===--------------------------------------------------------------------===//

TEST(Collation, OrdersUnderLocalesAndStrengths)
{
    CheckChain(Collation(u"LEN_RUS"), {{Less, u"a"}, {Less, u"A"}, {Less, u"\u00E4"}, {Equal, u"a\u0308"},
                                       {Less, u"\u00C4"}, {Less, u"b"}, {Less, u"B"}});
    // Case ignored: "a" before "B", where code units put "B" first.
    CheckChain(Collation(u"LEN_RUS_S2"), {{Less, u"a"}, {Equal, u"A"}, {Less, u"\u00E4"}, {Equal, u"\u00C4"},
                                          {Less, u"B"}, {Equal, u"b"}});
    // Accents and case ignored.
    CheckChain(Collation(u"LEN_RUS_S1"), {{Less, u"a"}, {Equal, u"\u00E4"}, {Equal, u"A"}, {Equal, u"\u00C5"},
                                          {Less, u"b"}, {Less, u"r\u00E9sum\u00E9"}, {Equal, u"RESUME"}});
    // Accents ignored, case kept.
    CheckChain(Collation(u"EO_LEN_RUS_S1"), {{Less, u"a"}, {Equal, u"\u00E4"}, {Less, u"A"}, {Equal, u"\u00C4"},
                                             {Less, u"b"}});
    // Swedish puts å, ä, ö after z; English does not.
    CheckChain(Collation(u"LSV_RSE"), {{Less, u"z"}, {Less, u"\u00E5"}, {Less, u"\u00E4"}, {Less, u"\u00F6"}});
    CheckChain(Collation(u"LEN_RUS"), {{Less, u"\u00E5"}, {Less, u"z"}});
    // Word sort: apostrophe and hyphen go.
    CheckChain(Collation(u"LEN_RUS_WO"), {{Less, u"co"}, {Less, u"coop"}, {Equal, u"co-op"}, {Equal, u"co'op"},
                                          {Less, u"coops"}});
    // Shifted punctuation is ignored at the first three levels.
    CheckChain(Collation(u"AS_LEN_RUS"), {{Less, u"ab"}, {Equal, u"a b"}, {Equal, u"a-b"}, {Equal, u"a.b!"},
                                          {Less, u"abc"}});
    // Digits ignored.
    CheckChain(Collation(u"LEN_RUS_XO"), {{Less, u"a"}, {Less, u"ab"}, {Equal, u"a1b"}, {Equal, u"a2b99"},
                                          {Less, u"abc"}});
    // Code units: capitals first, accents last.
    CheckChain(GetBinaryCollation(), {{Less, u"B"}, {Less, u"a"}, {Less, u"b"}, {Less, u"\u00E4"}});
}

TEST(Collation, EqualTextsHashAlike)
{
    const char16_t* const texts[] = {u"", u"a", u"A", u"\u00E4", u"a\u0308", u"\u00C4", u"co-op", u"coop",
                                     u"CO-OP", u"a1b", u"ab", u"a b", u"stra\u00DFe", u"strasse", u"\u212B",
                                     u"\u00C5", u"\xD800", u"\xDC00", u"\uFFFD"};
    for (const char16_t* name : {u"LEN_RUS", u"LEN_RUS_S2", u"LEN_RUS_S1", u"EO_LEN_RUS_S1", u"AS_LEN_RUS",
                                 u"LEN_RUS_WO", u"LEN_RUS_XO", u"LDE_RDE_S1", u"binary"}) {
        const Collation c(name);
        for (const char16_t* a : texts)
            for (const char16_t* b : texts)
                if (c.Compare(a, b) == 0) {
                    EXPECT_EQ(c.Hash(a), c.Hash(b)) << U8(TString(name)) << ": " << U8(TString(a)) << " / " << U8(TString(b));
                }
    }
}

TEST(Collation, CountedCompareSeesEmbeddedNuls)
{
    const TString withNul(u"a\0b", 3);
    const TString plain(u"ab");
    EXPECT_LT(GetBinaryCollation().Compare(withNul, plain), 0); // NUL is a code unit below "b"
    EXPECT_EQ(GetBinaryCollation().Compare(withNul.constData(), plain.constData()), -1); // "a" against "ab"
}

//===--------------------------------------------------------------------===//
// Identity
//===--------------------------------------------------------------------===//

TEST(Collation, IdentityIsNameAndCharset)
{
    const Collation a(u"LEN_RUS", 1), b(u"LEN_RUS", 2), c(u"AS_LEN_RUS_S3", 1), d(u"AS_LEN_RUS", 1);
    EXPECT_NE(a, b);
    EXPECT_TRUE(a.IsEquivalent(b)); // charset plays no part
    EXPECT_NE(c, d);
    EXPECT_TRUE(Equivalent(c, d)); // two names, one collator
    EXPECT_FALSE(Equivalent(a, Collation(u"LEN_RUS_S2", 1)));
    EXPECT_FALSE(Equivalent(a, GetBinaryCollation()));
    EXPECT_TRUE(Equivalent(GetBinaryCollation(), Collation(1, 0, 9)));

    // By charset first, then by name.
    EXPECT_LT(Collation(u"LEN_RUS", 1), Collation(u"AS_LEN_RUS", 2));
    EXPECT_LT(Collation(u"AS_LEN_RUS", 1), Collation(u"LEN_RUS", 1));
    EXPECT_FALSE(a < a);
    EXPECT_TRUE(a.IsLess(b));
}

TEST(Collation, HashOfTheNameCachedAndCopied)
{
    const Collation a(u"LEN_RUS", 1);
    const TString name(u"LEN_RUS");
    const unsigned int expected = THash32(name.constData(), size_t(name.lengthInBytes()), 0xDEADBEEFu);
    EXPECT_EQ(a.GetHashCode(), expected);
    EXPECT_EQ(Collation(u"LEN_RUS", 2).GetHashCode(), expected); // charset plays no part
    EXPECT_EQ(CollationHashFunc()(a), expected);
    Collation assigned;
    assigned = a.CopyWithCharset(5);
    EXPECT_EQ(assigned.GetCharsetID(), 5);
    EXPECT_EQ(assigned.GetHashCode(), expected);

    std::unordered_set<Collation, CollationHashFunc> set = {a, Collation(u"LEN_RUS", 1), Collation(u"LEN_RUS", 2)};
    EXPECT_EQ(set.size(), 2u);
}

//===--------------------------------------------------------------------===//
// Derived collations
//===--------------------------------------------------------------------===//

TEST(Collation, UseWordSortSwitchesPool)
{
    Collation c = Collation::Create(u"AS_LEN_RUS", 0x1000, 4);
    const unsigned int before = c.GetHashCode();
    c.UseWordSort(true);
    EXPECT_EQ(U8(c.GetName()), "AS_LEN_RUS_WO");
    EXPECT_TRUE(c.HasWordSort());
    EXPECT_TRUE(c.IsApproximation());
    EXPECT_EQ(c.GetCharsetID(), 4);
    EXPECT_EQ(c.GetCmpFlags(), 0x1004u); // the old pool's flags are kept
    EXPECT_EQ(c.Compare(u"co-op", u"coop"), 0);
    c.UseWordSort(true); // already on: nothing changes
    EXPECT_EQ(U8(c.GetName()), "AS_LEN_RUS_WO");
    c.UseWordSort(false);
    EXPECT_EQ(U8(c.GetName()), "AS_LEN_RUS");
    EXPECT_EQ(c.GetHashCode(), before);
    EXPECT_FALSE(c.IsApproximation());

    Collation binary = GetBinaryCollation();
    binary.UseWordSort(false);
    EXPECT_EQ(binary, GetBinaryCollation());
    EXPECT_EQ(TestSupport::Caught([&] { binary.UseWordSort(true); })->GetErrorInfo().GetError().GetCode(), 0x9B62A87Du);
}

TEST(Collation, CloneGoesThroughTheLocaleId)
{
    const Collation windows(0x409, 0x80000001u, 3);
    EXPECT_EQ(U8(windows.GetName()), "LEN_RUS_S2_VWIN");
    EXPECT_TRUE(windows.IsWindowsSpecific());
    EXPECT_EQ(U8(windows.GetLocale()), "en_US_WIN");

    EXPECT_EQ(windows.Clone(true), windows);
    const Collation dropped = windows.Clone(false);
    EXPECT_EQ(U8(dropped.GetName()), "LEN_RUS_S2");
    EXPECT_EQ(dropped.GetCharsetID(), 3);
    EXPECT_EQ(dropped.GetCmpFlags(), 1u);
    EXPECT_FALSE(dropped.IsWindowsSpecific());

    // A name reaches the same name through its id and implied flags.
    EXPECT_EQ(U8(Collation(u"LDE_RDE_S1").Clone(false).GetName()), "LDE_RDE_S1");
    EXPECT_EQ(Collation(u"binary", 6).Clone(false), Collation(u"binary", 6));
}

TEST(Collation, DescriptionAndLocaleIds)
{
    EXPECT_EQ(U8(Collation(u"LEN_RUS", 0x1F).GetDescription()), "charset=0x1f en_US (LEN_RUS)");
    EXPECT_EQ(U8(GetBinaryCollation().GetDescription()), "charset=0x0 BINARY (binary)");
    // Only "C" and "binary" exactly are binary; unknown and empty locales give the default.
    const std::pair<const char16_t*, unsigned int> rows[] = {{u"C", 1},       {u"binary", 1},     {u"BINARY", 77},
                                                             {u"c", 77},      {u"en-US", 0x409}, {u"de_DE", 0x407},
                                                             {u"", 77}};
    for (const auto& row : rows)
        EXPECT_EQ(Collation::LCIDFromLocale(TString(row.first), 77), row.second) << U8(TString(row.first));
}

//===--------------------------------------------------------------------===//
// Forwarding
//===--------------------------------------------------------------------===//

TEST(Collation, TextOperationsReachTheThreadsCollator)
{
    const Collation c(u"LEN_RUS_S2");
    int length = 0;
    EXPECT_EQ(c.Search(u"two two", u"TWO", 1, &length), 4);
    EXPECT_EQ(length, 3);
    EXPECT_TRUE(c.StartsWith(u"Hello", u"HE"));
    EXPECT_TRUE(c.EndsWith(u"Hello", u"LO"));
    std::vector<char16_t> out;
    c.Replace(out, u"a-A-a", u"a", u"b");
    EXPECT_EQ(U8(TString(out.data())), "b-b-b");
    using Map = void (Collation::*)(std::vector<char16_t>&, const char16_t*) const;
    const std::pair<Map, const char*> maps[] = {{&Collation::Upper, " X Y "}, {&Collation::Lower, " x y "},
                                                {&Collation::LTrim, "x Y "}, {&Collation::RTrim, " x Y"},
                                                {&Collation::Trim, "x Y"}};
    for (const auto& map : maps) {
        (c.*map.first)(out, u" x Y ");
        EXPECT_EQ(U8(TString(out.data())), map.second);
    }

    const CollatorRef ref = c.GetCollator();
    const CollatorRef copy = ref;
    EXPECT_EQ(&*copy, &*ref); // the same thread's collator
    EXPECT_EQ(copy.GetPool(), c.GetPool());
}

//===--------------------------------------------------------------------===//
// The adapter
//===--------------------------------------------------------------------===//

TEST(CollationAdapter, PlainStringsAndNumbers)
{
    EXPECT_EQ(CollationAdapter::LCIDFromLocale(u"C", 5), 1u);
    EXPECT_EQ(CollationAdapter::LCIDFromLocale(u"fr-FR", 5), 0x40Cu);
    EXPECT_EQ(CollationAdapter::LCIDFromLocale(nullptr, 5), 5u);
    EXPECT_EQ(U8(CollationAdapter::GetCollation(0x409, 4, 0).GetName()), "AS_LEN_RUS_S3");
    EXPECT_EQ(CollationAdapter::GetCollation(1, 0, 0), GetBinaryCollation());

    const Collation named =
        CollationAdapter::GetCollation(u"LEN_RUS_S1", C::CaseIgnore, C::AccentDefault, C::SortWord, C::PunctDefault, 3);
    EXPECT_EQ(U8(named.GetName()), "LEN_RUS_S2_WO");
    EXPECT_EQ(named.GetCharsetID(), 3);
    EXPECT_EQ(CollationAdapter::GetCollation(u"binary", C::CaseDefault, C::AccentDefault, C::SortDefault,
                                             C::PunctDefault, 0),
              GetBinaryCollation());
    EXPECT_EQ(CollationAdapter::GetCollation(nullptr, C::CaseDefault, C::AccentDefault, C::SortDefault,
                                             C::PunctDefault, 0)
                  .GetPool(),
              Collation(u"").GetPool());
}
