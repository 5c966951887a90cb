#include "murcoredata/data/ICUCollator.h"

#include "murcoredata/data/CollatorName.h"
#include "murcoredata/data/CollatorNameTables.h"
#include "murcoredata/data/CoreICUUtils.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>

#include <cstring>

// The mirrored numbers must be ICU's.
static_assert(int(MurICU::UCOL_FRENCH_COLLATION) == int(::UCOL_FRENCH_COLLATION), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_ALTERNATE_HANDLING) == int(::UCOL_ALTERNATE_HANDLING), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_CASE_FIRST) == int(::UCOL_CASE_FIRST), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_CASE_LEVEL) == int(::UCOL_CASE_LEVEL), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_NORMALIZATION_MODE) == int(::UCOL_NORMALIZATION_MODE), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_STRENGTH) == int(::UCOL_STRENGTH), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_HIRAGANA_QUATERNARY_MODE) == int(::UCOL_HIRAGANA_QUATERNARY_MODE), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_NUMERIC_COLLATION) == int(::UCOL_NUMERIC_COLLATION), "ICU attribute numbers");
static_assert(int(MurICU::UCOL_DEFAULT) == int(::UCOL_DEFAULT), "ICU value numbers");
static_assert(int(MurICU::UCOL_PRIMARY) == int(::UCOL_PRIMARY), "ICU value numbers");
static_assert(int(MurICU::UCOL_SECONDARY) == int(::UCOL_SECONDARY), "ICU value numbers");
static_assert(int(MurICU::UCOL_TERTIARY) == int(::UCOL_TERTIARY), "ICU value numbers");
static_assert(int(MurICU::UCOL_QUATERNARY) == int(::UCOL_QUATERNARY), "ICU value numbers");
static_assert(int(MurICU::UCOL_IDENTICAL) == int(::UCOL_IDENTICAL), "ICU value numbers");
static_assert(int(MurICU::UCOL_OFF) == int(::UCOL_OFF), "ICU value numbers");
static_assert(int(MurICU::UCOL_ON) == int(::UCOL_ON), "ICU value numbers");
static_assert(int(MurICU::UCOL_SHIFTED) == int(::UCOL_SHIFTED), "ICU value numbers");
static_assert(int(MurICU::UCOL_NON_IGNORABLE) == int(::UCOL_NON_IGNORABLE), "ICU value numbers");
static_assert(int(MurICU::UCOL_LOWER_FIRST) == int(::UCOL_LOWER_FIRST), "ICU value numbers");
static_assert(int(MurICU::UCOL_UPPER_FIRST) == int(::UCOL_UPPER_FIRST), "ICU value numbers");

