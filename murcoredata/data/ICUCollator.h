#pragma once

// The language-aware collator: one ICU collator handle plus what ICU does not give by
// itself — attributes that are really tailoring rules (word sort, digit-ignoring), a
// cached string search and a reusable sort-key buffer.
//
// An `ICUCollator` is made by its pool (ICUCollatorPool.h), one per thread per pool. Its
// operations are const but use mutable working state without a lock, so one collator must
// never serve two threads.
//
// ICU's own numbers for collation attributes and their values are mirrored in `MurICU`, so
// that this header needs none of ICU's; the source checks that the numbers agree.

#include "murcoredata/data/CollatorInterfaces.h"

#include <string>
#include <utility>
#include <vector>

struct UCollator;
struct UStringSearch;

namespace MurICU {

/// ICU's `UColAttribute`.
enum ICUColAttribute : int32_t
{
    UCOL_FRENCH_COLLATION = 0,
    UCOL_ALTERNATE_HANDLING = 1,
    UCOL_CASE_FIRST = 2,
    UCOL_CASE_LEVEL = 3,
    UCOL_NORMALIZATION_MODE = 4,
    UCOL_STRENGTH = 5,
    UCOL_HIRAGANA_QUATERNARY_MODE = 6,
    UCOL_NUMERIC_COLLATION = 7,
    UCOL_ATTRIBUTE_COUNT = 8,
};

/// ICU's `UColAttributeValue`, the values that collation uses.
enum ICUColAttributeValue : int32_t
{
    UCOL_DEFAULT = -1,
    UCOL_PRIMARY = 0,
    UCOL_SECONDARY = 1,
    UCOL_TERTIARY = 2,
    UCOL_QUATERNARY = 3,
    UCOL_IDENTICAL = 15,
    UCOL_OFF = 16,
    UCOL_ON = 17,
    UCOL_SHIFTED = 20,
    UCOL_NON_IGNORABLE = 21,
    UCOL_LOWER_FIRST = 24,
    UCOL_UPPER_FIRST = 25,
};

} // namespace MurICU

using ICUColAttribute = MurICU::ICUColAttribute;
using ICUColAttributeValue = MurICU::ICUColAttributeValue;

struct CollationSpec;

/// The ICU collator of one thread for one pool.
class MURCOREDATA_EXPORT ICUCollator final : public Collator
{
public:
    /// The attributes a collator takes: ICU's own (0 to 7) and two of this library.
    enum Attr : int32_t
    {
        FrenchCollation = 0,
        AlternateHandling = 1,
        CaseFirst = 2,
        CaseLevel = 3,
        NormalizationMode = 4,
        Strength = 5,
        HiraganaQuaternaryMode = 6,
        NumericCollation = 7,
        // 8 is not used.
        /// Apostrophe and hyphen are ignored; only on (17) does anything.
        WordSort = 9,
        /// Digits are ignored; only on (17) does anything.
        IgnoreDigits = 10,
    };

    using Id = std::pair<TString, unsigned int>;

    /// Opens ICU for `spec.locale`, applies the attributes in order, and for the locale
    /// "en_US_WIN" adds the rule "&'#'<'@'". An ICU failure throws (CoreICUUtils.h) with
    /// the collator name as context.
    ICUCollator(CollatorPool* pool, const Id& id, const CollationSpec& spec);
    ~ICUCollator() override;
    ICUCollator(const ICUCollator&) = delete;
    ICUCollator& operator=(const ICUCollator&) = delete;

    //===--------------------------------------------------------------------===//
    // Collator
    //===--------------------------------------------------------------------===//

