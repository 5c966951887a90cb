#pragma once

// What all collation code shares: the engine (`Collator`), the identity behind it
// (`CollatorPool`), the two fixed names and the Windows-model numbers.
//
// A `Collation` (Collation.h) names a pool; the pool hands every thread a collator of its
// own, so a `Collator*` belongs to the thread that acquired it and must not be handed on.
//
// Texts are UTF-16 and NUL-terminated unless a length is given; a length of -1 means
// NUL-terminated. Comparison results are negative, 0 or positive.

#include "murcoredata/core/Lcid.h"
#include "murcoredata/foundation/TString.h"

#include <cstdint>
#include <vector>

/// Comparison flags of the Windows locale model: a bit set that says what a comparison ignores.
using cmpFlags = uint32_t;

namespace CmpFlags {
constexpr cmpFlags IgnoreCase = 0x1;
constexpr cmpFlags IgnoreNonSpace = 0x2;
constexpr cmpFlags IgnoreSymbols = 0x4;
/// Marks the Windows-specific variant of a locale ("_WIN" in the ICU locale name).
constexpr cmpFlags WindowsSpecific = 0x80000000u;
} // namespace CmpFlags

/// The fixed names of collation.
struct CollationType
{
    /// The code-unit collation.
    static constexpr const char16_t* s_binary = u"binary";
    /// The collation used when none is known: ICU's root collation.
    static constexpr const char16_t* s_unknown = u"LROOT";
    /// The character-set id that means no character set.
    static constexpr unsigned short s_unknownCharset = 0;
};

/// A comparison engine. All operations are const but may use working state of the engine
/// (sort-key buffer, cached search), which is why an engine serves one thread only.
///
/// Output buffers (`out`) receive NUL-terminated text; their `size()` is the capacity, not
/// the length of the result.
class MURCOREDATA_EXPORT Collator
{
public:
    virtual ~Collator();

    virtual int Compare(const char16_t* a, const char16_t* b) const = 0;
    virtual int Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const = 0;
    /// The index in code units of the first match, or -1.
    virtual int Search(const char16_t* text, const char16_t* pattern) const = 0;
    /// The first match at or after `start`, or -1; `matchLength`, if not null, receives the
    /// matched length in code units (which may differ from the pattern's length).
    virtual int Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const = 0;
    /// `text` with each match of `pattern` replaced, into `out`.
    virtual void Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                         const char16_t* replacement) const = 0;
    virtual bool StartsWith(const char16_t* text, const char16_t* prefix) const = 0;
    virtual bool EndsWith(const char16_t* text, const char16_t* suffix) const = 0;
    virtual void Lower(std::vector<char16_t>& out, const char16_t* text) const = 0;
    virtual void Upper(std::vector<char16_t>& out, const char16_t* text) const = 0;
    virtual void LTrim(std::vector<char16_t>& out, const char16_t* text) const = 0;
    virtual void RTrim(std::vector<char16_t>& out, const char16_t* text) const = 0;
    virtual void Trim(std::vector<char16_t>& out, const char16_t* text) const = 0;
    /// A hash that agrees with `Compare`: texts that compare equal hash alike.
    virtual unsigned int Hash(const char16_t* text) const = 0;
    /// Whether the two engines order every pair of texts alike.
    virtual bool IsEquivalent(const Collator& other) const = 0;
};

/// The process-wide object behind one collator identity. It answers what needs no
/// comparison and hands each thread its own `Collator`. Pools live until the process ends.
class MURCOREDATA_EXPORT CollatorPool
{
public:
    virtual ~CollatorPool();

    /// The calling thread's collator; not owned by the caller, valid on this thread only.
    virtual Collator* AcquireCollator() = 0;
    /// The canonical collator name.
    virtual const TString& GetName() const = 0;
    virtual bool IsCaseSensitive() const = 0;
    /// ISO language code ("en").
    virtual const TString& GetLanguage() const = 0;
    virtual lcid GetLCID() const = 0;
    /// The ICU locale name ("en_US", "en_US_WIN").
    virtual const TString& GetLocaleString() const = 0;
    virtual const TString& GetDisplayCountry() const = 0;
    virtual const TString& GetDisplayLanguage() const = 0;
    virtual cmpFlags GetCmpFlags() const = 0;
    virtual bool HasWordSort() const = 0;
    virtual bool IsWindowsSpecific() const = 0;
};
