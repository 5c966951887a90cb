#include "murcoredata/data/Collation.h"

#include "murcoredata/data/BinaryCollator.h"
#include "murcoredata/data/CollatorName.h"
#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/data/ICUCollatorPool.h"

#include <string_view>

//===--------------------------------------------------------------------===//
// Construction
//===--------------------------------------------------------------------===//

CollatorPool* Collation::GetPool(const char16_t* name, unsigned int cmpFlags)
{
    // Exact text only: "BINARY" is an ICU name (and an unreadable one).
    if (std::u16string_view(name) == CollationType::s_binary)
        return BinaryCollatorPool::Singleton();
    return ICUCollatorPool::Factory(ICUCollator::Id(TString(name), cmpFlags));
}

Collation::Collation() : m_pool(GetPool(CollationType::s_unknown, 0))
{
    m_name = m_pool->GetName();
}

Collation::Collation(const char16_t* name, unsigned short charset)
    : m_charsetId(charset), m_pool(GetPool(name != nullptr ? name : CollationType::s_unknown, 0))
{
    m_name = m_pool->GetName();
}

Collation::Collation(lcid id, unsigned int cmpFlags, unsigned short charset) : m_charsetId(charset)
{
    if (id == LocaleIds::Binary) {
        m_pool = BinaryCollatorPool::Singleton();
    } else {
        // 4096 sets bit 0x1000 of the sort flags: no word sort.
        m_pool = ICUCollatorPool::Factory(ICUCollator::GetID(id, cmpFlags, 4096));
    }
    m_name = m_pool->GetName();
}

Collation::Collation(const TString& name, unsigned short charset, CollatorPool* pool)
    : m_name(name), m_charsetId(charset), m_pool(pool)
{
}

Collation::Collation(std::string locale, bool ignoreDigits, CaseOpt caseOpt, AccentOpt accentOpt, SortOpt sortOpt,
                     PunctOpt punctOpt, unsigned short charset)
    : m_charsetId(charset)
{
    for (char& c : locale)
        if (c == '-')
            c = '_';
    m_name = MakeICUCollatorName(locale, ignoreDigits, caseOpt, accentOpt, sortOpt, punctOpt);
    m_pool = GetPool(m_name.constData(), 0);
}

Collation Collation::Create(const char16_t* name, unsigned int cmpFlags, unsigned short charset)
{
    CollatorPool* pool = GetPool(name != nullptr ? name : CollationType::s_unknown, cmpFlags);
    return Collation(pool->GetName(), charset, pool);
}

//===--------------------------------------------------------------------===//
// Forwarding
//===--------------------------------------------------------------------===//

int Collation::Search(const char16_t* text, const char16_t* pattern) const
{
    return GetCollator()->Search(text, pattern);
}

int Collation::Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const
{
    return GetCollator()->Search(text, pattern, start, matchLength);
}

void Collation::Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                        const char16_t* replacement) const
{
    GetCollator()->Replace(out, text, pattern, replacement);
}

bool Collation::StartsWith(const char16_t* text, const char16_t* prefix) const
{
    return GetCollator()->StartsWith(text, prefix);
}

bool Collation::EndsWith(const char16_t* text, const char16_t* suffix) const
{
    return GetCollator()->EndsWith(text, suffix);
}

void Collation::Lower(std::vector<char16_t>& out, const char16_t* text) const
{
    GetCollator()->Lower(out, text);
}

void Collation::Upper(std::vector<char16_t>& out, const char16_t* text) const
{
    GetCollator()->Upper(out, text);
}

void Collation::LTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    GetCollator()->LTrim(out, text);
}

void Collation::RTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    GetCollator()->RTrim(out, text);
}

void Collation::Trim(std::vector<char16_t>& out, const char16_t* text) const
{
    GetCollator()->Trim(out, text);
}

//===--------------------------------------------------------------------===//
// Identity and derived collations
//===--------------------------------------------------------------------===//

bool Collation::IsEquivalent(const Collation& other) const
{
    if (m_pool == other.m_pool)
        return true;
    const CollatorRef mine(m_pool);
    const CollatorRef theirs(other.m_pool);
    return mine->IsEquivalent(*theirs);
}

bool Equivalent(const Collation& a, const Collation& b)
{
    return a.IsEquivalent(b);
}

void Collation::UseWordSort(bool on)
{
    if (m_pool->HasWordSort() == on)
        return;
    m_hashCode.store(0, std::memory_order_relaxed);
    const TString name = ICUCollator::SetWordSort(m_name.constData(), on);
    m_pool = GetPool(name.constData(), m_pool->GetCmpFlags());
    m_name = m_pool->GetName();
}

Collation Collation::Clone(bool keepWindowsSpecific) const
{
    cmpFlags flags = m_pool->GetCmpFlags();
    if (!keepWindowsSpecific)
        flags &= ~CmpFlags::WindowsSpecific;
    return Collation(m_pool->GetLCID(), flags, m_charsetId);
}

Collation Collation::CopyWithCharset(unsigned short charset) const
{
    Collation copy(*this);
    copy.m_charsetId = charset;
    return copy;
}

TString Collation::GetDescription() const
{
    return TString(TFormatString(u"charset=0x%1 ").arg(m_charsetId, 0, 16)) + GetLocale() + TString(u" (") +
           m_name + TString(u")");
}

lcid Collation::LCIDFromLocale(const TString& locale, unsigned int fallback)
{
    if (locale == CollationType::s_binary || locale == u"C")
        return LocaleIds::Binary;
    return ICUCollator::LCIDFromLocale(locale.toLocal8Bit(), fallback);
}

//===--------------------------------------------------------------------===//
// The well-known collations
//===--------------------------------------------------------------------===//

const Collation& GetUnknownCollation()
{
    static const Collation* const s_unknown = new Collation();
    return *s_unknown;
}

const Collation& GetBinaryCollation()
{
    static const Collation* const s_binary = new Collation(CollationType::s_binary, CollationType::s_unknownCharset);
    return *s_binary;
}
