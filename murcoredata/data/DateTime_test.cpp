#include "murcoredata/data/DateTime.h"
#include "murcoredata/foundation/Caught_test.h"
#include "murcoredata/foundation/LogCapture_test.h"

#include <gtest/gtest.h>

#include <QDateTime>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <sstream>
#include <string>

namespace {

constexpr unsigned long long kDay = 864000000ULL;
constexpr unsigned long long kHour = 36000000ULL;
constexpr unsigned long long kMinute = 600000ULL;
constexpr unsigned long long kSecond = 10000ULL;

// The failure sites: SetDateTime, SetTime, Validate, IsFractionTruncated.
constexpr uint32_t kBadDateTime = 0xDD90F63D, kBadTime = 0x87C06BF7, kInvalid = 0xE154043D, kBadFraction = 0x47EE95FC;

// An independent proleptic Gregorian calendar in integers only (the public-domain
// days-from-civil and civil-from-days algorithms), shifted so that 1970-01-01 is day 2440587.
constexpr int64_t kUnixDay = 2440587;

int64_t RefDayNumber(int64_t y, int m, int d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468 + kUnixDay;
}

struct Civil { int64_t y; int m; int d; };

Civil RefCivil(int64_t dayNumber)
{
    const int64_t z = dayNumber - kUnixDay + 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int d = int(doy - (153 * mp + 2) / 5 + 1);
    const int m = int(mp < 10 ? mp + 3 : mp - 9);
    return {yoe + era * 400 + (m <= 2), m, d};
}

bool RefLeap(int64_t y)
{
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

// Week day, 0 = Monday ... 6 = Sunday, counted from a known Thursday (1970-01-01).
int RefMondayIndex(int64_t dayNumber)
{
    return int(((dayNumber - kUnixDay + 3) % 7 + 7) % 7);
}

// ISO week date by the Thursday rule: a week belongs to the year of its Thursday.
void RefISO(int64_t dayNumber, int64_t& isoYear, int& week, int& weekday)
{
    weekday = RefMondayIndex(dayNumber) + 1;
    const int64_t thursday = dayNumber - (weekday - 1) + 3;
    isoYear = RefCivil(thursday).y;
    week = int((thursday - RefDayNumber(isoYear, 1, 1)) / 7 + 1);
}

unsigned long long Rep(int y, int m, int d, int hh = 0, int mm = 0, int ss = 0, unsigned long long ticks = 0)
{
    return static_cast<unsigned long long>(RefDayNumber(y, m, d)) * kDay + hh * kHour + mm * kMinute + ss * kSecond +
           ticks;
}

DateTime At(int y, int m, int d, int hh = 0, int mm = 0, int ss = 0, unsigned long long ticks = 0)
{
    return DateTime::FromValue(Rep(y, m, d, hh, mm, ss, ticks));
}

// Runs `f`, which must throw the library's date-time failure of that site.
void ExpectDateTimeError(const std::function<void()>& f, uint32_t code)
{
    char name[64];
    std::snprintf(name, sizeof name, "MurvaneException_AutoGen_0x%08X", code);
    try {
        f();
        ADD_FAILURE() << "no exception, expected " << name;
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetMessagesFront(), TString(u"Invalid datetime value"));
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), code);
        EXPECT_EQ(e.GetErrorInfo().GetError().GetName().toStdString(), name);
        EXPECT_EQ(e.GetErrorInfo().GetSource(), TError::ErrorSource::CoreData);
        EXPECT_EQ(e.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
    } catch (...) {
        ADD_FAILURE() << "another exception than " << name;
    }
}

using LogCapture = TestSupport::ScopedLogCapture;
using TestSupport::ExpectLogicFailure;

// Sets TZ for the life of the object. The library reads TZ once per process; calling tzset
// here puts the zone in force whichever test ran first.
class ScopedTimeZone
{
public:
    explicit ScopedTimeZone(const char* zone) : m_hadOld(std::getenv("TZ") != nullptr)
    {
        if (m_hadOld)
            m_old = std::getenv("TZ");
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~ScopedTimeZone()
    {
        m_hadOld ? ::setenv("TZ", m_old.c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }

private:
    bool m_hadOld;
    std::string m_old;
};

} // namespace

//===-- Type facts and constants ------------------------------------------===//

static_assert(sizeof(DateTime) == 8, "");
static_assert(std::is_trivially_copyable<DateTime>::value, "");
static_assert(!std::is_convertible<unsigned long long, DateTime>::value, "a raw number is not silently a date");
static_assert(!std::is_convertible<double, DateTime>::value, "an OLE date is not silently a date");
static_assert(DateTime().GetRepresentation() == 2086575552000000ULL, "");
static_assert(!DateTime().HasDate() && !DateTime().HasTime(), "");
static_assert(DateTime::FromValue(5) < DateTime::FromValue(6), "");

TEST(DateTime, ConstantsAndEpochs)
{
    EXPECT_EQ(DateTime::s_accuracy, 1e-05);
    EXPECT_EQ(DateTime::s_scaling, 864000000ULL);
    EXPECT_EQ(DateTime::s_OLEEpoch, 2086575552000000ULL);
    EXPECT_EQ(DateTime::s_baseDateEpoch, 2086577280000000ULL);
    EXPECT_EQ(DateTime::maxGregorianDate, 4642690175990000ULL);
    EXPECT_EQ(DateTime::minGregorianDate, 1518552576000000ULL);
    EXPECT_EQ(DateTime::OLEEpoch, DateTime(1899, 12, 30, 0, 0, 0, 0.0));
    EXPECT_EQ(DateTime::BaseDateEpoch, DateTime(1900, 1, 1, 0, 0, 0, 0.0));
    EXPECT_EQ(DateTime::UnixEpoch, DateTime(1970, 1, 1, 0, 0, 0, 0.0));
    EXPECT_EQ(DateTime::UnixEpoch.GetRepresentation(), 2440587ULL * kDay);
    EXPECT_EQ(DateTime(), DateTime::OLEEpoch);
}

//===-- Day numbers -------------------------------------------------------===//

TEST(DateTime, KnownDayNumbers)
{
    // Julian dates of midnight, less one half.
    const struct { int y, m, d; uint32_t dayNumber; } rows[] = {
        {1899, 12, 30, 2415018}, {1900, 1, 1, 2415020}, {1970, 1, 1, 2440587}, {2000, 1, 1, 2451544},
        {1582, 10, 15, 2299160}, {9999, 12, 31, 5373483}, {100, 1, 1, 1757584}, {2000, 2, 29, 2451603},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.y << "-" << r.m << "-" << r.d);
        EXPECT_EQ(date::fromGregorianDate(r.y, r.m, r.d).GetDayNumber(), r.dayNumber);
        EXPECT_EQ(int64_t(r.dayNumber), RefDayNumber(r.y, r.m, r.d)); // the reference agrees
    }
}

