#include "murcoredata/data/BinaryCollator.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <thread>

namespace {

const Collator& Binary() { return *BinaryCollatorPool::Singleton()->AcquireCollator(); }

std::string Text(const std::vector<char16_t>& out) { return TString(out.data()).toStdString(); }

} // namespace

TEST(BinaryCollator, ComparesCodeUnits)
{
    const Collator& c = Binary();
    EXPECT_LT(c.Compare(u"B", u"a"), 0);
    EXPECT_GT(c.Compare(u"\u00E4", u"b"), 0);
    EXPECT_EQ(c.Compare(u"abc", u"abc"), 0);
    EXPECT_GT(c.Compare(u"\uFFFF", u"\xD800\xDC00"), 0); // code units, not code points

    // Counted: the longer of two texts equal over the shorter is the greater.
    EXPECT_EQ(c.Compare(u"ab", 2, u"abc", 3), -1);
    EXPECT_EQ(c.Compare(u"abc", 3, u"ab", 2), 1);
    EXPECT_EQ(c.Compare(u"abc", 2, u"abd", 2), 0);
    EXPECT_EQ(c.Compare(u"a\0b", 3, u"a", 1), 1);
    EXPECT_EQ(c.Compare(u"a\0b", 3, u"ab", 2), -1);
    EXPECT_EQ(c.Compare(u"ab", -1, u"ab", 2), 0);

    // A missing text reads as an empty one.
    EXPECT_EQ(c.Compare(nullptr, u""), 0);
    EXPECT_LT(c.Compare(nullptr, u"a"), 0);
    EXPECT_EQ(c.Compare(nullptr, 5, u"", 0), 0);
}

TEST(BinaryCollator, SearchAndReplace)
{
    const Collator& c = Binary();
    int length = 99;
    EXPECT_EQ(c.Search(u"abc", u""), -1);
    EXPECT_EQ(c.Search(u"abcabc", u"bc"), 1);
    EXPECT_EQ(c.Search(u"abcabc", u"bc", 2, &length), 4);
    EXPECT_EQ(length, 2);
    length = 99;
    EXPECT_EQ(c.Search(u"abcabc", u"BC", 0, &length), -1);
    EXPECT_EQ(length, 99); // written only on a match
    EXPECT_EQ(c.Search(u"abc", u"a", 50, nullptr), -1);
    EXPECT_EQ(c.Search(u"abc", u"a", -3, nullptr), 0);
    EXPECT_EQ(c.Search(nullptr, u"a"), -1);

    std::vector<char16_t> out = {u'x', 0};
    c.Replace(out, u"abc", u"", u"z");
    EXPECT_TRUE(out.empty()); // no NUL either
    c.Replace(out, u"aaaa", u"aa", u"b");
    EXPECT_EQ(Text(out), "bb");
    c.Replace(out, u"aaa", u"aa", u"b");
    EXPECT_EQ(Text(out), "ba");
    c.Replace(out, u"The CAT and the cat", u"cat", u"dog");
    EXPECT_EQ(Text(out), "The CAT and the dog");
    c.Replace(out, u"abc", u"abc", u"");
    EXPECT_EQ(out, std::vector<char16_t>{0});
}

TEST(BinaryCollator, StartsAndEndsWith)
{
    const Collator& c = Binary();
    EXPECT_TRUE(c.StartsWith(u"Hello", u"He"));
    EXPECT_FALSE(c.StartsWith(u"Hello", u"he"));
    EXPECT_TRUE(c.StartsWith(u"Hello", u""));
    EXPECT_TRUE(c.StartsWith(u"", u""));
    EXPECT_FALSE(c.StartsWith(u"a", u"ab"));
    EXPECT_TRUE(c.EndsWith(u"Hello", u"llo"));
    EXPECT_FALSE(c.EndsWith(u"Hello", u"LLO"));
    EXPECT_TRUE(c.EndsWith(u"Hello", u""));
    EXPECT_FALSE(c.EndsWith(u"lo", u"llo"));
}

TEST(BinaryCollator, CaseAndTrimUnitByUnit)
{
    const Collator& c = Binary();
    std::vector<char16_t> out;
    c.Upper(out, u"abc xyz 09");
    EXPECT_EQ(Text(out), "ABC XYZ 09");
    EXPECT_EQ(out.size(), 11u);
    c.Lower(out, u"ABC");
    EXPECT_EQ(Text(out), "abc");
    EXPECT_EQ(out.size(), 11u); // grown only, never shrunk
    // Beyond ASCII the C library's wide classes of the current locale decide, unit by unit.
    c.Upper(out, u"\u00E9\u00DF");
    const char16_t e = std::iswlower(0xE9) ? char16_t(std::towupper(0xE9)) : u'\u00E9';
    EXPECT_EQ(out[0], e);
    EXPECT_EQ(out[2], 0); // a sharp s never grows: one unit in, one unit out

    c.Trim(out, u" \t\r\n\v\fa b \t");
    EXPECT_EQ(Text(out), "a b");
    c.LTrim(out, u"  a ");
    EXPECT_EQ(Text(out), "a ");
    c.RTrim(out, u"  a ");
    EXPECT_EQ(Text(out), "  a");
    out.clear();
    c.Trim(out, u"    ");
    EXPECT_EQ(out, std::vector<char16_t>{0});
    out.clear();
    c.Upper(out, nullptr);
    EXPECT_EQ(out, std::vector<char16_t>{0});
}

TEST(BinaryCollator, HashHasSeedOne)
{
    const Collator& c = Binary();
    const char16_t text[] = u"Hello";
    EXPECT_EQ(c.Hash(text), THash32(text, 10, 1));
    EXPECT_NE(c.Hash(text), THash32(text, 10, 0xDEADBEEFu));
    EXPECT_EQ(c.Hash(u""), THash32(u"", 0, 1));
    EXPECT_EQ(c.Hash(nullptr), c.Hash(u""));
    EXPECT_NE(c.Hash(u"a"), c.Hash(u"A"));
}

TEST(BinaryCollatorPool, OneSharedCollatorAndFixedAnswers)
{
    BinaryCollatorPool* pool = BinaryCollatorPool::Singleton();
    EXPECT_EQ(BinaryCollatorPool::Singleton(), pool);
    Collator* mine = pool->AcquireCollator();
    Collator* theirs = nullptr;
    std::thread([&] { theirs = pool->AcquireCollator(); }).join();
    EXPECT_EQ(mine, theirs);
    EXPECT_TRUE(mine->IsEquivalent(BinaryCollator()));

    EXPECT_EQ(pool->GetName(), TString(u"binary"));
    EXPECT_EQ(pool->GetLanguage(), TString(u"binary"));
    EXPECT_EQ(pool->GetLocaleString(), TString(u"BINARY"));
    EXPECT_TRUE(pool->GetDisplayCountry().isEmpty());
    EXPECT_TRUE(pool->GetDisplayLanguage().isEmpty());
    EXPECT_TRUE(pool->IsCaseSensitive());
    EXPECT_EQ(pool->GetLCID(), 1u);
    EXPECT_EQ(pool->GetCmpFlags(), 0u);
    EXPECT_FALSE(pool->HasWordSort());
    EXPECT_FALSE(pool->IsWindowsSpecific());
}
