#include "murcoredata/data/QualifiedName.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/data/StreamOperators.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <atomic>
#include <climits>
#include <new>
#include <ostream>

//===------------------------------------------------------------------------------------===//
// QNData
//===------------------------------------------------------------------------------------===//

/// The shared part of a name. The components never change once the data is published; only
/// the two caches do, and each only once, from empty to its final value.
class QualifiedName::QNData
{
public:
    QNData() = default;
    explicit QNData(Components&& components) : m_components(std::move(components)) {}
    template <typename Iterator>
    QNData(Iterator first, Iterator last) : m_components(first, last)
    {
    }
    QNData(const QNData&) = delete;
    QNData& operator=(const QNData&) = delete;

    /// The one data with no components, shared by every empty name; lives until exit.
    static const std::shared_ptr<QNData>& EmptyDefault();

    uint32_t hash() const;
    const TString& GetFullValue() const;

    /// The components less the leaf (root); with one or none, `EmptyDefault()`.
    std::shared_ptr<QNData> pop_back() const;
    std::shared_ptr<QNData> pop_front() const;

    /// Cached `hash()`; 0 means not yet computed. Racing writers store the same value.
    mutable std::atomic<uint32_t> m_hash{0};
    /// Cached bracket form, owned here once published; null until then. Written only through
    /// `atomic_compare_exchange_strong` from null, read only through `atomic_load`.
    mutable std::shared_ptr<TString> m_fullValue;
    const Components m_components;

private:
    const TString& BuildFullValue() const;

    // The text `m_fullValue` owns, once published. Reading a shared_ptr atomically takes a
    // lock in the standard library, and ordering compares two bracket forms per call, so the
    // read path goes through this plain pointer instead. It changes only from null to the
    // published text, which lives as long as this data.
    mutable std::atomic<const TString*> m_fullValueText{nullptr};
};

namespace {

const TString& EmptyText()
{
    static const TString s_empty;
    return s_empty;
}

// The bracket form of `components`, in one allocation: 3n - 1 units of brackets and dots,
// the components' text, and one more unit for every "]" that is doubled.
TString RenderBracketForm(const QualifiedName::Components& components)
{
    const size_t n = components.size();
    if (n == 0)
        return TString();
    long long length = 3 * static_cast<long long>(n) - 1;
    long long escapes = 0;
    for (const TString& c : components) {
        length += c.length();
        escapes += std::count(c.begin(), c.end(), u']');
    }
    length += escapes;
    if (length > INT_MAX)
        throw std::bad_alloc(); // longer than any string can be

    TString text;
    text.resize(static_cast<int>(length));
    char16_t* out = text.data();
    bool first = true;
    for (const TString& c : components) {
        if (!first)
            *out++ = u'.';
        first = false;
        *out++ = u'[';
        if (escapes == 0) {
            out = std::copy(c.begin(), c.end(), out);
        } else {
            for (const char16_t unit : c) {
                *out++ = unit;
                if (unit == u']')
                    *out++ = u']';
            }
        }
        *out++ = u']';
    }
    return text;
}

} // namespace

const std::shared_ptr<QualifiedName::QNData>& QualifiedName::QNData::EmptyDefault()
{
    static const std::shared_ptr<QNData> s_empty = std::make_shared<QNData>();
    return s_empty;
}

uint32_t QualifiedName::QNData::hash() const
{
    uint32_t value = m_hash.load();
    if (value != 0)
        return value;
    value = 0xDEADBEEFu;
    for (const TString& c : m_components)
        value = THash32(c.constData(), static_cast<size_t>(c.lengthInBytes()), value);
    m_hash.store(value);
    return value;
}

const TString& QualifiedName::QNData::GetFullValue() const
{
    if (const TString* text = m_fullValueText.load(std::memory_order_acquire))
        return *text;
    return BuildFullValue();
}

const TString& QualifiedName::QNData::BuildFullValue() const
{
    // Not seen published on the read path: build a copy and offer it. The exchange expects
    // null; the loser of a race drops its copy and takes the winner's.
    std::shared_ptr<TString> published = std::make_shared<TString>(RenderBracketForm(m_components));
    std::shared_ptr<TString> expected;
    if (!std::atomic_compare_exchange_strong(&m_fullValue, &expected, published))
        published = std::move(expected);
    m_fullValueText.store(published.get(), std::memory_order_release);
    return *published;
}

