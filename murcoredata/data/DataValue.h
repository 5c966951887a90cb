#pragma once

// DataValue: one cell of a data table in sixteen bytes.
//
// A value is a tagged union of six fields, side by side in this order:
//
//   type       uint8   the DataType
//   special    int8    the DataValueTypes::Special; None for an ordinary value
//   precision  int8    decimal precision of a real, -1 when absent
//   scale      int8    decimal scale of a real, -1 when absent
//   ordinal    int32   position of a string in a sorted domain: -2 for none on a string,
//                      0 on every other kind
//   payload    64 bits the value itself (below)
//
// The order is a contract: the hash reads the whole value as bytes, and copy and move copy
// it whole. A special is a special *of a type* (a null integer is not a null string); its
// payload is zero and it owns nothing.
//
//   Integer   signed 64-bit integer       Boolean   0 or 1 in the low byte, other bytes 0
//   Real      IEEE double                 Unknown   nothing (zero)
//   DateTime  DateTime representation     Date      DateTime representation of the date
//   Time      Time representation         (all three 0 when absent)
//   String, Tuple, Binary   address of the RefCntObject base of a StringWithCollation,
//                           Tuple or BinaryDataValue; the value owns one reference
//   Spatial   address of a heap box holding one shared_ptr<const murgeo::Spatial>; the
//             value owns the box, and a copy gets a box of its own
//   Table     never held in a value
//
// Inline kinds (numbers, booleans, dates, times) own nothing: copying, comparing and
// hashing them touches no counter and allocates nothing. Move is a bitwise copy after which
// the source's type byte says Unknown; an Unknown value owns nothing, so the source keeps
// its stale payload harmlessly and must only be assigned to or destroyed.
//
// Settled oddities of the rules below: an integer never equals a real (1 != 1.0), yet they
// are ordered against each other through double, so 1 and 1.0 are neither equal nor
// ordered; real equality is bitwise (-0.0 != 0.0, a NaN equals a NaN with the same bits);
// precision and scale play no part in equality or in the hash of a real.
//
// Strings, tuples and shapes are values of their objects: two of them are equal when their
// objects are (a string by its collation, so "abc" may equal "ABC"), and they hash as their
// objects do. Two binaries are equal only when they share their object. An invalid DateTime
// is never stored: it becomes a null Date or DateTime.

#include "murcoredata/data/DataValueInspector.h"
#include "murcoredata/data/DateTime.h"
#include "murcoredata/data/StringWithCollation.h"
#include "murcoredata/data/Time.h"
#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/RefCnt.h"
#include "murcoredata/foundation/THash.h"
#include "murcoredata/foundation/TString.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <type_traits>

class BinaryDataValue;

#ifndef MURCOREDATA_LIKELY
#  if defined(__GNUC__) || defined(__clang__)
#    define MURCOREDATA_LIKELY(condition) __builtin_expect(!!(condition), 1)
#  else
#    define MURCOREDATA_LIKELY(condition) (condition)
#  endif
#endif

/// The kind of a value. The numbers are a contract: unlike types are ordered by them and the
/// document names of the types are keyed by them.
enum class DataType : uint8_t
{
    Integer = 0,
    Real = 1,
    String = 2,
    DateTime = 3,
    Boolean = 4,
    Date = 5,
    Tuple = 6,
    Spatial = 7,
    Unknown = 8,
    Binary = 9,
    Time = 10,
    Table = 11,
};

namespace DataValueTypes {
/// The special state of a value, kept beside its type.
enum class Special : int8_t
{
    None = 0, ///< an ordinary value: the payload is valid
    Null = 1,
    All = 2, ///< stands for all values
    Wildcard = 3,
    Skipped = 4,
    NoAccess = 5, ///< the reader may not see the value
    Ragged = 6,
    Error = 7,
    ManyValues = 8,
    Missing = 9,
};
} // namespace DataValueTypes

/// Integer and Real.
constexpr bool IsNumeric(DataType type) noexcept
{
    return type == DataType::Integer || type == DataType::Real;
}

/// DateTime and Date. A time of day is not temporal here, by design.
constexpr bool IsTemporal(DataType type) noexcept
{
    return type == DataType::DateTime || type == DataType::Date;
}

constexpr bool IsQuantitative(DataType type) noexcept
{
    return IsNumeric(type) || IsTemporal(type);
}

