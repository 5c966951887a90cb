#pragma once

// Free helpers on `TString`: splitting and joining with quotes, escape forms, the string
// hashes, look-ups in string maps, the hexadecimal form "x'...'", and the masking of secrets
// in text bound for a log. They hold no state and may be called from any thread.
//
// Positions and lengths are in UTF-16 code units; every search is case-sensitive unless
// a function says otherwise.

#include "murcoredata/foundation/TLog.h"
#include "murcoredata/foundation/TString.h"
#include "murcoredata/foundation/THash.h"

#include <boost/container/container_fwd.hpp>

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

using TStringMap = std::unordered_map<TString, TString>;

// ---------------------------------------------------------------------------------------
// Splitting and joining

/// The position of the next `separator` at or after `from`, or -1.
///
/// Only the first quoted run (from a `quote` to the next one) at or after `from` is looked
/// at: a separator in it is skipped, but one inside a later run counts as if it stood
/// outside; a caller that needs more calls again from a later position. With an empty
/// `quote` there is no quoting.
///
/// Throws `MurvaneException` "Missing separator parameter" for an empty `separator`, and
/// "Mismatched quote in '<text from the quote on>'" when that first run is not closed
/// (even if a separator comes before it).
MURCOREDATA_EXPORT int GetNextPathSeparatorPos(const TString& text, const TString& separator, const TString& quote,
                                               int from);

/// The pieces between separators, quotes kept in them. At least one piece: the empty text
/// gives one empty piece, "a,," gives "a", "", "". Throws as `GetNextPathSeparatorPos`.
///
/// Example: SplitString(u"a,\"b,c\",d", u",", u"\"") gives a | "b,c" | d
MURCOREDATA_EXPORT std::vector<TString> SplitString(const TString& text, const TString& separator,
                                                    const TString& quote = TString());
MURCOREDATA_EXPORT std::vector<TString> SplitString(const TString& text, char16_t separator,
                                                    const TString& quote = TString());

/// The elements with `separator` between them (none after the last); an empty range gives
/// the empty text. The length is measured first and the result allocated once; throws
/// `MurvaneException` "JoinString: calculated length <n> exceeds maximum length" when it
/// would not fit an `int`.
template <typename Iterator>
TString JoinStringT(Iterator first, Iterator last, const TString& separator);

MURCOREDATA_EXPORT TString JoinString(const std::vector<TString>& values, const TString& separator);
MURCOREDATA_EXPORT TString JoinString(const std::vector<TString>& values, char16_t separator);
MURCOREDATA_EXPORT TString JoinString(const boost::container::small_vector_base<TString>& values,
                                      const TString& separator);
MURCOREDATA_EXPORT TString JoinString(const boost::container::small_vector_base<TString>& values, char16_t separator);
MURCOREDATA_EXPORT TString JoinString(const std::set<TString>& values, const TString& separator);
MURCOREDATA_EXPORT TString JoinString(std::vector<TString>::const_iterator first,
                                      std::vector<TString>::const_iterator last, const TString& separator);
MURCOREDATA_EXPORT TString JoinString(std::set<TString>::const_iterator first, std::set<TString>::const_iterator last,
                                      const TString& separator);

// ---------------------------------------------------------------------------------------
// Escape forms

/// `text` with `escape` before each unit that is one of `chars`. The escape unit itself is
/// doubled only if it is one of `chars`. Returns a copy at once when nothing is to escape.
MURCOREDATA_EXPORT TString Escape(const TString& text, const TString& chars, char16_t escape);

/// The C form of a unit: "\0", "\a", "\b", "\t", "\n", "\v", "\f", "\r", "\'" and "\\";
/// any other unit, the double quote among them, stands for itself.
MURCOREDATA_EXPORT TString CEscape(char16_t c);
MURCOREDATA_EXPORT TString CEscape(const TString& text);

/// The reverse of `CEscape`: a backslash is dropped and the next unit decides ("0", "a",
/// "b", "f", "n", "r", "t", "v"; any other stands for itself). A backslash at the very end
/// stays.
MURCOREDATA_EXPORT TString CUnescape(const TString& text);

/// Empties every span between an `open` and the next `close`, keeping both delimiters:
/// "a<x>b<y>" with "<" and ">" gives "a<>b<>".
///
/// After a span, the search for the next `open` resumes the length of `open` beyond the
/// `close` (the length of `open` counts twice), so an `open` that follows a `close` closer
/// than that is skipped: "<x><y>" gives "<><y>". Stored texts depend on this.
///
/// An `open` with no `close` after it ends the work: it and the rest of the text stay as
/// they are. An empty `open` changes nothing.
MURCOREDATA_EXPORT void DeleteBetween(TString& text, const TString& open, const TString& close);

// ---------------------------------------------------------------------------------------
// Hashing: of the code units as bytes; the values are stored, so they are fixed.

/// THash32 of the UTF-16 bytes with the seed 0xDEADBEEF (the same as `std::hash<TString>`).
inline uint32_t StringHash(const TString& text)
{
    return uint32_t(std::hash<TString>()(text));
}

/// THash128 of the UTF-16 bytes with the seeds 0xDEADBEEF and 0xCAFEBABE.
MURCOREDATA_EXPORT THash128Value StringHash128(const TString& text);

