#include "murcoredata/data/DataValue.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/data/BinaryDataValue.h"
#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/InitOnce.h"
#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/TFormatString.h"
#include "murcoredata/foundation/TLog.h"
#include "murcoredata/parser/DataValueFormatter.h"
#include "murgeo/Spatial.h"

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

// An argument failure of a constructor or setter: the message as given, the site's error,
// error source 4 and status 2.
[[noreturn]] void ThrowBadArgument(const char16_t* message, const MurvaneError& error)
{
    throw MurvaneException(static_cast<const TStringCore&>(TString(message)), TError::ErrorInfo(error));
}

[[noreturn]] void ThrowBadSpecialArgument(const MurvaneError& error)
{
    ThrowBadArgument(u"DataValue::MakeSpecial: bad argument", error);
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

namespace {
// The object in the box of a Spatial value, without touching its count; null without a box.
const murgeo::Spatial* SpatialOf(const DataValue& value)
{
    const uint64_t payload = value.GetAny();
    return payload == 0 ? nullptr : BoxOf(payload)->spatial.get();
}
} // namespace

std::shared_ptr<const murgeo::Spatial> DataValue::GetSpatialPointer() const
{
    if (m_type != DataType::Spatial || m_payload == 0)
        return nullptr;
    return BoxOf(m_payload)->spatial;
}

void DataValue::SetSpatial(std::shared_ptr<const murgeo::Spatial> spatial)
{
    if (!spatial)
        ThrowBadArgument(u"DataValue::SetSpatial: cannot construct from null", MurErrorsError::AutoGen_0x90F95D59());
    AdoptSpatial(std::move(spatial));
}

void SetSpatialOrNull(DataValue& value, std::shared_ptr<const murgeo::Spatial> spatial)
{
    if (spatial)
        value.SetSpatial(std::move(spatial));
    else
        value.SetNull(DataType::Spatial);
}

std::shared_ptr<const murgeo::Spatial> DataValue::GetSpatial() const
{
    if (m_type != DataType::Spatial)
        RaiseIncorrectDataType(DataType::Spatial, m_type);
    return GetSpatialPointer();
}

void DataValue::AdoptCountedObject(DataType type, const RefCntObject* object) noexcept
{
    RemoveReference();
    // A string without a place in a sorted domain has the ordinal -2.
    WriteHeader(type, Special::None, -1, -1, type == DataType::String ? -2 : 0);
    m_payload = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(object));
}

//===----------------------------------------------------------------------===//
// Strings, tuples and binaries. The payload is the address of the RefCntObject base.
//===----------------------------------------------------------------------===//

namespace {
const StringWithCollation* StringOf(const DataValue& value)
{
    return static_cast<const StringWithCollation*>(
        reinterpret_cast<const RefCntObject*>(static_cast<uintptr_t>(value.GetAny())));
}

// A new string object with the first reference taken, for `AdoptCountedObject`.
const StringWithCollation* FirstReference(const StringWithCollation* string) noexcept
{
    string->AddReference();
    return string;
}
} // namespace

DataValue::DataValue(StringWithCollation&& string) : DataValue()
{
    SetString(std::move(string));
}

DataValue::DataValue(const RefCntPtr<StringWithCollation, RefCntObject>& string) : DataValue()
{
    SetString(string);
}

DataValue::DataValue(const Collation& collation, const TString& text) : DataValue()
{
    SetString(collation, text);
}

DataValue::DataValue(Collation&& collation, TString&& text) : DataValue()
{
    AdoptCountedObject(DataType::String, FirstReference(new StringWithCollation(std::move(text), std::move(collation))));
}

DataValue DataValue::FromString(const TString& text)
{
    return DataValue(GetUnknownCollation(), text);
}

void DataValue::SetString(StringWithCollation&& string)
{
    AdoptCountedObject(DataType::String, FirstReference(new StringWithCollation(std::move(string))));
}

void DataValue::SetString(const Collation& collation, const TString& text)
{
    AdoptCountedObject(DataType::String, FirstReference(new StringWithCollation(text, collation)));
}