/// One tagged, copyable value: see the top of this file for its fields and rules.
class MURCOREDATA_EXPORT DataValue
{
public:
    //===------------------------------------------------------------------===//
    // Construction. Each constructor starts from the default state and applies the
    // matching setter, so a failing setter leaves nothing to release.
    //===------------------------------------------------------------------===//

    /// Unknown and null.
    DataValue() noexcept;
    /// A special of `type`. Throws for `DataType::Tuple`, which has no specials.
    DataValue(DataValueTypes::Special special, DataType type);
    explicit DataValue(bool value) noexcept;
    /// An integer, sign-extended to 64 bits.
    explicit DataValue(int value) noexcept;
    explicit DataValue(long value) noexcept;
    explicit DataValue(long long value) noexcept;
    /// A real with decimal precision and scale; -1 for either means absent.
    DataValue(double value, signed char precision, signed char scale) noexcept;
    /// A Date (`SetDate`) or a DateTime (`SetDatetime`); any other type is a logic error.
    DataValue(const DateTime& value, DataType type);
    /// Always a Time: `type` is accepted and ignored.
    DataValue(const Time& value, DataType type) noexcept;
    /// A new shared string, moved from `string`.
    explicit DataValue(StringWithCollation&& string);
    /// Shares the string; throws for a null pointer.
    explicit DataValue(const RefCntPtr<StringWithCollation, RefCntObject>& string);
    /// A new shared string of `text` under `collation`.
    DataValue(const Collation& collation, const TString& text);
    DataValue(Collation&& collation, TString&& text);
    /// `SetTuple`: throws for a null pointer.
    explicit DataValue(RefCntPtr<Tuple, RefCntObject> tuple);
    /// `SetSpatial`: throws for an empty pointer.
    explicit DataValue(std::shared_ptr<const murgeo::Spatial> spatial);
    /// `SetBinary`: throws for a null pointer.
    explicit DataValue(RefCntPtr<BinaryDataValue, RefCntObject> binary);
    /// A pointer would otherwise be taken for a `bool`.
    template <typename T>
    DataValue(T*) = delete;
    DataValue(std::nullptr_t) = delete;

    DataValue(const DataValue& other);
    DataValue(DataValue&& other) noexcept;
    DataValue& operator=(const DataValue& other);
    DataValue& operator=(DataValue&& other) noexcept;
    ~DataValue();

    /// A real without decimals.
    static DataValue FromDouble(double value) noexcept;
    static DataValue FromInt(long long value) noexcept;
    /// A string under the unknown collation.
    static DataValue FromString(const TString& text);
    /// `SetDate` and `SetDatetime` of a new value.
    static DataValue FromDate(DateTime value) noexcept;
    static DataValue FromDateTime(DateTime value) noexcept;

    //===------------------------------------------------------------------===//
    // Setters. Each releases what the value held, then writes the whole header.
    //===------------------------------------------------------------------===//

    void SetInt(long long value) noexcept;
    void SetReal(double value) noexcept;
    /// Clears the whole payload word before the low byte, since equality compares all of it.
    void SetBool(bool value) noexcept;
    /// `precision` and `scale` are stored as given, -1 meaning absent.
    void SetDecimal(double value, signed char precision, signed char scale) noexcept;
    /// Throws for `DataType::Tuple` before anything changes.
    void MakeSpecial(DataValueTypes::Special special, DataType type);
    /// Null of the current type; throws on a tuple.
    void SetNull();
    void SetNull(DataType type);

    /// The date of `value` (any time of day is dropped); an invalid `value` gives a null Date.
    void SetDate(DateTime value) noexcept;
    /// An invalid `value` gives a null DateTime.
    void SetDatetime(DateTime value) noexcept;
    void SetTime(Time value) noexcept;
    /// A new shared string (its count starts at one), moved from `string` or made of
    /// `text` under `collation`.
    void SetString(StringWithCollation&& string);
    void SetString(const Collation& collation, const TString& text);
    /// Shares the string; throws for a null pointer, leaving the value as it was.
    void SetString(const RefCntPtr<StringWithCollation, RefCntObject>& string);
    /// Takes the reference over and leaves `string` null; throws for a null pointer.
    void SetString(RefCntPtr<StringWithCollation, RefCntObject>&& string);
    /// Shares the tuple; throws for a null pointer, leaving the value as it was.
    void SetTuple(RefCntPtr<Tuple, RefCntObject> tuple);
    /// Shares the binary object; throws for a null pointer, leaving the value as it was.
    void SetBinary(RefCntPtr<BinaryDataValue, RefCntObject> binary);
    /// Keeps the pointer in a box of this value's own; throws for an empty pointer, leaving
    /// the value as it was. `SetSpatialOrNull` makes a null of an empty pointer instead.
    void SetSpatial(std::shared_ptr<const murgeo::Spatial> spatial);
    /// The position of a string in a sorted domain. Only a string that holds its object has
    /// one: anything else, a null string included, raises the incorrect-type failure
    /// (setting variant). The string itself is not touched.
    void SetOrdinal(int ordinal);

