// Qualified names: parsing a field reference, its bracket form and hash (the first use of a
// fresh name), and the cached paths that grouping and sorting hit over and over.

#include "murcoredata/data/QualifiedName.h"

#include <benchmark/benchmark.h>

#include <unordered_map>

namespace {
const char16_t* const s_threeParts = u"[Sales Data].[Order Date].[Year]";
} // namespace

// What a fresh name costs end to end: parse, build the bracket form, hash.
static void BM_QualifiedName_ParseFullValueHash3(benchmark::State& state)
{
    const TString text(s_threeParts);
    for (auto _ : state) {
        const QualifiedName name = QualifiedName::ParseGlobal(text);
        benchmark::DoNotOptimize(name.GetFullValue().constData());
        benchmark::DoNotOptimize(name.Hash());
    }
}
BENCHMARK(BM_QualifiedName_ParseFullValueHash3);

static void BM_QualifiedName_Parse3(benchmark::State& state)
{
    const TString text(s_threeParts);
    for (auto _ : state) {
        const QualifiedName name = QualifiedName::ParseGlobal(text);
        benchmark::DoNotOptimize(&name);
    }
}
BENCHMARK(BM_QualifiedName_Parse3);

static void BM_QualifiedName_Parse2(benchmark::State& state)
{
    const TString text(u"[Sales Data].[Order Date]");
    for (auto _ : state) {
        const QualifiedName name = QualifiedName::ParseGlobal(text);
        benchmark::DoNotOptimize(&name);
    }
}
BENCHMARK(BM_QualifiedName_Parse2);

// The scan alone, with no components built.
static void BM_QualifiedName_CanParse3(benchmark::State& state)
{
    const TString text(s_threeParts);
    for (auto _ : state)
        benchmark::DoNotOptimize(QualifiedName::CanParseQualifiedName(text));
}
BENCHMARK(BM_QualifiedName_CanParse3);

static void BM_QualifiedName_ParseCachedHit3(benchmark::State& state)
{
    const TString text(s_threeParts);
    QualifiedName::ParseCache cache;
    (void)QualifiedName::ParseGlobal(text, cache);
    for (auto _ : state) {
        const QualifiedName name = QualifiedName::ParseGlobal(text, cache);
        benchmark::DoNotOptimize(&name);
    }
}
BENCHMARK(BM_QualifiedName_ParseCachedHit3);

static void BM_QualifiedName_Construct2(benchmark::State& state)
{
    const TString root(u"Sales Data");
    const TString leaf(u"Order Date");
    for (auto _ : state) {
        const QualifiedName name(root, leaf);
        benchmark::DoNotOptimize(&name);
    }
}
BENCHMARK(BM_QualifiedName_Construct2);

static void BM_QualifiedName_CachedFullValueAndHash3(benchmark::State& state)
{
    const QualifiedName name = QualifiedName::ParseGlobal(TString(s_threeParts));
    for (auto _ : state) {
        benchmark::DoNotOptimize(name.GetFullValue().constData());
        benchmark::DoNotOptimize(name.Hash());
    }
}
BENCHMARK(BM_QualifiedName_CachedFullValueAndHash3);

static void BM_QualifiedName_Equal3(benchmark::State& state)
{
    // Two separate data, so that the components are compared.
    const QualifiedName a = QualifiedName::ParseGlobal(TString(s_threeParts));
    const QualifiedName b = QualifiedName::ParseGlobal(TString(s_threeParts));
    for (auto _ : state)
        benchmark::DoNotOptimize(a == b);
}
BENCHMARK(BM_QualifiedName_Equal3);

static void BM_QualifiedName_Less3(benchmark::State& state)
{
    const QualifiedName a = QualifiedName::ParseGlobal(TString(s_threeParts));
    const QualifiedName b = QualifiedName::ParseGlobal(TString(u"[Sales Data].[Order Date].[Yeas]"));
    for (auto _ : state)
        benchmark::DoNotOptimize(b < a);
}
BENCHMARK(BM_QualifiedName_Less3);

static void BM_QualifiedName_Copy(benchmark::State& state)
{
    const QualifiedName name = QualifiedName::ParseGlobal(TString(s_threeParts));
    for (auto _ : state) {
        QualifiedName copy(name);
        benchmark::DoNotOptimize(&copy);
    }
}
BENCHMARK(BM_QualifiedName_Copy);
