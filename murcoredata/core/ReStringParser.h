#pragma once

// The regular-expression object of the library, over two engines:
//
//  - Boost.Xpressive (`RegExParserDefs::BoostXpressive`): ECMAScript syntax on the text as
//    wide characters (UTF-32 here; a lone surrogate becomes U+FFFD). Dot does not match a
//    line feed. Positions count wide characters, so a character outside the BMP counts one.
//    Character classes and case folding come from the global C++ locale; under "C", the
//    default, \w and case-insensitive matching know ASCII letters only.
//  - ICU (any other engine value): ICU syntax, dot matches line ends (the pattern is
//    compiled with UREGEX_DOTALL), and classes and case folding are Unicode's. Positions
//    count UTF-16 code units. Compiled patterns are shared through one process-wide cache
//    of 4096 entries keyed by pattern text and flags.
//
// The text arguments are zero-terminated: the `TString` forms pass `constData()`, so a text
// with an embedded U+0000 is read up to it. A pattern that an engine cannot compile makes
// the constructor throw `StringException` "Invalid regular expression: '<pattern>'".
//
// A parser keeps the matcher state of its last call, so one parser serves one thread at a
// time; parsers of one pattern on different threads share the compiled ICU pattern.

#include "murcoredata/core/RandomCache.h"
#include "murcoredata/foundation/RefCnt.h"
#include "murcoredata/foundation/TString.h"

#include <memory>
#include <vector>

/// The engine of a parser. Stored values and callers use the numbers: 1 chooses
/// Boost.Xpressive, any other value ICU.
enum class RegExParserDefs : int
{
    ICU = 0,
    BoostXpressive = 1,
};

/// One match of `searchAll`.
struct ReStringParserMatches
{
    /// Start of the match (UTF-16 units with ICU, wide characters with Boost.Xpressive);
    /// -1 if unknown.
    int position = -1;
    /// Groups 1 to the last; a group that took no part is an empty text.
    std::vector<TString> groups;
};

class MURCOREDATA_EXPORT ReStringParser : public RefCntObject
{
public:
    /// The engine interface; the engines live in the implementation files.
    class Impl;

    /// Compiles `pattern`; throws `StringException` if the engine rejects it.
    ReStringParser(const TString& pattern, bool caseSensitive, RegExParserDefs engine);
    ReStringParser(const char16_t* pattern, bool caseSensitive, RegExParserDefs engine);
    ~ReStringParser() override;

    ReStringParser(const ReStringParser&) = delete;
    ReStringParser& operator=(const ReStringParser&) = delete;

    /// True if the whole text matches. With Boost.Xpressive an empty text never matches.
    bool match(const char16_t* text);
    bool match(const TString& text) { return match(text.constData()); }

    /// True if some part of the text matches.
    bool search(const char16_t* text);
    bool search(const TString& text) { return search(text.constData()); }

    /// As `search`; `groups` gets groups 1 to the last of the first match (group 0, the
    /// whole match, is not included). It is cleared first.
    bool search(const char16_t* text, std::vector<TString>& groups);
    bool search(const TString& text, std::vector<TString>& groups) { return search(text.constData(), groups); }

    /// Every match, left to right; `matches` is cleared first.
    void searchAll(const char16_t* text, std::vector<ReStringParserMatches>& matches);
    void searchAll(const TString& text, std::vector<ReStringParserMatches>& matches)
    {
        searchAll(text.constData(), matches);
    }

    /// The text with every match replaced; "$1", "$&" and so on in `replacement` stand for
    /// the groups. Only Boost.Xpressive replaces: the ICU engine gives an empty text.
    TString replaceAll(const char16_t* text, const char16_t* replacement);
    TString replaceAll(const TString& text, const TString& replacement)
    {
        return replaceAll(text.constData(), replacement.constData());
    }

    /// One-shot replacement with a case-sensitive Boost.Xpressive parser.
    static TString ReplaceAll(const TString& text, const TString& pattern, const TString& replacement);

    /// The counters of the shared cache of compiled ICU patterns, for diagnostics.
    static RandomCacheStatistics GetICUPatternCacheStatistics();

private:
    std::unique_ptr<Impl> m_impl;
};
