#include "murcoredata/foundation/TFormatString.h"

namespace {

// True if the text holds a '%' followed by a digit. QString::arg warns on standard error
// when nothing is left to fill; callers may legitimately pass more values than placeholders.
bool HasPlaceholder(const QString& text)
{
    const int n = text.size();
    for (int i = 0; i + 1 < n; ++i)
        if (text.at(i) == QLatin1Char('%') && text.at(i + 1).isDigit())
            return true;
    return false;
}

} // namespace

#define MUR_FORMAT_ARG(expr)                                   \
    if (!HasPlaceholder(m_text.toQString()))                   \
        return *this;                                          \
    return TFormatStringCore(TString(m_text.toQString().expr))

TFormatStringCore TFormatStringCore::arg(const TString& value, int width, char16_t fill) const
{
    MUR_FORMAT_ARG(arg(value.toQString(), width, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(int value, int width, int base, char16_t fill) const
{
    MUR_FORMAT_ARG(arg(value, width, base, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(unsigned value, int width, int base, char16_t fill) const
{
    MUR_FORMAT_ARG(arg(value, width, base, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(long long value, int width, int base, char16_t fill) const
{
    MUR_FORMAT_ARG(arg(qlonglong(value), width, base, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(unsigned long long value, int width, int base, char16_t fill) const
{
    MUR_FORMAT_ARG(arg(qulonglong(value), width, base, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(double value, int width, char format, int precision, char16_t fill, int) const
{
    // Through TString::number, which keeps the sign of negative zero; -1 is Qt's default of 6.
    const TString text = TString::number(value, format, precision < 0 ? 6 : precision);
    MUR_FORMAT_ARG(arg(text.toQString(), width, QChar(fill)));
}

TFormatStringCore TFormatStringCore::arg(const TString& a1, const TString& a2) const
{
    MUR_FORMAT_ARG(arg(a1.toQString(), a2.toQString()));
}

TFormatStringCore TFormatStringCore::arg(const TString& a1, const TString& a2, const TString& a3) const
{
    MUR_FORMAT_ARG(arg(a1.toQString(), a2.toQString(), a3.toQString()));
}

TFormatStringCore TFormatStringCore::arg(const TString& a1, const TString& a2, const TString& a3, const TString& a4) const
{
    MUR_FORMAT_ARG(arg(a1.toQString(), a2.toQString(), a3.toQString(), a4.toQString()));
}

TFormatStringCore TFormatStringCore::arg(const TString& a1, const TString& a2, const TString& a3, const TString& a4,
                                         const TString& a5) const
{
    MUR_FORMAT_ARG(arg(a1.toQString(), a2.toQString(), a3.toQString(), a4.toQString(), a5.toQString()));
}

#undef MUR_FORMAT_ARG
