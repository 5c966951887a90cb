#include "murcoredata/core/StringUtils.h"
#include "murcoredata/foundation/Caught_test.h"

#include <boost/container/small_vector.hpp>
#include <tbb/concurrent_unordered_map.h>

#include <gtest/gtest.h>

#include <QSysInfo>

#include <functional>

namespace {

std::vector<TString> List(std::initializer_list<const char16_t*> items)
{
    std::vector<TString> out;
    for (const char16_t* item : items)
        out.emplace_back(item);
    return out;
}

void ExpectFailure(const std::function<void()>& call, const TString& message, uint32_t code)
{
    const auto e = TestSupport::Caught(call);
    EXPECT_EQ(e->GetMessagesFront(), message);
    EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), code);
    EXPECT_EQ(int(e->GetErrorInfo().GetSource()), 4);
    EXPECT_EQ(int(e->GetErrorInfo().GetStatusCode()), 2);
}

} // namespace

// --- Splitting and joining

TEST(StringUtils, NextSeparatorSkipsOnlyTheFirstQuotedRun)
{
    struct Row { const char16_t *text, *separator, *quote; int from, expected; };
    const Row rows[] = {
        {u"a,b", u",", u"", 0, 1}, {u"a,b", u",", u"", 2, -1}, {u"", u",", u"\"", 0, -1}, {u"abc", u"abcd", u"", 0, -1},
        {u"a,\"b,c\",d", u",", u"\"", 0, 1}, // the quote opens after the separator
        {u"a,\"b,c\",d", u",", u"\"", 2, 7}, // the separator inside the run is skipped
        {u"\"a\" \"b,c\"", u",", u"\"", 0, 6}, // a separator in a second run counts
        {u"a''b,c''d,e", u",", u"''", 0, 9},
        {u"a''',b", u",", u"''", 0, 4}, // the closing quote may overlap the opening one
        {u"a::\"::\"::b", u"::", u"\"", 3, 7},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(TString(r.text).toStdString());
        EXPECT_EQ(GetNextPathSeparatorPos(TString(r.text), TString(r.separator), TString(r.quote), r.from), r.expected);
    }
}

TEST(StringUtils, SeparatorFailures)
{
    const TString missing(u"Missing separator parameter");
    ExpectFailure([] { GetNextPathSeparatorPos(TString(u"a,b"), TString(), TString(u"\""), 0); }, missing, 0xF6FE9A60u);
    ExpectFailure([] { SplitString(TString(), TString(), TString()); }, missing, 0xF6FE9A60u);
    // An unclosed quote fails even after a separator; the message quotes from the quote on.
    ExpectFailure([] { GetNextPathSeparatorPos(TString(u"a,\"b,c"), TString(u","), TString(u"\""), 0); },
                  TString(u"Mismatched quote in '\"b,c'"), 0x79B9C33Cu);
    ExpectFailure([] { GetNextPathSeparatorPos(TString(u"xx,yy'z"), TString(u","), TString(u"'"), 3); },
                  TString(u"Mismatched quote in ''z'"), 0x79B9C33Cu);
    ExpectFailure([] { SplitString(TString(u"\"a,b"), TString(u","), TString(u"\"")); },
                  TString(u"Mismatched quote in '\"a,b'"), 0x79B9C33Cu);
    // A separator in a second quoted run splits it, and its closing quote is then unmatched.
    ExpectFailure([] { SplitString(TString(u"\"a\" \"b,c\""), TString(u","), TString(u"\"")); },
                  TString(u"Mismatched quote in '\"'"), 0x79B9C33Cu);
}

TEST(StringUtils, SplitStringKeepsEmptyPiecesAndQuotes)
{
    struct Row { const char16_t *text, *separator, *quote; std::vector<TString> expected; };
    const Row rows[] = {
        {u"", u",", u"", List({u""})},
        {u"a,,", u",", u"", List({u"a", u"", u""})},
        {u",a", u",", u"", List({u"", u"a"})},
        {u"a,\"b,c\",d", u",", u"\"", List({u"a", u"\"b,c\"", u"d"})},
        {u"a,\"b,c\",d", u",", u"", List({u"a", u"\"b", u"c\"", u"d"})},
        {u"x,\"a\",\"b,c\"", u",", u"\"", List({u"x", u"\"a\"", u"\"b,c\""})},
        {u"a:::b", u"::", u"", List({u"a", u":b"})},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(TString(r.text).toStdString());
        EXPECT_EQ(SplitString(TString(r.text), TString(r.separator), TString(r.quote)), r.expected);
        if (TString(r.separator).length() == 1) {
            EXPECT_EQ(SplitString(TString(r.text), r.separator[0], TString(r.quote)), r.expected);
        }
    }
}