    //===------------------------------------------------------------------===//
    // Accessors. Checked getters test the type and nothing else: the integer getter of
    // a null integer gives 0. A mismatch raises the incorrect-type failure.
    //===------------------------------------------------------------------===//

    DataType GetType() const noexcept { return m_type; }
    DataValueTypes::Special GetSpecial() const noexcept { return m_special; }
    /// Null of any type.
    bool IsNull() const noexcept { return m_special == DataValueTypes::Special::Null; }
    bool IsMissing() const noexcept { return m_special == DataValueTypes::Special::Missing; }

    bool GetBool() const;
    long long GetInt() const;
    /// Requires a Real; an Integer is not accepted.
    double GetReal() const;

    bool GetBoolUnchecked() const noexcept { return (m_payload & 0xFFu) != 0; }
    long long GetIntUnchecked() const noexcept { return static_cast<long long>(m_payload); }
    double GetRealUnchecked() const noexcept
    {
        double value;
        std::memcpy(&value, &m_payload, sizeof value);
        return value;
    }
    /// The payload word as it stands, whatever the kind.
    uint64_t GetAny() const noexcept { return m_payload; }

    /// Dates and times read the payload back; a zero payload (a special) gives the default
    /// `DateTime` (1899-12-30) or `Time` (midnight).
    DateTime GetDate() const;
    DateTime GetDatetime() const;
    Time GetTime() const;
    /// The text of a string; a special gives an empty text.
    const TString& GetString() const;
    /// `GetString().constData()`.
    const char16_t* GetStringRaw() const { return GetString().constData(); }
    /// A new reference on the value's object, null for a special.
    RefCntPtr<Tuple, RefCntObject> GetTuple() const;
    RefCntPtr<BinaryDataValue, RefCntObject> GetBinary() const;
    /// A copy of the pointer in the box; empty for a special.
    std::shared_ptr<const murgeo::Spatial> GetSpatial() const;

    DateTime GetDateUnchecked() const noexcept { return m_payload == 0 ? DateTime() : DateTime::FromValue(m_payload); }
    DateTime GetDatetimeUnchecked() const noexcept { return GetDateUnchecked(); }
    Time GetTimeUnchecked() const noexcept { return m_payload == 0 ? Time() : Time(m_payload); }
    /// The payload read as a binary object, whatever the type says.
    RefCntPtr<BinaryDataValue, RefCntObject> GetBinaryUnchecked() const;

    /// The collation of a string that holds its object; the unknown collation for anything else.
    const Collation& GetCollation() const noexcept;
    /// The ordinal of a string that holds its object; -2 for anything else.
    int GetOrdinal() const noexcept { return m_type == DataType::String && m_payload != 0 ? int(m_ordinal) : -2; }

    /// The stored field for a Real, -1 for any other type.
    int GetPrecision() const noexcept { return m_type == DataType::Real ? int(m_precision) : -1; }
    int GetScale() const noexcept { return m_type == DataType::Real ? int(m_scale) : -1; }
    bool HasPrecision() const noexcept { return m_type == DataType::Real && uint8_t(m_precision) < 255; }
    bool HasScale() const noexcept { return m_type == DataType::Real && uint8_t(m_scale) < 255; }

    //===------------------------------------------------------------------===//
    // Hashing. Comparison operators are free functions below the class.
    //===------------------------------------------------------------------===//

    /// 32 bits. A string, tuple or spatial value hashes its object, so that equal objects
    /// hash alike. A real hashes its type byte and its payload only, so a null real and 0.0
    /// collide; every other value (binaries and specials included) hashes all sixteen bytes.
    uint32_t Hash() const;

    //===------------------------------------------------------------------===//
    // Text and visiting
    //===------------------------------------------------------------------===//

