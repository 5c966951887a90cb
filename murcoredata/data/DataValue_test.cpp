#include "murcoredata/data/DataValue.h"
#include "murcoredata/foundation/LogCapture_test.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/data/RecordingInspector_test.h"

#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/TLog.h"
#include "murcoredata/parser/DataValueFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <sstream>
#include <vector>

using Special = DataValueTypes::Special;

// Reaches the private raw forms, to build values of kinds whose classes are not part of
// this test: type bytes from documents, dates by representation, counted objects.
struct DataValueTestPeer
{
    static DataValue Raw(uint8_t type, int8_t special, uint64_t payload)
    {
        DataValue v;
        v.m_type = DataType(type);
        v.m_special = Special(special);
        v.m_payload = payload;
        return v;
    }
    // Any sixteen bytes. The value must be passed to `Forget` before it is destroyed.
    static DataValue RawWords(uint64_t header, uint64_t payload)
    {
        DataValue v;
        v.SetWords(header, payload);
        return v;
    }
    // Drops the payload without releasing it: for values whose payload is no object.
    static void Forget(DataValue& v) { v.m_payload = 0; }
    static DataValue Counted(DataType type, const RefCntObject* object)
    {
        object->AddReference();
        DataValue v;
        v.AdoptCountedObject(type, object);
        return v;
    }
    static DataValue Spatial(std::shared_ptr<const murgeo::Spatial> spatial)
    {
        DataValue v;
        v.AdoptSpatial(std::move(spatial));
        return v;
    }
    static std::shared_ptr<const murgeo::Spatial> SpatialOf(const DataValue& v) { return v.GetSpatialPointer(); }
    static int32_t Ordinal(const DataValue& v) { return v.m_ordinal; }
};

