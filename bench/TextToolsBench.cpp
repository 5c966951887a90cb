// Text tools: the shared ICU pattern cache, secret masking on log text, joining and escaping.

#include "murcoredata/core/RandomCache.h"
#include "murcoredata/core/ReStringParser.h"
#include "murcoredata/core/StringUtils.h"

#include <benchmark/benchmark.h>

namespace {

// 200 units of log text with "=" signs but no key: the common case of the masking.
TString LogLineWithoutKey()
{
    TString text(u"Query [Orders] WHERE [Region] = 'West' AND [Year] = 2021; rows=1042 elapsed=38ms "
                 u"cache=warm user=analyst host=node-7 session=5f2c9a path=/data/extract/orders.hyper ok");
    while (text.length() < 200)
        text.append(u'.');
    text.truncate(200);
    return text;
}

} // namespace

// A parser of a pattern already in the cache: the read-locked look-up plus a new matcher.
static void BM_ICUPatternCacheHit(benchmark::State& state)
{
    const TString pattern(u"^([A-Z][a-z]+) (\\d{4})$");
    ReStringParser warm(pattern, true, RegExParserDefs::ICU);
    for (auto _ : state) {
        ReStringParser parser(pattern, true, RegExParserDefs::ICU);
        benchmark::DoNotOptimize(&parser);
    }
}
BENCHMARK(BM_ICUPatternCacheHit);

// The cache look-up alone, on a key of the same shape.
static void BM_RandomCacheFindHit(benchmark::State& state)
{
    struct KeyHash
    {
        size_t operator()(const std::pair<TString, unsigned>& k) const noexcept
        {
            return THashCombine32(StringHash(k.first), k.second);
        }
    };
    RandomCache<std::pair<TString, unsigned>, int, KeyHash> cache(4096);
    const std::pair<TString, unsigned> key(TString(u"^([A-Z][a-z]+) (\\d{4})$"), 32u);
    cache.Insert(key, 1);
    int value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(cache.Find(key, value));
}
BENCHMARK(BM_RandomCacheFindHit);

static void BM_ObfuscateSecrets200NoKey(benchmark::State& state)
{
    const TString text = LogLineWithoutKey();
    for (auto _ : state)
        benchmark::DoNotOptimize(ObfuscateSecretsInString(text));
    state.SetBytesProcessed(int64_t(state.iterations()) * text.lengthInBytes());
}
BENCHMARK(BM_ObfuscateSecrets200NoKey);

// The same length without any "=": the first scan settles it.
static void BM_ObfuscateSecrets200NoEquals(benchmark::State& state)
{
    TString text = LogLineWithoutKey();
    text.replace(u'=', u':');
    for (auto _ : state)
        benchmark::DoNotOptimize(ObfuscateSecretsInString(text));
}
BENCHMARK(BM_ObfuscateSecrets200NoEquals);

// For scale: a text with one key, which runs one replacement.
static void BM_ObfuscateSecrets200WithPassword(benchmark::State& state)
{
    TString text = LogLineWithoutKey();
    text.replace(TString(u"user=analyst"), TString(u"password=xyz"));
    for (auto _ : state)
        benchmark::DoNotOptimize(ObfuscateSecretsInString(text));
}
BENCHMARK(BM_ObfuscateSecrets200WithPassword);

static void BM_JoinString16(benchmark::State& state)
{
    std::vector<TString> values;
    for (int i = 0; i < 16; ++i)
        values.push_back(TString(u"value-") + TString::number(i));
    const TString separator(u", ");
    for (auto _ : state)
        benchmark::DoNotOptimize(JoinString(values, separator));
}
BENCHMARK(BM_JoinString16);

static void BM_EscapeNothingToEscape(benchmark::State& state)
{
    const TString text = LogLineWithoutKey();
    const TString chars(u"{}\\");
    for (auto _ : state)
        benchmark::DoNotOptimize(Escape(text, chars, u'\\'));
}
BENCHMARK(BM_EscapeNothingToEscape);
