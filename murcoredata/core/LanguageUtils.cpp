#include "murcoredata/core/LanguageUtils.h"

#include "murcoredata/core/LanguageTables.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TSettings.h"
#include "murcoredata/string/ICUUtils.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

using Implementation::LanguageTableSet;
using LanguageScript = LanguageUtils::LanguageScript;

namespace {

constexpr const char16_t* s_defaultISOString = u"en_US";
constexpr const char16_t* s_defaultFullString = u"en_US-US";
// The pseudo-localised test languages and their full strings.
constexpr const char16_t* s_pseudoLanguages[] = {u"ga_IE", u"nl_NL"};

// The position of the "-" before a market: the first "-", if it stands at index 1 or later.
// A "-" at index 0 separates nothing.
int MarketSeparator(const TString& code)
{
    const int at = code.indexOf(u'-');
    return at >= 1 ? at : -1;
}

// Copies `text` into `buffer` of `length` chars, cut to fit, NUL-terminated.
void CopyCut(const char* text, char* buffer, size_t length)
{
    const size_t n = std::min(std::strlen(text), length - 1);
    std::memcpy(buffer, text, n);
    buffer[n] = '\0';
}

bool IsAsciiLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

//===--------------------------------------------------------------------===//
// The process-wide tables. Each is a function-local static, so the first use is safe when
// threads race to it; none is ever freed, so no caller at exit finds it destroyed.
//===--------------------------------------------------------------------===//

const std::map<TString, MapCode>& MapCodeTable()
{
    static const auto* table = [] {
        auto* t = new std::map<TString, MapCode>;
        for (const auto& row : Implementation::BuiltInMapCodeRows())
            t->emplace(TString(row.locale), row.mapCode);
        return t;
    }();
    return *table;
}

const std::map<TString, LanguageScript>& ScriptTable()
{
    static const auto* table = [] {
        auto* t = new std::map<TString, LanguageScript>;
        for (const auto& row : Implementation::BuiltInLanguageScriptRows())
            t->emplace(TString(row.code), row.script);
        return t;
    }();
    return *table;
}

const LanguageMap& DefaultLanguageMap()
{
    static const LanguageMap* map = new LanguageMap(Implementation::BuildDefaultLanguageMap());
    return *map;
}

// Puts the pseudo rows into `live` from the default map, or takes them out.
void ApplyPseudo(LanguageMap& live, bool enable)
{
    const LanguageMap& defaults = DefaultLanguageMap();
    for (const char16_t* language : s_pseudoLanguages) {
        const TString key(language);
        if (!enable) {
            live.erase(key);
            continue;
        }
        if (live.count(key) != 0)
            continue;
        const auto row = defaults.find(key);
        if (row == defaults.end())
            MUR_LOGIC_FAIL("false", LogicAssert_0x4B77BEEC);
        live.emplace(key, row->second);
    }
}

LanguageMap& LiveLanguageMap()
{
    static LanguageMap* map = [] {
        const LanguageMap& defaults = DefaultLanguageMap();
        auto* live = new LanguageMap;
        live->max_load_factor(defaults.max_load_factor());
        *live = defaults;
        ApplyPseudo(*live, LanguageUtils::PseudoLocFeatureShouldBeEnabled());
        return live;
    }();
    return *map;
}

const LanguageTableSet& ProcessTables()
{
    static const LanguageTableSet* tables =
        new LanguageTableSet(LiveLanguageMap(), LanguageUtils::PseudoLocFeatureShouldBeEnabled());
    return *tables;
}

} // namespace

//===--------------------------------------------------------------------===//
// Implementation: the tables and the chains
//===--------------------------------------------------------------------===//

