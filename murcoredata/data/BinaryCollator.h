#pragma once

// The code-unit collator: UTF-16 code units compared as numbers, with no knowledge of
// language. One stateless `BinaryCollator` serves every thread, reached without any map.
//
// Null texts read as empty ones, and the counted `Compare` takes embedded NULs as ordinary
// code units.

#include "murcoredata/data/CollatorInterfaces.h"

class MURCOREDATA_EXPORT BinaryCollator final : public Collator
{
public:
    int Compare(const char16_t* a, const char16_t* b) const override;
    /// The shorter of two texts equal over its length is the lesser.
    int Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const override;
    /// -1 for an empty pattern.
    int Search(const char16_t* text, const char16_t* pattern) const override;
    /// A negative `start` reads as 0; `matchLength` is written only on a match: the
    /// pattern's length.
    int Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const override;
    /// Each match in turn, not overlapping. An empty pattern leaves `out` empty, without
    /// even a NUL.
    void Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                 const char16_t* replacement) const override;
    bool StartsWith(const char16_t* text, const char16_t* prefix) const override;
    bool EndsWith(const char16_t* text, const char16_t* suffix) const override;
    /// Each code unit by itself: ASCII by the C locale's table, the rest by the wide-character
    /// classes of the current C locale.
    void Lower(std::vector<char16_t>& out, const char16_t* text) const override;
    void Upper(std::vector<char16_t>& out, const char16_t* text) const override;
    /// Drops code units of the space class of the same tables.
    void LTrim(std::vector<char16_t>& out, const char16_t* text) const override;
    void RTrim(std::vector<char16_t>& out, const char16_t* text) const override;
    void Trim(std::vector<char16_t>& out, const char16_t* text) const override;
    /// THash32 of the code units with the seed 1: not the ICU collator's hash of a text.
    unsigned int Hash(const char16_t* text) const override;
    /// True for another binary collator.
    bool IsEquivalent(const Collator& other) const override;
};

/// The one pool of the binary collator, for the name "binary" and locale id 1.
class MURCOREDATA_EXPORT BinaryCollatorPool final : public CollatorPool
{
public:
    /// Made on first call (safe against racing callers) and never freed.
    static BinaryCollatorPool* Singleton();

    Collator* AcquireCollator() override { return &m_collator; }
    /// "binary".
    const TString& GetName() const override { return m_name; }
    bool IsCaseSensitive() const override { return true; }
    /// "binary".
    const TString& GetLanguage() const override { return m_name; }
    lcid GetLCID() const override { return LocaleIds::Binary; }
    /// "BINARY".
    const TString& GetLocaleString() const override { return m_localeString; }
    /// Empty.
    const TString& GetDisplayCountry() const override { return m_empty; }
    /// Empty.
    const TString& GetDisplayLanguage() const override { return m_empty; }
    cmpFlags GetCmpFlags() const override { return 0; }
    bool HasWordSort() const override { return false; }
    bool IsWindowsSpecific() const override { return false; }

private:
    BinaryCollatorPool();

    TString m_name;
    TString m_localeString;
    TString m_empty;
    BinaryCollator m_collator;
};
