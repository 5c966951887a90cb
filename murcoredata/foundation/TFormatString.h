#pragma once

#include "murcoredata/foundation/TString.h"

/// A text with the placeholders "%1", "%2", ...: every `arg` fills the lowest-numbered
/// placeholder still open (all its occurrences at once), so `arg` calls may be chained in
/// the order of the numbers whatever order the placeholders stand in. Text put in by `arg`
/// is not searched for placeholders again. `arg` with no placeholder left changes nothing.
class MURCOREDATA_EXPORT TFormatStringCore
{
public:
    TFormatStringCore() = default;
    TFormatStringCore(const char16_t* text) : m_text(text) {}
    TFormatStringCore(const TString& text) : m_text(text) {}

    TFormatStringCore arg(const TString& value, int width = 0, char16_t fill = u' ') const;
    TFormatStringCore arg(const char16_t* value, int width = 0, char16_t fill = u' ') const { return arg(TString(value), width, fill); }
    TFormatStringCore arg(int value, int width = 0, int base = 10, char16_t fill = u' ') const;
    TFormatStringCore arg(unsigned value, int width = 0, int base = 10, char16_t fill = u' ') const;
    TFormatStringCore arg(unsigned short value, int width = 0, int base = 10, char16_t fill = u' ') const { return arg(unsigned(value), width, base, fill); }
    TFormatStringCore arg(long value, int width = 0, int base = 10, char16_t fill = u' ') const { return arg((long long)value, width, base, fill); }
    TFormatStringCore arg(unsigned long value, int width = 0, int base = 10, char16_t fill = u' ') const { return arg((unsigned long long)value, width, base, fill); }
    TFormatStringCore arg(long long value, int width = 0, int base = 10, char16_t fill = u' ') const;
    TFormatStringCore arg(unsigned long long value, int width = 0, int base = 10, char16_t fill = u' ') const;
    /// `format` and `precision` as in `TString::number(double, ...)`; `flag` is ignored.
    TFormatStringCore arg(double value, int width = 0, char format = 'g', int precision = -1, char16_t fill = u' ', int flag = 0) const;
    /// The multi-value forms fill that many placeholders in one step, so a value that itself
    /// holds "%2" is not filled again.
    TFormatStringCore arg(const TString& a1, const TString& a2) const;
    TFormatStringCore arg(const TString& a1, const TString& a2, const TString& a3) const;
    TFormatStringCore arg(const TString& a1, const TString& a2, const TString& a3, const TString& a4) const;
    TFormatStringCore arg(const TString& a1, const TString& a2, const TString& a3, const TString& a4, const TString& a5) const;

    /// The text as it stands, with any placeholders not yet filled.
    const TString& result() const { return m_text; }
    operator const TString&() const { return m_text; }

protected:
    TString m_text;
};

/// The format string the library passes around; converts to `TString` and `TFormatStringCore`.
class MURCOREDATA_EXPORT TFormatString : public TFormatStringCore
{
public:
    TFormatString() = default;
    TFormatString(const char16_t* text) : TFormatStringCore(text) {}
    TFormatString(const TString& text) : TFormatStringCore(text) {}
    TFormatString(const TFormatStringCore& core) : TFormatStringCore(core) {}

    template <typename... Args>
    TFormatString arg(Args&&... args) const
    {
        return TFormatString(TFormatStringCore::arg(std::forward<Args>(args)...));
    }
};
