#pragma once

// BinaryDataValue: the shared, counted byte string behind a `DataValue` of type Binary, and
// the fixed-width byte images into which scalars are packed for storage.
//
// Every setter replaces the bytes as a whole. Integers are in the byte order of the machine
// that wrote them (little-endian on every platform this library runs on). An image has no
// header, tag or version: its reader must know the type from elsewhere.
//
//   SetInt16 / SetInt32 / SetInt64   2 / 4 / 8 bytes of the integer
//   SetBoolean                       1 byte: the byte of the bool
//   SetReal(v, -1)                   8 bytes: the bits of the double
//   SetReal(v, scale 0..18)          8 bytes: the integer round(v x 10^scale), half away
//                                    from zero: a scaled decimal (12.345, scale 2 -> 1235)
//   SetDate(d)                       4 bytes: the day number + 1, cut to 32 bits
//   SetDateTime(d)                   8 bytes: (representation + 864,000,000) x 100, wrapping
//   SetString                        4 bytes of length (signed 32-bit), then the bytes;
//                                    a TString is written as UTF-8

#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/RefCnt.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class DataValue;
class DateTime;
class TString;
class Tuple;
namespace murgeo {
class Spatial;
}

class MURCOREDATA_EXPORT BinaryDataValue : public RefCntObject
{
public:
    /// 10 to the power of the index, 0 to 18: the scales a scaled decimal can have.
    static constexpr unsigned long long s_numericShifts[19] = {
        1ULL,
        10ULL,
        100ULL,
        1000ULL,
        10000ULL,
        100000ULL,
        1000000ULL,
        10000000ULL,
        100000000ULL,
        1000000000ULL,
        10000000000ULL,
        100000000000ULL,
        1000000000000ULL,
        10000000000000ULL,
        100000000000000ULL,
        1000000000000000ULL,
        10000000000000000ULL,
        100000000000000000ULL,
        1000000000000000000ULL,
    };

    //===------------------------------------------------------------------===//
    // Construction. A null `data` reads as no bytes, whatever `size` says.
    //===------------------------------------------------------------------===//

    BinaryDataValue() = default;
    explicit BinaryDataValue(const std::vector<char>& bytes);
    explicit BinaryDataValue(std::vector<char>&& bytes) noexcept;
    BinaryDataValue(const char* data, size_t size);
    /// The image of `SetString`.
    explicit BinaryDataValue(const TString& text);
    /// The image of `SetDataValue`.
    explicit BinaryDataValue(const DataValue& value);
    ~BinaryDataValue() override;

    //===------------------------------------------------------------------===//
    // Raw bytes
    //===------------------------------------------------------------------===//

    /// Ignores an assignment of its own bytes.
    void SetValue(const std::vector<char>& bytes);
    void SetValue(std::vector<char>&& bytes) noexcept;
    void SetValue(const char* data, size_t size);
    const std::vector<char>& GetValue() const noexcept { return m_value; }

    //===------------------------------------------------------------------===//
    // Byte images (see the top of this file)
    //===------------------------------------------------------------------===//

    void SetInt16(short value);
    void SetInt32(int value);
    void SetInt64(long long value);
    void SetBoolean(const bool& value);
    /// `scale` -1 writes the bits of the double; 0 to 18 the scaled decimal. Any other scale
    /// has no scaled form and writes the bits too. A scaled product beyond the 64-bit
    /// integers (or NaN) writes 0x8000000000000000, the machine's integer indefinite.
    void SetReal(const double& value, signed char scale);
    void SetDate(const DateTime& value);
    void SetDateTime(const DateTime& value);
    /// `size` bytes of `data` (none when `data` is null). A length above 2^31 - 1 is cut to
    /// its low 32 bits in the length field.
    void SetString(const char* data, unsigned long size);
    void SetString(const std::string& text);
    /// The UTF-8 of `text`.
    void SetString(const TString& text);

    /// The image of `value` by its type alone, through the unchecked getters: a special writes
    /// the image of its empty payload (a null date writes the default date). Integer, Real
    /// (its stored scale decides the form), String, DateTime, Boolean and Date have one; any
    /// other type leaves the bytes as they were.
    void SetDataValue(const DataValue& value);

    /// Tuples and spatial objects have no byte image: both always throw the setting variant
    /// of the incorrect-type failure, naming the types by number.
    [[noreturn]] void SetTuple(const RefCntPtr<Tuple, RefCntObject>& tuple);
    [[noreturn]] void SetSpatial(const std::shared_ptr<const murgeo::Spatial>& spatial);

private:
    template <typename T>
    void SetScalar(const T& value);

    std::vector<char> m_value;
};
