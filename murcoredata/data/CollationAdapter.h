#pragma once

// Collations for callers that work in plain strings and Windows-model numbers.

#include "murcoredata/data/Collation.h"

class MURCOREDATA_EXPORT CollationAdapter
{
public:
    /// 1 for "binary" and "C"; otherwise ICU's id of the locale, or `fallback`. A null
    /// locale is the empty one.
    static lcid LCIDFromLocale(const char16_t* locale, unsigned int fallback);
    /// The collation of a Windows-model identity; `lcid` 1 is binary.
    static Collation GetCollation(lcid id, unsigned int cmpFlags, unsigned short charset);
    /// The collation of a collator name with options merged in (`MakeCollatorName`).
    static Collation GetCollation(const char16_t* name, Collation::CaseOpt caseOpt, Collation::AccentOpt accentOpt,
                                  Collation::SortOpt sortOpt, Collation::PunctOpt punctOpt, unsigned short charset);
};
