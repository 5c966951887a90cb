#include "murcoredata/core/StringUtils.h"

#include "murcoredata/core/ReStringParser.h"
#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <boost/container/small_vector.hpp>

#include <array>
#include <cstring>

// ---------------------------------------------------------------------------------------
// Splitting and joining

int GetNextPathSeparatorPos(const TString& text, const TString& separator, const TString& quote, int from)
{
    if (separator.isEmpty())
        throw MurvaneException(CoreData::LookupTStr(CoreData::IDS_STRINGUTILS_MISSING_SEPARATOR),
                               TError::ErrorInfo(MurErrorsError::AutoGen_0xF6FE9A60(), 4, 2));
    const int pos = text.indexOf(separator, from, TString::CaseSensitive);
    if (quote.isEmpty())
        return pos;
    const int q1 = text.indexOf(quote, from, TString::CaseSensitive);
    if (q1 < 0)
        return pos;
    const int q2 = text.indexOf(quote, q1 + 1, TString::CaseSensitive);
    if (q2 < 0)
        throw MurvaneException(CoreData::LookupTFmtStr(CoreData::IDP_STRINGUTILS_MISMATCH_QUOTE).arg(text.mid(q1, -1)),
                               TError::ErrorInfo(MurErrorsError::AutoGen_0x79B9C33C(), 4, 2));
    if (pos <= q1)
        return pos;
    // Resumes one unit after the closing quote even for a longer quote.
    return text.indexOf(separator, q2 + 1, TString::CaseSensitive);
}

std::vector<TString> SplitString(const TString& text, const TString& separator, const TString& quote)
{
    std::vector<TString> pieces;
    int start = 0;
    int pos = GetNextPathSeparatorPos(text, separator, quote, start);
    while (pos >= start) {
        pieces.push_back(text.mid(start, pos - start));
        start = pos + separator.length();
        pos = GetNextPathSeparatorPos(text, separator, quote, start);
    }
    pieces.push_back(text.mid(start, -1));
    return pieces;
}

std::vector<TString> SplitString(const TString& text, char16_t separator, const TString& quote)
{
    return SplitString(text, TString(separator, 1), quote);
}

void Implementation::ThrowJoinStringTooLong(int64_t length)
{
    throw MurvaneException(TFormatString(u"JoinString: calculated length %1 exceeds maximum length").arg((long long)length),
                           TError::ErrorInfo(MurErrorsError::AutoGen_0xF43CCF25(), 4, 2));
}

TString JoinString(const std::vector<TString>& values, const TString& separator)
{
    return JoinStringT(values.begin(), values.end(), separator);
}

TString JoinString(const std::vector<TString>& values, char16_t separator)
{
    return JoinStringT(values.begin(), values.end(), TString(separator, 1));
}

TString JoinString(const boost::container::small_vector_base<TString>& values, const TString& separator)
{
    return JoinStringT(values.begin(), values.end(), separator);
}

TString JoinString(const boost::container::small_vector_base<TString>& values, char16_t separator)
{
    return JoinStringT(values.begin(), values.end(), TString(separator, 1));
}

TString JoinString(const std::set<TString>& values, const TString& separator)
{
    return JoinStringT(values.begin(), values.end(), separator);
}

TString JoinString(std::vector<TString>::const_iterator first, std::vector<TString>::const_iterator last,
                   const TString& separator)
{
    return JoinStringT(first, last, separator);
}

TString JoinString(std::set<TString>::const_iterator first, std::set<TString>::const_iterator last,
                   const TString& separator)
{
    return JoinStringT(first, last, separator);
}

// ---------------------------------------------------------------------------------------
// Escape forms

namespace {

// The set of units to escape: a bitmap for the ASCII ones, a list for the others.
class UnitSet
{
public:
    explicit UnitSet(const TString& units)
    {
        for (char16_t c : units) {
            if (c < 128)
                m_ascii[c >> 6] |= uint64_t(1) << (c & 63);
            else
                m_others.append(c);
        }
    }

    bool Contains(char16_t c) const
    {
        if (c < 128)
            return (m_ascii[c >> 6] >> (c & 63)) & 1u;
        return !m_others.isEmpty() && m_others.contains(c);
    }

private:
    uint64_t m_ascii[2] = {0, 0};
    TString m_others;
};

} // namespace

TString Escape(const TString& text, const TString& chars, char16_t escape)
{
    const UnitSet set(chars);
    const char16_t* p = text.constData();
    const int n = text.length();
    int first = 0;
    while (first < n && !set.Contains(p[first]))
        ++first;
    if (first == n)
        return text; // shares the buffer: no allocation
    TString result;
    result.reserve(n + 10);
    result.append(p, first);
    for (int i = first; i < n; ++i) {
        if (set.Contains(p[i]))
            result.append(escape);
        result.append(p[i]);
    }
    return result;
}

