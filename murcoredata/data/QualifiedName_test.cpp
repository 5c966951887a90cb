#include "murcoredata/data/MakeQualifiedName.h"
#include "murcoredata/data/QualifiedName.h"
#include "murcoredata/foundation/AllocationCounter_test.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/THash.h"

#include <boost/container/small_vector.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

using TestSupport::CountAllocations;

namespace {

using Parts = std::vector<std::u16string>;

TString T(const std::u16string& s)
{
    return TString(s.data(), static_cast<int>(s.size()));
}

Parts PartsOf(const QualifiedName& name)
{
    Parts parts;
    for (size_t i = 0; i < name.GetNumberOfComponents(); ++i)
        parts.push_back(name.GetComponent(i).toStdU16String());
    return parts;
}

QualifiedName NameOf(const Parts& parts)
{
    QualifiedName::Components components;
    for (const std::u16string& p : parts)
        components.push_back(T(p));
    return QualifiedName(std::move(components));
}

// Printable form of a text for failure messages: ASCII as is, the rest as \uXXXX.
std::string Show(const std::u16string& s)
{
    std::string out;
    for (char16_t c : s) {
        if (c >= 0x20 && c < 0x7F) {
            out += char(c);
        } else {
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\u%04X", unsigned(c));
            out += buf;
        }
    }
    return out;
}

// The hash, folded here from THash32 the way the name documents it.
uint32_t ExpectedHash(const Parts& parts)
{
    uint32_t value = 0xDEADBEEFu;
    for (const std::u16string& p : parts)
        value = THash32(p.data(), p.size() * sizeof(char16_t), value);
    return value;
}

// The bracket form, written here by appending, as a second opinion on the renderer.
std::u16string ExpectedBracketForm(const Parts& parts)
{
    std::u16string text;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            text += u'.';
        text += u'[';
        for (char16_t c : parts[i]) {
            text += c;
            if (c == u']')
                text += u']';
        }
        text += u']';
    }
    return text;
}

// A second parser, written as a state machine over the units instead of searches, for the
// randomized test. It answers the components, or the error code of the failure.
struct ReferenceResult
{
    bool ok = false;
    Parts parts;
    uint32_t code = 0;
};

ReferenceResult ReferenceParse(const std::u16string& raw)
{
    const std::u16string s = T(raw).trimmed().toStdU16String();
    ReferenceResult r;
    const size_t n = s.size();
    if (n == 0) {
        r.ok = true;
        return r;
    }
    size_t pos = 0;
    for (;;) {
        if (s[pos] != u'[') {
            r.code = pos == 0 ? 0x5F1F5407u : 0x5F1F5408u;
            return r;
        }
        ++pos;
        if (pos == n) {
            r.code = 0x5F1F5409u;
            return r;
        }
        std::u16string part;
        for (;;) {
            if (pos == n) {
                r.code = 0x5F1F540Au;
                return r;
            }
            if (s[pos] == u']') {
                if (pos + 1 < n && s[pos + 1] == u']') {
                    part += u']';
                    pos += 2;
                    continue;
                }
                break;
            }
            part += s[pos++];
        }
        ++pos; // the closing "]"
        r.parts.push_back(part);
        if (pos == n) {
            r.ok = true;
            return r;
        }
        if (s[pos] != u'.') {
            r.code = 0x5F1F540Bu;
            return r;
        }
        ++pos;
        if (pos == n) {
            r.code = 0x5F1F540Cu;
            return r;
        }
    }
}

struct ParseRow
{
    std::u16string input;
    Parts parts;
};

// Accepted texts: the documented cases first, then hostile ones.
const ParseRow s_accepted[] = {
    {u"", {}},
    {u"   ", {}},
    {u"\t\r\n ", {}},
    {u"[a]", {u"a"}},
    {u"[a].[b]", {u"a", u"b"}},
    {u"[a].[b].[c]", {u"a", u"b", u"c"}},
    {u"[a].[]", {u"a", u""}},
    {u"[]", {u""}},
    {u"[].[]", {u"", u""}},
    {u"  [a]  ", {u"a"}},
    {u"\t[a].[b]\n", {u"a", u"b"}},
    {u"[a]]b]", {u"a]b"}},
    {u"[a.b]", {u"a.b"}},
    {u"[a[b]", {u"a[b"}},
    {u"[[]", {u"["}},
    {u"[.]", {u"."}},
    {u"[ a ]", {u" a "}},         // inside the brackets nothing is trimmed
    {u"[]]]", {u"]"}},            // one escaped "]" and nothing else
    {u"[]]]]]", {u"]]"}},          // two escapes, then the close
    {u"[]]].[]]]", {u"]", u"]"}},
    {u"[a]]].[b]", {u"a]", u"b"}}, // an escape right before the close
    {u"[]]a]", {u"]a"}},
    {u"[\\]", {u"\\"}},           // a backslash is no escape
    {u"[\\].[\\]]]", {u"\\", u"\\]"}},
    {u"[].[a].[]", {u"", u"a", u""}},
    {u"[[[.]", {u"[[."}},
    {u"[a].[b].[c].[d].[e].[f]", {u"a", u"b", u"c", u"d", u"e", u"f"}},
    {std::u16string(u"[a\0b].[\0]", 9), {std::u16string(u"a\0b", 3), std::u16string(u"\0", 1)}},
    {u"[\xD800]", {u"\xD800"}},             // a lone high surrogate
    {u"[\xDC00\xD800].[x]", {u"\xDC00\xD800", u"x"}}, // reversed pair
    {u"[\xD83D\xDE00]", {u"\xD83D\xDE00"}}, // a well-formed pair
    {u"[\xFFFF\xFFFE]", {u"\xFFFF\xFFFE"}},
    {u"[Straße].[Größe]", {u"Straße", u"Größe"}},
};

