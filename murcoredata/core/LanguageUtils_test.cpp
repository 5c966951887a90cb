#include "murcoredata/core/LanguageCode.h"
#include "murcoredata/core/LanguageTables.h"
#include "murcoredata/core/LanguageUtils.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/TSettings.h"
#include "murcoredata/string/ICUUtils.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <unicode/uloc.h>

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using Script = LanguageUtils::LanguageScript;

// ICU's default locale stands for the user's and the system's locale (ids 1024 and 2048):
// tests pin it, so that they do not depend on the environment.
class ScopedIcuDefault
{
public:
    explicit ScopedIcuDefault(const char* locale) : m_previous(uloc_getDefault()) { Set(locale); }
    ~ScopedIcuDefault() { Set(m_previous.c_str()); }

private:
    static void Set(const char* locale)
    {
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault(locale, &status);
    }
    std::string m_previous;
};

// Points the settings store at a fresh folder for the life of the object.
class ScopedSettings
{
public:
    ScopedSettings() { TSettings::SetStorageDirectory(TString(m_dir.path())); }
    ~ScopedSettings() { TSettings::SetStorageDirectory(TString(QDir::homePath() + QStringLiteral("/.config"))); }

    static TString Get(const char16_t* key) { return TSettings::GetStringValue(TSettings::CoreData, TString(key)); }
    static void Set(const char16_t* key, const char16_t* value)
    {
        TSettings::SetStringValue(TSettings::CoreData, TString(key), TString(value));
    }

private:
    QTemporaryDir m_dir;
};

uint32_t LogicCode(const std::function<void()>& action)
{
    try {
        action();
    } catch (const LogicException& e) {
        return e.GetErrorInfo().GetError().GetCode();
    }
    return 0;
}

} // namespace

TEST(LanguageTables, BuiltInRowCounts)
{
    EXPECT_EQ(Implementation::BuiltInSupportedLanguageRows().size(), 41u);
    EXPECT_EQ(Implementation::BuiltInDesktopLanguageRows().size(), 17u);
    EXPECT_EQ(Implementation::BuiltInMapCodeRows().size(), 35u);
    EXPECT_EQ(Implementation::BuiltInLanguageScriptRows().size(), 12u);
    EXPECT_EQ(Implementation::BuiltInShortAliases().size(), 3u);
    // Pseudo languages are off in this build: the supported table is the built-in rows.
    EXPECT_FALSE(LanguageUtils::PseudoLocFeatureShouldBeEnabled());
    EXPECT_EQ(LanguageUtilsInternal::GetSupportedLanguageTable().size(), 41u);
    EXPECT_EQ(LanguageUtils::GetMapCodeLocales().size(), 35u);

    // en_US is written twice, identically, and folded into one key.
    std::vector<const Implementation::DesktopLanguageRow*> enUS;
    for (const auto& row : Implementation::BuiltInDesktopLanguageRows())
        if (TString(row.entries[0]) == u"en_US")
            enUS.push_back(&row);
    ASSERT_EQ(enUS.size(), 2u);
    for (int i = 0; i < LanguageData::PositionCount; ++i)
        EXPECT_EQ(TString(enUS[0]->entries[i]), TString(enUS[1]->entries[i])) << "position " << i;
    EXPECT_EQ(Implementation::BuildDefaultLanguageMap().size(), 16u);
    EXPECT_EQ(LanguageUtilsInternal::GetLanguageMap().size(), 14u); // without the two pseudo rows
}

TEST(LanguageTables, DesktopRowsAsWritten)
{
    const LanguageMap defaults = Implementation::BuildDefaultLanguageMap();
    for (const auto& entry : defaults) {
        SCOPED_TRACE(entry.first.toStdString());
        EXPECT_TRUE(entry.second.IsValid());
        EXPECT_EQ(entry.second.Get(LanguageData::ISOString), entry.first);
        EXPECT_EQ(entry.second.Get(LanguageData::FallbackLanguage), u"en_US");
        EXPECT_EQ(entry.second.Get(LanguageData::ExtensionNumber), u"0");
    }
    struct Row { const char16_t *key, *menu, *sortName, *market; };
    const Row rows[] = {
        {u"de_DE", u"&Deutsch", u"Deutsch", u"EU"},
        {u"fr_FR", u"&Fran\u00e7ais (France)", u"Fran\u00e7ais (France)", u"EU"},
        {u"ja_JP", u"\u65e5\u672c\u8a9e(&J)", u"z1-Japanese", u"Japan"},
        {u"th_TH", u"\u0e44\u0e17\u0e22(&H)", u"z0_Thai", u"APAC"},
        {u"fr_CA", u"F&ran\u00e7ais (Canada)", u"Fran\u00e7ais (Canada)", u"USCA"},
        {u"ga_IE", u"Ps\u00e8\u00fad&o (ga_IE)", u"z4-1st Pseudo", u"US"},
        {u"nl_NL", u"Ps\u00e8\u00fado (&nl_NL)", u"z5-2nd Pseudo", u"US"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.key).toStdString());
        const auto hit = defaults.find(TString(row.key));
        ASSERT_NE(hit, defaults.end());
        EXPECT_EQ(hit->second, (LanguageData{TString(row.key), TString(u"en_US"), TString(row.menu),
                                             TString(row.sortName), TString(u"0"), TString(row.market)}));
    }
}

