#include "murcoredata/data/DateTime.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TLog.h"

#include <QDateTime>

#include <sys/time.h>

#include <climits>
#include <cmath>
#include <ctime>
#include <limits>
#include <mutex>
#include <ostream>

// The epoch objects are constant-initialised from their representations, so that static
// initialisers of other libraries may read them in any order; the tests check that
// SetDateTime gives the same values.
const DateTime DateTime::OLEEpoch(DateTime::s_OLEEpoch);
const DateTime DateTime::BaseDateEpoch(DateTime::s_baseDateEpoch);
const DateTime DateTime::UnixEpoch(2440587ULL * DateTime::s_scaling);

namespace {

constexpr unsigned long long s_ticksPerSecond = 10000;
constexpr unsigned long long s_unixEpoch = 2440587ULL * DateTime::s_scaling;
constexpr uint32_t s_oleEpochDay = uint32_t(DateTime::s_OLEEpoch / DateTime::s_scaling);

[[noreturn]] void ThrowDateTimeError(const MurvaneError& error)
{
    throw StringException(CoreData::LookupTStr(CoreData::IDS_DATETIME_ERROR), TError::ErrorInfo(error, 4, 2));
}

int64_t FloorDiv(int64_t a, int64_t b)
{
    const int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

uint64_t Magnitude(int64_t v)
{
    return v < 0 ? 0 - uint64_t(v) : uint64_t(v);
}

// Step 1 of SetDateTime and SetTime: fields above their range overflow into the fraction
// (seconds) and are clamped, so 24:00:00 becomes 23:00:00 plus 3600 s.
void OverflowIntoFraction(int& hour, int& minute, int& second, double& fraction)
{
    if (second > 59) {
        fraction += double(second) - 59.0;
        second = 59;
    }
    if (minute > 59) {
        fraction += double(minute) * 60.0 - 3540.0;
        minute = 59;
    }
    if (hour > 23) {
        fraction += double(hour) * 3600.0 - 82800.0;
        hour = 23;
    }
}

// The time part of the clamped fields: the magnitudes in ticks; `negative` if any is below 0.
uint64_t TimeTicks(int hour, int minute, int second, bool& negative)
{
    negative = hour < 0 || minute < 0 || second < 0;
    // |hour| <= 2^31, so the product stays below 2^57.
    return (Magnitude(second) + (Magnitude(minute) + Magnitude(hour) * 60) * 60) * s_ticksPerSecond;
}

// trunc(fraction x 10000 + 0.5) by a fused multiply-add, as a signed 32-bit count. False
// when it does not fit, NaN and infinities included: such a fraction is refused rather than
// converted to an arbitrary count.
bool FractionTicks(double fraction, int32_t& ticks)
{
    const double t = std::trunc(std::fma(fraction, 10000.0, 0.5));
    if (!(t >= double(INT32_MIN) && t <= double(INT32_MAX)))
        return false;
    ticks = int32_t(t);
    return true;
}

// Steps 3 and 4: the trial value without the fraction must decompose to exactly the fields.
// This one round trip is the whole calendar validation: February 30, month 13, a month that
// only fits a byte after truncation and negative time fields all fail it.
bool RoundTrips(date day, int year, int month, int dayOfMonth, int hour, int minute, int second)
{
    bool negative = false;
    const uint64_t timeTicks = TimeTicks(hour, minute, second, negative);
    const uint64_t midnight = uint64_t(day.GetDayNumber()) * DateTime::s_scaling;
    const DateTime trial = DateTime::FromValue(negative ? midnight - timeTicks : midnight + timeTicks);
    const DateTime::YearMonthDay ymd = trial.GetYearMonthDay();
    return ymd.year == year && ymd.month == month && ymd.day == dayOfMonth && trial.GetHour() == hour &&
           trial.GetMinute() == minute && trial.GetSecond() == second &&
           trial.GetRepresentation() % s_ticksPerSecond == 0;
}

// Step 5: the day plus the signed time of day. A negative fraction (or field) negates the
// whole time of day, not just its own part.
unsigned long long Assemble(date day, int hour, int minute, int second, int32_t fractionTicks)
{
    bool negative = false;
    const uint64_t magnitude = TimeTicks(hour, minute, second, negative) + Magnitude(fractionTicks);
    negative = negative || fractionTicks < 0;
    const uint64_t midnight = uint64_t(day.GetDayNumber()) * DateTime::s_scaling;
    return negative ? midnight - magnitude : midnight + magnitude;
}

// A double truncated to a 64-bit integer for the log: NaN gives 0, the rest saturates.
long long TruncatedForLog(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= 9.2233720368547758e18)
        return LLONG_MAX;
    if (v <= -9.2233720368547758e18)
        return LLONG_MIN;
    return (long long)v;
}

[[gnu::cold, gnu::noinline]] void LogInvalidDateTime(int year, int month, int day, int hour, int minute, int second,
                                                      double fraction)
{
    if (!TLog::Logger::Get().IsEnabled(TLog::Info))
        return;
    LogMessage(TFormatString(u"DateTime::SetDateTime: invalid datetime #%1-%2-%3T%4:%5:%6.%7#")
                   .arg(year, 4, 10, u'0')
                   .arg(month, 2, 10, u'0')
                   .arg(day, 2, 10, u'0')
                   .arg(hour, 2, 10, u'0')
                   .arg(minute, 2, 10, u'0')
                   .arg(second, 2, 10, u'0')
                   .arg(TruncatedForLog(fraction / DateTime::s_accuracy), 6, 10, u'0'));
}

// The clamped day number of an ISO year's week 1 Monday. J is the day number of January 4,
// by the civil formula with month and day folded into the constant 434.
int64_t MondayOfISOWeek1(int64_t isoYear)
{
    const int64_t lim = Implementation::s_yearLimit;
    const int64_t y = isoYear > lim ? lim : isoYear < -lim ? -lim : isoYear;
    const int64_t y1 = y < 0 ? y + 1 : y;
    const int64_t c = (y1 - 1) / 100;
    const int64_t j = int64_t(double(c / 4 - c + int64_t(double(y1 + 4715) * 365.25) + 434) - 1524.5);
    // The Monday on or before J; for J >= -1 this is 7 x ((J + 1) / 7) - 1.
    return 7 * FloorDiv(j + 1, 7) - 1;
}

DateTime FromDayNumber(int64_t dayNumber)
{
    return DateTime::FromValue(uint64_t(uint32_t(uint64_t(dayNumber))) * DateTime::s_scaling);
}

DateTime DayBefore(const DateTime& value)
{
    return DateTime::FromValue(value.GetRepresentation() - DateTime::s_scaling);
}

DateTime ISOWeekDay(long isoYear, long long isoWeek, int isoWeekday)
{
    const date day =
        date::iso8601date(isoYear, static_cast<signed char>(isoWeek), static_cast<signed char>(isoWeekday));
    return DateTime::FromValue(uint64_t(day.GetDayNumber()) * DateTime::s_scaling);
}

DateTime ISOYearStart(long isoYear)
{
    return FromDayNumber(MondayOfISOWeek1(isoYear));
}

std::once_flag s_tzsetOnce;

// The C library reads TZ once per process, on first use of any clock path.
void EnsureTzset()
{
    std::call_once(s_tzsetOnce, [] { ::tzset(); });
}

DateTime FromClock(bool utc)
{
    timeval now{};
    if (::gettimeofday(&now, nullptr) != 0)
        return DateTime();
    DateTime value;
    // Whole milliseconds only.
    if (!value.SetUnixTime(long(now.tv_sec), (unsigned long long)(now.tv_usec / 1000 * 1000), utc))
        return DateTime();
    return value;
}

} // namespace

