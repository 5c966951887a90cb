// The lower layer: hashing and string copies sit under every hash and every string value.

#include "murcoredata/foundation/THash.h"
#include "murcoredata/foundation/TString.h"

#include <benchmark/benchmark.h>

#include <cstring>

static void BM_THash32_16Bytes(benchmark::State& state)
{
    unsigned char bytes[16];
    for (int i = 0; i < 16; ++i)
        bytes[i] = static_cast<unsigned char>(i * 37 + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(bytes);
        benchmark::DoNotOptimize(THash32(bytes, sizeof bytes, 0xDEADBEEFu));
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * 16);
}
BENCHMARK(BM_THash32_16Bytes);

static void BM_TStringCopy(benchmark::State& state)
{
    const TString source = TString::fromUtf8("a text long enough to live on the heap, as most cells do");
    for (auto _ : state) {
        TString copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_TStringCopy);

static void BM_TStringHash(benchmark::State& state)
{
    const TString text = TString::fromUtf8("Customer Segment");
    const std::hash<TString> hash;
    for (auto _ : state)
        benchmark::DoNotOptimize(hash(text));
}
BENCHMARK(BM_TStringHash);

BENCHMARK_MAIN();