TEST(StringUtils, JoinStringPutsSeparatorsBetweenOnly)
{
    const std::vector<TString> three = List({u"a", u"", u"bc"});
    EXPECT_EQ(JoinString(std::vector<TString>(), TString(u", ")), TString());
    EXPECT_EQ(JoinString(List({u"a"}), TString(u", ")), TString(u"a"));
    EXPECT_EQ(JoinString(three, TString(u", ")), TString(u"a, , bc"));
    EXPECT_EQ(JoinString(three, u'|'), TString(u"a||bc"));
    EXPECT_EQ(JoinString(three, TString()), TString(u"abc"));
    EXPECT_EQ(JoinString(three.begin() + 1, three.end(), TString(u"+")), TString(u"+bc"));
    EXPECT_EQ(JoinString(three.begin(), three.begin(), TString(u"+")), TString());

    boost::container::small_vector<TString, 4> small{TString(u"x"), TString(u"y")};
    EXPECT_EQ(JoinString(small, TString(u"::")), TString(u"x::y"));
    EXPECT_EQ(JoinString(small, u'.'), TString(u"x.y"));
    const std::set<TString> sorted{TString(u"b"), TString(u"a"), TString(u"c")};
    EXPECT_EQ(JoinString(sorted, TString(u"-")), TString(u"a-b-c"));
    EXPECT_EQ(JoinString(std::next(sorted.begin()), sorted.end(), TString(u"-")), TString(u"b-c"));
}

TEST(StringUtils, JoinStringRefusesALengthBeyondInt)
{
    // Copies share one buffer, so these cost no memory: the length is measured before allocating.
    const TString mebi(u'x', 1 << 20);
    ExpectFailure([&] { JoinString(std::vector<TString>(2048, mebi), TString()); }, // 2^31
                  TString(u"JoinString: calculated length 2147483648 exceeds maximum length"), 0xF43CCF25u);
    // 2047 pieces stay below the limit, and the 2046 separators take it over.
    ExpectFailure([&] { JoinString(std::vector<TString>(2047, mebi), TString(u'-', 513)); },
                  TString(u"JoinString: calculated length 2147484670 exceeds maximum length"), 0xF43CCF25u);
}

// --- Escape forms

