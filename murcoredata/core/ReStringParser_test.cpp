#include "murcoredata/core/ReStringParser.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

const RegExParserDefs s_engines[] = {RegExParserDefs::ICU, RegExParserDefs::BoostXpressive};

std::string Trace(const char16_t* pattern, const char16_t* text, RegExParserDefs engine)
{
    return TString(pattern).toStdString() + " on " + TString(text).toStdString() + " with " +
           (engine == RegExParserDefs::BoostXpressive ? "Boost.Xpressive" : "ICU");
}

std::vector<TString> List(std::initializer_list<const char16_t*> items)
{
    std::vector<TString> out;
    for (const char16_t* item : items)
        out.emplace_back(item);
    return out;
}

using Counts = std::vector<uint32_t>;

// Lookups, hits and inserts of the ICU pattern cache since `before`, which moves on to now.
Counts Counted(RandomCacheStatistics& before)
{
    const RandomCacheStatistics now = ReStringParser::GetICUPatternCacheStatistics();
    const Counts counts{now.lookups - before.lookups, now.hits - before.hits, now.inserts - before.inserts};
    before = now;
    return counts;
}

} // namespace

TEST(ReStringParser, BothEnginesAgreeOnSimplePatterns)
{
    struct Row { const char16_t* pattern; bool caseSensitive; const char16_t* text; bool match, search;
                 std::vector<TString> groups; };
    const Row rows[] = {
        {u"abc", true, u"abc", true, true, {}},
        {u"abc", true, u"xabcx", false, true, {}},
        {u"abc", true, u"ABC", false, false, {}},
        {u"abc", false, u"ABC", true, true, {}},
        {u"^\\d{3}-\\d{4}$", true, u"555-12345", false, false, {}},
        {u"(\\w+)@(\\w+)\\.com", true, u"mail bob@example.com now", false, true, List({u"bob", u"example"})},
        {u"(a)|(b)", true, u"b", true, true, List({u"", u"b"})}, // group 1 took no part
        {u"x*", true, u"yyy", false, true, {}},
        {u"(\\d+)", true, u"none", false, false, {}},
        {u"\u00E9+", true, u"caf\u00E9\u00E9", false, true, {}},
    };
    for (const Row& r : rows) {
        for (RegExParserDefs engine : s_engines) {
            SCOPED_TRACE(Trace(r.pattern, r.text, engine));
            ReStringParser parser(r.pattern, r.caseSensitive, engine);
            EXPECT_EQ(parser.match(r.text), r.match);
            EXPECT_EQ(parser.search(r.text), r.search);
            std::vector<TString> groups{TString(u"stale")};
            EXPECT_EQ(parser.search(TString(r.text), groups), r.search);
            EXPECT_EQ(groups, r.groups);
        }
    }
}

TEST(ReStringParser, SearchAllGivesEveryMatchWithPositionsAndGroups)
{
    struct Expected { int position; std::vector<TString> groups; };
    struct Row { const char16_t *pattern, *text; std::vector<Expected> matches; };
    const Row rows[] = {
        {u"\\d+", u"a1b22c333", {{1, {}}, {3, {}}, {6, {}}}},
        {u"(\\w)=(\\d)", u"a=1,b=2", {{0, List({u"a", u"1"})}, {4, List({u"b", u"2"})}}},
        {u"(x)?y", u"yxy", {{0, List({u""})}, {1, List({u"x"})}}},
        {u"x*", u"ab", {{0, {}}, {1, {}}, {2, {}}}}, // empty matches advance
        {u"a", u"", {}},
    };
    for (const Row& r : rows) {
        for (RegExParserDefs engine : s_engines) {
            SCOPED_TRACE(Trace(r.pattern, r.text, engine));
            std::vector<ReStringParserMatches> matches(1); // cleared first
            ReStringParser(r.pattern, true, engine).searchAll(r.text, matches);
            ASSERT_EQ(matches.size(), r.matches.size());
            for (size_t i = 0; i < matches.size(); ++i) {
                EXPECT_EQ(matches[i].position, r.matches[i].position) << i;
                EXPECT_EQ(matches[i].groups, r.matches[i].groups) << i;
            }
        }
    }
}

