#pragma once

// A `Collation` is the small value that says how strings compare: the canonical collator
// name (CollatorName.h), an optional character-set id and a pointer to the shared pool of
// that identity. It holds no engine; every language-dependent operation (compare, search,
// replace, starts/ends-with, case, trim, hash) acquires the calling thread's own collator
// from the pool, with no lock and, once the thread has its collator, no allocation.
//
// Identity is the name and the character set: two collations are equal when both agree,
// whatever pools they reach. `IsEquivalent` asks the engines whether two different names
// order texts alike ("AS_LEN_RUS_S3" and "AS_LEN_RUS" do).
//
// Pools live until the process ends, so a `Collation` may be kept in statics and caches.

#include "murcoredata/data/CollatorInterfaces.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

/// A handle on the calling thread's collator of one pool. Copying acquires again (on the
/// copying thread); the collator stays with its thread and pool when the handle goes.
class CollatorRef
{
public:
    explicit CollatorRef(CollatorPool* pool) : m_pool(pool), m_collator(pool->AcquireCollator()) {}
    CollatorRef(const CollatorRef& other) : m_pool(other.m_pool), m_collator(other.m_pool->AcquireCollator()) {}
    CollatorRef& operator=(const CollatorRef& other)
    {
        m_pool = other.m_pool;
        m_collator = m_pool->AcquireCollator();
        return *this;
    }

    const Collator* operator->() const { return m_collator; }
    const Collator& operator*() const { return *m_collator; }
    CollatorPool* GetPool() const { return m_pool; }

private:
    CollatorPool* m_pool;
    Collator* m_collator;
};

class MURCOREDATA_EXPORT Collation
{
public:
    //===--------------------------------------------------------------------===//
    // Options (their numbers are compared by the name writers)
    //===--------------------------------------------------------------------===//

    enum CaseOpt : int
    {
        CaseDefault = 0,
        CaseIgnore = 1,
        CaseUpperFirst = 2,
        CaseLowerFirst = 3,
    };
    enum AccentOpt : int
    {
        /// Accents are significant.
        AccentDefault = 0,
        AccentIgnore = 1,
    };
    enum SortOpt : int
    {
        SortDefault = 0,
        SortWord = 1,
        // 2 and 3 are rejected by the name writers.
        SortIdentical = 4,
    };
    enum PunctOpt : int
    {
        PunctDefault = 0,
        /// Punctuation shifted to be ignored, tertiary strength.
        PunctIgnore = 1,
        /// Quaternary strength.
        PunctQuaternary = 2,
    };

    //===--------------------------------------------------------------------===//
    // Construction. A name ICU rejects throws from the pool's construction.
    //===--------------------------------------------------------------------===//

    /// The unknown collation ("LROOT").
    Collation();
    /// The collation of a collator name; null means "LROOT". Only the exact text "binary"
    /// reaches the binary collator.
    explicit Collation(const char16_t* name, unsigned short charset = CollationType::s_unknownCharset);
    /// A Windows-model identity: `lcid` 1 is binary; others take the name of
    /// `ICUCollator::GetID(lcid, cmpFlags, 4096)` (no word sort).
    Collation(lcid id, unsigned int cmpFlags, unsigned short charset);
    /// All three as given, no look-up.
    Collation(const TString& name, unsigned short charset, CollatorPool* pool);
    /// An ICU locale ("-" reads as "_") and options, named by `MakeICUCollatorName`.
    Collation(std::string locale, bool ignoreDigits, CaseOpt caseOpt, AccentOpt accentOpt, SortOpt sortOpt,
              PunctOpt punctOpt, unsigned short charset);
    /// Like the name constructor, with the pool keyed by `(name, cmpFlags)`.
    static Collation Create(const char16_t* name, unsigned int cmpFlags, unsigned short charset);

    Collation(const Collation& other);
    Collation& operator=(const Collation& other);

    //===--------------------------------------------------------------------===//
    // Operations of the calling thread's collator (see Collator)
    //===--------------------------------------------------------------------===//

