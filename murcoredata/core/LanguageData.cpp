#include "murcoredata/core/LanguageData.h"

#include "murcoredata/foundation/MurErrorsError.h"

LanguageData::LanguageData(const TString& list) : m_entries(list.split(u',', TString::KeepEmptyParts))
{
}

LanguageData::operator TString() const
{
    TString joined;
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (i > 0)
            joined += u',';
        joined += m_entries[i];
    }
    return joined;
}

bool LanguageData::IsValid() const
{
    if (m_entries.size() != size_t(PositionCount))
        return false;
    for (const TString& entry : m_entries)
        if (entry.isEmpty())
            return false;
    return true;
}

TString LanguageData::Get(int position) const
{
    if (position < 0 || size_t(position) >= m_entries.size())
        return TString();
    return m_entries[size_t(position)];
}

TString LanguageData::GetLanguageWithoutRegion() const
{
    const TStringList parts =
        m_entries.empty() ? TStringList() : m_entries.front().split(u'_', TString::SkipEmptyParts);
    if (parts.empty())
        MUR_LOGIC_FAIL("false", LogicAssert_0x04F5CEB8);
    return parts.front();
}
