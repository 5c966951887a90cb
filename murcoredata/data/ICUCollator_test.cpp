#include "murcoredata/data/ICUCollator.h"

#include "murcoredata/data/ICUCollatorPool.h"
#include "murcoredata/foundation/Caught_test.h"
#include "murcoredata/foundation/LogCapture_test.h"
#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <unicode/ucol.h>

#include <functional>
#include <memory>

namespace {

using Attrs = std::vector<std::pair<ICUCollator::Attr, ICUColAttributeValue>>;

// A collator of its own, outside any pool.
std::unique_ptr<ICUCollator> Make(const char16_t* name)
{
    return std::make_unique<ICUCollator>(nullptr, ICUCollator::Id(TString(name), 0), CollationSpec::Parse(TString(name)));
}

// The NUL-terminated text of an output buffer, as UTF-8 for readable failures.
std::string Text(const std::vector<char16_t>& out) { return TString(out.data()).toStdString(); }

std::string U8(const char16_t* text) { return TString(text).toStdString(); }

using TestSupport::ExpectLogicFailure;
using TestSupport::ScopedLogCapture;

// The failure is the comparison error, and the log block names `detail`.
void ExpectComparisonError(const std::function<void()>& call, const std::string& detail)
{
    ScopedLogCapture capture;
    try {
        call();
        ADD_FAILURE() << "expected a comparison error with " << detail;
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x5EA10C35u);
        EXPECT_EQ(e.GetMessagesFront().toStdString(), "String comparison error.");
    }
    ASSERT_EQ(capture.sink->lines.size(), 1u);
    EXPECT_NE(capture.sink->lines[0].second.find("Error: " + detail), std::string::npos) << capture.sink->lines[0].second;
}

// Reference hash: THash32 of the sort key of a collator opened by hand.
unsigned int ReferenceHash(const char* locale, UColAttributeValue strength, const char16_t* text)
{
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale, &status);
    ucol_setAttribute(collator, UCOL_STRENGTH, strength, &status);
    std::vector<uint8_t> key(size_t(ucol_getSortKey(collator, text, -1, nullptr, 0)));
    const int32_t length = ucol_getSortKey(collator, text, -1, key.data(), int32_t(key.size()));
    ucol_close(collator);
    return THash32(key.data(), size_t(length), 0xDEADBEEFu);
}

} // namespace

//===--------------------------------------------------------------------===//
// Reading names
//===--------------------------------------------------------------------===//

TEST(CollationSpec, ReadsLocaleAndAttributes)
{
    namespace M = MurICU;
    using C = ICUCollator;
    struct Row { const char16_t* name; const char* locale; Attrs attributes; } const rows[] = {
        {u"AS_LEN_RUS_VWIN_WO", "en_US_WIN", {{C::AlternateHandling, M::UCOL_SHIFTED}, {C::WordSort, M::UCOL_ON}}},
        {u"LROOT", "root", {}},
        {u"LZH_RTW_ZHANT", "zh_TW_HANT", {}}, // the region stands before the script
        {u"LZH_ZHANS", "zh_HANS", {}},
        {u"LEN__RUS_", "en_US", {}}, // empty parts are skipped
        {u"LEN_LDE", "de", {}},      // a later locale part of a letter wins
        {u"", "", {}},
        {u"AX_EO_EX_EQ_HO_HX", "",
         {{C::AlternateHandling, M::UCOL_DEFAULT}, {C::CaseLevel, M::UCOL_ON}, {C::CaseLevel, M::UCOL_OFF},
          {C::CaseLevel, M::UCOL_DEFAULT}, {C::HiraganaQuaternaryMode, M::UCOL_ON},
          {C::HiraganaQuaternaryMode, M::UCOL_DEFAULT}}},
        {u"S1_S2_S3_S4_SI_SD", "",
         {{C::Strength, M::UCOL_PRIMARY}, {C::Strength, M::UCOL_SECONDARY}, {C::Strength, M::UCOL_TERTIARY},
          {C::Strength, M::UCOL_QUATERNARY}, {C::Strength, M::UCOL_IDENTICAL}, {C::Strength, M::UCOL_DEFAULT}}},
        {u"WO_WX_WQ_XO_XX_XQ", "",
         {{C::WordSort, M::UCOL_ON}, {C::WordSort, M::UCOL_OFF}, {C::WordSort, M::UCOL_OFF},
          {C::IgnoreDigits, M::UCOL_ON}, {C::IgnoreDigits, M::UCOL_OFF}, {C::IgnoreDigits, M::UCOL_OFF}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.name));
        const CollationSpec spec = CollationSpec::Parse(TString(row.name));
        EXPECT_EQ(spec.locale, row.locale);
        EXPECT_EQ(spec.attributes, row.attributes);
    }
}

