// The Boost.Xpressive engine of ReStringParser. This is the one file that includes
// Xpressive: it is a heavy header, and nothing else needs it.

#include "murcoredata/core/ReStringParserEngines.h"
#include "murcoredata/foundation/CorePlatform.h"

#include <boost/xpressive/xpressive_dynamic.hpp>

#include <iterator>
#include <locale>
#include <string>

namespace xp = boost::xpressive;

namespace {

using WRegex = xp::basic_regex<const wchar_t*>;
using WMatch = xp::match_results<const wchar_t*>;
using WTraits = xp::regex_traits<wchar_t, xp::cpp_regex_traits<wchar_t>>;

std::wstring ToWide(const char16_t* text)
{
    return Unicode::toStdWString(text, size_t(TString::length(text)));
}

TString FromWide(const wchar_t* first, const wchar_t* last)
{
    return TString::fromStdWString(std::wstring(first, last));
}

// Groups 1 to the last; one that took no part gives an empty text.
void AppendGroups(const WMatch& what, std::vector<TString>& groups)
{
    for (size_t i = 1; i < what.size(); ++i)
        groups.push_back(what[i].matched ? FromWide(what[i].first, what[i].second) : TString());
}

class BoostXpressive final : public ReStringParser::Impl
{
public:
    BoostXpressive(const char16_t* pattern, bool caseSensitive)
    {
        const std::wstring wide = ToWide(pattern);
        xp::regex_compiler<const wchar_t*, WTraits> compiler{WTraits(std::locale())};
        // ECMAScript syntax, where Xpressive's dot would also match a line feed: the engine
        // is known for a dot that stops at line ends (unlike ICU here), so that is asked for.
        auto flags = xp::regex_constants::not_dot_newline;
        if (!caseSensitive)
            flags = flags | xp::regex_constants::icase;
        try {
            m_regex = compiler.compile(wide.data(), wide.size(), flags);
        } catch (const xp::regex_error&) {
            Implementation::ThrowInvalidPattern(pattern);
        }
    }

    bool match(const char16_t* text) override
    {
        if (*text == 0)
            return false;
        const std::wstring wide = ToWide(text);
        return xp::regex_match(wide.data(), wide.data() + wide.size(), m_regex);
    }

    bool search(const char16_t* text) override
    {
        if (IsEmptyRegex())
            return false;
        const std::wstring wide = ToWide(text);
        return xp::regex_search(wide.data(), wide.data() + wide.size(), m_regex);
    }

    bool search(const char16_t* text, std::vector<TString>& groups) override
    {
        groups.clear();
        if (IsEmptyRegex())
            return false;
        const std::wstring wide = ToWide(text);
        WMatch what;
        if (!xp::regex_search(wide.data(), wide.data() + wide.size(), what, m_regex))
            return false;
        AppendGroups(what, groups);
        return true;
    }

    void searchAll(const char16_t* text, std::vector<ReStringParserMatches>& matches) override
    {
        matches.clear();
        if (IsEmptyRegex())
            return;
        const std::wstring wide = ToWide(text);
        using Iterator = xp::regex_iterator<const wchar_t*>;
        for (Iterator it(wide.data(), wide.data() + wide.size(), m_regex), end; it != end; ++it) {
            const WMatch& what = *it;
            ReStringParserMatches m;
            m.position = what[0].matched ? int(what.position(0)) : -1;
            AppendGroups(what, m.groups);
            matches.push_back(std::move(m));
        }
    }

    TString replaceAll(const char16_t* text, const char16_t* replacement) override
    {
        if (*text == 0)
            return TString();
        if (IsEmptyRegex())
            return TString(text);
        const std::wstring wide = ToWide(text);
        const std::wstring format = ToWide(replacement);
        std::wstring out;
        out.reserve(wide.size());
        xp::regex_replace(std::back_inserter(out), wide.data(), wide.data() + wide.size(), m_regex, format,
                          xp::regex_constants::format_default);
        return TString::fromStdWString(out);
    }

private:
    // A regex that holds nothing (never compiled) matches nothing.
    bool IsEmptyRegex() const { return m_regex.regex_id() == 0; }

    WRegex m_regex;
};

} // namespace

std::unique_ptr<ReStringParser::Impl> Implementation::MakeBoostXpressiveEngine(const char16_t* pattern,
                                                                              bool caseSensitive)
{
    return std::make_unique<BoostXpressive>(pattern, caseSensitive);
}