std::shared_ptr<QualifiedName::QNData> QualifiedName::QNData::pop_back() const
{
    if (m_components.size() <= 1)
        return EmptyDefault();
    return std::make_shared<QNData>(m_components.begin(), m_components.end() - 1);
}

std::shared_ptr<QualifiedName::QNData> QualifiedName::QNData::pop_front() const
{
    if (m_components.size() <= 1)
        return EmptyDefault();
    return std::make_shared<QNData>(m_components.begin() + 1, m_components.end());
}

//===------------------------------------------------------------------------------------===//
// The parser
//===------------------------------------------------------------------------------------===//

namespace {

// Why a text is not a qualified name, one value per failure site.
enum class ParseFailure : uint8_t
{
    None,
    NotBracketForm,   // the text does not begin with "["
    ExpectLBracket,   // a later component does not begin with "["
    DanglingLBracket, // the text ends right after a "["
    BracketMismatch,  // no closing "]"
    ExpectDot,        // after a "]" neither the end nor "."
    DanglingDot,      // the text ends right after a "."
};

// The first "]" of p[from, n), or -1. Names are short, so a plain loop beats a call.
inline int IndexOfClose(const char16_t* p, int n, int from)
{
    for (int k = from; k < n; ++k)
        if (p[k] == u']')
            return k;
    return -1;
}

// Splits the trimmed `input` into its components, unescaped, appending them to `tokens`
// (skipped when `tokens` is null). Walks the text once, forward only, and never reads past
// its end; any sequence of code units is accepted as component text.
ParseFailure ScanBracketForm(const TString& input, QualifiedName::Components* tokens)
{
    const int n = input.length();
    if (n == 0)
        return ParseFailure::None;
    const char16_t* const p = input.constData();
    if (p[0] != u'[')
        return ParseFailure::NotBracketForm;

    int i = 0;
    for (;;) {
        if (p[i] != u'[')
            return ParseFailure::ExpectLBracket;
        const int start = i + 1;
        if (start >= n)
            return ParseFailure::DanglingLBracket;
        int j = IndexOfClose(p, n, start);
        if (j < 0)
            return ParseFailure::BracketMismatch;
        int next = j + 1;
        int escapes = 0;
        // "]]" inside a component is one "]": skip the pair and look for the real close.
        while (next < n && p[next] == u']') {
            ++escapes;
            j = IndexOfClose(p, n, j + 2);
            if (j < 0)
                return ParseFailure::BracketMismatch;
            next = j + 1;
        }
        if (tokens != nullptr) {
            if (escapes == 0) {
                tokens->push_back(input.mid(start, j - start));
            } else {
                // Every "]" in p[start, j) is the first of a pair: keep it, skip its twin.
                TString token;
                token.resize(j - start - escapes);
                char16_t* out = token.data();
                for (int k = start; k < j; ++k) {
                    *out++ = p[k];
                    if (p[k] == u']')
                        ++k;
                }
                tokens->push_back(std::move(token));
            }
        }
        if (next == n)
            return ParseFailure::None;
        if (p[next] != u'.')
            return ParseFailure::ExpectDot;
        if (j + 2 == n)
            return ParseFailure::DanglingDot;
        i = j + 2;
    }
}

// The failure sites of the parser, in the order of `ParseFailure` after `None`: the reason
// from the string table, the site's error record and the error source. All have status 2.
struct ParseFailureSite
{
    CoreData::StringId reason;
    MurvaneError (*error)();
    TError::ErrorSource source;
};

const ParseFailureSite s_parseFailureSites[] = {
    // Source 6 marks text that is not in bracket form at all.
    {CoreData::IDS_ERR_EXPECT_LBRACKET, &MurErrorsError::QualifiedNameParseException_0x5F1F5407, TError::ErrorSource::QualifiedName},
    {CoreData::IDS_ERR_EXPECT_LBRACKET, &MurErrorsError::QualifiedNameParseException_0x5F1F5408, TError::ErrorSource::CoreData},
    {CoreData::IDS_ERR_DANGLING_LBRACKET, &MurErrorsError::QualifiedNameParseException_0x5F1F5409, TError::ErrorSource::CoreData},
    {CoreData::IDS_ERR_BRACKET_MISMATCH, &MurErrorsError::QualifiedNameParseException_0x5F1F540A, TError::ErrorSource::CoreData},
    {CoreData::IDS_ERR_EXPECT_DOT, &MurErrorsError::QualifiedNameParseException_0x5F1F540B, TError::ErrorSource::CoreData},
    {CoreData::IDS_ERR_DANGLING_DOT, &MurErrorsError::QualifiedNameParseException_0x5F1F540C, TError::ErrorSource::CoreData},
};
static_assert(sizeof s_parseFailureSites / sizeof s_parseFailureSites[0] == size_t(ParseFailure::DanglingDot),
              "one site for every failure");

// The error record and message are built only when they are thrown, so that
// `CanParseQualifiedName` and `TryParseQualifiedName(text, false)` cost no more than the scan.
void MaybeThrowQualifiedFieldNameParseException(bool throwOnError, const TString& input, ParseFailure failure)
{
    if (!throwOnError || failure == ParseFailure::None)
        return;
    const ParseFailureSite& site = s_parseFailureSites[size_t(failure) - 1];
    throw QualifiedFieldNameParseException(site.reason, input,
                                           TError::ErrorInfo(site.error(), site.source, grpc::StatusCode::UNKNOWN));
}

// Trims a private copy of `text` and parses it; false (or a throw) on bad text.
bool TryGetTokens(TString input, QualifiedName::Components* tokens, bool throwOnError)
{
    input.trim();
    const ParseFailure failure = ScanBracketForm(input, tokens);
    MaybeThrowQualifiedFieldNameParseException(throwOnError, input, failure);
    return failure == ParseFailure::None;
}

std::shared_ptr<QualifiedName::QNData> MakeData(QualifiedName::Components&& components)
{
    if (components.empty())
        return QualifiedName::QNData::EmptyDefault();
    return std::make_shared<QualifiedName::QNData>(std::move(components));
}

} // namespace