/// The hash-compare traits of `TString` keys for `tbb::concurrent_hash_map`.
struct TStringHashCompare
{
    static size_t hash(const TString& text) { return size_t(StringHash(text)); }
    static bool equal(const TString& a, const TString& b) { return a == b; }
};

// ---------------------------------------------------------------------------------------
// String maps. The overloads for `std::unordered_map` are the exported ones; the templates
// serve `tbb::concurrent_unordered_map<TString, TString>` and other maps with `find`.

/// The value of `key`, or the empty text when it is absent.
MURCOREDATA_EXPORT TString LookupString(const TStringMap& map, const char16_t* key);
MURCOREDATA_EXPORT TString LookupString(const TStringMap& map, const TString& key);
template <typename Map>
TString LookupString(const Map& map, const TString& key);
template <typename Map>
TString LookupString(const Map& map, const char16_t* key)
{
    return LookupString(map, TString(key));
}

/// True if `key` is absent or its value is empty.
MURCOREDATA_EXPORT bool IsStringEmpty(const TStringMap& map, const TString& key);
template <typename Map>
bool IsStringEmpty(const Map& map, const TString& key);

/// True if `key` is present and its value is not empty.
MURCOREDATA_EXPORT bool NotStringEmpty(const TStringMap& map, const TString& key);
template <typename Map>
bool NotStringEmpty(const Map& map, const TString& key)
{
    return !IsStringEmpty(map, key);
}

/// The map as a log value: an object with a string member per entry.
MURCOREDATA_EXPORT TLog::ValuePtr LogStringLookupTable(const TStringMap& map);

// ---------------------------------------------------------------------------------------
// Hexadecimal form

/// "x'" + the UTF-8 bytes as upper-case hex pairs + "'", stopping at the first zero byte.
/// HexEncode(u"A") is "x'41'"; the empty text gives "x''".
MURCOREDATA_EXPORT TString HexEncode(const TString& text);

/// Decodes hex pairs (high digit first, either case) into bytes and `out` into the UTF-8
/// text of them. The pair "00" ends the text with success; a unit that is not a hex digit
/// ends it with failure, keeping the bytes decoded before it. A lone unit at the end, digit
/// or not, is not read. `out` always receives what was decoded; bytes that are not UTF-8
/// become U+FFFD.
[[nodiscard]] MURCOREDATA_EXPORT bool HexDecode(const TString& hex, TString& out);

/// Decodes the form "x'<hex>'" or "x_<hex>_", optionally followed by "z" and a suffix that
/// is appended as it stands: "x'41'zB" gives "AB". The body is what comes before the last
/// "z". False with `out` untouched when the text starts with neither "x'" nor "x_";
/// otherwise the result of `HexDecode`, and on success U+FFFD is removed from `out`.
[[nodiscard]] MURCOREDATA_EXPORT bool DecodeHexEncodedString(const TString& encoded, TString& out);

// ---------------------------------------------------------------------------------------
// Small helpers

/// True if no unit is above 127; true for the empty text.
MURCOREDATA_EXPORT bool HasAllAsciiCharacters(const TString& text);

/// True if `a` sorts before `b` by `CollateNoCase`.
MURCOREDATA_EXPORT bool LocaleAwareCaseInsensitiveSort(const TString& a, const TString& b);

/// The first byte of each unit in storage order (the low byte on a little-endian machine).
MURCOREDATA_EXPORT std::string RemoveBytePadding(const TString& text);

/// Each line feed (U+000A) replaced by a space.
MURCOREDATA_EXPORT TString ReplaceLineFeedWithWhiteSpace(const TString& text);

/// "true" or "false".
MURCOREDATA_EXPORT TString BooleanToString(bool value);

/// `text` with the values of "password=", "pwd=", "token=...;", "rtk=",
/// "secret_access_key=>'...'" and "access_key_id=>'...'" (keys in any case) replaced by
/// asterisks. The mask writes the key in upper case; a token is masked only when a ";"
/// follows it, and the ";" goes with it. Text without any key costs no pattern work.
///
/// Example: ObfuscateSecretsInString(u"password=abc def") is "PASSWORD=******** def"
MURCOREDATA_EXPORT TString ObfuscateSecretsInString(const TString& text);

// ---------------------------------------------------------------------------------------
// Inline implementation

namespace Implementation {
[[noreturn]] MURCOREDATA_EXPORT void ThrowJoinStringTooLong(int64_t length);
} // namespace Implementation

template <typename Iterator>
TString JoinStringT(Iterator first, Iterator last, const TString& separator)
{
    if (first == last)
        return TString();
    int64_t length = 0;
    int64_t count = 0;
    for (Iterator it = first; it != last; ++it, ++count)
        length += it->length();
    length += (count - 1) * int64_t(separator.length());
    if (length > 0x7FFFFFFF)
        Implementation::ThrowJoinStringTooLong(length);
    TString result;
    result.reserve(int(length));
    Iterator it = first;
    result.append(*it);
    for (++it; it != last; ++it) {
        result.append(separator);
        result.append(*it);
    }
    return result;
}

template <typename Map>
TString LookupString(const Map& map, const TString& key)
{
    const auto it = map.find(key);
    return it != map.end() ? TString(it->second) : TString();
}

template <typename Map>
bool IsStringEmpty(const Map& map, const TString& key)
{
    const auto it = map.find(key);
    return it == map.end() || it->second.isEmpty();
}
