#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/foundation/TString.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <unordered_map>

TEST(TString, MinusOneMeansToTheEnd)
{
    const char16_t raw[] = u"abc\0def";
    EXPECT_EQ(TString(raw, -1), TString(u"abc"));
    EXPECT_EQ(TString(raw, 7).size(), 7);
    const TString s(u"hello world");
    EXPECT_EQ(s.mid(6), TString(u"world"));
    EXPECT_EQ(s.mid(6, -1), TString(u"world"));
    EXPECT_EQ(s.mid(6, 3), TString(u"wor"));
    EXPECT_EQ(s.mid(20), TString());
    EXPECT_EQ(TString(static_cast<const char16_t*>(nullptr), -1), TString());
    EXPECT_EQ(TString::length(u"abcd"), 4);
    EXPECT_EQ(TString::length(nullptr), 0);
}

TEST(TString, SearchesYieldMinusOneWhenNothingIsFound)
{
    const TString s(u"a.b.c");
    EXPECT_EQ(s.indexOf(u'.'), 1);
    EXPECT_EQ(s.indexOf(u'.', 2), 3);
    EXPECT_EQ(s.indexOf(u'x'), -1);
    EXPECT_EQ(s.indexOf(TString(u"b.c")), 2);
    EXPECT_EQ(s.indexOf(TString(u"B.C"), 0, TString::CaseInsensitive), 2);
    EXPECT_EQ(s.indexOf(TString(u"B.C")), -1);
    EXPECT_EQ(s.lastIndexOf(u'.'), 3);
    EXPECT_EQ(s.ReverseFind(u'.'), 3);
    EXPECT_EQ(s.ReverseFind(u'x'), -1);
    EXPECT_EQ(s.findOneOf(TString(u"cb")), 2);
    EXPECT_EQ(s.findOneOf(TString(u"xyz")), -1);
    EXPECT_EQ(s.findOneNotOf(TString(u"a.")), 2);
    EXPECT_EQ(TString(u"...").findOneNotOf(TString(u".")), -1);
    EXPECT_EQ(TString::findStr(s, TString(u"c"), 0), 4);
    EXPECT_EQ(TString::findStr(s, TString(u"c"), 5), -1);
    EXPECT_EQ(s.count(u'.'), 2);
}

TEST(TString, NumbersToText)
{
    EXPECT_EQ(TString::number(255, 16), TString(u"ff"));
    EXPECT_EQ(TString::number(7, 10, 2, u'0'), TString(u"07"));
    EXPECT_EQ(TString::number(123, 10, 2, u'0'), TString(u"123"));
    EXPECT_EQ(TString::number(-5LL), TString(u"-5"));
    EXPECT_EQ(TString::number(0xFFFFFFFFFFFFFFFFull, 16), TString(u"ffffffffffffffff"));
    EXPECT_EQ(TString::number(static_cast<long long>(INT64_MIN)), TString(u"-9223372036854775808"));
    // 17 significant digits round-trip every double.
    EXPECT_EQ(TString::number(0.1, 'g', 17), TString(u"0.10000000000000001"));
    EXPECT_EQ(TString::number(1.0, 'g', 17), TString(u"1"));
    EXPECT_EQ(TString::number(1e300, 'g', 17), TString(u"1.0000000000000001e+300"));
    // Negative zero keeps its sign, so the text reads back as the same double.
    EXPECT_EQ(TString::number(-0.0, 'g', 17), TString(u"-0"));
    EXPECT_TRUE(std::signbit(TString::number(-0.0, 'g', 17).toDouble()));
    EXPECT_EQ(TString::number(0.0, 'g', 17), TString(u"0"));
    TString s;
    EXPECT_EQ(s.setNum(-0.0, 'f', 1), TString(u"-0.0"));
    EXPECT_EQ(s.setNum(-42LL), TString(u"-42"));
    EXPECT_EQ(s.setNum(2.5, 'f', 2), TString(u"2.50"));
}