namespace {

// Apostrophe and hyphen equal to U+0000, which is completely ignorable: word sort.
const char16_t* const s_wordSortRule = u"&\\u0000=''='-'";
// The one locale-specific tailoring of the program: "@" sorts right after "#", for this one
// locale name only.
const char16_t* const s_windowsEnglishRule = u"&'#'<'@'";
const char* const s_windowsEnglishLocale = "en_US_WIN";

// The digits equal to the last tertiary-ignorable position: ignored at every strength.
const char16_t* IgnoreDigitsRule()
{
    static const char16_t* const s_rule = CoreICUUtils::IsVersionAtLeast(68, 0)
        ? u"&[last tertiary ignorable]='0'='1'='2'='3'='4'='5'='6'='7'='8'='9'"
        // Before ICU 68 the reset on U+0000 still reached the ignorables.
        : u"&\\u0000='0'='1'='2'='3'='4'='5'='6'='7'='8'='9'";
    return s_rule;
}

int HexDigit(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

// Appends `rules` with each "\uXXXX" turned into its code unit. A NUL-terminated rule text
// can only spell U+0000 this way, and ICU's rule parser of today reads a backslash as
// quoting the one next character, so the escape is expanded before ICU sees it. Other
// backslashes pass through for ICU.
void AppendExpandingEscapes(std::u16string& out, const char16_t* rules)
{
    for (const char16_t* p = rules; *p != 0; ++p) {
        if (p[0] == u'\\' && p[1] == u'u') {
            int value = 0;
            int digits = 0;
            while (digits < 4) {
                const int d = HexDigit(p[2 + digits]);
                if (d < 0)
                    break;
                value = value * 16 + d;
                ++digits;
            }
            if (digits == 4) {
                out.push_back(char16_t(value));
                p += 5;
                continue;
            }
        }
        out.push_back(*p);
    }
}

// ucol_setAttribute with the collator's name as the context of a failure.
void SetAttribute(const char16_t* name, UCollator* collator, ICUColAttribute attr, ICUColAttributeValue value)
{
    MUR_LOGIC_ASSERT(collator, LogicAssert_0x4E01E9CE);
    UErrorCode status = U_ZERO_ERROR;
    ucol_setAttribute(collator, UColAttribute(attr), UColAttributeValue(value), &status);
    if (U_FAILURE(status))
        CoreICUUtils::ThrowICUException(status, TString(name));
}

size_t Length(const char16_t* text) { return std::char_traits<char16_t>::length(text); }

// A NUL-terminated empty result in `out`, growing it only when it has no room at all.
void SetEmpty(std::vector<char16_t>& out)
{
    if (out.empty())
        out.resize(1);
    out[0] = 0;
}

using CaseMapper = int32_t (*)(UChar*, int32_t, const UChar*, int32_t, const char*, UErrorCode*);

void MapCase(CaseMapper mapper, std::vector<char16_t>& out, const char16_t* text, const std::string& locale)
{
    if (text == nullptr) {
        SetEmpty(out);
        return;
    }
    const size_t length = Length(text);
    if (out.size() <= length)
        out.resize(length + 1);
    for (int round = 0; round < 2; ++round) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t capacity = int32_t(out.size());
        const int32_t result = mapper(out.data(), capacity, text, -1, locale.c_str(), &status);
        // A failure covers the overflow of a mapping that grew by more than one code unit
        // past the text's own room: the result is empty, on purpose.
        if (U_FAILURE(status)) {
            out[0] = 0;
            return;
        }
        // Within the capacity means with room for the NUL; a mapping that grew by exactly
        // one code unit fills the buffer and is mapped again into a larger one.
        if (result < capacity)
            return;
        out.resize(size_t(result) + 1);
    }
    out[0] = 0;
}

enum class TrimSide
{
    Left,
    Right,
    Both
};

void TrimWhitespace(std::vector<char16_t>& out, const char16_t* text, TrimSide side)
{
    if (text == nullptr) {
        SetEmpty(out);
        return;
    }
    const char16_t* begin = text;
    const char16_t* end = text + Length(text);
    // One code unit at a time: the white space of ICU is all in the BMP.
    if (side != TrimSide::Right)
        while (begin != end && u_isWhitespace(UChar32(*begin)))
            ++begin;
    if (side != TrimSide::Left)
        while (end != begin && u_isWhitespace(UChar32(end[-1])))
            --end;
    out.clear();
    out.insert(out.end(), begin, end);
    out.push_back(0);
}

} // namespace

//===--------------------------------------------------------------------===//
// Names
//===--------------------------------------------------------------------===//