void DataValue::SetString(const RefCntPtr<StringWithCollation, RefCntObject>& string)
{
    if (!string)
        ThrowBadArgument(u"DataValue::SetString: bad argument", MurErrorsError::AutoGen_0xE188009E());
    AdoptCountedObject(DataType::String, FirstReference(string.get()));
}

void DataValue::SetString(RefCntPtr<StringWithCollation, RefCntObject>&& string)
{
    if (!string)
        ThrowBadArgument(u"DataValue::SetString: bad argument", MurErrorsError::AutoGen_0xE188009F());
    AdoptCountedObject(DataType::String, string.release());
}

const TString& DataValue::GetEmptyString() noexcept
{
    static const TString s_empty;
    return s_empty;
}

namespace {
const Tuple* TupleOf(const DataValue& value)
{
    return static_cast<const Tuple*>(reinterpret_cast<const RefCntObject*>(static_cast<uintptr_t>(value.GetAny())));
}

const BinaryDataValue* BinaryOf(const DataValue& value)
{
    return static_cast<const BinaryDataValue*>(
        reinterpret_cast<const RefCntObject*>(static_cast<uintptr_t>(value.GetAny())));
}
} // namespace

DataValue::DataValue(RefCntPtr<Tuple, RefCntObject> tuple) : DataValue()
{
    SetTuple(std::move(tuple));
}

DataValue::DataValue(std::shared_ptr<const murgeo::Spatial> spatial) : DataValue()
{
    SetSpatial(std::move(spatial));
}

DataValue::DataValue(RefCntPtr<BinaryDataValue, RefCntObject> binary) : DataValue()
{
    SetBinary(std::move(binary));
}

void DataValue::SetTuple(RefCntPtr<Tuple, RefCntObject> tuple)
{
    if (!tuple)
        ThrowBadArgument(u"DataValue::SetTuple: bad argument", MurErrorsError::AutoGen_0x92C27045());
    // The argument's reference becomes the value's.
    AdoptCountedObject(DataType::Tuple, tuple.release());
}

void DataValue::SetBinary(RefCntPtr<BinaryDataValue, RefCntObject> binary)
{
    if (!binary)
        ThrowBadArgument(u"DataValue::SetBinary: cannot construct from null", MurErrorsError::AutoGen_0x0EB526BD());
    AdoptCountedObject(DataType::Binary, binary.release());
}

RefCntPtr<Tuple, RefCntObject> DataValue::GetTuple() const
{
    if (m_type != DataType::Tuple)
        RaiseIncorrectDataType(DataType::Tuple, m_type);
    return RefCntPtr<Tuple, RefCntObject>(const_cast<Tuple*>(TupleOf(*this)));
}

RefCntPtr<BinaryDataValue, RefCntObject> DataValue::GetBinary() const
{
    if (m_type != DataType::Binary)
        RaiseIncorrectDataType(DataType::Binary, m_type);
    return GetBinaryUnchecked();
}

RefCntPtr<BinaryDataValue, RefCntObject> DataValue::GetBinaryUnchecked() const
{
    return RefCntPtr<BinaryDataValue, RefCntObject>(const_cast<BinaryDataValue*>(BinaryOf(*this)));
}

//===----------------------------------------------------------------------===//
// Dates
//===----------------------------------------------------------------------===//

