#pragma once

#include "murcoredata/foundation/TString.h"

#include <initializer_list>
#include <vector>

/// One row of the table of desktop languages: six texts, by position.
///
///   0  ISO string of the row's language ("de_DE")
///   1  fallback language ("en_US" in every built-in row)
///   2  text of the language's menu entry, "&" before its mnemonic ("&Deutsch")
///   3  sort name; a "z" prefix puts non-Latin scripts after the Latin ones ("z1-Japanese")
///   4  a number as text: non-zero makes the row extend the supported languages ("0" built in)
///   5  market string ("EU")
///
/// The text form is the six entries joined by ",", so no entry may hold a ",".
class MURCOREDATA_EXPORT LanguageData
{
public:
    enum Position : int
    {
        ISOString = 0,
        FallbackLanguage = 1,
        MenuText = 2,
        SortName = 3,
        ExtensionNumber = 4,
        MarketString = 5,
        PositionCount = 6,
    };

    LanguageData() = default;
    LanguageData(std::initializer_list<TString> entries) : m_entries(entries) {}
    /// From the text form: `list` split at ",", empty parts kept.
    explicit LanguageData(const TString& list);

    /// The entries joined by ",", with no trailing ",".
    operator TString() const;

    /// Exactly six entries, none empty.
    [[nodiscard]] bool IsValid() const;

    /// The entry at `position`, or the empty text for a position the row does not have.
    TString Get(int position) const;
    const std::vector<TString>& GetEntries() const { return m_entries; }

    /// The language of position 0: its first piece between "_" ("de" for "de_DE"). A position 0
    /// that is missing or holds nothing but "_" is a broken row and fails a logic assertion.
    TString GetLanguageWithoutRegion() const;

    friend bool operator==(const LanguageData& a, const LanguageData& b) { return a.m_entries == b.m_entries; }
    friend bool operator!=(const LanguageData& a, const LanguageData& b) { return !(a == b); }

private:
    std::vector<TString> m_entries;
};