TEST(LanguageTables, SupportedRowsAsWritten)
{
    const std::pair<const char16_t*, const char16_t*> rows[] = {
        {u"de", u"de_DE-EU"},    {u"en", u"en_US-US"},         {u"en_US-EU", u"en_GB-EU"},
        {u"en_GB", u"en_GB-EU"}, {u"en_US-APAC", u"en_US-APAC"}, {u"es", u"es_ES-LATAM"},
        {u"zh", u"zh_CN-China"}, {u"zh_TW", u"zh_TW-APAC"},
    };
    const SupportedLanguageTable& table = LanguageUtilsInternal::GetSupportedLanguageTable();
    for (const auto& row : rows) {
        ASSERT_EQ(table.count(TString(row.first)), 1u) << TString(row.first).toStdString();
        EXPECT_EQ(table.at(TString(row.first)), row.second);
    }
    // A full string is a fixed point: it is a key of its own, mapping to itself.
    for (const auto& row : table)
        EXPECT_EQ(table.at(row.second), row.second) << row.first.toStdString();
    // Codes that only look supported.
    for (const char16_t* code : {u"", u"EN", u"en_us", u"en_US-GB", u"zh_CN-APAC", u"ga_IE", u"nl"})
        EXPECT_FALSE(LanguageUtils::IsLanguageCodeSupported(TString(code))) << TString(code).toStdString();

    const std::unordered_set<TString> fifteen = {
        u"de_DE-EU",    u"en_US-US",    u"en_GB-EU",   u"en_US-APAC", u"es_ES-LATAM",
        u"fr_FR-EU",    u"fr_CA-USCA",  u"it_IT-EU",   u"ja_JP-Japan", u"ko_KR-APAC",
        u"pt_BR-LATAM", u"sv_SE-EU",    u"th_TH-APAC", u"zh_CN-China", u"zh_TW-APAC",
    };
    EXPECT_EQ(LanguageUtils::GetSupportedLanguages(), fifteen);
}

TEST(LanguageTables, SpecialRowsByTarget)
{
    std::map<TString, int> counts;
    for (const auto& row : Implementation::BuiltInSpecialLocaleRows())
        ++counts[TString(row.fullString)];
    const std::map<TString, int> expected = {
        {u"en_GB-EU", 59}, {u"es_ES-LATAM", 21}, {u"en_US-APAC", 20}, {u"en_US-US", 5},
        {u"fr_FR-EU", 5},  {u"de_DE-EU", 4},     {u"zh_TW-APAC", 3},  {u"zh_CN-China", 2},
        {u"it_IT-EU", 1},  {u"pt_BR-LATAM", 1},  {u"sv_SE-EU", 1},    {u"zn_CN-China", 1},
    };
    EXPECT_EQ(counts, expected); // 123 rows in all
    // Every target is a supported full string but the one inert row.
    for (const auto& row : Implementation::BuiltInSpecialLocaleRows())
        EXPECT_EQ(LanguageUtils::IsLanguageCodeSupported(TString(row.fullString)),
                  TString(row.fullString) != u"zn_CN-China")
            << TString(row.locale).toStdString();
}

TEST(LanguageTables, MapRegions)
{
    const std::pair<const char16_t*, MapCode> rows[] = {
        {u"zh_SG", MapCode::US},       {u"zh_CN", MapCode::CN},  {u"zh_Hant_MO", MapCode::CN},
        {u"en_HK", MapCode::CN},       {u"en_IN", MapCode::IN},  {u"pa_Guru_IN", MapCode::IN},
        {u"de_DE", MapCode::US},       {u"", MapCode::US},       {u"zh_cn", MapCode::US},
        {u"zh_CN-China", MapCode::US}, {u"ur_PK", MapCode::US},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LanguageUtilsInternal::GetMapCodeForLocale(TString(row.first)), row.second)
            << TString(row.first).toStdString();

    const std::pair<int, const char16_t*> names[] = {{int(MapCode::US), u"US"}, {int(MapCode::CN), u"CN"},
                                                     {int(MapCode::IN), u"IN"}, {0, u"US"}, {4, u"US"},
                                                     {-1, u"US"}, {1000, u"US"}};
    for (const auto& name : names)
        EXPECT_EQ(LanguageUtils::GetMapCodeString(MapCode(name.first)), name.second) << name.first;
}

TEST(LanguageTables, ScriptsByExactKey)
{
    const std::pair<const char16_t*, Script> rows[] = {
        {u"zh_TW", Script::TraditionalChinese}, {u"zh_Hant_TW", Script::TraditionalChinese},
        {u"zh_Hans_HK", Script::TraditionalChinese}, {u"zh_CN", Script::SimplifiedChinese},
        {u"zh_Hans_SG", Script::SimplifiedChinese}, {u"zh", Script::None}, {u"zh_Hans", Script::None},
        {u"ZH_TW", Script::None}, {u"zh_TW-APAC", Script::None}, {u"", Script::None},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LanguageUtils::GetLanguageScript(TString(row.first)), row.second) << TString(row.first).toStdString();
}

