#pragma once

// Small ICU services over plain text: words, locale names, case mappings and character-set
// names. Locale names are ICU's ("de_DE", "zh_Hant_TW"; "-" reads as "_"), passed as UTF-8.
// ICU's error codes stay inside: a failure gives the empty text, 0, or the input unchanged,
// as each function says. Nothing here keeps state but the once-only `Initialize`.

#include "murcoredata/core/Lcid.h"
#include "murcoredata/foundation/TString.h"

#include <string>

class MURCOREDATA_EXPORT ICUUtils
{
public:
    /// The two Windows code pages the library names.
    enum CodePage : int
    {
        /// Code page 437, the original IBM PC (OEM United States) set.
        OemUnitedStates = 0,
        /// Code page 1252, Windows Latin 1.
        WindowsLatin1 = 1,
    };

    /// Loads ICU's data and the library's language tables, once, however many threads call.
    /// Hosts call it before they start threads; later first uses are safe without it.
    static void Initialize();
    /// Frees ICU's caches (`u_cleanup`), at unload. No ICU object may be open; ICU sets itself
    /// up again if it is used afterwards.
    static void Cleanup();

    /// The words of `text` by ICU's word break rules for `locale`: a boundary counts when it
    /// ends a word (letters, numbers, kana, ideographs), not white space or punctuation.
    ///   CountWords(u"Hello, world!", "en") == 2
    static int CountWords(const TString& text, const std::string& locale);

    /// ICU's display name of the locale of `localeId` in the language of `displayLcid`
    ///   GetDisplayName(0x0407, 0x0409) == "German (Germany)"
    static TString GetDisplayName(lcid localeId, lcid displayLcid);
    /// ICU's locale id of a name; 0 when ICU knows none.
    static lcid GetLCID(const TString& locale);
    /// The locale id of ICU's default locale.
    static lcid GetDefaultLCID();
    /// The region part ("US" for "en_US"); empty when there is none.
    static TString GetCountryName(const TString& locale);
    /// The ISO 3166 three-letter code of the region, in upper case ("USA"); empty if unknown.
    static TString GetCountryNameISO3(const TString& locale);
    /// The language part, in lower case ("en" for "EN_us"); empty when there is none.
    static TString GetLanguageName(const TString& locale);
    /// The ISO 4217 currency of the locale's region ("EUR" for "de_DE"); empty for a locale
    /// without a region or a currency.
    static TString GetCurrencyCode(const TString& locale);

    /// Full upper case by ICU's rules for `locale` (null: ICU's default locale): "ß" gives
    /// "SS", and "i" gives "İ" under "tr". The text ends at its first U+0000, as ICU's
    /// C strings do; on any failure the input comes back unchanged.
    static TString StrToUpper(const TString& text, const char* locale);
    /// Full case folding ("ß" gives "ss"). `excludeSpecialI` folds "I" to "ı" and "İ" to "i"
    /// as Turkish does. The text ends at its first U+0000; on failure the input comes back.
    static TString StrFoldCase(const TString& text, bool excludeSpecialI);

    /// The IANA name of a character set ICU knows by any alias ("latin1" -> "ISO_8859-1:1987");
    /// a name ICU does not know comes back as it is; null gives the empty text.
    static TString TryGetIanaCharactersetName(const char* name);
    /// The IANA name of a code page: "IBM437" and "windows-1252". Any other value is a
    /// programmer's mistake and fails a logic assertion.
    static TString TryGetIanaCharactersetName(CodePage codePage);
    /// How many converters ICU has.
    static int CountAvailableConverters();
    /// The name of converter `index` (0 to `CountAvailableConverters()` - 1); empty outside.
    static TString GetAvailableConverterName(int index);
};
