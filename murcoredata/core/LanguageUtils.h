#pragma once

// Which language the application speaks and which locale a request means.
//
// A language code has up to four pieces, and every function here converts between forms:
//
//   language     "en"
//   ISO string   language "_" region: "en_US"; with a script "zh_Hans_CN"  (what ICU is given)
//   market       a commercial region: "EU", "US", "APAC", "LATAM", "USCA", "Japan", "China"
//   full string  ISO string "-" market: "en_US-EU"     (what the supported table yields)
//
// A locale id (`lcid`, Lcid.h) is the third way of naming a locale. A "-" at index 0
// separates nothing: "-US" has no market, and its ISO string is "-US".
//
// Nothing here throws on bad text: every look-up falls down a chain of built-in tables and
// ends at the default, "en_US" (ISO) or "en_US-US" (full). The tables are built on first use,
// safely when threads race to be first, and live until the process ends.

#include "murcoredata/core/LanguageData.h"
#include "murcoredata/core/Lcid.h"

#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// The map regions: which provider's maps a locale sees. Any locale not listed is `US`.
enum class MapCode : int
{
    US = 1,
    CN = 2,
    IN = 3,
};

/// Code (bare language, ISO string or full string) -> full string.
using SupportedLanguageTable = std::unordered_map<TString, TString>;
/// ISO string -> desktop language row.
using LanguageMap = std::unordered_map<TString, LanguageData>;

/// Conversions between the forms of a language code, and the fallback chains.
class MURCOREDATA_EXPORT LanguageUtils
{
public:
    /// The script a Chinese code is written in; every other code is `None`.
    enum class LanguageScript : int
    {
        None = 0,
        SimplifiedChinese = 1,
        TraditionalChinese = 2,
    };

    //===--------------------------------------------------------------------===//
    // Forms
    //===--------------------------------------------------------------------===//

    /// "%1-%2" of the two, or `iso` alone when `market` is empty.
    static TString BuildFullString(const TString& iso, const TString& market);
    /// "zh_Hans_CN" -> "zh_CN": the middle of exactly three "_" pieces goes. Codes under six
    /// characters, and codes of any other piece count, come back unchanged.
    static TString RemoveScriptFromLanguageCode(const TString& code);
    /// "en_US-EU" -> "en_US": the first of exactly two "-" pieces. Codes under six characters,
    /// and codes of any other piece count, come back unchanged.
    static TString RemoveMarketStringFromLanguageCode(const TString& code);
    /// The code up to its first "-" (at index 1 or later), without its script.
    static TString GetISOString(const TString& code);
    /// "en_US".
    static TString GetDefaultISOString();
    /// The language of the ICU locale "en_US", read once: "en".
    static TString GetDefaultLanguage();

    //===--------------------------------------------------------------------===//
    // Locale ids
    //===--------------------------------------------------------------------===//

    /// 1024 and 2048 become the id of the user's current locale (ICU's default locale here);
    /// any other id comes back unchanged.
    static lcid ConvertDefaultLocale(lcid id);
    /// The locale name of an id: ICU's default locale for 1024 and 2048, "root" for 0 and for
    /// ids ICU does not know, else ICU's name ("zh_Hant_TW" for 0x0404).
    static std::string GetLocaleNarrowStr(lcid id);
    /// `GetLocaleNarrowStr` without its script ("zh_TW" for 0x0404); 4096 gives "ar".
    static TString GetLocaleStr(lcid id);
    /// ICU's id of a locale name; 0 when ICU knows none.
    static lcid GetLCID(const TString& code);
    /// Whether ICU has an id for the name.
    static bool IsLocaleSupported(const TString& code);

    //===--------------------------------------------------------------------===//
    // Supported languages and the fallback chains
    //===--------------------------------------------------------------------===//

    /// Whether `code` is a key of the supported table ("de", "de_DE", "de_DE-EU", ...).
    static bool IsLanguageCodeSupported(const TString& code);
    /// The first chain: the table's value for a key; otherwise the first row, in the
    /// table's built-in order, of the same language and script (and market, when the code
    /// has one and no script); otherwise "en_US", an ISO string without a market.
    ///   GetClosestSupportedLanguageCode("fr_BE") == "fr_FR-EU"
    static TString GetClosestSupportedLanguageCode(const TString& code);
    static TString GetClosestSupportedLanguageCode(lcid id);
    /// The chain for samples and string tables: a supported target of the special table;
    /// otherwise the first chain, where a bare "en_US" becomes "en_US-US".
    ///   GetClosestSpecialLocaleCode("nl_NL") == "en_GB-EU"
    static TString GetClosestSpecialLocaleCode(const TString& code);
    static TString GetClosestSpecialLocaleCode(lcid id);
    /// The order-free chain: the supported table, then the special table (its target taken
    /// unchecked: "mn_MN" gives "zn_CN-China"), then the code's language in the supported
    /// table, then "en_US-US".
    static TString GetClosestSupportedLanguageCodeV2(const TString& code);
    /// `GetClosestSupportedLanguageCodeV2` without its market.
    static TString GetClosestSupportedLanguageCodeWithoutMarketV2(const TString& code);
    /// `GetClosestSpecialLocaleCode("en_US")`: "en_US-US".
    static TString GetDefaultSamplesString();
    /// The distinct full strings of the supported table.
    static std::unordered_set<TString> GetSupportedLanguages();