namespace {

constexpr long long kInt64Min = std::numeric_limits<long long>::min();
constexpr long long kInt64Max = std::numeric_limits<long long>::max();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

uint64_t BitsOf(double d)
{
    uint64_t bits;
    std::memcpy(&bits, &d, sizeof bits);
    return bits;
}

double RealOfBits(uint64_t bits)
{
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

// The sixteen bytes of a value, in field order.
std::vector<uint8_t> BytesOf(const DataValue& v)
{
    std::vector<uint8_t> bytes(sizeof v);
    std::memcpy(bytes.data(), static_cast<const void*>(&v), sizeof v);
    return bytes;
}

// Which of the six relations hold from a to b, each operator asked on its own.
std::string Relations(const DataValue& a, const DataValue& b)
{
    std::string r;
    for (auto [holds, name] : {std::pair(a < b, "<"), std::pair(a <= b, "<="), std::pair(a == b, "=="),
                               std::pair(a != b, "!="), std::pair(a >= b, ">="), std::pair(a > b, ">")})
        r += holds ? std::string(name) + " " : "";
    return r;
}

void ExpectOrdered(const DataValue& lesser, const DataValue& greater)
{
    EXPECT_EQ(Relations(lesser, greater), "< <= != ");
    EXPECT_EQ(Relations(greater, lesser), "!= >= > ");
}

// Neither equal nor ordered: the settled gaps of the order (1 and 1.0, NaN, signed zeros).
void ExpectUnordered(const DataValue& a, const DataValue& b)
{
    EXPECT_EQ(Relations(a, b), "!= ");
    EXPECT_EQ(Relations(b, a), "!= ");
}

void ExpectEqual(const DataValue& a, const DataValue& b)
{
    EXPECT_EQ(Relations(a, b), "<= == >= ");
    EXPECT_EQ(Relations(b, a), "<= == >= ");
    EXPECT_EQ(a.Hash(), b.Hash());
    EXPECT_EQ(std::hash<DataValue>()(a), size_t(a.Hash()));
}

// A counted object that tells when it dies.
struct Counted : RefCntObject
{
    explicit Counted(int* deaths) : deaths(deaths) {}
    ~Counted() override { ++*deaths; }
    int* deaths;
};

// A counted object that holds a value, as a tuple holds its members.
struct Holder : RefCntObject
{
    DataValue member;
};

using ScopedSink = TestSupport::ScopedLogCapture;
using TestSupport::Caught;

} // namespace

//===--- Layout and header ---===//

static_assert(sizeof(DataValue) == 16, "two words");
static_assert(IsNumeric(DataType::Integer) && IsNumeric(DataType::Real) && !IsNumeric(DataType::Boolean), "");
static_assert(IsTemporal(DataType::Date) && IsTemporal(DataType::DateTime) && !IsTemporal(DataType::Time), "");
static_assert(IsQuantitative(DataType::Date) && IsQuantitative(DataType::Real) && !IsQuantitative(DataType::Time), "");
static_assert(!std::is_convertible<int, DataValue>::value && !std::is_convertible<bool, DataValue>::value,
              "numbers become values only on purpose");
static_assert(!std::is_constructible<DataValue, const char16_t*>::value && !std::is_constructible<DataValue, std::nullptr_t>::value,
              "a pointer is not a boolean");
static_assert(!std::is_constructible<DataValue, double>::value, "a real goes through FromDouble");

TEST(DataValue, HeadersAreWrittenAsTheTableSays)
{
    struct Row
    {
        const char* what;
        DataValue value;
        std::vector<uint8_t> bytes; // type, special, precision, scale, ordinal (4), payload (8)
    } rows[] = {
        {"default", DataValue(), {8, 1, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"int -2", DataValue(-2), {0, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {"long", DataValue(long(7)), {0, 0, 0xFF, 0xFF, 0, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0}},
        {"true", DataValue(true), {4, 0, 0xFF, 0xFF, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}},
        {"real 1.0", DataValue::FromDouble(1.0), {1, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}},
        {"decimal", DataValue(1.0, 10, 2), {1, 0, 10, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}},
        {"missing date", DataValue(Special::Missing, DataType::Date), {5, 9, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"null string", DataValue(Special::Null, DataType::String), {2, 1, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(BytesOf(row.value), row.bytes);
    }
}

TEST(DataValue, SettersReplaceTheWholeHeader)
{
    DataValue v(1.25, 6, 3);
    v.SetInt(5);
    EXPECT_EQ(BytesOf(v), BytesOf(DataValue(5)));

    // A boolean clears the whole payload word: all of it takes part in equality.
    v.SetReal(RealOfBits(0xFFFFFFFFFFFFFFFFull));
    v.SetBool(true);
    EXPECT_EQ(v.GetAny(), 1u);
    EXPECT_EQ(v, DataValue(true));

    v.MakeSpecial(Special::Missing, DataType::Integer);
    EXPECT_TRUE(v.IsMissing());
    EXPECT_FALSE(v.IsNull());
    EXPECT_EQ(v.GetAny(), 0u);
    v.SetNull();
    EXPECT_EQ(BytesOf(v), BytesOf(DataValue(Special::Null, DataType::Integer)));
    v.SetNull(DataType::Time);
    EXPECT_EQ(v.GetType(), DataType::Time);
    EXPECT_TRUE(v.IsNull());
}

TEST(DataValue, PrecisionAndScaleAreTotal)
{
    const DataValue decimal(2.5, 10, 0);
    EXPECT_TRUE(decimal.HasScale()); // scale 0 is a scale
    EXPECT_EQ(decimal.GetScale(), 0);
    EXPECT_FALSE(DataValue::FromDouble(2.5).HasPrecision());
    EXPECT_EQ(DataValue::FromDouble(2.5).GetPrecision(), -1);
    // Only a real has decimals, whatever the fields hold.
    EXPECT_EQ(DataValue(7).GetPrecision(), -1);
    EXPECT_FALSE(DataValue(7).HasScale());
    // -100 is stored, and is not "absent".
    const DataValue odd(2.5, -100, 127);
    EXPECT_EQ(odd.GetPrecision(), -100);
    EXPECT_TRUE(odd.HasPrecision());
    EXPECT_EQ(odd.GetScale(), 127);
}

TEST(DataValue, MakersAndLiterals)
{
    EXPECT_EQ(BytesOf(42_dv), BytesOf(DataValue::FromInt(42)));
    EXPECT_EQ(BytesOf(2.5_dv), BytesOf(DataValue::FromDouble(2.5)));
    EXPECT_EQ((-1_dv).GetInt(), -1);
    // The literal of 2^63 wraps to the smallest integer, so the text of INT64_MIN works.
    EXPECT_EQ((-9223372036854775808_dv).GetInt(), kInt64Min);
    EXPECT_EQ(DataValue(int(-5)).GetInt(), -5); // sign-extended
}

//===--- Getters and the incorrect-type failure ---===//

TEST(DataValue, CheckedGettersLookAtTheTypeOnly)
{
    EXPECT_EQ(DataValue(Special::Null, DataType::Integer).GetInt(), 0);
    EXPECT_EQ(DataValue(Special::Missing, DataType::Real).GetReal(), 0.0);
    EXPECT_FALSE(DataValue(Special::All, DataType::Boolean).GetBool());
    EXPECT_EQ(DataValue::FromDouble(-0.5).GetReal(), -0.5);
    EXPECT_TRUE(DataValue(true).GetBool());
    EXPECT_THROW(DataValue::FromDouble(1.0).GetInt(), MurvaneException);
    EXPECT_THROW(DataValue(1).GetBool(), MurvaneException);
    // Unchecked getters read the payload as they are told.
    EXPECT_EQ(DataValue::FromDouble(1.0).GetIntUnchecked(), 0x3FF0000000000000ll);
    EXPECT_EQ(DataValue(true).GetRealUnchecked(), RealOfBits(1));
    EXPECT_TRUE(DataValue(2).GetBoolUnchecked());
    EXPECT_FALSE(DataValue(256).GetBoolUnchecked()); // the low byte alone
}

TEST(DataValue, IncorrectTypeFailureCarriesItsSiteAndMessage)
{
    ScopedSink scoped(TLog::Warning);
    struct Row
    {
        const char* what;
        std::function<void()> get;
        const char16_t* message;
    } rows[] = {
        {"int of unknown", [] { (void)DataValue().GetInt(); }, u"Incorrect data type unknown, getting expected integer type."},
        {"real of integer", [] { (void)DataValue(1).GetReal(); }, u"Incorrect data type integer, getting expected real type."},
        {"bool of null string", [] { (void)DataValue(Special::Null, DataType::String).GetBool(); },
         u"Incorrect data type string, getting expected boolean type."},
        {"int of table", [] { (void)DataValueTestPeer::Raw(11, 0, 0).GetInt(); },
         u"Incorrect data type table, getting expected integer type."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto e = Caught(row.get);
        EXPECT_EQ(typeid(*e), typeid(MurvaneException));
        EXPECT_EQ(e->GetMessagesFront(), TString(row.message));
        const TError::ErrorInfo& info = e->GetErrorInfo();
        EXPECT_EQ(info.GetError().GetCode(), 0xCA8336D0u);
        EXPECT_EQ(info.GetError().GetName(), TString(u"MurvaneException_IncorrectDatatypeException_0xCA8336D0"));
        EXPECT_EQ(int(info.GetSource()), 1);
        EXPECT_EQ(int(info.GetStatusCode()), 2);
    }
    ASSERT_EQ(scoped.sink->events.size(), 4u);
}

TEST(DataValue, IncorrectTypeFailureLogsItsEventAtWarning)
{
    ScopedSink scoped(TLog::Warning);
    EXPECT_THROW(DataValue(Special::Null, DataType::Date).GetReal(), MurvaneException);
    ASSERT_EQ(scoped.sink->events.size(), 1u);
    EXPECT_EQ(scoped.sink->events[0].first, 3);
    const TString json = scoped.sink->events[0].second;
    EXPECT_TRUE(json.startsWith(TString(u"{\"event\":\"incorrect-data-type\",\"value\":{"))) << json.toStdString();
    EXPECT_TRUE(json.contains(TString(u"\"actual\":\"date\""))) << json.toStdString();
    EXPECT_TRUE(json.contains(TString(u"\"expected\":\"real\""))) << json.toStdString();
    EXPECT_TRUE(json.contains(TString(u"\"msg\":\"Incorrect data type date, getting expected real type.\"")));
    EXPECT_TRUE(json.contains(TString(u"\"stack\":\"")));
    EXPECT_TRUE(json.contains(TString(u"\"thread\":\"")));
    // Quiet below the log level.
    TLog::Logger::Get().SetMinimumSeverity(TLog::Error);
    EXPECT_THROW(DataValue(true).GetInt(), MurvaneException);
    EXPECT_EQ(scoped.sink->events.size(), 1u);
}

TEST(DataValue, ATypeByteWithoutANameFailsToEncode)
{
    ScopedSink scoped(TLog::Warning);
    // The name of the actual type is looked up first, and there is none for 200.
    const auto e = Caught([] { (void)DataValueTestPeer::Raw(200, 0, 0).GetInt(); });
    EXPECT_NE(typeid(*e), typeid(MurvaneException));
    EXPECT_EQ(e->GetMessagesFront(), TString(u"XML enumerated value cannot be encoded."));
    EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0u);
    EXPECT_TRUE(scoped.sink->events.empty());
}

//===--- Specials ---===//

TEST(DataValue, TuplesHaveNoSpecials)
{
    const auto made = Caught([] { DataValue v(Special::Null, DataType::Tuple); });
    EXPECT_EQ(made->GetMessagesFront(), TString(u"DataValue::MakeSpecial: bad argument"));
    EXPECT_EQ(made->GetErrorInfo().GetError().GetCode(), 0xC3E581B1u);
    EXPECT_EQ(made->GetErrorInfo().GetError().GetName(), TString(u"MurvaneException_AutoGen_0xC3E581B1"));
    EXPECT_EQ(int(made->GetErrorInfo().GetSource()), 4);

    DataValue v(5);
    const auto set = Caught([&] { v.MakeSpecial(Special::Missing, DataType::Tuple); });
    EXPECT_EQ(set->GetMessagesFront(), TString(u"DataValue::MakeSpecial: bad argument"));
    EXPECT_EQ(set->GetErrorInfo().GetError().GetCode(), 0x230EF8C1u);
    EXPECT_EQ(v, DataValue(5)); // unchanged
    EXPECT_EQ(Caught([&] { v.SetNull(DataType::Tuple); })->GetErrorInfo().GetError().GetCode(), 0x230EF8C1u);

    // SetNull on a tuple keeps its type, so it fails too and keeps the tuple.
    int deaths = 0;
    Counted* object = new Counted(&deaths);
    DataValue tuple = DataValueTestPeer::Counted(DataType::Tuple, object);
    EXPECT_EQ(Caught([&] { tuple.SetNull(); })->GetErrorInfo().GetError().GetCode(), 0x230EF8C1u);
    EXPECT_EQ(object->GetReferenceCount(), 1);
    tuple.SetNull(DataType::Integer); // a null of another type lets the tuple go
    EXPECT_EQ(deaths, 1);
}

//===--- Equality and order ---===//

TEST(DataValue, IntegersAndRealsNeverEqualButAreOrderedOnTheRealLine)
{
    ExpectUnordered(DataValue(1), DataValue::FromDouble(1.0));
    EXPECT_NE(DataValue(1).Hash(), DataValue::FromDouble(1.0).Hash());
    ExpectOrdered(DataValue(1), DataValue::FromDouble(1.5));
    ExpectOrdered(DataValue::FromDouble(0.5), DataValue(1));
    ExpectOrdered(DataValue::FromDouble(-kInf), DataValue(kInt64Min));
    ExpectOrdered(DataValue(kInt64Max), DataValue::FromDouble(kInf));
    // INT64_MIN is -2^63 exactly as a double; the next double up is 1024 higher.
    ExpectUnordered(DataValue(kInt64Min), DataValue::FromDouble(-9223372036854775808.0));
    ExpectOrdered(DataValue(kInt64Min), DataValue::FromDouble(std::nextafter(-9223372036854775808.0, 0.0)));
    // INT64_MAX rounds up to 2^63.
    ExpectUnordered(DataValue(kInt64Max), DataValue::FromDouble(9223372036854775808.0));
    ExpectOrdered(DataValue::FromDouble(std::nextafter(9223372036854775808.0, 0.0)), DataValue(kInt64Max));
    // Beyond 2^53 integers round to the nearest double, ties to even.
    ExpectUnordered(DataValue(9007199254740993ll), DataValue::FromDouble(9007199254740992.0));
    ExpectUnordered(DataValue(9007199254740995ll), DataValue::FromDouble(9007199254740996.0));
    // ... but against each other the integers keep their order.
    ExpectOrdered(DataValue(9007199254740992ll), DataValue(9007199254740993ll));
    ExpectUnordered(DataValue(0), DataValue::FromDouble(kNaN));
    // Specials are not looked at across the two types: a null integer counts as 0.
    ExpectOrdered(DataValue(Special::Null, DataType::Integer), DataValue::FromDouble(0.5));
    ExpectUnordered(DataValue(Special::Null, DataType::Integer), DataValue::FromDouble(0.0));
}

TEST(DataValue, RealEqualityIsBitwise)
{
    ExpectUnordered(DataValue::FromDouble(-0.0), DataValue::FromDouble(0.0));
    EXPECT_NE(DataValue::FromDouble(-0.0).Hash(), DataValue::FromDouble(0.0).Hash());
    ExpectEqual(DataValue::FromDouble(kNaN), DataValue::FromDouble(kNaN));
    // A NaN with other bits is another value, and still unordered.
    const double otherNaN = RealOfBits(BitsOf(kNaN) | 1);
    ASSERT_TRUE(std::isnan(otherNaN));
    ExpectUnordered(DataValue::FromDouble(kNaN), DataValue::FromDouble(otherNaN));
    ExpectUnordered(DataValue::FromDouble(kNaN), DataValue::FromDouble(1.0));
    // Decimals take no part in equality, order or hash.
    ExpectEqual(DataValue(1.5, 10, 2), DataValue(1.5, 3, -1));
    ExpectOrdered(DataValue(1.25, 10, 2), DataValue(1.5, 2, 1));
}

TEST(DataValue, SpecialsAreOrderedWithNullFirst)
{
    // Within one type: Null, then the ordinary values, then the other specials by number.
    for (DataType type : {DataType::Integer, DataType::Real, DataType::String, DataType::Unknown}) {
        SCOPED_TRACE(int(type));
        std::vector<DataValue> chain;
        chain.emplace_back(Special::Null, type);
        chain.emplace_back(Special::None, type);
        for (int s = 2; s <= 9; ++s)
            chain.emplace_back(Special(s), type);
        for (size_t i = 0; i < chain.size(); ++i) {
            for (size_t j = i + 1; j < chain.size(); ++j) {
                SCOPED_TRACE(std::to_string(i) + " < " + std::to_string(j));
                ExpectOrdered(chain[i], chain[j]);
            }
        }
    }
    // A null is below every ordinary value of its type, however small.
    ExpectOrdered(DataValue(Special::Null, DataType::Integer), DataValue(kInt64Min));
    ExpectOrdered(DataValue(Special::Null, DataType::Real), DataValue::FromDouble(-kInf));
    // ... and an ordinary value below every other special, however large.
    ExpectOrdered(DataValue(kInt64Max), DataValue(Special::All, DataType::Integer));
    // Specials from documents may be negative: signed comparison.
    ExpectOrdered(DataValueTestPeer::Raw(0, -3, 0), DataValue(5));
    ExpectOrdered(DataValue(Special::Null, DataType::Integer), DataValueTestPeer::Raw(0, -3, 0));
    ExpectEqual(DataValue(Special::Wildcard, DataType::Date), DataValue(Special::Wildcard, DataType::Date));
}

TEST(DataValue, UnlikeTypesAreOrderedByTheirNumber)
{
    // Integer 0 < Real 1 < String 2 < DateTime 3 < Boolean 4 < Date 5 < Spatial 7 < Unknown 8
    // < Binary 9 < Time 10 < Table 11 < bytes from documents.
    const DataValue chain[] = {
        DataValue(Special::Missing, DataType::String), DataValue(Special::Null, DataType::DateTime),
        DataValue(false),                              DataValue(Special::Null, DataType::Date),
        DataValue(Special::Null, DataType::Spatial),   DataValue(),
        DataValue(Special::Null, DataType::Binary),    DataValue(Special::Null, DataType::Time),
        DataValue(Special::Null, DataType::Table),     DataValueTestPeer::Raw(12, 0, 0),
        DataValueTestPeer::Raw(255, 0, 0),
    };
    for (size_t i = 0; i + 1 < sizeof chain / sizeof chain[0]; ++i) {
        SCOPED_TRACE(i);
        ExpectOrdered(chain[i], chain[i + 1]);
    }
    // Whatever the numbers say, the type comes first.
    ExpectOrdered(DataValue(kInt64Max), DataValue(Special::Null, DataType::String));
    ExpectOrdered(DataValue(true), DataValue());
}

TEST(DataValue, OrderWithinAType)
{
    ExpectOrdered(DataValue(kInt64Min), DataValue(kInt64Min + 1));
    ExpectOrdered(DataValue(-1), DataValue(kInt64Max));
    ExpectOrdered(DataValue(false), DataValue(true));
    ExpectOrdered(DataValue::FromDouble(-kInf), DataValue::FromDouble(-1e308));
    ExpectOrdered(DataValue::FromDouble(1e308), DataValue::FromDouble(kInf));
    // Dates and times are unsigned representations.
    for (uint8_t type : {uint8_t(3), uint8_t(5), uint8_t(10)}) {
        SCOPED_TRACE(int(type));
        ExpectOrdered(DataValueTestPeer::Raw(type, 0, 1), DataValueTestPeer::Raw(type, 0, 0x8000000000000000ull));
        ExpectEqual(DataValueTestPeer::Raw(type, 0, 77), DataValueTestPeer::Raw(type, 0, 77));
    }
    // Unknown, Binary and types above Time have no order among themselves.
    ExpectUnordered(DataValueTestPeer::Raw(8, 0, 1), DataValueTestPeer::Raw(8, 0, 2));
    ExpectUnordered(DataValueTestPeer::Raw(11, 0, 1), DataValueTestPeer::Raw(11, 0, 2));
    ExpectUnordered(DataValueTestPeer::Raw(40, 0, 1), DataValueTestPeer::Raw(40, 0, 2));
}

//===--- Hashing ---===//

// The expected numbers come from a separate XXH32 over the bytes written out by hand.
TEST(DataValue, HashesArePinned)
{
    struct Row
    {
        const char* what;
        DataValue value;
        uint32_t hash;
    } rows[] = {
        {"int 42", DataValue(42), 0x69936883u}, {"int -1", DataValue(-1), 0x718CE1D2u},
        {"int min", DataValue(kInt64Min), 0x51CB487Cu}, {"default", DataValue(), 0xC3B562A7u},
        {"true", DataValue(true), 0x82FB4F61u}, {"false", DataValue(false), 0x23F20C71u},
        {"real 1.0", DataValue::FromDouble(1.0), 0x55885D97u}, {"real 1.5", DataValue::FromDouble(1.5), 0x6C792159u},
        {"decimal 1.5", DataValue(1.5, 4, 1), 0x6C792159u}, {"real 0.0", DataValue::FromDouble(0.0), 0x541D050Fu},
        {"real -0.0", DataValue::FromDouble(-0.0), 0xA60C959Fu},
        // A special real is hashed as its zero payload: it collides with 0.0.
        {"missing real", DataValue(Special::Missing, DataType::Real), 0x541D050Fu},
        {"int 0", DataValue(0), 0x63DC4486u}, {"null int", DataValue(Special::Null, DataType::Integer), 0x78E2CE38u},
        {"all int", DataValue(Special::All, DataType::Integer), 0x03C7CA6Bu},
        {"missing int", DataValue(Special::Missing, DataType::Integer), 0x64D6E8A9u},
        {"null string", DataValue(Special::Null, DataType::String), 0xE8EAAB30u},
        {"null date", DataValue(Special::Null, DataType::Date), 0xD707D313u},
        {"null spatial", DataValue(Special::Null, DataType::Spatial), 0xCCB4C57Du},
        {"null table", DataValue(Special::Null, DataType::Table), 0x19A0C50Bu},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.value.Hash(), row.hash);
    }
    // The seed of every real is the hash of the type byte 1.
    const uint8_t realType = 1;
    EXPECT_EQ(THash32(&realType, 1, 0xDEADBEEFu), Implementation::kRealTypeHashSeed);
}

// The hash is unrolled in line; the general routine is the reference.
TEST(DataValue, InlineHashAgreesWithTheGeneralRoutine)
{
    uint64_t state = 12345;
    auto next = [&state] {
        state += 0x9E3779B97F4A7C15ull;
        uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    };
    for (int i = 0; i < 100000; ++i) {
        const uint64_t payload = next();
        uint64_t header = next();
        // Strings, tuples and shapes hash their objects, which random bytes are not.
        if (uint8_t(header) == 2 || uint8_t(header) == 6 || uint8_t(header) == 7)
            header |= 0x80;
        DataValue v = DataValueTestPeer::RawWords(header, payload);
        uint8_t bytes[16];
        std::memcpy(bytes, static_cast<const void*>(&v), sizeof bytes);
        const uint32_t expected = v.GetType() == DataType::Real
                                      ? THash32(bytes + 8, 8, THash32(bytes, 1, 0xDEADBEEFu))
                                      : THash32(bytes, 16, 0xDEADBEEFu);
        const uint32_t actual = v.Hash();
        DataValueTestPeer::Forget(v);
        ASSERT_EQ(actual, expected) << i;
        const DataValue real = DataValue::FromDouble(RealOfBits(payload));
        const uint8_t realType = 1;
        ASSERT_EQ(real.Hash(), THash32(&payload, 8, THash32(&realType, 1, 0xDEADBEEFu))) << i;
    }
    const uint8_t anyByte = 0x5A;
    EXPECT_EQ(Implementation::THash32OfByte(anyByte, 77u), THash32(&anyByte, 1, 77u));
}

//===--- Literal form and text ---===//

TEST(DataValue, LiteralForm)
{
    struct Row
    {
        DataValue value;
        const char16_t* literal;
    } rows[] = {
        {DataValue(-7), u"-7"}, {DataValue(kInt64Min), u"-9223372036854775808"},
        {DataValue(kInt64Max), u"9223372036854775807"}, {DataValue::FromDouble(-3.0), u"-3."},
        {DataValue::FromDouble(0.0), u"0."},
        // Negative zero keeps its sign and reads back as itself.
        {DataValue::FromDouble(-0.0), u"-0."}, {DataValue::FromDouble(2.5), u"2.5"},
        {DataValue::FromDouble(0.1), u"0.10000000000000001"}, {DataValue::FromDouble(1e16), u"10000000000000000."},
        {DataValue::FromDouble(1e17), u"1e+17"}, {DataValue::FromDouble(1e300), u"1.0000000000000001e+300"},
        {DataValue::FromDouble(1e-5), u"1.0000000000000001e-05"}, {DataValue::FromDouble(kNaN), u"nan"},
        {DataValue::FromDouble(kInf), u"inf"}, {DataValue::FromDouble(-kInf), u"-inf"},
        {DataValue(2.0, 5, 2), u"2."}, // decimals do not show
        {DataValue(true), u"true"}, {DataValue(false), u"false"},
        {DataValue(), u"NULL"}, {DataValue(Special::Null, DataType::Integer), u"NULL"},
        // Kinds without a literal give the empty text.
        {DataValueTestPeer::Raw(8, 0, 0), u""}, {DataValueTestPeer::Raw(9, 0, 0), u""},
        {DataValueTestPeer::Raw(10, 0, 5), u""}, {DataValueTestPeer::Raw(11, 0, 0), u""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.literal).toStdString());
        EXPECT_EQ(row.value.FormatAsLiteral(), TString(row.literal));
    }
    std::ostringstream out;
    out << DataValue(42) << ' ' << DataValue::FromDouble(3.0) << ' ' << DataValue();
    EXPECT_EQ(out.str(), "\"42\" \"3.\" \"NULL\"");
}

TEST(DataValue, OnlyNullHasALiteralAmongTheSpecials)
{
    for (int s = 2; s <= 9; ++s) {
        SCOPED_TRACE(s);
        const auto e = Caught([&] { (void)DataValue(Special(s), DataType::Integer).FormatAsLiteral(); });
        EXPECT_EQ(typeid(*e), typeid(LogicException));
        EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0x21164B74u);
        EXPECT_TRUE(e->GetMessagesFront().startsWith(TString(u"data/DataValue.cpp(")));
        EXPECT_TRUE(e->GetMessagesFront().endsWith(TString(u"IsNull()")));
    }
    EXPECT_THROW((void)DataValue(Special::Missing, DataType::Real).FormatAsLiteral(), LogicException);
}

TEST(DataValue, PrintableStrings)
{
    struct Row
    {
        std::u16string text;
        const char* printable;
    } rows[] = {
        {u"", "\"\""}, {u"abc", "\"abc\""},
        {u"\u00E9", "\"\\x00E9\""}, {u"a\nb\rc", "\"a\\nb\\rc\""},
        {u"\\ \" '", "\"\\\\ \\\" \\'\""}, {u"~ !", "\"~ !\""},
        {std::u16string(1, u'\0'), "\"\\x0000\""}, {u"\x1F\x7F", "\"\\x001F\\x007F\""},
        // A surrogate pair is two units, two escapes.
        {u"\U0001F600", "\"\\xD83D\\xDE00\""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.printable);
        EXPECT_EQ(toPrintableString(TString(row.text.data(), int(row.text.size()))), row.printable);
    }
}

TEST(DataValue, TypeNames)
{
    const char16_t* names[] = {u"INTEGER", u"REAL",        u"STRING",     u"DATETIME",    u"BOOLEAN",    u"DATE",
                               u"TUPLE",   u"SPATIAL",     u"UNKNOWN(8)", u"UNKNOWN(9)",  u"UNKNOWN(10)", u"UNKNOWN(11)"};
    for (int t = 0; t < 12; ++t) {
        SCOPED_TRACE(t);
        EXPECT_EQ(DataValue::DataTypeToString(DataType(t)), TString(names[t]));
    }
    EXPECT_EQ(DataValue::DataTypeToString(DataType(12)), TString(u"UNKNOWN(12)"));
    EXPECT_EQ(DataValue::DataTypeToString(DataType(255)), TString(u"UNKNOWN(255)"));
}

//===--- Visiting ---===//

TEST(DataValue, TheInspectorSeesTheNumericKinds)
{
    struct Row
    {
        const char* what;
        DataValue value;
        std::vector<std::string> calls;
    } rows[] = {
        {"int", DataValue(-42), {"int -42"}}, {"real", DataValue::FromDouble(2.5), {"real 2.500000 -1 -1"}},
        // Precision and scale as stored, even odd ones.
        {"decimal", DataValue(2.5, 10, 2), {"real 2.500000 10 2"}},
        {"odd decimal", DataValue(2.5, -100, 127), {"real 2.500000 -100 127"}},
        {"false", DataValue(false), {"bool false"}},
        // A special of any type goes to InspectSpecial alone, the table type included.
        {"all real", DataValue(Special::All, DataType::Real), {"special 2 of 1"}},
        {"default", DataValue(), {"special 1 of 8"}},
        {"null table", DataValue(Special::Null, DataType::Table), {"special 1 of 11"}},
        {"negative special", DataValueTestPeer::Raw(0, -3, 0), {"special -3 of 0"}},
        // Unknown and type bytes beyond the enumeration call nothing and raise nothing.
        {"unknown", DataValueTestPeer::Raw(8, 0, 0), {}}, {"type 255", DataValueTestPeer::Raw(255, 0, 0), {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TestSupport::RecordingInspector inspector;
        row.value.Accept(inspector);
        EXPECT_EQ(inspector.calls, row.calls);
    }
}

TEST(DataValue, AnOrdinaryTableIsNotVisited)
{
    TestSupport::RecordingInspector inspector;
    const auto e = Caught([&] { DataValueTestPeer::Raw(11, 0, 0).Accept(inspector); });
    EXPECT_EQ(typeid(*e), typeid(LogicException));
    EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0x935B635Fu);
    EXPECT_TRUE(e->GetMessagesFront().startsWith(TString(u"data/DataValue.cpp("))) << e->what();
    EXPECT_TRUE(e->GetMessagesFront().endsWith(TString(u"DataType::Table not expected in DataValue"))) << e->what();
    EXPECT_TRUE(inspector.calls.empty());
}

//===--- Unary minus ---===//

TEST(DataValue, UnaryMinus)
{
    EXPECT_EQ(BytesOf(-DataValue(5)), BytesOf(DataValue(-5)));
    EXPECT_EQ((-DataValue(kInt64Min)).GetInt(), kInt64Min); // wraps
    EXPECT_EQ(BytesOf(-DataValue::FromDouble(2.5)), BytesOf(DataValue::FromDouble(-2.5)));
    // The decimals are forgotten.
    EXPECT_EQ(BytesOf(-DataValue(2.5, 6, 1)), BytesOf(DataValue::FromDouble(-2.5)));
    // So is the special: minus a null is an ordinary 0 or -0.0.
    EXPECT_EQ(BytesOf(-DataValue(Special::Null, DataType::Integer)), BytesOf(DataValue(0)));
    EXPECT_EQ(BytesOf(-DataValue(Special::Missing, DataType::Real)), BytesOf(DataValue::FromDouble(-0.0)));
    EXPECT_EQ((-DataValue::FromDouble(-0.0)).GetAny(), 0u);
    // The sign bit of a NaN flips too.
    EXPECT_EQ((-DataValue::FromDouble(kNaN)).GetAny(), BitsOf(kNaN) ^ 0x8000000000000000ull);

    for (DataType type : {DataType::Boolean, DataType::String, DataType::Unknown, DataType::Date}) {
        SCOPED_TRACE(int(type));
        const auto e = Caught([&] { (void)-DataValue(Special::Null, type); });
        EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0xED6A87E9u);
        EXPECT_TRUE(e->GetMessagesFront().endsWith(TString(u"Unary operator- is unsupported for this data type.")));
    }
    EXPECT_THROW((void)-DataValue(true), LogicException);
}

//===--- Copy, move and ownership ---===//

TEST(DataValue, MoveLeavesAnUnknownSource)
{
    DataValue source(5);
    DataValue target(std::move(source));
    EXPECT_EQ(target, DataValue(5));
    EXPECT_EQ(source.GetType(), DataType::Unknown);
    EXPECT_EQ(source.GetSpecial(), Special::None); // only the type byte is overwritten
    EXPECT_EQ(source.GetAny(), 5u);
    source = DataValue(true); // a moved-from value may be assigned to again
    EXPECT_EQ(source, DataValue(true));
    DataValue& alias = target;
    target = std::move(alias);
    EXPECT_EQ(target, DataValue(5));
}

TEST(DataValue, CountedObjectsAreSharedAndReleased)
{
    int deaths = 0;
    Counted* object = new Counted(&deaths);
    {
        DataValue a = DataValueTestPeer::Counted(DataType::Binary, object);
        EXPECT_EQ(object->GetReferenceCount(), 1);
        EXPECT_EQ(a.GetType(), DataType::Binary);
        EXPECT_EQ(DataValueTestPeer::Ordinal(a), 0);
        {
            DataValue b(a);
            EXPECT_EQ(object->GetReferenceCount(), 2);
            ExpectEqual(a, b); // two binaries are equal when they share their object
            DataValue c;
            c = b;
            EXPECT_EQ(object->GetReferenceCount(), 3);
            c = c;
            EXPECT_EQ(object->GetReferenceCount(), 3);
            DataValue d(std::move(c));
            EXPECT_EQ(object->GetReferenceCount(), 3); // a move takes no reference
            d.SetInt(1);
            EXPECT_EQ(object->GetReferenceCount(), 2);
        }
        EXPECT_EQ(object->GetReferenceCount(), 1);
        EXPECT_EQ(deaths, 0);

        int otherDeaths = 0;
        const DataValue other = DataValueTestPeer::Counted(DataType::Binary, new Counted(&otherDeaths));
        ExpectUnordered(a, other); // binaries have no order
        a = other;
        EXPECT_EQ(deaths, 1);
        swap(a, a);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(DataValue, AssigningAMemberOfTheOwnedObjectIsSafe)
{
    // The value is the only owner of the holder, and is assigned the holder's own member:
    // the copy must be made before the holder goes.
    Holder* holder = new Holder;
    holder->member = DataValue(99);
    DataValue v = DataValueTestPeer::Counted(DataType::Tuple, holder);
    v = holder->member;
    EXPECT_EQ(v, DataValue(99));
}

TEST(DataValue, SwapExchangesOwnership)
{
    int deaths = 0;
    DataValue a = DataValueTestPeer::Counted(DataType::Tuple, new Counted(&deaths));
    DataValue b(3);
    swap(a, b);
    EXPECT_EQ(a, DataValue(3));
    EXPECT_EQ(b.GetType(), DataType::Tuple);
    b = DataValue();
    EXPECT_EQ(deaths, 1);
}

TEST(DataValue, SpatialCopiesGetABoxOfTheirOwn)
{
    // The box holds the pointer and never looks inside, so any owner serves here.
    const auto owner = std::make_shared<int>(1);
    const std::shared_ptr<const murgeo::Spatial> spatial(owner, reinterpret_cast<const murgeo::Spatial*>(owner.get()));
    ASSERT_EQ(owner.use_count(), 2);
    {
        DataValue a = DataValueTestPeer::Spatial(spatial);
        auto copy = std::make_unique<DataValue>(a);
        EXPECT_NE(copy->GetAny(), a.GetAny()); // another box
        EXPECT_EQ(owner.use_count(), 4);
        {
            DataValue gone(std::move(a)); // a move takes no reference
            EXPECT_EQ(owner.use_count(), 4);
        }
        EXPECT_EQ(DataValueTestPeer::SpatialOf(*copy), spatial);
        DataValue assigned(1);
        assigned = *copy;
        EXPECT_EQ(owner.use_count(), 4);
        copy.reset();
        assigned.SetNull();
        EXPECT_EQ(owner.use_count(), 2);
        EXPECT_EQ(assigned.GetType(), DataType::Spatial);
        EXPECT_EQ(assigned.GetAny(), 0u);
        EXPECT_EQ(DataValueTestPeer::SpatialOf(assigned), nullptr);
    }
    EXPECT_EQ(owner.use_count(), 2);
}

TEST(DataValue, ContainersMoveValuesWithoutTouchingCounts)
{
    int deaths = 0;
    Counted* object = new Counted(&deaths);
    {
        std::vector<DataValue> values;
        values.push_back(DataValueTestPeer::Counted(DataType::Binary, object));
        for (int i = 0; i < 100; ++i)
            values.emplace_back(i); // growth relocates by move
        EXPECT_EQ(object->GetReferenceCount(), 1);
        values.erase(values.begin());
        EXPECT_EQ(deaths, 1);
    }
}
