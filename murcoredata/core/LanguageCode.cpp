#include "murcoredata/core/LanguageCode.h"

#include "murcoredata/string/ICUUtils.h"

LanguageCode::LanguageCode() : LanguageCode(LocaleIds::UserDefault)
{
}

LanguageCode::LanguageCode(const TString& code)
{
    SetLanguageCode(code, false);
}

LanguageCode::LanguageCode(lcid id)
{
    SetLCID(id);
}

void LanguageCode::SetLCID(lcid id)
{
    SetLanguageCode(LanguageUtils::GetLocaleStr(id), true);
    m_lcid = id;
}

void LanguageCode::SetLanguageCode(const TString& code, bool keepIso)
{
    const SupportedLanguageTable& supported = LanguageUtilsInternal::GetSupportedLanguageTable();
    const auto hit = supported.find(code);
    TString working = hit != supported.end() ? hit->second : code;
    if (working.isEmpty()) {
        m_lcid = 0;
        m_isoString.clear();
        m_marketString.clear();
        return;
    }
    working = LanguageUtils::RemoveScriptFromLanguageCode(working);

    if (keepIso) {
        m_isoString = LanguageUtils::GetISOString(working);
    } else {
        // The ISO string is derived anew from ICU's id, so that every spelling of a locale
        // ("EN_us", "en-US") ends in ICU's own.
        m_lcid = ICUUtils::GetLCID(LanguageUtils::GetISOString(working));
        m_isoString = LanguageUtils::GetLocaleStr(m_lcid);
    }

    m_marketString = LanguageUtilsInternal::GetMarketString(working);
    if (m_marketString.isEmpty()) {
        // The market of the language's own row; the language is read from the code as given.
        const auto row = supported.find(LanguageUtils::GetLanguageName(code));
        if (row != supported.end())
            m_marketString = LanguageUtilsInternal::GetMarketString(row->second);
    }
}

TString LanguageCode::GetFullString() const
{
    return LanguageUtils::BuildFullString(m_isoString, m_marketString);
}

TString LanguageCode::GetShortLanguageCode() const
{
    return m_isoString.left(2);
}

TString LanguageCode::GetLanguageName() const
{
    return ICUUtils::GetLanguageName(m_isoString);
}

TString LanguageCode::GetCountryName() const
{
    return ICUUtils::GetCountryName(m_isoString);
}

TString LanguageCode::GetDisplayName(lcid displayLcid) const
{
    return ICUUtils::GetDisplayName(m_lcid, displayLcid);
}

TString LanguageCode::GetWebLanguageCode() const
{
    return m_isoString.toLower().replace(u'_', u'-');
}

MapCode LanguageCode::GetMapCode() const
{
    return LanguageUtilsInternal::GetMapCodeForLocale(m_isoString);
}

LanguageCode LanguageCode::GetUILanguageCode()
{
    LanguageCode code;
    code.SetLanguageCode(LanguageUtils::GetUILanguageCodeStr(), false);
    return code;
}