TEST(LanguageData, TextFormAndValidity)
{
    const LanguageData row{u"de_DE", u"en_US", u"&Deutsch", u"Deutsch", u"0", u"EU"};
    const TString text = row;
    EXPECT_EQ(text, u"de_DE,en_US,&Deutsch,Deutsch,0,EU");
    EXPECT_EQ(LanguageData(text), row);
    EXPECT_EQ(row.Get(LanguageData::MarketString), u"EU");
    EXPECT_EQ(row.Get(-1), u"");
    EXPECT_EQ(row.Get(6), u"");

    const std::pair<const char16_t*, bool> rows[] = {
        {u"a,b,c,d,e,f", true}, {u"a,b,c,d,e", false}, {u"a,b,c,d,e,f,g", false},
        {u"a,b,,d,e,f", false}, {u"a,b,c,d,e,", false}, {u"", false},
    };
    for (const auto& valid : rows)
        EXPECT_EQ(LanguageData(TString(valid.first)).IsValid(), valid.second) << TString(valid.first).toStdString();
    EXPECT_FALSE(LanguageData().IsValid());
    // No trailing separator, and empty entries survive the text form.
    EXPECT_EQ(TString(LanguageData(TString(u"a,,c"))), u"a,,c");
    EXPECT_EQ(LanguageData(TString(u"a,,c")).GetEntries().size(), 3u);
}

TEST(LanguageData, LanguageWithoutRegion)
{
    EXPECT_EQ((LanguageData{u"de_DE"}).GetLanguageWithoutRegion(), u"de");
    EXPECT_EQ((LanguageData{u"kok_IN", u"x"}).GetLanguageWithoutRegion(), u"kok");
    EXPECT_EQ((LanguageData{u"ga"}).GetLanguageWithoutRegion(), u"ga");
    EXPECT_EQ((LanguageData{u"zh_Hant_TW"}).GetLanguageWithoutRegion(), u"zh");
    // A row with nothing in position 0 is a broken table, a programmer's mistake.
    for (const LanguageData& broken : {LanguageData(), LanguageData{u""}, LanguageData{u"__"}})
        EXPECT_EQ(LogicCode([&] { (void)broken.GetLanguageWithoutRegion(); }), 0x04F5CEB8u);
}

TEST(LanguageUtils, RemoveScriptAndMarket)
{
    const std::pair<const char16_t*, const char16_t*> scripts[] = {
        {u"zh_CN", u"zh_CN"}, {u"zh_Hans_CN", u"zh_CN"}, {u"a_b_c_d_e", u"a_b_c_d_e"},
        {u"a_b_c", u"a_b_c"}, // under six characters
        {u"ab_c_d", u"ab_d"}, {u"zh__CN", u"zh_CN"},
        {u"en_US_POSIX", u"en_POSIX"}, // three pieces, whatever the middle one is
        {u"zh_Hans_CN-China", u"zh_CN-China"}, {u"", u""},
    };
    for (const auto& row : scripts)
        EXPECT_EQ(LanguageUtils::RemoveScriptFromLanguageCode(TString(row.first)), row.second)
            << TString(row.first).toStdString();

    const std::pair<const char16_t*, const char16_t*> markets[] = {
        {u"en_US-EU", u"en_US"}, {u"zh_CN-China", u"zh_CN"}, {u"en-US", u"en-US"}, // under six
        {u"en_US", u"en_US"},    {u"a-b-c-d", u"a-b-c-d"},   {u"en_US-", u"en_US"},
        {u"-en_US", u""},        {u"", u""},
    };
    for (const auto& row : markets)
        EXPECT_EQ(LanguageUtils::RemoveMarketStringFromLanguageCode(TString(row.first)), row.second)
            << TString(row.first).toStdString();
}

TEST(LanguageUtils, ISOAndMarketStrings)
{
    struct Row { const char16_t *code, *iso, *market; };
    const Row rows[] = {
        {u"en_US-EU", u"en_US", u"EU"}, {u"zh_Hans_CN-China", u"zh_CN", u"China"}, {u"a-b-c", u"a", u"b-c"},
        {u"-US", u"-US", u""}, // a "-" at index 0 separates nothing
        {u"en", u"en", u""},   {u"de-", u"de", u""}, {u"", u"", u""}, {u"--", u"--", u""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.code).toStdString());
        EXPECT_EQ(LanguageUtils::GetISOString(TString(row.code)), row.iso);
        EXPECT_EQ(LanguageUtilsInternal::GetMarketString(TString(row.code)), row.market);
    }
    EXPECT_EQ(LanguageUtils::BuildFullString(u"en_US", u"EU"), u"en_US-EU");
    EXPECT_EQ(LanguageUtils::BuildFullString(u"en_US", u""), u"en_US");
    EXPECT_EQ(LanguageUtils::BuildFullString(u"%2", u"%1"), u"%2-%1");
    EXPECT_EQ(LanguageUtils::GetDefaultISOString(), u"en_US");
    EXPECT_EQ(LanguageUtilsInternal::GetDefaultISONarrowStr(), "en_US");
    EXPECT_EQ(LanguageUtils::GetDefaultLanguage(), u"en");
}