DataValue::DataValue(const DateTime& value, DataType type) : DataValue()
{
    if (type == DataType::Date)
        SetDate(value);
    else if (type == DataType::DateTime)
        SetDatetime(value);
    else
        MUR_LOGIC_ASSERT(false, LogicAssert_0x72FAA0AE);
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

namespace {

// Both variants of the incorrect-type failure: the document names of the two types in the
// message, the event "incorrect-data-type" in the log, then the exception.
[[noreturn]] void RaiseIncorrectType(DataType expected, DataType actual, CoreData::StringId messageId,
                                     bool withStack, const MurvaneError& error, TError::ErrorSource source)
{
    const DataValueFormatter::DataTypeEncodings& names = DataValueFormatter::sDataTypeEncodings;
    const TString actualName = names.Encode(actual);
    const TString expectedName = names.Encode(expected);
    const TString message = CoreData::LookupTFmtStr(messageId).arg(expectedName, actualName).result();

    // Walking the stack is the dear part: only when the event will be written.
    if (TLog::Logger::Get().IsEnabled(kIncorrectDataTypeSeverity)) {
        TLog::ValueMap fields = CaptureStackTraceForLogging(withStack);
        fields[TString(u"msg")] = TLog::Literal::String(message);
        fields[TString(u"actual")] = TLog::Literal::String(actualName);
        fields[TString(u"expected")] = TLog::Literal::String(expectedName);
        TLog::LogMessage(kIncorrectDataTypeSeverity, TString(u"incorrect-data-type"), fields, 0);
    }

    throw MurvaneException(static_cast<const TStringCore&>(message),
                           TError::ErrorInfo(error, source, grpc::StatusCode::UNKNOWN));
}

} // namespace

void DataValue::RaiseIncorrectDataType(DataType expected, DataType actual)
{
    RaiseIncorrectType(expected, actual, CoreData::IDS_ERR_INCORRECT_DATA_TYPE_GET, true,
                       MurErrorsError::IncorrectDatatypeException_0xCA8336D0(), TError::ErrorSource::Platform);
}

void DataValue::RaiseIncorrectDataTypeForSetting(DataType expected, DataType actual)
{
    RaiseIncorrectType(expected, actual, CoreData::IDS_ERR_INCORRECT_DATA_TYPE_SET, false,
                       MurErrorsError::IncorrectDatatypeException_0xCA8336D1(), TError::ErrorSource::DataType);
}

void DataValue::SetOrdinal(int ordinal)
{
    // A null string names "string" twice in the message: the type is right, the object is not there.
    if (m_type != DataType::String || m_payload == 0)
        RaiseIncorrectDataTypeForSetting(DataType::String, m_type);
    m_ordinal = ordinal;
}

//===----------------------------------------------------------------------===//
// Equality and hash of the kinds compared by their objects
//===----------------------------------------------------------------------===//

bool DataValue::EqualObjects(const DataValue& other) const
{
    // Same tag, different payloads. A special has no payload, so one side without an object
    // means a document's stray bytes: not equal.
    if (m_payload == 0 || other.m_payload == 0)
        return false;
    switch (m_type) {
    case DataType::Tuple:
        return *TupleOf(*this) == *TupleOf(other);
    case DataType::Spatial: {
        const murgeo::Spatial* a = SpatialOf(*this);
        const murgeo::Spatial* b = SpatialOf(other);
        if (a == b)
            return true;
        return a != nullptr && b != nullptr && *a == *b;
    }
    case DataType::String:
        return *StringOf(*this) == *StringOf(other);
    case DataType::Integer:
    case DataType::Real:
    case DataType::DateTime:
    case DataType::Boolean:
    case DataType::Date:
    case DataType::Unknown:
    case DataType::Binary:
    case DataType::Time:
    case DataType::Table:
        break;
    }
    return false;
}

uint32_t DataValue::HashObject() const
{
    switch (m_type) {
    case DataType::Tuple:
        return TupleOf(*this)->Hash();
    case DataType::Spatial:
        if (const murgeo::Spatial* spatial = SpatialOf(*this))
            return spatial->GetHash();
        break;
    case DataType::String:
        return StringOf(*this)->GetHash();
    case DataType::Integer:
    case DataType::Real:
    case DataType::DateTime:
    case DataType::Boolean:
    case DataType::Date:
    case DataType::Unknown:
    case DataType::Binary:
    case DataType::Time:
    case DataType::Table:
        break;
    }
    return THash32(this, sizeof(DataValue), Implementation::kDataValueHashSeed);
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
    case DataType::String: {
        // A string without its object (a special) sorts first.
        const StringWithCollation* sa = StringOf(a);
        const StringWithCollation* sb = StringOf(b);
        if (sa == nullptr || sb == nullptr)
            return sa == nullptr && sb != nullptr;
        return *sa < *sb;
    }
    case DataType::Tuple: {
        // A null pointer (only ever from a document's bytes) sorts first.
        const Tuple* ta = TupleOf(a);
        const Tuple* tb = TupleOf(b);
        if (ta == nullptr || tb == nullptr)
            return ta == nullptr && tb != nullptr;
        return *ta < *tb;
    }
    case DataType::Spatial: {
        // Shapes have no natural order; their hashes give a stable one.
        const murgeo::Spatial* sa = SpatialOf(a);
        const murgeo::Spatial* sb = SpatialOf(b);
        return sa != nullptr && sb != nullptr && sa->GetHash() < sb->GetHash();
    }
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

namespace {

enum class TimeLiteral
{
    None,         // #yyyy-MM-dd#
    Seconds,      // #yyyy-MM-dd HH:mm:ss#
    Milliseconds, // #yyyy-MM-dd HH:mm:ss.SSS#
};

// The date literal: the value's own civil fields in the fixed patterns of the date parser's
// table, the year with at least four digits, the other fields with two (milliseconds with
// three), between two "#".
TString DateLiteral(DateTime value, TimeLiteral time)
{
    const DateTime::YearMonthDay ymd = value.GetYearMonthDay();
    TString text = TFormatString(u"#%1-%2-%3").arg(ymd.year, 4, 10, u'0').arg(ymd.month, 2, 10, u'0').arg(ymd.day, 2, 10, u'0').result();
    if (time != TimeLiteral::None) {
        text += TFormatString(u" %1:%2:%3")
                    .arg(value.GetHour(), 2, 10, u'0')
                    .arg(value.GetMinute(), 2, 10, u'0')
                    .arg(value.GetSecond(), 2, 10, u'0')
                    .result();
        if (time == TimeLiteral::Milliseconds)
            text += TFormatString(u".%1").arg(value.GetMilliseconds(), 3, 10, u'0').result();
    }
    text += u'#';
    return text;
}

// The text between double quotes, each double quote inside doubled: a"b gives "a""b".
TString StringLiteral(const TString& text)
{
    TString literal = s_quote;
    literal.reserve(text.size() + 2);
    for (const char16_t unit : text) {
        literal += unit;
        if (unit == u'"')
            literal += unit;
    }
    literal += s_quote;
    return literal;
}

// The short literal of a shape: its shape type in single quotes ('Point'). The full literal
// with its keyword (GEOMETRY('POINT (1 2)')) belongs to the spatial text forms.
TString SpatialLiteral(const murgeo::Spatial* spatial)
{
    if (spatial == nullptr)
        return TString();
    const std::string shape = murgeo::to_string(spatial->GetShapeType());
    return TString(u"'") + TString::fromUtf8(shape.data(), int(shape.size())) + TString(u"'");
}

} // namespace

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
            return StringLiteral(GetString());
        case DataType::DateTime: {
            const DateTime value = GetDatetimeUnchecked();
            return DateLiteral(value, value.GetMilliseconds() < 1 ? TimeLiteral::Seconds : TimeLiteral::Milliseconds);
        }
        case DataType::Date:
            return DateLiteral(GetDateUnchecked(), TimeLiteral::None);
        case DataType::Spatial:
            return SpatialLiteral(SpatialOf(*this));
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
    case DataType::DateTime:
        inspector.InspectDatetime(GetDatetimeUnchecked());
        return;
    case DataType::Date:
        inspector.InspectDate(GetDateUnchecked());
        return;
    case DataType::Time:
        inspector.InspectTime(GetTimeUnchecked());
        return;
    case DataType::Tuple:
        inspector.InspectTuple(RefCntPtr<Tuple, RefCntObject>(const_cast<Tuple*>(TupleOf(*this))));
        return;
    case DataType::String:
        inspector.InspectString(GetCollation(), GetString());
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
