#include "murcoredata/data/BinaryDataValue.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/DateTime.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/MurvaneError.h"

#include <cmath>
#include <cstring>

namespace {

// The failure of the two setters without an image. The types are shown as their raw
// numbers, not by name: the expected 8 and the given type.
[[noreturn]] void ThrowNoImage(DataType given, const MurvaneError& error)
{
    const TString message = CoreData::LookupTFmtStr(CoreData::IDS_ERR_INCORRECT_DATA_TYPE_SET)
                                .arg(int(DataType::Unknown))
                                .arg(int(given))
                                .result();
    throw MurvaneException(static_cast<const TStringCore&>(message),
                           TError::ErrorInfo(error, TError::ErrorSource::DataType, grpc::StatusCode::UNKNOWN));
}

// round(value x 10^scale) as a signed 64-bit integer. The rounding is half away from zero;
// a product outside the integers (NaN included) gives the integer indefinite, as the
// hardware's conversion does, without the undefined conversion in between.
int64_t ScaledDecimal(double value, int scale)
{
    const double rounded = std::round(value * double(BinaryDataValue::s_numericShifts[scale]));
    // -2^63 is exact as a double; 2^63 is the first value above the integers.
    if (!(rounded >= -9223372036854775808.0 && rounded < 9223372036854775808.0))
        return INT64_MIN;
    return static_cast<int64_t>(rounded);
}

} // namespace

BinaryDataValue::BinaryDataValue(const std::vector<char>& bytes) : m_value(bytes)
{
}

BinaryDataValue::BinaryDataValue(std::vector<char>&& bytes) noexcept : m_value(std::move(bytes))
{
}

BinaryDataValue::BinaryDataValue(const char* data, size_t size)
{
    SetValue(data, size);
}

BinaryDataValue::BinaryDataValue(const TString& text)
{
    SetString(text);
}

BinaryDataValue::BinaryDataValue(const DataValue& value)
{
    SetDataValue(value);
}

BinaryDataValue::~BinaryDataValue() = default;

void BinaryDataValue::SetValue(const std::vector<char>& bytes)
{
    if (&bytes != &m_value)
        m_value = bytes;
}

void BinaryDataValue::SetValue(std::vector<char>&& bytes) noexcept
{
    m_value = std::move(bytes);
}

void BinaryDataValue::SetValue(const char* data, size_t size)
{
    if (data == nullptr)
        m_value.clear();
    else
        m_value.assign(data, data + size);
}

template <typename T>
void BinaryDataValue::SetScalar(const T& value)
{
    static_assert(std::is_trivially_copyable<T>::value, "an image is the bytes of the value");
    m_value.resize(sizeof(T));
    std::memcpy(m_value.data(), &value, sizeof(T));
}

void BinaryDataValue::SetInt16(short value)
{
    SetScalar<int16_t>(value);
}

void BinaryDataValue::SetInt32(int value)
{
    SetScalar<int32_t>(value);
}

void BinaryDataValue::SetInt64(long long value)
{
    SetScalar<int64_t>(value);
}

void BinaryDataValue::SetBoolean(const bool& value)
{
    SetScalar(value);
}

void BinaryDataValue::SetReal(const double& value, signed char scale)
{
    if (scale >= 0 && scale <= 18)
        SetScalar(ScaledDecimal(value, scale));
    else
        SetScalar(value);
}

void BinaryDataValue::SetDate(const DateTime& value)
{
    // Days with the first day as 1; the day number of any representation fits, the cut
    // only matters for raw values beyond every calendar.
    SetScalar(static_cast<uint32_t>(value.GetRepresentation() / DateTime::s_scaling + 1));
}

void BinaryDataValue::SetDateTime(const DateTime& value)
{
    SetScalar(static_cast<uint64_t>((value.GetRepresentation() + DateTime::s_scaling) * 100u));
}

void BinaryDataValue::SetString(const char* data, unsigned long size)
{
    if (data == nullptr)
        size = 0;
    const int32_t length = static_cast<int32_t>(static_cast<uint32_t>(size));
    m_value.resize(sizeof length + size);
    std::memcpy(m_value.data(), &length, sizeof length);
    if (size != 0)
        std::memcpy(m_value.data() + sizeof length, data, size);
}

void BinaryDataValue::SetString(const std::string& text)
{
    SetString(text.data(), text.size());
}

void BinaryDataValue::SetString(const TString& text)
{
    SetString(text.toStdString());
}

void BinaryDataValue::SetDataValue(const DataValue& value)
{
    switch (value.GetType()) {
    case DataType::Integer:
        SetInt64(value.GetIntUnchecked());
        return;
    case DataType::Real:
        SetReal(value.GetRealUnchecked(), static_cast<signed char>(value.GetScale()));
        return;
    case DataType::String:
        SetString(value.GetString());
        return;
    case DataType::DateTime:
        SetDateTime(value.GetDatetimeUnchecked());
        return;
    case DataType::Boolean:
        SetBoolean(value.GetBoolUnchecked());
        return;
    case DataType::Date:
        SetDate(value.GetDateUnchecked());
        return;
    case DataType::Tuple:
    case DataType::Spatial:
    case DataType::Unknown:
    case DataType::Binary:
    case DataType::Time:
    case DataType::Table:
        return;
    }
    // A type byte outside the enumeration has no image either.
}

void BinaryDataValue::SetTuple(const RefCntPtr<Tuple, RefCntObject>&)
{
    ThrowNoImage(DataType::Tuple, MurErrorsError::IncorrectDatatypeException_0xCA8348EE());
}

void BinaryDataValue::SetSpatial(const std::shared_ptr<const murgeo::Spatial>&)
{
    ThrowNoImage(DataType::Spatial, MurErrorsError::IncorrectDatatypeException_0xCA836145());
}
