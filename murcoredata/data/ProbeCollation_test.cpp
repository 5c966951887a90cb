#include "murcoredata/data/ProbeCollation_test.h"

#include <algorithm>
#include <string>
#include <vector>

namespace TestSupport {

namespace {

char16_t FoldAscii(char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c - u'A' + u'a') : c; }

// ASCII letters without case; the hash is the length, so "ab" and "cd" collide on purpose.
// Stateless, so one object may serve every thread.
class ProbeCollator final : public Collator
{
public:
    explicit ProbeCollator(int family) : m_family(family) {}

    int Compare(const char16_t* a, const char16_t* b) const override { return Compare(a, -1, b, -1); }
    int Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const override
    {
        ++GetProbeCounters().compares;
        const size_t n = aLength < 0 ? std::char_traits<char16_t>::length(a) : size_t(aLength);
        const size_t m = bLength < 0 ? std::char_traits<char16_t>::length(b) : size_t(bLength);
        for (size_t i = 0; i < n && i < m; ++i) {
            const char16_t x = FoldAscii(a[i]);
            const char16_t y = FoldAscii(b[i]);
            if (x != y)
                return x < y ? -1 : 1;
        }
        return n == m ? 0 : (n < m ? -1 : 1);
    }
    int Search(const char16_t*, const char16_t*) const override { return -1; }
    int Search(const char16_t*, const char16_t*, int, int*) const override { return -1; }
    void Replace(std::vector<char16_t>&, const char16_t*, const char16_t*, const char16_t*) const override {}
    bool StartsWith(const char16_t*, const char16_t*) const override { return false; }
    bool EndsWith(const char16_t*, const char16_t*) const override { return false; }
    void Lower(std::vector<char16_t>&, const char16_t*) const override {}
    void Upper(std::vector<char16_t>&, const char16_t*) const override {}
    void LTrim(std::vector<char16_t>&, const char16_t*) const override {}
    void RTrim(std::vector<char16_t>&, const char16_t*) const override {}
    void Trim(std::vector<char16_t>&, const char16_t*) const override {}
    unsigned int Hash(const char16_t* text) const override
    {
        ++GetProbeCounters().hashes;
        return unsigned(std::char_traits<char16_t>::length(text));
    }
    bool IsEquivalent(const Collator& other) const override
    {
        const auto* that = dynamic_cast<const ProbeCollator*>(&other);
        return that != nullptr && that->m_family == m_family;
    }

private:
    int m_family;
};

class ProbePool final : public CollatorPool
{
public:
    explicit ProbePool(int family) : m_collator(family) {}

    Collator* AcquireCollator() override { return &m_collator; }
    const TString& GetName() const override { return m_name; }
    bool IsCaseSensitive() const override { return false; }
    const TString& GetLanguage() const override { return m_empty; }
    lcid GetLCID() const override { return 1024; }
    const TString& GetLocaleString() const override { return m_empty; }
    const TString& GetDisplayCountry() const override { return m_empty; }
    const TString& GetDisplayLanguage() const override { return m_empty; }
    cmpFlags GetCmpFlags() const override { return CmpFlags::IgnoreCase; }
    bool HasWordSort() const override { return false; }
    bool IsWindowsSpecific() const override { return false; }

private:
    ProbeCollator m_collator;
    TString m_name{u"probe"};
    TString m_empty;
};

// Pools live until the process ends, as the real ones do.
ProbePool& GetPool(int family)
{
    static ProbePool* const s_first = new ProbePool(1);
    static ProbePool* const s_second = new ProbePool(2);
    return family == 1 ? *s_first : *s_second;
}

} // namespace

ProbeCounters& GetProbeCounters()
{
    static ProbeCounters s_counters;
    return s_counters;
}

Collation MakeProbeCollation(const TString& name, unsigned short charset)
{
    return Collation(name, charset, &GetPool(1));
}

Collation MakeOtherProbeCollation() { return Collation(TString(u"probe2"), 0, &GetPool(2)); }

} // namespace TestSupport