TEST(TString, TextToNumbersReportThroughOk)
{
    bool ok = false;
    EXPECT_EQ(TString(u"42").toInt(&ok), 42);
    EXPECT_TRUE(ok);
    EXPECT_EQ(TString(u"4x2").toInt(&ok), 0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(TString(u"").toInt(&ok), 0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(TString(u"2147483648").toInt(&ok), 0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(TString(u"-9223372036854775808").toLongLong(&ok), INT64_MIN);
    EXPECT_TRUE(ok);
    EXPECT_EQ(TString(u"-1").toUInt(&ok), 0u);
    EXPECT_FALSE(ok);
    EXPECT_DOUBLE_EQ(TString(u"2.5e3").toDouble(&ok), 2500.0);
    EXPECT_TRUE(ok);
    EXPECT_EQ(TString(u"abc").toDouble(&ok), 0.0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(TString(u"12").toInt(nullptr), 12); // a null ok is allowed
    const double d = 0.1;
    EXPECT_EQ(TString::number(d, 'g', 17).toDouble(), d);
}

TEST(TString, EditTrimAndCase)
{
    TString s(u"  abc  ");
    EXPECT_EQ(TString(s).trimLeft(), TString(u"abc  "));
    EXPECT_EQ(TString(s).trimRight(), TString(u"  abc"));
    EXPECT_EQ(s.trimmed(), TString(u"abc"));
    EXPECT_EQ(TString(u"xxaxx").trim(u'x'), TString(u"a"));
    EXPECT_EQ(TString(u"xxxx").trim('x'), TString());
    TString e(u"a-b-c");
    e.removeAll(u'-');
    EXPECT_EQ(e, TString(u"abc"));
    e.removeAt(1, 1);
    EXPECT_EQ(e, TString(u"ac"));
    e.Append(TString(u"XYZ"), 2);
    EXPECT_EQ(e, TString(u"acXY"));
    e.removeAll(u"xy", 2, TString::CaseInsensitive);
    EXPECT_EQ(e, TString(u"ac"));
    e.replace(TString(u"A"), TString(u"[a]"), TString::CaseInsensitive);
    EXPECT_EQ(e, TString(u"[a]c"));
    EXPECT_EQ(TString(u"ÄbC").toUpper(), TString(u"ÄBC"));
    EXPECT_EQ(TString(u"ÄbC").toLower(), TString(u"äbc"));
    EXPECT_EQ(TString(u"a") + u'b' + TString(u"c") + u"d", TString(u"abcd"));
}

TEST(TString, CompareIsByCodeUnitUnlessToldOtherwise)
{
    EXPECT_LT(TString(u"B").Compare(TString(u"a")), 0);
    EXPECT_EQ(TString(u"abc").CompareNoCase(TString(u"ABC")), 0);
    EXPECT_GT(TString(u"b").compare(u"a"), 0);
    EXPECT_EQ(TString::compareN(TString(u"abcX"), TString(u"abcY"), 3), 0);
    EXPECT_NE(TString::compareN(TString(u"abcX"), TString(u"abcY"), 4), 0);
    EXPECT_EQ(TString::compareN(TString(u"ABx"), TString(u"aby"), 2, TString::CaseInsensitive), 0);
    EXPECT_TRUE(TString(u"a") < TString(u"b"));
    EXPECT_TRUE(TString(u"abc") == u"abc");
}

TEST(TString, SplitKeepsOrSkipsEmptyParts)
{
    const TStringList keep = TString(u"a,,b,").split(u',');
    ASSERT_EQ(keep.size(), 4u);
    EXPECT_EQ(keep[1], TString());
    EXPECT_EQ(keep[3], TString());
    const TStringList skip = TString(u"a,,b,").split(TString(u","), TString::SkipEmptyParts);
    ASSERT_EQ(skip.size(), 2u);
    EXPECT_EQ(skip[1], TString(u"b"));
    EXPECT_EQ(TString().split(u',').size(), 1u);
}

TEST(TString, ConversionsKeepEveryCodePoint)
{
    const TString s = TString::fromUtf8("x\xF0\x9F\x98\x80\xC3\xA9"); // x, U+1F600, é
    EXPECT_EQ(s.size(), 4);
    EXPECT_EQ(s.lengthInBytes(), 8);
    EXPECT_EQ(s.lengthInCodePoints(), 3);
    EXPECT_EQ(s.toStdString(), "x\xF0\x9F\x98\x80\xC3\xA9");
    EXPECT_EQ(TString::fromStdU16String(s.toStdU16String()), s);
    EXPECT_EQ(TString::fromLatin1("\xE9"), TString(u"é"));
    const char16_t lone[] = {u'a', 0xD800, u'b', 0};
    EXPECT_EQ(TString(lone).lengthInCodePoints(), 3);
}

TEST(TString, WorksAsAKeyOfStandardMaps)
{
    std::unordered_map<TString, int> hashed;
    std::map<TString, int> ordered;
    for (int i = 0; i < 100; ++i) {
        hashed[TString::number(i)] = i;
        ordered[TString::number(i)] = i;
    }
    EXPECT_EQ(hashed.at(TString(u"42")), 42);
    EXPECT_EQ(ordered.begin()->first, TString(u"0"));
    EXPECT_EQ(ordered.rbegin()->first, TString(u"99"));
    // Equal strings from different buffers hash alike.
    EXPECT_EQ(std::hash<TString>()(TString(u"abc")), std::hash<TString>()(TString::fromUtf8("abc")));
}

TEST(TFormatString, ArgFillsTheLowestOpenPlaceholder)
{
    // %2 stands first in the text, but the first arg goes to %1.
    EXPECT_EQ(TString(TFormatString(u"%2 then %1").arg(TString(u"one")).arg(TString(u"two"))), TString(u"two then one"));
    // Every occurrence of the lowest number is filled at once.
    EXPECT_EQ(TString(TFormatString(u"%1-%1-%2").arg(TString(u"a")).arg(TString(u"b"))), TString(u"a-a-b"));
    // Numbers with width, base and fill.
    EXPECT_EQ(TString(TFormatString(u"#%1:%2").arg(7, 2, 10, u'0').arg(255u, 0, 16)), TString(u"#07:ff"));
    EXPECT_EQ(TString(TFormatString(u"%1").arg(static_cast<long long>(INT64_MIN))), TString(u"-9223372036854775808"));
    // With nothing left to fill, arg changes nothing.
    EXPECT_EQ(TString(TFormatString(u"done").arg(TString(u"x"))), TString(u"done"));
    // The multi-value form fills in one step: a value holding "%2" is not filled again.
    EXPECT_EQ(TString(TFormatString(u"%1|%2").arg(TString(u"%2"), TString(u"b"))), TString(u"%2|b"));
    EXPECT_EQ(TString(TFormatString(u"%1%2%3%4%5").arg(TString(u"a"), TString(u"b"), TString(u"c"), TString(u"d"), TString(u"e"))),
              TString(u"abcde"));
    const TFormatStringCore core(TString(u"%1 x %2"));
    EXPECT_EQ(core.arg(1.5, 0, 'f', 1).result(), TString(u"1.5 x %2"));
    EXPECT_EQ(core.arg(-0.0, 0, 'g', 17).arg(2.25).result(), TString(u"-0 x 2.25"));
}
