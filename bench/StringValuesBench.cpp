// String values: a column of a million string cells over a thousand distinct texts, made
// through StringWithCollationCache::Lookup. The cache exists so that such a column costs one
// StringWithCollation per distinct text: "objects" must be about 1,000, not 1,000,000.
//
// "objects" counts the distinct StringWithCollation addresses in the finished column. The
// column holds every string Lookup returned, so none has been freed and reused, and every
// object Lookup made is in it: the count is exact.
//
// Texts: mixed-case accented Latin words of 4 to 16 letters from a fixed seed; cells pick
// among them uniformly. Collation "LEN_RUS" (en_US, tertiary).

#include "murcoredata/data/StringWithCollationCache.h"

#include <benchmark/benchmark.h>

#include <random>
#include <set>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

constexpr size_t s_cellCount = 1000000;
constexpr size_t s_distinctCount = 1000;
constexpr unsigned long s_cacheCapacity = 2000;

struct Column
{
    std::vector<TString> texts;      // the distinct texts
    std::vector<const TString*> cells; // each cell's text, as a data source would hand it

    Column()
    {
        static const char16_t letters[] = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                          u"\u00E0\u00E1\u00E2\u00E4\u00E5\u00E7\u00E8\u00E9\u00EA\u00EB"
                                          u"\u00C0\u00C1\u00C4\u00C5\u00C7\u00C8\u00C9\u00D1\u00D6\u00DC";
        const size_t letterCount = sizeof letters / sizeof letters[0] - 1;
        std::mt19937 random(20240612);
        std::uniform_int_distribution<size_t> letter(0, letterCount - 1);
        std::uniform_int_distribution<int> length(4, 16);
        std::set<std::u16string> seen;
        while (texts.size() < s_distinctCount) {
            std::u16string text;
            for (int n = length(random); n > 0; --n)
                text.push_back(letters[letter(random)]);
            if (seen.insert(text).second)
                texts.push_back(TString::fromStdU16String(text));
        }
        std::uniform_int_distribution<size_t> pick(0, s_distinctCount - 1);
        cells.reserve(s_cellCount);
        for (size_t i = 0; i < s_cellCount; ++i)
            cells.push_back(&texts[pick(random)]);
    }
};

const Column& GetColumn()
{
    static const Column s_column;
    return s_column;
}

const Collation& EnglishCollation()
{
    static const Collation s_collation(u"LEN_RUS");
    return s_collation;
}

size_t DistinctObjects(const std::vector<StringWithCollationPtr>& column)
{
    std::unordered_set<const StringWithCollation*> objects;
    for (const auto& cell : column)
        objects.insert(cell.get());
    return objects.size();
}

// The whole column through a fresh cache of capacity 2,000.
std::vector<StringWithCollationPtr> FillThroughCache(const Column& column)
{
    StringWithCollationCache cache(EnglishCollation(), s_cacheCapacity);
    std::vector<StringWithCollationPtr> cells;
    cells.reserve(s_cellCount);
    for (const TString* text : column.cells)
        cells.push_back(cache.Lookup(*text));
    return cells;
}

} // namespace

// One iteration fills the million cells through a new cache, then lets them go.
// items_per_second is lookups per second.
static void BM_StringValuesColumnThroughCache(benchmark::State& state)
{
    const Column& column = GetColumn();
    EnglishCollation().Hash(u"warm"); // the thread's collator
    for (auto _ : state) {
        std::vector<StringWithCollationPtr> cells = FillThroughCache(column);
        benchmark::DoNotOptimize(cells.data());
        state.PauseTiming(); // releasing the column is not the cache's cost
        cells.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_cellCount));
    state.counters["cells"] = double(s_cellCount);
    state.counters["texts"] = double(s_distinctCount);
    state.counters["objects"] = double(DistinctObjects(FillThroughCache(column)));
}
BENCHMARK(BM_StringValuesColumnThroughCache)->Unit(benchmark::kMillisecond)->Iterations(5);

// The same column with one new string per cell, as without the cache: what the cache saves.
static void BM_StringValuesColumnWithoutCache(benchmark::State& state)
{
    const Column& column = GetColumn();
    const Collation& collation = EnglishCollation();
    std::vector<StringWithCollationPtr> cells;
    for (auto _ : state) {
        cells.clear();
        cells.reserve(s_cellCount);
        for (const TString* text : column.cells)
            cells.push_back(makeRefCnt<StringWithCollation>(*text, collation));
        benchmark::DoNotOptimize(cells.data());
        state.PauseTiming();
        cells.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_cellCount));
    for (const TString* text : column.cells)
        cells.push_back(makeRefCnt<StringWithCollation>(*text, collation));
    state.counters["objects"] = double(DistinctObjects(cells));
}
BENCHMARK(BM_StringValuesColumnWithoutCache)->Unit(benchmark::kMillisecond)->Iterations(5);

// The column without the cache but with each string hashed, as grouping will need: the part
// of the cache's cost that is not the hash.
static void BM_StringValuesColumnWithoutCacheHashed(benchmark::State& state)
{
    const Column& column = GetColumn();
    const Collation& collation = EnglishCollation();
    std::vector<StringWithCollationPtr> cells;
    for (auto _ : state) {
        cells.clear();
        cells.reserve(s_cellCount);
        for (const TString* text : column.cells) {
            cells.push_back(makeRefCnt<StringWithCollation>(*text, collation));
            benchmark::DoNotOptimize(cells.back()->GetHash());
        }
        state.PauseTiming();
        cells.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_cellCount));
}
BENCHMARK(BM_StringValuesColumnWithoutCacheHashed)->Unit(benchmark::kMillisecond)->Iterations(5);

// Hits only, from 1 or 2 threads sharing one warm cache; each thread looks up its own
// 200,000 cells. A hit costs a hash (a sort key, outside the lock) and a short hold of the
// cache's lock, so the threads should scale until they meet at the lock. Threads are started
// inside the timed loop, so the time is wall time for all of them together.
static void BM_StringValuesLookupHitThreads(benchmark::State& state)
{
    const Column& column = GetColumn();
    static StringWithCollationCache s_cache(EnglishCollation(), s_cacheCapacity);
    for (const TString& text : column.texts)
        s_cache.Lookup(text);
    const size_t threadCount = size_t(state.range(0));
    constexpr size_t slice = 200000;
    for (auto _ : state) {
        std::vector<std::thread> threads;
        for (size_t t = 0; t < threadCount; ++t)
            threads.emplace_back([&column, t] {
                for (size_t i = t * slice; i < (t + 1) * slice; ++i)
                    benchmark::DoNotOptimize(s_cache.Lookup(*column.cells[i]).get());
            });
        for (auto& thread : threads)
            thread.join();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(slice * threadCount));
    state.counters["cached"] = double(s_cache.GetCount());
}
BENCHMARK(BM_StringValuesLookupHitThreads)->Unit(benchmark::kMillisecond)->Arg(1)->Arg(2)->UseRealTime();