    /// The calculation-language literal: 42, 3. (a real always shows a point unless it has
    /// an exponent or is nan or inf), true, "a""b" (a string in double quotes, its double
    /// quotes doubled), #2021-03-04#, #2021-03-04 10:20:30# (with .SSS from a millisecond
    /// on), 'Point' (a shape by its shape type), NULL for a null of any type. Tuples, times,
    /// binaries and Unknown give the empty text; a special other than Null is a logic error.
    TString FormatAsLiteral() const;
    /// "INTEGER", "REAL", ... for the types 0 to 7, "UNKNOWN(n)" for every other number.
    static TString DataTypeToString(DataType type);
    /// Calls the one operation of `inspector` that fits the value, or none (Unknown, Binary).
    /// A tuple goes to `InspectTuple` whole; `Tuple::Accept` visits its members.
    void Accept(DataValueInspector& inspector) const;

    //===------------------------------------------------------------------===//
    // Ownership primitives under copy and destruction. `AddReference` takes what a fresh
    // bitwise copy owes; `RemoveReference` gives back what the value owns and changes no
    // field, so its caller overwrites the header next or is the destructor.
    //===------------------------------------------------------------------===//

    void AddReference();
    void RemoveReference() noexcept;

    /// Exchanges the two values bit for bit: ownership moves with the bits.
    friend void swap(DataValue& a, DataValue& b) noexcept
    {
        const uint64_t header = a.GetHeaderWord();
        const uint64_t payload = a.m_payload;
        a.SetWords(b.GetHeaderWord(), b.m_payload);
        b.SetWords(header, payload);
    }

    friend bool operator==(const DataValue& a, const DataValue& b);
    friend bool operator<(const DataValue& a, const DataValue& b);

private:
    friend struct DataValueTestPeer;

    // Types whose payload is owned: String, Tuple, Binary (a counted object) and Spatial (a box).
    static constexpr unsigned kOwningTypes = (1u << unsigned(DataType::String)) | (1u << unsigned(DataType::Tuple)) |
                                             (1u << unsigned(DataType::Spatial)) | (1u << unsigned(DataType::Binary));

    // A type byte outside the enumeration (it may come from a document) owns nothing.
    // Written without a short circuit, so that it costs one branch where it is tested.
    static constexpr bool OwnsPayload(DataType type) noexcept
    {
        return ((unsigned(type) < 32) & ((kOwningTypes >> (unsigned(type) & 31u)) & 1u)) != 0;
    }

    // Types whose equality and hash are their object's: String, Tuple and Spatial. (Two
    // binaries are equal only when they share their object, which the payload bits say.)
    static constexpr unsigned kObjectValueTypes = (1u << unsigned(DataType::String)) |
                                                  (1u << unsigned(DataType::Tuple)) |
                                                  (1u << unsigned(DataType::Spatial));
    static constexpr bool HasObjectValue(DataType type) noexcept
    {
        return ((unsigned(type) < 32) & ((kObjectValueTypes >> (unsigned(type) & 31u)) & 1u)) != 0;
    }
    // The slow halves of `==` and `Hash` for those types: two values with the same tag and
    // different payloads, and a value whose payload is set.
    bool EqualObjects(const DataValue& other) const;
    uint32_t HashObject() const;

    // The value as two 64-bit words: the header (type, special, precision, scale, ordinal)
    // and the payload. Copies and swaps go word by word: two loads and two stores.
    uint64_t GetHeaderWord() const noexcept
    {
        uint64_t header;
        std::memcpy(&header, static_cast<const void*>(this), sizeof header);
        return header;
    }
    void SetWords(uint64_t header, uint64_t payload) noexcept
    {
        std::memcpy(static_cast<void*>(this), &header, sizeof header);
        m_payload = payload;
    }
    // Type and special in one number, the same on every byte order.
    unsigned GetTag() const noexcept { return unsigned(m_type) | (unsigned(uint8_t(m_special)) << 8); }

    void WriteHeader(DataType type, DataValueTypes::Special special, signed char precision, signed char scale,
                     int32_t ordinal) noexcept
    {
        m_type = type;
        m_special = special;
        m_precision = precision;
        m_scale = scale;
        m_ordinal = ordinal;
    }
    void WriteSpecial(DataValueTypes::Special special, DataType type) noexcept;

