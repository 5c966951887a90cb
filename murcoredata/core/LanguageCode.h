#pragma once

#include "murcoredata/core/LanguageUtils.h"

/// One normalised language: an ISO string without script ("en_US"), a market string that
/// may be empty ("US"), and a locale id (0x0409). Copying copies all three.
///
/// Built from a code, the id is ICU's and the ISO string is derived anew from the id; built
/// from an id, the id is kept as given. The market comes from the code's full string, or
/// else from the supported row of the code's language:
///   LanguageCode("de")    -> "de_DE", "EU", 0x0407
///   LanguageCode("en_AU") -> "en_AU", "US", 0x0C09   (the market of "en")
///   LanguageCode("")      -> "", "", 0
/// A code that ICU cannot read gets id 0 and the ISO string "root".
class MURCOREDATA_EXPORT LanguageCode
{
public:
    /// The user's default locale, its name kept as ICU gives it, with id 1024.
    LanguageCode();
    /// `SetLanguageCode(code, false)`.
    explicit LanguageCode(const TString& code);
    /// The language of a locale id; the id is kept as given (1024 stays 1024).
    explicit LanguageCode(lcid id);

    /// The same as the id constructor, on this object.
    void SetLCID(lcid id);
    /// Takes a code in any form: bare language, ISO string, full string. With `keepIso` the
    /// ISO string is the code's own and the id is left as it was; without, both come from
    /// ICU's id of the code. An empty code (after the supported table) clears all three.
    void SetLanguageCode(const TString& code, bool keepIso);

    lcid GetLCID() const { return m_lcid; }
    const TString& GetISOString() const { return m_isoString; }
    const TString& GetMarketString() const { return m_marketString; }
    operator const TString&() const { return m_isoString; }
    /// The low 16 bits of the id.
    uint16_t GetLangID() const { return uint16_t(m_lcid & 0xFFFFu); }
    /// ISO string "-" market, or the ISO string alone without a market.
    TString GetFullString() const;
    /// The first two characters of the ISO string, whatever the language ("kok_IN" -> "ko").
    TString GetShortLanguageCode() const;
    /// ICU's language of the ISO string ("en").
    TString GetLanguageName() const;
    /// ICU's country of the ISO string ("US").
    TString GetCountryName() const;
    /// ICU's display name of this locale in the language of `displayLcid`.
    TString GetDisplayName(lcid displayLcid) const;
    /// The ISO string in lower case with "-" for "_": "en-us".
    TString GetWebLanguageCode() const;
    /// The map region of the ISO string.
    MapCode GetMapCode() const;

    /// The language the user interface speaks: the stored (or derived) UI language code.
    static LanguageCode GetUILanguageCode();

private:
    TString m_isoString;
    TString m_marketString;
    lcid m_lcid = 0;
};