TEST(LanguageUtils, ShortAliasesAndImperialUnits)
{
    const std::pair<const char16_t*, const char16_t*> aliases[] = {
        {u"en_GB", u"en_GB"}, {u"fr_CA", u"fr_CA"}, {u"zh_TW", u"zh_TW"},
        {u"zh_CN", u"zh"},    {u"en_US-US", u"en"}, {u"", u""},
    };
    for (const auto& row : aliases)
        EXPECT_EQ(LanguageUtils::GetLanguageShortAlias(TString(row.first)), row.second) << TString(row.first).toStdString();
    for (const char16_t* country : {u"US", u"GB", u"LR", u"MM"})
        EXPECT_TRUE(LanguageUtils::UsesImperialDistanceUnits(TString(country)));
    for (const char16_t* country : {u"us", u"CA", u"", u"USA", u"IE"})
        EXPECT_FALSE(LanguageUtils::UsesImperialDistanceUnits(TString(country)));
}

namespace {

// Per code: GetClosestSupportedLanguageCode, GetClosestSpecialLocaleCode, ...V2.
struct ChainRow { std::u16string code; const char16_t *closest, *special, *v2; };

void ExpectChains(const ChainRow& row)
{
    const TString code = TString::fromStdU16String(row.code);
    SCOPED_TRACE(code.left(40).toStdString());
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCode(code), row.closest);
    EXPECT_EQ(LanguageUtils::GetClosestSpecialLocaleCode(code), row.special);
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCodeV2(code), row.v2);
}

} // namespace

TEST(LanguageUtils, FallbackChains)
{
    const ChainRow rows[] = {
        // In the supported table: its value, everywhere.
        {u"de", u"de_DE-EU", u"de_DE-EU", u"de_DE-EU"},
        {u"en_US-EU", u"en_GB-EU", u"en_GB-EU", u"en_GB-EU"},
        // By language: the first row of the language in built-in order ("fr" before "fr_CA").
        {u"fr_BE", u"fr_FR-EU", u"fr_FR-EU", u"fr_FR-EU"},
        {u"en_AU", u"en_US-US", u"en_US-APAC", u"en_US-APAC"},
        {u"DE", u"de_DE-EU", u"de_DE-EU", u"de_DE-EU"},
        // A market narrows the rows of the language (but not for V2).
        {u"en_XX-EU", u"en_GB-EU", u"en_GB-EU", u"en_US-US"},
        {u"en_US-Japan", u"en_US", u"en_US-US", u"en_US-US"},
        // Scripts: the region's script decides between the Chinese rows.
        {u"zh_HK", u"zh_TW-APAC", u"zh_TW-APAC", u"zh_TW-APAC"},
        {u"zh_Hant_TW", u"zh_TW-APAC", u"zh_TW-APAC", u"zh_CN-China"},
        {u"zh_Hans_SG", u"zh_CN-China", u"zh_CN-China", u"zh_CN-China"},
        {u"zh_MO-China", u"zh_TW-APAC", u"zh_TW-APAC", u"zh_CN-China"},
        {u"zh_XX", u"zh_CN-China", u"zh_CN-China", u"zh_CN-China"},
        // The special table.
        {u"nl_NL", u"en_US", u"en_GB-EU", u"en_GB-EU"},
        {u"es_MX", u"es_ES-LATAM", u"es_ES-LATAM", u"es_ES-LATAM"},
        {u"ca_ES", u"en_US", u"es_ES-LATAM", u"es_ES-LATAM"},
        // The inert row: the first chains pass it by, V2 takes it unchecked.
        {u"mn_MN", u"en_US", u"en_US-US", u"zn_CN-China"},
        // Unknown languages end at the defaults.
        {u"xx_YY", u"en_US", u"en_US-US", u"en_US-US"},
        {u"root", u"en_US", u"en_US-US", u"en_US-US"},
        {u"ga_IE", u"en_US", u"en_US-US", u"en_US-US"},
    };
    for (const ChainRow& row : rows)
        ExpectChains(row);
    EXPECT_EQ(LanguageUtils::GetDefaultSamplesString(), u"en_US-US");
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCodeWithoutMarketV2(u"de"), u"de_DE");
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCodeWithoutMarketV2(u"mn_MN"), u"zn_CN");
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCodeWithoutMarketV2(u"xx"), u"en_US");
}

// Hostile text never throws and always lands on a defined answer.
TEST(LanguageUtils, HostileCodesFallToTheDefaults)
{
    const ChainRow rows[] = {
        {u"", u"en_US", u"en_US-US", u"en_US-US"},
        {u"-_-", u"en_US", u"en_US-US", u"en_US-US"},
        {u"-US", u"en_US", u"en_US-US", u"en_US-US"},
        {u"%1", u"en_US", u"en_US-US", u"en_US-US"},
        {u"\u65e5\u672c\u8a9e", u"en_US", u"en_US-US", u"en_US-US"},
        {u"ja_\u65e5\u672c", u"ja_JP-Japan", u"ja_JP-Japan", u"ja_JP-Japan"},
        {u"de-", u"de_DE-EU", u"de_DE-EU", u"de_DE-EU"},
        {u"en_US-US-US", u"en_US", u"en_US-US", u"en_US-US"},
        {u"en@calendar=japanese", u"en_US-US", u"en_US-US", u"en_US-US"},
        {std::u16string(10000, u'a'), u"en_US", u"en_US-US", u"en_US-US"},
        {std::u16string(10000, u'_'), u"en_US", u"en_US-US", u"en_US-US"},
        {std::u16string(10000, u'-'), u"en_US", u"en_US-US", u"en_US-US"},
        {u"en_" + std::u16string(300, u'x'), u"en_US-US", u"en_US-US", u"en_US-US"},
        // ICU reads names as C strings: the text ends at the zero unit.
        {std::u16string(u"de\0_AT", 6), u"de_DE-EU", u"de_DE-EU", u"de_DE-EU"},
        {std::u16string(u"\xD800_US", 4), u"en_US", u"en_US-US", u"en_US-US"},
    };
    for (const ChainRow& row : rows) {
        ExpectChains(row);
        const TString code = TString::fromStdU16String(row.code);
        EXPECT_NO_THROW({
            const LanguageCode language(code);
            (void)language.GetFullString();
            (void)language.GetCountryName();
            (void)GetCorrectedLangCode(code);
            (void)LanguageUtils::GetLanguageShortAlias(code);
            (void)LanguageUtils::GetLCID(code);
        });
    }
}

