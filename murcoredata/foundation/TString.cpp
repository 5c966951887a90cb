#include "murcoredata/foundation/TString.h"

#include <QStringList>


#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

QString FromUtf16(const char16_t* text, int length)
{
    if (text == nullptr)
        return QString();
    if (length < 0)
        length = TString::length(text);
    return QString(reinterpret_cast<const QChar*>(text), length);
}

// Pads on the left for a positive width and on the right for a negative one, like QString::arg.
TString Pad(QString digits, int width, char16_t fill)
{
    const int w = width < 0 ? -width : width;
    if (digits.size() >= w)
        return TString(std::move(digits));
    const QString padding(w - digits.size(), QChar(fill));
    return width < 0 ? TString(digits + padding) : TString(padding + digits);
}

bool Contains(const TString& chars, char16_t c)
{
    for (char16_t x : chars)
        if (x == c)
            return true;
    return false;
}

} // namespace

TString::TString(const char16_t* text, int length) : TStringCore(FromUtf16(text, length)) {}

TString::TString(const char* text, int length) : TStringCore(text ? QString::fromUtf8(text, length) : QString()) {}

TString TString::number(int value, int base, int width, char16_t fill) { return Pad(QString::number(value, base), width, fill); }
TString TString::number(unsigned value, int base, int width, char16_t fill) { return Pad(QString::number(value, base), width, fill); }
TString TString::number(long value, int base, int width, char16_t fill) { return Pad(QString::number(value, base), width, fill); }
TString TString::number(unsigned long value, int base, int width, char16_t fill) { return Pad(QString::number(value, base), width, fill); }
TString TString::number(long long value, int base, int width, char16_t fill) { return Pad(QString::number(value, base), width, fill); }
TString TString::number(unsigned long long value, int base, int width, char16_t fill)
{
    return Pad(QString::number(value, base), width, fill);
}

// Qt writes negative zero without its sign; the text of a double must read back as the
// same double, so the sign is put back.
static QString DoubleText(double value, char format, int precision)
{
    QString text = QString::number(value, format, precision);
    if (value == 0.0 && std::signbit(value) && !text.startsWith(QLatin1Char('-')))
        text.prepend(QLatin1Char('-'));
    return text;
}

TString TString::number(double value, char format, int precision, int /*flag*/)
{
    return DoubleText(value, format, precision);
}

TString& TString::setNum(long long value, int base)
{
    m_str.setNum(value, base);
    return *this;
}

TString& TString::setNum(unsigned long long value, int base)
{
    m_str.setNum(value, base);
    return *this;
}

TString& TString::setNum(double value, char format, int precision, int /*flag*/)
{
    m_str = DoubleText(value, format, precision);
    return *this;
}

int TString::lengthInCodePoints() const
{
    int n = 0;
    const int size = m_str.size();
    const QChar* p = m_str.constData();
    for (int i = 0; i < size; ++i, ++n)
        if (p[i].isHighSurrogate() && i + 1 < size && p[i + 1].isLowSurrogate())
            ++i;
    return n;
}

int TString::length(const char16_t* text)
{
    if (text == nullptr)
        return 0;
    const char16_t* p = text;
    while (*p)
        ++p;
    return int(p - text);
}

TString& TString::append(const char16_t* text, int length)
{
    m_str.append(FromUtf16(text, length));
    return *this;
}

TString& TString::append(const char* utf8, int length)
{
    if (utf8 != nullptr)
        m_str.append(QString::fromUtf8(utf8, length));
    return *this;
}

TString& TString::Append(const TString& text, int count)
{
    m_str.append(count < 0 ? text.m_str : text.m_str.left(count));
    return *this;
}

TString& TString::removeAll(const char16_t* text, int length, CaseSensitivity cs)
{
    const QString what = FromUtf16(text, length);
    if (!what.isEmpty())
        m_str.remove(what, Qt::CaseSensitivity(cs));
    return *this;
}

TString& TString::trimLeft()
{
    int i = 0;
    while (i < m_str.size() && m_str.at(i).isSpace())
        ++i;
    m_str.remove(0, i);
    return *this;
}

TString& TString::trimLeft(char16_t c)
{
    int i = 0;
    while (i < m_str.size() && m_str.at(i).unicode() == c)
        ++i;
    m_str.remove(0, i);
    return *this;
}

TString& TString::trimRight()
{
    int n = m_str.size();
    while (n > 0 && m_str.at(n - 1).isSpace())
        --n;
    m_str.truncate(n);
    return *this;
}

TString& TString::trimRight(char16_t c)
{
    int n = m_str.size();
    while (n > 0 && m_str.at(n - 1).unicode() == c)
        --n;
    m_str.truncate(n);
    return *this;
}

int TString::findOneOf(const TString& chars, int from) const
{
    for (int i = std::max(from, 0); i < size(); ++i)
        if (Contains(chars, m_str.at(i).unicode()))
            return i;
    return -1;
}

int TString::findOneNotOf(const TString& chars, int from) const
{
    for (int i = std::max(from, 0); i < size(); ++i)
        if (!Contains(chars, m_str.at(i).unicode()))
            return i;
    return -1;
}

int TString::CollateNoCase(const char16_t* other) const
{
    return QString::localeAwareCompare(m_str.toCaseFolded(), FromUtf16(other, -1).toCaseFolded());
}

int TString::compareN(const TString& a, const TString& b, int n, CaseSensitivity cs)
{
    if (n < 0)
        return a.compare(b, cs);
    return QStringRef(&a.m_str, 0, std::min(n, a.size())).compare(QStringRef(&b.m_str, 0, std::min(n, b.size())),
                                                                     Qt::CaseSensitivity(cs));
}

std::string TString::toLocal8Bit(bool* ok) const
{
    const QByteArray bytes = m_str.toLocal8Bit();
    if (ok != nullptr)
        *ok = QString::fromLocal8Bit(bytes) == m_str;
    return std::string(bytes.constData(), size_t(bytes.size()));
}

TStringList TString::split(const TString& separator, SplitBehavior behavior, CaseSensitivity cs) const
{
    const QStringList parts = m_str.split(separator.m_str, Qt::SplitBehavior(Qt::SplitBehaviorFlags(behavior)),
                                          Qt::CaseSensitivity(cs));
    return TStringList(parts.begin(), parts.end());
}

TStringList TString::split(char16_t separator, SplitBehavior behavior, CaseSensitivity cs) const
{
    const QStringList parts = m_str.split(QChar(separator), Qt::SplitBehavior(Qt::SplitBehaviorFlags(behavior)),
                                          Qt::CaseSensitivity(cs));
    return TStringList(parts.begin(), parts.end());
}

std::ostream& operator<<(std::ostream& out, const TString& text)
{
    return out << text.toStdString();
}
