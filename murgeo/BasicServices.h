#pragma once

#include "murgeo/Export.h"

#include <string>

namespace murgeo {

/// Process-wide start and stop of the geometry library. `Register` before the first shape
/// and `Unregister` after the last, from one thread; the calls nest.
class MURGEO_EXPORT BasicServices
{
public:
    static void Register();
    static void Unregister();
    static bool IsRegistered();
    /// Where projection data lives, for transformations between coordinate systems.
    static void SetProjResourceDirectory(const std::string& directory);
    static std::string GetProjResourceDirectory();
};

} // namespace murgeo