//===----------------------------------------------------------------------===//
// date and duration
//===----------------------------------------------------------------------===//

date date::iso8601date(long isoYear, signed char isoWeek, signed char isoWeekday) noexcept
{
    const int64_t day = MondayOfISOWeek1(isoYear) + 7 * (int64_t(isoWeek) - 1) + (int64_t(isoWeekday) - 1);
    return date(uint32_t(uint64_t(day)));
}

void date::iso8601parts(long& isoYear, signed char& isoWeek, signed char& isoWeekday, const date& d) noexcept
{
    const int64_t dayNumber = d.GetDayNumber();
    const int weekday = iso8601weekday(d);
    int year = 0, month = 0, day = 0;
    Implementation::CivilFromDayNumber(d.GetDayNumber(), year, month, day);
    int64_t dayOfYear = dayNumber - Implementation::DayNumberFromCivil(year, 1, 1) + 1;
    int64_t week = (dayOfYear - weekday + 10) / 7;
    long resultYear = year;
    if (week == 53 && MondayOfISOWeek1(int64_t(year) + 1) <= dayNumber) {
        // The last days of December already belong to week 1 of the next year.
        resultYear = long(year) + 1;
        week = 1;
    } else if (week == 0) {
        // The first days of January still belong to the last week of the year before.
        resultYear = long(year) - 1;
        dayOfYear = dayNumber - Implementation::DayNumberFromCivil(resultYear, 1, 1) + 1;
        week = (dayOfYear - weekday + 10) / 7;
    }
    isoYear = resultYear;
    isoWeek = static_cast<signed char>(week);
    isoWeekday = static_cast<signed char>(weekday);
}