    /// `ucol_strcoll` and nothing else: no normalisation, no caching. ICU answers 0 for a
    /// missing text, and U+0000 is ignorable to it, also inside a counted text.
    int Compare(const char16_t* a, const char16_t* b) const override;
    int Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const override;
    /// -1 for a null text or pattern and for an empty pattern (although a binary find of an
    /// empty string would succeed), and when ICU cannot search (an empty text, numeric
    /// collation on). `matchLength` is written whenever ICU searched, also with no match.
    int Search(const char16_t* text, const char16_t* pattern) const override;
    int Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const override;
    /// With a null argument or an empty pattern, `out` is left as it was. A match is
    /// whatever ICU matches: it may differ from `pattern` in length and case. A match of
    /// length 0 (a pattern of ignorable characters) replaces nothing and ends the walk.
    void Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                 const char16_t* replacement) const override;
    /// Null arguments give false; an empty prefix gives true; a text shorter (in code
    /// units) than the prefix gives false without searching. The match must end exactly at
    /// the prefix's length, so a collation-equal stretch of another length is not found.
    bool StartsWith(const char16_t* text, const char16_t* prefix) const override;
    /// As `StartsWith`, at the other end.
    bool EndsWith(const char16_t* text, const char16_t* suffix) const override;
    /// Case mapping by ICU's rules for the locale. `out` is sized for the text plus its NUL;
    /// a mapping that outgrows that by more than one code unit ("ßß" to upper case) gives
    /// an empty result, on purpose. A null text gives an empty result.
    void Lower(std::vector<char16_t>& out, const char16_t* text) const override;
    void Upper(std::vector<char16_t>& out, const char16_t* text) const override;
    /// Drops ICU white space, one code unit at a time. A null text gives an empty result.
    void LTrim(std::vector<char16_t>& out, const char16_t* text) const override;
    void RTrim(std::vector<char16_t>& out, const char16_t* text) const override;
    void Trim(std::vector<char16_t>& out, const char16_t* text) const override;
    /// THash32 (seed 0xDEADBEEF) of the ICU sort key, its final zero byte included. The
    /// sort-key buffer is reused, so a warm call allocates nothing.
    unsigned int Hash(const char16_t* text) const override;
    /// Same pool; or locales alike (a Windows-specific locale contains the other), the eight
    /// ICU attributes equal and word sort alike. Added rules count only through these.
    bool IsEquivalent(const Collator& other) const override;

    //===--------------------------------------------------------------------===//
    // Names and identities
    //===--------------------------------------------------------------------===//

    /// Settles what depends on the running ICU (the digit rule); run once by
    /// `ICUCollatorPool::Factory`. The letter tables of the name grammar are constant data
    /// and need no filling, so names can be written before any pool exists.
    static void Initialize();
    /// `name` with one attribute set: value -1 or the attribute's default removes its part.
    /// Setting an attribute on the binary name fails a logic assertion.
    static TString AddAttrToName(const char16_t* name, Attr attr, ICUColAttributeValue value);
    static TString SetWordSort(const char16_t* name, bool on);
    /// ICU's id of a locale name ("-" reads as "_"), or `fallback` when ICU knows none.
    static lcid LCIDFromLocale(std::string locale, unsigned int fallback);
    /// The pool key of a Windows-model identity: the name of `MakeCollatorName(id,
    /// cmpFlags, wordSort)`, with word sort exactly when bit 0x1000 of `sortFlags` is clear,
    /// and `cmpFlags`.
    static Id GetID(lcid id, unsigned int cmpFlags, unsigned int sortFlags);

    const TString& GetName() const { return m_id.first; }
    const std::string& GetLocale() const { return m_locale; }

    //===--------------------------------------------------------------------===//
    // ICU attributes and rules
    //===--------------------------------------------------------------------===//

    void GetAttribute(ICUColAttribute attr, ICUColAttributeValue& out) const;
    void SetAttribute(ICUColAttribute attr, ICUColAttributeValue value);
    /// Attributes 0 to 7 go to ICU; word sort and ignore digits on add their rules, off does
    /// nothing; any other attribute fails a logic assertion.
    void SetAttribute(Attr attr, ICUColAttributeValue value);
    /// Makes the apostrophe and the hyphen ignorable.
    void SetWordSort();
    /// Makes the digits 0 to 9 ignorable.
    void SetIgnoreDigits();
    /// Appends tailoring rules to the collator's own, by reopening ICU on the combined text
    /// and carrying the eight ICU attributes over. "\uXXXX" in `rules` stands for that code
    /// unit (a NUL cannot stand in a NUL-terminated text). On failure the collator is as
    /// before. Only for construction: a cached search points at the old handle.
    void AddRules(const char16_t* rules);

    /// The search of `pattern` in `text`, reusing the cached search when the pattern is the
    /// same; null when ICU cannot search. The search keeps its own copy of the pattern.
    UStringSearch* OpenSearch(const char16_t* text, const char16_t* pattern) const;

private:
    Id m_id;
    UCollator* m_pUCollator = nullptr;
    CollatorPool* m_pool = nullptr;
    std::string m_locale;
    mutable std::vector<unsigned char> m_sortKey;
    mutable UStringSearch* m_search = nullptr;
    mutable TStringCore m_searchPattern;
};

/// What a pool reads out of a collator name and hands to each of its collators.
struct MURCOREDATA_EXPORT CollationSpec
{
    /// Ten of the letters of the name grammar (CollatorName.h) are read: A, E, H, L, R, S,
    /// V, W, X and Z. `C`, `F`, `I`, `N`, and any other first letter, throw
    /// "Unhandled specifier" with the part as context; empty parts are skipped. A malformed
    /// attribute part fails a logic assertion. The locale is the language (lowered), then
    /// "_" region, "_" script and "_" variant where present, in that order.
    ///   Parse(u"AS_LEN_RUS_VWIN_WO") == {"en_US_WIN", {(1, 20), (9, 17)}}
    static CollationSpec Parse(const TString& name);

    /// The ICU locale name, such as "en_US" or "en_US_WIN"; empty for the root.
    std::string locale;
    /// Applied in order.
    std::vector<std::pair<ICUCollator::Attr, ICUColAttributeValue>> attributes;
};