TEST(CollationSpec, LettersTheReaderDoesNotKnowThrow)
{
    // C, F, I and N are written by the name writers but not read; lower case is no letter.
    for (const char16_t* part : {u"CU", u"FO", u"IO", u"NO", u"len", u"BINARY", u"1", u"\u00C4X", u"\xD800"}) {
        SCOPED_TRACE(U8(part));
        ExpectComparisonError([&] { CollationSpec::Parse(TString(u"LEN_") + TString(part)); },
                              "Unhandled specifier, " + U8(part));
    }
}

TEST(CollationSpec, MalformedPartsFailTheirAssertions)
{
    const std::string two = "i->length() == 2";
    const std::string digit = "(*i)[1] >= static_cast<TCodeUnit>(u'1') && (*i)[1] <= static_cast<TCodeUnit>(u'4')";
    const std::string locale = "!locale.isEmpty()";
    const struct Row { const char16_t* name; uint32_t code; const std::string& condition; } rows[] = {
        {u"A", 0xE687D8D8, two},      {u"E", 0xADB2FEC6, two},       {u"H", 0x49944190, two},
        {u"S12", 0xB25D7AEC, two},    {u"W", 0x5578E62F, two},       {u"XOX", 0x3CCC1F54, two},
        {u"S0", 0xEC4A8574, digit},   {u"S5", 0xEC4A8574, digit},    {u"RUS", 0xCDB3EB65, locale},
        {u"ZHANS", 0x9DDD9F39, locale}, {u"VWIN", 0x54A0A9A9, locale},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.name));
        ExpectLogicFailure([&] { CollationSpec::Parse(TString(row.name)); }, row.code, row.condition);
    }
}

//===--------------------------------------------------------------------===//
// Comparison, rules and attributes
//===--------------------------------------------------------------------===//

// The orders of the strengths are checked through Collation (Collation_test.cpp).
TEST(ICUCollator, ComparesCountedMissingAndBrokenTexts)
{
    const auto c = Make(u"LEN_RUS");
    // U+0000 is completely ignorable to ICU, so an embedded NUL is too.
    EXPECT_EQ(c->Compare(u"a\0b", 3, u"ab", 2), 0);
    EXPECT_LT(c->Compare(u"abc", 2, u"abc", 3), 0);
    // A lone surrogate is ordered, and consistently so.
    EXPECT_GT(c->Compare(u"\xD800", u"a"), 0);
    EXPECT_LT(c->Compare(u"a", u"\xD800"), 0);
    EXPECT_EQ(c->Compare(nullptr, u"abc"), 0); // ICU's answer for a missing text
}

TEST(ICUCollator, WordSortIgnoresApostropheAndHyphenOnly)
{
    const auto plain = Make(u"LEN_RUS");
    const auto word = Make(u"LEN_RUS_WO");
    for (const auto& pair : {std::make_pair(u"it's", u"its"), std::make_pair(u"-'-", u"")}) {
        SCOPED_TRACE(U8(pair.first));
        EXPECT_NE(plain->Compare(pair.first, pair.second), 0);
        EXPECT_EQ(word->Compare(pair.first, pair.second), 0);
        EXPECT_EQ(word->Hash(pair.first), word->Hash(pair.second));
    }
    EXPECT_NE(word->Compare(u"co.op", u"coop"), 0);
}

