#include "murcoredata/core/ReStringParser.h"

#include "murcoredata/core/ReStringParserEngines.h"
#include "murcoredata/foundation/MurvaneError.h"

namespace {

// A null text reads as the empty text.
inline const char16_t* OrEmpty(const char16_t* text)
{
    return text != nullptr ? text : u"";
}

} // namespace

void Implementation::ThrowInvalidPattern(const char16_t* pattern)
{
    // Not a site of the error table: no record, the library's default source and status.
    throw StringException(
        TFormatString(u"Invalid regular expression: '%1'").arg(TString(OrEmpty(pattern))).result());
}

ReStringParser::ReStringParser(const TString& pattern, bool caseSensitive, RegExParserDefs engine)
    : ReStringParser(pattern.constData(), caseSensitive, engine)
{
}

ReStringParser::ReStringParser(const char16_t* pattern, bool caseSensitive, RegExParserDefs engine)
{
    pattern = OrEmpty(pattern);
    if (engine == RegExParserDefs::BoostXpressive)
        m_impl = Implementation::MakeBoostXpressiveEngine(pattern, caseSensitive);
    else
        m_impl = Implementation::MakeICURegexEngine(pattern, caseSensitive);
}

ReStringParser::~ReStringParser() = default;

bool ReStringParser::match(const char16_t* text)
{
    return m_impl->match(OrEmpty(text));
}

bool ReStringParser::search(const char16_t* text)
{
    return m_impl->search(OrEmpty(text));
}

bool ReStringParser::search(const char16_t* text, std::vector<TString>& groups)
{
    return m_impl->search(OrEmpty(text), groups);
}

void ReStringParser::searchAll(const char16_t* text, std::vector<ReStringParserMatches>& matches)
{
    m_impl->searchAll(OrEmpty(text), matches);
}

TString ReStringParser::replaceAll(const char16_t* text, const char16_t* replacement)
{
    return m_impl->replaceAll(OrEmpty(text), OrEmpty(replacement));
}

TString ReStringParser::ReplaceAll(const TString& text, const TString& pattern, const TString& replacement)
{
    const RefCntPtr<ReStringParser> parser(new ReStringParser(pattern, true, RegExParserDefs::BoostXpressive));
    return parser->replaceAll(text, replacement);
}

RandomCacheStatistics ReStringParser::GetICUPatternCacheStatistics()
{
    return Implementation::GetICUPatternCacheStatistics();
}