long long duration::hmsduration(long long days, long long hours, long long minutes, long long seconds,
                                long long ticks) noexcept
{
    const bool negative = days < 0 || hours < 0 || minutes < 0 || seconds < 0 || ticks < 0;
    const uint64_t magnitude =
        Magnitude(ticks) +
        (Magnitude(seconds) + (Magnitude(minutes) + (Magnitude(hours) + Magnitude(days) * 24) * 60) * 60) *
            s_ticksPerSecond;
    const uint64_t result = negative ? 0 - magnitude : magnitude;
    return result > uint64_t(LLONG_MAX) ? -(long long)(~result) - 1 : (long long)result;
}

//===----------------------------------------------------------------------===//
// Construction
//===----------------------------------------------------------------------===//

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second, double fraction) : m_value(0)
{
    SetDateTime(year, month, day, hour, minute, second, fraction);
}

DateTime DateTime::FromUnixTime(long secs, bool utc)
{
    DateTime value;
    value.SetUnixTime(secs, utc);
    return value;
}

DateTime DateTime::FromUnixTime(long secs, unsigned long long micros, bool utc)
{
    DateTime value;
    value.SetUnixTime(secs, micros, utc);
    return value;
}

DateTime DateTime::FromMillisecondsAfterUnixEpoch(long long ms) noexcept
{
    return FromValue(s_unixEpoch + uint64_t(ms) * 10);
}

DateTime DateTime::FromQDateTime(const QDateTime& value)
{
    const QDate d = value.date();
    const QTime t = value.time();
    DateTime result;
    result.SetDateTime(d.year(), d.month(), d.day(), t.hour(), t.minute(), t.second(), t.msec() / 1000.0);
    return result;
}

DateTime DateTime::FromISO8601Date(int isoYear, int isoWeek, int isoWeekday) noexcept
{
    return ISOWeekDay(isoYear, isoWeek, isoWeekday);
}

DateTime DateTime::GetLocalTime()
{
    return FromClock(false);
}

DateTime DateTime::GetUniversalTime()
{
    return FromClock(true);
}

DateTime DateTime::LocalFromUTC(const DateTime& value)
{
    return FromQDateTime(value.ToQDateTime(true).toTimeSpec(Qt::LocalTime));
}

DateTime DateTime::UTCFromLocal(const DateTime& value)
{
    return FromQDateTime(value.ToQDateTime(false).toTimeSpec(Qt::UTC));
}

long long DateTime::TotalMillisecondsFromMinDateTimeUTC()
{
    const uint64_t sinceEpoch = GetUniversalTime().m_value - s_OLEEpoch;
    return (long long)(sinceEpoch / 10);
}

//===----------------------------------------------------------------------===//
// Setters
//===----------------------------------------------------------------------===//

bool DateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second, double fraction)
{
    OverflowIntoFraction(hour, minute, second, fraction);
    int32_t fractionTicks = 0;
    const date dayNumber = date::fromGregorianDate(year, static_cast<signed char>(month), static_cast<signed char>(day));
    if (year < 400 || !RoundTrips(dayNumber, year, month, day, hour, minute, second) ||
        !FractionTicks(fraction, fractionTicks)) {
        LogInvalidDateTime(year, month, day, hour, minute, second, fraction);
        ThrowDateTimeError(MurErrorsError::AutoGen_0xDD90F63D());
    }
    m_value = Assemble(dayNumber, hour, minute, second, fractionTicks);
    return true;
}

