// Collation: the comparison path is the hot path of the library. Collation::Compare must stay
// close to ICU's own ucol_strcoll on the same pairs (goal: at most 1.15 times its time), scale
// over threads (no lock on the path), and Hash must allocate nothing once warm.
//
// Texts: mixed-case accented Latin words of 4 to 16 letters, from a fixed seed.

#include "murcoredata/data/Collation.h"

#include "MixedLatinTexts.h"

#include <benchmark/benchmark.h>

#include <unicode/ucol.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

// Counts the heap allocations of the calling thread while asked to, whoever makes them (ICU
// included): operator new ends here too.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* block, size_t size);
namespace {
thread_local bool t_countAllocations = false;
thread_local size_t t_allocations = 0;
} // namespace
extern "C" void* malloc(size_t size)
{
    if (t_countAllocations)
        ++t_allocations;
    return __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    if (t_countAllocations)
        ++t_allocations;
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* block, size_t size)
{
    if (t_countAllocations)
        ++t_allocations;
    return __libc_realloc(block, size);
}

namespace {

constexpr size_t s_pairCount = 1000000;
constexpr size_t s_textCount = 1 << 18;

// The texts, NUL-terminated, one after another in one buffer, and random pairs of them.
struct Corpus
{
    std::u16string buffer;
    std::vector<const char16_t*> texts;
    std::vector<std::pair<const char16_t*, const char16_t*>> pairs;

    Corpus()
    {
        std::mt19937 random(20240611);
        MixedLatinTexts made = MakeMixedLatinTexts(s_textCount, random);
        buffer = std::move(made.buffer);
        texts = std::move(made.texts);
        std::uniform_int_distribution<size_t> pick(0, s_textCount - 1);
        pairs.reserve(s_pairCount);
        for (size_t i = 0; i < s_pairCount; ++i)
            pairs.emplace_back(texts[pick(random)], texts[pick(random)]);
    }
};

const Corpus& GetCorpus()
{
    static const Corpus s_corpus;
    return s_corpus;
}

const Collation& EnglishCollation()
{
    static const Collation s_collation("en_US", false, Collation::CaseDefault, Collation::AccentDefault,
                                       Collation::SortDefault, Collation::PunctDefault, 0);
    return s_collation;
}


int64_t CompareAll(const Collation& c, const Corpus& corpus)
{
    int64_t sum = 0;
    for (const auto& pair : corpus.pairs)
        sum += c.Compare(pair.first, pair.second);
    return sum;
}

int64_t CompareAllRaw(const UCollator* collator, const Corpus& corpus)
{
    int64_t sum = 0;
    for (const auto& pair : corpus.pairs)
        sum += ucol_strcoll(collator, pair.first, -1, pair.second, -1);
    return sum;
}

} // namespace

// One iteration compares the million pairs.
static void BM_CollationCompare(benchmark::State& state)
{
    const Corpus& corpus = GetCorpus();
    const Collation& c = EnglishCollation();
    for (auto _ : state)
        benchmark::DoNotOptimize(CompareAll(c, corpus));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_pairCount));
}
BENCHMARK(BM_CollationCompare)->Unit(benchmark::kMillisecond);

static void BM_CollationCompareRawUcolStrcoll(benchmark::State& state)
{
    const Corpus& corpus = GetCorpus();
    const RawCollator raw;
    for (auto _ : state)
        benchmark::DoNotOptimize(CompareAllRaw(raw.handle, corpus));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_pairCount));
}
BENCHMARK(BM_CollationCompareRawUcolStrcoll)->Unit(benchmark::kMillisecond);

// Both loops in turn within one run, so that the ratio sees the same machine state:
// "ratio" is the time of Collation::Compare over the time of ucol_strcoll.
static void BM_CollationCompareRatioToRaw(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const Corpus& corpus = GetCorpus();
    const Collation& c = EnglishCollation();
    const RawCollator raw;
    double ours = 0, theirs = 0;
    for (auto _ : state) {
        const auto t0 = Clock::now();
        benchmark::DoNotOptimize(CompareAll(c, corpus));
        const auto t1 = Clock::now();
        benchmark::DoNotOptimize(CompareAllRaw(raw.handle, corpus));
        const auto t2 = Clock::now();
        ours += std::chrono::duration<double>(t1 - t0).count();
        theirs += std::chrono::duration<double>(t2 - t1).count();
    }
    state.counters["ratio"] = ours / theirs;
    state.counters["ns/compare"] = ours * 1e9 / double(state.iterations() * s_pairCount);
    state.counters["ns/strcoll"] = theirs * 1e9 / double(state.iterations() * s_pairCount);
}
BENCHMARK(BM_CollationCompareRatioToRaw)->Unit(benchmark::kMillisecond)->Iterations(6);

