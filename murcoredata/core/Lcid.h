#pragma once

// Locale ids of the Windows locale model, the third way (beside ISO strings such as "en_US"
// and full strings such as "en_US-US") of naming a locale here. Collation and language
// code share the type.
//
// The low 16 bits are the language id (0x0409 English (United States)); the low 10 bits of
// those are the primary language (0x09 English).

#include <cstdint>

/// A Windows-model locale id: unsigned 32 bits.
using lcid = uint32_t;

static_assert(sizeof(lcid) == 4, "a locale id is stored and hashed as 32 bits");

/// The ids that do not name one locale.
namespace LocaleIds {
/// Not a locale: binary comparison of code units.
constexpr lcid Binary = 1;
/// The user's default locale (0x0400).
constexpr lcid UserDefault = 1024;
/// The system's default locale (0x0800).
constexpr lcid SystemDefault = 2048;
/// A custom locale without a name (0x1000); the language tables read it as "ar".
constexpr lcid CustomUnspecified = 4096;
} // namespace LocaleIds
