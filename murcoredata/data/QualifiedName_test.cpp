#include "murcoredata/data/MakeQualifiedName.h"
#include "murcoredata/data/QualifiedName.h"
#include "murcoredata/foundation/AllocationCounter_test.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <boost/container/small_vector.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

using TestSupport::Caught;
using TestSupport::CountAllocations;
using TestSupport::ExpectLogicFailure;

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
    char buf[8];
    for (char16_t c : s) {
        std::snprintf(buf, sizeof buf, "\\u%04X", unsigned(c));
        out += c >= 0x20 && c < 0x7F ? std::string(1, char(c)) : std::string(buf);
    }
    return out;
}

// The bracket form, written here by appending, as a second opinion on the renderer.
std::u16string ExpectedBracketForm(const Parts& parts)
{
    std::u16string text;
    for (size_t i = 0; i < parts.size(); ++i) {
        text += i > 0 ? u".[" : u"[";
        for (char16_t c : parts[i])
            text += c == u']' ? std::u16string(u"]]") : std::u16string(1, c);
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
    const size_t n = s.size();
    ReferenceResult r;
    auto fail = [&r](uint32_t code) { r.code = code; return r; };
    r.ok = n == 0;
    for (size_t pos = 0; n > 0;) {
        if (s[pos] != u'[')
            return fail(pos == 0 ? 0x5F1F5407u : 0x5F1F5408u);
        if (++pos == n)
            return fail(0x5F1F5409u);
        std::u16string part;
        for (;; ++pos) {
            if (pos == n)
                return fail(0x5F1F540Au);
            if (s[pos] == u']') {
                if (pos + 1 == n || s[pos + 1] != u']')
                    break;
                ++pos; // an escaped "]"
            }
            part += s[pos];
        }
        r.parts.push_back(part);
        if (++pos == n) {
            r.ok = true;
            return r;
        }
        if (s[pos] != u'.')
            return fail(0x5F1F540Bu);
        if (++pos == n)
            return fail(0x5F1F540Cu);
    }
    return r;
}

// Accepted texts, one of each kind.
const struct
{
    std::u16string input;
    Parts parts;
} s_accepted[] = {
    {u"", {}},
    {u"\t\r\n ", {}},
    {u"[a]", {u"a"}},
    {u"[a].[b].[c]", {u"a", u"b", u"c"}},
    {u"[a].[]", {u"a", u""}},
    {u"[]", {u""}},
    {u"\t [a].[b]\n", {u"a", u"b"}},
    {u"[a]]b]", {u"a]b"}},
    {u"[a[b.c]", {u"a[b.c"}},
    {u"[ a ]", {u" a "}},          // inside the brackets nothing is trimmed
    {u"[]]]", {u"]"}},             // one escaped "]" and nothing else
    {u"[]]]]]", {u"]]"}},          // two escapes, then the close
    {u"[a]]].[b]", {u"a]", u"b"}}, // an escape right before the close
    {u"[\\].[\\]]]", {u"\\", u"\\]"}}, // a backslash is no escape
    {std::u16string(u"[a\0b].[\0]", 9), {std::u16string(u"a\0b", 3), std::u16string(u"\0", 1)}},
    {u"[\xDC00\xD800].[\xD800]", {u"\xDC00\xD800", u"\xD800"}}, // reversed pair, lone surrogate
};

struct FailureSite
{
    uint32_t code;
    int source;
    CoreData::StringId reason;
    const char16_t* english; // pinned, not looked up: a wrong id shows
};

const FailureSite s_sites[] = {
    {0x5F1F5407u, 6, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['"}, // first component
    {0x5F1F5408u, 4, CoreData::IDS_ERR_EXPECT_LBRACKET, u"Invalid input: expected '['"}, // a later one
    {0x5F1F5409u, 4, CoreData::IDS_ERR_DANGLING_LBRACKET, u"Invalid input: dangling '['"},
    {0x5F1F540Au, 4, CoreData::IDS_ERR_BRACKET_MISMATCH, u"Invalid input: mismatched brackets"},
    {0x5F1F540Bu, 4, CoreData::IDS_ERR_EXPECT_DOT, u"Invalid input: expected '.'"},
    {0x5F1F540Cu, 4, CoreData::IDS_ERR_DANGLING_DOT, u"Invalid input: dangling '.'"},
};

const struct
{
    std::u16string input;
    int site;
} s_rejected[] = {
    {u"  a  ", 0}, {u".[a]", 0}, {u"\\[a]", 0}, {std::u16string(u"\0[a]", 4), 0},
    {u"%1 %2", 0}, // the input is not filled into the message twice
    {u"[a]..[b]", 1}, {u"[a]. [b]", 1},
    {u" [ ", 2}, {u"[a].[", 2},
    {u"[a", 3}, {u"[a]]", 3}, {u"[]]]]", 3}, {u"[a].[b", 3}, {u"[\xD800", 3},
    {u"[a] .[b]", 4}, {u"[a]]]x", 4}, {std::u16string(u"[a]\0", 4), 4},
    {u"[a].", 5}, {u"[a].[b]. ", 5},
};

uint32_t ErrorCodeOf(const MurvaneException& e)
{
    return e.GetErrorInfo().GetError().GetCode();
}

} // namespace

// ---- Parsing ----

TEST(QualifiedNameParse, AcceptedTextsGiveTheirComponents)
{
    for (const auto& row : s_accepted) {
        SCOPED_TRACE(Show(row.input));
        const TString text = T(row.input);
        const QualifiedName name = QualifiedName::ParseGlobal(text);
        EXPECT_EQ(PartsOf(name), row.parts);
        EXPECT_EQ(name.GetFullValue(), T(ExpectedBracketForm(row.parts)));
        EXPECT_EQ(PartsOf(QualifiedName::ParseLocal(text)), row.parts);
        EXPECT_TRUE(QualifiedName::CanParseQualifiedName(text));
        const std::unique_ptr<QualifiedName> tried = QualifiedName::TryParseQualifiedName(text, false);
        ASSERT_NE(tried, nullptr);
        EXPECT_EQ(PartsOf(*tried), row.parts);
    }
}

TEST(QualifiedNameParse, RejectedTextsThrowTheirSiteCodeSourceAndMessage)
{
    for (const auto& row : s_rejected) {
        SCOPED_TRACE(Show(row.input));
        const FailureSite& site = s_sites[row.site];
        const TString text = T(row.input);
        EXPECT_FALSE(QualifiedName::CanParseQualifiedName(text));
        EXPECT_EQ(QualifiedName::TryParseQualifiedName(text, false), nullptr);

        const TString reason(site.english);
        EXPECT_EQ(CoreData::LookupTStr(site.reason), reason);
        const TString trimmed = text.trimmed();
        const auto caught = Caught([&] { (void)QualifiedName::ParseGlobal(text); });
        const auto* e = dynamic_cast<const QualifiedFieldNameParseException*>(caught.get());
        ASSERT_NE(e, nullptr);
        EXPECT_EQ(ErrorCodeOf(*e), site.code);
        char name[80];
        std::snprintf(name, sizeof name, "MurvaneException_QualifiedNameParseException_0x%08X", site.code);
        EXPECT_EQ(e->GetErrorInfo().GetError().GetName(), TString::fromUtf8(name));
        EXPECT_EQ(int(e->GetErrorInfo().GetSource()), site.source);
        EXPECT_EQ(int(e->GetErrorInfo().GetStatusCode()), 2);
        EXPECT_EQ(e->GetMessagesFront(),
                  TString(u"Qualified Name Parse Error --- ") + reason + TString(u" --- Input: ") + trimmed);
        EXPECT_EQ(e->GetInput(), trimmed);
        EXPECT_THROW((void)QualifiedName::ParseLocal(text), QualifiedNameException);
        EXPECT_THROW((void)QualifiedName::TryParseQualifiedName(text, true), QualifiedFieldNameParseException);
    }
}

TEST(QualifiedNameParse, HugeAndDeepInputsAnswerWithoutCrashing)
{
    // "[[[..." never closed; "[" then an even run of "]" (escapes, none left to close).
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(TString(u'[', 10000)));
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(TString(u"[") + TString(u']', 10000)));
    // An odd run is escapes and then the close.
    const QualifiedName odd = QualifiedName::ParseGlobal(TString(u"[") + TString(u']', 10001));
    ASSERT_EQ(odd.GetNumberOfComponents(), 1u);
    EXPECT_EQ(odd.GetComponent(0), TString(u']', 5000));

    TString many(u"[x]");
    for (int i = 1; i < 5000; ++i)
        many += TString(u".[x]");
    EXPECT_EQ(QualifiedName::ParseGlobal(many).GetNumberOfComponents(), 5000u);
    EXPECT_FALSE(QualifiedName::CanParseQualifiedName(many + u'.'));
}

