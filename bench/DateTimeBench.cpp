// DateTime's hot accessors: every date cell of a grouping or a calculation goes through
// the decomposition, and every parsed date through SetDateTime.

#include "murcoredata/data/DateTime.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

// 4096 days spread over 1900 to 2100 at varying times, so no result is a constant.
std::vector<DateTime> SampleDates()
{
    std::vector<DateTime> dates;
    dates.reserve(4096);
    const unsigned long long first = DateTime::s_baseDateEpoch;
    for (unsigned long long i = 0; i < 4096; ++i)
        dates.push_back(DateTime::FromValue(first + (i * 17 + i % 13) * DateTime::s_scaling +
                                            i * 123457 % DateTime::s_scaling));
    return dates;
}

} // namespace

static void BM_DateTime_GetYearMonthDay(benchmark::State& state)
{
    const std::vector<DateTime> dates = SampleDates();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dates[i & 4095].GetYearMonthDay());
        ++i;
    }
}
BENCHMARK(BM_DateTime_GetYearMonthDay);

static void BM_DateTime_SetDateTime(benchmark::State& state)
{
    DateTime value;
    int i = 0;
    for (auto _ : state) {
        const int day = i % 28 + 1;
        const int month = i / 28 % 12 + 1;
        const int year = 1950 + i / 336 % 100;
        value.SetDateTime(year, month, day, i % 24, i % 60, i % 59, 0.25);
        benchmark::DoNotOptimize(value);
        ++i;
    }
}
BENCHMARK(BM_DateTime_SetDateTime);

static void BM_DateTime_GetISO8601Week(benchmark::State& state)
{
    const std::vector<DateTime> dates = SampleDates();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dates[i & 4095].GetISO8601Week());
        ++i;
    }
}
BENCHMARK(BM_DateTime_GetISO8601Week);