// Sorts the first text of every pair (a million texts) by `less`, afresh each iteration.
template <typename Less>
void SortMillion(benchmark::State& state, Less less)
{
    const Corpus& corpus = GetCorpus();
    std::vector<const char16_t*> texts;
    for (auto _ : state) {
        state.PauseTiming();
        texts.clear();
        for (const auto& pair : corpus.pairs)
            texts.push_back(pair.first);
        state.ResumeTiming();
        std::sort(texts.begin(), texts.end(), less);
        benchmark::DoNotOptimize(texts.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_pairCount));
}

static void BM_CollationSortMillion(benchmark::State& state)
{
    const Collation& c = EnglishCollation();
    SortMillion(state, [&c](const char16_t* a, const char16_t* b) { return c.Compare(a, b) < 0; });
}
BENCHMARK(BM_CollationSortMillion)->Unit(benchmark::kMillisecond)->Iterations(3);

static void BM_CollationSortMillionRawUcolStrcoll(benchmark::State& state)
{
    const RawCollator raw;
    const UCollator* collator = raw.handle;
    SortMillion(state, [collator](const char16_t* a, const char16_t* b) {
        return ucol_strcoll(collator, a, -1, b, -1) == UCOL_LESS;
    });
}
BENCHMARK(BM_CollationSortMillionRawUcolStrcoll)->Unit(benchmark::kMillisecond)->Iterations(3);

// A 20-character text with the sort-key buffer warm: "allocs/op" must be 0.
static void BM_CollationHash20(benchmark::State& state)
{
    const Collation& c = EnglishCollation();
    const char16_t text[] = u"Caf\u00E9 Cr\u00E8me Br\u00FBl\u00E9e 24";
    static_assert(sizeof text / sizeof text[0] == 21, "twenty characters and a NUL");
    benchmark::DoNotOptimize(c.Hash(text)); // warm: the thread's collator and its buffer
    t_allocations = 0;
    t_countAllocations = true;
    for (auto _ : state)
        benchmark::DoNotOptimize(c.Hash(text));
    t_countAllocations = false;
    state.counters["allocs/op"] = double(t_allocations) / double(state.iterations());
}
BENCHMARK(BM_CollationHash20);

// The same with ICU called by hand into a buffer of its own: what the hash costs at least.
static void BM_CollationHash20RawSortKey(benchmark::State& state)
{
    const RawCollator raw;
    const char16_t text[] = u"Caf\u00E9 Cr\u00E8me Br\u00FBl\u00E9e 24";
    uint8_t key[512];
    for (auto _ : state) {
        const int32_t length = ucol_getSortKey(raw.handle, text, -1, key, int32_t(sizeof key));
        benchmark::DoNotOptimize(THash32(key, size_t(length), 0xDEADBEEFu));
    }
}
BENCHMARK(BM_CollationHash20RawSortKey);

// Throughput on one and on two threads; each thread compares its own slice of the pairs.
// The ratio of items per second, two threads to one, is the scaling (goal: at least 1.8).
static void BM_CollationCompareThreads(benchmark::State& state)
{
    const Corpus& corpus = GetCorpus();
    const Collation& c = EnglishCollation();
    constexpr size_t slice = 200000;
    const size_t begin = (size_t(state.thread_index()) * slice) % s_pairCount;
    for (auto _ : state) {
        int64_t sum = 0;
        for (size_t i = begin; i < begin + slice; ++i)
            sum += c.Compare(corpus.pairs[i].first, corpus.pairs[i].second);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(slice));
}
BENCHMARK(BM_CollationCompareThreads)->Unit(benchmark::kMillisecond)->Threads(1)->Threads(2)->UseRealTime();
