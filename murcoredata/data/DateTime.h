#pragma once

// DateTime: a Gregorian date and time of day in one unsigned 64-bit number.
//
// The representation counts ticks of 1/10000 s (100 microseconds) from day number 0, so
//     representation = D x 864,000,000 + time of day in ticks,
// where D, the day number, is the Julian date of the civil day's midnight with the .5
// dropped: 1899-12-30 is 2415018, 1970-01-01 is 2440587, 9999-12-31 is 5373483.
// A DateTime carries no time zone: it is whatever wall clock its producer meant, and the
// conversions to local or universal time are explicit.
//
// Conventions used throughout this header:
//   - week day numbers run 1 = Sunday ... 7 = Saturday, except in the ISO 8601 family,
//     where 1 = Monday ... 7 = Sunday;
//   - -1 passed for a year, quarter or month means "not specified";
//   - end-of-period functions return the last day at 00:00, not its last instant.
//
// Valid values run from 0100-01-01 (as the day-number formula reckons it) to
// 9999-12-31T23:59:59.0000. Values made from raw numbers, OLE dates or arithmetic may lie
// outside that range; nothing checks until IsValid() or Validate() is asked. Every accessor
// still gives a defined (if meaningless) answer for such values.
//
// The day-number formulas below use double-precision constants and truncate at fixed
// places. They round-trip exactly for every day from 0400-01-01 to 9999-12-31. Below
// 0400-03-01 the way back follows a plain 365.25-day year and no longer agrees with the way
// there (0100-01-01 reads back as 0100-01-04); stored values depend on that, so it stays,
// and SetDateTime refuses years below 400.

#include "murcoredata/foundation/Export.h"

#include <cstdint>
#include <iosfwd>
#include <type_traits>

class QDate;
class QDateTime;

namespace Implementation {

// Day number from a civil date; see date::fromGregorianDate.
constexpr int64_t DayNumberFromCivil(long year, signed char month, signed char day) noexcept;
// Civil date from a day number, the one decomposition every accessor runs.
constexpr void CivilFromDayNumber(uint32_t dayNumber, int& year, int& month, int& day) noexcept;

} // namespace Implementation

/// A day number D. It gives the day and ISO-week conversions of DateTime a name; it is not
/// a general date type. Months, weeks and days pass through as signed bytes: a larger int is
/// truncated on the way in, which the callers' round trips then catch.
class MURCOREDATA_EXPORT date
{
public:
    constexpr date() noexcept = default;
    constexpr explicit date(uint32_t dayNumber) noexcept : m_dayNumber(dayNumber) {}

    constexpr uint32_t GetDayNumber() const noexcept { return m_dayNumber; }

    /// The day number of a civil date, by the Julian-day formula with its floating
    /// constants. There is no year 0: -1 is the year before 1. Not validated: February 30
    /// simply lands on a day in March. Years beyond +/-2^40 are taken as +/-2^40, and the
    /// result is kept modulo 2^32.
    static constexpr date fromGregorianDate(long year, signed char month, signed char day) noexcept;

    /// The day of ISO week `isoWeek` (1-based), week day `isoWeekday` (1 = Monday) of ISO
    /// year `isoYear`. Not validated: week 0 or day 8 count on from week 1's Monday.
    static date iso8601date(long isoYear, signed char isoWeek, signed char isoWeekday) noexcept;

    /// The ISO week day of `d`: 1 = Monday ... 7 = Sunday.
    static constexpr int iso8601weekday(const date& d) noexcept { return int((uint64_t(d.m_dayNumber) + 1) % 7) + 1; }

    /// The ISO year, week (1 to 53) and week day (1 = Monday) of `d`.
    static void iso8601parts(long& isoYear, signed char& isoWeek, signed char& isoWeekday, const date& d) noexcept;

private:
    uint32_t m_dayNumber = 0;
};

/// Durations in ticks.
class MURCOREDATA_EXPORT duration
{
public:
    /// The ticks of a duration given in parts. The magnitudes of the five parts are added,
    /// and the whole is negated if any part is negative, so that (0, 1, -30, 0, 0) is minus
    /// one and a half hours, not plus half an hour. Wraps modulo 2^64 where it overflows.
    static long long hmsduration(long long days, long long hours, long long minutes, long long seconds,
                                 long long ticks) noexcept;
};

