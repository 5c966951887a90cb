#pragma once

#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/gen-strings/StringIds.h"

/// The texts that the library shows to people, by id. Each id has an English text in the
/// generated table; a translation source installed by the host comes first when it knows
/// the id. An unknown id gives the empty text.
namespace CoreData {

MURCOREDATA_EXPORT TString LookupTStr(StringId id);
MURCOREDATA_EXPORT TFormatString LookupTFmtStr(StringId id);

/// The English text of the table, ignoring any translation.
MURCOREDATA_EXPORT TString LookupEnglishTStr(StringId id);
/// The key ("IDS_..." or "IDP_...") of an id: the translation context.
MURCOREDATA_EXPORT TString LookupStringKey(StringId id);

/// A source of translated texts. `Translate` answers false when it has no text for the id,
/// and the English text is used.
class MURCOREDATA_EXPORT IStringTranslator
{
public:
    virtual ~IStringTranslator();
    virtual bool Translate(StringId id, const TString& key, const TString& english, TString& translated) const = 0;
};

/// Installs the process-wide translator (null removes it). The host calls it before threads
/// look strings up; the translator must outlive every look-up.
MURCOREDATA_EXPORT void SetStringTranslator(const IStringTranslator* translator);

} // namespace CoreData