    // The counted object of a String, Tuple or Binary value; null when there is none.
    const RefCntObject* GetCountedObject() const noexcept
    {
        return reinterpret_cast<const RefCntObject*>(static_cast<uintptr_t>(m_payload));
    }
    // The string of a String value that holds one.
    const StringWithCollation* GetStringObject() const noexcept
    {
        return static_cast<const StringWithCollation*>(GetCountedObject());
    }
    // What `GetString` gives for a string without an object: one empty text for all.
    static const TString& GetEmptyString() noexcept;
    // Makes an ordinary value of a counted type that takes over one reference on `object`
    // (not null). Releases what the value held first.
    void AdoptCountedObject(DataType type, const RefCntObject* object) noexcept;
    // Makes an ordinary Spatial value holding `spatial` (not empty) in a new box.
    void AdoptSpatial(std::shared_ptr<const murgeo::Spatial>&& spatial);
    // The pointer in the box of a Spatial value; empty when there is no box.
    std::shared_ptr<const murgeo::Spatial> GetSpatialPointer() const;
    // The box of a spatial payload, out of line so that only DataValue.cpp knows its form.
    static uint64_t CloneSpatialBox(uint64_t box);
    static void FreeSpatialBox(uint64_t box) noexcept;

    // The failure of a checked getter: logs "incorrect-data-type" and throws.
    [[noreturn]] static void RaiseIncorrectDataType(DataType expected, DataType actual);
    // The same failure for a setter that needs a kind the value is not (`SetOrdinal`).
    [[noreturn]] static void RaiseIncorrectDataTypeForSetting(DataType expected, DataType actual);

    DataType m_type;
    DataValueTypes::Special m_special;
    signed char m_precision;
    signed char m_scale;
    int32_t m_ordinal;
    uint64_t m_payload;
};

static_assert(sizeof(DataValue) == 16, "DataValue must stay two machine words");
static_assert(std::is_standard_layout<DataValue>::value, "DataValue is hashed and copied as bytes");
static_assert(std::is_nothrow_move_constructible<DataValue>::value && std::is_nothrow_move_assignable<DataValue>::value,
              "containers must be able to move values");

//===----------------------------------------------------------------------===//
// Comparison. Equality: same type, same special, then the same payload bits, or for a
// string, tuple or shape equal objects. Order:
//  - same type, different specials: a Null is below any other special; otherwise the
//    specials compare as signed numbers;
//  - same type and special: integers signed, reals by IEEE less-than (a NaN is never less
//    nor greater), booleans, dates and times unsigned; strings and tuples by their objects
//    (a null string first); shapes by their hashes; Unknown, Binary and types above Time
//    are never less;
//  - an Integer against a Real: the integer as a double against the real, specials
//    ignored (a null integer counts as 0);
//  - other unlike types: by the number of the type.
//===----------------------------------------------------------------------===//

bool operator==(const DataValue& a, const DataValue& b);
bool operator!=(const DataValue& a, const DataValue& b);
bool operator<(const DataValue& a, const DataValue& b);
bool operator>(const DataValue& a, const DataValue& b);
bool operator<=(const DataValue& a, const DataValue& b);
bool operator>=(const DataValue& a, const DataValue& b);

/// Unary minus: a fresh integer (negated with wrap-around) or a fresh real without decimals
/// (sign flipped). The special is forgotten: minus a null integer is 0, minus a null real is
/// -0.0. Other types are a logic error.
MURCOREDATA_EXPORT DataValue operator-(DataValue value);

/// `value.SetSpatial(spatial)`, or a null Spatial when `spatial` is empty: for readers whose
/// failure to parse is an empty pointer.
MURCOREDATA_EXPORT void SetSpatialOrNull(DataValue& value, std::shared_ptr<const murgeo::Spatial> spatial);

/// An ASCII rendering for logs and debuggers: the text in double quotes, with \n \t \r \\ \"
/// and \' escapes, printable ASCII as it is, and every other UTF-16 unit as \xHHHH.
MURCOREDATA_EXPORT std::string toPrintableString(const TString& text);

/// Writes `toPrintableString(value.FormatAsLiteral())`.
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const DataValue& value);

/// 42_dv is an integer, 2.5_dv a real without decimals, u"text"_dv a string under the
/// unknown collation.
inline DataValue operator""_dv(unsigned long long value) noexcept
{
    return DataValue::FromInt(static_cast<long long>(value));
}
inline DataValue operator""_dv(long double value) noexcept
{
    return DataValue::FromDouble(static_cast<double>(value));
}
inline DataValue operator""_dv(const char16_t* text, size_t length)
{
    return DataValue::FromString(TString(text, static_cast<int>(length)));
}

namespace std {
template <>
struct hash<DataValue>
{
    size_t operator()(const DataValue& value) const { return size_t(value.Hash()); }
};
} // namespace std

