#include "murcoredata/data/CollationAdapter.h"

#include "murcoredata/data/CollatorName.h"

lcid CollationAdapter::LCIDFromLocale(const char16_t* locale, unsigned int fallback)
{
    return Collation::LCIDFromLocale(TString(locale), fallback);
}

Collation CollationAdapter::GetCollation(lcid id, unsigned int cmpFlags, unsigned short charset)
{
    return Collation(id, cmpFlags, charset);
}

Collation CollationAdapter::GetCollation(const char16_t* name, Collation::CaseOpt caseOpt,
                                         Collation::AccentOpt accentOpt, Collation::SortOpt sortOpt,
                                         Collation::PunctOpt punctOpt, unsigned short charset)
{
    const TString collatorName = MakeCollatorName(name, caseOpt, accentOpt, sortOpt, punctOpt);
    return Collation(collatorName.constData(), charset);
}
