#pragma once

#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/THash.h"

#include <QString>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

class TString;
using TStringList = std::vector<TString>;

/// The storage of a string: an implicitly shared UTF-16 buffer. Copying costs one atomic
/// increment; the buffer is copied only when a shared copy is written to.
class MURCOREDATA_EXPORT TStringCore
{
public:
    TStringCore() = default;
    explicit TStringCore(const QString& text) : m_str(text) {}
    explicit TStringCore(QString&& text) noexcept : m_str(std::move(text)) {}

    const QString& toQString() const { return m_str; }
    const char16_t* constData() const { return reinterpret_cast<const char16_t*>(m_str.utf16()); }
    int size() const { return m_str.size(); }

protected:
    QString m_str;
};

/// A value string of `char16_t` code units with `int` lengths and positions.
///
/// Conventions that callers rely on: a length of -1 means "up to the terminating zero",
/// a count of -1 in `mid` means "to the end", and every search yields -1 when nothing is
/// found. Comparisons are by code unit unless a `CaseSensitivity` says otherwise.
class MURCOREDATA_EXPORT TString : public TStringCore
{
public:
    enum CaseSensitivity { CaseInsensitive = 0, CaseSensitive = 1 };
    enum SplitBehavior { KeepEmptyParts = 0, SkipEmptyParts = 1 };

    // --- Make
    TString() = default;
    TString(const char16_t* text, int length = -1);
    /// From UTF-8 (ASCII in practice).
    TString(const char* text, int length = -1);
    TString(char16_t c, int count) : TStringCore(QString(count, QChar(c))) {}
    TString(char c, int count) : TStringCore(QString(count, QLatin1Char(c))) {}
    TString(TStringCore&& core) noexcept : TStringCore(std::move(core)) {}
    TString(const TStringCore& core) : TStringCore(core) {}
    TString(const QString& text) : TStringCore(text) {}
    TString(QString&& text) noexcept : TStringCore(std::move(text)) {}
    TString(const TString&) = default;
    TString(TString&&) noexcept = default;
    TString& operator=(const TString&) = default;
    TString& operator=(TString&&) noexcept = default;
    TString& operator=(const char16_t* text) { return *this = TString(text); }
    TString& operator=(const QString& text) { m_str = text; return *this; }

    static TString fromLatin1(const char* text, int length = -1) { return QString::fromLatin1(text, length); }
    static TString fromLocal8Bit(const char* text, int length = -1) { return QString::fromLocal8Bit(text, length); }
    static TString fromUtf8(const char* text, int length = -1) { return QString::fromUtf8(text, length); }
    static TString fromUtf16(const char16_t* text, int length = -1) { return TString(text, length); }
    static TString fromStdString(const std::string& text) { return QString::fromStdString(text); }
    static TString fromStdWString(const std::wstring& text) { return QString::fromStdWString(text); }
    static TString fromStdU16String(const std::u16string& text) { return QString::fromStdU16String(text); }

    // --- Numbers to text. `width` pads on the left with `fill`; a negative width pads on the right.
    static TString number(int value, int base = 10, int width = 0, char16_t fill = u' ');
    static TString number(unsigned value, int base = 10, int width = 0, char16_t fill = u' ');
    static TString number(long value, int base = 10, int width = 0, char16_t fill = u' ');
    static TString number(unsigned long value, int base = 10, int width = 0, char16_t fill = u' ');
    static TString number(long long value, int base = 10, int width = 0, char16_t fill = u' ');
    static TString number(unsigned long long value, int base = 10, int width = 0, char16_t fill = u' ');
    /// `format` is one of "eEfgG"; with 'g' and precision 17 a double round-trips. `flag` is
    /// reserved for callers that ask for a trailing-zero policy; it is ignored here.
    static TString number(double value, char format = 'g', int precision = 6, int flag = 0);
    TString& setNum(long long value, int base = 10);
    TString& setNum(unsigned long long value, int base = 10);
    TString& setNum(double value, char format = 'g', int precision = 6, int flag = 0);

    // --- Text to numbers; `ok` may be null. Surrounding white space is accepted.
    int toInt(bool* ok = nullptr, int base = 10) const { return m_str.toInt(ok, base); }
    unsigned toUInt(bool* ok = nullptr, int base = 10) const { return m_str.toUInt(ok, base); }
    long long toLongLong(bool* ok = nullptr, int base = 10) const { return m_str.toLongLong(ok, base); }
    double toDouble(bool* ok = nullptr) const { return m_str.toDouble(ok); }