namespace Implementation {

LanguageMap BuildDefaultLanguageMap()
{
    LanguageMap map;
    for (const DesktopLanguageRow& row : BuiltInDesktopLanguageRows()) {
        LanguageData data{TString(row.entries[0]), TString(row.entries[1]), TString(row.entries[2]),
                          TString(row.entries[3]), TString(row.entries[4]), TString(row.entries[5])};
        // The repeated row finds its key taken and is dropped; it is identical anyway.
        map.emplace(TString(row.entries[LanguageData::ISOString]), std::move(data));
    }
    return map;
}

LanguageTableSet::LanguageTableSet(const LanguageMap& languageMap, bool pseudo)
{
    for (const SupportedLanguageRow& row : BuiltInSupportedLanguageRows())
        AddSupported(TString(row.code), TString(row.fullString));

    // Rows that extend the supported languages, in key order so that every build agrees.
    std::vector<const LanguageMap::value_type*> extensions;
    for (const auto& entry : languageMap) {
        bool ok = false;
        const int number = entry.second.Get(LanguageData::ExtensionNumber).toInt(&ok);
        if (ok && number != 0)
            extensions.push_back(&entry);
    }
    std::sort(extensions.begin(), extensions.end(), [](const auto* a, const auto* b) { return a->first < b->first; });
    for (const auto* entry : extensions) {
        const LanguageData& row = entry->second;
        const TString iso = row.Get(LanguageData::ISOString);
        const TString full = LanguageUtils::BuildFullString(iso, row.Get(LanguageData::MarketString));
        AddSupported(row.GetLanguageWithoutRegion(), full);
        AddSupported(iso, full);
        AddSupported(full, full);
    }

    if (pseudo) {
        for (const char16_t* key : {u"ga", u"ga_IE", u"ga_IE-US"})
            AddSupported(TString(key), TString(u"ga_IE-US"));
        for (const char16_t* key : {u"nl", u"nl_NL", u"nl_NL-EU"})
            AddSupported(TString(key), TString(u"nl_NL-EU"));
    }

    for (const SpecialLocaleRow& row : BuiltInSpecialLocaleRows())
        m_special.emplace(TString(row.locale), TString(row.fullString));
    if (pseudo) {
        m_special.emplace(TString(u"ga_IE-US"), TString(s_defaultFullString));
        m_special.emplace(TString(u"nl_NL-EU"), TString(s_defaultFullString));
    }
}

void LanguageTableSet::AddSupported(const TString& key, const TString& fullString)
{
    if (!m_supported.emplace(key, fullString).second)
        return;
    m_order.push_back(RowFacts{key, fullString, LanguageUtils::GetLanguageName(key),
                               LanguageUtilsInternal::GetMarketString(key), LanguageUtils::GetLanguageScript(key)});
}

TString LanguageTableSet::ClosestSupported(const TString& code) const
{
    const auto hit = m_supported.find(code);
    if (hit != m_supported.end())
        return hit->second;

    const TString language = LanguageUtils::GetLanguageName(code);
    const TString market = LanguageUtilsInternal::GetMarketString(code);
    const LanguageScript script = LanguageUtils::GetLanguageScript(LanguageUtils::GetISOString(code));
    // The built-in order decides between rows of one language ("en" before "en_GB"), so the
    // answer does not depend on how a hash table happens to order its keys.
    for (const RowFacts& row : m_order) {
        if (row.language != language || row.script != script)
            continue;
        if (market.isEmpty() || row.market == market || script != LanguageScript::None)
            return row.fullString;
    }
    return TString(s_defaultISOString);
}

TString LanguageTableSet::ClosestSpecial(const TString& code) const
{
    const auto special = m_special.find(code);
    if (special != m_special.end() && m_supported.count(special->second) != 0)
        return special->second;
    const TString closest = ClosestSupported(code);
    // The first chain ends at a bare ISO string; samples and string tables need a full one.
    // "en_US" is a built-in key, so this goes one level deep at most.
    if (closest == s_defaultISOString)
        return ClosestSpecial(TString(s_defaultISOString));
    return closest;
}

TString LanguageTableSet::ClosestSupportedV2(const TString& code) const
{
    const auto hit = m_supported.find(code);
    if (hit != m_supported.end())
        return hit->second;
    const auto special = m_special.find(code);
    if (special != m_special.end())
        return special->second;
    const auto language = m_supported.find(LanguageUtils::GetLanguageName(code));
    if (language != m_supported.end())
        return language->second;
    return TString(s_defaultFullString);
}

} // namespace Implementation

