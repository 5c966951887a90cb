#include "murcoredata/data/DataValue.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/InitOnce.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/foundation/TLog.h"
#include "murcoredata/parser/DataValueFormatter.h"

#include <QString>

#include <ostream>
#include <unordered_map>

namespace {

using Special = DataValueTypes::Special;

// The texts of the literal form, made at load time from static data (no allocation).
const TString s_nullLiteral(QStringLiteral("NULL"));
const TString s_trueLiteral(QStringLiteral("true"));
const TString s_falseLiteral(QStringLiteral("false"));
const TString s_quote(QStringLiteral("\""));

// The log event of a failed checked getter, at severity 3 (TLog::Warning).
constexpr int kIncorrectDataTypeSeverity = 3;

[[noreturn]] void ThrowBadSpecialArgument(const MurvaneError& error)
{
    throw MurvaneException(static_cast<const TStringCore&>(TString(u"DataValue::MakeSpecial: bad argument")),
                           TError::ErrorInfo(error));
}

// The names of DataTypeToString: the eight types that have one.
using TypeNameTable = std::unordered_map<DataType, const char16_t*>;

struct TypeNameTableFactory
{
    TypeNameTable operator()(void*) const
    {
        return TypeNameTable{
            {DataType::Integer, u"INTEGER"}, {DataType::Real, u"REAL"},       {DataType::String, u"STRING"},
            {DataType::DateTime, u"DATETIME"}, {DataType::Boolean, u"BOOLEAN"}, {DataType::Date, u"DATE"},
            {DataType::Tuple, u"TUPLE"},     {DataType::Spatial, u"SPATIAL"},
        };
    }
};

double RealOfBits(uint64_t bits)
{
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// The text of a real has no point and no exponent: only digits after an optional "-".
bool IsIntegralText(const TString& text)
{
    int i = (!text.isEmpty() && text[0] == u'-') ? 1 : 0;
    if (i >= text.size())
        return false;
    for (; i < text.size(); ++i)
        if (text[i] < u'0' || text[i] > u'9')
            return false;
    return true;
}

} // namespace

//===----------------------------------------------------------------------===//
// The spatial box. A `shared_ptr` is two words, so it lives on the heap and the payload
// points at it; a copy gets its own box, so no two values ever share one.
//===----------------------------------------------------------------------===//

namespace {
struct SpatialBox
{
    std::shared_ptr<const murgeo::Spatial> spatial;
};

SpatialBox* BoxOf(uint64_t payload)
{
    return reinterpret_cast<SpatialBox*>(static_cast<uintptr_t>(payload));
}

uint64_t PayloadOf(SpatialBox* box)
{
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(box));
}
} // namespace

uint64_t DataValue::CloneSpatialBox(uint64_t box)
{
    return PayloadOf(new SpatialBox(*BoxOf(box)));
}

void DataValue::FreeSpatialBox(uint64_t box) noexcept
{
    delete BoxOf(box);
}

void DataValue::AdoptSpatial(std::shared_ptr<const murgeo::Spatial>&& spatial)
{
    SpatialBox* box = new SpatialBox{std::move(spatial)};
    RemoveReference();
    WriteHeader(DataType::Spatial, Special::None, -1, -1, 0);
    m_payload = PayloadOf(box);
}

std::shared_ptr<const murgeo::Spatial> DataValue::GetSpatialPointer() const
{
    if (m_type != DataType::Spatial || m_payload == 0)
        return nullptr;
    return BoxOf(m_payload)->spatial;
}

void DataValue::AdoptCountedObject(DataType type, const RefCntObject* object) noexcept
{
    RemoveReference();
    // A string without a place in a sorted domain has the ordinal -2.
    WriteHeader(type, Special::None, -1, -1, type == DataType::String ? -2 : 0);
    m_payload = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(object));
}

//===----------------------------------------------------------------------===//
// Specials
//===----------------------------------------------------------------------===//

void DataValue::WriteSpecial(Special special, DataType type) noexcept
{
    RemoveReference();
    WriteHeader(type, special, -1, -1, 0);
    m_payload = 0;
}