namespace Implementation {

/// The whole order of `operator<`, for the cases its inline fast path leaves.
MURCOREDATA_EXPORT bool DataValueLess(const DataValue& a, const DataValue& b);

// THash32 (XXH32) unrolled for the two lengths a value hashes, so that hashing a number is
// a few multiplications in line instead of two calls into the general routine. Same
// algorithm, same results: the tests compare them with THash32 over random values.
constexpr uint32_t kXXH32Prime1 = 2654435761u;
constexpr uint32_t kXXH32Prime2 = 2246822519u;
constexpr uint32_t kXXH32Prime3 = 3266489917u;
constexpr uint32_t kXXH32Prime4 = 668265263u;
constexpr uint32_t kXXH32Prime5 = 374761393u;

constexpr uint32_t XXH32RotateLeft(uint32_t x, int r) noexcept
{
    return (x << r) | (x >> (32 - r));
}

constexpr uint32_t XXH32Round(uint32_t accumulator, uint32_t lane) noexcept
{
    return XXH32RotateLeft(accumulator + lane * kXXH32Prime2, 13) * kXXH32Prime1;
}

constexpr uint32_t XXH32Avalanche(uint32_t h) noexcept
{
    h = (h ^ (h >> 15)) * kXXH32Prime2;
    h = (h ^ (h >> 13)) * kXXH32Prime3;
    return h ^ (h >> 16);
}

// A four-byte tail step of XXH32.
constexpr uint32_t XXH32Tail4(uint32_t h, uint32_t word) noexcept
{
    return XXH32RotateLeft(h + word * kXXH32Prime3, 17) * kXXH32Prime4;
}

/// THash32 of one byte.
constexpr uint32_t THash32OfByte(uint8_t byte, uint32_t seed) noexcept
{
    return XXH32Avalanche(XXH32RotateLeft(seed + kXXH32Prime5 + 1u + byte * kXXH32Prime5, 11) * kXXH32Prime1);
}

/// THash32 of the eight bytes of `word` in little-endian order.
constexpr uint32_t THash32Of8Bytes(uint64_t word, uint32_t seed) noexcept
{
    return XXH32Avalanche(XXH32Tail4(XXH32Tail4(seed + kXXH32Prime5 + 8u, uint32_t(word)), uint32_t(word >> 32)));
}

/// THash32 of sixteen bytes: `low` then `high`, each in little-endian order.
constexpr uint32_t THash32Of16Bytes(uint64_t low, uint64_t high, uint32_t seed) noexcept
{
    const uint32_t v1 = XXH32Round(seed + kXXH32Prime1 + kXXH32Prime2, uint32_t(low));
    const uint32_t v2 = XXH32Round(seed + kXXH32Prime2, uint32_t(low >> 32));
    const uint32_t v3 = XXH32Round(seed, uint32_t(high));
    const uint32_t v4 = XXH32Round(seed - kXXH32Prime1, uint32_t(high >> 32));
    return XXH32Avalanche(XXH32RotateLeft(v1, 1) + XXH32RotateLeft(v2, 7) + XXH32RotateLeft(v3, 12) +
                          XXH32RotateLeft(v4, 18) + 16u);
}

constexpr uint32_t kDataValueHashSeed = 0xDEADBEEFu;
/// The seed of the payload hash of every real: THash32 of its type byte (1).
constexpr uint32_t kRealTypeHashSeed = THash32OfByte(uint8_t(DataType::Real), kDataValueHashSeed);
static_assert(kRealTypeHashSeed == 0xD3EFA134u, "XXH32 of the byte 1 with the seed 0xDEADBEEF");
static_assert(THash32Of16Bytes(0x00000000FFFF0000ull, 42, kDataValueHashSeed) == 0x69936883u,
              "XXH32 of the sixteen bytes of the integer 42");

} // namespace Implementation

//===----------------------------------------------------------------------===//
// Inline implementation
//===----------------------------------------------------------------------===//

inline DataValue::DataValue() noexcept
    : m_type(DataType::Unknown), m_special(DataValueTypes::Special::Null), m_precision(-1), m_scale(-1), m_ordinal(0),
      m_payload(0)
{
}

inline DataValue::DataValue(bool value) noexcept : DataValue()
{
    SetBool(value);
}

inline DataValue::DataValue(int value) noexcept : DataValue()
{
    SetInt(value);
}

inline DataValue::DataValue(long value) noexcept : DataValue()
{
    SetInt(value);
}

inline DataValue::DataValue(long long value) noexcept : DataValue()
{
    SetInt(value);
}