TEST(LanguageTableSet, PseudoLanguagesWhenSwitchedOn)
{
    const Implementation::LanguageTableSet tables(Implementation::BuildDefaultLanguageMap(), true);
    const SupportedLanguageTable& supported = tables.GetSupportedTable();
    EXPECT_EQ(supported.size(), 47u);
    for (const char16_t* key : {u"ga", u"ga_IE", u"ga_IE-US"})
        EXPECT_EQ(supported.at(TString(key)), u"ga_IE-US");
    for (const char16_t* key : {u"nl", u"nl_NL", u"nl_NL-EU"})
        EXPECT_EQ(supported.at(TString(key)), u"nl_NL-EU");
    EXPECT_EQ(tables.GetSpecialTable().at(TString(u"ga_IE-US")), u"en_US-US");
    EXPECT_EQ(tables.GetSpecialTable().at(TString(u"nl_NL-EU")), u"en_US-US");
    EXPECT_EQ(tables.GetSpecialTable().size(), 125u);

    // The special table is read first, so the pseudo language does not capture "nl_NL".
    EXPECT_EQ(tables.ClosestSpecial(u"nl_NL"), u"en_GB-EU");
    EXPECT_EQ(tables.ClosestSupported(u"nl_NL"), u"nl_NL-EU");
    EXPECT_EQ(tables.ClosestSupported(u"nl_BE"), u"nl_NL-EU");
    EXPECT_EQ(tables.ClosestSupportedV2(u"ga_IE"), u"ga_IE-US");
}

TEST(LanguageTableSet, RowsThatExtendTheSupportedLanguages)
{
    LanguageMap map = Implementation::BuildDefaultLanguageMap();
    map[u"pl_PL"] = LanguageData{u"pl_PL", u"en_US", u"&Polski", u"Polski", u"1", u"EU"};
    // An extension cannot take over existing keys; it adds only what is absent.
    map[u"de_DE"] = LanguageData{u"de_DE", u"en_US", u"&Deutsch", u"Deutsch", u"2", u"US"};
    // Not numbers, or zero: no extension.
    map[u"cs_CZ"] = LanguageData{u"cs_CZ", u"en_US", u"&Cestina", u"Cestina", u"x", u"EU"};
    map[u"da_DK"] = LanguageData{u"da_DK", u"en_US", u"&Dansk", u"Dansk", u"", u"EU"};

    const Implementation::LanguageTableSet tables(map, false);
    const SupportedLanguageTable& supported = tables.GetSupportedTable();
    const std::pair<const char16_t*, const char16_t*> keys[] = {
        {u"pl", u"pl_PL-EU"}, {u"pl_PL", u"pl_PL-EU"}, {u"pl_PL-EU", u"pl_PL-EU"},
        {u"de", u"de_DE-EU"}, {u"de_DE", u"de_DE-EU"}, {u"de_DE-US", u"de_DE-US"},
    };
    for (const auto& key : keys)
        EXPECT_EQ(supported.at(TString(key.first)), key.second) << TString(key.first).toStdString();
    EXPECT_EQ(supported.size(), 41u + 3u + 1u);
    EXPECT_EQ(supported.count(TString(u"cs")), 0u);
    EXPECT_EQ(supported.count(TString(u"da_DK")), 0u);

    EXPECT_EQ(tables.ClosestSupported(u"pl_XX"), u"pl_PL-EU");
    EXPECT_EQ(tables.ClosestSpecial(u"pl_PL"), u"en_GB-EU"); // the special table still wins
    // An added row comes after the built-in ones of its language.
    EXPECT_EQ(tables.ClosestSupported(u"de_XX-US"), u"de_DE-US");
    EXPECT_EQ(tables.ClosestSupported(u"de_XX"), u"de_DE-EU");

    map[u"xx"] = LanguageData{u"_", u"en_US", u"&X", u"X", u"1", u"EU"};
    EXPECT_EQ(LogicCode([&] { Implementation::LanguageTableSet broken(map, false); }), 0x04F5CEB8u);
}

