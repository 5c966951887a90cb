#pragma once

// A string cell is a text together with the collation by which it compares and sorts.
// `StringWithCollation` is that pair, shared by intrusive count (a `DataValue` holds it by
// `RefCntPtr`), with a hash that is computed on first need and then cached.
//
// Rules that callers rely on:
//
//   - Equality is the collation's: under a case-insensitive collation "abc" equals "ABC".
//     Two strings are equal only when their collations are equivalent (`Equivalent`), which
//     ignores the character set.
//   - Order is by collation first: when two collations are not equivalent, the strings
//     order as their collations do (`Collation::operator<`) and the texts are not looked at.
//   - The hash is the collation's hash of the text, so strings equal under one collation
//     hash alike. 0 in the cache means "not computed"; a text whose true hash is 0 is simply
//     hashed again at every call.
//   - Comparison and hash read the text up to its first NUL, as the collator's
//     NUL-terminated operations do. Both stop at the same place, so equal strings always
//     hash alike (ICU would otherwise ignore the NUL and call "a\0b" equal to "ab").
//
// Threads. Once shared, an object is never changed by assignment; the one field that changes
// is the cached hash, which is atomic. Two threads that hash at once both store the same
// number. References may be taken and dropped on any thread.

#include "murcoredata/data/Collation.h"
#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/RefCnt.h"
#include "murcoredata/foundation/TString.h"

#include <atomic>
#include <cstdint>

/// An immutable text with its collation and a lazily cached hash. See the top of this header.
class MURCOREDATA_EXPORT StringWithCollation : public RefCntObject
{
public:
    //===--------------------------------------------------------------------------------===//
    // Construction. Every new object starts with a reference count of zero: hand it to a
    // `RefCntPtr` (or use `makeRefCnt<StringWithCollation>`) to own it.
    //===--------------------------------------------------------------------------------===//

    /// No hash yet.
    StringWithCollation(const TString& text, const Collation& collation);
    /// No hash yet; the text is taken over.
    StringWithCollation(TString&& text, Collation&& collation);
    /// Text, collation and the cached hash of `other`.
    StringWithCollation(const StringWithCollation& other);
    /// Text, collation and the cached hash of `other`, which is left fit only for assignment
    /// or destruction.
    StringWithCollation(StringWithCollation&& other);

    /// Text, collation, then hash (the hash last). Never assign to an object that is shared.
    StringWithCollation& operator=(const StringWithCollation& other);
    StringWithCollation& operator=(StringWithCollation&& other);

    ~StringWithCollation() override;

    //===--------------------------------------------------------------------------------===//
    // Accessors
    //===--------------------------------------------------------------------------------===//

    const TString& GetString() const { return m_text; }
    const Collation& GetCollation() const { return m_collation; }

    /// `Collation::Hash` of the text, computed on first need and cached.
    unsigned int GetHash() const;
    /// Whether the hash is cached (false also after hashing a text whose hash is 0).
    bool HasHash() const { return m_hash.load() != 0; }

    //===--------------------------------------------------------------------------------===//
    // Comparison
    //===--------------------------------------------------------------------------------===//

    /// Equal under the first string's collation, and the collations equivalent. Two cached
    /// hashes that differ reject at once; a missing hash is not computed for the test.
    friend bool operator==(const StringWithCollation& a, const StringWithCollation& b);
    friend bool operator!=(const StringWithCollation& a, const StringWithCollation& b) { return !(a == b); }

private:
    /// The slow half of `GetHash`: asks the collator and caches the answer.
    unsigned int ComputeHash() const;
    /// The slow half of `operator==`: collation equivalence, then the collator.
    static bool EqualByCollation(const StringWithCollation& a, const StringWithCollation& b);

    /// 0: not computed yet. Sequentially consistent loads and stores.
    mutable std::atomic<uint32_t> m_hash{0};
    TString m_text;
    Collation m_collation;
};

/// By collation when the collations are not equivalent, otherwise by the first string's
/// collation over the two texts.
MURCOREDATA_EXPORT bool operator<(const StringWithCollation& a, const StringWithCollation& b);

/// The owning pointer a `DataValue` and the string caches hold.
using StringWithCollationPtr = RefCntPtr<StringWithCollation, RefCntObject>;

//===--------------------------------------------------------------------------------===//
// Inline implementation
//===--------------------------------------------------------------------------------===//

inline unsigned int StringWithCollation::GetHash() const
{
    const uint32_t hash = m_hash.load();
    return hash != 0 ? hash : ComputeHash();
}

inline bool operator==(const StringWithCollation& a, const StringWithCollation& b)
{
    // The cheap rejection that the cached hash exists for: no collator is asked.
    const uint32_t hashA = a.m_hash.load();
    const uint32_t hashB = b.m_hash.load();
    if (hashA != 0 && hashB != 0 && hashA != hashB)
        return false;
    return StringWithCollation::EqualByCollation(a, b);
}