// Every day from 0400-01-01 to 9999-12-31, against the integer reference: the day number,
// the decomposition, the week days, the day of the year, the weeks and the ISO week date.
TEST(DateTime, EveryDayFrom400To9999AgreesWithAnIntegerCalendar)
{
    const int64_t first = RefDayNumber(400, 1, 1);
    const int64_t last = RefDayNumber(9999, 12, 31);
    int dayOfYear = 0;
    int weekFrom[8] = {}; // the week number when weeks start on day s, 1 = Sunday
    int failures = 0;
    for (int64_t n = first; n <= last && failures < 10; ++n) {
        const Civil c = RefCivil(n);
        const int sundayBased = (RefMondayIndex(n) + 1) % 7 + 1; // 1 = Sunday
        const bool newYear = c.m == 1 && c.d == 1;
        dayOfYear = newYear ? 1 : dayOfYear + 1;
        for (int s = 1; s <= 7; ++s)
            weekFrom[s] = newYear ? 1 : weekFrom[s] + (sundayBased == s);
        int64_t isoYear = 0;
        int isoWeek = 0, isoWeekday = 0;
        RefISO(n, isoYear, isoWeek, isoWeekday);

        const DateTime v = DateTime::FromValue(uint64_t(n) * kDay + 12 * kHour);
        bool ok = date::fromGregorianDate(long(c.y), c.m, c.d).GetDayNumber() == uint32_t(n) &&
                  v.GetYearMonthDay() == DateTime::YearMonthDay(int(c.y), c.m, c.d) && v.GetDayOfWeek() == sundayBased &&
                  v.GetDayOfYear() == dayOfYear && v.GetWeek() == weekFrom[1] && v.GetQuarter() == (c.m - 1) / 3 + 1 &&
                  v.GetISO8601Year() == isoYear && v.GetISO8601Week() == isoWeek &&
                  v.GetISO8601DayOfWeek() == isoWeekday &&
                  DateTime::FromISO8601Date(int(isoYear), isoWeek, isoWeekday) == v.GetDate();
        for (int s = 1; s <= 7; ++s)
            ok = ok && v.GetWeek(s) == weekFrom[s];
        if (!ok) {
            ++failures;
            ADD_FAILURE() << "day " << n << " = " << c.y << "-" << c.m << "-" << c.d;
        }
    }
}

TEST(DateTime, BelowYear400TheWayBackFollowsAPlainJulianYear)
{
    // The way there stays Gregorian; the way back drops the correction before 0400-03-01.
    EXPECT_EQ(DateTime::FromValue(DateTime::minGregorianDate).GetYearMonthDay(), DateTime::YearMonthDay(100, 1, 4));
    EXPECT_EQ(At(200, 3, 1).GetYearMonthDay(), DateTime::YearMonthDay(200, 3, 2));
    EXPECT_EQ(At(300, 2, 28).GetYearMonthDay(), DateTime::YearMonthDay(300, 2, 29)); // not a Gregorian leap year
    EXPECT_EQ(At(399, 12, 31).GetYearMonthDay(), DateTime::YearMonthDay(399, 12, 31));
    EXPECT_EQ(At(400, 2, 29).GetYearMonthDay(), DateTime::YearMonthDay(400, 2, 29));
    // Such values are valid, but SetDateTime refuses the years.
    EXPECT_TRUE(At(399, 12, 31).IsValid());
    ExpectDateTimeError([] { DateTime(399, 12, 31, 0, 0, 0, 0.0); }, kBadDateTime);
    EXPECT_EQ(DateTime(400, 1, 1, 0, 0, 0, 0.0), At(400, 1, 1));
}

TEST(DateTime, DayNumbersOfHugeRawValuesStayDefined)
{
    // The quotient is kept modulo 2^32; nothing here may trap under the sanitizers.
    for (unsigned long long raw : {0ULL, ~0ULL, ~0ULL - kDay, 1ULL << 63, 4294967295ULL * kDay}) {
        SCOPED_TRACE(raw);
        const DateTime v = DateTime::FromValue(raw);
        const DateTime::YearMonthDay ymd = v.GetYearMonthDay();
        EXPECT_TRUE(ymd.month >= -128 && ymd.month <= 127);
        (void)v.GetDayOfYear(), (void)v.GetWeek(INT_MIN), (void)v.GetWeek(INT_MAX), (void)v.GetISO8601Quarter();
        (void)v.GetDaysSinceOLEEpoch(), (void)v.GetDaysSinceBaseDateEpoch(), (void)v.ToOleDate();
        (void)v.ToQDateTime(true), (void)v.HasTime();
        EXPECT_FALSE(v.IsValid());
    }
    // Read as signed, a raw value of 2^63 or more gives negative time fields.
    const DateTime negative = DateTime::FromValue(0 - (2 * kHour + 3 * kMinute));
    EXPECT_EQ(negative.GetHour(), -2);
    EXPECT_EQ(negative.GetMinute(), -3);
    EXPECT_EQ(negative.GetSecond(), 0);
}