TEST(ReStringParser, WhereTheEnginesDiffer)
{
    const RegExParserDefs icu = RegExParserDefs::ICU, xpressive = RegExParserDefs::BoostXpressive;
    // Dot matches a line end with ICU only; any engine value other than 1 is ICU.
    EXPECT_TRUE(ReStringParser(u"a.b", true, icu).match(u"a\nb"));
    EXPECT_FALSE(ReStringParser(u"a.b", true, xpressive).match(u"a\nb"));
    EXPECT_TRUE(ReStringParser(u"a.b", true, RegExParserDefs(7)).match(u"a\nb"));
    // Boost.Xpressive never matches an empty text as a whole, even with a pattern that accepts it.
    EXPECT_FALSE(ReStringParser(u"a*", true, xpressive).match(u""));
    EXPECT_TRUE(ReStringParser(u"a*", true, icu).match(u""));
    // Positions: code units with ICU, wide characters with Boost.Xpressive.
    std::vector<ReStringParserMatches> icuMatches, xpressiveMatches;
    ReStringParser(u"x", true, icu).searchAll(u"\U0001F600x", icuMatches);
    ReStringParser(u"x", true, xpressive).searchAll(u"\U0001F600x", xpressiveMatches);
    ASSERT_EQ(icuMatches.size(), 1u);
    ASSERT_EQ(xpressiveMatches.size(), 1u);
    EXPECT_EQ(icuMatches[0].position, 2);
    EXPECT_EQ(xpressiveMatches[0].position, 1);
    // Only Boost.Xpressive replaces.
    EXPECT_EQ(ReStringParser(u"a", true, icu).replaceAll(u"banana", u"o"), TString());
    // Classes and case folding: Unicode with ICU, ASCII with Boost.Xpressive under the "C" locale.
    EXPECT_TRUE(ReStringParser(u"\u00E9", false, icu).match(u"\u00C9"));
    EXPECT_FALSE(ReStringParser(u"\u00E9", false, xpressive).match(u"\u00C9"));
    EXPECT_TRUE(ReStringParser(u"\\w", true, icu).match(u"\u00E9"));
    EXPECT_FALSE(ReStringParser(u"\\w", true, xpressive).match(u"\u00E9"));
}

TEST(ReStringParser, ReplaceAllWithBoostXpressive)
{
    struct Row { const char16_t* pattern; bool caseSensitive; const char16_t *text, *replacement, *expected; };
    const Row rows[] = {
        {u"(\\w+)@(\\w+)", true, u"bob@host and amy@site", u"$2:$1", u"host:bob and site:amy"},
        {u"\\d", true, u"a1b2", u"[$&]", u"a[1]b[2]"},
        {u"a", true, u"banana", u"o", u"bonono"},       {u"x", true, u"abc", u"y", u"abc"},
        {u"a", true, u"", u"y", u""},                   {u"a", true, u"aaa", u"", u""},
        {u"A", false, u"aA", u"-", u"--"},              {u"$", true, u"ab", u"!", u"ab!"},
        {u"\u00E9", true, u"\U0001F600\u00E9", u"e", u"\U0001F600e"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(Trace(r.pattern, r.text, RegExParserDefs::BoostXpressive));
        ReStringParser parser(r.pattern, r.caseSensitive, RegExParserDefs::BoostXpressive);
        EXPECT_EQ(parser.replaceAll(TString(r.text), TString(r.replacement)), TString(r.expected));
    }
    // The one-shot form is case-sensitive.
    EXPECT_EQ(ReStringParser::ReplaceAll(TString(u"Aa"), TString(u"a"), TString(u"x")), TString(u"Ax"));
    EXPECT_EQ(ReStringParser::ReplaceAll(TString(u"k=v; k=w"), TString(u"k=(\\w)"), TString(u"<$1>")),
              TString(u"<v>; <w>"));
}

TEST(ReStringParser, PatternsThatDoNotCompileThrow)
{
    for (const char16_t* pattern : {u"(", u")", u"[a", u"a{2,1}", u"*", u"\\"}) {
        for (RegExParserDefs engine : s_engines) {
            SCOPED_TRACE(Trace(pattern, u"", engine));
            try {
                ReStringParser parser(pattern, true, engine);
                ADD_FAILURE() << "compiled";
            } catch (const StringException& e) {
                EXPECT_EQ(e.GetMessagesFront(), TString(u"Invalid regular expression: '") + TString(pattern) + u'\'');
                EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0u);
                EXPECT_EQ(int(e.GetErrorInfo().GetSource()), 4);
                EXPECT_EQ(int(e.GetErrorInfo().GetStatusCode()), 2);
            }
        }
    }
    EXPECT_THROW(ReStringParser::ReplaceAll(TString(u"abc"), TString(u"(b"), TString(u"x")), StringException);
    RefCntPtr<ReStringParser> none;
    EXPECT_THROW(none->match(u"a"), LogicException);
}

TEST(ReStringParser, HostileTextAndPatterns)
{
    for (RegExParserDefs engine : s_engines) {
        SCOPED_TRACE(Trace(u"", u"", engine));
        // A null text reads as the empty text, a null pattern as the empty pattern.
        ReStringParser any(u"a*", true, engine);
        EXPECT_EQ(any.match(static_cast<const char16_t*>(nullptr)), any.match(u""));
        EXPECT_TRUE(any.search(static_cast<const char16_t*>(nullptr)));
        EXPECT_TRUE(ReStringParser(static_cast<const char16_t*>(nullptr), true, engine).search(u"abc"));
        // Text and pattern are read up to an embedded zero.
        EXPECT_FALSE(ReStringParser(u"b", true, engine).search(TString(u"a\0b", 3)));
        EXPECT_TRUE(ReStringParser(TString(u"a\0b", 3), true, engine).match(u"a"));
        // Unpaired surrogates are characters of their own, not the half of one.
        ReStringParser one(u"^.$", true, engine);
        EXPECT_TRUE(one.search(u"\xD800"));
        EXPECT_TRUE(one.search(u"\xDC00"));
        EXPECT_FALSE(one.search(u"\xD800\xD800"));
        EXPECT_TRUE(one.search(u"\U0001F600"));
        EXPECT_TRUE(ReStringParser(u"b+$", true, engine).search(TString(u'a', 200000) + TString(u'b', 100000)));
    }
    // ICU hands a lone surrogate back as it is; Boost.Xpressive reads it as U+FFFD.
    std::vector<TString> groups;
    EXPECT_TRUE(ReStringParser(u"(.)", true, RegExParserDefs::ICU).search(u"\xD800", groups));
    EXPECT_EQ(groups, std::vector<TString>{TString(u"\xD800")});
    EXPECT_TRUE(ReStringParser(u"(.)", true, RegExParserDefs::BoostXpressive).search(u"\xD800", groups));
    EXPECT_EQ(groups, std::vector<TString>{TString(u"\uFFFD")});
}