inline DataValue::DataValue(double value, signed char precision, signed char scale) noexcept : DataValue()
{
    SetDecimal(value, precision, scale);
}

inline DataValue::DataValue(const Time& value, DataType) noexcept : DataValue()
{
    SetTime(value);
}

inline DataValue::DataValue(const DataValue& other)
{
    SetWords(other.GetHeaderWord(), other.m_payload);
    AddReference();
}

inline DataValue::DataValue(DataValue&& other) noexcept
{
    SetWords(other.GetHeaderWord(), other.m_payload);
    other.m_type = DataType::Unknown;
}

inline DataValue& DataValue::operator=(const DataValue& other)
{
    if (this != &other) {
        // The new reference is taken before the old one is given back: `other` may live
        // inside the object this value releases (a member of its own tuple).
        DataValue copy(other);
        RemoveReference();
        SetWords(copy.GetHeaderWord(), copy.m_payload);
        copy.m_type = DataType::Unknown;
    }
    return *this;
}

inline DataValue& DataValue::operator=(DataValue&& other) noexcept
{
    if (this != &other) {
        RemoveReference();
        SetWords(other.GetHeaderWord(), other.m_payload);
        other.m_type = DataType::Unknown;
    }
    return *this;
}

inline DataValue::~DataValue()
{
    RemoveReference();
}

inline DataValue DataValue::FromDouble(double value) noexcept
{
    DataValue v;
    v.SetReal(value);
    return v;
}

inline DataValue DataValue::FromInt(long long value) noexcept
{
    DataValue v;
    v.SetInt(value);
    return v;
}

inline DataValue DataValue::FromDate(DateTime value) noexcept
{
    DataValue v;
    v.SetDate(value);
    return v;
}

inline DataValue DataValue::FromDateTime(DateTime value) noexcept
{
    DataValue v;
    v.SetDatetime(value);
    return v;
}

inline void DataValue::SetInt(long long value) noexcept
{
    RemoveReference();
    WriteHeader(DataType::Integer, DataValueTypes::Special::None, -1, -1, 0);
    m_payload = static_cast<uint64_t>(value);
}

inline void DataValue::SetReal(double value) noexcept
{
    SetDecimal(value, -1, -1);
}

inline void DataValue::SetBool(bool value) noexcept
{
    RemoveReference();
    WriteHeader(DataType::Boolean, DataValueTypes::Special::None, -1, -1, 0);
    m_payload = value ? 1u : 0u;
}

inline void DataValue::SetDecimal(double value, signed char precision, signed char scale) noexcept
{
    RemoveReference();
    WriteHeader(DataType::Real, DataValueTypes::Special::None, precision, scale, 0);
    std::memcpy(&m_payload, &value, sizeof value);
}

inline void DataValue::SetDate(DateTime value) noexcept
{
    RemoveReference();
    // A valid date-time is never 0, so the payload of an ordinary date is never that of a special.
    const bool valid = value.IsValid();
    WriteHeader(DataType::Date, valid ? DataValueTypes::Special::None : DataValueTypes::Special::Null, -1, -1, 0);
    m_payload = valid ? value.GetDate().GetRepresentation() : 0;
}

inline void DataValue::SetDatetime(DateTime value) noexcept
{
    RemoveReference();
    const bool valid = value.IsValid();
    WriteHeader(DataType::DateTime, valid ? DataValueTypes::Special::None : DataValueTypes::Special::Null, -1, -1, 0);
    m_payload = valid ? value.GetRepresentation() : 0;
}

inline void DataValue::SetTime(Time value) noexcept
{
    RemoveReference();
    WriteHeader(DataType::Time, DataValueTypes::Special::None, -1, -1, 0);
    m_payload = value.GetRepresentation();
}

inline DateTime DataValue::GetDate() const
{
    if (m_type != DataType::Date)
        RaiseIncorrectDataType(DataType::Date, m_type);
    return GetDateUnchecked();
}

inline DateTime DataValue::GetDatetime() const
{
    if (m_type != DataType::DateTime)
        RaiseIncorrectDataType(DataType::DateTime, m_type);
    return GetDatetimeUnchecked();
}

inline Time DataValue::GetTime() const
{
    if (m_type != DataType::Time)
        RaiseIncorrectDataType(DataType::Time, m_type);
    return GetTimeUnchecked();
}

inline const TString& DataValue::GetString() const
{
    if (m_type != DataType::String)
        RaiseIncorrectDataType(DataType::String, m_type);
    return m_payload != 0 ? GetStringObject()->GetString() : GetEmptyString();
}