namespace {

// The letter after the backslash, or 0 for a unit that stands for itself.
char16_t CEscapeLetter(char16_t c)
{
    switch (c) {
    case 0x00: return u'0';
    case 0x07: return u'a';
    case 0x08: return u'b';
    case 0x09: return u't';
    case 0x0A: return u'n';
    case 0x0B: return u'v';
    case 0x0C: return u'f';
    case 0x0D: return u'r';
    case u'\'': return u'\'';
    case u'\\': return u'\\';
    default: return 0;
    }
}

void AppendCEscaped(TString& out, char16_t c)
{
    const char16_t letter = CEscapeLetter(c);
    if (letter != 0) {
        out.append(u'\\');
        out.append(letter);
    } else {
        out.append(c);
    }
}

char16_t CUnescapeLetter(char16_t c)
{
    switch (c) {
    case u'0': return 0x00;
    case u'a': return 0x07;
    case u'b': return 0x08;
    case u'f': return 0x0C;
    case u'n': return 0x0A;
    case u'r': return 0x0D;
    case u't': return 0x09;
    case u'v': return 0x0B;
    default: return c;
    }
}

} // namespace

TString CEscape(char16_t c)
{
    TString out;
    AppendCEscaped(out, c);
    return out;
}

TString CEscape(const TString& text)
{
    TString out;
    out.reserve(text.length());
    for (char16_t c : text)
        AppendCEscaped(out, c);
    return out;
}

TString CUnescape(const TString& text)
{
    const char16_t* p = text.constData();
    const int n = text.length();
    TString out;
    out.reserve(n);
    for (int i = 0; i < n; ++i) {
        if (p[i] == u'\\' && i + 1 < n)
            out.append(CUnescapeLetter(p[++i]));
        else
            out.append(p[i]);
    }
    return out;
}

void DeleteBetween(TString& text, const TString& open, const TString& close)
{
    if (open.isEmpty())
        return;
    const int openLength = open.length();
    int pos = text.indexOf(open, 0, TString::CaseSensitive);
    while (pos >= 0) {
        const int start = pos + openLength;
        const int end = text.indexOf(close, start, TString::CaseSensitive);
        if (end < 0)
            return; // an open with no close: the rest stays as it is
        text.removeAt(start, end - start);
        // The length of open goes in twice: the search skips that much beyond the close.
        pos = text.indexOf(open, start + openLength + close.length(), TString::CaseSensitive);
    }
}

// ---------------------------------------------------------------------------------------
// Hashing

THash128Value StringHash128(const TString& text)
{
    const int len = text.lengthInBytes();
    MUR_LOGIC_ASSERT(0 <= len, LogicAssert_0x9DD2957A);
    return THash128(text.constData(), size_t(len), 0xDEADBEEFu, 0xCAFEBABEu);
}

// ---------------------------------------------------------------------------------------
// String maps

TString LookupString(const TStringMap& map, const char16_t* key)
{
    return LookupString(map, TString(key));
}

TString LookupString(const TStringMap& map, const TString& key)
{
    const auto it = map.find(key);
    return it != map.end() ? it->second : TString();
}

bool IsStringEmpty(const TStringMap& map, const TString& key)
{
    const auto it = map.find(key);
    return it == map.end() || it->second.isEmpty();
}

bool NotStringEmpty(const TStringMap& map, const TString& key)
{
    return !IsStringEmpty(map, key);
}

TLog::ValuePtr LogStringLookupTable(const TStringMap& map)
{
    TLog::ValueMap members;
    members.reserve(map.size());
    for (const auto& entry : map)
        members.emplace(entry.first, TLog::Literal::String(entry.second));
    return TLog::Object::Make(members);
}

// ---------------------------------------------------------------------------------------
// Hexadecimal form

namespace {

const char s_hexDigits[] = "0123456789ABCDEF";

// The value of a hex digit, or -1; only ASCII digits and letters count.
inline int HexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    return -1;
}

} // namespace

TString HexEncode(const TString& text)
{
    const std::string utf8 = text.toStdString();
    std::string out;
    out.reserve(utf8.size() * 2 + 4);
    out += "x'";
    for (const char byte : utf8) {
        const auto b = static_cast<unsigned char>(byte);
        if (b == 0)
            break;
        out += s_hexDigits[b >> 4];
        out += s_hexDigits[b & 0x0F];
    }
    out += '\'';
    return TString::fromLatin1(out.data(), int(out.size()));
}

bool HexDecode(const TString& hex, TString& out)
{
    const char16_t* p = hex.constData();
    const int n = hex.length();
    std::string bytes;
    bytes.reserve(size_t(n / 2));
    bool ok = true;
    for (int i = 0; i + 1 < n; i += 2) {
        const int high = HexValue(p[i]);
        const int low = HexValue(p[i + 1]);
        if (high < 0 || low < 0) {
            ok = false;
            break;
        }
        const int byte = high * 16 + low;
        if (byte == 0)
            break;
        bytes += char(byte);
    }
    out = TString::fromUtf8(bytes.data(), int(bytes.size()));
    return ok;
}

bool DecodeHexEncodedString(const TString& encoded, TString& out)
{
    if (!encoded.startsWith(TString(u"x'")) && !encoded.startsWith(TString(u"x_")))
        return false;
    const int z = encoded.lastIndexOf(u'z');
    TString body = z >= 0 ? encoded.left(z) : encoded;
    const TString suffix = z >= 0 ? encoded.mid(z + 1) : TString();
    if (body.endsWith(u'\'') || body.endsWith(u'_'))
        body.truncate(body.length() - 1);
    const bool ok = HexDecode(body.mid(2), out);
    if (ok) {
        out.removeAll(char16_t(0xFFFD));
        out.append(suffix);
    }
    return ok;
}