    // --- Size
    int size() const { return m_str.size(); }
    int length() const { return m_str.size(); }
    int GetLength() const { return m_str.size(); }
    bool empty() const { return m_str.isEmpty(); }
    bool isEmpty() const { return m_str.isEmpty(); }
    bool IsEmpty() const { return m_str.isEmpty(); }
    /// Two bytes a code unit.
    int lengthInBytes() const { return m_str.size() * 2; }
    /// Code points: a well-formed surrogate pair counts once, a lone surrogate once.
    int lengthInCodePoints() const;
    static int length(const char16_t* text);
    void resize(int size) { m_str.resize(size); }
    void reserve(int size) { m_str.reserve(size); }
    void truncate(int position) { m_str.truncate(position); }
    void clear() { m_str.clear(); }

    // --- Access. The pointer of `constData` stays valid until the string is changed.
    char16_t* data() { return reinterpret_cast<char16_t*>(m_str.data()); }
    const char16_t* data() const { return constData(); }
    const char16_t* constData() const { return reinterpret_cast<const char16_t*>(m_str.utf16()); }
    const char16_t* GetString() const { return constData(); }
    operator const char16_t*() const { return constData(); }
    char16_t operator[](int i) const { return m_str.at(i).unicode(); }
    char16_t& operator[](int i) { return reinterpret_cast<char16_t*>(m_str.data())[i]; }
    const char16_t* begin() const { return constData(); }
    const char16_t* end() const { return constData() + m_str.size(); }
    const char16_t* cbegin() const { return begin(); }
    const char16_t* cend() const { return end(); }
    char16_t* begin() { return data(); }
    char16_t* end() { return data() + m_str.size(); }

    // --- Edit (in place)
    TString& append(char16_t c) { m_str.append(QChar(c)); return *this; }
    TString& append(const char16_t* text, int length = -1);
    TString& append(const char* utf8, int length = -1);
    TString& append(const TString& text) { m_str.append(text.m_str); return *this; }
    /// Appends the first `count` code units of `text` (all of it for -1).
    TString& Append(const TString& text, int count);
    void push_back(char16_t c) { m_str.append(QChar(c)); }
    void push_front(char16_t c) { m_str.prepend(QChar(c)); }
    TString& prepend(const TString& text) { m_str.prepend(text.m_str); return *this; }
    TString& prepend(char16_t c) { m_str.prepend(QChar(c)); return *this; }
    TString& operator+=(const TString& text) { m_str.append(text.m_str); return *this; }
    TString& operator+=(char16_t c) { m_str.append(QChar(c)); return *this; }
    TString& operator+=(const char16_t* text) { return append(text); }
    TString& removeAt(int position, int count = 1) { m_str.remove(position, count); return *this; }
    TString& removeAll(char16_t c) { m_str.remove(QChar(c)); return *this; }
    TString& removeAll(const char16_t* text, int length, CaseSensitivity cs = CaseSensitive);
    TString& replace(char16_t before, char16_t after) { m_str.replace(QChar(before), QChar(after)); return *this; }
    TString& replace(char16_t before, const TString& after) { m_str.replace(QChar(before), after.m_str); return *this; }
    TString& replace(const TString& before, const TString& after, CaseSensitivity cs = CaseSensitive)
    {
        m_str.replace(before.m_str, after.m_str, Qt::CaseSensitivity(cs));
        return *this;
    }
    TString& Replace(const char16_t* before, const char16_t* after) { return replace(TString(before), TString(after)); }

    // --- Trim: white space, or a given character, in place; `trimmed` copies.
    TString& trim() { m_str = m_str.trimmed(); return *this; }
    TString& trim(char c) { return trim(char16_t(static_cast<unsigned char>(c))); }
    TString& trim(char16_t c) { trimRight(c); return trimLeft(c); }
    TString& trimLeft();
    TString& trimLeft(char c) { return trimLeft(char16_t(static_cast<unsigned char>(c))); }
    TString& trimLeft(char16_t c);
    TString& trimRight();
    TString& trimRight(char c) { return trimRight(char16_t(static_cast<unsigned char>(c))); }
    TString& trimRight(char16_t c);
    TString trimmed() const { return m_str.trimmed(); }

    // --- Slice. Out-of-range arguments are clamped; a negative `n` in `left`/`right` means all.
    TString left(int n) const { return m_str.left(n); }
    TString right(int n) const { return m_str.right(n); }
    TString mid(int start, int n = -1) const { return m_str.mid(start, n); }