//===--------------------------------------------------------------------===//
// LanguageUtils: forms
//===--------------------------------------------------------------------===//

TString LanguageUtils::BuildFullString(const TString& iso, const TString& market)
{
    if (market.isEmpty())
        return iso;
    return iso + u'-' + market;
}

TString LanguageUtils::RemoveScriptFromLanguageCode(const TString& code)
{
    if (code.length() < 6)
        return code;
    const TStringList parts = code.split(u'_');
    if (parts.size() != 3)
        return code;
    return parts[0] + u'_' + parts[2];
}

TString LanguageUtils::RemoveMarketStringFromLanguageCode(const TString& code)
{
    if (code.length() < 6)
        return code;
    const TStringList parts = code.split(u'-');
    if (parts.size() != 2)
        return code;
    return parts[0];
}

TString LanguageUtils::GetISOString(const TString& code)
{
    const int at = MarketSeparator(code);
    return RemoveScriptFromLanguageCode(at >= 0 ? code.left(at) : code);
}

TString LanguageUtils::GetDefaultISOString()
{
    return TString(s_defaultISOString);
}

TString LanguageUtils::GetDefaultLanguage()
{
    static const TString* language = new TString(ICUUtils::GetLanguageName(TString(s_defaultISOString)));
    return *language;
}

//===--------------------------------------------------------------------===//
// LanguageUtils: locale ids
//===--------------------------------------------------------------------===//

lcid LanguageUtils::ConvertDefaultLocale(lcid id)
{
    if (id != LocaleIds::UserDefault && id != LocaleIds::SystemDefault)
        return id;
    // The user's current locale is ICU's default locale, which ICU reads from the environment.
    const char* cflr = uloc_getDefault();
    MUR_LOGIC_ASSERT(cflr != nullptr, LogicAssert_0xB1362645);
    return uloc_getLCID(cflr);
}

std::string LanguageUtils::GetLocaleNarrowStr(lcid id)
{
    if (id == LocaleIds::UserDefault || id == LocaleIds::SystemDefault)
        return uloc_getDefault();
    char buffer[157];
    LanguageUtilsInternal::GetLocaleForLCID(id, buffer, sizeof buffer);
    return buffer;
}

TString LanguageUtils::GetLocaleStr(lcid id)
{
    if (id == LocaleIds::CustomUnspecified)
        return TString(u"ar");
    const std::string name = GetLocaleNarrowStr(id);
    return RemoveScriptFromLanguageCode(TString::fromUtf8(name.data(), int(name.size())));
}

lcid LanguageUtils::GetLCID(const TString& code)
{
    return ICUUtils::GetLCID(code);
}

bool LanguageUtils::IsLocaleSupported(const TString& code)
{
    return GetLCID(code) != 0;
}

//===--------------------------------------------------------------------===//
// LanguageUtils: supported languages and the chains
//===--------------------------------------------------------------------===//

bool LanguageUtils::IsLanguageCodeSupported(const TString& code)
{
    return ProcessTables().GetSupportedTable().count(code) != 0;
}

TString LanguageUtils::GetClosestSupportedLanguageCode(const TString& code)
{
    return ProcessTables().ClosestSupported(code);
}

TString LanguageUtils::GetClosestSupportedLanguageCode(lcid id)
{
    return GetClosestSupportedLanguageCode(GetLocaleStr(id));
}

TString LanguageUtils::GetClosestSpecialLocaleCode(const TString& code)
{
    return ProcessTables().ClosestSpecial(code);
}

TString LanguageUtils::GetClosestSpecialLocaleCode(lcid id)
{
    return GetClosestSpecialLocaleCode(GetLocaleStr(id));
}

TString LanguageUtils::GetClosestSupportedLanguageCodeV2(const TString& code)
{
    return ProcessTables().ClosestSupportedV2(code);
}