struct FailureRow
{
    std::u16string input;
    uint32_t code;
    int source;
    CoreData::StringId reason;
    const char16_t* english;
    std::u16string trimmedInput;
};

const FailureRow s_rejected[] = {
    // Not bracket form at all: source 6.
    {u"a", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"a"},
    {u"a.b", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"a.b"},
    {u"  a  ", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"a"},
    {u"]", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"]"},
    {u".", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"."},
    {u".[a]", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u".[a]"},
    {u"\\[a]", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"\\[a]"},
    {std::u16string(u"\0[a]", 4), 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['",
     std::u16string(u"\0[a]", 4)},
    {u"\xD800[a]", 0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"\xD800[a]"},
    // A later component without its "[": source 4.
    {u"[a].b", 0x5F1F5408u, 4, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"[a].b"},
    {u"[a]..[b]", 0x5F1F5408u, 4, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"[a]..[b]"},
    {u"[a]. [b]", 0x5F1F5408u, 4, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"[a]. [b]"},
    {u"[a].]", 0x5F1F5408u, 4, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['", u"[a].]"},
    // The text ends on a "[".
    {u"[", 0x5F1F5409u, 4, CoreData::IDS_ERR_DANGLING_LBRACKET, u"Invalid input: dangling '['", u"["},
    {u" [ ", 0x5F1F5409u, 4, CoreData::IDS_ERR_DANGLING_LBRACKET, u"Invalid input: dangling '['", u"["},
    {u"[a].[", 0x5F1F5409u, 4, CoreData::IDS_ERR_DANGLING_LBRACKET, u"Invalid input: dangling '['", u"[a].["},
    // No closing "]".
    {u"[a", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[a"},
    {u"[a]]", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[a]]"},
    {u"[]]", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[]]"},
    {u"[]]]]", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[]]]]"},
    {u"[[", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[["},
    {u"[a].[b", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[a].[b"},
    {u"[a].[b]]", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets",
     u"[a].[b]]"},
    {u"[\xD800", 0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets", u"[\xD800"},
    // After "]" neither the end nor ".".
    {u"[a] .[b]", 0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'", u"[a] .[b]"},
    {u"[a]b", 0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'", u"[a]b"},
    {u"[a][b]", 0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'", u"[a][b]"},
    {u"[a]]]x", 0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'", u"[a]]]x"},
    {std::u16string(u"[a]\0", 4), 0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'",
     std::u16string(u"[a]\0", 4)},
    // The text ends on a ".".
    {u"[a].", 0x5F1F540Cu, 4, CoreData::IDS_ERR_DANGLING_DOT, u"Invalid input: dangling '.'", u"[a]."},
    {u"[a].[b]. ", 0x5F1F540Cu, 4, CoreData::IDS_ERR_DANGLING_DOT, u"Invalid input: dangling '.'", u"[a].[b]."},
};

uint32_t ErrorCodeOf(const QualifiedNameException& e)
{
    return e.GetErrorInfo().GetError().GetCode();
}

} // namespace

//===------------------------------------------------------------------------------------===//
// Parsing
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameParse, AcceptedTextsGiveTheirComponents)
{
    for (const ParseRow& row : s_accepted) {
        SCOPED_TRACE(Show(row.input));
        const TString text = T(row.input);
        EXPECT_EQ(PartsOf(QualifiedName::ParseGlobal(text)), row.parts);
        EXPECT_EQ(PartsOf(QualifiedName::ParseLocal(text)), row.parts);
        EXPECT_TRUE(QualifiedName::CanParseQualifiedName(text));
        const std::unique_ptr<QualifiedName> tried = QualifiedName::TryParseQualifiedName(text, false);
        ASSERT_NE(tried, nullptr);
        EXPECT_EQ(PartsOf(*tried), row.parts);
    }
}

TEST(QualifiedNameParse, RejectedTextsThrowTheirSiteCodeSourceAndMessage)
{
    for (const FailureRow& row : s_rejected) {
        SCOPED_TRACE(Show(row.input));
        const TString text = T(row.input);
        EXPECT_FALSE(QualifiedName::CanParseQualifiedName(text));
        EXPECT_EQ(QualifiedName::TryParseQualifiedName(text, false), nullptr);

        // The English text of the reason is pinned here, not looked up: a wrong id shows.
        const TString reason(row.english);
        EXPECT_EQ(CoreData::LookupTStr(row.reason), reason);
        const TString message = TString(u"Qualified Name Parse Error --- ") + reason + TString(u" --- Input: ") +
                                T(row.trimmedInput);
        bool thrown = false;
        try {
            (void)QualifiedName::ParseGlobal(text);
        } catch (const QualifiedFieldNameParseException& e) {
            thrown = true;
            EXPECT_EQ(ErrorCodeOf(e), row.code);
            char name[80];
            std::snprintf(name, sizeof name, "MurvaneException_QualifiedNameParseException_0x%08X", row.code);
            EXPECT_EQ(e.GetErrorInfo().GetError().GetName(), TString::fromUtf8(name));
            EXPECT_EQ(int(e.GetErrorInfo().GetSource()), row.source);
            EXPECT_EQ(int(e.GetErrorInfo().GetStatusCode()), 2);
            EXPECT_EQ(e.GetMessagesFront(), message);
            EXPECT_EQ(e.GetInput(), T(row.trimmedInput));
        }
        EXPECT_TRUE(thrown);
        // The other throwing entries give the same exception.
        EXPECT_THROW((void)QualifiedName::ParseLocal(text), QualifiedNameException);
        EXPECT_THROW((void)QualifiedName::TryParseQualifiedName(text, true), QualifiedFieldNameParseException);
    }
}

TEST(QualifiedNameParse, TheTwoExpectBracketRowsDifferOnlyInCodeAndSource)
{
    auto catchIt = [](const char16_t* text) {
        try {
            (void)QualifiedName::ParseGlobal(TString(text));
        } catch (const QualifiedNameException& e) {
            return e;
        }
        ADD_FAILURE() << "no exception";
        return QualifiedNameException(TString(), TString(), MurvaneError());
    };
    const QualifiedNameException first = catchIt(u"a");
    const QualifiedNameException later = catchIt(u"[x].a");
    EXPECT_EQ(ErrorCodeOf(first), 0x5F1F5407u);
    EXPECT_EQ(int(first.GetErrorInfo().GetSource()), 6);
    EXPECT_EQ(ErrorCodeOf(later), 0x5F1F5408u);
    EXPECT_EQ(int(later.GetErrorInfo().GetSource()), 4);
    EXPECT_EQ(first.GetMessagesFront().left(first.GetMessagesFront().indexOf(TString(u"Input:"))),
              later.GetMessagesFront().left(later.GetMessagesFront().indexOf(TString(u"Input:"))));
}

TEST(QualifiedNameParse, InputWithPercentSignsIsNotFilledTwice)
{
    try {
        (void)QualifiedName::ParseGlobal(TString(u"%1 %2"));
        FAIL() << "no exception";
    } catch (const QualifiedNameException& e) {
        EXPECT_EQ(e.GetMessagesFront(),
                  TString(u"Qualified Name Parse Error --- Invalid input: expected '[' --- Input: %1 %2"));
    }
}

TEST(QualifiedNameParse, HugeAndDeepInputsAnswerWithoutCrashing)
{
    // Ten thousand opening brackets: one component "[[[...", never closed.
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(TString(u'[', 10000)));
    // Ten thousand closing brackets after "[": pairs of escapes, the last one unpaired.
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(TString(u"[") + TString(u']', 10000)));
    // An odd count is a run of escapes and then the close.
    const QualifiedName odd = QualifiedName::ParseGlobal(TString(u"[") + TString(u']', 10001));
    ASSERT_EQ(odd.GetNumberOfComponents(), 1u);
    EXPECT_EQ(odd.GetComponent(0), TString(u']', 5000));

    // Many components.
    TString many;
    for (int i = 0; i < 5000; ++i)
        many += i == 0 ? TString(u"[x]") : TString(u".[x]");
    EXPECT_EQ(QualifiedName::ParseGlobal(many).GetNumberOfComponents(), 5000u);
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(many + u'.'));
}

TEST(QualifiedNameParse, RandomTextsParseAsTheReferenceOrThrowTheDocumentedException)
{
    // Texts of the characters that matter to the parser, and some that must not.
    const char16_t alphabet[] = {u'[', u'[', u']', u']', u']', u'.', u'.', u' ', u'a', u'\\', u'\0', 0xD800, 0xDC00, u'\t'};
    std::mt19937 rng(20240611u);
    std::uniform_int_distribution<int> length(0, 14);
    std::uniform_int_distribution<size_t> pick(0, sizeof alphabet / sizeof alphabet[0] - 1);
    std::uniform_int_distribution<int> coin(0, 2);
    int accepted = 0;
    std::set<uint32_t> codesSeen;
    for (int round = 0; round < 6000; ++round) {
        std::u16string input;
        if (round % 2 == 0) {
            // A well-formed name of random components, then at most one unit deleted,
            // replaced or inserted: texts near the boundary between good and bad.
            Parts parts(1 + length(rng) % 3);
            for (std::u16string& p : parts)
                for (int k = length(rng) % 4; k > 0; --k)
                    p += alphabet[pick(rng)];
            input = ExpectedBracketForm(parts);
            const size_t at = input.empty() ? 0 : size_t(rng() % input.size());
            switch (coin(rng)) {
            case 0:
                break;
            case 1:
                input.erase(at, 1);
                break;
            default:
                input.insert(input.begin() + at, alphabet[pick(rng)]);
                break;
            }
        } else {
            for (int k = length(rng); k > 0; --k)
                input += alphabet[pick(rng)];
        }
        SCOPED_TRACE(Show(input));

        const ReferenceResult expected = ReferenceParse(input);
        const TString text = T(input);
        EXPECT_EQ(QualifiedName::CanParseQualifiedName(text), expected.ok);
        try {
            const QualifiedName name = QualifiedName::ParseGlobal(text);
            ASSERT_TRUE(expected.ok) << "accepted, but the reference rejects with " << std::hex << expected.code;
            EXPECT_EQ(PartsOf(name), expected.parts);
            EXPECT_EQ(QualifiedName::ParseGlobal(name.GetFullValue()), name);
            ++accepted;
        } catch (const QualifiedFieldNameParseException& e) {
            ASSERT_FALSE(expected.ok) << "rejected, but the reference accepts";
            EXPECT_EQ(ErrorCodeOf(e), expected.code);
            codesSeen.insert(ErrorCodeOf(e));
        }
        // Anything else escapes the try and fails the test.
    }
    // The texts reach both answers and every failure site.
    EXPECT_GT(accepted, 1500);
    EXPECT_LT(accepted, 4500);
    EXPECT_EQ(codesSeen.size(), 6u);
}

TEST(QualifiedNameParse, CachedParsingSharesTheStoredNameAndStoresNothingOnFailure)
{
    QualifiedName::ParseCache cache;
    const QualifiedName first = QualifiedName::ParseGlobal(TString(u"[a].[b]"), cache);
    const QualifiedName second = QualifiedName::ParseLocal(TString(u"[a].[b]"), cache);
    EXPECT_EQ(cache.size(), 1u);
    EXPECT_EQ(second, first);
    // One shared data: one cached text.
    EXPECT_EQ(&second.GetFullValue(), &first.GetFullValue());

    // The key is the raw input: a blank before it is another entry, with equal data.
    const QualifiedName third = QualifiedName::ParseGlobal(TString(u" [a].[b]"), cache);
    EXPECT_EQ(cache.size(), 2u);
    EXPECT_EQ(third, first);
    EXPECT_NE(&third.GetFullValue(), &first.GetFullValue());

    EXPECT_THROW((void)QualifiedName::ParseGlobal(TString(u"[a"), cache), QualifiedNameException);
    EXPECT_EQ(cache.size(), 2u);
    EXPECT_EQ(cache.count(TString(u"[a")), 0u);
}

TEST(QualifiedNameParse, UnquotedAndTheConstructorTakeTheTextAsOneComponent)
{
    const QualifiedName dotted(TString(u"a.b"));
    EXPECT_EQ(PartsOf(dotted), Parts{u"a.b"});
    EXPECT_EQ(dotted.GetFullValue(), TString(u"[a.b]"));
    EXPECT_EQ(QualifiedName::ParseGlobal(dotted.GetFullValue()), dotted);
    EXPECT_EQ(PartsOf(QualifiedName::ParseUnquoted(TString(u" [x] "))), Parts{u" [x] "});
    EXPECT_EQ(QualifiedName::ParseUnquoted(TString(u" [x] ")).GetFullValue(), TString(u"[ [x]] ]"));
}

TEST(QualifiedNameParse, LiteralParsesAndThrows)
{
    EXPECT_EQ(PartsOf(u"[a].[b]]c]"_qn), (Parts{u"a", u"b]c"}));
    EXPECT_EQ(PartsOf(u""_qn), Parts{});
    EXPECT_THROW(u"[a] .[b]"_qn, QualifiedNameException);
}

//===------------------------------------------------------------------------------------===//
// The two empty names
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameEmpty, NoComponentsAndOneEmptyComponentAreBothEmptyButNotEqual)
{
    const QualifiedName none;
    const QualifiedName oneEmpty{TString()};
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_TRUE(oneEmpty.IsEmpty());
    EXPECT_NE(none, oneEmpty);
    EXPECT_EQ(none.GetNumberOfComponents(), 0u);
    EXPECT_EQ(oneEmpty.GetNumberOfComponents(), 1u);
    EXPECT_EQ(none.GetFullValue(), TString());
    EXPECT_EQ(oneEmpty.GetFullValue(), TString(u"[]"));
    EXPECT_NE(none.Hash(), oneEmpty.Hash());
    EXPECT_TRUE(none < oneEmpty);

    // Two or more components are never empty, whatever they hold.
    EXPECT_FALSE(QualifiedName(TString(), TString()).IsEmpty());
    EXPECT_FALSE(QualifiedName(TString(u"a")).IsEmpty());
    // Both survive the round trip.
    EXPECT_EQ(QualifiedName::ParseGlobal(none.GetFullValue()), none);
    EXPECT_EQ(QualifiedName::ParseGlobal(oneEmpty.GetFullValue()), oneEmpty);
}

TEST(QualifiedNameEmpty, EveryEmptyResultSharesTheOneDefaultData)
{
    const QualifiedName none;
    const TString* shared = &none.GetFullValue();
    QualifiedName cleared = u"[a].[b]"_qn;
    cleared.Clear();
    QualifiedName popped(TString(u"x"));
    popped.PopValue();
    EXPECT_EQ(&cleared.GetFullValue(), shared);
    EXPECT_EQ(&popped.GetFullValue(), shared);
    EXPECT_EQ(&QualifiedName(TString(u"x")).PopRootValue().GetFullValue(), shared);
    EXPECT_EQ(&QualifiedName::ParseGlobal(TString(u"  ")).GetFullValue(), shared);
}

//===------------------------------------------------------------------------------------===//
// Bracket form and hash
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameText, BracketFormDoublesOnlyTheClosingBracket)
{
    const struct
    {
        Parts parts;
        std::u16string text;
    } rows[] = {
        {{}, u""},
        {{u""}, u"[]"},
        {{u"a"}, u"[a]"},
        {{u"a", u"b"}, u"[a].[b]"},
        {{u"a]b"}, u"[a]]b]"},
        {{u"]"}, u"[]]]"},
        {{u"a[b", u"c.d"}, u"[a[b].[c.d]"},
        {{u"]]", u"", u"x]"}, u"[]]]]].[].[x]]]"},
        {{std::u16string(u"\0", 1)}, std::u16string(u"[\0]", 3)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Show(row.text));
        const QualifiedName name = NameOf(row.parts);
        EXPECT_EQ(name.GetFullValue(), T(row.text));
        // Asked again, the cached text is the same object.
        EXPECT_EQ(&name.GetFullValue(), &name.GetFullValue());
        EXPECT_EQ(PartsOf(QualifiedName::ParseGlobal(name.GetFullValue())), row.parts);
    }
}

TEST(QualifiedNameText, RandomComponentListsSurviveTheRoundTrip)
{
    const char16_t alphabet[] = {u'a', u'Z', u']', u']', u'[', u'.', u' ', u'\0', 0xD800, 0xDFFF, 0x00E9};
    std::mt19937 rng(7u);
    std::uniform_int_distribution<int> count(0, 5);
    std::uniform_int_distribution<int> length(0, 6);
    std::uniform_int_distribution<size_t> pick(0, sizeof alphabet / sizeof alphabet[0] - 1);
    for (int round = 0; round < 2000; ++round) {
        Parts parts(count(rng));
        for (std::u16string& p : parts)
            for (int k = length(rng); k > 0; --k)
                p += alphabet[pick(rng)];
        const QualifiedName name = NameOf(parts);
        SCOPED_TRACE(Show(ExpectedBracketForm(parts)));
        EXPECT_EQ(name.GetFullValue(), T(ExpectedBracketForm(parts)));
        const QualifiedName back = QualifiedName::ParseGlobal(name.GetFullValue());
        EXPECT_EQ(PartsOf(back), parts);
        EXPECT_EQ(back.Hash(), ExpectedHash(parts));
    }
}

TEST(QualifiedNameHash, FoldsTHash32OverTheComponentsFromTheSeed)
{
    EXPECT_EQ(QualifiedName().Hash(), 0xDEADBEEFu);
    const Parts samples[] = {
        {u""}, {u"a"}, {u"a", u"b"}, {u"Sales", u"Order Date", u"Year"}, {u"a]b"}, {u"", u""},
        {std::u16string(u"x\0y", 3)}, {u"\xD800"},
    };
    for (const Parts& parts : samples) {
        const QualifiedName name = NameOf(parts);
        EXPECT_EQ(name.Hash(), ExpectedHash(parts));
        EXPECT_EQ(std::hash<QualifiedName>()(name), size_t(ExpectedHash(parts)));
        // The second call answers from the cache with the same value.
        EXPECT_EQ(name.Hash(), ExpectedHash(parts));
    }
    // Stored hashes depend on these values; they were computed apart, with XXH32 itself.
    EXPECT_EQ((u"[]"_qn).Hash(), 0xC372C6CBu);
    EXPECT_EQ((u"[a]"_qn).Hash(), 0xA322CEAEu);
    EXPECT_EQ((u"[Sales].[Order Date].[Year]"_qn).Hash(), 0x4E2BD901u);
    // The hash is over components, not the bracket text: "[a.b]" and "[a].[b]" differ.
    EXPECT_NE((u"[a.b]"_qn).Hash(), (u"[a].[b]"_qn).Hash());
}

TEST(QualifiedNameHash, EqualNamesMadeDifferentlyHashAlike)
{
    QualifiedName pushed(TString(u"b"));
    pushed.PushRoot(TString(u"a"));
    pushed.PushValue(TString(u"c"));
    const QualifiedName names[] = {
        u"[a].[b].[c]"_qn,
        u"  [a].[b].[c]\t"_qn,
        NameOf({u"a", u"b", u"c"}),
        pushed,
        MakeGlobalName(TString(u"a"), QualifiedName(TString(u"b"), TString(u"c"))),
        PushValue(QualifiedName(TString(u"a"), TString(u"b")), TString(u"c")),
        (u"[z].[a].[b].[c]"_qn).PopRootValue(),
    };
    std::unordered_set<QualifiedName> set;
    for (const QualifiedName& n : names) {
        EXPECT_EQ(n, names[0]);
        EXPECT_EQ(n.Hash(), ExpectedHash({u"a", u"b", u"c"}));
        set.insert(n);
    }
    EXPECT_EQ(set.size(), 1u);
}

//===------------------------------------------------------------------------------------===//
// Comparison
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameCompare, OrderIsThatOfTheBracketTexts)
{
    // Each name is less than the next. Component by component "a" < "a b" and "a" < "a.b";
    // by bracket text the unit after the component decides: " " and "." sort before "]".
    const QualifiedName chain[] = {
        QualifiedName(),
        QualifiedName(TString()),
        QualifiedName(TString(u"a b")),
        QualifiedName(TString(u"a.b")),
        QualifiedName(TString(u"a")),
        QualifiedName(TString(u"a"), TString(u"b")),
        QualifiedName(TString(u"a]")),
        QualifiedName(TString(u"aa")),
        QualifiedName(TString(u"b")),
    };
    const size_t n = sizeof chain / sizeof chain[0];
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < n; ++j) {
            SCOPED_TRACE(chain[i].GetFullValue().toStdString() + " vs " + chain[j].GetFullValue().toStdString());
            EXPECT_EQ(chain[i] < chain[j], i < j);
            EXPECT_EQ(chain[i] == chain[j], i == j);
            EXPECT_EQ(chain[i] != chain[j], i != j);
            const int c = chain[i].Compare(chain[j]);
            EXPECT_EQ(c < 0, i < j);
            EXPECT_EQ(c == 0, i == j);
            EXPECT_EQ(c > 0, i > j);
        }
    }
}

TEST(QualifiedNameCompare, NoCaseComparesTheBracketTextsIgnoringCase)
{
    EXPECT_EQ((u"[Sales].[YEAR]"_qn).CompareNoCase(u"[sales].[year]"_qn), 0);
    EXPECT_NE((u"[Sales].[YEAR]"_qn).Compare(u"[sales].[year]"_qn), 0);
    EXPECT_NE((u"[Sales].[YEAR]"_qn), (u"[sales].[year]"_qn));
    EXPECT_LT((u"[a]"_qn).CompareNoCase(u"[B]"_qn), 0);
    EXPECT_GT((u"[a]"_qn).Compare(u"[B]"_qn), 0); // "a" (0x61) after "B" (0x42)
}

TEST(QualifiedNameCompare, EqualityNeedsTheSameCountAndComponents)
{
    EXPECT_EQ(QualifiedName(TString(u"a"), TString(u"b")), u"[a].[b]"_qn);
    EXPECT_NE(QualifiedName(TString(u"a"), TString(u"b")), u"[a].[b].[c]"_qn);
    EXPECT_NE(QualifiedName(TString(u"a"), TString(u"b")), u"[a].[c]"_qn);
    EXPECT_NE(QualifiedName(TString(u"ab")), u"[a].[b]"_qn);
    EXPECT_NE(QualifiedName(TString(u"a"), TString()), QualifiedName(TString(u"a")));
}

TEST(QualifiedNameCompare, LeafFunctorOrdersByLowerCasedLeaf)
{
    std::vector<QualifiedName> names = {u"[x].[gamma]"_qn, u"[Beta]"_qn, u"[z].[y].[ALPHA]"_qn, u"[b].[Delta]"_qn};
    std::sort(names.begin(), names.end(), QualifiedNameCompareLeafValueNoCase());
    std::vector<TString> leaves;
    for (const QualifiedName& n : names)
        leaves.push_back(n.GetLeafValue());
    EXPECT_EQ(leaves, (std::vector<TString>{TString(u"ALPHA"), TString(u"Beta"), TString(u"Delta"), TString(u"gamma")}));

    const QualifiedNameCompareLeafValueNoCase less;
    EXPECT_FALSE(less(u"[A]"_qn, u"[a]"_qn));
    EXPECT_FALSE(less(u"[a]"_qn, u"[A]"_qn));
    try {
        (void)less(QualifiedName(), u"[a]"_qn);
        FAIL() << "no assertion";
    } catch (const LogicException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x995B56B5u);
    }
}

//===------------------------------------------------------------------------------------===//
// Reading and changing
//===------------------------------------------------------------------------------------===//

namespace {
// Runs `f`, expecting the logic assertion with `code` whose message names `condition`.
template <typename F>
void ExpectAssertion(F&& f, uint32_t code, const char* condition, const char* file)
{
    try {
        f();
        ADD_FAILURE() << "no assertion for " << condition;
    } catch (const LogicException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), code) << condition;
        const std::string message = e.GetMessagesFront().toStdString();
        EXPECT_NE(message.find(std::string("logic assertion failed: ") + condition), std::string::npos) << message;
        EXPECT_EQ(message.rfind(file, 0), 0u) << message;
    }
}
} // namespace

TEST(QualifiedNameRead, RootLeafAndComponents)
{
    const QualifiedName name = u"[a].[b].[c]"_qn;
    EXPECT_EQ(name.GetRootValue(), TString(u"a"));
    EXPECT_EQ(name.GetLeafValue(), TString(u"c"));
    EXPECT_EQ(name.TryGetRootValue(), TString(u"a"));
    EXPECT_EQ(name.TryGetLeafValue(), TString(u"c"));
    EXPECT_EQ(name.GetComponent(1), TString(u"b"));
    EXPECT_EQ(name.GetComponents().size(), 3u);
    EXPECT_EQ(name.GetComponents()[2], TString(u"c"));
    // The bound admits the count itself, which reads as the empty text.
    EXPECT_EQ(name.GetComponent(3), TString());
    EXPECT_EQ(QualifiedName().GetComponent(0), TString());
    ExpectAssertion([&] { (void)name.GetComponent(4); }, 0x71586053u, "i <= m_data->m_components.size()",
                    "data/QualifiedName.cpp");

    const QualifiedName none;
    EXPECT_EQ(none.TryGetRootValue(), TString());
    EXPECT_EQ(none.TryGetLeafValue(), TString());
    ExpectAssertion([&] { (void)none.GetRootValue(); }, 0x018B7D29u, "!m_data->m_components.empty()",
                    "data/QualifiedName.cpp");
    ExpectAssertion([&] { (void)none.GetLeafValue(); }, 0x995B56B5u, "!m_data->m_components.empty()",
                    "data/QualifiedName.cpp");
}

TEST(QualifiedNameRead, SizeEstimateCountsOnlyTheComponentText)
{
    EXPECT_EQ(QualifiedName().EstimateSizeOfReferencedMemoryInBytes(), 0u);
    const QualifiedName name(TString(u"ab"), TString(u"c]"));
    (void)name.GetFullValue(); // the cached "[ab].[c]]]" is not counted
    EXPECT_EQ(name.EstimateSizeOfReferencedMemoryInBytes(), 8u);
}

TEST(QualifiedNameChange, InPlaceChangesLeaveOtherHoldersAlone)
{
    QualifiedName name = u"[a].[b]"_qn;
    const QualifiedName before = name;
    name.PushValue(TString(u"c"));
    name.PushRoot(TString(u"r"));
    EXPECT_EQ(PartsOf(name), (Parts{u"r", u"a", u"b", u"c"}));
    EXPECT_EQ(PartsOf(before), (Parts{u"a", u"b"}));
    EXPECT_EQ(before.GetFullValue(), TString(u"[a].[b]"));

    EXPECT_EQ(name.PopValue(), TString(u"c"));
    EXPECT_EQ(name.PopRoot(), TString(u"r"));
    EXPECT_EQ(name, before);
    name.ReplaceValue(TString(u"B"));
    name.ReplaceRoot(TString(u"A"));
    EXPECT_EQ(PartsOf(name), (Parts{u"A", u"B"}));
    name.SetRootValue(TString(u"S"));
    EXPECT_EQ(PartsOf(name), (Parts{u"S", u"B"}));
    // A change made after the caches were filled gives fresh caches.
    EXPECT_EQ(name.GetFullValue(), TString(u"[S].[B]"));
    EXPECT_EQ(name.Hash(), ExpectedHash({u"S", u"B"}));

    name.Clear();
    EXPECT_EQ(name.GetNumberOfComponents(), 0u);
    EXPECT_EQ(PartsOf(before), (Parts{u"a", u"b"}));
}

TEST(QualifiedNameChange, PopsOnNoComponentsChangeNothing)
{
    QualifiedName none;
    EXPECT_EQ(none.PopValue(), TString());
    EXPECT_EQ(none.PopRoot(), TString());
    EXPECT_EQ(none.GetNumberOfComponents(), 0u);

    QualifiedName one(TString(u"x"));
    EXPECT_EQ(one.PopRoot(), TString(u"x"));
    EXPECT_EQ(one.GetNumberOfComponents(), 0u);

    ExpectAssertion([&] { none.ReplaceValue(TString(u"v")); }, 0xA8C5A1E9u, "!m_data->m_components.empty()",
                    "data/QualifiedName.cpp");
    ExpectAssertion([&] { none.ReplaceRoot(TString(u"v")); }, 0x4181ADF3u, "!m_data->m_components.empty()",
                    "data/QualifiedName.cpp");
    ExpectAssertion([&] { none.SetRootValue(TString(u"v")); }, 0x4181ADF3u, "!m_data->m_components.empty()",
                    "data/QualifiedName.cpp");
}

TEST(QualifiedNameChange, ConstFormsMakeNewNames)
{
    const QualifiedName name = u"[a].[b].[c]"_qn;
    TString out(u"stale");
    EXPECT_EQ(PartsOf(name.PopLeafValue()), (Parts{u"a", u"b"}));
    EXPECT_EQ(PartsOf(name.PopLeafValue(out)), (Parts{u"a", u"b"}));
    EXPECT_EQ(out, TString(u"c"));
    EXPECT_EQ(PartsOf(name.PopRootValue()), (Parts{u"b", u"c"}));
    EXPECT_EQ(PartsOf(name.PopRootValue(out)), (Parts{u"b", u"c"}));
    EXPECT_EQ(out, TString(u"a"));
    EXPECT_EQ(PartsOf(name.PushLeafValue(TString(u"d"))), (Parts{u"a", u"b", u"c", u"d"}));
    EXPECT_EQ(PartsOf(name.PushRootValue(TString(u"r"))), (Parts{u"r", u"a", u"b", u"c"}));
    EXPECT_EQ(PartsOf(name.ReplaceRootValue(TString(u"R"))), (Parts{u"R", u"b", u"c"}));
    EXPECT_EQ(PartsOf(name.ReplaceLeafValue(TString(u"L"))), (Parts{u"a", u"b", u"L"}));
    EXPECT_EQ(PartsOf(name), (Parts{u"a", u"b", u"c"}));

    const QualifiedName none;
    out = TString(u"stale");
    EXPECT_EQ(none.PopLeafValue(out).GetNumberOfComponents(), 0u);
    EXPECT_TRUE(out.isEmpty());
    out = TString(u"stale");
    EXPECT_EQ(none.PopRootValue(out).GetNumberOfComponents(), 0u);
    EXPECT_TRUE(out.isEmpty());
    EXPECT_EQ(PartsOf(none.PushLeafValue(TString(u"x"))), Parts{u"x"});
    ExpectAssertion([&] { (void)none.ReplaceRootValue(TString(u"v")); }, 0xE7D6FD7Cu,
                    "!m_data->m_components.empty()", "data/QualifiedName.cpp");
    ExpectAssertion([&] { (void)none.ReplaceLeafValue(TString(u"v")); }, 0x1A407BE2u,
                    "!m_data->m_components.empty()", "data/QualifiedName.cpp");
}

TEST(QualifiedNameChange, SwapAndCopyShareOrExchangeTheData)
{
    QualifiedName a = u"[a]"_qn;
    QualifiedName b = u"[b].[c]"_qn;
    const TString* textOfA = &a.GetFullValue();
    a.Swap(b);
    EXPECT_EQ(PartsOf(a), (Parts{u"b", u"c"}));
    EXPECT_EQ(&b.GetFullValue(), textOfA);
    const QualifiedName copy = b;
    EXPECT_EQ(&copy.GetFullValue(), textOfA);
}

//===------------------------------------------------------------------------------------===//
// Free helpers
//===------------------------------------------------------------------------------------===//

TEST(MakeQualifiedName, TheThreeLocalFormsDisagreeOnOneComponent)
{
    const struct
    {
        Parts input;
        Parts constForm;  // MakeLocalName(const&)
        Parts otherForms; // MakeLocalName(&&) and MakeLocalName(const&, root)
        std::u16string root;
    } rows[] = {
        {{}, {}, {}, u""},
        {{u"a"}, {u"a"}, {}, u"a"},
        {{u"a", u"b"}, {u"b"}, {u"b"}, u"a"},
        {{u"a", u"b", u"c"}, {u"b", u"c"}, {u"b", u"c"}, u"a"},
        {{u"", u""}, {u""}, {u""}, u""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Show(ExpectedBracketForm(row.input)));
        const QualifiedName name = NameOf(row.input);
        EXPECT_EQ(PartsOf(MakeLocalName(name)), row.constForm);
        EXPECT_EQ(PartsOf(MakeLocalName(NameOf(row.input))), row.otherForms);
        TString root(u"stale");
        EXPECT_EQ(PartsOf(MakeLocalName(name, root)), row.otherForms);
        EXPECT_EQ(root, T(row.root));
        EXPECT_EQ(PartsOf(name), row.input);
    }
}

TEST(MakeQualifiedName, GlobalReplaceAndPush)
{
    const QualifiedName name = u"[b].[c]"_qn;
    EXPECT_EQ(PartsOf(MakeGlobalName(TString(u"a"), name)), (Parts{u"a", u"b", u"c"}));
    EXPECT_EQ(PartsOf(MakeGlobalName(TString(u"a"), QualifiedName(name))), (Parts{u"a", u"b", u"c"}));
    EXPECT_EQ(PartsOf(MakeGlobalName(TString(u"a"), QualifiedName())), Parts{u"a"});
    EXPECT_EQ(PartsOf(ReplaceValue(name, TString(u"x"))), (Parts{u"b", u"x"}));
    EXPECT_EQ(PartsOf(ReplaceRoot(name, TString(u"x"))), (Parts{u"x", u"c"}));
    EXPECT_EQ(PartsOf(PushValue(name, TString(u"d"))), (Parts{u"b", u"c", u"d"}));
    EXPECT_EQ(PartsOf(name), (Parts{u"b", u"c"}));

    ExpectAssertion([] { (void)ReplaceValue(QualifiedName(), TString(u"x")); }, 0x2EC106E1u,
                    "name.GetNumberOfComponents() > 0", "data/MakeQualifiedName.cpp");
    ExpectAssertion([] { (void)ReplaceRoot(QualifiedName(), TString(u"x")); }, 0xA754925Du,
                    "name.GetNumberOfComponents() > 0", "data/MakeQualifiedName.cpp");
}

//===------------------------------------------------------------------------------------===//
// Output, exceptions
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameOutput, StreamsTheBracketFormAndContainers)
{
    std::ostringstream one;
    one << u"[Straße].[a]]b]"_qn;
    EXPECT_EQ(one.str(), "[Stra\xC3\x9F" "e].[a]]b]");

    std::ostringstream list;
    list << std::vector<QualifiedName>{u"[b]"_qn, u"[a].[c]"_qn, QualifiedName()};
    EXPECT_EQ(list.str(), "{[b], [a].[c], }");

    std::ostringstream set;
    set << std::set<QualifiedName>{u"[b]"_qn, u"[a].[c]"_qn, u"[b]"_qn};
    EXPECT_EQ(set.str(), "{[a].[c], [b]}");

    std::ostringstream none;
    none << std::vector<QualifiedName>{};
    EXPECT_EQ(none.str(), "{}");
}