//===------------------------------------------------------------------------------------===//
// QualifiedName: construction and parsing
//===------------------------------------------------------------------------------------===//

QualifiedName::QualifiedName() : m_data(QNData::EmptyDefault()) {}

QualifiedName::QualifiedName(TString component)
{
    Components components;
    components.push_back(std::move(component));
    m_data = std::make_shared<QNData>(std::move(components));
}

QualifiedName::QualifiedName(TString root, TString leaf)
{
    Components components;
    components.push_back(std::move(root));
    components.push_back(std::move(leaf));
    m_data = std::make_shared<QNData>(std::move(components));
}

QualifiedName::QualifiedName(Components&& components) : m_data(MakeData(std::move(components))) {}

QualifiedName::QualifiedName(std::shared_ptr<QNData>&& data) noexcept : m_data(std::move(data)) {}

QualifiedName::~QualifiedName() = default;

QualifiedName QualifiedName::ParseGlobal(const TString& text)
{
    Components tokens;
    (void)TryGetTokens(text, &tokens, true);
    return QualifiedName(std::move(tokens));
}

QualifiedName QualifiedName::ParseLocal(const TString& text)
{
    return ParseGlobal(text);
}

QualifiedName QualifiedName::ParseGlobal(const TString& text, ParseCache& cache)
{
    const auto found = cache.find(text);
    if (found != cache.end())
        return found->second;
    QualifiedName name = ParseGlobal(text);
    cache.emplace(text, name);
    return name;
}

QualifiedName QualifiedName::ParseLocal(const TString& text, ParseCache& cache)
{
    return ParseGlobal(text, cache);
}

QualifiedName QualifiedName::ParseUnquoted(const TString& text)
{
    return QualifiedName(text);
}

bool QualifiedName::CanParseQualifiedName(const TString& text)
{
    return TryGetTokens(text, nullptr, false);
}

std::unique_ptr<QualifiedName> QualifiedName::TryParseQualifiedName(const TString& text, bool throwOnError)
{
    Components tokens;
    if (!TryGetTokens(text, &tokens, throwOnError))
        return nullptr;
    return std::make_unique<QualifiedName>(std::move(tokens));
}

//===------------------------------------------------------------------------------------===//
// Reading
//===------------------------------------------------------------------------------------===//