void DateTime::SetTime(int hour, int minute, int second, double fraction)
{
    OverflowIntoFraction(hour, minute, second, fraction);
    int32_t fractionTicks = 0;
    if (!RoundTrips(date(s_oleEpochDay), 1899, 12, 30, hour, minute, second) ||
        !FractionTicks(fraction, fractionTicks))
        ThrowDateTimeError(MurErrorsError::AutoGen_0x87C06BF7());
    // The date as the accessors read it, which below year 400 is not the stored day number.
    const YearMonthDay ymd = GetYearMonthDay();
    const date day = date::fromGregorianDate(ymd.year, static_cast<signed char>(ymd.month), static_cast<signed char>(ymd.day));
    m_value = Assemble(day, hour, minute, second, fractionTicks);
}

bool DateTime::SetUnixTime(long secs, bool utc)
{
    return SetUnixTime(secs, 0, utc);
}

bool DateTime::SetUnixTime(long secs, unsigned long long micros, bool utc)
{
    EnsureTzset();
    const time_t t = time_t(secs);
    tm fields{};
    if ((utc ? ::gmtime_r(&t, &fields) : ::localtime_r(&t, &fields)) == nullptr)
        return false;
    const long long year = fields.tm_year + 1900LL;
    if (year > INT_MAX) // the C library's int year holds more than ours
        return false;
    return SetDateTime(int(year), fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec,
                       double(micros) / 1e6);
}

//===----------------------------------------------------------------------===//
// Validity
//===----------------------------------------------------------------------===//

void DateTime::Validate() const
{
    if (!IsValid())
        ThrowDateTimeError(MurErrorsError::AutoGen_0xE154043D());
}

bool DateTime::IsFractionTruncated(double fraction)
{
    if (!(fraction >= 0.0 && fraction < 1.0))
        ThrowDateTimeError(MurErrorsError::AutoGen_0x47EE95FC());
    return std::fmod(fraction * 10000.0, 1.0) > std::numeric_limits<double>::epsilon();
}

//===----------------------------------------------------------------------===//
// Calendar accessors
//===----------------------------------------------------------------------===//

int DateTime::GetDayOfYear() const noexcept
{
    const YearMonthDay ymd = GetYearMonthDay();
    return int(int64_t(GetDayNumber()) - Implementation::DayNumberFromCivil(ymd.year, 1, 1) + 1);
}

int DateTime::GetWeek() const noexcept
{
    const int64_t n = GetDayOfYear() - 1;
    const int64_t jan1Weekday = (int64_t(GetDayNumber()) - n + 2) % 7; // 0 = Sunday
    return int((n + jan1Weekday + 7) / 7);
}

int DateTime::GetWeek(int startOfWeek) const noexcept
{
    const int64_t n = GetDayOfYear() - 1;
    const int64_t jan1Weekday = (int64_t(GetDayNumber()) - n + 2) % 7;
    return int(((jan1Weekday - startOfWeek + 8) % 7 + n + 7) / 7);
}

long long DateTime::GetDaysSinceOLEEpoch() const noexcept
{
    if (m_value >= s_OLEEpoch)
        return (long long)((m_value - s_OLEEpoch) / s_scaling);
    // Before the epoch, any time of a day counts that whole day.
    return -(long long)((s_OLEEpoch - (m_value - m_value % s_scaling)) / s_scaling);
}

int DateTime::GetDaysSinceBaseDateEpoch() const noexcept
{
    return int32_t(uint32_t(uint64_t(GetDaysSinceOLEEpoch() - 2)));
}

int DateTime::LastDay(int year, int month)
{
    switch (month) {
    case -1:
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
        return 31;
    case 2:
        break;
    default: // April, June, September, November, and any month outside 1 to 12
        return 30;
    }
    if (year == -1)
        return 29;
    const DateTime march1(year, 3, 1, 0, 0, 0, 0.0);
    const DateTime january31(year, 1, 31, 0, 0, 0, 0.0);
    return march1.GetDayOfYear() - january31.GetDayOfYear() - 1;
}

//===----------------------------------------------------------------------===//
// ISO 8601
//===----------------------------------------------------------------------===//

int DateTime::GetISO8601Year() const noexcept
{
    long year = 0;
    signed char week = 0, weekday = 0;
    date::iso8601parts(year, week, weekday, date(GetDayNumber()));
    return int(year);
}

int DateTime::GetISO8601Week() const noexcept
{
    long year = 0;
    signed char week = 0, weekday = 0;
    date::iso8601parts(year, week, weekday, date(GetDayNumber()));
    return week;
}