TEST(QualifiedNameExceptions, CarriesInputAndKeepsItsTypeAcrossThreads)
{
    const QualifiedNameException plain(TString(u"m"), TString(u"in"), MurErrorsError::QualifiedNameParseException_0x5F1F540A());
    EXPECT_EQ(plain.GetInput(), TString(u"in"));
    EXPECT_EQ(int(plain.GetErrorInfo().GetSource()), 4);
    EXPECT_EQ(int(plain.GetErrorInfo().GetStatusCode()), 2);

    std::unique_ptr<MurvaneException> carried;
    std::thread worker([&] {
        try {
            (void)QualifiedName::ParseGlobal(TString(u" [a"));
        } catch (const MurvaneException& e) {
            carried.reset(e.Clone());
        }
    });
    worker.join();
    ASSERT_NE(carried, nullptr);
    try {
        carried->Throw();
    } catch (const QualifiedFieldNameParseException& e) {
        EXPECT_EQ(e.GetInput(), TString(u"[a"));
        EXPECT_EQ(ErrorCodeOf(e), 0x5F1F540Au);
        return;
    } catch (...) {
    }
    FAIL() << "the rethrown exception lost its type";
}

//===------------------------------------------------------------------------------------===//
// Cost and threads
//===------------------------------------------------------------------------------------===//