CollationSpec CollationSpec::Parse(const TString& name)
{
    using MurICU::UCOL_DEFAULT;
    CollationSpec spec;
    TString language, region, variant, script;

    const std::vector<TString> parts = name.split(u'_', TString::KeepEmptyParts);
    for (auto i = parts.begin(); i != parts.end(); ++i) {
        if (i->isEmpty())
            continue;
        const char16_t value = i->length() > 1 ? (*i)[1] : u'\0';
        switch ((*i)[0]) {
        case u'A':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0xE687D8D8);
            spec.attributes.emplace_back(ICUCollator::AlternateHandling,
                                         value == u'S' ? MurICU::UCOL_SHIFTED : UCOL_DEFAULT);
            break;
        case u'E':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0xADB2FEC6);
            spec.attributes.emplace_back(ICUCollator::CaseLevel, value == u'O'   ? MurICU::UCOL_ON
                                                                 : value == u'X' ? MurICU::UCOL_OFF
                                                                                 : UCOL_DEFAULT);
            break;
        case u'H':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0x49944190);
            spec.attributes.emplace_back(ICUCollator::HiraganaQuaternaryMode,
                                         value == u'O' ? MurICU::UCOL_ON : UCOL_DEFAULT);
            break;
        case u'L':
            language = i->mid(1).toLower();
            break;
        case u'R':
            region = i->mid(1);
            break;
        case u'S':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0xB25D7AEC);
            if (value == u'I')
                spec.attributes.emplace_back(ICUCollator::Strength, MurICU::UCOL_IDENTICAL);
            else if (value == u'D')
                spec.attributes.emplace_back(ICUCollator::Strength, UCOL_DEFAULT);
            else {
                if (!((*i)[1] >= static_cast<char16_t>(u'1') && (*i)[1] <= static_cast<char16_t>(u'4')))
                    MUR_LOGIC_FAIL("(*i)[1] >= static_cast<TCodeUnit>(u'1') && (*i)[1] <= static_cast<TCodeUnit>(u'4')",
                                   LogicAssert_0xEC4A8574);
                spec.attributes.emplace_back(ICUCollator::Strength, ICUColAttributeValue(value - u'1'));
            }
            break;
        case u'V':
            variant = i->mid(1);
            break;
        case u'W':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0x5578E62F);
            spec.attributes.emplace_back(ICUCollator::WordSort, value == u'O' ? MurICU::UCOL_ON : MurICU::UCOL_OFF);
            break;
        case u'X':
            MUR_LOGIC_ASSERT(i->length() == 2, LogicAssert_0x3CCC1F54);
            spec.attributes.emplace_back(ICUCollator::IgnoreDigits, value == u'O' ? MurICU::UCOL_ON : MurICU::UCOL_OFF);
            break;
        case u'Z':
            script = i->mid(1);
            break;
        default:
            CoreICUUtils::ThrowICUException(TString(u"Unhandled specifier"), *i);
        }
    }

    // The region stands before the script, on purpose: that is the text ICU is given.
    TString locale = language;
    if (!region.isEmpty()) {
        MUR_LOGIC_ASSERT(!locale.isEmpty(), LogicAssert_0xCDB3EB65);
        locale += u'_' + region;
    }
    if (!script.isEmpty()) {
        MUR_LOGIC_ASSERT(!locale.isEmpty(), LogicAssert_0x9DDD9F39);
        locale += u'_' + script;
    }
    if (!variant.isEmpty()) {
        MUR_LOGIC_ASSERT(!locale.isEmpty(), LogicAssert_0x54A0A9A9);
        locale += u'_' + variant;
    }
    spec.locale = locale.toStdString();
    return spec;
}

void ICUCollator::Initialize()
{
    // The letter tables are constant data; what is left to do once is to settle the rule
    // text that depends on the version of ICU.
    (void)IgnoreDigitsRule();
}

lcid ICUCollator::LCIDFromLocale(std::string locale, unsigned int fallback)
{
    for (char& c : locale)
        if (c == '-')
            c = '_';
    const lcid id = uloc_getLCID(locale.c_str());
    return id != 0 ? id : fallback;
}

ICUCollator::Id ICUCollator::GetID(lcid id, unsigned int cmpFlags, unsigned int sortFlags)
{
    const bool wordSort = (sortFlags & 0x1000) == 0;
    return Id(MakeCollatorName(id, cmpFlags, wordSort), cmpFlags);
}

//===--------------------------------------------------------------------===//
// Construction
//===--------------------------------------------------------------------===//