TString LanguageUtils::GetClosestSupportedLanguageCodeWithoutMarketV2(const TString& code)
{
    return RemoveMarketStringFromLanguageCode(GetClosestSupportedLanguageCodeV2(code));
}

TString LanguageUtils::GetDefaultSamplesString()
{
    return GetClosestSpecialLocaleCode(TString(s_defaultISOString));
}

std::unordered_set<TString> LanguageUtils::GetSupportedLanguages()
{
    std::unordered_set<TString> fullStrings;
    for (const auto& row : ProcessTables().GetSupportedTable())
        fullStrings.insert(row.second);
    return fullStrings;
}

//===--------------------------------------------------------------------===//
// LanguageUtils: languages, scripts, map regions
//===--------------------------------------------------------------------===//

LanguageUtils::LanguageScript LanguageUtils::GetLanguageScript(const TString& code)
{
    const auto& table = ScriptTable();
    const auto hit = table.find(code);
    return hit != table.end() ? hit->second : LanguageScript::None;
}

TString LanguageUtils::GetLanguageName(const TString& code)
{
    return ICUUtils::GetLanguageName(code);
}

TString LanguageUtils::GetLanguageShortAlias(const TString& code)
{
    for (const char16_t* alias : Implementation::BuiltInShortAliases())
        if (code == alias)
            return code;
    return GetLanguageName(code);
}

const std::map<TString, MapCode>& LanguageUtils::GetMapCodeLocales()
{
    return MapCodeTable();
}

TString LanguageUtils::GetMapCodeString(MapCode code)
{
    switch (code) {
    case MapCode::US:
        return TString(u"US");
    case MapCode::CN:
        return TString(u"CN");
    case MapCode::IN:
        return TString(u"IN");
    }
    // A value outside the enumeration reads as the first region.
    return TString(u"US");
}

bool LanguageUtils::UsesImperialDistanceUnits(const TString& country)
{
    return country == u"US" || country == u"GB" || country == u"LR" || country == u"MM";
}

//===--------------------------------------------------------------------===//
// LanguageUtils: the user's languages
//===--------------------------------------------------------------------===//

TString LanguageUtils::GetUILanguageCodeStr()
{
    const TString key(LanguageCodeKey);
    const TString stored = TSettings::GetStringValue(TSettings::CoreData, key, TString());
    if (!stored.isEmpty() && IsLanguageCodeSupported(stored))
        return stored;
    const TString derived = GetClosestSupportedLanguageCode(GetLocaleStr(LocaleIds::SystemDefault));
    TSettings::SetStringValue(TSettings::CoreData, key, derived);
    return derived;
}

TString LanguageUtils::GetSampleDataSourcesLanguageString()
{
    const TString key(SamplesLanguageKey);
    const TString stored = TSettings::GetStringValue(TSettings::CoreData, key, TString());
    if (!stored.isEmpty())
        return stored;
    const TString derived = GetClosestSpecialLocaleCode(GetLocaleStr(LocaleIds::SystemDefault));
    TSettings::SetStringValue(TSettings::CoreData, key, derived);
    return derived;
}

TString LanguageUtils::GetSampleWorkbooksLanguageString()
{
    return GetISOString(GetUILanguageCodeStr());
}

//===--------------------------------------------------------------------===//
// LanguageUtils: the desktop language menu
//===--------------------------------------------------------------------===//

void LanguageUtils::InitializeLanguageMap()
{
    (void)LiveLanguageMap();
}

bool LanguageUtils::PseudoLocFeatureShouldBeEnabled()
{
    return false;
}