TEST(QualifiedNameCost, ATwoPartNameIsOneAllocation)
{
    const TString root(u"a root long enough to live on the heap");
    const TString leaf(u"leaf");
    QualifiedName two;
    EXPECT_EQ(CountAllocations([&] { two = QualifiedName(root, leaf); }), 1u);
    QualifiedName parsed;
    const TString text(u"[Sales].[Order Date]");
    EXPECT_EQ(CountAllocations([&] { parsed = QualifiedName::ParseGlobal(text); }), 1u);
    EXPECT_EQ(parsed.GetNumberOfComponents(), 2u);
    // A third component leaves the inline space: the list takes a block of its own.
    QualifiedName three;
    EXPECT_EQ(CountAllocations([&] { three = QualifiedName::ParseGlobal(TString(u"[a].[b].[c]")); }), 2u);

    // Copies, equality, the hash and a cached bracket form allocate nothing.
    (void)two.GetFullValue();
    bool equal = false;
    bool less = true;
    EXPECT_EQ(CountAllocations([&] {
                  const QualifiedName copy = two;
                  equal = copy == two;
                  (void)copy.Hash();
                  (void)copy.GetFullValue();
                  less = copy < two;
              }),
              0u);
    EXPECT_TRUE(equal);
    EXPECT_FALSE(less);
    // The empty name shares one data.
    EXPECT_EQ(CountAllocations([] { QualifiedName none; (void)none; }), 0u);
}

