#pragma once

// The ICU-facing half of CoreICUUtils, for sources that use ICU's C++ API themselves. It
// includes ICU's locale header, so the library's ICU-free headers do not include this one.

#include "murcoredata/core/Lcid.h"
#include "murcoredata/foundation/Export.h"

#include <unicode/locid.h>

namespace CoreICUUtils {

/// The ICU locale of a locale id: 0 gives the root locale; 1024 and 2048, the two default
/// ids, give ICU's default locale; any other gives the locale named by
/// `LanguageUtils::GetLocaleNarrowStr(id)`.
MURCOREDATA_EXPORT icu::Locale GetLocale(lcid id);

} // namespace CoreICUUtils