TEST(LanguageUtils, ResetPseudoAddsAndRemovesTheTestLanguages)
{
    LanguageMap& live = LanguageUtilsInternal::GetLanguageMap();
    EXPECT_EQ(LanguageUtils::GetDisplayStringForLanguageCode(u"ga_IE"), u"");

    LanguageUtilsInternal::ResetPseudo(true);
    LanguageUtilsInternal::ResetPseudo(true); // twice changes nothing
    EXPECT_EQ(live.size(), 16u);
    EXPECT_EQ(LanguageUtils::GetDisplayStringForLanguageCode(u"ga_IE"), u"Ps\u00e8\u00fad&o (ga_IE)");
    EXPECT_EQ(LanguageUtils::GetDisplayStringForLanguageCode(u"nl_NL"), u"Ps\u00e8\u00fado (&nl_NL)");

    LanguageUtilsInternal::ResetPseudo(false);
    EXPECT_EQ(live.size(), 14u);
    EXPECT_EQ(live.count(TString(u"nl_NL")), 0u);
    EXPECT_EQ(LanguageUtils::GetDisplayStringForLanguageCode(u"de_DE"), u"&Deutsch");
    EXPECT_EQ(LanguageUtils::GetDisplayStringForLanguageCode(u"de"), u"");
}

TEST(LanguageUtils, DesktopLanguagesUILanguageFirstThenBySortName)
{
    ScopedSettings settings;
    ScopedSettings::Set(LanguageUtils::LanguageCodeKey, u"fr_CA-USCA");
    // After the UI language, by sort name: "Deutsch" ... "Svenska", "z0_Thai" ... "z4-Korean".
    const std::vector<TString> expected = {u"fr_CA", u"de_DE", u"en_GB", u"en_US", u"es_ES",
                                           u"fr_FR", u"it_IT", u"pt_BR", u"sv_SE", u"th_TH",
                                           u"ja_JP", u"zh_CN", u"zh_TW", u"ko_KR"};
    EXPECT_EQ(LanguageUtils::GetAvailableDesktopLanguages(), expected);

    // A bare stored language matches no key: nothing is pulled to the front.
    ScopedSettings::Set(LanguageUtils::LanguageCodeKey, u"fr");
    const std::vector<TString> languages = LanguageUtils::GetAvailableDesktopLanguages();
    ASSERT_EQ(languages.size(), 14u);
    EXPECT_EQ(languages.front(), u"de_DE");
    EXPECT_EQ(languages[4], u"fr_CA");
}

TEST(LanguageUtils, LocaleNamesOfIds)
{
    ScopedIcuDefault pinned("fr_CA");
    const std::pair<lcid, const char*> narrow[] = {
        {0x0409, "en_US"}, {0x0404, "zh_Hant_TW"}, {0, "root"},      {1024, "fr_CA"},
        {2048, "fr_CA"},   {4096, "root"},         {0x9999, "root"}, {0xFFFFFFFF, "root"},
    };
    for (const auto& row : narrow)
        EXPECT_EQ(LanguageUtils::GetLocaleNarrowStr(row.first), row.second) << std::hex << row.first;
    const std::pair<lcid, const char16_t*> wide[] = {
        {4096, u"ar"}, {0x0404, u"zh_TW"}, {0x0C04, u"zh_HK"}, {2048, u"fr_CA"}, {0x9999, u"root"},
    };
    for (const auto& row : wide)
        EXPECT_EQ(LanguageUtils::GetLocaleStr(row.first), row.second) << std::hex << row.first;

    EXPECT_EQ(LanguageUtils::GetLCID(u"de_DE"), 0x0407u);
    EXPECT_TRUE(LanguageUtils::IsLocaleSupported(u"ja_JP"));
    EXPECT_FALSE(LanguageUtils::IsLocaleSupported(u"xx_YY"));
    for (const auto& row : {std::pair<lcid, lcid>{1024, 0x0C0C}, {2048, 0x0C0C}, {0x0409, 0x0409}, {0, 0}})
        EXPECT_EQ(LanguageUtils::ConvertDefaultLocale(row.first), row.second) << row.first;

    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCode(lcid(0x0C0C)), u"fr_CA-USCA");
    EXPECT_EQ(LanguageUtils::GetClosestSupportedLanguageCode(lcid(0x9999)), u"en_US");
    EXPECT_EQ(LanguageUtils::GetClosestSpecialLocaleCode(lcid(0x0415)), u"en_GB-EU");
    EXPECT_EQ(LanguageUtils::GetClosestSpecialLocaleCode(lcid(4096)), u"en_US-US");
}

// Exact-size heap buffers, so that a write past the end is caught under the sanitizer.
TEST(LanguageUtils, LocaleForIdIntoSmallBuffers)
{
    ScopedIcuDefault pinned("fr_CA");
    struct Row { lcid id; size_t length; const char* expected; };
    const Row rows[] = {
        {0x0409, 6, "en_US"}, // fits exactly with its terminator
        {0x0409, 5, "root"},  // does not fit: "root" instead
        {0x0409, 3, "ro"},    // "root" cut to fit
        {0x0409, 1, ""},      {2048, 157, "fr_CA"},
        {2048, 3, "fr"},      // ICU's default cut to fit
        {1024, 157, "root"},  {0, 157, "root"}, {0, 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.id) + " into " + std::to_string(row.length));
        std::unique_ptr<char[]> buffer(new char[row.length]);
        std::fill_n(buffer.get(), row.length, 'x');
        LanguageUtilsInternal::GetLocaleForLCID(row.id, buffer.get(), row.length);
        EXPECT_EQ(std::string(buffer.get()), row.expected);
    }
    char untouched = 'x';
    LanguageUtilsInternal::GetLocaleForLCID(0x0409, &untouched, 0);
    EXPECT_EQ(untouched, 'x');
    LanguageUtilsInternal::GetLocaleForLCID(0x0409, nullptr, 10);
}