TEST(ICUCollator, RulesKeepEarlierAttributes)
{
    // The strength comes before the rule in the name; reopening on the rules must keep it.
    const auto c = Make(u"LEN_RUS_S1_WO");
    EXPECT_EQ(c->Compare(u"Co-\u00D6p", u"coop"), 0);
    ICUColAttributeValue strength;
    c->GetAttribute(MurICU::UCOL_STRENGTH, strength);
    EXPECT_EQ(strength, MurICU::UCOL_PRIMARY);

    EXPECT_EQ(Make(u"LEN_RUS_WO_XO")->Compare(u"co-op 12", u"coop "), 0); // both rules at once
    EXPECT_NE(Make(u"LEN_RUS_XO")->Compare(u"a-b", u"ab"), 0);
}

TEST(ICUCollator, OnlyTheWindowsEnglishLocaleHasItsRule)
{
    // In the root order "@" stands before "#"; the Windows English rule puts it right after.
    const auto windows = Make(u"LEN_RUS_VWIN");
    EXPECT_LT(Make(u"LEN_RUS")->Compare(u"@", u"#"), 0);
    EXPECT_GT(windows->Compare(u"@", u"#"), 0);
    EXPECT_LT(windows->Compare(u"@", u"%"), 0);
    EXPECT_LT(Make(u"LDE_RDE_VWIN")->Compare(u"@", u"#"), 0);
    EXPECT_EQ(windows->GetLocale(), "en_US_WIN");
}

TEST(ICUCollator, AttributeFailures)
{
    const auto c = Make(u"LEN_RUS");
    for (int attr : {8, 11}) {
        SCOPED_TRACE(attr);
        ExpectLogicFailure([&] { c->SetAttribute(ICUCollator::Attr(attr), MurICU::UCOL_ON); }, 0xABF34D3D,
                           "static_cast<MurICU::ICUColAttribute>(attr) < MurICU::UCOL_ATTRIBUTE_COUNT");
    }
    ExpectComparisonError([&] { c->SetAttribute(ICUCollator::Strength, MurICU::UCOL_ON); },
                          "U_ILLEGAL_ARGUMENT_ERROR, LEN_RUS");
    // Word sort and ignore digits do nothing but on.
    c->SetAttribute(ICUCollator::WordSort, MurICU::UCOL_OFF);
    c->SetAttribute(ICUCollator::IgnoreDigits, MurICU::UCOL_DEFAULT);
    EXPECT_NE(c->Compare(u"co-op1", u"coop"), 0);

    // A rule ICU cannot parse leaves the collator as it was.
    c->SetAttribute(ICUCollator::Strength, MurICU::UCOL_SECONDARY);
    ExpectComparisonError([&] { c->AddRules(u"&a<<<"); }, "U_");
    EXPECT_EQ(c->Compare(u"abc", u"ABC"), 0);

    // A locale text ICU refuses to open.
    ExpectComparisonError(
        [&] {
            CollationSpec spec;
            spec.locale = std::string(300, 'x');
            ICUCollator(nullptr, ICUCollator::Id(TString(u"LX"), 0), spec);
        },
        "U_");
}

TEST(ICUCollator, EscapesInRulesStandForCodeUnits)
{
    const auto c = Make(u"LEN_RUS");
    c->AddRules(u"&\\u0000='x'"); // "x" ignorable like U+0000
    EXPECT_EQ(c->Compare(u"axb", u"ab"), 0);
    c->AddRules(u"&\\u006A='y'"); // upper-case hex digits too: y = j
    EXPECT_EQ(c->Compare(u"y", u"j"), 0);
    EXPECT_NO_THROW(c->AddRules(u"&\\u12<'q'")); // a short escape quotes a "u", then "12"
}

//===--------------------------------------------------------------------===//
// Hashing
//===--------------------------------------------------------------------===//

TEST(ICUCollator, HashIsTheHashOfICUsSortKey)
{
    const auto tertiary = Make(u"LEN_RUS");
    const auto secondary = Make(u"LEN_RUS_S2");
    for (const char16_t* text : {u"", u"Hello, World", u"\u00C5ngstr\u00F6m", u"\xD800x", u"\u4E2D\u6587"}) {
        SCOPED_TRACE(U8(text));
        EXPECT_EQ(tertiary->Hash(text), ReferenceHash("en_US", UCOL_TERTIARY, text));
        EXPECT_EQ(secondary->Hash(text), ReferenceHash("en_US", UCOL_SECONDARY, text));
    }
    EXPECT_EQ(tertiary->Hash(nullptr), tertiary->Hash(nullptr)); // stable, and no crash
}