TEST(QualifiedNameThreads, ManyReadersOfOneFreshNameSeeOneTextAndOneHash)
{
    const int threadCount = 8;
    const Parts parts = {u"a component long enough ]] to be worth caching", u"b", u"c]"};
    const std::u16string expectedText = ExpectedBracketForm(parts);
    const uint32_t expectedHash = ExpectedHash(parts);

    for (int round = 0; round < 50; ++round) {
        // A fresh name each round, so that the threads race to fill its caches.
        const QualifiedName shared = NameOf(parts);
        std::atomic<int> waiting{threadCount};
        std::vector<const TString*> texts(threadCount);
        std::vector<uint32_t> hashes(threadCount);
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([&, t] {
                const QualifiedName mine = shared; // a copy shares the data
                waiting.fetch_sub(1);
                while (waiting.load() > 0) {
                }
                const TString* text = (t % 2 == 0) ? &mine.GetFullValue() : &shared.GetFullValue();
                const uint32_t hash = (t % 2 == 0) ? shared.Hash() : mine.Hash();
                for (int k = 0; k < 20; ++k) {
                    if (&mine.GetFullValue() != text || mine.Hash() != hash)
                        text = nullptr;
                }
                texts[t] = text;
                hashes[t] = hash;
            });
        }
        for (std::thread& th : threads)
            th.join();
        for (int t = 0; t < threadCount; ++t) {
            ASSERT_NE(texts[t], nullptr) << "thread " << t << " saw the text move";
            EXPECT_EQ(texts[t], texts[0]);
            EXPECT_EQ(*texts[t], T(expectedText));
            EXPECT_EQ(hashes[t], expectedHash);
        }
        EXPECT_EQ(&shared.GetFullValue(), texts[0]);
    }
}