    int Compare(const char16_t* a, const char16_t* b) const { return GetCollator()->Compare(a, b); }
    int Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const
    {
        return GetCollator()->Compare(a, aLength, b, bLength);
    }
    /// Counted, so that embedded NULs take part.
    int Compare(const TString& a, const TString& b) const
    {
        return GetCollator()->Compare(a.constData(), a.length(), b.constData(), b.length());
    }
    int Search(const char16_t* text, const char16_t* pattern) const;
    int Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const;
    void Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                 const char16_t* replacement) const;
    bool StartsWith(const char16_t* text, const char16_t* prefix) const;
    bool EndsWith(const char16_t* text, const char16_t* suffix) const;
    void Lower(std::vector<char16_t>& out, const char16_t* text) const;
    void Upper(std::vector<char16_t>& out, const char16_t* text) const;
    void LTrim(std::vector<char16_t>& out, const char16_t* text) const;
    void RTrim(std::vector<char16_t>& out, const char16_t* text) const;
    void Trim(std::vector<char16_t>& out, const char16_t* text) const;
    unsigned int Hash(const char16_t* text) const { return GetCollator()->Hash(text); }
    CollatorRef GetCollator() const { return CollatorRef(m_pool); }

    //===--------------------------------------------------------------------===//
    // Questions to the pool
    //===--------------------------------------------------------------------===//

    cmpFlags GetCmpFlags() const { return m_pool->GetCmpFlags(); }
    bool HasWordSort() const { return m_pool->HasWordSort(); }
    /// The same as `HasWordSort`: word sort is the one approximation there is.
    bool IsApproximation() const { return m_pool->HasWordSort(); }
    bool IsWindowsSpecific() const { return m_pool->IsWindowsSpecific(); }
    bool IsCaseSensitive() const { return m_pool->IsCaseSensitive(); }
    const TString& GetLanguage() const { return m_pool->GetLanguage(); }
    const TString& GetDisplayCountry() const { return m_pool->GetDisplayCountry(); }
    const TString& GetDisplayLanguage() const { return m_pool->GetDisplayLanguage(); }
    /// The pool's ICU locale name.
    const TString& GetLocale() const { return m_pool->GetLocaleString(); }
    CollatorPool* GetPool() const { return m_pool; }

    const TString& GetName() const { return m_name; }
    unsigned short GetCharsetID() const { return m_charsetId; }
    bool HasCharsetID() const { return m_charsetId != CollationType::s_unknownCharset; }

    //===--------------------------------------------------------------------===//
    // Identity
    //===--------------------------------------------------------------------===//

    /// Character set, then name; pools are not looked at.
    bool IsEqual(const Collation& other) const { return m_charsetId == other.m_charsetId && m_name == other.m_name; }
    /// By character set, then by name in `TString` order.
    bool IsLess(const Collation& other) const
    {
        return m_charsetId != other.m_charsetId ? m_charsetId < other.m_charsetId : m_name < other.m_name;
    }
    /// Whether the engines order texts alike; the character set plays no part.
    bool IsEquivalent(const Collation& other) const;
    /// The string hash of the name, cached; the character set plays no part.
    unsigned int GetHashCode() const;

    friend bool operator==(const Collation& a, const Collation& b) { return a.IsEqual(b); }
    friend bool operator!=(const Collation& a, const Collation& b) { return !a.IsEqual(b); }
    friend bool operator<(const Collation& a, const Collation& b) { return a.IsLess(b); }

    //===--------------------------------------------------------------------===//
    // Derived collations
    //===--------------------------------------------------------------------===//

    /// Switches to the same identity with word sort on or off (its own pool). On the binary
    /// collation, turning it on fails a logic assertion.
    void UseWordSort(bool on);
    /// The collation of this pool's locale id and flags; the Windows-specific bit is kept
    /// only when asked for.
    Collation Clone(bool keepWindowsSpecific) const;
    /// A copy with another character set; the cached hash is kept.
    Collation CopyWithCharset(unsigned short charset) const;
    /// "charset=0x<hex> <locale> (<name>)".
    TString GetDescription() const;

    /// 1 for "binary" and "C"; otherwise ICU's id of the locale, or `fallback`.
    static lcid LCIDFromLocale(const TString& locale, unsigned int fallback);

private:
    static CollatorPool* GetPool(const char16_t* name, unsigned int cmpFlags);

    TString m_name;
    unsigned short m_charsetId = CollationType::s_unknownCharset;
    /// 0: not computed yet. Threads that race store the same value.
    mutable std::atomic<uint32_t> m_hashCode{0};
    CollatorPool* m_pool = nullptr;
};

/// `a.IsEquivalent(b)`.
MURCOREDATA_EXPORT bool Equivalent(const Collation& a, const Collation& b);

/// The unknown collation, made on first use and never freed.
MURCOREDATA_EXPORT const Collation& GetUnknownCollation();
/// The binary collation ("binary", no character set), made on first use and never freed.
MURCOREDATA_EXPORT const Collation& GetBinaryCollation();

/// Hashes a `Collation` by `GetHashCode()`, for hash containers.
struct CollationHashFunc
{
    size_t operator()(const Collation& collation) const { return collation.GetHashCode(); }
};

//===--------------------------------------------------------------------===//
// Inline implementation
//===--------------------------------------------------------------------===//

inline Collation::Collation(const Collation& other)
    : m_name(other.m_name),
      m_charsetId(other.m_charsetId),
      m_hashCode(other.m_hashCode.load(std::memory_order_relaxed)),
      m_pool(other.m_pool)
{
}

inline Collation& Collation::operator=(const Collation& other)
{
    m_name = other.m_name;
    m_charsetId = other.m_charsetId;
    m_hashCode.store(other.m_hashCode.load(std::memory_order_relaxed), std::memory_order_relaxed);
    m_pool = other.m_pool;
    return *this;
}

inline unsigned int Collation::GetHashCode() const
{
    uint32_t hash = m_hashCode.load(std::memory_order_relaxed);
    if (hash == 0) {
        hash = uint32_t(std::hash<TString>()(m_name));
        m_hashCode.store(hash, std::memory_order_relaxed);
    }
    return hash;
}