const TString& QualifiedName::GetFullValue() const
{
    return m_data->GetFullValue();
}

const QualifiedName::Components& QualifiedName::GetComponents() const
{
    return m_data->m_components;
}

size_t QualifiedName::GetNumberOfComponents() const
{
    return m_data->m_components.size();
}

const TString& QualifiedName::GetComponent(size_t i) const
{
    MUR_LOGIC_ASSERT(i <= m_data->m_components.size(), LogicAssert_0x71586053);
    // The bound admits the index equal to the count; that slot reads as the empty text
    // rather than past the end of the list.
    if (i == m_data->m_components.size())
        return EmptyText();
    return m_data->m_components[i];
}

const TString& QualifiedName::GetRootValue() const
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0x018B7D29);
    return m_data->m_components.front();
}

const TString& QualifiedName::GetLeafValue() const
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0x995B56B5);
    return m_data->m_components.back();
}

const TString& QualifiedName::TryGetRootValue() const
{
    return m_data->m_components.empty() ? EmptyText() : m_data->m_components.front();
}

const TString& QualifiedName::TryGetLeafValue() const
{
    return m_data->m_components.empty() ? EmptyText() : m_data->m_components.back();
}

bool QualifiedName::IsEmpty() const
{
    const Components& c = m_data->m_components;
    return c.empty() || (c.size() == 1 && c.front().isEmpty());
}

//===------------------------------------------------------------------------------------===//
// Changing in place
//===------------------------------------------------------------------------------------===//

void QualifiedName::Clear()
{
    m_data = QNData::EmptyDefault();
}

void QualifiedName::PushValue(TString value)
{
    *this = PushLeafValue(std::move(value));
}

void QualifiedName::PushRoot(TString value)
{
    *this = PushRootValue(std::move(value));
}

TString QualifiedName::PopValue()
{
    if (m_data->m_components.empty())
        return TString();
    TString leaf = m_data->m_components.back();
    m_data = m_data->pop_back();
    return leaf;
}

TString QualifiedName::PopRoot()
{
    if (m_data->m_components.empty())
        return TString();
    TString root = m_data->m_components.front();
    m_data = m_data->pop_front();
    return root;
}

void QualifiedName::ReplaceValue(TString value)
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0xA8C5A1E9);
    Components components(m_data->m_components);
    components.back() = std::move(value);
    m_data = std::make_shared<QNData>(std::move(components));
}

void QualifiedName::ReplaceRoot(TString value)
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0x4181ADF3);
    Components components(m_data->m_components);
    components.front() = std::move(value);
    m_data = std::make_shared<QNData>(std::move(components));
}

void QualifiedName::SetRootValue(TString value)
{
    ReplaceRoot(std::move(value));
}

//===------------------------------------------------------------------------------------===//
// New name from this one
//===------------------------------------------------------------------------------------===//

QualifiedName QualifiedName::PopLeafValue() const
{
    return QualifiedName(m_data->pop_back());
}

QualifiedName QualifiedName::PopLeafValue(TString& out) const
{
    out = TryGetLeafValue();
    return PopLeafValue();
}

QualifiedName QualifiedName::PopRootValue() const
{
    return QualifiedName(m_data->pop_front());
}

QualifiedName QualifiedName::PopRootValue(TString& out) const
{
    out = TryGetRootValue();
    return PopRootValue();
}

QualifiedName QualifiedName::PushLeafValue(TString value) const
{
    const Components& old = m_data->m_components;
    Components components;
    components.reserve(old.size() + 1);
    components.assign(old.begin(), old.end());
    components.push_back(std::move(value));
    return QualifiedName(std::move(components));
}

QualifiedName QualifiedName::PushRootValue(TString value) const
{
    const Components& old = m_data->m_components;
    Components components;
    components.reserve(old.size() + 1);
    components.push_back(std::move(value));
    components.insert(components.end(), old.begin(), old.end());
    return QualifiedName(std::move(components));
}

QualifiedName QualifiedName::ReplaceRootValue(TString value) const
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0xE7D6FD7C);
    Components components(m_data->m_components);
    components.front() = std::move(value);
    return QualifiedName(std::move(components));
}