TEST(StringUtils, EscapePrefixesListedUnits)
{
    struct Row { const char16_t *text, *chars, *expected; };
    const Row rows[] = {
        {u"a.b", u".", u"a\\.b"},
        {u"a\\b", u".", u"a\\b"}, // the escape unit is not doubled unless listed
        {u"a\\b.", u"\\.", u"a\\\\b\\."},
        {u"", u".", u""}, {u"abc", u"", u"abc"},
        {u"\u00E9t\u00E9 \u00E8", u"\u00E9", u"\\\u00E9t\\\u00E9 \u00E8"},
        {u"a?\u007F\u0080", u"\u007F\u0080?", u"a\\?\\\u007F\\\u0080"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(TString(r.text).toStdString());
        EXPECT_EQ(Escape(TString(r.text), TString(r.chars), u'\\'), TString(r.expected));
    }
    EXPECT_EQ(Escape(TString(u"it's"), TString(u"'"), u'\''), TString(u"it''s"));
    // Nothing to escape: a shared copy, no allocation.
    const TString text(u"nothing to escape here, just a long enough text");
    EXPECT_EQ(Escape(text, TString(u"[]"), u'\\').constData(), text.constData());
}

TEST(StringUtils, CEscapeAndCUnescape)
{
    struct Row { char16_t unit; const char16_t* expected; };
    const Row rows[] = {
        {0x00, u"\\0"}, {0x07, u"\\a"}, {0x08, u"\\b"},  {0x09, u"\\t"}, {0x0A, u"\\n"},
        {0x0B, u"\\v"}, {0x0C, u"\\f"}, {0x0D, u"\\r"},  {u'\'', u"\\'"}, {u'\\', u"\\\\"},
        {u'"', u"\""},  {u'a', u"a"},   {0x01, u"\x01"}, {0x1B, u"\x1B"}, {0xE9, u"\u00E9"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(int(r.unit));
        EXPECT_EQ(CEscape(r.unit), TString(r.expected));
    }
    EXPECT_EQ(CEscape(TString(u"a\tb\0'\"", 6)), TString(u"a\\tb\\0\\'\""));
    EXPECT_EQ(CEscape(TString()), TString());

    const std::pair<TString, TString> unescapeRows[] = {
        {TString(u"\\0"), TString(u"\0", 1)},
        {TString(u"\\a\\b\\f\\n\\r\\t\\v"), TString(u"\a\b\f\n\r\t\v")},
        {TString(u"\\q\\'\\\""), TString(u"q'\"")}, // any other unit stands for itself
        {TString(u"\\"), TString(u"\\")},            // a lone backslash stays
        {TString(u"\\\\"), TString(u"\\")}, {TString(u"\\\\\\"), TString(u"\\\\")}, {TString(), TString()},
    };
    for (const auto& r : unescapeRows) {
        SCOPED_TRACE(r.first.toStdString());
        EXPECT_EQ(CUnescape(r.first), r.second);
    }
    // Every unit of the first 256 and both kinds of surrogate survive the round trip.
    TString all(u"\xD800\xDFFF");
    for (int c = 0; c < 256; ++c)
        all.append(char16_t(c));
    EXPECT_EQ(CUnescape(CEscape(all)), all);
}

TEST(StringUtils, DeleteBetweenEmptiesSpansAndSkipsAfterEach)
{
    struct Row { const char16_t *text, *open, *close, *expected; };
    const Row rows[] = {
        {u"a<x>b<y>", u"<", u">", u"a<>b<>"},
        // The search resumes one `open` length beyond the close: an adjacent span stays.
        {u"<x><y>", u"<", u">", u"<><y>"},
        {u"{{a}}{{b}}", u"{{", u"}}", u"{{}}{{b}}"},
        {u"{{a}}..{{b}}", u"{{", u"}}", u"{{}}..{{}}"},
        {u"<>", u"<", u">", u"<>"}, {u"|a|b|", u"|", u"|", u"||b|"}, {u"abcBdeE", u"B", u"E", u"abcBE"}, // case-sensitive
        {u"no delimiters", u"<", u">", u"no delimiters"}, {u"a>b<c", u"<", u">", u"a>b<c"},
        {u"a<b", u"<", u">", u"a<b"}, // an open with no close after it ends the work
        {u"a<b>", u"", u">", u"a<b>"}, {u"a<b>", u"<", u"", u"a<b>"}, {u"", u"<", u">", u""},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(TString(r.text).toStdString());
        TString text(r.text);
        DeleteBetween(text, TString(r.open), TString(r.close));
        EXPECT_EQ(text, TString(r.expected));
    }
}

// --- Hashing. The expected values come from libxxhash directly (XXH32 and XXH3 128 with the
// seeds combined as (0xCAFEBABE << 32) | 0xDEADBEEF) over the UTF-16LE bytes.

TEST(StringUtils, StringHashesArePinnedAndSharedByTheTraits)
{
    EXPECT_EQ(StringHash(TString(u"Sales")), 0x6B633277u);
    EXPECT_EQ(StringHash(TString()), 0xC372C6CBu);
    EXPECT_EQ(StringHash(TString(u"\u00E9\U0001F600")), 0x06A28203u);

    const THash128Value sales = StringHash128(TString(u"Sales"));
    EXPECT_EQ(sales.low, 0x33FFCA524F5D9F2Aull);
    EXPECT_EQ(sales.high, 0x9103E2CBC1B3897Aull);
    const THash128Value empty = StringHash128(TString());
    EXPECT_EQ(empty.low, 0x2DF8379C1C12B067ull);
    EXPECT_EQ(empty.high, 0x88F2C870B076E612ull);

    // The hash traits of the containers agree with StringHash.
    const TString a(u"Region"), b(TString(u"Reg") + TString(u"ion")), c(u"region");
    EXPECT_EQ(TStringHashCompare::hash(a), size_t(StringHash(a)));
    EXPECT_EQ(TStringHashCompare::hash(a), std::hash<TString>()(a));
    EXPECT_TRUE(TStringHashCompare::equal(a, b));
    EXPECT_FALSE(TStringHashCompare::equal(a, c));
}

// --- String maps

template <typename Map>
void CheckLookups(const Map& map)
{
    EXPECT_EQ(LookupString(map, u"k"), TString(u"v"));
    // Keys are case-sensitive.
    for (const char16_t* key : {u"k", u"K", u"absent", u"empty"}) {
        SCOPED_TRACE(TString(key).toStdString());
        const bool empty = TString(key) != TString(u"k");
        EXPECT_EQ(LookupString(map, TString(key)), empty ? TString() : TString(u"v"));
        EXPECT_EQ(IsStringEmpty(map, TString(key)), empty);
        EXPECT_EQ(NotStringEmpty(map, TString(key)), !empty);
    }
}

TEST(StringUtils, LookupsInStandardAndConcurrentMaps)
{
    TStringMap plain{{TString(u"k"), TString(u"v")}, {TString(u"empty"), TString()}};
    CheckLookups(plain);
    tbb::concurrent_unordered_map<TString, TString> concurrent{{TString(u"k"), TString(u"v")},
                                                               {TString(u"empty"), TString()}};
    CheckLookups(concurrent);

    plain[TString(u"a")] = TString(u"say \"1\"");
    plain.erase(TString(u"empty"));
    EXPECT_EQ(LogStringLookupTable(plain)->ToJson(), TString(u"{\"a\":\"say \\\"1\\\"\",\"k\":\"v\"}"));
    EXPECT_EQ(LogStringLookupTable(TStringMap())->ToJson(), TString(u"{}"));
}

// --- Hexadecimal form

TEST(StringUtils, HexEncodeAndHexDecode)
{
    // HexEncode writes the UTF-8 bytes up to a zero; HexDecode reads them back.
    const std::pair<TString, const char16_t*> rows[] = {
        {TString(u"A"), u"x'41'"},
        {TString(), u"x''"},
        {TString(u"\U0001F600"), u"x'F09F9880'"},
        {TString(u"a\0b", 3), u"x'61'"}, // the zero byte ends the form
        {TString(u"\0a", 2), u"x''"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.first.toStdString());
        EXPECT_EQ(HexEncode(r.first), TString(r.second));
    }

    struct Row { TString hex; bool ok; TString expected; };
    const Row decodeRows[] = {
        {TString(u"4142"), true, TString(u"AB")},
        {TString(u"c3A9"), true, TString(u"\u00E9")}, // either case
        {TString(), true, TString()},
        {TString(u"414"), true, TString(u"A")},        // a lone digit is ignored
        {TString(u"41G"), true, TString(u"A")},        // a lone unit at the end is not read
        {TString(u"4100FFFF"), true, TString(u"A")},   // a zero byte ends the text
        {TString(u"4142zz"), false, TString(u"AB")}, // failure keeps what came before
        {TString(u"4G"), false, TString()}, {TString(u"G4"), false, TString()},
        {TString(u"\uFF14\uFF11"), false, TString()}, // full-width digits are not hex
        {TString(u"4\0", 2), false, TString()}, {TString(u"4\xD800"), false, TString()},
        {TString(u"FF"), true, TString(u"\uFFFD")},   // a byte that is not UTF-8
        {TString(u"C3"), true, TString(u"\uFFFD")},   // a cut sequence
    };
    for (const Row& r : decodeRows) {
        SCOPED_TRACE(r.hex.toStdString());
        TString out(u"previous");
        EXPECT_EQ(HexDecode(r.hex, out), r.ok);
        EXPECT_EQ(out, r.expected);
    }
}

TEST(StringUtils, DecodeHexEncodedStringTable)
{
    struct Row { const char16_t* encoded; bool ok; const char16_t* expected; };
    const Row rows[] = {
        {u"x'41'", true, u"A"}, {u"x_41_", true, u"A"}, {u"x'41", true, u"A"}, {u"x'41'zB", true, u"AB"}, {u"x'", true, u""},
        {u"x'61'z\uFFFD", true, u"a\uFFFD"}, // the suffix is appended as it is
        {u"x'41C3'", true, u"A"},            // U+FFFD from a bad byte is removed
        {u"x'4G'", false, u""},
        {u"x'41'zq'z", false, u"A"}, // the body runs to the last "z"
        {u"x'41'Z", false, u"A"},    // only a lower-case "z" ends the body
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(TString(r.encoded).toStdString());
        TString out(u"previous");
        EXPECT_EQ(DecodeHexEncodedString(TString(r.encoded), out), r.ok);
        EXPECT_EQ(out, TString(r.expected));
    }
    // Texts not in the form leave `out` alone.
    for (const char16_t* text : {u"abc", u"X'41'", u"x41", u"", u"'41'", u"x"}) {
        SCOPED_TRACE(TString(text).toStdString());
        TString out(u"untouched");
        EXPECT_FALSE(DecodeHexEncodedString(TString(text), out));
        EXPECT_EQ(out, TString(u"untouched"));
    }
    for (const char16_t* text : {u"Sales 2021", u"\u00E9t\u00E9", u"\U0001F600!"}) {
        TString out;
        EXPECT_TRUE(DecodeHexEncodedString(HexEncode(TString(text)), out));
        EXPECT_EQ(out, TString(text));
    }
}

// --- Small helpers

TEST(StringUtils, SmallHelpers)
{
    EXPECT_TRUE(HasAllAsciiCharacters(TString()));
    EXPECT_TRUE(HasAllAsciiCharacters(TString(u"plain text ~\x7F")));
    EXPECT_TRUE(HasAllAsciiCharacters(TString(u"a\0b", 3)));
    EXPECT_FALSE(HasAllAsciiCharacters(TString(u"\x80")));
    EXPECT_FALSE(HasAllAsciiCharacters(TString(u"\xDC00")));

    EXPECT_TRUE(LocaleAwareCaseInsensitiveSort(TString(u"apple"), TString(u"Banana")));
    EXPECT_FALSE(LocaleAwareCaseInsensitiveSort(TString(u"Banana"), TString(u"apple")));
    EXPECT_FALSE(LocaleAwareCaseInsensitiveSort(TString(u"a"), TString(u"A")));
    EXPECT_FALSE(LocaleAwareCaseInsensitiveSort(TString(u"A"), TString(u"a")));

    EXPECT_EQ(ReplaceLineFeedWithWhiteSpace(TString(u"a\nb\r\nc\n")), TString(u"a b\r c "));
    EXPECT_EQ(BooleanToString(true), TString(u"true"));
    EXPECT_EQ(BooleanToString(false), TString(u"false"));

    // RemoveBytePadding keeps the first stored byte of each unit.
    const bool littleEndian = QSysInfo::ByteOrder == QSysInfo::LittleEndian;
    EXPECT_EQ(RemoveBytePadding(TString(u"\u00E9\u4E2D")), littleEndian ? std::string("\xE9\x2D") : std::string("\x00\x4E", 2));
    EXPECT_EQ(RemoveBytePadding(TString()), std::string());
}

// --- Secrets

TEST(StringUtils, ObfuscateSecretsMasksEveryKeyKind)
{
    const std::pair<const char16_t*, const char16_t*> rows[] = {
        {u"password=abc def", u"PASSWORD=******** def"},
        {u"Server=x;PassWord=s3cr3t;Port=1", u"Server=x;PASSWORD=********"}, // \S* runs on
        {u"password=", u"PASSWORD=********"}, {u"mypwd=1", u"myPWD=********"},
        {u"token=ab.C-_~+/9;rest", u"TOKEN=********rest"}, // the ";" goes too
        {u"token=abc", u"token=abc"}, {u"token=abc def;", u"token=abc def;"}, // no ";" ends the value: in the clear
        {u"access_key_id=>'id1', Secret_Access_Key=>'s'", u"ACCESS_KEY_ID=>'********', SECRET_ACCESS_KEY=>'********'"},
        {u"secret_access_key=>'unclosed", u"secret_access_key=>'unclosed"},
        {u"password=a Pwd=b rtk=c!x", u"PASSWORD=******** PWD=******** RTK=********!x"},
        {u"pa\u017Fsword=x", u"pa\u017Fsword=x"}, // only ASCII letters make a key
        {u"to\u212Aen=x;", u"to\u212Aen=x;"}, {u"pass word=x", u"pass word=x"}, {u"", u""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(TString(r.first).toStdString());
        EXPECT_EQ(ObfuscateSecretsInString(TString(r.first)), TString(r.second));
    }
    // Without a key, with or without "=", the text itself comes back.
    for (const char16_t* text : {u"SELECT [Region] FROM [Orders]", u"WHERE [Region] = 'West'"}) {
        const TString plain(text);
        EXPECT_EQ(ObfuscateSecretsInString(plain).constData(), plain.constData());
    }
    // Once a rule runs, the pattern engine reads the text up to an embedded zero and as
    // wide characters: the tail after a zero is dropped and a lone surrogate becomes U+FFFD.
    EXPECT_EQ(ObfuscateSecretsInString(TString(u"password=a\0b c", 14)), TString(u"PASSWORD=********"));
    EXPECT_EQ(ObfuscateSecretsInString(TString(u"\xD800 password=a")), TString(u"\uFFFD PASSWORD=********"));
    EXPECT_EQ(ObfuscateSecretsInString(TString(u"password=\xDC00\U0001F600 x")), TString(u"PASSWORD=******** x"));
    // Without a key the text is not touched at all.
    const TString untouched(u"\xD800=\0x", 4);
    EXPECT_EQ(ObfuscateSecretsInString(untouched), untouched);
    const TString longText = TString(u'a', 100000) + TString(u" password=") + TString(u'b', 100000) + TString(u" end");
    EXPECT_EQ(ObfuscateSecretsInString(longText), TString(u'a', 100000) + TString(u" PASSWORD=******** end"));
}
