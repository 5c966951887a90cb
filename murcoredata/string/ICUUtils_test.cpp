#include "murcoredata/string/ICUUtils.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <unicode/uloc.h>

#include <atomic>
#include <climits>
#include <string>
#include <thread>
#include <vector>

namespace {

TString Repeat(const char16_t* unit, int count)
{
    TString text;
    for (int i = 0; i < count; ++i)
        text += TString(unit);
    return text;
}

} // namespace

TEST(ICUUtils, CountWords)
{
    struct Row { const char16_t* text; const char* locale; int words; };
    const Row rows[] = {
        {u"Hello, world!", "en", 2},  {u"  , ,  ,", "en", 0}, {u"", "en", 0}, {u"one two  three", "en_US", 3},
        {u"don't stop", "en", 2},     // the apostrophe stays inside the word
        {u"3.14 is pi", "en", 3},     // a number is a word
        {u"e-mail", "en", 2},         // a hyphen breaks
        {u"\u00e9t\u00e9 \u00e0 Paris", "fr", 3},
        {u"Hello world", "no_such_locale_xx", 2}, {u"Hello world", "", 2}, // root rules
    };
    for (const Row& row : rows)
        EXPECT_EQ(ICUUtils::CountWords(TString(row.text), row.locale), row.words) << TString(row.text).toStdString();

    EXPECT_EQ(ICUUtils::CountWords(Repeat(u"word ", 5000), "en"), 5000);
    // The text goes to ICU as a C string: it ends at the first zero unit.
    EXPECT_EQ(ICUUtils::CountWords(TString::fromStdU16String(std::u16string(u"one\0two three", 13)), "en"), 1);
    EXPECT_EQ(ICUUtils::CountWords(TString(u"one two"), std::string(500, 'x')), 2);
}

TEST(ICUUtils, LocaleParts)
{
    struct Row { const char16_t *locale, *country, *iso3, *language, *currency; };
    const Row rows[] = {
        {u"de_DE", u"DE", u"DEU", u"de", u"EUR"},
        {u"zh_Hant_TW", u"TW", u"TWN", u"zh", u"TWD"},
        {u"en-GB", u"GB", u"GBR", u"en", u"GBP"},
        {u"EN_us", u"US", u"USA", u"en", u"USD"},
        {u"en", u"", u"", u"en", u""}, // no region: no currency
        {u"xx_YY", u"YY", u"", u"xx", u""},
        {u"", u"", u"", u"", u""},
        {u"-US", u"US", u"USA", u"", u"USD"},
        {u"aaaaaaaaaaaaaaaaaaaaaaaaaa_DE", u"DE", u"DEU", u"", u"EUR"}, // a language too long to be one
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.locale).toStdString());
        const TString locale(row.locale);
        EXPECT_EQ(ICUUtils::GetCountryName(locale), row.country);
        EXPECT_EQ(ICUUtils::GetCountryNameISO3(locale), row.iso3);
        EXPECT_EQ(ICUUtils::GetLanguageName(locale), row.language);
        EXPECT_EQ(ICUUtils::GetCurrencyCode(locale), row.currency);
    }
}

// Every function survives any locale name. ICU refuses some long names outright (no word
// break iterator: no words); the others fall back to its root data.
TEST(ICUUtils, HostileLocaleNames)
{
    const std::pair<std::u16string, int> rows[] = { // the locale, and the words in "a b"
        {std::u16string(10000, u'a'), 2},        {std::u16string(10000, u'_'), 0},
        {u"de_" + std::u16string(10000, u'D'), 0}, {std::u16string(200, u'-'), 0},
        {u"\u65e5\u672c\u8a9e_\u65e5\u672c", 2}, {std::u16string(u"\xDC00\xD800", 2), 2},
        {u"@@@=;;;", 2},                         {u"en_US@currency=" + std::u16string(5000, u'x'), 2},
    };
    for (const auto& row : rows) {
        const TString locale = TString::fromStdU16String(row.first);
        SCOPED_TRACE(locale.left(30).toStdString());
        (void)ICUUtils::GetCountryName(locale), (void)ICUUtils::GetCountryNameISO3(locale);
        (void)ICUUtils::GetLanguageName(locale), (void)ICUUtils::GetLCID(locale);
        EXPECT_EQ(ICUUtils::GetCurrencyCode(locale).length() % 3, 0);
        const std::string narrow = locale.toStdString();
        EXPECT_EQ(ICUUtils::StrToUpper(TString(u"abc"), narrow.c_str()), u"ABC");
        EXPECT_EQ(ICUUtils::CountWords(TString(u"a b"), narrow), row.second);
    }
    EXPECT_EQ(ICUUtils::GetCountryName(TString::fromStdU16String(std::u16string(10000, u'a'))), u"");
    EXPECT_EQ(ICUUtils::GetLanguageName(TString::fromStdU16String(std::u16string(10000, u'a'))), u"");
}