TEST(ICUCollator, LongSortKeysTakeTheResizePath)
{
    // A thousand Latin letters overflow the 512 key bytes a fresh collator offers.
    std::u16string longText;
    for (int i = 0; i < 1000; ++i)
        longText += char16_t(u'a' + i % 26);
    const std::u16string longerText = longText + longText + longText;

    const auto fresh = Make(u"LEN_RUS");
    const auto grown = Make(u"LEN_RUS");
    EXPECT_EQ(grown->Hash(longerText.c_str()), ReferenceHash("en_US", UCOL_TERTIARY, longerText.c_str()));
    EXPECT_EQ(fresh->Hash(longText.c_str()), ReferenceHash("en_US", UCOL_TERTIARY, longText.c_str()));
    EXPECT_EQ(grown->Hash(longText.c_str()), fresh->Hash(longText.c_str()));
    EXPECT_EQ(grown->Hash(u"abc"), fresh->Hash(u"abc"));
}

//===--------------------------------------------------------------------===//
// Searching
//===--------------------------------------------------------------------===//

TEST(ICUCollator, SearchFindsCollationEqualText)
{
    // The last rows find the match at another length: combining marks, and "ß" against "ss".
    struct Row { const char16_t* name; const char16_t* text; const char16_t* pattern; int start, at, length; } const rows[] = {
        {u"LEN_RUS", u"Hello world", u"World", 0, -1, 0},  {u"LEN_RUS", u"abcabc", u"bc", 2, 4, 2},
        {u"LEN_RUS", u"abcabc", u"bc", -5, 1, 2},          {u"LEN_RUS_S1", u"x R\u00E9sum\u00E9", u"resume", 0, 2, 6},
        {u"LEN_RUS_S1", u"Re\u0301sume\u0301!", u"r\u00E9sum\u00E9", 0, 0, 8},
        {u"LEN_RUS_S1", u"die Stra\u00DFe", u"strasse", 0, 4, 6},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.text) + " / " + U8(row.pattern));
        int length = 99; // a miss still writes it
        EXPECT_EQ(Make(row.name)->Search(row.text, row.pattern, row.start, &length), row.at);
        EXPECT_EQ(length, row.length);
    }
}

TEST(ICUCollator, SearchAnswersMinusOneWhereItCannotSearch)
{
    const auto c = Make(u"LEN_RUS");
    int length = 99;
    EXPECT_EQ(c->Search(u"abc", u""), -1); // a binary find would say 0
    EXPECT_EQ(c->Search(nullptr, u"a"), -1);
    EXPECT_EQ(c->Search(u"abc", nullptr), -1);
    EXPECT_EQ(c->Search(u"", u"a", 0, &length), -1);
    EXPECT_EQ(c->Search(u"abc", u"a", 10, &length), -1); // past the end
    EXPECT_EQ(length, 99);                               // not written: ICU did not search
    c->SetAttribute(MurICU::UCOL_NUMERIC_COLLATION, MurICU::UCOL_ON); // ICU does not search then
    EXPECT_EQ(c->Search(u"abc", u"b"), -1);
}

TEST(ICUCollator, CachedSearchFollowsTextAndPattern)
{
    const auto c = Make(u"LEN_RUS_S2");
    struct Row { const char16_t* text; const char16_t* pattern; int expected; } const rows[] = {
        {u"one two", u"two", 4}, {u"TWO", u"two", 0}, {u"", u"two", -1},  {u"tw", u"two", -1},
        {u"abc", u"c", 2},       {u"abc", u"two", -1}, {u"aB", u"abc", -1}, {u"aBc", u"abc", 0},
    };
    for (int round = 0; round < 2; ++round)
        for (const Row& row : rows) {
            SCOPED_TRACE(U8(row.text) + " / " + U8(row.pattern));
            EXPECT_EQ(c->Search(row.text, row.pattern), row.expected);
        }
    // The search keeps its own copy of the pattern: a caller's buffer may change.
    std::u16string pattern = u"two";
    EXPECT_EQ(c->Search(u"one two", pattern.c_str()), 4);
    pattern = u"one";
    EXPECT_EQ(c->Search(u"one two", pattern.c_str()), 0);
}

