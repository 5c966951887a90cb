#include "murcoredata/data/BinaryCollator.h"

#include <cwctype>
#include <string_view>

namespace {

using View = std::u16string_view;

View ViewOf(const char16_t* text)
{
    return text != nullptr ? View(text) : View();
}

// A counted text; a negative length means NUL-terminated.
View ViewOf(const char16_t* text, int length)
{
    if (text == nullptr)
        return View();
    return length < 0 ? View(text) : View(text, size_t(length));
}

int CompareUnits(View a, View b)
{
    const int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

// The C locale's table for ASCII, the current C locale's wide classes beyond.
char16_t ToLower(char16_t c)
{
    if (c < 128)
        return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    return std::iswupper(wint_t(c)) ? char16_t(std::towlower(wint_t(c))) : c;
}

char16_t ToUpper(char16_t c)
{
    if (c < 128)
        return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c;
    return std::iswlower(wint_t(c)) ? char16_t(std::towupper(wint_t(c))) : c;
}

bool IsSpace(char16_t c)
{
    if (c < 128)
        return c == u' ' || (c >= u'\t' && c <= u'\r');
    return std::iswspace(wint_t(c)) != 0;
}

// `out` grows to the text's length plus its NUL if it is smaller, then receives the
// mapped text and a NUL at the index of the length.
template <typename Map>
void MapUnits(std::vector<char16_t>& out, View text, Map map)
{
    if (out.size() < text.size() + 1)
        out.resize(text.size() + 1);
    for (size_t i = 0; i < text.size(); ++i)
        out[i] = map(text[i]);
    out[text.size()] = 0;
}

void TrimUnits(std::vector<char16_t>& out, View text, bool left, bool right)
{
    size_t begin = 0;
    size_t end = text.size();
    if (left)
        while (begin < end && IsSpace(text[begin]))
            ++begin;
    if (right)
        while (end > begin && IsSpace(text[end - 1]))
            --end;
    MapUnits(out, text.substr(begin, end - begin), [](char16_t c) { return c; });
}

} // namespace

int BinaryCollator::Compare(const char16_t* a, const char16_t* b) const
{
    return CompareUnits(ViewOf(a), ViewOf(b));
}

int BinaryCollator::Compare(const char16_t* a, int aLength, const char16_t* b, int bLength) const
{
    return CompareUnits(ViewOf(a, aLength), ViewOf(b, bLength));
}

int BinaryCollator::Search(const char16_t* text, const char16_t* pattern) const
{
    return Search(text, pattern, 0, nullptr);
}

int BinaryCollator::Search(const char16_t* text, const char16_t* pattern, int start, int* matchLength) const
{
    const View p = ViewOf(pattern);
    if (p.empty())
        return -1;
    const View t = ViewOf(text);
    const size_t found = t.find(p, start > 0 ? size_t(start) : 0);
    if (found == View::npos)
        return -1;
    if (matchLength != nullptr)
        *matchLength = int(p.size());
    return int(found);
}

void BinaryCollator::Replace(std::vector<char16_t>& out, const char16_t* text, const char16_t* pattern,
                             const char16_t* replacement) const
{
    out.clear();
    const View p = ViewOf(pattern);
    if (p.empty())
        return;
    const View t = ViewOf(text);
    const View r = ViewOf(replacement);
    size_t position = 0;
    for (size_t found = t.find(p); found != View::npos; found = t.find(p, position)) {
        out.insert(out.end(), t.begin() + position, t.begin() + found);
        out.insert(out.end(), r.begin(), r.end());
        position = found + p.size();
    }
    out.insert(out.end(), t.begin() + position, t.end());
    out.push_back(0);
}

bool BinaryCollator::StartsWith(const char16_t* text, const char16_t* prefix) const
{
    const View t = ViewOf(text);
    const View p = ViewOf(prefix);
    return t.substr(0, p.size()) == p;
}

bool BinaryCollator::EndsWith(const char16_t* text, const char16_t* suffix) const
{
    const View t = ViewOf(text);
    const View s = ViewOf(suffix);
    return t.size() >= s.size() && t.substr(t.size() - s.size()) == s;
}

void BinaryCollator::Lower(std::vector<char16_t>& out, const char16_t* text) const
{
    MapUnits(out, ViewOf(text), &ToLower);
}

void BinaryCollator::Upper(std::vector<char16_t>& out, const char16_t* text) const
{
    MapUnits(out, ViewOf(text), &ToUpper);
}

void BinaryCollator::LTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    TrimUnits(out, ViewOf(text), true, false);
}

void BinaryCollator::RTrim(std::vector<char16_t>& out, const char16_t* text) const
{
    TrimUnits(out, ViewOf(text), false, true);
}

void BinaryCollator::Trim(std::vector<char16_t>& out, const char16_t* text) const
{
    TrimUnits(out, ViewOf(text), true, true);
}

unsigned int BinaryCollator::Hash(const char16_t* text) const
{
    const View t = ViewOf(text);
    return THash32(t.data(), t.size() * sizeof(char16_t), 1u);
}

bool BinaryCollator::IsEquivalent(const Collator& other) const
{
    return dynamic_cast<const BinaryCollator*>(&other) != nullptr;
}

BinaryCollatorPool::BinaryCollatorPool() : m_name(CollationType::s_binary), m_localeString(u"BINARY") {}

BinaryCollatorPool* BinaryCollatorPool::Singleton()
{
    static BinaryCollatorPool* const s_pool = new BinaryCollatorPool();
    return s_pool;
}