/// The library's date-and-time value; see the top of this file.
class MURCOREDATA_EXPORT DateTime
{
public:
    /// Year, month (1 to 12) and day (1 to 31). Also carries fiscal year, month and day.
    struct MURCOREDATA_EXPORT YearMonthDay
    {
        constexpr YearMonthDay(int y, int m, int d) noexcept : year(y), month(m), day(d) {}
        constexpr YearMonthDay(const YearMonthDay&) noexcept = default;
        YearMonthDay& operator=(const YearMonthDay&) noexcept = default;
        ~YearMonthDay() = default;

        friend constexpr bool operator==(const YearMonthDay& a, const YearMonthDay& b) noexcept
        {
            return a.year == b.year && a.month == b.month && a.day == b.day;
        }
        friend constexpr bool operator!=(const YearMonthDay& a, const YearMonthDay& b) noexcept { return !(a == b); }

        int32_t year;
        int32_t month;
        int32_t day;
    };

    //===------------------------------------------------------------------===//
    // Constants
    //===------------------------------------------------------------------===//

    /// Divisor of the fraction in the log line of SetDateTime.
    static constexpr double s_accuracy = 1e-05;
    /// Ticks per day.
    static constexpr unsigned long long s_scaling = 864000000ULL;
    /// 1899-12-30T00:00:00, day 0 of OLE automation dates and the default value.
    static constexpr unsigned long long s_OLEEpoch = 2086575552000000ULL;
    /// 1900-01-01T00:00:00.
    static constexpr unsigned long long s_baseDateEpoch = 2086577280000000ULL;
    /// 9999-12-31T23:59:59.0000, the largest valid value: a fraction in the last second of
    /// 9999 is invalid.
    static constexpr unsigned long long maxGregorianDate = 4642690175990000ULL;
    /// 0100-01-01T00:00:00 as the day-number formula reckons it, the smallest valid value.
    static constexpr unsigned long long minGregorianDate = 1518552576000000ULL;

    /// 1899-12-30, 1900-01-01 and 1970-01-01 at midnight.
    static const DateTime OLEEpoch;
    static const DateTime BaseDateEpoch;
    static const DateTime UnixEpoch;

    //===------------------------------------------------------------------===//
    // Construction
    //===------------------------------------------------------------------===//

    /// The OLE epoch, 1899-12-30T00:00:00: the date part of a pure time value.
    constexpr DateTime() noexcept = default;
    /// An OLE automation date; see OleDateToFixedPrecision.
    explicit DateTime(double oleDate) noexcept : m_value(OleDateToFixedPrecision(oleDate)) {}
    /// A raw representation, taken as it stands. From a uint64_t (unsigned long here),
    /// FromValue avoids the choice between this and the double constructor.
    constexpr explicit DateTime(unsigned long long representation) noexcept : m_value(representation) {}
    /// SetDateTime on a cleared value; throws as SetDateTime does.
    DateTime(int year, int month, int day, int hour, int minute, int second, double fraction);

    static DateTime FromOleDate(double oleDate) noexcept { return DateTime(oleDate); }
    static constexpr DateTime FromValue(unsigned long long representation) noexcept { return DateTime(representation); }
    /// Seconds since 1970-01-01T00:00:00 UTC, as universal (`utc`) or local wall-clock time.
    /// A conversion the C library refuses leaves the OLE epoch; a year below 400 throws.
    static DateTime FromUnixTime(long secs, bool utc);
    static DateTime FromUnixTime(long secs, unsigned long long micros, bool utc);
    /// UnixEpoch plus `ms` milliseconds, without a time-zone conversion.
    static DateTime FromMillisecondsAfterUnixEpoch(long long ms) noexcept;
    /// The wall-clock fields of `value`, whole milliseconds kept. An invalid QDateTime throws.
    static DateTime FromQDateTime(const QDateTime& value);
    /// Midnight of the given ISO week day (1 = Monday); week and day are truncated to bytes.
    static DateTime FromISO8601Date(int isoYear, int isoWeek, int isoWeekday) noexcept;
    /// The clock now, in local or universal time, to whole milliseconds; the OLE epoch if the
    /// C library cannot convert the clock.
    static DateTime GetLocalTime();
    static DateTime GetUniversalTime();
    /// The local wall clock of a universal time, and the reverse, through Qt's zone rules;
    /// whole milliseconds are kept.
    static DateTime LocalFromUTC(const DateTime& value);
    static DateTime UTCFromLocal(const DateTime& value);
    /// Milliseconds from the OLE epoch (not the minimum date the name suggests) to now, UTC.
    static long long TotalMillisecondsFromMinDateTimeUTC();

    //===------------------------------------------------------------------===//
    // Setters
    //===------------------------------------------------------------------===//

