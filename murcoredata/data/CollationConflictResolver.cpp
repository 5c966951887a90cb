#include "murcoredata/data/CollationConflictResolver.h"

SourcedCollation::SourcedCollation() : collation(GetUnknownCollation()) {}

SourcedCollation::SourcedCollation(const TString& source_, const Collation& collation_)
    : source(source_), collation(collation_)
{
}

CollationConflictResolver::Callback::~Callback() = default;

const SourcedCollation* CollationConflictResolver::ResolveCollationPair(const SourcedCollation& a,
                                                                        const SourcedCollation& b) const
{
    if (a.source.isEmpty() && !b.source.isEmpty())
        return &b;

    const Collation& unknown = GetUnknownCollation();
    if (a.collation == unknown && b.collation != unknown)
        return &b;

    const bool aCaseSensitive = a.collation.IsCaseSensitive();
    if (aCaseSensitive != b.collation.IsCaseSensitive())
        return aCaseSensitive ? &b : &a;

    if (!a.source.isEmpty() && a.source == b.source && m_callback != nullptr &&
        m_callback->PreferSecond(a.collation, b.collation, a.source))
        return &b;

    if (!b.collation.HasCharsetID() || a.collation.HasCharsetID())
        return &a;

    return a.collation.GetName() == b.collation.GetName() ? &b : &a;
}

std::unique_ptr<SourcedCollation>
CollationConflictResolver::ResolveSourcedCollation(std::vector<const SourcedCollation*>& list) const
{
    if (list.empty())
        return nullptr;
    const SourcedCollation* winner = list.front();
    for (size_t i = 1; i < list.size(); ++i)
        winner = ResolveCollationPair(*winner, *list[i]);
    return std::make_unique<SourcedCollation>(*winner);
}
