#pragma once

// Internal: the engine interface behind `ReStringParser`, for its implementation files only. Each
// engine sits in a file of its own, so that Boost.Xpressive is compiled in one place.

#include "murcoredata/core/ReStringParser.h"

#include <memory>
#include <vector>

class ReStringParser::Impl
{
public:
    virtual ~Impl() = default;
    // `text` and `replacement` are never null here: the front turns null into "".
    virtual bool match(const char16_t* text) = 0;
    virtual TString replaceAll(const char16_t* text, const char16_t* replacement) = 0;
    virtual bool search(const char16_t* text) = 0;
    virtual bool search(const char16_t* text, std::vector<TString>& groups) = 0;
    virtual void searchAll(const char16_t* text, std::vector<ReStringParserMatches>& matches) = 0;
};

namespace Implementation {

/// Both throw `StringException` for a pattern their engine rejects.
std::unique_ptr<ReStringParser::Impl> MakeBoostXpressiveEngine(const char16_t* pattern, bool caseSensitive);
std::unique_ptr<ReStringParser::Impl> MakeICURegexEngine(const char16_t* pattern, bool caseSensitive);

RandomCacheStatistics GetICUPatternCacheStatistics();

/// The exception for a pattern that does not compile, the same for both engines.
[[noreturn]] void ThrowInvalidPattern(const char16_t* pattern);

} // namespace Implementation
