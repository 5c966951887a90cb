#pragma once

// Time: a time of day as microseconds since midnight in one unsigned 64-bit number. Unlike
// DateTime, which counts ticks of 100 microseconds, a Time keeps whole microseconds.
//
// The value stays within 0 to 86,399,999,999, except for one deliberate overshoot: the
// field constructor accepts a microsecond count of exactly 1,000,000, so 23:59:59 plus
// 1,000,000 us is 86,400,000,000, the end of the day. The raw constructor wraps that back
// to 0.

#include "murcoredata/foundation/Export.h"

#include <type_traits>

class MURCOREDATA_EXPORT Time
{
public:
    /// Microseconds in a day.
    static constexpr unsigned long long s_microsecondsPerDay = 86400000000ULL;

    /// Midnight.
    constexpr Time() noexcept = default;
    /// Microseconds since midnight, taken modulo a day.
    constexpr explicit Time(unsigned long long micros) noexcept : m_value(micros % s_microsecondsPerDay) {}
    /// hour 0 to 23, minute and second 0 to 59, micros 0 to 1,000,000 (the last one only to
    /// reach the end of the day). Anything else throws IDS_DATETIME_ERROR.
    Time(unsigned int hour, unsigned int minute, unsigned int second, unsigned int micros);
    /// The same with `fraction` in seconds, rounded half up to microseconds; a fraction that
    /// rounds below 0 or above 1 second, or NaN, throws IDS_DATETIME_ERROR.
    Time(unsigned int hour, unsigned int minute, unsigned int second, double fraction);

    /// Whether `fraction` (seconds, 0 <= fraction < 1) has digits beyond the microsecond.
    /// Throws IDS_DATETIME_ERROR for a fraction outside [0, 1), NaN included.
    static bool IsFractionRounded(double fraction);

    constexpr unsigned int GetHour() const noexcept { return unsigned(m_value / 3600000000ULL); }
    constexpr unsigned int GetMinute() const noexcept { return unsigned(m_value / 60000000ULL % 60); }
    constexpr unsigned int GetSecond() const noexcept { return unsigned(m_value / 1000000ULL % 60); }
    constexpr unsigned int GetMicrosecond() const noexcept { return unsigned(m_value % 1000000ULL); }
    constexpr unsigned long long GetRepresentation() const noexcept { return m_value; }

    friend constexpr bool operator==(const Time& a, const Time& b) noexcept { return a.m_value == b.m_value; }
    friend constexpr bool operator!=(const Time& a, const Time& b) noexcept { return a.m_value != b.m_value; }
    friend constexpr bool operator<(const Time& a, const Time& b) noexcept { return a.m_value < b.m_value; }
    friend constexpr bool operator>(const Time& a, const Time& b) noexcept { return a.m_value > b.m_value; }
    friend constexpr bool operator<=(const Time& a, const Time& b) noexcept { return a.m_value <= b.m_value; }
    friend constexpr bool operator>=(const Time& a, const Time& b) noexcept { return a.m_value >= b.m_value; }

private:
    unsigned long long m_value = 0;
};

static_assert(sizeof(Time) == 8, "Time sits inside DataValue and must stay eight bytes");
static_assert(std::is_trivially_copyable<Time>::value, "Time is copied as bytes");