TEST(ICUCollator, ReplaceWalksTheMatches)
{
    struct Row { const char16_t* name; const char16_t* text; const char16_t* pattern; const char16_t* by; const char* expected; } const rows[] = {
        {u"LEN_RUS_S2", u"The cat and the CAT", u"cat", u"dog", "The dog and the dog"},
        {u"LEN_RUS", u"The cat and the CAT", u"cat", u"dog", "The dog and the CAT"},
        {u"LEN_RUS", u"catcat", u"cat", u"", ""},
        {u"LEN_RUS", u"aaaa", u"aa", u"b", "bb"},
        {u"LEN_RUS_S1", u"R\u00E9sume\u0301s", u"resume", u"CV", "CVs"}, // a match longer than the pattern
        {u"LEN_RUS_WO", u"co-op", u"-", u"+", "co-op"}, // an ignorable pattern matches nothing: the walk ends
    };
    std::vector<char16_t> out;
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.text));
        Make(row.name)->Replace(out, row.text, row.pattern, row.by);
        EXPECT_EQ(Text(out), row.expected);
    }

    const auto tertiary = Make(u"LEN_RUS");
    // Null arguments and an empty pattern leave `out` as it was.
    const std::vector<char16_t> before = {u'k', u'e', u'p', u't', 0};
    for (int i = 0; i < 4; ++i) {
        out = before;
        const char16_t* args[3] = {u"abc", u"b", u"x"};
        if (i < 3)
            args[i] = nullptr;
        tertiary->Replace(out, args[0], i == 3 ? u"" : args[1], args[2]);
        EXPECT_EQ(out, before) << i;
    }
}

TEST(ICUCollator, StartsAndEndsWith)
{
    const auto tertiary = Make(u"LEN_RUS");
    const auto secondary = Make(u"LEN_RUS_S2");
    EXPECT_FALSE(tertiary->StartsWith(u"Hello", u"he"));
    EXPECT_TRUE(secondary->StartsWith(u"Hello", u"he"));
    EXPECT_FALSE(secondary->StartsWith(u"Hello", u"el"));
    EXPECT_FALSE(tertiary->EndsWith(u"Hello", u"LO"));
    EXPECT_TRUE(secondary->EndsWith(u"Hello", u"LO"));
    EXPECT_FALSE(secondary->EndsWith(u"Hello", u"ell"));
    EXPECT_TRUE(tertiary->EndsWith(u"abab", u"ab"));
    EXPECT_TRUE(tertiary->StartsWith(u"abab", u"abab"));

    // Empty and missing texts: the same answer at either end.
    const struct Row { const char16_t* text; const char16_t* affix; bool expected; } rows[] = {
        {u"x", u"", true}, {u"", u"", true}, {nullptr, u"", false}, {u"a", nullptr, false}, {u"", u"a", false}, {u"a", u"ab", false},
    };
    for (const auto* c : {tertiary.get(), secondary.get()})
        for (const Row& row : rows) {
            SCOPED_TRACE(U8(row.text ? row.text : u"(null)") + " / " + U8(row.affix ? row.affix : u"(null)"));
            EXPECT_EQ(c->StartsWith(row.text, row.affix), row.expected);
            EXPECT_EQ(c->EndsWith(row.text, row.affix), row.expected);
        }
}

//===--------------------------------------------------------------------===//
// Case and trimming
//===--------------------------------------------------------------------===//