TEST(LanguageCode, FromCodes)
{
    struct Row { const char16_t *code, *iso, *market; lcid id; };
    const Row rows[] = {
        {u"de", u"de_DE", u"EU", 0x0407},
        {u"en_AU", u"en_AU", u"US", 0x0C09},     // the market of "en"
        {u"fr_CA", u"fr_CA", u"USCA", 0x0C0C},
        {u"en_US-EU", u"en_GB", u"EU", 0x0809},  // through the supported table
        {u"zh_Hans_CN", u"zh_CN", u"China", 0x0804},
        {u"pl_PL-EU", u"pl_PL", u"EU", 0x0415},  // any market is kept
        {u"xx_YY", u"root", u"", 0},             // ICU cannot read it
        {u"-US", u"root", u"", 0},
        {u"", u"", u"", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.code).toStdString());
        const LanguageCode code{TString(row.code)};
        EXPECT_EQ(code.GetISOString(), row.iso);
        EXPECT_EQ(static_cast<const TString&>(code), row.iso);
        EXPECT_EQ(code.GetMarketString(), row.market);
        EXPECT_EQ(code.GetLCID(), row.id);
        EXPECT_EQ(code.GetFullString(), LanguageUtils::BuildFullString(row.iso, row.market));
    }
}

TEST(LanguageCode, FromIdsKeepsTheId)
{
    ScopedIcuDefault pinned("de_DE");
    struct Row { lcid id; const char16_t *iso, *market; };
    const Row rows[] = {
        {0x0404, u"zh_TW", u"APAC"}, {0x0C09, u"en_AU", u"US"},   {4096, u"ar", u""},
        {1024, u"de_DE", u"EU"},     {2048, u"de_DE", u"EU"},     {0, u"root", u""},
    };
    for (const Row& row : rows) {
        const LanguageCode code(row.id);
        EXPECT_EQ(code.GetISOString(), row.iso) << row.id;
        EXPECT_EQ(code.GetMarketString(), row.market) << row.id;
        EXPECT_EQ(code.GetLCID(), row.id);
    }
    const LanguageCode byDefault;
    EXPECT_EQ(byDefault.GetFullString(), u"de_DE-EU");
    EXPECT_EQ(byDefault.GetLCID(), 1024u);
}

TEST(LanguageCode, KeepIsoLeavesTheIdAlone)
{
    LanguageCode code(lcid(0x0409));
    code.SetLanguageCode(u"de", true);
    EXPECT_EQ(code.GetFullString(), u"de_DE-EU");
    EXPECT_EQ(code.GetLCID(), 0x0409u);

    code.SetLanguageCode(u"", true);
    EXPECT_EQ(code.GetLCID(), 0u);
    EXPECT_EQ(code.GetISOString(), u"");

    code.SetLCID(0x0411);
    const LanguageCode copy = code;
    EXPECT_EQ(copy.GetFullString(), u"ja_JP-Japan");
    EXPECT_EQ(copy.GetLCID(), 0x0411u);
}

TEST(LanguageCode, DerivedForms)
{
    const LanguageCode hongKong(TString(u"zh_HK"));
    EXPECT_EQ(hongKong.GetLCID(), 0x0C04u);
    EXPECT_EQ(hongKong.GetMapCode(), MapCode::CN);
    EXPECT_EQ(hongKong.GetCountryName(), u"HK");
    EXPECT_EQ(hongKong.GetLanguageName(), u"zh");
    EXPECT_EQ(hongKong.GetWebLanguageCode(), u"zh-hk");
    EXPECT_EQ(hongKong.GetFullString(), u"zh_HK-China"); // the market of "zh"

    const LanguageCode konkani(TString(u"kok_IN"));
    EXPECT_EQ(konkani.GetShortLanguageCode(), u"ko"); // two characters, whatever the language
    EXPECT_EQ(konkani.GetMapCode(), MapCode::IN);

    EXPECT_EQ(LanguageCode(lcid(0x10409)).GetLangID(), 0x0409);
    EXPECT_EQ(LanguageCode(TString(u"de_DE")).GetDisplayName(0x0409), u"German (Germany)");
    EXPECT_EQ(LanguageCode(TString(u"")).GetShortLanguageCode(), u"");
    EXPECT_EQ(LanguageCode(TString(u"de_DE")).GetMapCode(), MapCode::US);
}

TEST(LanguageSettings, StoredCodesAreReturnedAsStored)
{
    ScopedSettings settings;
    ScopedSettings::Set(LanguageUtils::LanguageCodeKey, u"de");
    EXPECT_EQ(LanguageUtils::GetUILanguageCodeStr(), u"de");
    EXPECT_EQ(ScopedSettings::Get(LanguageUtils::LanguageCodeKey), u"de");
    EXPECT_EQ(LanguageUtils::GetSampleWorkbooksLanguageString(), u"de");

    ScopedSettings::Set(LanguageUtils::LanguageCodeKey, u"ja_JP-Japan");
    EXPECT_EQ(LanguageUtils::GetSampleWorkbooksLanguageString(), u"ja_JP");
    const LanguageCode ui = LanguageCode::GetUILanguageCode();
    EXPECT_EQ(ui.GetFullString(), u"ja_JP-Japan");
    EXPECT_EQ(ui.GetLCID(), 0x0411u);

    // The samples language is not checked at all.
    ScopedSettings::Set(LanguageUtils::SamplesLanguageKey, u"anything at all");
    EXPECT_EQ(LanguageUtils::GetSampleDataSourcesLanguageString(), u"anything at all");
}