    /// Sets the value from civil fields. Seconds, minutes and hours above 59, 59 and 23
    /// overflow into the fraction (in seconds), so 23:59:60 and 24:00:00 both give the next
    /// midnight. The fields must then survive the round trip through the day number exactly:
    /// February 30, month 13, negative time fields and years below 400 throw
    /// (IDS_DATETIME_ERROR, after a log line), leaving the value untouched. Years above 9999
    /// are not refused here; IsValid() refuses them.
    /// `fraction`: seconds, as trunc(fraction x 10000 + 0.5) ticks. A negative fraction
    /// negates the whole time of day: (2020, 1, 1, 6, 0, 0, -0.5) is -4999 ticks and 6 hours
    /// before midnight, 2019-12-31T17:59:59.5001. A fraction of
    /// 2^31 ticks or more in either direction (for example from hour 83 onwards), NaN or an
    /// infinity throws like a bad field.
    /// Always returns true.
    bool SetDateTime(int year, int month, int day, int hour, int minute, int second, double fraction);
    /// Sets the time of day, keeping the date as the accessors read it. The fields are
    /// checked as in SetDateTime; a failure throws IDS_DATETIME_ERROR and logs nothing.
    void SetTime(int hour, int minute, int second, double fraction);
    /// SetDateTime from Unix seconds and microseconds. Returns false, leaving the value, if
    /// the C library cannot convert `secs`; throws if SetDateTime does.
    bool SetUnixTime(long secs, bool utc);
    bool SetUnixTime(long secs, unsigned long long micros, bool utc);
    void swap(DateTime& other) noexcept
    {
        const unsigned long long v = m_value;
        m_value = other.m_value;
        other.m_value = v;
    }

    //===------------------------------------------------------------------===//
    // Validity and raw access
    //===------------------------------------------------------------------===//

    /// minGregorianDate <= value <= maxGregorianDate.
    constexpr bool IsValid() const noexcept { return m_value - minGregorianDate < maxGregorianDate - minGregorianDate + 1; }
    /// Throws IDS_DATETIME_ERROR unless IsValid().
    void Validate() const;
    constexpr unsigned long long GetRepresentation() const noexcept { return m_value; }
    /// False only on 1899-12-30, the date of a pure time value.
    constexpr bool HasDate() const noexcept { return m_value / s_scaling != s_OLEEpoch / s_scaling; }
    constexpr bool HasTime() const noexcept
    {
        return GetHour() != 0 || GetMinute() != 0 || GetSecond() != 0 || m_value % 10000 != 0;
    }
    /// Whether `fraction` (seconds, 0 <= fraction < 1) has digits beyond the four a tick
    /// keeps. Throws IDS_DATETIME_ERROR for a fraction outside [0, 1), NaN included.
    static bool IsFractionTruncated(double fraction);

    //===------------------------------------------------------------------===//
    // Calendar accessors
    //===------------------------------------------------------------------===//

    YearMonthDay GetYearMonthDay() const noexcept;
    int GetYear() const noexcept { return GetYearMonthDay().year; }
    int GetMonth() const noexcept { return GetYearMonthDay().month; }
    int GetDay() const noexcept { return GetYearMonthDay().day; }
    /// Hour, minute and second read the representation as a signed number and keep its
    /// sign: only a raw value of 2^63 or more gives a negative field.
    constexpr int GetHour() const noexcept { return int(SignedTicksOfDay() / 36000000); }
    constexpr int GetMinute() const noexcept { return int(SignedTicksOfDay() % 36000000 / 600000); }
    constexpr int GetSecond() const noexcept { return int(SignedTicksOfDay() % 600000 / 10000); }
    /// The sub-second part in seconds: 0.0 to 0.9999.
    constexpr double GetFraction() const noexcept { return double(m_value % 10000) / 10000.0; }
    /// trunc(GetFraction() x 1000) in doubles, so it inherits their rounding (on x86-64 every
    /// stored fraction happens to give its exact millisecond).
    int GetMilliseconds() const noexcept { return int(GetFraction() * 1000.0); }
    /// Midnight of the same day.
    constexpr DateTime GetDate() const noexcept { return FromValue(m_value - m_value % s_scaling); }
    /// 1 for January 1.
    int GetDayOfYear() const noexcept;
    /// 1 = Sunday ... 7 = Saturday.
    constexpr int GetDayOfWeek() const noexcept { return int((uint64_t(GetDayNumber()) + 2) % 7) + 1; }
    /// Week of the year with weeks opening on Sunday; January 1 is always in week 1.
    int GetWeek() const noexcept;
    /// The same with weeks opening on `startOfWeek` (1 = Sunday ... 7 = Saturday).
    int GetWeek(int startOfWeek) const noexcept;
    /// 1 to 4.
    int GetQuarter() const noexcept { return (GetMonth() - 1) / 3 + 1; }
    /// Whole days from 1899-12-30. Any time on a day before it counts that whole day, so
    /// 1899-12-29T12:00 gives -1.
    long long GetDaysSinceOLEEpoch() const noexcept;
    /// Whole days from 1900-01-01, the same way.
    int GetDaysSinceBaseDateEpoch() const noexcept;
    /// The number of days in the month. `month` -1 gives 31 and any other month outside 1 to
    /// 12 gives 30; February of year -1 gives 29. February of a year below 400 throws.
    static int LastDay(int year, int month);