TEST(ICUUtils, LocaleIdsAndDisplayNames)
{
    const std::pair<const char16_t*, lcid> ids[] = {
        {u"de_DE", 0x0407}, {u"zh_Hant_TW", 0x0404}, {u"en", 0x0009}, {u"xx_YY", 0}, {u"", 0},
    };
    for (const auto& row : ids)
        EXPECT_EQ(ICUUtils::GetLCID(TString(row.first)), row.second) << TString(row.first).toStdString();

    EXPECT_EQ(ICUUtils::GetDisplayName(0x0407, 0x0409), u"German (Germany)");
    EXPECT_EQ(ICUUtils::GetDisplayName(0x0C0C, 0x0407), u"Franz\u00f6sisch (Kanada)");
    EXPECT_EQ(ICUUtils::GetDisplayName(0x0411, 0x0411), u"\u65e5\u672c\u8a9e (\u65e5\u672c)");

    const std::string previous = uloc_getDefault();
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault("sv_SE", &status);
    EXPECT_EQ(ICUUtils::GetDefaultLCID(), 0x041Du);
    // 1024 names the default locale, here in its own language.
    EXPECT_EQ(ICUUtils::GetDisplayName(1024, 1024), u"svenska (Sverige)");
    uloc_setDefault(previous.c_str(), &status);
}

TEST(ICUUtils, UpperAndFoldCase)
{
    struct UpperRow { const char16_t* text; const char* locale; const char16_t* upper; };
    const UpperRow upper[] = {
        {u"stra\u00dfe", "de", u"STRASSE"}, // one unit becomes two
        {u"i", "tr", u"\u0130"},            {u"i", "en", u"I"}, {u"\u0131", "tr", u"I"}, // Turkish i
        {u"\ufb01", "en", u"FI"},           // the fi ligature
        {u"\u03ac\u03bd\u03b8\u03c1\u03c9\u03c0\u03bf\u03c2", "el", u"\u0391\u039d\u0398\u03a1\u03a9\u03a0\u039f\u03a3"},
        {u"", nullptr, u""},
        {u"\xD800" u"a", "en", u"\xD800" u"A"}, // a lone surrogate passes through
    };
    for (const UpperRow& row : upper)
        EXPECT_EQ(ICUUtils::StrToUpper(TString(row.text), row.locale), row.upper) << TString(row.text).toStdString();

    struct FoldRow { const char16_t* text; bool excludeSpecialI; const char16_t* folded; }; // true: Turkic folding
    const FoldRow fold[] = {
        {u"Stra\u00dfe", false, u"strasse"}, {u"I", false, u"i"},   {u"I", true, u"\u0131"},
        {u"\u0130", false, u"i\u0307"},      {u"\u0130", true, u"i"}, // dotted I: i and a combining dot
        {u"\u03a3\u03c2", false, u"\u03c3\u03c3"}, {u"", false, u""},  // both sigmas fold to one
    };
    for (const FoldRow& row : fold)
        EXPECT_EQ(ICUUtils::StrFoldCase(TString(row.text), row.excludeSpecialI), row.folded)
            << TString(row.text).toStdString();
}