// --- The shared cache of compiled ICU patterns

TEST(ReStringParserCache, ASecondParserOfAPatternIsAHit)
{
    const TString pattern(u"cache-probe-[0-9]+");
    RandomCacheStatistics s = ReStringParser::GetICUPatternCacheStatistics();
    EXPECT_EQ(s.capacity, 4096u);
    ReStringParser first(pattern, true, RegExParserDefs::ICU);
    EXPECT_EQ(Counted(s), (Counts{1, 0, 1}));
    ReStringParser second(pattern, true, RegExParserDefs::ICU);
    EXPECT_EQ(Counted(s), (Counts{1, 1, 0}));
    // The flags are part of the key; the other engine does not use the cache.
    ReStringParser insensitive(pattern, false, RegExParserDefs::ICU);
    EXPECT_EQ(Counted(s), (Counts{1, 0, 1}));
    ReStringParser xpressive(pattern, true, RegExParserDefs::BoostXpressive);
    EXPECT_EQ(Counted(s), (Counts{0, 0, 0}));
    EXPECT_TRUE(insensitive.match(u"CACHE-PROBE-12"));
    EXPECT_FALSE(second.match(u"CACHE-PROBE-12"));

    // Two parsers of one pattern keep their own matcher state.
    EXPECT_TRUE(first.search(u"cache-probe-1"));
    EXPECT_FALSE(second.search(u"nothing"));
    std::vector<ReStringParserMatches> matches;
    first.searchAll(u"cache-probe-1 cache-probe-22", matches);
    EXPECT_EQ(matches.size(), 2u);
}

TEST(ReStringParserCache, AFailedPatternIsKeptAndFailsAgainFromTheCache)
{
    RandomCacheStatistics s = ReStringParser::GetICUPatternCacheStatistics();
    EXPECT_THROW(ReStringParser(u"(unclosed-cache-probe", true, RegExParserDefs::ICU), StringException);
    EXPECT_EQ(Counted(s), (Counts{1, 0, 1}));
    EXPECT_THROW(ReStringParser(u"(unclosed-cache-probe", true, RegExParserDefs::ICU), StringException);
    EXPECT_EQ(Counted(s), (Counts{1, 1, 0}));
}

TEST(ReStringParserCache, AParserOutlivesTheEvictionOfItsPattern)
{
    ReStringParser early(u"early-pattern-(\\d)", true, RegExParserDefs::ICU);
    for (int i = 0; i < 4200; ++i) // more distinct patterns than the cache holds
        ReStringParser(TString(u"filler-") + TString::number(i), true, RegExParserDefs::ICU);
    EXPECT_EQ(ReStringParser::GetICUPatternCacheStatistics().size, 4096u);
    std::vector<TString> groups;
    EXPECT_TRUE(early.search(u"early-pattern-7", groups));
    EXPECT_EQ(groups, std::vector<TString>{TString(u"7")});
}

TEST(ReStringParserCache, ParsersOnManyThreads)
{
    // Each thread makes its own parsers over a shared set of patterns, so that compiles
    // race on misses and the compiled patterns are shared on hits.
    const char16_t* patterns[] = {u"thread-(\\d+)", u"[a-c]+x", u"^z.*z$", u"(q)(r)?"};
    std::atomic<int> wrong{0};
    std::vector<std::thread> pool;
    for (int t = 0; t < 4; ++t) {
        pool.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i) {
                const int which = (i + t) % 4;
                ReStringParser p0(patterns[which], true, RegExParserDefs::ICU);
                ReStringParser p1(patterns[(which + 1) % 4], true, RegExParserDefs::ICU);
                std::vector<TString> groups;
                const TString number = TString::number(t * 1000 + i);
                const bool ok = which == 0   ? p0.search(TString(u"thread-") + number, groups) && groups == std::vector<TString>{number}
                                : which == 1 ? p0.match(u"abcx") && !p0.match(u"abdx")
                                : which == 2 ? p0.match(u"z\nz") && !p0.match(u"za")
                                             : p0.search(u"q", groups) && groups == List({u"q", u""});
                if (!ok || !p1.search(TString(u"z thread-1 abcx q z")))
                    ++wrong;
            }
        });
    }
    for (auto& th : pool)
        th.join();
    EXPECT_EQ(wrong.load(), 0);
}