    //===------------------------------------------------------------------===//
    // ISO 8601 week dates (week days 1 = Monday; week 1 holds January 4)
    //===------------------------------------------------------------------===//

    int GetISO8601Year() const noexcept;
    /// Week 53 gives 4; otherwise (week - 1) / 13 + 1.
    int GetISO8601Quarter() const noexcept;
    int GetISO8601Week() const noexcept;
    int GetISO8601DayOfWeek() const noexcept { return date::iso8601weekday(date(GetDayNumber())); }
    /// Monday of week 1.
    static DateTime ISO8601YearStart(int isoYear) noexcept;
    /// Sunday of the last week.
    static DateTime ISO8601YearEnd(int isoYear) noexcept;
    /// Monday of week 13q - 12.
    static DateTime ISO8601QuarterStart(int isoYear, int isoQuarter) noexcept;
    /// Sunday before week 13q + 1; for quarter 4 (or more), the last day of the year.
    static DateTime ISO8601QuarterEnd(int isoYear, int isoQuarter) noexcept;
    static DateTime ISO8601WeekStart(int isoYear, int isoWeek) noexcept;
    static DateTime ISO8601WeekEnd(int isoYear, int isoWeek) noexcept;
    /// 13q - 12; quarter -1 is read as 1. Asserts isoYear >= 0 (or -1) and 1 <= q <= 4.
    static int FirstISO8601Week(int isoYear, int isoQuarter);
    /// 13q, or for quarter 4 the number of weeks of the year. Year -1 is read as 2015 (a
    /// year of 53 weeks) and quarter -1 as 4. Asserts isoYear >= 0 and 1 <= q <= 4.
    static int LastISO8601Week(int isoYear, int isoQuarter);

    //===------------------------------------------------------------------===//
    // Conversions out
    //===------------------------------------------------------------------===//

    /// Days from the OLE epoch, linear through it: 1899-12-29T12:00 is -0.5. (The published
    /// OLE format would write -1.5; this library never has.)
    double ToOleDate() const noexcept { return OleDateFromFixedPrecision(m_value, false); }
    /// The representation of an OLE date: trunc(|x| x 864e6 + 0.5) ticks, with the sign of
    /// x, from the OLE epoch, modulo 2^64. No range check. An argument whose tick count does
    /// not fit 64 bits (NaN, infinities, |x| beyond 21 billion days) gives the all-ones
    /// representation, which IsValid() refuses.
    static unsigned long long OleDateToFixedPrecision(double oleDate) noexcept;
    /// The OLE date of a representation; `wholeSeconds` first drops the sub-second ticks.
    static double OleDateFromFixedPrecision(unsigned long long representation, bool wholeSeconds) noexcept;
    /// The fields as a QDateTime in UTC or local time, with whole milliseconds.
    QDateTime ToQDateTime(bool utc) const;
    QDate ToQDate(bool utc) const;
    /// Seconds since the Unix epoch of the value read as UTC or local time. Always true.
    bool GetAsUnixTime(long& secs, bool utc) const;

    //===------------------------------------------------------------------===//
    // Comparison: the representations as unsigned numbers
    //===------------------------------------------------------------------===//