// ---------------------------------------------------------------------------------------
// Small helpers

bool HasAllAsciiCharacters(const TString& text)
{
    for (char16_t c : text)
        if (c > 127)
            return false;
    return true;
}

bool LocaleAwareCaseInsensitiveSort(const TString& a, const TString& b)
{
    return a.CollateNoCase(b.data()) < 0;
}

std::string RemoveBytePadding(const TString& text)
{
    const auto* bytes = reinterpret_cast<const char*>(text.constData());
    const int n = text.length();
    std::string out;
    out.reserve(size_t(n));
    for (int i = 0; i < n; ++i)
        out += bytes[2 * i];
    return out;
}

TString ReplaceLineFeedWithWhiteSpace(const TString& text)
{
    TString out(text);
    out.replace(u'\n', u' ');
    return out;
}

TString BooleanToString(bool value)
{
    return value ? TString(u"true") : TString(u"false");
}

namespace {

struct SecretRule
{
    const char* key; // ASCII, lower case
    const char16_t* pattern;
    const char16_t* replacement;
};

// Applied in this order to the running result. The mask writes the key in upper case; the
// token rule needs the ";" after the token and swallows it.
const SecretRule s_secretRules[] = {
    {"password=", u"[Pp][Aa][Ss][Ss][Ww][Oo][Rr][Dd]=\\S*", u"PASSWORD=********"},
    {"pwd=", u"[Pp][Ww][Dd]=\\S*", u"PWD=********"},
    {"token=", u"[Tt][Oo][Kk][Ee][Nn]=[A-Za-z0-9-._~+/]*;", u"TOKEN=********"},
    {"rtk=", u"[Rr][Tt][Kk]=[A-Za-z0-9]*", u"RTK=********"},
    {"secret_access_key=>", u"[Ss][Ee][Cc][Rr][Ee][Tt][_][Aa][Cc][Cc][Ee][Ss][Ss][_][Kk][Ee][Yy]=>['].*?[']",
     u"SECRET_ACCESS_KEY=>'********'"},
    {"access_key_id=>", u"[Aa][Cc][Cc][Ee][Ss][Ss][_][Kk][Ee][Yy][_][Ii][Dd]=>['].*?[']",
     u"ACCESS_KEY_ID=>'********'"},
};

// Whether the lower-case ASCII `key` stands at `p[start]`, in any ASCII case.
bool KeyAt(const char16_t* p, int n, int start, const char* key, int keyLength)
{
    if (start < 0 || start + keyLength > n)
        return false;
    for (int j = 0; j < keyLength; ++j) {
        char16_t c = p[start + j];
        if (c >= u'A' && c <= u'Z')
            c = char16_t(c + (u'a' - u'A'));
        if (c != char16_t(key[j]))
            return false;
    }
    return true;
}

// One bit a rule: whether its key occurs in `text` in any ASCII case. One pass: each key
// holds a "=", so only the places of "=" are tried.
//
// This stands for a case-insensitive `contains`: the two differ only on keys spelt with
// non-ASCII letters that fold to ASCII ones (U+017F for "s", U+212A for "k"), which the
// patterns, made of ASCII classes, would not replace anyway.
unsigned KeysPresent(const TString& text)
{
    constexpr int kRules = int(sizeof s_secretRules / sizeof s_secretRules[0]);
    static_assert(kRules <= 32, "one bit a rule");
    struct KeyShape
    {
        int length;
        int equalsAt;
    };
    static const auto s_shapes = [] {
        std::array<KeyShape, kRules> shapes{};
        for (int r = 0; r < kRules; ++r) {
            const char* key = s_secretRules[r].key;
            shapes[size_t(r)] = {int(std::strlen(key)), int(std::strchr(key, '=') - key)};
        }
        return shapes;
    }();
    const char16_t* p = text.constData();
    const int n = text.length();
    unsigned present = 0;
    for (int i = text.indexOf(u'='); i >= 0; i = text.indexOf(u'=', i + 1)) {
        for (int r = 0; r < kRules; ++r) {
            const KeyShape& shape = s_shapes[size_t(r)];
            if (KeyAt(p, n, i - shape.equalsAt, s_secretRules[r].key, shape.length))
                present |= 1u << r;
        }
    }
    return present;
}

} // namespace

TString ObfuscateSecretsInString(const TString& text)
{
    // The common case, a text without a secret, costs one pass and no pattern work.
    if (KeysPresent(text) == 0)
        return text;
    TString result(text);
    int r = 0;
    for (const SecretRule& rule : s_secretRules) {
        // Each rule looks at the running result: an earlier mask may have taken a key away.
        if ((KeysPresent(result) >> r++) & 1u)
            result = ReStringParser::ReplaceAll(result, TString(rule.pattern), TString(rule.replacement));
    }
    return result;
}
