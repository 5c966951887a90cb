#pragma once

#include "murcoredata/foundation/MurvaneError.h"

#include <cstddef>
#include <cstdint>

/// One generated function a failure site, each returning that site's `MurvaneError`.
/// The table is MurErrorsList.h; the code in a function's name, its record's code and the
/// code in its record's name are always the same number.
namespace MurErrorsError {

#define MUR_ERROR(prefix, kind, code) MURCOREDATA_EXPORT MurvaneError kind##_##code();
#include "murcoredata/foundation/MurErrorsList.h"
#undef MUR_ERROR

/// The lower layer's own site, outside this library's table: a null `RefCntPtr` used.
MURCOREDATA_EXPORT MurvaneError LogicAssert_0x00BF554A();

/// A row of the table, for tools and diagnostics.
struct Entry
{
    uint32_t code;
    const char* name;
};

/// Every row, in table order.
MURCOREDATA_EXPORT const Entry* GetEntries(size_t* count);
/// The row with that code, or null.
MURCOREDATA_EXPORT const Entry* FindByCode(uint32_t code);

} // namespace MurErrorsError