TEST(QualifiedNameParse, RandomTextsParseAsTheReferenceOrThrowTheDocumentedException)
{
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
            // A well-formed name with at most one unit deleted or inserted: near the boundary.
            Parts parts(1 + length(rng) % 3);
            for (std::u16string& p : parts)
                for (int k = length(rng) % 4; k > 0; --k)
                    p += alphabet[pick(rng)];
            input = ExpectedBracketForm(parts);
            const size_t at = size_t(rng() % input.size());
            const int change = coin(rng);
            if (change == 1)
                input.erase(at, 1);
            else if (change == 2)
                input.insert(input.begin() + at, alphabet[pick(rng)]);
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
            EXPECT_EQ(name.GetFullValue(), T(ExpectedBracketForm(expected.parts)));
            EXPECT_EQ(QualifiedName::ParseGlobal(name.GetFullValue()), name);
            ++accepted;
        } catch (const QualifiedFieldNameParseException& e) {
            ASSERT_FALSE(expected.ok) << "rejected, but the reference accepts";
            EXPECT_EQ(ErrorCodeOf(e), expected.code);
            codesSeen.insert(ErrorCodeOf(e));
        }
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
    EXPECT_EQ(&second.GetFullValue(), &first.GetFullValue()); // one shared data

    // The key is the raw input: a blank before it is another entry, with equal data.
    const QualifiedName third = QualifiedName::ParseGlobal(TString(u" [a].[b]"), cache);
    EXPECT_EQ(cache.size(), 2u);
    EXPECT_EQ(third, first);
    EXPECT_NE(&third.GetFullValue(), &first.GetFullValue());

    EXPECT_THROW((void)QualifiedName::ParseGlobal(TString(u"[a"), cache), QualifiedNameException);
    EXPECT_EQ(cache.size(), 2u);
}