TEST(DateTime, FromGregorianDateDoesNotValidate)
{
    EXPECT_EQ(date::fromGregorianDate(2021, 2, 30).GetDayNumber(), uint32_t(RefDayNumber(2021, 3, 2)));
    EXPECT_EQ(date::fromGregorianDate(2021, 1, 0).GetDayNumber(), uint32_t(RefDayNumber(2020, 12, 31)));
    // No year 0: -1 is the year before 1, and a leap year (it is year 0 of the astronomers).
    EXPECT_EQ(date::fromGregorianDate(-1, 1, 1).GetDayNumber() + 366, date::fromGregorianDate(1, 1, 1).GetDayNumber());
    EXPECT_EQ(date::fromGregorianDate(-1, 1, 1).GetDayNumber(), uint32_t(RefDayNumber(0, 1, 1)));
    // Extreme years are defined values, not overflow.
    (void)date::fromGregorianDate(LONG_MAX, 12, 31), (void)date::fromGregorianDate(LONG_MIN, -128, -128);
    (void)date::iso8601date(LONG_MAX, 127, 127), (void)date::iso8601date(LONG_MIN, -128, -128);
}

TEST(DateTime, HmsDurationAddsMagnitudesAndTakesAnySign)
{
    EXPECT_EQ(duration::hmsduration(0, 1, -30, 0, 0), -(long long)(kHour + 30 * kMinute));
    EXPECT_EQ(duration::hmsduration(1, 2, 3, 4, 5), (long long)(kDay + 2 * kHour + 3 * kMinute + 4 * kSecond + 5));
    EXPECT_EQ(duration::hmsduration(0, 0, 0, 0, -7), -7);
    EXPECT_EQ(duration::hmsduration(-1, 0, 0, 0, 0), -(long long)kDay);
    (void)duration::hmsduration(LLONG_MIN, LLONG_MIN, LLONG_MIN, LLONG_MIN, LLONG_MIN); // wraps, defined
}

//===-- SetDateTime and SetTime -------------------------------------------===//

TEST(DateTime, SetDateTimeAcceptsRealDates)
{
    EXPECT_EQ(DateTime(2000, 2, 29, 0, 0, 0, 0.0), At(2000, 2, 29));
    EXPECT_EQ(DateTime(2021, 3, 4, 5, 6, 7, 0.25), At(2021, 3, 4, 5, 6, 7, 2500));
    EXPECT_EQ(DateTime(2021, 3, 4, 5, 6, 7, 0.0001), At(2021, 3, 4, 5, 6, 7, 1));
    EXPECT_EQ(DateTime(9999, 12, 31, 23, 59, 59, 0.0).GetRepresentation(), DateTime::maxGregorianDate);
    DateTime v;
    EXPECT_TRUE(v.SetDateTime(1970, 1, 1, 0, 0, 0, 0.0));
    EXPECT_EQ(v, DateTime::UnixEpoch);
    // Beyond the end: accepted here, refused by IsValid.
    EXPECT_FALSE(DateTime(9999, 12, 31, 23, 59, 59, 0.5).IsValid());
    EXPECT_EQ(DateTime(10000, 1, 1, 0, 0, 0, 0.0), At(10000, 1, 1));
}

TEST(DateTime, SetDateTimeMovesOverflowingTimeFieldsIntoTheNextDay)
{
    EXPECT_EQ(DateTime(2020, 1, 1, 24, 0, 0, 0.0), At(2020, 1, 2));
    EXPECT_EQ(DateTime(2020, 1, 1, 23, 59, 60, 0.0), At(2020, 1, 2));
    EXPECT_EQ(DateTime(2020, 12, 31, 23, 60, 0, 0.0), At(2021, 1, 1));
    EXPECT_EQ(DateTime(2020, 1, 1, 10, 0, 90, 0.0), At(2020, 1, 1, 10, 1, 30));
    // The overflow goes through a 32-bit tick count: 82 hours still fit, 83 do not.
    EXPECT_EQ(DateTime(2020, 1, 1, 82, 0, 0, 0.0), At(2020, 1, 4, 10));
    ExpectDateTimeError([] { DateTime(2020, 1, 1, 83, 0, 0, 0.0); }, kBadDateTime);
    // A negative fraction negates the whole time of day: -0.5 s is -4999.5 ticks, rounded
    // half up to -4999, so 06:00 lands 6 h 0.4999 s before midnight.
    EXPECT_EQ(DateTime(2020, 1, 1, 6, 0, 0, -0.5).GetRepresentation(), Rep(2020, 1, 1) - 6 * kHour - 4999);
    EXPECT_LT(DateTime(2020, 1, 1, 0, 0, 0, -0.25), At(2020, 1, 1));
}