std::vector<TString> LanguageUtils::GetAvailableDesktopLanguages()
{
    const TString first = GetISOString(GetUILanguageCodeStr());
    const LanguageMap& map = LiveLanguageMap();
    struct Entry
    {
        TString key;
        TString sortName;
    };
    std::vector<Entry> entries;
    entries.reserve(map.size());
    for (const auto& row : map)
        entries.push_back(Entry{row.first, row.second.Get(LanguageData::SortName)});
    // Ties between sort names fall to the key, so that the menu is the same on every run.
    std::sort(entries.begin(), entries.end(), [&first](const Entry& a, const Entry& b) {
        const bool aFirst = a.key == first;
        const bool bFirst = b.key == first;
        if (aFirst != bFirst)
            return aFirst;
        if (a.sortName != b.sortName)
            return a.sortName < b.sortName;
        return a.key < b.key;
    });
    std::vector<TString> keys;
    keys.reserve(entries.size());
    for (Entry& entry : entries)
        keys.push_back(std::move(entry.key));
    return keys;
}

TString LanguageUtils::GetDisplayStringForLanguageCode(const TString& code)
{
    const LanguageMap& map = LiveLanguageMap();
    const auto row = map.find(code);
    return row != map.end() ? row->second.Get(LanguageData::MenuText) : TString();
}

//===--------------------------------------------------------------------===//
// LanguageUtilsInternal
//===--------------------------------------------------------------------===//

MapCode LanguageUtilsInternal::GetMapCodeForLocale(const TString& iso)
{
    const auto& table = MapCodeTable();
    const auto hit = table.find(iso);
    return hit != table.end() ? hit->second : MapCode::US;
}

const SupportedLanguageTable& LanguageUtilsInternal::GetSupportedLanguageTable()
{
    return ProcessTables().GetSupportedTable();
}

const std::unordered_map<TString, TString>& LanguageUtilsInternal::GetSpecialLocaleTable()
{
    return ProcessTables().GetSpecialTable();
}

LanguageMap& LanguageUtilsInternal::GetLanguageMap()
{
    return LiveLanguageMap();
}

void LanguageUtilsInternal::GetLocaleForLCID(lcid id, char* buffer, size_t length)
{
    if (buffer == nullptr || length == 0)
        return;
    if (id == LocaleIds::SystemDefault) {
        CopyCut(uloc_getDefault(), buffer, length);
        return;
    }
    if (id == LocaleIds::UserDefault || id == 0) {
        CopyCut("root", buffer, length);
        return;
    }
    // ICU gets one char less than the buffer, so that the last one can always end the text.
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLocaleForLCID(id, buffer, int32_t(std::min<size_t>(length - 1, INT32_MAX)), &status);
    if (U_FAILURE(status)) {
        CopyCut("root", buffer, length);
        return;
    }
    buffer[length - 1] = '\0';
}

TString LanguageUtilsInternal::GetMarketString(const TString& code)
{
    const int at = MarketSeparator(code);
    return at >= 0 ? code.mid(at + 1) : TString();
}

std::string LanguageUtilsInternal::GetDefaultISONarrowStr()
{
    return "en_US";
}

void LanguageUtilsInternal::ResetPseudo(bool enable)
{
    ApplyPseudo(LiveLanguageMap(), enable);
}

//===--------------------------------------------------------------------===//
// GetCorrectedLangCode
//===--------------------------------------------------------------------===//

TString GetCorrectedLangCode(const TString& code)
{
    // Only a bare language of two or three letters is too short; anything else is left to
    // the chains, which know what to do with it.
    if (code.length() < 2 || code.length() > 3 || !std::all_of(code.begin(), code.end(), IsAsciiLetter))
        return code;

    const SupportedLanguageTable& supported = LanguageUtilsInternal::GetSupportedLanguageTable();
    const auto hit = supported.find(code);
    if (hit != supported.end())
        return LanguageUtils::GetISOString(hit->second);

    char likely[ULOC_FULLNAME_CAPACITY] = {};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = uloc_addLikelySubtags(code.toStdString().c_str(), likely, sizeof likely - 1, &status);
    if (U_FAILURE(status) || length <= 0)
        return code;
    const TString repaired = LanguageUtils::RemoveScriptFromLanguageCode(TString::fromUtf8(likely, length));
    // ICU may answer with the code itself when it knows no region for it.
    return repaired.contains(u'_') ? repaired : code;
}