TEST(QualifiedNameParse, UnquotedConstructorAndLiteral)
{
    const QualifiedName dotted(TString(u"a.b"));
    EXPECT_EQ(PartsOf(dotted), Parts{u"a.b"});
    EXPECT_EQ(dotted.GetFullValue(), TString(u"[a.b]"));
    const QualifiedName unquoted = QualifiedName::ParseUnquoted(TString(u" [x] "));
    EXPECT_EQ(PartsOf(unquoted), Parts{u" [x] "});
    EXPECT_EQ(unquoted.GetFullValue(), TString(u"[ [x]] ]"));

    EXPECT_EQ(PartsOf(u"[a].[b]]c]"_qn), (Parts{u"a", u"b]c"}));
    EXPECT_THROW(u"[a] .[b]"_qn, QualifiedNameException);
}

// ---- The two empty names ----

TEST(QualifiedNameEmpty, TheTwoEmptyNamesDifferAndNoComponentsIsShared)
{
    const QualifiedName none;
    const QualifiedName oneEmpty{TString()};
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_TRUE(oneEmpty.IsEmpty());
    EXPECT_NE(none, oneEmpty);
    EXPECT_EQ(oneEmpty.GetNumberOfComponents(), 1u);
    EXPECT_NE(none.Hash(), oneEmpty.Hash());
    // Two or more components are never empty, whatever they hold.
    EXPECT_FALSE(QualifiedName(TString(), TString()).IsEmpty());
    EXPECT_FALSE(QualifiedName(TString(u"a")).IsEmpty());

    // Every empty result shares the one default data.
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

// ---- Hash ----

TEST(QualifiedNameHash, PinnedValuesOverTheComponents)
{
    // Stored hashes depend on these values; they were computed apart, with XXH32 itself.
    EXPECT_EQ(QualifiedName().Hash(), 0xDEADBEEFu);
    EXPECT_EQ((u"[]"_qn).Hash(), 0xC372C6CBu);
    EXPECT_EQ((u"[a]"_qn).Hash(), 0xA322CEAEu);
    const QualifiedName sales = u"[Sales].[Order Date].[Year]"_qn;
    EXPECT_EQ(sales.Hash(), 0x4E2BD901u);
    EXPECT_EQ(sales.Hash(), 0x4E2BD901u); // again, from the cache
    EXPECT_EQ(std::hash<QualifiedName>()(sales), size_t(0x4E2BD901u));
    // The hash is over components, not the bracket text: "[a.b]" and "[a].[b]" differ.
    EXPECT_NE((u"[a.b]"_qn).Hash(), (u"[a].[b]"_qn).Hash());
}

TEST(QualifiedNameHash, EqualNamesMadeDifferentlyHashAlike)
{
    QualifiedName pushed(TString(u"b"));
    pushed.PushRoot(TString(u"a"));
    pushed.PushValue(TString(u"c"));
    const QualifiedName names[] = {u"[a].[b].[c]"_qn, u"  [a].[b].[c]\t"_qn, NameOf({u"a", u"b", u"c"}), pushed,
                                   (u"[z].[a].[b].[c]"_qn).PopRootValue()};
    std::unordered_set<QualifiedName> set;
    for (const QualifiedName& n : names) {
        EXPECT_EQ(n, names[0]);
        EXPECT_EQ(n.Hash(), names[0].Hash());
        set.insert(n);
    }
    EXPECT_EQ(set.size(), 1u);
}

// ---- Comparison ----

TEST(QualifiedNameCompare, OrderIsThatOfTheBracketTexts)
{
    // Each name is less than the next. Component by component "a" < "a b" and "a" < "a.b";
    // by bracket text the unit after the component decides: " " and "." sort before "]".
    const QualifiedName chain[] = {QualifiedName(),        QualifiedName(TString()),    QualifiedName(TString(u"a b")),
                                   QualifiedName(TString(u"a.b")), QualifiedName(TString(u"a")), u"[a].[b]"_qn,
                                   QualifiedName(TString(u"a]")),  QualifiedName(TString(u"aa")), QualifiedName(TString(u"b"))};
    const size_t n = sizeof chain / sizeof chain[0];
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < n; ++j) {
            SCOPED_TRACE(chain[i].GetFullValue().toStdString() + " vs " + chain[j].GetFullValue().toStdString());
            EXPECT_EQ(chain[i] < chain[j], i < j);
            EXPECT_EQ(chain[i] == chain[j], i == j);
            EXPECT_EQ(chain[i] != chain[j], i != j);
            const int c = chain[i].Compare(chain[j]);
            EXPECT_EQ(c < 0, i < j);
            EXPECT_EQ(c > 0, i > j);
        }
    }
    EXPECT_NE(QualifiedName(TString(u"ab")), u"[a].[b]"_qn);
    EXPECT_NE(QualifiedName(TString(u"a"), TString()), QualifiedName(TString(u"a")));
}