ICUCollator::ICUCollator(CollatorPool* pool, const Id& id, const CollationSpec& spec)
    : m_id(id), m_pool(pool), m_locale(spec.locale), m_sortKey(1024, 0)
{
    UErrorCode status = U_ZERO_ERROR;
    m_pUCollator = ucol_open(m_locale.c_str(), &status);
    if (m_pUCollator == nullptr || U_FAILURE(status)) {
        if (m_pUCollator != nullptr)
            ucol_close(m_pUCollator);
        m_pUCollator = nullptr;
        CoreICUUtils::ThrowICUException(status, m_id.first);
    }
    try {
        for (const auto& attribute : spec.attributes)
            SetAttribute(attribute.first, attribute.second);
        if (m_locale == s_windowsEnglishLocale)
            AddRules(s_windowsEnglishRule);
    } catch (...) {
        ucol_close(m_pUCollator);
        m_pUCollator = nullptr;
        throw;
    }
}

ICUCollator::~ICUCollator()
{
    // The search points at the collator, so it goes first.
    if (m_search != nullptr)
        usearch_close(m_search);
    if (m_pUCollator != nullptr)
        ucol_close(m_pUCollator);
}

//===--------------------------------------------------------------------===//
// Attributes and rules
//===--------------------------------------------------------------------===//

void ICUCollator::GetAttribute(ICUColAttribute attr, ICUColAttributeValue& out) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xD78D8E46);
    UErrorCode status = U_ZERO_ERROR;
    const UColAttributeValue value = ucol_getAttribute(m_pUCollator, UColAttribute(attr), &status);
    if (U_FAILURE(status))
        CoreICUUtils::ThrowICUException(status, m_id.first);
    out = ICUColAttributeValue(value);
}

void ICUCollator::SetAttribute(ICUColAttribute attr, ICUColAttributeValue value)
{
    ::SetAttribute(m_id.first.constData(), m_pUCollator, attr, value);
}

void ICUCollator::SetAttribute(Attr attr, ICUColAttributeValue value)
{
    if (attr == IgnoreDigits) {
        if (value == MurICU::UCOL_ON)
            SetIgnoreDigits();
        return;
    }
    if (attr == WordSort) {
        if (value == MurICU::UCOL_ON)
            SetWordSort();
        return;
    }
    MUR_LOGIC_ASSERT(static_cast<MurICU::ICUColAttribute>(attr) < MurICU::UCOL_ATTRIBUTE_COUNT, LogicAssert_0xABF34D3D);
    SetAttribute(static_cast<ICUColAttribute>(attr), value);
}

void ICUCollator::SetWordSort()
{
    AddRules(s_wordSortRule);
}

void ICUCollator::SetIgnoreDigits()
{
    AddRules(IgnoreDigitsRule());
}

void ICUCollator::AddRules(const char16_t* rules)
{
    std::u16string text;
    int32_t ownLength = 0;
    const UChar* own = ucol_getRules(m_pUCollator, &ownLength);
    if (own != nullptr && ownLength > 0)
        text.assign(own, size_t(ownLength));
    if (rules != nullptr)
        AppendExpandingEscapes(text, rules);

    UParseError parseError;
    UErrorCode status = U_ZERO_ERROR;
    UCollator* fresh =
        ucol_openRules(text.data(), int32_t(text.size()), UCOL_DEFAULT, UCOL_DEFAULT, &parseError, &status);
    if (fresh == nullptr || U_FAILURE(status)) {
        if (fresh != nullptr)
            ucol_close(fresh);
        CoreICUUtils::ThrowICUException(status, m_id.first);
    }

    // Rules reset the attributes; carrying ICU's eight over keeps an earlier strength.
    try {
        for (int32_t a = 0; a < MurICU::UCOL_ATTRIBUTE_COUNT; ++a) {
            ICUColAttributeValue value;
            GetAttribute(ICUColAttribute(a), value);
            ::SetAttribute(m_id.first.constData(), fresh, ICUColAttribute(a), value);
        }
    } catch (...) {
        ucol_close(fresh);
        throw;
    }
    ucol_close(m_pUCollator);
    m_pUCollator = fresh;
}