TEST(DateTime, SetDateTimeRefusesBadFieldsAndLeavesTheValue)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const struct { int y, m, d, hh, mm, ss; double f; const char* what; } rows[] = {
        {1999, 2, 29, 0, 0, 0, 0.0, "not a leap year"},     {2021, 4, 31, 0, 0, 0, 0.0, "April 31"},
        {2021, 13, 1, 0, 0, 0, 0.0, "month 13"},            {2021, 0, 1, 0, 0, 0, 0.0, "month 0"},
        {2021, 257, 1, 0, 0, 0, 0.0, "month 1 as a byte"},  {2021, 1, 0, 0, 0, 0, 0.0, "day 0"},
        {2021, 1, 32, 0, 0, 0, 0.0, "day 32"},              {2021, 1, 257, 0, 0, 0, 0.0, "day 1 as a byte"},
        {2021, 1, -255, 0, 0, 0, 0.0, "day -255"},          {399, 12, 31, 0, 0, 0, 0.0, "year 399"},
        {0, 1, 1, 0, 0, 0, 0.0, "year 0"},                  {INT_MIN, 1, 1, 0, 0, 0, 0.0, "INT_MIN year"},
        {INT_MAX, 12, 31, 0, 0, 0, 0.0, "INT_MAX year"},    {2021, 1, 1, -1, 0, 0, 0.0, "hour -1"},
        {2021, 1, 1, 0, -1, 0, 0.0, "minute -1"},           {2021, 1, 1, 0, 0, -1, 0.0, "second -1"},
        {2021, 1, 1, INT_MIN, INT_MIN, INT_MIN, 0.0, "INT_MIN time"},
        {2021, 1, 1, INT_MAX, 0, 0, 0.0, "INT_MAX hour"},   {2021, 1, 1, 0, INT_MAX, 0, 0.0, "INT_MAX minute"},
        {2021, 1, 1, 0, 0, INT_MAX, 0.0, "INT_MAX second"}, {2021, 1, 1, 0, 0, 0, nan, "NaN fraction"},
        {2021, 1, 1, 0, 0, 0, inf, "infinite fraction"},    {2021, 1, 1, 0, 0, 0, -inf, "-infinite fraction"},
        {2021, 1, 1, 0, 0, 0, -1e300, "huge fraction"},     {2021, 1, 1, 0, 0, 0, 214748.4, "just over 2^31 ticks"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        DateTime v = At(2001, 2, 3, 4, 5, 6, 7);
        ExpectDateTimeError([&] { v.SetDateTime(r.y, r.m, r.d, r.hh, r.mm, r.ss, r.f); }, kBadDateTime);
        EXPECT_EQ(v, At(2001, 2, 3, 4, 5, 6, 7));
    }
}

TEST(DateTime, SetDateTimeLogsTheRefusedFieldsBeforeItThrows)
{
    const struct { int y, m, d, hh, mm, ss; double f; const char* line; } rows[] = {
        {1999, 2, 29, 1, 2, 3, 0.0, "DateTime::SetDateTime: invalid datetime #1999-02-29T01:02:03.000000#"},
        // 0.9999 / 1e-5 is exactly 99990 in doubles.
        {2021, 2, 30, 12, 0, 0, 0.9999, "DateTime::SetDateTime: invalid datetime #2021-02-30T12:00:00.099990#"},
        // Second 60 is clamped to 59 and 1 s moves into the fraction; 1 / 1e-5 is 99999.99... and truncates.
        {2021, 2, 30, 23, 59, 60, 0.0, "DateTime::SetDateTime: invalid datetime #2021-02-30T23:59:59.099999#"},
        {399, 12, 31, 0, 0, 0, 0.0, "DateTime::SetDateTime: invalid datetime #0399-12-31T00:00:00.000000#"},
        // Hour 100: 23 plus 277200 s of fraction; 277200 / 1e-5 is 27719999999.99... in doubles.
        {2020, 1, 1, 100, 0, 0, 0.0, "DateTime::SetDateTime: invalid datetime #2020-01-01T23:00:00.27719999999#"},
        {2021, 1, 1, 0, 0, 0, std::nan(""), "DateTime::SetDateTime: invalid datetime #2021-01-01T00:00:00.000000#"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.line);
        LogCapture capture(TLog::Trace);
        DateTime v;
        EXPECT_THROW(v.SetDateTime(r.y, r.m, r.d, r.hh, r.mm, r.ss, r.f), StringException);
        const auto lines = capture.Lines();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].second, r.line);
        EXPECT_EQ(lines[0].first, TLog::Info);
    }
    {
        // Above the minimum severity nothing is written, and success writes nothing.
        LogCapture capture(TLog::Warning);
        DateTime v;
        EXPECT_THROW(v.SetDateTime(1999, 2, 29, 0, 0, 0, 0.0), StringException);
        EXPECT_TRUE(capture.Lines().empty());
    }
    LogCapture capture(TLog::Trace);
    DateTime v(2000, 2, 29, 0, 0, 0, 0.0);
    EXPECT_TRUE(capture.Lines().empty());
}

TEST(DateTime, SetTimeKeepsTheDate)
{
    DateTime v = At(2021, 3, 4, 5, 6, 7, 8);
    v.SetTime(13, 14, 15, 0.5);
    EXPECT_EQ(v, At(2021, 3, 4, 13, 14, 15, 5000));
    v.SetTime(24, 0, 0, 0.0); // overflows into the next day
    EXPECT_EQ(v, At(2021, 3, 5));
    v.SetTime(0, 0, 0, -0.5); // a negative fraction reaches back into the day before
    EXPECT_EQ(v, At(2021, 3, 4, 23, 59, 59, 5001));
    // Below year 400 the date kept is the decomposed one: the minimum reads as 0100-01-04.
    DateTime low = DateTime::FromValue(DateTime::minGregorianDate);
    low.SetTime(12, 0, 0, 0.0);
    EXPECT_EQ(low.GetRepresentation(), DateTime::minGregorianDate + 3 * kDay + 12 * kHour);
}