TEST(QualifiedNameCompare, NoCaseComparesTheBracketTextsIgnoringCase)
{
    EXPECT_EQ((u"[Sales].[YEAR]"_qn).CompareNoCase(u"[sales].[year]"_qn), 0);
    EXPECT_NE((u"[Sales].[YEAR]"_qn).Compare(u"[sales].[year]"_qn), 0);
    EXPECT_LT((u"[a]"_qn).CompareNoCase(u"[B]"_qn), 0);
    EXPECT_GT((u"[a]"_qn).Compare(u"[B]"_qn), 0); // "a" (0x61) after "B" (0x42)
}

TEST(QualifiedNameCompare, LeafFunctorOrdersByLowerCasedLeaf)
{
    std::vector<QualifiedName> names = {u"[x].[gamma]"_qn, u"[Beta]"_qn, u"[z].[y].[ALPHA]"_qn, u"[b].[Delta]"_qn};
    std::sort(names.begin(), names.end(), QualifiedNameCompareLeafValueNoCase());
    EXPECT_EQ(names, (std::vector<QualifiedName>{u"[z].[y].[ALPHA]"_qn, u"[Beta]"_qn, u"[b].[Delta]"_qn, u"[x].[gamma]"_qn}));

    const QualifiedNameCompareLeafValueNoCase less;
    EXPECT_FALSE(less(u"[A]"_qn, u"[a]"_qn));
    EXPECT_FALSE(less(u"[a]"_qn, u"[A]"_qn));
    ExpectLogicFailure([&] { (void)less(QualifiedName(), u"[a]"_qn); }, 0x995B56B5u, "!m_data->m_components.empty()");
}

// ---- Reading and changing ----

