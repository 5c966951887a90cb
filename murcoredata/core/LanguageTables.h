#pragma once

// Internal to the library (and its tests): the built-in rows of the language tables, and the
// tables and fallback chains built from them. `LanguageUtils` holds one process-wide set;
// tests build others, for example with the pseudo languages switched on.

#include "murcoredata/core/LanguageUtils.h"

#include <cstddef>

namespace Implementation {

/// A read-only run of built-in rows.
template <typename Row>
struct TableView
{
    const Row* rows;
    size_t count;

    const Row* begin() const { return rows; }
    const Row* end() const { return rows + count; }
    size_t size() const { return count; }
};

struct SupportedLanguageRow
{
    const char16_t* code;
    const char16_t* fullString;
};

/// The six positions of a `LanguageData`.
struct DesktopLanguageRow
{
    const char16_t* entries[LanguageData::PositionCount];
};

struct SpecialLocaleRow
{
    const char16_t* locale;
    const char16_t* fullString;
};

struct MapCodeRow
{
    const char16_t* locale;
    MapCode mapCode;
};

struct LanguageScriptRow
{
    const char16_t* code;
    LanguageUtils::LanguageScript script;
};

/// 41 rows, in the order the first fallback chain walks them.
MURCOREDATA_EXPORT TableView<SupportedLanguageRow> BuiltInSupportedLanguageRows();
/// 17 rows; "en_US" stands twice, identically.
MURCOREDATA_EXPORT TableView<DesktopLanguageRow> BuiltInDesktopLanguageRows();
/// 123 rows.
MURCOREDATA_EXPORT TableView<SpecialLocaleRow> BuiltInSpecialLocaleRows();
/// 35 rows.
MURCOREDATA_EXPORT TableView<MapCodeRow> BuiltInMapCodeRows();
/// 12 rows.
MURCOREDATA_EXPORT TableView<LanguageScriptRow> BuiltInLanguageScriptRows();
/// "en_GB", "fr_CA", "zh_TW".
MURCOREDATA_EXPORT TableView<const char16_t*> BuiltInShortAliases();

/// The default desktop language map: the built-in rows, the repeat folded away.
MURCOREDATA_EXPORT LanguageMap BuildDefaultLanguageMap();

/// The supported table and the special table, completed once from a language map, with the
/// fallback chains that read them. Immutable once made, so safe to share between threads.
class MURCOREDATA_EXPORT LanguageTableSet
{
public:
    /// The built-in rows; then, from `languageMap`, each row whose position 4 is a non-zero
    /// number adds its language, ISO string and full string (where absent); then, with
    /// `pseudo`, the two pseudo languages.
    LanguageTableSet(const LanguageMap& languageMap, bool pseudo);

    const SupportedLanguageTable& GetSupportedTable() const { return m_supported; }
    const std::unordered_map<TString, TString>& GetSpecialTable() const { return m_special; }

    TString ClosestSupported(const TString& code) const;
    TString ClosestSpecial(const TString& code) const;
    TString ClosestSupportedV2(const TString& code) const;

private:
    /// A supported row with what the first chain compares, read from ICU once.
    struct RowFacts
    {
        TString key;
        TString fullString;
        TString language;
        TString market;
        LanguageUtils::LanguageScript script;
    };

    void AddSupported(const TString& key, const TString& fullString);

    SupportedLanguageTable m_supported;
    std::vector<RowFacts> m_order;
    std::unordered_map<TString, TString> m_special;
};

} // namespace Implementation