TEST(DateTime, SetTimeRefusesBadFieldsWithoutALogLine)
{
    const struct { int hh, mm, ss; double f; } rows[] = {
        {-1, 0, 0, 0.0}, {0, -1, 0, 0.0}, {0, 0, -1, 0.0}, {INT_MIN, 0, 0, 0.0},
        {INT_MAX, 0, 0, 0.0}, {0, 0, 0, std::nan("")}, {0, 0, 0, 1e300}, {83, 0, 0, 0.0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.hh << ":" << r.mm << ":" << r.ss << " + " << r.f);
        LogCapture capture(TLog::Trace);
        DateTime v = At(2021, 3, 4);
        ExpectDateTimeError([&] { v.SetTime(r.hh, r.mm, r.ss, r.f); }, kBadTime);
        EXPECT_EQ(v, At(2021, 3, 4));
        EXPECT_TRUE(capture.Lines().empty());
    }
}

//===-- Accessors ---------------------------------------------------------===//

TEST(DateTime, TimeOfDayAccessors)
{
    const DateTime v = At(2021, 3, 4, 5, 6, 7, 8901);
    EXPECT_EQ(v.GetHour(), 5);
    EXPECT_EQ(v.GetMinute(), 6);
    EXPECT_EQ(v.GetSecond(), 7);
    EXPECT_DOUBLE_EQ(v.GetFraction(), 0.8901);
    EXPECT_EQ(v.GetDate(), At(2021, 3, 4));
    EXPECT_TRUE(v.HasDate() && v.HasTime());
    EXPECT_FALSE(At(2021, 3, 4).HasTime());
    EXPECT_TRUE(At(2021, 3, 4, 0, 0, 0, 1).HasTime());
    EXPECT_FALSE(At(1899, 12, 30, 23, 59, 59).HasDate());
    // On this platform the double product of every stored fraction truncates to its exact millisecond.
    for (unsigned long long ticks = 0; ticks < 10000; ++ticks)
        ASSERT_EQ(At(2021, 3, 4, 0, 0, 0, ticks).GetMilliseconds(), int(ticks / 10)) << ticks;
}

TEST(DateTime, WeeksStartOnTheGivenDay)
{
    // 2021-01-01 is a Friday.
    EXPECT_EQ(At(2021, 1, 1).GetDayOfWeek(), 6);
    EXPECT_EQ(At(2021, 1, 2).GetWeek(), 1);
    EXPECT_EQ(At(2021, 1, 3).GetWeek(), 2);  // Sunday opens week 2
    EXPECT_EQ(At(2021, 1, 3).GetWeek(2), 1); // Monday-based: still week 1
    EXPECT_EQ(At(2021, 1, 8).GetWeek(6), 2); // Friday-based: January 1 opened week 1
    EXPECT_EQ(At(2021, 12, 31).GetWeek(), 53);
}

TEST(DateTime, DaysSinceTheEpochsCountWholeCalendarDays)
{
    EXPECT_EQ(At(1899, 12, 30, 23, 59, 59).GetDaysSinceOLEEpoch(), 0);
    EXPECT_EQ(At(2021, 3, 4).GetDaysSinceOLEEpoch(), 44259);
    EXPECT_EQ(At(1899, 12, 29, 12).GetDaysSinceOLEEpoch(), -1);
    EXPECT_EQ(At(1899, 12, 29).GetDaysSinceOLEEpoch(), -1);
    EXPECT_EQ(At(1899, 12, 28, 23, 59, 59, 9999).GetDaysSinceOLEEpoch(), -2);
    EXPECT_EQ(At(1900, 1, 1).GetDaysSinceBaseDateEpoch(), 0);
    EXPECT_EQ(At(1899, 12, 31, 6).GetDaysSinceBaseDateEpoch(), -1);
    EXPECT_EQ(At(2021, 3, 4).GetDaysSinceBaseDateEpoch(), 44257);
}

TEST(DateTime, LastDayOfTheMonth)
{
    const struct { int y, m, last; } rows[] = {
        {2021, 1, 31}, {2021, 4, 30},  {2021, 12, 31}, {-1, 2, 29},     {-1, -1, 31},
        {2021, 13, 30}, {2021, 0, 30}, {2021, -2, 30}, {2021, INT_MIN, 30},
    };
    for (const auto& r : rows)
        EXPECT_EQ(DateTime::LastDay(r.y, r.m), r.last) << r.y << "-" << r.m;
    for (int y = 400; y <= 9999; ++y) // every February against the leap-year rule
        ASSERT_EQ(DateTime::LastDay(y, 2), RefLeap(y) ? 29 : 28) << y;
    ExpectDateTimeError([] { DateTime::LastDay(399, 2); }, kBadDateTime);
    ExpectDateTimeError([] { DateTime::LastDay(-2, 2); }, kBadDateTime);
}

//===-- ISO 8601 ----------------------------------------------------------===//