TEST(QualifiedNameRead, RootLeafAndComponents)
{
    const QualifiedName name = u"[a].[b].[c]"_qn;
    EXPECT_EQ(name.GetRootValue(), TString(u"a"));
    EXPECT_EQ(name.GetLeafValue(), TString(u"c"));
    EXPECT_EQ(name.TryGetRootValue(), TString(u"a"));
    EXPECT_EQ(name.TryGetLeafValue(), TString(u"c"));
    EXPECT_EQ(name.GetComponents()[2], TString(u"c"));
    // The bound admits the count itself, which reads as the empty text.
    EXPECT_EQ(name.GetComponent(3), TString());
    EXPECT_EQ(QualifiedName().GetComponent(0), TString());
    ExpectLogicFailure([&] { (void)name.GetComponent(4); }, 0x71586053u, "i <= m_data->m_components.size()");

    const QualifiedName none;
    EXPECT_EQ(none.TryGetRootValue(), TString());
    EXPECT_EQ(none.TryGetLeafValue(), TString());
    ExpectLogicFailure([&] { (void)none.GetRootValue(); }, 0x018B7D29u, "!m_data->m_components.empty()");
    ExpectLogicFailure([&] { (void)none.GetLeafValue(); }, 0x995B56B5u, "!m_data->m_components.empty()");

    EXPECT_EQ(QualifiedName().EstimateSizeOfReferencedMemoryInBytes(), 0u);
    const QualifiedName sized(TString(u"ab"), TString(u"c]"));
    (void)sized.GetFullValue(); // the cached "[ab].[c]]]" is not counted
    EXPECT_EQ(sized.EstimateSizeOfReferencedMemoryInBytes(), 8u);
}

TEST(QualifiedNameChange, InPlaceChangesLeaveOtherHoldersAlone)
{
    QualifiedName name = u"[a].[b]"_qn;
    const QualifiedName before = name;
    name.PushValue(TString(u"c"));
    name.PushRoot(TString(u"r"));
    EXPECT_EQ(PartsOf(name), (Parts{u"r", u"a", u"b", u"c"}));
    EXPECT_EQ(before.GetFullValue(), TString(u"[a].[b]"));

    EXPECT_EQ(name.PopValue(), TString(u"c"));
    EXPECT_EQ(name.PopRoot(), TString(u"r"));
    EXPECT_EQ(name, before);
    name.ReplaceValue(TString(u"B"));
    name.ReplaceRoot(TString(u"A"));
    EXPECT_EQ(PartsOf(name), (Parts{u"A", u"B"}));
    name.SetRootValue(TString(u"S"));
    // A change made after the caches were filled gives fresh caches.
    EXPECT_EQ(name.GetFullValue(), TString(u"[S].[B]"));
    EXPECT_EQ(name.Hash(), (u"[S].[B]"_qn).Hash());
    name.Clear();
    EXPECT_EQ(name.GetNumberOfComponents(), 0u);
    EXPECT_EQ(PartsOf(before), (Parts{u"a", u"b"}));

    QualifiedName none;
    EXPECT_EQ(none.PopValue(), TString());
    EXPECT_EQ(none.PopRoot(), TString());
    EXPECT_EQ(none.GetNumberOfComponents(), 0u);
    ExpectLogicFailure([&] { none.ReplaceValue(TString(u"v")); }, 0xA8C5A1E9u, "!m_data->m_components.empty()");
    ExpectLogicFailure([&] { none.ReplaceRoot(TString(u"v")); }, 0x4181ADF3u, "!m_data->m_components.empty()");
    ExpectLogicFailure([&] { none.SetRootValue(TString(u"v")); }, 0x4181ADF3u, "!m_data->m_components.empty()");

    // Swap exchanges the data, a copy shares it.
    QualifiedName a = u"[a]"_qn;
    QualifiedName b = u"[b].[c]"_qn;
    const TString* textOfA = &a.GetFullValue();
    a.Swap(b);
    EXPECT_EQ(PartsOf(a), (Parts{u"b", u"c"}));
    EXPECT_EQ(&b.GetFullValue(), textOfA);
    EXPECT_EQ(&QualifiedName(b).GetFullValue(), textOfA);
}

