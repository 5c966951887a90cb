#pragma once

// Every public header of the library, for consumers that want all of it.

#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/THash.h"
#include "murcoredata/foundation/TString.h"
#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/foundation/TPath.h"
#include "murcoredata/foundation/TSettings.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TLog.h"
#include "murcoredata/foundation/RefCnt.h"
#include "murcoredata/foundation/Locks.h"
#include "murcoredata/foundation/InitOnce.h"
#include "murcoredata/foundation/CoreThreadContext.h"
#include "murcoredata/foundation/CorePlatform.h"

#include "murcoredata/gen-strings/StringIds.h"
#include "murcoredata/core/StringTable.h"