inline const Collation& DataValue::GetCollation() const noexcept
{
    return m_type == DataType::String && m_payload != 0 ? GetStringObject()->GetCollation() : GetUnknownCollation();
}

inline bool DataValue::GetBool() const
{
    if (m_type != DataType::Boolean)
        RaiseIncorrectDataType(DataType::Boolean, m_type);
    return GetBoolUnchecked();
}

inline long long DataValue::GetInt() const
{
    if (m_type != DataType::Integer)
        RaiseIncorrectDataType(DataType::Integer, m_type);
    return GetIntUnchecked();
}

inline double DataValue::GetReal() const
{
    if (m_type != DataType::Real)
        RaiseIncorrectDataType(DataType::Real, m_type);
    return GetRealUnchecked();
}

inline uint32_t DataValue::Hash() const
{
    static_assert(offsetof(DataValue, m_type) == 0 && offsetof(DataValue, m_special) == 1 &&
                      offsetof(DataValue, m_precision) == 2 && offsetof(DataValue, m_scale) == 3 &&
                      offsetof(DataValue, m_ordinal) == 4 && offsetof(DataValue, m_payload) == 8,
                  "the hash reads the fields in this order, with no padding");
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    if (m_type == DataType::Real)
        return THash32(&m_payload, sizeof m_payload, Implementation::kRealTypeHashSeed);
    if (HasObjectValue(m_type) && m_payload != 0)
        return m_type == DataType::String ? GetStringObject()->GetHash() : HashObject();
    return THash32(this, sizeof(DataValue), Implementation::kDataValueHashSeed);
#else
    if (m_type == DataType::Real)
        return Implementation::THash32Of8Bytes(m_payload, Implementation::kRealTypeHashSeed);
    if (HasObjectValue(m_type) && m_payload != 0)
        return m_type == DataType::String ? GetStringObject()->GetHash() : HashObject();
    return Implementation::THash32Of16Bytes(GetHeaderWord(), m_payload, Implementation::kDataValueHashSeed);
#endif
}

inline void DataValue::AddReference()
{
    if (!OwnsPayload(m_type) || m_payload == 0)
        return;
    if (m_type == DataType::Spatial)
        m_payload = CloneSpatialBox(m_payload);
    else
        GetCountedObject()->AddReference();
}

inline void DataValue::RemoveReference() noexcept
{
    if (!OwnsPayload(m_type) || m_payload == 0)
        return;
    if (m_type == DataType::Spatial)
        FreeSpatialBox(m_payload);
    else
        GetCountedObject()->RemoveReference();
}

inline bool operator==(const DataValue& a, const DataValue& b)
{
    // Same tag and the same payload bits: equal for every kind (the same object, for the
    // kinds that hold one). Otherwise only the kinds compared by their objects may be.
    if (a.GetTag() != b.GetTag())
        return false;
    if (a.m_payload == b.m_payload)
        return true;
    return DataValue::HasObjectValue(a.m_type) && a.EqualObjects(b);
}

inline bool operator!=(const DataValue& a, const DataValue& b)
{
    return !(a == b);
}

inline bool operator<(const DataValue& a, const DataValue& b)
{
    // Ordinary integers and reals of the same type are the bulk of every sort; a tag word of
    // type and special takes them in one comparison each.
    // An ordinary integer has the tag 0 (Integer, None).
    const unsigned tagA = a.GetTag();
    const unsigned tagB = b.GetTag();
    if (MURCOREDATA_LIKELY((tagA | tagB) == 0))
        return a.GetIntUnchecked() < b.GetIntUnchecked();
    if (tagA == unsigned(DataType::Real) && tagB == unsigned(DataType::Real))
        return a.GetRealUnchecked() < b.GetRealUnchecked();
    // Two ordinary strings go straight to their objects, which every such value holds.
    if (tagA == unsigned(DataType::String) && tagB == unsigned(DataType::String) && a.m_payload != 0 &&
        b.m_payload != 0)
        return *a.GetStringObject() < *b.GetStringObject();
    return Implementation::DataValueLess(a, b);
}

inline bool operator>(const DataValue& a, const DataValue& b)
{
    return b < a;
}

inline bool operator<=(const DataValue& a, const DataValue& b)
{
    return a == b || a < b;
}

inline bool operator>=(const DataValue& a, const DataValue& b)
{
    return a == b || b < a;
}