//===--------------------------------------------------------------------===//
// Comparison and hashing
//===--------------------------------------------------------------------===//

int ICUCollator::Compare(const char16_t* a, const char16_t* b) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x5F14D391);
    return ucol_strcoll(m_pUCollator, a, -1, b, -1);
}

int ICUCollator::Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x5F14D391);
    return ucol_strcoll(m_pUCollator, a, aLength, b, bLength);
}

unsigned int ICUCollator::Hash(const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x2FCDB475);
    // Half the buffer is offered, so that a key that only just fits still leaves room to
    // grow into without a reallocation next time.
    int32_t capacity = int32_t(m_sortKey.size() / 2);
    int32_t result = ucol_getSortKey(m_pUCollator, text, -1, m_sortKey.data(), capacity);
    if (result > capacity) {
        m_sortKey.resize(size_t(result) * 2);
        capacity = int32_t(m_sortKey.size());
        result = ucol_getSortKey(m_pUCollator, text, -1, m_sortKey.data(), capacity);
    }
    if (m_sortKey.size() < size_t(result))
        CoreICUUtils::ThrowICUException(TString(u"error generating sort key"), m_id.first);
    return THash32(m_sortKey.data(), size_t(result), 0xDEADBEEFu);
}

bool ICUCollator::IsEquivalent(const Collator& other) const
{
    const auto* that = dynamic_cast<const ICUCollator*>(&other);
    if (that == nullptr)
        return false;
    if (m_pool == that->m_pool)
        return true;

    // Loose by design: a Windows-specific locale is equivalent to any locale it contains.
    if (m_locale != that->m_locale) {
        const bool thisWindows = m_pool != nullptr && m_pool->IsWindowsSpecific();
        const bool thatWindows = that->m_pool != nullptr && that->m_pool->IsWindowsSpecific();
        if (thisWindows) {
            if (m_locale.find(that->m_locale) == std::string::npos)
                return false;
        } else if (thatWindows) {
            if (that->m_locale.find(m_locale) == std::string::npos)
                return false;
        } else {
            return false;
        }
    }

    for (int32_t a = 0; a < MurICU::UCOL_ATTRIBUTE_COUNT; ++a) {
        ICUColAttributeValue mine, theirs;
        GetAttribute(ICUColAttribute(a), mine);
        that->GetAttribute(ICUColAttribute(a), theirs);
        if (mine != theirs)
            return false;
    }

    const bool thisWordSort = m_pool != nullptr && m_pool->HasWordSort();
    const bool thatWordSort = that->m_pool != nullptr && that->m_pool->HasWordSort();
    return thisWordSort == thatWordSort;
}

//===--------------------------------------------------------------------===//
// Searching
//===--------------------------------------------------------------------===//

UStringSearch* ICUCollator::OpenSearch(const char16_t* text, const char16_t* pattern) const
{
    UErrorCode status = U_ZERO_ERROR;
    const size_t patternLength = Length(pattern);
    if (m_search != nullptr && size_t(m_searchPattern.size()) == patternLength &&
        std::char_traits<char16_t>::compare(m_searchPattern.constData(), pattern, patternLength) == 0) {
        usearch_setText(m_search, text, -1, &status);
        return U_FAILURE(status) ? nullptr : m_search;
    }

    if (m_search != nullptr) {
        usearch_close(m_search);
        m_search = nullptr;
    }
    // ICU keeps a pointer to the pattern, so the search is opened on the collator's own copy.
    m_searchPattern = TStringCore(TString(pattern, int(patternLength)));
    m_search = usearch_openFromCollator(m_searchPattern.constData(), m_searchPattern.size(), text, -1,
                                        m_pUCollator, nullptr, &status);
    if (U_FAILURE(status)) {
        if (m_search != nullptr)
            usearch_close(m_search);
        m_search = nullptr;
        m_searchPattern = TStringCore();
        return nullptr;
    }
    return m_search;
}

