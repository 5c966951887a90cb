#include "murcoredata/data/Time.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <limits>

namespace {

void ExpectTimeError(const std::function<void()>& f, uint32_t code)
{
    try {
        f();
        ADD_FAILURE() << "no exception, expected code " << std::hex << code;
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetMessagesFront(), TString(u"Invalid datetime value"));
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), code);
        char name[64];
        std::snprintf(name, sizeof name, "MurvaneException_AutoGen_0x%08X", code);
        EXPECT_EQ(e.GetErrorInfo().GetError().GetName().toStdString(), name);
        EXPECT_EQ(e.GetErrorInfo().GetSource(), TError::ErrorSource::CoreData);
        EXPECT_EQ(e.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
    }
}

} // namespace

static_assert(sizeof(Time) == 8, "");
static_assert(std::is_trivially_copyable<Time>::value, "");
static_assert(Time().GetRepresentation() == 0, "");
static_assert(!std::is_convertible<unsigned long long, Time>::value, "");
static_assert(Time(86400000001ULL).GetRepresentation() == 1, "the raw constructor wraps at a day");

TEST(Time, FieldsAndRepresentation)
{
    const Time t(12u, 34u, 56u, 789012u);
    EXPECT_EQ(t.GetRepresentation(), 45296789012ULL); // (12 x 3600 + 34 x 60 + 56) s and 789012 us
    EXPECT_EQ(t.GetHour(), 12u);
    EXPECT_EQ(t.GetMinute(), 34u);
    EXPECT_EQ(t.GetSecond(), 56u);
    EXPECT_EQ(t.GetMicrosecond(), 789012u);
    EXPECT_EQ(Time(0u, 0u, 0u, 0u), Time());
    EXPECT_EQ(Time(23u, 59u, 59u, 999999u).GetRepresentation(), 86399999999ULL);
    EXPECT_EQ(Time(45296789012ULL), t);
}

TEST(Time, TheEndOfTheDayIsReachableOnlyThroughTheFieldConstructor)
{
    const Time end(23u, 59u, 59u, 1000000u);
    EXPECT_EQ(end.GetRepresentation(), 86400000000ULL);
    EXPECT_EQ(end.GetHour(), 24u);
    EXPECT_EQ(end.GetMinute(), 0u);
    EXPECT_EQ(Time(23u, 59u, 59u, 1.0).GetRepresentation(), 86400000000ULL);
    EXPECT_EQ(Time(86400000000ULL).GetRepresentation(), 0u);
    EXPECT_EQ(Time(~0ULL).GetRepresentation(), ~0ULL % 86400000000ULL);
}

TEST(Time, FractionRoundsHalfUpToMicroseconds)
{
    EXPECT_EQ(Time(1u, 2u, 3u, 0.25).GetMicrosecond(), 250000u);
    EXPECT_EQ(Time(1u, 2u, 3u, 0.0625).GetMicrosecond(), 62500u);
    EXPECT_EQ(Time(1u, 2u, 3u, 0.0000004).GetMicrosecond(), 0u);
    EXPECT_EQ(Time(1u, 2u, 3u, 0.0000006).GetMicrosecond(), 1u);
    EXPECT_EQ(Time(1u, 2u, 3u, 0.9999996).GetRepresentation(), Time(1u, 2u, 4u, 0u).GetRepresentation());
    // A fraction that rounds to 0 from just below it is still 0.
    EXPECT_EQ(Time(1u, 2u, 3u, -0.0000004).GetMicrosecond(), 0u);
    EXPECT_EQ(Time(1u, 2u, 3u, -0.0000006).GetMicrosecond(), 0u); // -0.1 truncates to 0
}

TEST(Time, OutOfRangeFieldsAreRefused)
{
    const struct
    {
        unsigned h, m, s, us;
    } rows[] = {{24, 0, 0, 0},   {0, 60, 0, 0},         {0, 0, 60, 0},         {0, 0, 0, 1000001},
                {UINT_MAX, 0, 0, 0}, {0, UINT_MAX, 0, 0}, {0, 0, UINT_MAX, 0}, {0, 0, 0, UINT_MAX}};
    for (const auto& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.h << ":" << r.m << ":" << r.s << "." << r.us);
        ExpectTimeError([&] { Time(r.h, r.m, r.s, r.us); }, 0x5A975297);
        ExpectTimeError([&] { Time(r.h, r.m, r.s, r.us / 1e6); }, 0x22D59FE2);
    }
}

TEST(Time, HostileFractionsAreRefused)
{
    const double rows[] = {1.0000006, 2.0, -0.5, -0.0000016, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (double f : rows) {
        SCOPED_TRACE(f);
        ExpectTimeError([&] { Time(1u, 2u, 3u, f); }, 0x22D59FE2);
    }
}

TEST(Time, FractionRounding)
{
    EXPECT_FALSE(Time::IsFractionRounded(0.0));
    EXPECT_FALSE(Time::IsFractionRounded(0.5));
    EXPECT_FALSE(Time::IsFractionRounded(0.25));
    EXPECT_TRUE(Time::IsFractionRounded(0.1234567));
    EXPECT_TRUE(Time::IsFractionRounded(0.9999999));
    for (double bad : {1.0, 1.5, -1e-9, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(bad);
        ExpectTimeError([&] { Time::IsFractionRounded(bad); }, 0xBE17C602);
    }
}

TEST(Time, Comparisons)
{
    const Time a(1u, 0u, 0u, 0u), b(1u, 0u, 0u, 1u);
    EXPECT_TRUE(a < b && a <= b && b > a && b >= a && a != b);
    EXPECT_FALSE(a == b || a > b || b < a);
}