    friend constexpr bool operator==(const DateTime& a, const DateTime& b) noexcept { return a.m_value == b.m_value; }
    friend constexpr bool operator!=(const DateTime& a, const DateTime& b) noexcept { return a.m_value != b.m_value; }
    friend constexpr bool operator<(const DateTime& a, const DateTime& b) noexcept { return a.m_value < b.m_value; }
    friend constexpr bool operator>(const DateTime& a, const DateTime& b) noexcept { return a.m_value > b.m_value; }
    friend constexpr bool operator<=(const DateTime& a, const DateTime& b) noexcept { return a.m_value <= b.m_value; }
    friend constexpr bool operator>=(const DateTime& a, const DateTime& b) noexcept { return a.m_value >= b.m_value; }

private:
    // The day number as every accessor takes it: the quotient, kept modulo 2^32.
    constexpr uint32_t GetDayNumber() const noexcept { return uint32_t(m_value / s_scaling); }
    // The representation read as signed (modulo 2^64), then its remainder by a day.
    constexpr int64_t SignedTicksOfDay() const noexcept
    {
        const int64_t v = m_value > uint64_t(INT64_MAX) ? -int64_t(~m_value) - 1 : int64_t(m_value);
        return v % int64_t(s_scaling);
    }

    unsigned long long m_value = s_OLEEpoch;
};

/// Writes ToOleDate() as a double.
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const DateTime& value);

static_assert(sizeof(DateTime) == 8, "DateTime sits inside DataValue and must stay eight bytes");
static_assert(std::is_trivially_copyable<DateTime>::value, "DateTime is copied as bytes");
static_assert(DateTime::s_OLEEpoch == 2415018ULL * DateTime::s_scaling, "1899-12-30 is day 2415018");
static_assert(DateTime::s_baseDateEpoch == 2415020ULL * DateTime::s_scaling, "1900-01-01 is day 2415020");
static_assert(DateTime::maxGregorianDate == 5373483ULL * DateTime::s_scaling + 863990000ULL, "9999-12-31T23:59:59");
static_assert(DateTime::minGregorianDate == 1757584ULL * DateTime::s_scaling, "0100-01-01 is day 1757584");

//===----------------------------------------------------------------------===//
// Inline implementation
//===----------------------------------------------------------------------===//

namespace Implementation {

// Every conversion to an integer truncates toward zero, as the formulas require; the casts
// below are that truncation. All intermediates are 64-bit: with |year| <= 2^40 and a day
// number below 2^32 none of them comes near the limits of int64 or of a double's exact
// integers (2^53).

constexpr long s_yearLimit = 1L << 40;

constexpr int64_t DayNumberFromCivil(long year, signed char month, signed char day) noexcept
{
    const int64_t y = year > s_yearLimit ? s_yearLimit : year < -s_yearLimit ? -s_yearLimit : year;
    const int64_t y1 = y < 0 ? y + 1 : y; // no year 0: -1 is the year before 1
    const bool early = month < 3;         // January and February count as months 13 and 14
    const int64_t y2 = early ? y1 - 1 : y1;
    const int64_t m2 = early ? static_cast<signed char>(month + 12) : month;
    const int64_t c = y2 / 100;
    const int64_t x = day - c + c / 4 + int64_t(double(y2 + 4716) * 365.25) + int64_t(double(m2 + 1) * 30.6001) + 2;
    return int64_t(double(x) - 1524.5);
}

constexpr void CivilFromDayNumber(uint32_t dayNumber, int& year, int& month, int& day) noexcept
{
    // For 0 <= D < 2^32: alpha <= 117,000, b and the year below 1.2e7 in magnitude.
    const int64_t d = dayNumber;
    double a = (double(d + 1) - 1867216.25) / 36524.25;
    if (a < 0) // before 0400-03-01 the Gregorian correction stops: a plain 365.25-day year
        a = 0;
    const int64_t alpha = int64_t(a);
    const int64_t b = d + alpha - alpha / 4 + 1526;
    const int64_t c = int64_t((double(b) - 122.1) / 365.25);
    const int64_t r = b - int64_t(double(c) * 365.25);
    const int64_t e = int64_t(double(r) / 30.6001);
    int m = static_cast<signed char>(e - 1);
    if (m > 12)
        m = static_cast<signed char>(e - 13);
    month = m;
    day = static_cast<signed char>(r - int64_t(double(e) * 30.6001));
    year = int(c - 4715 - (m >= 3 ? 1 : 0));
}

} // namespace Implementation

constexpr date date::fromGregorianDate(long year, signed char month, signed char day) noexcept
{
    return date(uint32_t(uint64_t(Implementation::DayNumberFromCivil(year, month, day))));
}

inline DateTime::YearMonthDay DateTime::GetYearMonthDay() const noexcept
{
    int y = 0, m = 0, d = 0;
    Implementation::CivilFromDayNumber(GetDayNumber(), y, m, d);
    return YearMonthDay(y, m, d);
}

inline void swap(DateTime& a, DateTime& b) noexcept
{
    a.swap(b);
}