TEST(LanguageSettings, UnknownStoredCodeIsReplacedOnFirstRead)
{
    ScopedSettings settings;
    ScopedIcuDefault pinned("fr_BE");
    ScopedSettings::Set(LanguageUtils::LanguageCodeKey, u"xx_YY");
    EXPECT_EQ(LanguageUtils::GetUILanguageCodeStr(), u"fr_FR-EU");
    EXPECT_EQ(ScopedSettings::Get(LanguageUtils::LanguageCodeKey), u"fr_FR-EU");
}

TEST(LanguageSettings, EmptyStoreTakesTheSystemLocale)
{
    ScopedSettings settings;
    {
        // The first chain knows no Polish and ends at the bare default; the samples chain
        // reads the special table.
        ScopedIcuDefault pinned("pl_PL");
        EXPECT_EQ(LanguageUtils::GetUILanguageCodeStr(), u"en_US");
        EXPECT_EQ(ScopedSettings::Get(LanguageUtils::LanguageCodeKey), u"en_US");
        EXPECT_EQ(LanguageUtils::GetSampleDataSourcesLanguageString(), u"en_GB-EU");
        EXPECT_EQ(ScopedSettings::Get(LanguageUtils::SamplesLanguageKey), u"en_GB-EU");
    }
    ScopedIcuDefault pinned("ja_JP"); // stored values now stand, whatever the locale
    EXPECT_EQ(LanguageUtils::GetUILanguageCodeStr(), u"en_US");
    EXPECT_EQ(LanguageUtils::GetSampleDataSourcesLanguageString(), u"en_GB-EU");
}

TEST(LanguageSettings, PosixDefaultLocaleReadsAsEnglish)
{
    ScopedSettings settings;
    ScopedIcuDefault pinned("en_US_POSIX");
    EXPECT_EQ(LanguageUtils::GetLocaleStr(2048), u"en_POSIX");
    EXPECT_EQ(LanguageUtils::GetUILanguageCodeStr(), u"en_US-US");
    EXPECT_EQ(LanguageUtils::GetSampleDataSourcesLanguageString(), u"en_US-US");
}

TEST(LanguageUtils, CorrectedLangCode)
{
    const std::pair<const char16_t*, const char16_t*> rows[] = {
        {u"de", u"de_DE"}, {u"en", u"en_US"}, {u"zh", u"zh_CN"},     {u"sr", u"sr_RS"},
        {u"DE", u"de_DE"}, {u"", u""},        {u"x", u"x"},          {u"xyzw", u"xyzw"},
        {u"d1", u"d1"},    {u"\u00fc", u"\u00fc"}, {u"de_AT", u"de_AT"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(GetCorrectedLangCode(TString(row.first)), row.second) << TString(row.first).toStdString();
}

// Run alone (as ctest does) this is the process's first use of every table.
TEST(LanguageUtils, RacingFirstUseGivesOneAnswer)
{
    constexpr int threadCount = 8;
    std::atomic<bool> go{false};
    std::vector<std::vector<TString>> answers(threadCount);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            while (!go.load(std::memory_order_acquire))
                std::this_thread::yield();
            // Half the threads set up ICU first, so that different tables are reached first.
            if (t % 2 != 0)
                ICUUtils::Initialize();
            std::vector<TString>& out = answers[size_t(t)];
            out.push_back(LanguageUtils::GetClosestSpecialLocaleCode(u"nl_NL"));
            out.push_back(LanguageUtils::GetClosestSupportedLanguageCode(u"fr_BE"));
            out.push_back(LanguageUtils::GetClosestSupportedLanguageCodeV2(u"mn_MN"));
            out.push_back(TString::number(int(LanguageUtils::GetLanguageScript(u"zh_HK"))));
            out.push_back(LanguageUtils::GetMapCodeString(LanguageUtilsInternal::GetMapCodeForLocale(u"en_IN")));
            out.push_back(TString::number(unsigned(LanguageUtilsInternal::GetLanguageMap().size())));
            out.push_back(LanguageUtils::GetDisplayStringForLanguageCode(u"de_DE"));
            out.push_back(LanguageUtils::GetDefaultLanguage());
            out.push_back(LanguageCode(TString(u"de")).GetFullString());
        });
    }
    go.store(true, std::memory_order_release);
    for (std::thread& thread : threads)
        thread.join();

    const std::vector<TString> expected = {u"en_GB-EU", u"fr_FR-EU", u"zn_CN-China", u"2", u"IN",
                                           u"14",       u"&Deutsch", u"en",          u"de_DE-EU"};
    for (int t = 0; t < threadCount; ++t)
        EXPECT_EQ(answers[size_t(t)], expected) << "thread " << t;
}
