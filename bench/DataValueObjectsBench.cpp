// Values that hold objects. Copying and destroying a string value must cost one atomic
// increment and one decrement on the string's count, with no allocation (the unit tests
// count allocations; here the time says whether anything else happens). Sorting a million
// string values goes DataValue -> StringWithCollation -> Collation -> the thread's collator;
// "ratio" says what that road costs over std::sort of the same texts with ucol_strcoll.
//
// Texts: mixed-case accented Latin words of 4 to 16 letters from a fixed seed, many with
// shared prefixes. Collation "LEN_RUS" (en_US, tertiary) against ucol_open("en_US").

#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/Tuple.h"

#include "MixedLatinTexts.h"

#include <benchmark/benchmark.h>

#include <unicode/ucol.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t s_valueCount = 1000000;

const Collation& EnglishCollation()
{
    static const Collation s_collation(u"LEN_RUS");
    return s_collation;
}

// A million texts, NUL-terminated one after another in one buffer, and a string value of
// each (every value its own StringWithCollation, as a column read without interning).
struct Corpus
{
    std::u16string buffer;
    std::vector<const char16_t*> texts;
    std::vector<DataValue> values;

    Corpus()
    {
        std::mt19937 random(20240613);
        MixedLatinTexts made = MakeMixedLatinTexts(s_valueCount, random);
        buffer = std::move(made.buffer);
        texts = std::move(made.texts);
        values.reserve(s_valueCount);
        for (const char16_t* text : texts)
            values.emplace_back(EnglishCollation(), TString(text));
    }
};

const Corpus& GetCorpus()
{
    static const Corpus s_corpus;
    return s_corpus;
}


void SortValues(std::vector<DataValue>& values)
{
    std::sort(values.begin(), values.end());
}

void SortTexts(std::vector<const char16_t*>& texts, const UCollator* collator)
{
    std::sort(texts.begin(), texts.end(), [collator](const char16_t* a, const char16_t* b) {
        return ucol_strcoll(collator, a, -1, b, -1) == UCOL_LESS;
    });
}

} // namespace

// One copy and one destruction of a string value per iteration. With threads, all of them
// copy the same value, so the count's cache line is contended.
static void BM_StringValueCopyDestroy(benchmark::State& state)
{
    static const DataValue s_value(EnglishCollation(), TString(u"a shared string cell"));
    for (auto _ : state) {
        DataValue copy(s_value);
        benchmark::DoNotOptimize(copy);
    }
    state.SetItemsProcessed(int64_t(state.iterations()));
}
BENCHMARK(BM_StringValueCopyDestroy)->Threads(1)->Threads(2);

// The same for an integer value, which touches no counter: the floor of the loop.
static void BM_IntegerValueCopyDestroy(benchmark::State& state)
{
    static const DataValue s_value(42);
    for (auto _ : state) {
        DataValue copy(s_value);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_IntegerValueCopyDestroy);

// Copies of a tuple value: the same one increment and one decrement.
static void BM_TupleValueCopyDestroy(benchmark::State& state)
{
    static const DataValue s_value(makeRefCnt<Tuple>(std::vector<DataValue>{DataValue(1), DataValue(2)}));
    for (auto _ : state) {
        DataValue copy(s_value);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_TupleValueCopyDestroy);

static void BM_StringValueSortMillion(benchmark::State& state)
{
    const Corpus& corpus = GetCorpus();
    std::vector<DataValue> values;
    for (auto _ : state) {
        state.PauseTiming();
        values = corpus.values;
        state.ResumeTiming();
        SortValues(values);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_valueCount));
}
BENCHMARK(BM_StringValueSortMillion)->Unit(benchmark::kMillisecond)->Iterations(3);

static void BM_StringValueSortMillionRawUcolStrcoll(benchmark::State& state)
{
    const Corpus& corpus = GetCorpus();
    const RawCollator raw;
    std::vector<const char16_t*> texts;
    for (auto _ : state) {
        state.PauseTiming();
        texts = corpus.texts;
        state.ResumeTiming();
        SortTexts(texts, raw.handle);
        benchmark::DoNotOptimize(texts.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(s_valueCount));
}
BENCHMARK(BM_StringValueSortMillionRawUcolStrcoll)->Unit(benchmark::kMillisecond)->Iterations(3);

// Both sorts in turn within one run, so that the ratio sees the same machine state:
// "ratio" is the time of sorting the values over the time of sorting the raw texts.
static void BM_StringValueSortRatioToRaw(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const Corpus& corpus = GetCorpus();
    const RawCollator raw;
    double ours = 0, theirs = 0;
    std::vector<DataValue> values;
    std::vector<const char16_t*> texts;
    for (auto _ : state) {
        values = corpus.values;
        texts = corpus.texts;
        const auto t0 = Clock::now();
        SortValues(values);
        const auto t1 = Clock::now();
        SortTexts(texts, raw.handle);
        const auto t2 = Clock::now();
        ours += std::chrono::duration<double>(t1 - t0).count();
        theirs += std::chrono::duration<double>(t2 - t1).count();
        // The two orders must agree, or the ratio compares different work.
        for (size_t i = 0; i < s_valueCount; i += 9973)
            if (values[i].GetString() != TString(texts[i]) &&
                ucol_strcoll(raw.handle, values[i].GetStringRaw(), -1, texts[i], -1) != UCOL_EQUAL)
                state.SkipWithError("the two sorts disagree");
    }
    state.counters["ratio"] = ours / theirs;
    state.counters["ms/sort"] = ours * 1e3 / double(state.iterations());
    state.counters["ms/raw sort"] = theirs * 1e3 / double(state.iterations());
}
BENCHMARK(BM_StringValueSortRatioToRaw)->Unit(benchmark::kMillisecond)->Iterations(3);