    //===--------------------------------------------------------------------===//
    // Languages, scripts, map regions
    //===--------------------------------------------------------------------===//

    /// Look-up by exact key: "zh_Hans_HK" is traditional, "zh_Hans" is `None`.
    static LanguageScript GetLanguageScript(const TString& code);
    /// ICU's language of the code ("en" for "en_US-EU"); empty when ICU reads none.
    static TString GetLanguageName(const TString& code);
    /// The code itself for "en_GB", "fr_CA" and "zh_TW", else its language.
    static TString GetLanguageShortAlias(const TString& code);
    /// The locale -> map region table.
    static const std::map<TString, MapCode>& GetMapCodeLocales();
    /// "US", "CN", "IN"; any other value reads "US".
    static TString GetMapCodeString(MapCode code);
    /// True for "US", "GB", "LR" and "MM".
    static bool UsesImperialDistanceUnits(const TString& country);

    //===--------------------------------------------------------------------===//
    // The user's languages (settings group 37)
    //===--------------------------------------------------------------------===//

    /// The stored "LanguageCode" when it is a supported key, as stored (a bare "de" stays
    /// "de"). Otherwise the closest supported code of the system locale, which is stored.
    static TString GetUILanguageCodeStr();
    /// The stored "SamplesLanguage", unchecked, when not empty. Otherwise the closest special
    /// code of the system locale, which is stored.
    static TString GetSampleDataSourcesLanguageString();
    /// The ISO string of `GetUILanguageCodeStr()`.
    static TString GetSampleWorkbooksLanguageString();

    //===--------------------------------------------------------------------===//
    // The desktop language menu
    //===--------------------------------------------------------------------===//

    /// Fills the language map, once.
    static void InitializeLanguageMap();
    /// Whether the two pseudo-localised test languages ("ga_IE", "nl_NL") are on. They are
    /// switched on by the presence of their resource pack; this build has none: false.
    static bool PseudoLocFeatureShouldBeEnabled();
    /// The keys of the language map: the ISO string of the UI language first, then by sort
    /// name (position 3), ascending.
    static std::vector<TString> GetAvailableDesktopLanguages();
    /// The menu text (position 2) of a language map row; empty for an absent key.
    static TString GetDisplayStringForLanguageCode(const TString& code);

    /// The settings keys of group 37.
    static constexpr const char16_t* LanguageCodeKey = u"LanguageCode";
    static constexpr const char16_t* SamplesLanguageKey = u"SamplesLanguage";
};

/// The tables behind `LanguageUtils`, for callers that need them whole.
class MURCOREDATA_EXPORT LanguageUtilsInternal
{
public:
    /// The map region of an ISO string; `US` when the table has none.
    static MapCode GetMapCodeForLocale(const TString& iso);
    /// The supported table, completed from the language map (and the pseudo languages when
    /// they are on) on first use. Read-only from then on.
    static const SupportedLanguageTable& GetSupportedLanguageTable();
    /// The table of locales the application does not ship in -> the full string they read
    /// ("nl_NL" -> "en_GB-EU"). Its targets need not be supported ("mn_MN" -> "zn_CN-China").
    static const std::unordered_map<TString, TString>& GetSpecialLocaleTable();
    /// The live desktop language map, filled on first use. Changes to it (and `ResetPseudo`)
    /// are not synchronised with readers: make them before threads read it.
    static LanguageMap& GetLanguageMap();
    /// Writes the locale name of an id into `buffer` of `length` chars, always NUL-terminated
    /// (for a non-zero `length`): ICU's default locale for 2048 (cut to fit); "root" for 0, for
    /// 1024 and for ids ICU does not know.
    static void GetLocaleForLCID(lcid id, char* buffer, size_t length);
    /// The code after its first "-" (at index 1 or later), else empty.
    static TString GetMarketString(const TString& code);
    /// "en_US".
    static std::string GetDefaultISONarrowStr();
    /// Puts the pseudo rows "ga_IE" and "nl_NL" into the language map (from the default map)
    /// or takes them out.
    static void ResetPseudo(bool enable);
};

/// Repairs a code that came in too short: a bare language becomes an ISO string, through
/// the supported table first ("en" -> "en_US", "zh" -> "zh_CN"), else through ICU's likely
/// region ("pl" -> "pl_PL"). Codes that have a region, and codes neither source knows, come
/// back unchanged.
MURCOREDATA_EXPORT TString GetCorrectedLangCode(const TString& code);
