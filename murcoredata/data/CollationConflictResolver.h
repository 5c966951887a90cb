#pragma once

// Which collation wins when two sources of one value disagree.

#include "murcoredata/data/Collation.h"

#include <memory>
#include <vector>

/// A collation with the name of where it came from; an empty source means none.
struct MURCOREDATA_EXPORT SourcedCollation
{
    /// No source, the unknown collation.
    SourcedCollation();
    SourcedCollation(const TString& source, const Collation& collation);

    TString source;
    Collation collation;

    friend bool operator==(const SourcedCollation& a, const SourcedCollation& b)
    {
        return a.source == b.source && a.collation == b.collation;
    }
    friend bool operator!=(const SourcedCollation& a, const SourcedCollation& b) { return !(a == b); }
};

class MURCOREDATA_EXPORT CollationConflictResolver
{
public:
    /// Lets the host break a tie between two collations of one source.
    class MURCOREDATA_EXPORT Callback
    {
    public:
        virtual ~Callback();
        virtual bool PreferSecond(const Collation& first, const Collation& second, const TString& source) = 0;
    };

    /// `callback` is not owned and may be null.
    explicit CollationConflictResolver(Callback* callback = nullptr) : m_callback(callback) {}

    /// One of the two arguments, by the first rule that applies:
    ///   1. `a` has no source and `b` has one: `b`.
    ///   2. `a` is the unknown collation and `b` is not: `b`.
    ///   3. They differ in case sensitivity: the case-insensitive one.
    ///   4. Same non-empty source and the callback prefers the second: `b`.
    ///   5. `b` has no character set, or `a` has one: `a`.
    ///   6. Otherwise (only `b` has a character set): `b` if the names are equal, else `a`.
    /// Asymmetric on purpose: in a tie `a` stays, and an unknown `b` has no rule of its own.
    const SourcedCollation* ResolveCollationPair(const SourcedCollation& a, const SourcedCollation& b) const;

    /// A copy of the winner of a left-to-right fold of `ResolveCollationPair` over the
    /// list; null for an empty list.
    std::unique_ptr<SourcedCollation> ResolveSourcedCollation(std::vector<const SourcedCollation*>& list) const;

private:
    Callback* m_callback;
};
