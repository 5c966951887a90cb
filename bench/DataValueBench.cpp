// The value frame: copies, hashes and comparisons of numbers are what tables of millions of
// cells spend their time on, and a sort of integer values should cost little more than a
// sort of the bare integers.

#include "murcoredata/data/DataValue.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

namespace {

// splitmix64: a fast, well-spread sequence, the same for both sides of a comparison.
struct SplitMix64
{
    uint64_t state;
    uint64_t Next()
    {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
};

constexpr size_t kPool = 1024; // values cycled through, so that nothing is constant-folded

std::vector<DataValue> IntegerPool()
{
    SplitMix64 rng{1};
    std::vector<DataValue> pool;
    for (size_t i = 0; i < kPool; ++i)
        pool.emplace_back(static_cast<long long>(rng.Next()));
    return pool;
}

std::vector<DataValue> RealPool()
{
    SplitMix64 rng{2};
    std::vector<DataValue> pool;
    for (size_t i = 0; i < kPool; ++i)
        pool.push_back(DataValue::FromDouble(double(int64_t(rng.Next())) / 1e6));
    return pool;
}

void CopyValues(benchmark::State& state, const std::vector<DataValue>& pool)
{
    size_t i = 0;
    for (auto _ : state) {
        DataValue copy(pool[i]);
        benchmark::DoNotOptimize(copy);
        i = (i + 1) & (kPool - 1);
    }
}

void HashValues(benchmark::State& state, const std::vector<DataValue>& pool)
{
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(pool[i].Hash());
        i = (i + 1) & (kPool - 1);
    }
}

void CompareValues(benchmark::State& state, const std::vector<DataValue>& pool)
{
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(pool[i] < pool[(i + 1) & (kPool - 1)]);
        i = (i + 1) & (kPool - 1);
    }
}

} // namespace

static void BM_DataValueCopyInteger(benchmark::State& state)
{
    CopyValues(state, IntegerPool());
}
BENCHMARK(BM_DataValueCopyInteger);

static void BM_DataValueCopyReal(benchmark::State& state)
{
    CopyValues(state, RealPool());
}
BENCHMARK(BM_DataValueCopyReal);

static void BM_DataValueHashInteger(benchmark::State& state)
{
    HashValues(state, IntegerPool());
}
BENCHMARK(BM_DataValueHashInteger);

static void BM_DataValueHashReal(benchmark::State& state)
{
    HashValues(state, RealPool());
}
BENCHMARK(BM_DataValueHashReal);

static void BM_DataValueLessInteger(benchmark::State& state)
{
    CompareValues(state, IntegerPool());
}
BENCHMARK(BM_DataValueLessInteger);

static void BM_DataValueLessReal(benchmark::State& state)
{
    CompareValues(state, RealPool());
}
BENCHMARK(BM_DataValueLessReal);

// std::sort of n integer values against std::sort of the same n int64_t, one after the
// other so that at most one array is alive (160 MB of values for 10,000,000). The time
// reported is that of the values; the counters give both and their ratio.
static void BM_DataValueSortVsInt64(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const size_t n = size_t(state.range(0));
    double intSeconds = 0;
    double valueSeconds = 0;
    uint64_t seed = 7;
    for (auto _ : state) {
        {
            SplitMix64 rng{seed};
            std::vector<int64_t> ints(n);
            for (int64_t& x : ints)
                x = int64_t(rng.Next());
            const auto t0 = Clock::now();
            std::sort(ints.begin(), ints.end());
            intSeconds += std::chrono::duration<double>(Clock::now() - t0).count();
            if (!std::is_sorted(ints.begin(), ints.end()))
                state.SkipWithError("int64 sort failed");
        }
        {
            SplitMix64 rng{seed};
            std::vector<DataValue> values;
            values.reserve(n);
            for (size_t i = 0; i < n; ++i)
                values.emplace_back(static_cast<long long>(rng.Next()));
            const auto t0 = Clock::now();
            std::sort(values.begin(), values.end());
            const double seconds = std::chrono::duration<double>(Clock::now() - t0).count();
            valueSeconds += seconds;
            state.SetIterationTime(seconds);
            if (!std::is_sorted(values.begin(), values.end()))
                state.SkipWithError("value sort failed");
        }
        ++seed;
    }
    const double iterations = double(state.iterations());
    state.counters["int64_ms"] = 1e3 * intSeconds / iterations;
    state.counters["datavalue_ms"] = 1e3 * valueSeconds / iterations;
    state.counters["ratio"] = valueSeconds / intSeconds;
}
BENCHMARK(BM_DataValueSortVsInt64)->Arg(10000000)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
