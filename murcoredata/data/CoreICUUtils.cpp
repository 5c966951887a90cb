#include "murcoredata/data/CoreICUUtils.h"

#include "murcoredata/core/LanguageUtils.h"
#include "murcoredata/core/StringTable.h"
#include "murcoredata/data/CoreICULocale.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TLog.h"

#include <unicode/uversion.h>
#include <unicode/utypes.h>

namespace CoreICUUtils {

void ThrowICUException(int status, const TString& context)
{
    ThrowICUException(TString(u_errorName(static_cast<UErrorCode>(status))), context);
}

void ThrowICUException(const TString& message, const TString& context)
{
    // One literal, framed by line breaks, so that the block stands out in a busy log.
    static const char16_t* const s_format =
        u"\n--- String Compare Error ------------------------------------------------\n"
        u"Error: %1, %2\n"
        u"-------------------------------------------------------------------------\n";
    const TLog::NonErrorSeverity severity(3);
    if (TLog::Logger::Get().IsEnabled(severity.value))
        LogMessage(severity, TFormatString(s_format).arg(message).arg(context));

    throw StringException(CoreData::LookupTStr(CoreData::IDS_STRING_COMPARISON_ERROR),
                          TError::ErrorInfo(MurErrorsError::AutoGen_0x5EA10C35(), TError::ErrorSource::CoreData,
                                            grpc::StatusCode::UNKNOWN));
}

bool IsVersionAtLeast(int major, int minor)
{
    UVersionInfo version;
    u_getVersion(version);
    return version[0] != major ? version[0] > major : version[1] >= minor;
}

icu::Locale GetLocale(lcid id)
{
    if (id == 0)
        return icu::Locale::getRoot();
    if (id == LocaleIds::UserDefault || id == LocaleIds::SystemDefault)
        return icu::Locale::getDefault();
    return icu::Locale::createFromName(LanguageUtils::GetLocaleNarrowStr(id).c_str());
}

} // namespace CoreICUUtils