    // --- Search; not found yields -1.
    int indexOf(char16_t c, int from = 0) const { return m_str.indexOf(QChar(c), from); }
    int indexOf(const TString& text, int from = 0, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.indexOf(text.m_str, from, Qt::CaseSensitivity(cs));
    }
    int lastIndexOf(char16_t c, int from = -1) const { return m_str.lastIndexOf(QChar(c), from); }
    int lastIndexOf(const TString& text, int from = -1, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.lastIndexOf(text.m_str, from, Qt::CaseSensitivity(cs));
    }
    int ReverseFind(char16_t c) const { return m_str.lastIndexOf(QChar(c)); }
    /// First position at or after `from` whose character is one of `chars`.
    int findOneOf(const TString& chars, int from = 0) const;
    /// First position at or after `from` whose character is none of `chars`.
    int findOneNotOf(const TString& chars, int from = 0) const;
    bool contains(char16_t c) const { return m_str.contains(QChar(c)); }
    bool contains(const TString& text, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.contains(text.m_str, Qt::CaseSensitivity(cs));
    }
    bool startsWith(const TString& text, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.startsWith(text.m_str, Qt::CaseSensitivity(cs));
    }
    bool startsWith(char16_t c) const { return m_str.startsWith(QChar(c)); }
    bool endsWith(const TString& text, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.endsWith(text.m_str, Qt::CaseSensitivity(cs));
    }
    bool endsWith(char16_t c) const { return m_str.endsWith(QChar(c)); }
    int count(char16_t c) const { return m_str.count(QChar(c)); }
    static int findStr(const TString& text, const TString& pattern, int from = 0, CaseSensitivity cs = CaseSensitive)
    {
        return text.indexOf(pattern, from, cs);
    }

    // --- Compare: negative, zero or positive.
    int Compare(const TString& other) const { return m_str.compare(other.m_str, Qt::CaseSensitive); }
    int CompareNoCase(const TString& other) const { return m_str.compare(other.m_str, Qt::CaseInsensitive); }
    int CollateNoCase(const char16_t* other) const;
    int compare(const TString& other, CaseSensitivity cs = CaseSensitive) const
    {
        return m_str.compare(other.m_str, Qt::CaseSensitivity(cs));
    }
    int compare(const char16_t* other, CaseSensitivity cs = CaseSensitive) const { return compare(TString(other), cs); }
    static int compare(const TString& a, const TString& b, CaseSensitivity cs = CaseSensitive) { return a.compare(b, cs); }
    /// Compares at most the first `n` code units of each.
    static int compareN(const TString& a, const TString& b, int n, CaseSensitivity cs = CaseSensitive);

    // --- Case and conversions
    TString toLower() const { return m_str.toLower(); }
    TString toUpper() const { return m_str.toUpper(); }
    const QString& toQString() const { return m_str; }
    /// UTF-8.
    std::string toStdString() const { return m_str.toStdString(); }
    std::u16string toStdU16String() const { return m_str.toStdU16String(); }
    std::wstring toStdWString() const { return m_str.toStdWString(); }
    /// The text in the local 8-bit encoding; `ok` says whether every character survived.
    std::string toLocal8Bit(bool* ok = nullptr) const;

    // --- Split
    TStringList split(const TString& separator, SplitBehavior behavior = KeepEmptyParts,
                      CaseSensitivity cs = CaseSensitive) const;
    TStringList split(char16_t separator, SplitBehavior behavior = KeepEmptyParts,
                      CaseSensitivity cs = CaseSensitive) const;

    friend bool operator==(const TString& a, const TString& b) { return a.m_str == b.m_str; }
    friend bool operator!=(const TString& a, const TString& b) { return a.m_str != b.m_str; }
    friend bool operator<(const TString& a, const TString& b) { return a.m_str < b.m_str; }
    friend bool operator>(const TString& a, const TString& b) { return b.m_str < a.m_str; }
    friend bool operator<=(const TString& a, const TString& b) { return !(b.m_str < a.m_str); }
    friend bool operator>=(const TString& a, const TString& b) { return !(a.m_str < b.m_str); }
    friend bool operator==(const TString& a, const char16_t* b) { return a == TString(b); }
    friend bool operator!=(const TString& a, const char16_t* b) { return !(a == TString(b)); }
    friend bool operator==(const char16_t* a, const TString& b) { return TString(a) == b; }
    friend bool operator!=(const char16_t* a, const TString& b) { return !(TString(a) == b); }
};

inline TString operator+(const TString& a, const TString& b) { return TString(a.toQString() + b.toQString()); }
inline TString operator+(const TString& a, char16_t b) { return TString(a.toQString() + QChar(b)); }
inline TString operator+(char16_t a, const TString& b) { return TString(QChar(a) + b.toQString()); }
inline TString operator+(const TString& a, const char16_t* b) { return a + TString(b); }
inline TString operator+(const char16_t* a, const TString& b) { return TString(a) + b; }

/// Writes the UTF-8 form.
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const TString& text);

namespace std {
/// The hash of the code units as bytes: THash32 with the seed 0xDEADBEEF.
template <>
struct hash<TString>
{
    size_t operator()(const TString& text) const noexcept
    {
        return THash32(text.constData(), size_t(text.lengthInBytes()), 0xDEADBEEFu);
    }
};
} // namespace std