QualifiedName QualifiedName::ReplaceLeafValue(TString value) const
{
    MUR_LOGIC_ASSERT(!m_data->m_components.empty(), LogicAssert_0x1A407BE2);
    Components components(m_data->m_components);
    components.back() = std::move(value);
    return QualifiedName(std::move(components));
}

//===------------------------------------------------------------------------------------===//
// Comparison and hashing
//===------------------------------------------------------------------------------------===//

bool QualifiedName::operator==(const QualifiedName& other) const
{
    if (m_data == other.m_data)
        return true;
    const Components& a = m_data->m_components;
    const Components& b = other.m_data->m_components;
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

bool QualifiedName::operator<(const QualifiedName& other) const
{
    return GetFullValue() < other.GetFullValue();
}

int QualifiedName::Compare(const QualifiedName& other) const
{
    return TString::compare(GetFullValue(), other.GetFullValue(), TString::CaseSensitive);
}

int QualifiedName::CompareNoCase(const QualifiedName& other) const
{
    return TString::compare(GetFullValue(), other.GetFullValue(), TString::CaseInsensitive);
}

uint32_t QualifiedName::Hash() const
{
    return m_data->hash();
}

size_t QualifiedName::EstimateSizeOfReferencedMemoryInBytes() const
{
    size_t bytes = 0;
    for (const TString& c : m_data->m_components)
        bytes += static_cast<size_t>(c.lengthInBytes());
    return bytes;
}

QualifiedNameCompareLeafValueNoCase::~QualifiedNameCompareLeafValueNoCase() = default;

bool QualifiedNameCompareLeafValueNoCase::operator()(const QualifiedName& a, const QualifiedName& b) const
{
    return a.GetLeafValue().toLower() < b.GetLeafValue().toLower();
}

//===------------------------------------------------------------------------------------===//
// Exceptions
//===------------------------------------------------------------------------------------===//

QualifiedNameException::QualifiedNameException(const TString& message, const TString& input, const MurvaneError& error)
    : QualifiedNameException(message, input,
                             TError::ErrorInfo(error, TError::ErrorSource::CoreData, grpc::StatusCode::UNKNOWN))
{
}

QualifiedNameException::QualifiedNameException(const TString& message, const TString& input,
                                               const TError::ErrorInfo& info)
    : MurvaneException(static_cast<const TStringCore&>(message), info), m_input(input)
{
}

QualifiedNameException::~QualifiedNameException() = default;

QualifiedNameException* QualifiedNameException::Clone() const
{
    return new QualifiedNameException(*this);
}

void QualifiedNameException::Throw() const
{
    throw QualifiedNameException(*this);
}

namespace {

// Not localised: the frame is for logs and support, the reason inside it is localised.
TString ParseErrorMessage(CoreData::StringId reason, const TString& input)
{
    return TFormatString(u"Qualified Name Parse Error --- %1 --- Input: %2").arg(CoreData::LookupTStr(reason), input).result();
}

} // namespace

QualifiedFieldNameParseException::QualifiedFieldNameParseException(CoreData::StringId reason, const TString& input,
                                                                   const TError::ErrorInfo& info)
    : QualifiedNameException(ParseErrorMessage(reason, input), input, info)
{
}

QualifiedFieldNameParseException::~QualifiedFieldNameParseException() = default;

QualifiedFieldNameParseException* QualifiedFieldNameParseException::Clone() const
{
    return new QualifiedFieldNameParseException(*this);
}

void QualifiedFieldNameParseException::Throw() const
{
    throw QualifiedFieldNameParseException(*this);
}

//===------------------------------------------------------------------------------------===//
// Output and literal
//===------------------------------------------------------------------------------------===//

std::ostream& operator<<(std::ostream& out, const QualifiedName& name)
{
    return out << name.GetFullValue().toStdString();
}

std::ostream& operator<<(std::ostream& out, const std::set<QualifiedName>& names)
{
    return StreamOperators::OutputContainer(out, names);
}

std::ostream& operator<<(std::ostream& out, const std::vector<QualifiedName>& names)
{
    return StreamOperators::OutputContainer(out, names);
}

QualifiedName operator"" _qn(const char16_t* text, size_t length)
{
    return QualifiedName::ParseGlobal(TString(text, static_cast<int>(length)));
}
