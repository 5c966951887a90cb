// The ICU engine of ReStringParser and the process-wide cache of compiled ICU patterns.

#include "murcoredata/core/RandomCache.h"
#include "murcoredata/core/ReStringParserEngines.h"
#include "murcoredata/foundation/THash.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <memory>
#include <utility>

namespace {

// The key is the pattern text with the compile flags.
using PatternKey = std::pair<TString, unsigned>;

struct PatternKeyHash
{
    size_t operator()(const PatternKey& key) const noexcept
    {
        return THashCombine32(uint32_t(std::hash<TString>()(key.first)), key.second);
    }
};

// A pattern that failed to compile is kept as a null value, so it is not compiled again.
using RegexPatternCache = RandomCache<PatternKey, std::shared_ptr<const icu::RegexPattern>, PatternKeyHash>;

constexpr unsigned kPatternCacheCapacity = 4096;

// Made on first use and never freed: parsers may be made during static destruction, and
// the cache stays reachable, so a leak checker does not count it.
RegexPatternCache& GetPatternCache()
{
    static RegexPatternCache* const s_cache = new RegexPatternCache(kPatternCacheCapacity, nullptr);
    return *s_cache;
}

std::shared_ptr<const icu::RegexPattern> CompilePattern(const char16_t* pattern, unsigned flags)
{
    // The pattern is already UTF-16: it goes to ICU as it is, with no detour through an
    // 8-bit code page that would lose the characters it cannot hold.
    const icu::UnicodeString text(pattern, int32_t(TString::length(pattern)));
    UParseError parseError;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(text, flags, parseError, status));
    if (U_FAILURE(status))
        return nullptr;
    return std::shared_ptr<const icu::RegexPattern>(std::move(compiled));
}

std::shared_ptr<const icu::RegexPattern> FindOrCompilePattern(const char16_t* pattern, unsigned flags)
{
    RegexPatternCache& cache = GetPatternCache();
    const PatternKey key(TString(pattern), flags);
    std::shared_ptr<const icu::RegexPattern> value;
    if (cache.Find(key, value))
        return value;
    // Compiled with no lock held: two threads may compile one pattern at once, and the
    // first to insert wins.
    return cache.Insert(key, CompilePattern(pattern, flags));
}

class ICURegEx final : public ReStringParser::Impl
{
public:
    ICURegEx(const char16_t* pattern, bool caseSensitive)
    {
        // Dot matches line ends in this engine.
        const unsigned flags = caseSensitive ? UREGEX_DOTALL : (UREGEX_DOTALL | UREGEX_CASE_INSENSITIVE);
        m_pattern = FindOrCompilePattern(pattern, flags);
        if (!m_pattern)
            Implementation::ThrowInvalidPattern(pattern);
        UErrorCode status = U_ZERO_ERROR;
        m_matcher.reset(m_pattern->matcher(status));
        if (U_FAILURE(status) || !m_matcher)
            Implementation::ThrowInvalidPattern(pattern);
    }

    bool match(const char16_t* text) override
    {
        Reset(text);
        UErrorCode status = U_ZERO_ERROR;
        const bool matched = m_matcher->matches(status);
        return matched && status == U_ZERO_ERROR;
    }

    bool search(const char16_t* text) override
    {
        Reset(text);
        return m_matcher->find();
    }

    bool search(const char16_t* text, std::vector<TString>& groups) override
    {
        groups.clear();
        Reset(text);
        if (!m_matcher->find())
            return false;
        AppendGroups(groups);
        return true;
    }

    void searchAll(const char16_t* text, std::vector<ReStringParserMatches>& matches) override
    {
        matches.clear();
        Reset(text);
        while (m_matcher->find()) {
            ReStringParserMatches m;
            UErrorCode status = U_ZERO_ERROR;
            const int32_t start = m_matcher->start(status);
            m.position = U_SUCCESS(status) ? int(start) : -1;
            AppendGroups(m.groups);
            matches.push_back(std::move(m));
        }
    }

    // This engine offers no replacement; ReStringParser::ReplaceAll uses the other one.
    TString replaceAll(const char16_t*, const char16_t*) override { return TString(); }

private:
    // The matcher reads the text in place, so the text is kept for as long as it is used.
    void Reset(const char16_t* text)
    {
        m_text.setTo(text, int32_t(TString::length(text)));
        m_matcher->reset(m_text);
    }

    void AppendGroups(std::vector<TString>& groups) const
    {
        const int32_t count = m_matcher->groupCount();
        for (int32_t i = 1; i <= count; ++i) {
            UErrorCode status = U_ZERO_ERROR;
            const icu::UnicodeString group = m_matcher->group(i, status);
            groups.push_back(U_SUCCESS(status) ? TString::fromUtf16(group.getBuffer(), group.length()) : TString());
        }
    }

    std::shared_ptr<const icu::RegexPattern> m_pattern;
    std::unique_ptr<icu::RegexMatcher> m_matcher;
    icu::UnicodeString m_text;
};

} // namespace

std::unique_ptr<ReStringParser::Impl> Implementation::MakeICURegexEngine(const char16_t* pattern, bool caseSensitive)
{
    return std::make_unique<ICURegEx>(pattern, caseSensitive);
}

RandomCacheStatistics Implementation::GetICUPatternCacheStatistics()
{
    return GetPatternCache().GetStatistics();
}