TEST(DateTime, ISO8601WeekAtYearBoundaries)
{
    const struct { int y, m, d; int isoYear, isoWeek, isoDay, isoQuarter; } rows[] = {
        {2004, 12, 31, 2004, 53, 5, 4}, {2005, 1, 2, 2004, 53, 7, 4},  {2005, 1, 3, 2005, 1, 1, 1},
        {2007, 12, 31, 2008, 1, 1, 1},  {2008, 12, 29, 2009, 1, 1, 1}, {2021, 1, 1, 2020, 53, 5, 4},
        {2021, 4, 4, 2021, 13, 7, 1},   {2021, 4, 5, 2021, 14, 1, 2},  {2021, 10, 3, 2021, 39, 7, 3},
        {2021, 10, 4, 2021, 40, 1, 4},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.y << "-" << r.m << "-" << r.d);
        const DateTime v = At(r.y, r.m, r.d, 23, 59, 59);
        EXPECT_EQ(v.GetISO8601Year(), r.isoYear);
        EXPECT_EQ(v.GetISO8601Week(), r.isoWeek);
        EXPECT_EQ(v.GetISO8601DayOfWeek(), r.isoDay);
        EXPECT_EQ(v.GetISO8601Quarter(), r.isoQuarter);
        long y = 0;
        signed char w = 0, wd = 0;
        date::iso8601parts(y, w, wd, date::fromGregorianDate(r.y, r.m, r.d));
        EXPECT_TRUE(y == r.isoYear && w == r.isoWeek && wd == r.isoDay) << y << "-W" << int(w) << "-" << int(wd);
    }
}

TEST(DateTime, ISO8601PeriodStartsAndEnds)
{
    EXPECT_EQ(DateTime::ISO8601YearStart(2009), At(2008, 12, 29));
    EXPECT_EQ(DateTime::ISO8601YearEnd(2009), At(2010, 1, 3));
    EXPECT_EQ(DateTime::ISO8601QuarterStart(2021, 2), At(2021, 4, 5));
    EXPECT_EQ(DateTime::ISO8601QuarterEnd(2021, 3), At(2021, 10, 3));
    EXPECT_EQ(DateTime::ISO8601QuarterEnd(2020, 4), At(2021, 1, 3));
    EXPECT_EQ(DateTime::ISO8601QuarterEnd(2020, 9), At(2021, 1, 3)); // any quarter above 4 is the last
    EXPECT_EQ(DateTime::ISO8601WeekStart(2020, 53), At(2020, 12, 28));
    EXPECT_EQ(DateTime::ISO8601WeekEnd(2020, 53), At(2021, 1, 3));
    // Week and day pass through signed bytes.
    EXPECT_EQ(DateTime::FromISO8601Date(2021, 257, 1), DateTime::FromISO8601Date(2021, 1, 1));
    EXPECT_EQ(DateTime::FromISO8601Date(2021, 1, 8), DateTime::FromISO8601Date(2021, 2, 1));
    // Every year from 400 to 9999: week 1 holds January 4 and opens on a Monday.
    for (int y = 400; y <= 9999; ++y) {
        const int64_t start = int64_t(DateTime::ISO8601YearStart(y).GetRepresentation() / kDay);
        const int64_t jan4 = RefDayNumber(y, 1, 4);
        ASSERT_EQ(RefMondayIndex(start), 0) << y;
        ASSERT_TRUE(start <= jan4 && jan4 < start + 7) << y;
        ASSERT_EQ(DateTime::ISO8601YearEnd(y).GetRepresentation() / kDay + 1,
                  DateTime::ISO8601YearStart(y + 1).GetRepresentation() / kDay)
            << y;
    }
    // Extreme arguments are defined values.
    (void)DateTime::ISO8601YearEnd(INT_MAX);
    (void)DateTime::ISO8601QuarterStart(INT_MIN, INT_MIN);
    (void)DateTime::ISO8601QuarterEnd(INT_MAX, INT_MIN);
}

TEST(DateTime, FirstAndLastISO8601Weeks)
{
    EXPECT_EQ(DateTime::FirstISO8601Week(2021, 1), 1);
    EXPECT_EQ(DateTime::FirstISO8601Week(2021, 2), 14);
    EXPECT_EQ(DateTime::FirstISO8601Week(2021, 4), 40);
    EXPECT_EQ(DateTime::FirstISO8601Week(-1, -1), 1);
    EXPECT_EQ(DateTime::FirstISO8601Week(2021, -1), 1);
    EXPECT_EQ(DateTime::LastISO8601Week(2021, 1), 13);
    EXPECT_EQ(DateTime::LastISO8601Week(2021, 3), 39);
    EXPECT_EQ(DateTime::LastISO8601Week(2015, -1), 53);
    EXPECT_EQ(DateTime::LastISO8601Week(-1, -1), 53);
    // A year has 53 weeks when it opens on a Thursday, or on a Wednesday in a leap year.
    for (int y = 400; y <= 9999; ++y) {
        const int jan1 = RefMondayIndex(RefDayNumber(y, 1, 1));
        ASSERT_EQ(DateTime::LastISO8601Week(y, 4), (jan1 == 3 || (jan1 == 2 && RefLeap(y))) ? 53 : 52) << y;
    }
    const char* quarterRange = "1 <= isoQuarter && isoQuarter <= 4";
    ExpectLogicFailure([] { DateTime::FirstISO8601Week(-2, 1); }, 0x8653917E, "isoYear >= 0");
    ExpectLogicFailure([] { DateTime::FirstISO8601Week(2021, 0); }, 0xF94CDB32, quarterRange);
    ExpectLogicFailure([] { DateTime::FirstISO8601Week(-1, 5); }, 0xF94CDB32, quarterRange);
    ExpectLogicFailure([] { DateTime::LastISO8601Week(INT_MIN, 1); }, 0xB6EC166C, "isoYear >= 0");
    ExpectLogicFailure([] { DateTime::LastISO8601Week(2021, -2); }, 0xDF9BA5C2, quarterRange);
    ExpectLogicFailure([] { DateTime::LastISO8601Week(-1, INT_MAX); }, 0xDF9BA5C2, quarterRange);
}