int DateTime::GetISO8601Quarter() const noexcept
{
    const int week = GetISO8601Week();
    return week == 53 ? 4 : (week - 1) / 13 + 1;
}

DateTime DateTime::ISO8601YearStart(int isoYear) noexcept
{
    return ISOYearStart(isoYear);
}

DateTime DateTime::ISO8601YearEnd(int isoYear) noexcept
{
    return DayBefore(ISOYearStart(long(isoYear) + 1));
}

DateTime DateTime::ISO8601QuarterStart(int isoYear, int isoQuarter) noexcept
{
    return ISOWeekDay(isoYear, 13LL * isoQuarter - 12, 1);
}

DateTime DateTime::ISO8601QuarterEnd(int isoYear, int isoQuarter) noexcept
{
    if (isoQuarter < 4)
        return DayBefore(ISOWeekDay(isoYear, 13LL * isoQuarter + 1, 1));
    return DayBefore(ISOYearStart(long(isoYear) + 1));
}

DateTime DateTime::ISO8601WeekStart(int isoYear, int isoWeek) noexcept
{
    return ISOWeekDay(isoYear, isoWeek, 1);
}

DateTime DateTime::ISO8601WeekEnd(int isoYear, int isoWeek) noexcept
{
    return ISOWeekDay(isoYear, isoWeek, 7);
}

int DateTime::FirstISO8601Week(int isoYear, int isoQuarter)
{
    if (isoYear != -1) // -1, "not specified", needs no year
        MUR_LOGIC_ASSERT(isoYear >= 0, LogicAssert_0x8653917E);
    if (isoQuarter == -1)
        isoQuarter = 1;
    MUR_LOGIC_ASSERT(1 <= isoQuarter && isoQuarter <= 4, LogicAssert_0xF94CDB32);
    return 13 * isoQuarter - 12;
}

int DateTime::LastISO8601Week(int isoYear, int isoQuarter)
{
    if (isoYear == -1)
        isoYear = 2015; // a year of 53 weeks: the most any year has
    if (isoQuarter == -1)
        isoQuarter = 4;
    MUR_LOGIC_ASSERT(isoYear >= 0, LogicAssert_0xB6EC166C);
    MUR_LOGIC_ASSERT(1 <= isoQuarter && isoQuarter <= 4, LogicAssert_0xDF9BA5C2);
    if (isoQuarter < 4)
        return 13 * isoQuarter;
    // December 28 always lies in the last ISO week of its year.
    long year = 0;
    signed char week = 0, weekday = 0;
    date::iso8601parts(year, week, weekday, date::fromGregorianDate(isoYear, 12, 28));
    return week;
}

//===----------------------------------------------------------------------===//
// Conversions out
//===----------------------------------------------------------------------===//

unsigned long long DateTime::OleDateToFixedPrecision(double oleDate) noexcept
{
    const double magnitude = std::fma(std::fabs(oleDate), double(s_scaling), 0.5);
    if (!(magnitude < 18446744073709551616.0)) // 2^64; also NaN
        return ~0ULL;
    const uint64_t ticks = uint64_t(magnitude);
    return (oleDate < 0 ? 0 - ticks : ticks) + s_OLEEpoch;
}

double DateTime::OleDateFromFixedPrecision(unsigned long long representation, bool wholeSeconds) noexcept
{
    if (wholeSeconds)
        representation -= representation % s_ticksPerSecond;
    const uint64_t distance = representation - s_OLEEpoch;
    const int64_t signedDistance = distance > uint64_t(INT64_MAX) ? -int64_t(~distance) - 1 : int64_t(distance);
    return double(signedDistance) / double(s_scaling);
}

QDateTime DateTime::ToQDateTime(bool utc) const
{
    const YearMonthDay ymd = GetYearMonthDay();
    return QDateTime(QDate(ymd.year, ymd.month, ymd.day), QTime(GetHour(), GetMinute(), GetSecond(), GetMilliseconds()),
                     utc ? Qt::UTC : Qt::LocalTime);
}

QDate DateTime::ToQDate(bool utc) const
{
    return ToQDateTime(utc).date();
}

bool DateTime::GetAsUnixTime(long& secs, bool utc) const
{
    secs = long(ToQDateTime(utc).toSecsSinceEpoch());
    return true;
}

std::ostream& operator<<(std::ostream& out, const DateTime& value)
{
    return out << value.ToOleDate();
}