// Results of up to 255 units use the stack buffer; longer ones the heap. Walk the edge.
TEST(ICUUtils, CaseMappingAroundTheStackBuffer)
{
    for (int n : {1, 254, 255, 256, 257, 1000}) {
        EXPECT_EQ(ICUUtils::StrToUpper(Repeat(u"a", n), "en"), Repeat(u"A", n)) << n;
        EXPECT_EQ(ICUUtils::StrFoldCase(Repeat(u"A", n), false), Repeat(u"a", n)) << n;
    }
    // The input fits the stack, the result does not: 128 sharp s become 256 units.
    for (int n : {127, 128, 129}) {
        EXPECT_EQ(ICUUtils::StrToUpper(Repeat(u"\u00df", n), "de"), Repeat(u"SS", n)) << n;
        EXPECT_EQ(ICUUtils::StrFoldCase(Repeat(u"\u00df", n), false), Repeat(u"ss", n)) << n;
    }
    // The result ends at the first zero unit.
    const TString withNul = TString::fromStdU16String(std::u16string(u"ab\0cd", 5));
    EXPECT_EQ(ICUUtils::StrToUpper(withNul, "en"), u"AB");
    EXPECT_EQ(ICUUtils::StrFoldCase(withNul, false), u"ab");
}

TEST(ICUUtils, IanaCharacterSetNames)
{
    const std::pair<const char*, const char16_t*> rows[] = {
        {"utf8", u"UTF-8"},    {"latin1", u"ISO_8859-1:1987"}, {"cp1252", u"windows-1252"},
        {"sjis", u"Shift_JIS"}, {"ascii", u"ANSI_X3.4-1968"},  {"UTF-16LE", u"UTF-16LE"},
        {"bogus-name", u"bogus-name"}, {"", u""}, // unknown: as it went in
    };
    for (const auto& row : rows)
        EXPECT_EQ(ICUUtils::TryGetIanaCharactersetName(row.first), row.second) << row.first;
    EXPECT_EQ(ICUUtils::TryGetIanaCharactersetName(static_cast<const char*>(nullptr)), u"");
    const std::string longName(5000, 'q');
    EXPECT_EQ(ICUUtils::TryGetIanaCharactersetName(longName.c_str()), TString::fromLatin1(longName.c_str()));

    EXPECT_EQ(ICUUtils::TryGetIanaCharactersetName(ICUUtils::OemUnitedStates), u"IBM437");
    EXPECT_EQ(ICUUtils::TryGetIanaCharactersetName(ICUUtils::WindowsLatin1), u"windows-1252");
}

TEST(ICUUtils, UnknownCodePageIsALogicError)
{
    for (int value : {2, -1, 437}) {
        try {
            (void)ICUUtils::TryGetIanaCharactersetName(ICUUtils::CodePage(value));
            ADD_FAILURE() << value << " did not fail";
        } catch (const LogicException& e) {
            EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0xCFFFF092u);
            const std::string message = e.GetMessagesFront().toStdString();
            EXPECT_EQ(message.rfind("string/ICUUtils.cpp(", 0), 0u) << message;
            EXPECT_NE(message.find("logic assertion failed: false"), std::string::npos) << message;
        }
    }
}

TEST(ICUUtils, Converters)
{
    const int count = ICUUtils::CountAvailableConverters();
    ASSERT_GT(count, 100);
    EXPECT_EQ(ICUUtils::GetAvailableConverterName(0), u"UTF-8");
    EXPECT_FALSE(ICUUtils::GetAvailableConverterName(count - 1).isEmpty());
    for (int index : {-1, count, 0x10000, INT_MAX, INT_MIN})
        EXPECT_EQ(ICUUtils::GetAvailableConverterName(index), u"") << index;
}

TEST(ICUUtils, InitializeFromManyThreads)
{
    std::atomic<bool> go{false};
    std::atomic<int> done{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            while (!go.load())
                std::this_thread::yield();
            ICUUtils::Initialize();
            if (ICUUtils::StrToUpper(TString(u"stra\u00dfe"), "de") == u"STRASSE")
                ++done;
        });
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(done.load(), 8);
    ICUUtils::Initialize(); // and again, after the once has run
}

// u_cleanup frees ICU's caches for the whole process; a child process keeps the others whole.
TEST(ICUUtilsDeathTest, CleanupThenUseAgain)
{
    EXPECT_EXIT(
        {
            ICUUtils::Initialize();
            ICUUtils::Cleanup(); // ICU sets itself up again on the next use
            const bool ok = ICUUtils::StrToUpper(TString(u"i"), "tr") == u"\u0130" &&
                            ICUUtils::CountWords(TString(u"two words"), "en") == 2;
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