//===-- OLE automation dates ----------------------------------------------===//

TEST(DateTime, OleDatesAreLinearThroughTheEpoch)
{
    // Not the published format's -1.5 for 1899-12-29 12:00: the mapping stays linear below the epoch.
    const struct { DateTime v; double ole; } rows[] = {
        {At(1899, 12, 30), 0.0},       {At(1900, 1, 1, 12), 2.5},      {At(2021, 3, 4, 6), 44259.25},
        {At(9999, 12, 31), 2958465.0}, {At(1899, 12, 29), -1.0},        {At(1899, 12, 29, 12), -0.5},
        {At(1899, 12, 28, 18), -1.25},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.v.ToOleDate(), r.ole);
        EXPECT_EQ(DateTime::FromOleDate(r.ole), r.v) << r.ole;
    }
    EXPECT_EQ(DateTime(2.5), At(1900, 1, 1, 12));
    // Rounded half up to a tick: half a tick is 1/1728000000 of a day.
    EXPECT_EQ(DateTime(1.0 / 864000000.0 * 0.6).GetRepresentation(), DateTime::s_OLEEpoch + 1);
    EXPECT_EQ(DateTime(1.0 / 864000000.0 * 0.4).GetRepresentation(), DateTime::s_OLEEpoch);
    EXPECT_EQ(DateTime(-1.0 / 864000000.0 * 0.6).GetRepresentation(), DateTime::s_OLEEpoch - 1);

    std::ostringstream out;
    out << At(1900, 1, 1, 12);
    EXPECT_EQ(out.str(), "2.5");
}

TEST(DateTime, OleDateFromFixedPrecisionCanDropTheSubSecondTicks)
{
    const unsigned long long v = Rep(1900, 1, 1, 0, 0, 1, 5000);
    EXPECT_EQ(DateTime::OleDateFromFixedPrecision(v, true), 2.0 + 1.0 / 86400.0);
    EXPECT_EQ(DateTime::OleDateFromFixedPrecision(v, false), 2.0 + 1.5 / 86400.0);
    EXPECT_EQ(DateTime::OleDateToFixedPrecision(2.0), Rep(1900, 1, 1));
    for (int y = 400; y <= 9999; y += 7) { // round trips to the tick across the valid range
        const unsigned long long r = Rep(y, 6, 15, 13, 14, 15, 1617);
        ASSERT_EQ(DateTime::OleDateToFixedPrecision(DateTime::OleDateFromFixedPrecision(r, false)), r) << y;
    }
}

TEST(DateTime, HostileOleDatesGiveAnInvalidValue)
{
    for (double x : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                     -std::numeric_limits<double>::infinity(), 1e20, -1e300, std::numeric_limits<double>::max()}) {
        SCOPED_TRACE(x);
        const DateTime v(x);
        EXPECT_EQ(v.GetRepresentation(), ~0ULL);
        ExpectDateTimeError([&] { v.Validate(); }, kInvalid);
    }
    // Large but representable: the tick count wraps below zero, which is invalid too.
    EXPECT_FALSE(DateTime(-1e10).IsValid());
    EXPECT_FALSE(DateTime(1e10).IsValid());
    EXPECT_FALSE(DateTime(-700000.0).IsValid()); // about the year -17
}

//===-- Validity and comparison -------------------------------------------===//

TEST(DateTime, ValidityBoundaries)
{
    const struct { unsigned long long raw; bool valid; } rows[] = {
        {DateTime::minGregorianDate, true},  {DateTime::minGregorianDate - 1, false},
        {DateTime::maxGregorianDate, true},  {DateTime::maxGregorianDate + 1, false}, // a fraction of 9999's last second
        {Rep(9999, 12, 31, 23, 59, 59, 9999), false},
        {DateTime::s_OLEEpoch, true},        {0, false},
        {~0ULL, false},                      {1ULL << 63, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.raw);
        const DateTime v = DateTime::FromValue(r.raw);
        EXPECT_EQ(v.IsValid(), r.valid);
        if (r.valid)
            EXPECT_NO_THROW(v.Validate());
        else
            ExpectDateTimeError([&] { v.Validate(); }, kInvalid);
    }
}