TEST(ICUCollator, CaseMappingByTheLocalesRules)
{
    // German "ß" upper-cases to "SS": one unit more fits once the buffer is grown; more than one
    // unit more gives an empty result, on purpose.
    struct Row { const char16_t* name; bool upper; const char16_t* text; const char16_t* expected; } const rows[] = {
        {u"LEN_RUS", true, u"hello \u00E9t\u00E9", u"HELLO \u00C9T\u00C9"}, {u"LEN_RUS", false, u"\u00C0B\u00C7", u"\u00E0b\u00E7"},
        {u"LEN_RUS", true, u"i", u"I"},           {u"LTR", true, u"i", u"\u0130"},
        {u"LEN_RUS", true, u"\xD800x", u"\xD800X"}, {u"LDE_RDE", true, u"\u00DF", u"SS"},
        {u"LDE_RDE", true, u"\u00DF\u00DF", u""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.text));
        std::vector<char16_t> out;
        const auto c = Make(row.name);
        row.upper ? c->Upper(out, row.text) : c->Lower(out, row.text);
        EXPECT_EQ(TString(out.data()), TString(row.expected));
    }

    const auto c = Make(u"LDE_RDE");
    std::vector<char16_t> out(32, u'z'); // a buffer already large enough is used as it is
    c->Upper(out, u"\u00DF\u00DF");
    EXPECT_EQ(Text(out), "SSSS");
    EXPECT_EQ(out.size(), 32u);
    // A missing text: an empty result, growing an empty buffer to one element.
    out.clear();
    c->Lower(out, nullptr);
    EXPECT_EQ(out, std::vector<char16_t>{0});
    out.assign(5, u'q');
    c->Upper(out, nullptr);
    EXPECT_EQ(out.size(), 5u);
    EXPECT_EQ(out[0], 0);
}

TEST(ICUCollator, TrimDropsICUWhitespace)
{
    const auto c = Make(u"LEN_RUS");
    std::vector<char16_t> out;
    struct Row { const char16_t* text; const char* left; const char* right; const char* both; } const rows[] = {
        {u"  a b \t", "a b \t", "  a b", "a b"},
        {u"\u3000x\u2028", "x\u2028", "\u3000x", "x"}, // ideographic space, line separator
        {u"\u00A0x\u00A0", "\u00A0x\u00A0", "\u00A0x\u00A0", "\u00A0x\u00A0"}, // no-break space is kept
        {u"", "", "", ""},
        {u"   ", "", "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.text));
        c->LTrim(out, row.text);
        EXPECT_EQ(Text(out), row.left);
        c->RTrim(out, row.text);
        EXPECT_EQ(Text(out), row.right);
        c->Trim(out, row.text);
        EXPECT_EQ(Text(out), row.both);
    }
    out.clear();
    c->LTrim(out, nullptr);
    EXPECT_EQ(out, std::vector<char16_t>{0});
}

//===--------------------------------------------------------------------===//
// Equivalence
//===--------------------------------------------------------------------===//

TEST(ICUCollator, EquivalenceLooksAtLocaleAttributesAndWordSort)
{
    const auto collator = [](const char16_t* name) {
        return ICUCollatorPool::Factory(ICUCollator::Id(TString(name), 0))->AcquireICUCollator();
    };
    struct Row { const char16_t* a; const char16_t* b; bool equivalent; } const rows[] = {
        {u"AS_LEN_RUS_S3", u"AS_LEN_RUS", true}, // two names, one collator
        {u"LEN_RUS", u"LEN_RUS_VWIN", true},     // the Windows variant contains the other
        {u"LEN_RUS_VWIN", u"LEN", true},         // loosely so
        {u"LEN_RUS_XO", u"LEN_RUS", true},       // added rules play no part
        {u"LEN_RUS", u"LDE_RDE", false},         {u"LEN_RUS", u"LEN_RGB", false},
        {u"LEN_RUS", u"LEN_RUS_S2", false},      {u"LEN_RUS", u"LEN_RUS_WO", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(U8(row.a) + " / " + U8(row.b));
        EXPECT_EQ(collator(row.a)->IsEquivalent(*collator(row.b)), row.equivalent);
        EXPECT_EQ(collator(row.b)->IsEquivalent(*collator(row.a)), row.equivalent);
    }
    EXPECT_FALSE(collator(u"LEN_RUS")->IsEquivalent(*Make(u"LDE")));
}