int ICUCollator::Search(const char16_t* text, const char16_t* pattern) const
{
    return Search(text, pattern, 0, nullptr);
}

int ICUCollator::Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x8AB385B9);
    if (text == nullptr || pattern == nullptr || *pattern == 0)
        return -1;
    UStringSearch* search = OpenSearch(text, pattern);
    if (search == nullptr)
        return -1;
    UErrorCode status = U_ZERO_ERROR;
    const int position = start < 1 ? usearch_first(search, &status) : usearch_following(search, start, &status);
    if (U_FAILURE(status))
        return -1;
    if (matchLength != nullptr)
        *matchLength = usearch_getMatchedLength(search);
    return position;
}

void ICUCollator::Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                          const char16_t* replacement) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x80A3E088);
    if (text == nullptr || pattern == nullptr || replacement == nullptr || *pattern == 0)
        return;

    out.clear();
    const int textLength = int(Length(text));
    const size_t replacementLength = Length(replacement);
    int position = 0;

    if (UStringSearch* search = OpenSearch(text, pattern)) {
        UErrorCode status = U_ZERO_ERROR;
        int match = usearch_first(search, &status);
        while (U_SUCCESS(status) && match != USEARCH_DONE) {
            const int length = usearch_getMatchedLength(search);
            // A pattern of ignorable characters matches nothing at every position; walking
            // on would never end.
            if (length <= 0 || match < position)
                break;
            out.insert(out.end(), text + position, text + match);
            out.insert(out.end(), replacement, replacement + replacementLength);
            position = match + length;
            status = U_ZERO_ERROR;
            match = position > 0 ? usearch_next(search, &status) : usearch_first(search, &status);
        }
    }
    out.insert(out.end(), text + position, text + textLength);
    out.push_back(0);
}

bool ICUCollator::StartsWith(const char16_t* text, const char16_t* prefix) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xEA2FBB2E);
    if (text == nullptr || prefix == nullptr)
        return false;
    if (*prefix == 0)
        return true;
    const size_t prefixLength = Length(prefix);
    if (*text == 0 || Length(text) < prefixLength)
        return false;
    UStringSearch* search = OpenSearch(text, prefix);
    if (search == nullptr)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    const int position = usearch_preceding(search, int32_t(prefixLength), &status);
    return position == 0 && U_SUCCESS(status);
}

bool ICUCollator::EndsWith(const char16_t* text, const char16_t* suffix) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x549359F8);
    if (text == nullptr || suffix == nullptr)
        return false;
    if (*suffix == 0)
        return true;
    const size_t suffixLength = Length(suffix);
    const size_t textLength = Length(text);
    if (textLength == 0 || textLength < suffixLength)
        return false;
    UStringSearch* search = OpenSearch(text, suffix);
    if (search == nullptr)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    const int position = usearch_following(search, int32_t(textLength - suffixLength), &status);
    if (U_FAILURE(status) || position == USEARCH_DONE)
        return false;
    return size_t(position + usearch_getMatchedLength(search)) == textLength;
}

//===--------------------------------------------------------------------===//
// Case and trimming
//===--------------------------------------------------------------------===//

void ICUCollator::Lower(std::vector<char16_t>& out, const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0x843AAD7A);
    MapCase(&u_strToLower, out, text, m_locale);
}

void ICUCollator::Upper(std::vector<char16_t>& out, const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xB0CF0C15);
    MapCase(&u_strToUpper, out, text, m_locale);
}

void ICUCollator::LTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xAF6C523C);
    TrimWhitespace(out, text, TrimSide::Left);
}

void ICUCollator::RTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xDD0CFB72);
    TrimWhitespace(out, text, TrimSide::Right);
}

void ICUCollator::Trim(std::vector<char16_t>& out, const char16_t* text) const
{
    MUR_LOGIC_ASSERT(m_pUCollator, LogicAssert_0xEF708586);
    TrimWhitespace(out, text, TrimSide::Both);
}
