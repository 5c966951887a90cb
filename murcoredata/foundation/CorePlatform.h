#pragma once

#include "murcoredata/foundation/TString.h"

#include <string>

/// Facts about the installation that the host may set before it starts threads.
class MURCOREDATA_EXPORT CorePlatformOptions
{
public:
    /// True when the program runs from an application bundle (resources in ../Resources).
    static bool GetIsAppBundle();
    static void SetIsAppBundle(bool isAppBundle);
    /// The folder of the running program, unless the host set another.
    static TString GetApplicationDir();
    static void SetApplicationDir(const TString& folder);
};

/// Character classes of single UTF-16 units.
class MURCOREDATA_EXPORT TCType
{
public:
    /// A letter of any script (a lone surrogate is none).
    static bool isAlpha(char16_t c);
    /// An ASCII decimal digit, 0 to 9: the digits that the number parsers read.
    static bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
};

namespace Unicode {
/// UTF-16 to the platform's wide string (UTF-32 here); a lone surrogate becomes U+FFFD.
MURCOREDATA_EXPORT std::wstring toStdWString(const char16_t* text, size_t size);
} // namespace Unicode

namespace CorePlatformUtils {
/// Whether a UTF-16 unit may stand in an XML document as it is: tab, line feed, carriage
/// return, U+0020 to U+D7FF and U+E000 to U+FFFD. Surrogate units are not, one by one.
inline bool IsValidCharacter(char16_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD);
}
} // namespace CorePlatformUtils