DataValue::DataValue(Special special, DataType type) : DataValue()
{
    if (type == DataType::Tuple)
        ThrowBadSpecialArgument(MurErrorsError::AutoGen_0xC3E581B1());
    WriteSpecial(special, type);
}

void DataValue::MakeSpecial(Special special, DataType type)
{
    if (type == DataType::Tuple)
        ThrowBadSpecialArgument(MurErrorsError::AutoGen_0x230EF8C1());
    WriteSpecial(special, type);
}

void DataValue::SetNull()
{
    MakeSpecial(Special::Null, m_type);
}

void DataValue::SetNull(DataType type)
{
    MakeSpecial(Special::Null, type);
}

//===----------------------------------------------------------------------===//
// The incorrect-type failure
//===----------------------------------------------------------------------===//

void DataValue::RaiseIncorrectDataType(DataType expected, DataType actual)
{
    const DataValueFormatter::DataTypeEncodings& names = DataValueFormatter::sDataTypeEncodings;
    const TString actualName = names.Encode(actual);
    const TString expectedName = names.Encode(expected);
    const TString message =
        CoreData::LookupTFmtStr(CoreData::IDS_ERR_INCORRECT_DATA_TYPE_GET).arg(expectedName, actualName).result();

    // Walking the stack is the dear part: only when the event will be written.
    if (TLog::Logger::Get().IsEnabled(kIncorrectDataTypeSeverity)) {
        TLog::ValueMap fields = CaptureStackTraceForLogging(true);
        fields[TString(u"msg")] = TLog::Literal::String(message);
        fields[TString(u"actual")] = TLog::Literal::String(actualName);
        fields[TString(u"expected")] = TLog::Literal::String(expectedName);
        TLog::LogMessage(kIncorrectDataTypeSeverity, TString(u"incorrect-data-type"), fields, 0);
    }

    throw MurvaneException(static_cast<const TStringCore&>(message),
                           TError::ErrorInfo(MurErrorsError::IncorrectDatatypeException_0xCA8336D0(),
                                             TError::ErrorSource::Platform, grpc::StatusCode::UNKNOWN));
}

//===----------------------------------------------------------------------===//
// Order
//===----------------------------------------------------------------------===//

bool Implementation::DataValueLess(const DataValue& a, const DataValue& b)
{
    const DataType type = a.GetType();
    if (type != b.GetType()) {
        // Integers and reals meet on the real line, whatever their specials.
        if (type == DataType::Integer && b.GetType() == DataType::Real)
            return double(a.GetIntUnchecked()) < b.GetRealUnchecked();
        if (type == DataType::Real && b.GetType() == DataType::Integer)
            return a.GetRealUnchecked() < double(b.GetIntUnchecked());
        return uint8_t(type) < uint8_t(b.GetType());
    }

    const Special sa = a.GetSpecial();
    const Special sb = b.GetSpecial();
    if (sa != sb) {
        if (sa == Special::Null)
            return true;
        if (sb == Special::Null)
            return false;
        return int8_t(sa) < int8_t(sb);
    }

    switch (type) {
    case DataType::Integer:
        return a.GetIntUnchecked() < b.GetIntUnchecked();
    case DataType::Real:
        return a.GetRealUnchecked() < b.GetRealUnchecked();
    case DataType::Boolean:
        return uint8_t(a.GetAny()) < uint8_t(b.GetAny());
    case DataType::DateTime:
    case DataType::Date:
    case DataType::Time:
        return a.GetAny() < b.GetAny();
    case DataType::String:
    case DataType::Tuple:
    case DataType::Spatial:
        // Ordered by their objects, whose classes bring the comparison.
        return false;
    case DataType::Unknown:
    case DataType::Binary:
    case DataType::Table:
        return false;
    }
    return false; // a type byte outside the enumeration
}

//===----------------------------------------------------------------------===//
// Text
//===----------------------------------------------------------------------===//

