#include "murcoredata/data/Time.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <cmath>
#include <limits>

namespace {

[[noreturn]] void ThrowTimeError(const MurvaneError& error)
{
    throw StringException(CoreData::LookupTStr(CoreData::IDS_DATETIME_ERROR), TError::ErrorInfo(error, 4, 2));
}

bool FieldsInRange(unsigned hour, unsigned minute, unsigned second, unsigned long long micros)
{
    return hour <= 23 && minute <= 59 && second <= 59 && micros <= 1000000;
}

unsigned long long Compose(unsigned hour, unsigned minute, unsigned second, unsigned long long micros)
{
    return ((hour * 60ULL + minute) * 60ULL + second) * 1000000ULL + micros;
}

} // namespace

Time::Time(unsigned int hour, unsigned int minute, unsigned int second, unsigned int micros)
{
    if (!FieldsInRange(hour, minute, second, micros))
        ThrowTimeError(MurErrorsError::AutoGen_0x5A975297());
    m_value = Compose(hour, minute, second, micros);
}

Time::Time(unsigned int hour, unsigned int minute, unsigned int second, double fraction)
{
    // Rounded in double and range-checked before any conversion: a negative, huge or NaN
    // fraction is refused instead of wrapping into some count.
    const double micros = std::trunc(fraction * 1e6 + 0.5);
    if (!(micros >= 0.0 && micros <= 1e6) || !FieldsInRange(hour, minute, second, (unsigned long long)micros))
        ThrowTimeError(MurErrorsError::AutoGen_0x22D59FE2());
    m_value = Compose(hour, minute, second, (unsigned long long)micros);
}

bool Time::IsFractionRounded(double fraction)
{
    if (!(fraction >= 0.0 && fraction < 1.0))
        ThrowTimeError(MurErrorsError::AutoGen_0xBE17C602());
    return std::fmod(fraction * 1e6, 1.0) > std::numeric_limits<double>::epsilon();
}
