#pragma once

// Raw access to the generated string table (StringTable.cpp, made by GenStrings
// from murcoredata-strings.tsv). Most code wants the localised look-ups instead;
// these two give the table's own data and never consult a translation.

#include "murcoredata/foundation/Export.h"
#include "murcoredata/gen-strings/StringIds.h"

namespace CoreData {

// The English text of `id` as a static, NUL-terminated UTF-8 string, byte for
// byte as in the table; "" for an id that is not in the table. Needs no
// initialisation, allocates nothing and takes no lock, so it is safe from any
// thread and from static constructors.
MURCOREDATA_EXPORT const char* LookupStringValue_Internal(StringId id);

// The key of `id` ("IDS_..." or "IDP_..."), which is also its translation
// context, as a static ASCII string; "" for an id that is not in the table.
// Same guarantees as LookupStringValue_Internal.
MURCOREDATA_EXPORT const char* LookupStringKey_Internal(StringId id);

} // namespace CoreData