TEST(QualifiedNameChange, ConstFormsMakeNewNames)
{
    const QualifiedName name = u"[a].[b].[c]"_qn;
    TString out(u"stale");
    EXPECT_EQ(PartsOf(name.PopLeafValue()), (Parts{u"a", u"b"}));
    EXPECT_EQ(PartsOf(name.PopLeafValue(out)), (Parts{u"a", u"b"}));
    EXPECT_EQ(out, TString(u"c"));
    EXPECT_EQ(PartsOf(name.PopRootValue(out)), (Parts{u"b", u"c"}));
    EXPECT_EQ(out, TString(u"a"));
    EXPECT_EQ(PartsOf(name.PushLeafValue(TString(u"d"))), (Parts{u"a", u"b", u"c", u"d"}));
    EXPECT_EQ(PartsOf(name.PushRootValue(TString(u"r"))), (Parts{u"r", u"a", u"b", u"c"}));
    EXPECT_EQ(PartsOf(name.ReplaceRootValue(TString(u"R"))), (Parts{u"R", u"b", u"c"}));
    EXPECT_EQ(PartsOf(name.ReplaceLeafValue(TString(u"L"))), (Parts{u"a", u"b", u"L"}));
    EXPECT_EQ(PartsOf(name), (Parts{u"a", u"b", u"c"}));

    const QualifiedName none;
    EXPECT_EQ(none.PopLeafValue(out).GetNumberOfComponents(), 0u);
    EXPECT_TRUE(out.isEmpty());
    out = TString(u"stale");
    EXPECT_EQ(none.PopRootValue(out).GetNumberOfComponents(), 0u);
    EXPECT_TRUE(out.isEmpty());
    ExpectLogicFailure([&] { (void)none.ReplaceRootValue(TString(u"v")); }, 0xE7D6FD7Cu, "!m_data->m_components.empty()");
    ExpectLogicFailure([&] { (void)none.ReplaceLeafValue(TString(u"v")); }, 0x1A407BE2u, "!m_data->m_components.empty()");
}

// ---- Free helpers ----

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

    ExpectLogicFailure([] { (void)ReplaceValue(QualifiedName(), TString(u"x")); }, 0x2EC106E1u,
                       "name.GetNumberOfComponents() > 0");
    ExpectLogicFailure([] { (void)ReplaceRoot(QualifiedName(), TString(u"x")); }, 0xA754925Du,
                       "name.GetNumberOfComponents() > 0");
}

// ---- Output, exceptions ----

TEST(QualifiedNameOutput, StreamsTheBracketFormAndContainers)
{
    const auto streamed = [](const auto& value) {
        std::ostringstream out;
        out << value;
        return out.str();
    };
    EXPECT_EQ(streamed(u"[Straße].[a]]b]"_qn), "[Stra\xC3\x9F" "e].[a]]b]");
    EXPECT_EQ(streamed(std::vector<QualifiedName>{u"[b]"_qn, u"[a].[c]"_qn, QualifiedName()}), "{[b], [a].[c], }");
    EXPECT_EQ(streamed(std::set<QualifiedName>{u"[b]"_qn, u"[a].[c]"_qn, u"[b]"_qn}), "{[a].[c], [b]}");
    EXPECT_EQ(streamed(std::vector<QualifiedName>{}), "{}");
}

TEST(QualifiedNameExceptions, CarriesInputAndKeepsItsTypeAcrossThreads)
{
    const QualifiedNameException plain(TString(u"m"), TString(u"in"), MurErrorsError::QualifiedNameParseException_0x5F1F540A());
    EXPECT_EQ(plain.GetInput(), TString(u"in"));
    EXPECT_EQ(int(plain.GetErrorInfo().GetSource()), 4);
    EXPECT_EQ(int(plain.GetErrorInfo().GetStatusCode()), 2);

    std::unique_ptr<MurvaneException> carried;
    std::thread worker([&] { carried = Caught([] { (void)QualifiedName::ParseGlobal(TString(u" [a")); }); });
    worker.join();
    const auto again = Caught([&] { carried->Throw(); });
    const auto* e = dynamic_cast<const QualifiedFieldNameParseException*>(again.get());
    ASSERT_NE(e, nullptr) << "the rethrown exception lost its type";
    EXPECT_EQ(e->GetInput(), TString(u"[a"));
    EXPECT_EQ(ErrorCodeOf(*e), 0x5F1F540Au);
}

// ---- Cost and threads ----

TEST(QualifiedNameCost, ATwoPartNameIsOneAllocation)
{
    const TString root(u"a root long enough to live on the heap");
    const TString leaf(u"leaf");
    const TString text(u"[Sales].[Order Date]");
    QualifiedName two, parsed, three;
    EXPECT_EQ(CountAllocations([&] { two = QualifiedName(root, leaf); }), 1u);
    EXPECT_EQ(CountAllocations([&] { parsed = QualifiedName::ParseGlobal(text); }), 1u);
    // A third component leaves the inline space: the list takes a block of its own.
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
    EXPECT_EQ(CountAllocations([] { QualifiedName none; (void)none; }), 0u);
}

TEST(QualifiedNameThreads, ManyReadersOfOneFreshNameSeeOneTextAndOneHash)
{
    const int threadCount = 8;
    const Parts parts = {u"a component long enough ]] to be worth caching", u"b", u"c]"};
    const std::u16string expectedText = ExpectedBracketForm(parts);
    const uint32_t expectedHash = NameOf(parts).Hash(); // filled on one thread

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