TString DataValue::FormatAsLiteral() const
{
    if (m_special == Special::None) {
        switch (m_type) {
        case DataType::Integer:
            return TString::number(GetIntUnchecked(), 10, 0, u' ');
        case DataType::Real: {
            TString text = TString::number(GetRealUnchecked(), 'g', 17);
            // "3" would read back as an integer.
            if (IsIntegralText(text))
                text += u'.';
            return text;
        }
        case DataType::Boolean:
            return GetBoolUnchecked() ? s_trueLiteral : s_falseLiteral;
        case DataType::String:
        case DataType::DateTime:
        case DataType::Date:
        case DataType::Spatial:
            // Their literal forms come with their classes.
            return TString();
        case DataType::Tuple:
        case DataType::Unknown:
        case DataType::Binary:
        case DataType::Time:
        case DataType::Table:
            // No literal, deliberately.
            return TString();
        }
        return TString();
    }
    MUR_LOGIC_ASSERT(IsNull(), LogicAssert_0x21164B74);
    return s_nullLiteral;
}

TString DataValue::DataTypeToString(DataType type)
{
    static InitOnceSlot slot;
    const TypeNameTable& table = InitOnceHelper<false, false, TypeNameTableFactory, TypeNameTable>::Get(slot);
    const auto it = table.find(type);
    if (it != table.end())
        return TString(it->second);
    return TFormatString(u"UNKNOWN(%1)").arg(int(uint8_t(type))).result();
}

std::string toPrintableString(const TString& text)
{
    static const char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(size_t(text.size()) + 2);
    out += '"';
    for (const char16_t unit : text) {
        switch (unit) {
        case u'\n': out += "\\n"; continue;
        case u'\t': out += "\\t"; continue;
        case u'\r': out += "\\r"; continue;
        case u'\\': out += "\\\\"; continue;
        case u'"': out += "\\\""; continue;
        case u'\'': out += "\\'"; continue;
        default: break;
        }
        if (unit >= 32 && unit <= 126) {
            out += char(unit);
        } else {
            out += "\\x";
            out += kHex[(unit >> 12) & 0xF];
            out += kHex[(unit >> 8) & 0xF];
            out += kHex[(unit >> 4) & 0xF];
            out += kHex[unit & 0xF];
        }
    }
    out += '"';
    return out;
}

std::ostream& operator<<(std::ostream& out, const DataValue& value)
{
    return out << toPrintableString(value.FormatAsLiteral());
}

//===----------------------------------------------------------------------===//
// Visiting and arithmetic
//===----------------------------------------------------------------------===//

void DataValue::Accept(DataValueInspector& inspector) const
{
    if (m_special != Special::None) {
        inspector.InspectSpecial(m_special, m_type);
        return;
    }
    switch (m_type) {
    case DataType::Integer:
        inspector.InspectInt(GetIntUnchecked());
        return;
    case DataType::Real:
        inspector.InspectReal(GetRealUnchecked(), m_precision, m_scale);
        return;
    case DataType::Boolean:
        inspector.InspectBool(GetBoolUnchecked());
        return;
    case DataType::Spatial:
        inspector.InspectSpatial(GetSpatialPointer());
        return;
    case DataType::String:
    case DataType::DateTime:
    case DataType::Date:
    case DataType::Tuple:
    case DataType::Time:
        // Visited with their classes, which the inspector receives.
        return;
    case DataType::Unknown:
    case DataType::Binary:
        return;
    case DataType::Table:
        MUR_LOGIC_FAIL("DataType::Table not expected in DataValue", LogicAssert_0x935B635F);
    }
    // A type byte outside the enumeration: nothing to visit.
}

DataValue operator-(DataValue value)
{
    switch (value.GetType()) {
    case DataType::Integer:
        // Negation modulo 2^64: minus INT64_MIN is INT64_MIN.
        return DataValue::FromInt(static_cast<long long>(0u - value.GetAny()));
    case DataType::Real:
        return DataValue::FromDouble(RealOfBits(value.GetAny() ^ 0x8000000000000000ull));
    case DataType::String:
    case DataType::DateTime:
    case DataType::Boolean:
    case DataType::Date:
    case DataType::Tuple:
    case DataType::Spatial:
    case DataType::Unknown:
    case DataType::Binary:
    case DataType::Time:
    case DataType::Table:
        break;
    }
    MUR_LOGIC_FAIL("Unary operator- is unsupported for this data type.", LogicAssert_0xED6A87E9);
}
