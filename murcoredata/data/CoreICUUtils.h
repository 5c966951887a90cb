#pragma once

// The one way an ICU failure of the collation code becomes an exception: the details go to
// the log, and the caller gets "String comparison error." with the site code 0x5EA10C35.

#include "murcoredata/foundation/TString.h"

namespace CoreICUUtils {

/// Throws for an ICU status (a `UErrorCode`, passed as its number so that ICU's headers stay
/// out of this one): the status's ICU name is the message, `context` says what was being done.
[[noreturn]] MURCOREDATA_EXPORT void ThrowICUException(int status, const TString& context);

/// Logs "Error: <message>, <context>" in a framed block at severity 3, then throws
/// `StringException` with the localised `IDS_STRING_COMPARISON_ERROR` text and
/// `MurErrorsError::AutoGen_0x5EA10C35()` (error source 4, status 2).
[[noreturn]] MURCOREDATA_EXPORT void ThrowICUException(const TString& message, const TString& context);

/// Whether the ICU the process runs on is at least of this version.
MURCOREDATA_EXPORT bool IsVersionAtLeast(int major, int minor);

} // namespace CoreICUUtils