TEST(DateTime, FractionTruncation)
{
    EXPECT_FALSE(DateTime::IsFractionTruncated(0.0));
    EXPECT_FALSE(DateTime::IsFractionTruncated(0.1234));
    EXPECT_TRUE(DateTime::IsFractionTruncated(0.12345));
    EXPECT_TRUE(DateTime::IsFractionTruncated(0.99999));
    for (double bad : {1.0, -0.0001, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                       -std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(bad);
        ExpectDateTimeError([&] { DateTime::IsFractionTruncated(bad); }, kBadFraction);
    }
}

TEST(DateTime, ComparisonsAreThoseOfTheRepresentation)
{
    const DateTime older = At(2021, 3, 4), younger = At(2021, 3, 4, 0, 0, 0, 1);
    EXPECT_TRUE(older < younger && older <= younger && younger > older && younger >= older && older != younger);
    EXPECT_FALSE(older == younger || older > younger || older >= younger || younger < older || younger <= older);
    EXPECT_TRUE(older == At(2021, 3, 4) && older <= At(2021, 3, 4) && older >= At(2021, 3, 4));
    DateTime a = older, b = younger;
    swap(a, b);
    EXPECT_TRUE(a == younger && b == older);
}

//===-- Unix time and the clock -------------------------------------------===//

TEST(DateTime, UnixTimeInUTC)
{
    ScopedTimeZone zone("UTC");
    const struct { long secs; DateTime v; } rows[] = {
        {0, DateTime::UnixEpoch},        {-1, At(1969, 12, 31, 23, 59, 59)},
        {-11644473600L, At(1601, 1, 1)}, {253402300799L, At(9999, 12, 31, 23, 59, 59)},
    };
    for (const auto& r : rows) {
        long secs = 0;
        EXPECT_EQ(DateTime::FromUnixTime(r.secs, true), r.v) << r.secs;
        EXPECT_TRUE(r.v.GetAsUnixTime(secs, true));
        EXPECT_EQ(secs, r.secs);
    }
    long secs = 0;
    EXPECT_TRUE(At(2009, 2, 13, 23, 31, 30, 9999).GetAsUnixTime(secs, true)); // the ticks drop
    EXPECT_EQ(secs, 1234567890);
    EXPECT_EQ(DateTime::FromUnixTime(1234567890, 250000, true), At(2009, 2, 13, 23, 31, 30, 2500));
    EXPECT_EQ(DateTime::FromMillisecondsAfterUnixEpoch(1234567890123LL), At(2009, 2, 13, 23, 31, 30, 1230));
    EXPECT_EQ(DateTime::FromMillisecondsAfterUnixEpoch(-1), At(1969, 12, 31, 23, 59, 59, 9990));
    (void)DateTime::FromMillisecondsAfterUnixEpoch(LLONG_MAX), (void)DateTime::FromMillisecondsAfterUnixEpoch(LLONG_MIN);

    // 0001-01-01: the C library converts it, SetDateTime refuses the year.
    ExpectDateTimeError([] { DateTime::FromUnixTime(-62135596800L, true); }, kBadDateTime);
    // Beyond the C library's int year: false, and the value stands.
    DateTime v = At(2001, 2, 3);
    EXPECT_FALSE(v.SetUnixTime(LONG_MAX, true));
    EXPECT_FALSE(v.SetUnixTime(LONG_MIN, false));
    EXPECT_EQ(v, At(2001, 2, 3));
    EXPECT_EQ(DateTime::FromUnixTime(LONG_MAX, true), DateTime());
    // Microseconds that overflow the tick count throw like a bad fraction.
    ExpectDateTimeError([] { DateTime::FromUnixTime(0, ~0ULL, true); }, kBadDateTime);
}

TEST(DateTime, UnixTimeInAFixedZone)
{
    ScopedTimeZone zone("MST7"); // seven hours behind UTC all year; a POSIX rule, no zone files needed
    EXPECT_EQ(DateTime::FromUnixTime(0, false), At(1969, 12, 31, 17));
    EXPECT_EQ(DateTime::FromUnixTime(0, true), DateTime::UnixEpoch);
    long secs = 0;
    EXPECT_TRUE(At(2009, 2, 13, 16, 31, 30).GetAsUnixTime(secs, false));
    EXPECT_EQ(secs, 1234567890);
    EXPECT_EQ(DateTime::LocalFromUTC(At(2020, 6, 1, 12, 0, 0, 1239)), At(2020, 6, 1, 5, 0, 0, 1230));
    EXPECT_EQ(DateTime::UTCFromLocal(At(2020, 6, 1, 20)), At(2020, 6, 2, 3));
}

TEST(DateTime, TheClockReadsNowToWholeMilliseconds)
{
    ScopedTimeZone zone("UTC");
    const time_t before = ::time(nullptr);
    const DateTime universal = DateTime::GetUniversalTime();
    const DateTime local = DateTime::GetLocalTime();
    const long long total = DateTime::TotalMillisecondsFromMinDateTimeUTC();
    const time_t after = ::time(nullptr);
    EXPECT_GE(universal, DateTime::FromUnixTime(long(before), true));
    EXPECT_LE(universal, DateTime::FromUnixTime(long(after) + 1, true));
    EXPECT_EQ(universal.GetRepresentation() % 10, 0u);
    EXPECT_GE(local, DateTime::FromUnixTime(long(before), true));
    EXPECT_LE(local, DateTime::FromUnixTime(long(after) + 1, true));
    // From the OLE epoch: 25569 days to 1970, then the Unix milliseconds.
    EXPECT_GE(total, (25569LL * 86400 + before) * 1000);
    EXPECT_LE(total, (25569LL * 86400 + after + 1) * 1000);
}

//===-- QDateTime ---------------------------------------------------------===//

TEST(DateTime, QDateTimeRoundTrips)
{
    const DateTime v = At(2021, 3, 4, 5, 6, 7, 891);
    const QDateTime q = v.ToQDateTime(true);
    EXPECT_EQ(q, QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7, 89), Qt::UTC));
    EXPECT_EQ(q.timeSpec(), Qt::UTC);
    EXPECT_EQ(v.ToQDateTime(false).timeSpec(), Qt::LocalTime);
    EXPECT_EQ(v.ToQDate(true), QDate(2021, 3, 4));
    EXPECT_EQ(DateTime::FromQDateTime(q), At(2021, 3, 4, 5, 6, 7, 890)); // only whole milliseconds come back
    for (int64_t n = RefDayNumber(400, 1, 1); n <= RefDayNumber(9999, 12, 31); n += 97) {
        const DateTime d = DateTime::FromValue(uint64_t(n) * kDay + 13 * kHour + 1230);
        ASSERT_EQ(DateTime::FromQDateTime(d.ToQDateTime(true)), d) << n;
    }
    ExpectDateTimeError([] { DateTime::FromQDateTime(QDateTime()); }, kBadDateTime);
    ExpectDateTimeError([] { DateTime::FromQDateTime(QDateTime(QDate(300, 1, 1), QTime(0, 0), Qt::UTC)); }, kBadDateTime);
}
