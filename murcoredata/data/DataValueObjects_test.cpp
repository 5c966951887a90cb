// The kinds of DataValue that hold dates, times, strings, tuples, binaries and shapes.

#include "murcoredata/data/BinaryDataValue.h"
#include "murcoredata/foundation/LogCapture_test.h"
#include "murcoredata/foundation/Caught_test.h"
#include "murcoredata/data/Collation.h"
#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/StringWithCollation.h"
#include "murcoredata/data/RecordingInspector_test.h"
#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/AllocationCounter_test.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/TLog.h"
#include "murgeo/Serialization.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <sstream>
#include <thread>
#include <vector>

using Special = DataValueTypes::Special;
using SpatialPointer = std::shared_ptr<const murgeo::Spatial>;

namespace {

std::vector<uint8_t> HeaderOf(const DataValue& v)
{
    std::vector<uint8_t> bytes(8);
    std::memcpy(bytes.data(), static_cast<const void*>(&v), 8);
    return bytes;
}

DateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, double fraction = 0.0)
{
    return DateTime(year, month, day, hour, minute, second, fraction);
}

SpatialPointer Shape(const char* wkt, int type = 2)
{
    return SpatialPointer(murgeo::WktSerialization::Read(wkt, type));
}

std::vector<DataValue> Ints(std::initializer_list<long long> numbers)
{
    std::vector<DataValue> values;
    for (long long n : numbers)
        values.emplace_back(n);
    return values;
}

// en_US at tertiary strength, the same without case, and code-unit order.
const Collation& English()
{
    static const Collation s_collation(u"LEN_RUS");
    return s_collation;
}

const Collation& EnglishIgnoringCase()
{
    static const Collation s_collation(u"LEN_RUS_S2");
    return s_collation;
}

DataValue Text(const char16_t* text, const Collation& collation = English())
{
    return DataValue(collation, TString(text));
}

DataValue TupleValue(std::initializer_list<long long> numbers)
{
    return DataValue(makeRefCnt<Tuple>(Ints(numbers)));
}

using TestSupport::Caught;

void ExpectFailure(const MurvaneException& e, const char16_t* message, uint32_t code, int source)
{
    EXPECT_EQ(typeid(e), typeid(MurvaneException));
    EXPECT_EQ(e.GetMessagesFront(), TString(message));
    EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), code);
    EXPECT_EQ(int(e.GetErrorInfo().GetSource()), source);
    EXPECT_EQ(int(e.GetErrorInfo().GetStatusCode()), 2);
}

void ExpectOrdered(const DataValue& lesser, const DataValue& greater)
{
    EXPECT_TRUE(lesser < greater);
    EXPECT_FALSE(greater < lesser);
    EXPECT_TRUE(lesser <= greater);
    EXPECT_FALSE(greater <= lesser);
    EXPECT_TRUE(greater >= lesser);
    EXPECT_FALSE(lesser == greater);
}

void ExpectEqual(const DataValue& a, const DataValue& b)
{
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_EQ(a.Hash(), b.Hash());
}

} // namespace

//===--- Headers ---===//

TEST(DataValueObjects, HeadersOfTheObjectKinds)
{
    struct Row
    {
        const char* what;
        DataValue value;
        std::vector<uint8_t> header; // type, special, precision, scale, ordinal
    } rows[] = {
        {"date", DataValue::FromDate(At(2021, 3, 4)), {5, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"datetime", DataValue::FromDateTime(At(2021, 3, 4, 1)), {3, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"time", DataValue(Time(1, 2, 3, 4u), DataType::Time), {10, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"tuple", TupleValue({1}), {6, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"spatial", DataValue(Shape("POINT (1 2)")), {7, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"binary", DataValue(makeRefCnt<BinaryDataValue>()), {9, 0, 0xFF, 0xFF, 0, 0, 0, 0}},
        // A string has no place in a sorted domain yet: ordinal -2.
        {"string", Text(u"abc"), {2, 0, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}},
        {"invalid date", DataValue::FromDate(DateTime::FromValue(0)), {5, 1, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"invalid datetime", DataValue::FromDateTime(DateTime::FromValue(0)), {3, 1, 0xFF, 0xFF, 0, 0, 0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(HeaderOf(row.value), row.header);
    }
}

//===--- Dates and times ---===//

TEST(DataValueObjects, DatesDropTheirTimeOfDay)
{
    const DateTime moment = At(2021, 3, 4, 10, 20, 30, 0.5);
    const DataValue date(moment, DataType::Date);
    EXPECT_EQ(date.GetType(), DataType::Date);
    EXPECT_EQ(date.GetDate(), At(2021, 3, 4));
    EXPECT_EQ(date.GetAny(), 2459277ULL * DateTime::s_scaling);
    const DataValue datetime(moment, DataType::DateTime);
    EXPECT_EQ(datetime.GetDatetime(), moment);
    EXPECT_EQ(DataValue::FromDate(moment), date);
    EXPECT_NE(date, DataValue::FromDateTime(At(2021, 3, 4))); // another type
}

TEST(DataValueObjects, InvalidDateTimesBecomeNulls)
{
    const DateTime invalid[] = {
        DateTime::FromValue(0),
        DateTime::FromValue(DateTime::minGregorianDate - 1),
        DateTime::FromValue(DateTime::maxGregorianDate + 1),
        DateTime::FromValue(~0ULL),
    };
    for (const DateTime& d : invalid) {
        SCOPED_TRACE(d.GetRepresentation());
        ASSERT_FALSE(d.IsValid());
        DataValue v(5);
        v.SetDate(d);
        EXPECT_EQ(v, DataValue(Special::Null, DataType::Date));
        EXPECT_EQ(v.GetAny(), 0u);
        EXPECT_EQ(v.GetDate(), DateTime()); // a null reads back as the default
        v.SetDatetime(d);
        EXPECT_EQ(v, DataValue(Special::Null, DataType::DateTime));
        EXPECT_EQ(v.GetDatetime(), DateTime());
    }
    // The ends of the valid range are kept.
    EXPECT_FALSE(DataValue::FromDateTime(DateTime::FromValue(DateTime::minGregorianDate)).IsNull());
    EXPECT_EQ(DataValue::FromDate(DateTime::FromValue(DateTime::maxGregorianDate)).GetDate(), At(9999, 12, 31));
}

TEST(DataValueObjects, TimesIgnoreTheTypeArgument)
{
    const Time t(10, 20, 30, 400u);
    for (DataType type : {DataType::Time, DataType::Tuple, DataType(200)}) {
        SCOPED_TRACE(int(type));
        const DataValue v(t, type);
        EXPECT_EQ(v.GetType(), DataType::Time);
        EXPECT_EQ(v.GetTime(), t);
        EXPECT_EQ(v.GetAny(), 37230000400ULL);
    }
    // Midnight is payload 0, as a null time: both read back as midnight, the special tells.
    const DataValue midnight(Time(), DataType::Time);
    EXPECT_FALSE(midnight.IsNull());
    EXPECT_EQ(DataValue(Special::Null, DataType::Time).GetTime(), Time());
    EXPECT_NE(midnight, DataValue(Special::Null, DataType::Time));
}

TEST(DataValueObjects, ADateTimeOfAnotherTypeIsALogicError)
{
    for (DataType type : {DataType::Time, DataType::String, DataType(99)}) {
        SCOPED_TRACE(int(type));
        const auto e = Caught([&] { DataValue v(At(2021, 3, 4), type); });
        EXPECT_EQ(typeid(*e), typeid(LogicException));
        EXPECT_EQ(e->GetErrorInfo().GetError().GetName(), TString(u"LogicException_LogicAssert_0x72FAA0AE"));
        EXPECT_TRUE(e->GetMessagesFront().startsWith(TString(u"data/DataValue.cpp("))) << e->what();
        EXPECT_TRUE(e->GetMessagesFront().endsWith(TString(u": false"))) << e->what();
    }
}

TEST(DataValueObjects, DatesAndTimesAreOrderedAndHashedByTheirPayload)
{
    ExpectOrdered(DataValue::FromDate(At(1999, 12, 31)), DataValue::FromDate(At(2000, 1, 1)));
    ExpectOrdered(DataValue(Time(0, 0, 0, 1u), DataType::Time), DataValue(Time(23, 59, 59, 999999u), DataType::Time));
    ExpectOrdered(DataValue(Special::Null, DataType::Date), DataValue::FromDate(At(400, 1, 1)));
    ExpectEqual(DataValue::FromDate(At(2021, 3, 4, 5)), DataValue::FromDate(At(2021, 3, 4, 17)));
    // The type byte enters the hash: a date and a date-time of one instant hash apart.
    EXPECT_NE(DataValue::FromDate(At(2021, 3, 4)).Hash(), DataValue::FromDateTime(At(2021, 3, 4)).Hash());
}

TEST(DataValueObjects, CheckedGettersOfTheNewKinds)
{
    struct Row
    {
        const char* what;
        std::function<void()> get;
        const char16_t* message;
    } rows[] = {
        {"date of datetime", [] { (void)DataValue::FromDateTime(At(2021, 3, 4)).GetDate(); },
         u"Incorrect data type datetime, getting expected date type."},
        {"time of integer", [] { (void)DataValue(3).GetTime(); }, u"Incorrect data type integer, getting expected time type."},
        {"tuple of binary", [] { (void)DataValue(makeRefCnt<BinaryDataValue>()).GetTuple(); },
         u"Incorrect data type binary, getting expected tuple type."},
        {"binary of tuple", [] { (void)TupleValue({1}).GetBinary(); },
         u"Incorrect data type tuple, getting expected binary type."},
        {"spatial of unknown", [] { (void)DataValue().GetSpatial(); },
         u"Incorrect data type unknown, getting expected spatial type."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto e = Caught(row.get);
        ExpectFailure(*e, row.message, 0xCA8336D0u, 1);
    }
    // The special is not looked at.
    EXPECT_FALSE(DataValue(Special::Null, DataType::Binary).GetBinary());
    EXPECT_FALSE(DataValue(Special::Missing, DataType::Spatial).GetSpatial());
}

//===--- Strings ---===//

TEST(DataValueObjects, StringsAreMadeInEveryWay)
{
    const DataValue fromParts(English(), TString(u"abc"));
    EXPECT_EQ(fromParts.GetString(), TString(u"abc"));
    EXPECT_EQ(fromParts.GetCollation(), English());
    EXPECT_EQ(TString(fromParts.GetStringRaw()), TString(u"abc"));

    Collation collation = EnglishIgnoringCase();
    TString text(u"moved");
    const DataValue fromMoved(std::move(collation), std::move(text));
    EXPECT_EQ(fromMoved.GetString(), TString(u"moved"));
    EXPECT_EQ(fromMoved.GetCollation(), EnglishIgnoringCase());

    const DataValue fromObject(StringWithCollation(TString(u"obj"), English()));
    EXPECT_EQ(fromObject.GetString(), TString(u"obj"));

    // The unknown collation for the makers.
    const DataValue made = DataValue::FromString(TString(u"plain"));
    EXPECT_EQ(made.GetCollation().GetName(), TString(u"LROOT"));
    EXPECT_EQ(u"plain"_dv, made);
    EXPECT_EQ(u"plain"_dv.GetCollation(), GetUnknownCollation());
    // The literal is counted: a NUL inside is kept.
    EXPECT_EQ(u"a\0b"_dv.GetString().size(), 3);

    DataValue v(5);
    v.SetString(English(), TString(u"set"));
    EXPECT_EQ(v, Text(u"set"));
    v.SetString(StringWithCollation(TString(u"again"), English()));
    EXPECT_EQ(v.GetString(), TString(u"again"));
}

TEST(DataValueObjects, StringValuesShareTheirObject)
{
    RefCntPtr<StringWithCollation> string = makeRefCnt<StringWithCollation>(TString(u"shared"), English());
    {
        const DataValue a(string);
        EXPECT_EQ(string->GetReferenceCount(), 2);
        DataValue b(5);
        b.SetString(string);
        EXPECT_EQ(string->GetReferenceCount(), 3);
        b.SetString(string); // the same object again
        EXPECT_EQ(string->GetReferenceCount(), 3);
        DataValue c;
        RefCntPtr<StringWithCollation> handed = string;
        c.SetString(std::move(handed));
        EXPECT_EQ(string->GetReferenceCount(), 4);
        DataValue d(c);
        EXPECT_EQ(string->GetReferenceCount(), 5);
    }
    EXPECT_EQ(string->GetReferenceCount(), 1);
    // A new object from SetString(StringWithCollation&&) starts with the value's one reference.
    DataValue d(StringWithCollation(TString(u"own"), English()));
    DataValue e(d);
    e.SetInt(1);
    EXPECT_EQ(d.GetString(), TString(u"own"));
}

TEST(DataValueObjects, NullStringPointersAreRefused)
{
    DataValue v(7);
    const auto shared = Caught([&] { v.SetString(RefCntPtr<StringWithCollation>()); });
    ExpectFailure(*shared, u"DataValue::SetString: bad argument", 0xE188009Fu, 4);
    const RefCntPtr<StringWithCollation> none;
    const auto copied = Caught([&] { v.SetString(none); });
    ExpectFailure(*copied, u"DataValue::SetString: bad argument", 0xE188009Eu, 4);
    EXPECT_EQ(v, DataValue(7));
    const auto made = Caught([&] { DataValue w(none); });
    ExpectFailure(*made, u"DataValue::SetString: bad argument", 0xE188009Eu, 4);
}

TEST(DataValueObjects, StringGetters)
{
    // A null string reads as one shared empty text.
    const DataValue nullString(Special::Null, DataType::String);
    EXPECT_TRUE(nullString.GetString().isEmpty());
    EXPECT_EQ(&nullString.GetString(), &DataValue(Special::Missing, DataType::String).GetString());
    EXPECT_EQ(nullString.GetCollation(), GetUnknownCollation());
    EXPECT_EQ(DataValue(5).GetCollation(), GetUnknownCollation());

    ExpectFailure(*Caught([] { (void)DataValue(5).GetString(); }),
                  u"Incorrect data type integer, getting expected string type.", 0xCA8336D0u, 1);
    ExpectFailure(*Caught([] { (void)DataValue(Special::Null, DataType::Date).GetStringRaw(); }),
                  u"Incorrect data type date, getting expected string type.", 0xCA8336D0u, 1);
}

TEST(DataValueObjects, OrdinalsOfStrings)
{
    DataValue s = Text(u"abc");
    EXPECT_EQ(s.GetOrdinal(), -2);
    s.SetOrdinal(5);
    EXPECT_EQ(s.GetOrdinal(), 5);
    // The ordinal is no part of equality or hash.
    ExpectEqual(s, Text(u"abc"));
    // A copy keeps it; a new string starts without.
    EXPECT_EQ(DataValue(s).GetOrdinal(), 5);
    s.SetString(English(), TString(u"new"));
    EXPECT_EQ(s.GetOrdinal(), -2);
}

TEST(DataValueObjects, StringsCompareByTheirCollation)
{
    ExpectEqual(Text(u"abc"), Text(u"abc"));
    EXPECT_NE(Text(u"abc"), Text(u"ABC"));
    // Case-insensitive: equal, and so hashed alike.
    ExpectEqual(Text(u"abc", EnglishIgnoringCase()), Text(u"ABC", EnglishIgnoringCase()));
    // Equal texts under collations that are not equivalent are unequal.
    EXPECT_NE(Text(u"abc"), Text(u"abc", GetBinaryCollation()));
    // The hash is the string's.
    const DataValue s = Text(u"hash me");
    const StringWithCollation object(TString(u"hash me"), English());
    EXPECT_EQ(s.Hash(), object.GetHash());

    // Order: the collation's, not code units'.
    ExpectOrdered(Text(u"a"), Text(u"B"));
    ExpectOrdered(Text(u"B", GetBinaryCollation()), Text(u"a", GetBinaryCollation()));
    ExpectOrdered(Text(u"cote"), Text(u"c\u00F4te"));
    // A null string first, then the strings, then the other specials of the type.
    ExpectOrdered(DataValue(Special::Null, DataType::String), Text(u""));
    ExpectOrdered(Text(u"zzz"), DataValue(Special::All, DataType::String));
    // Strings sort between reals and date-times by their type number.
    ExpectOrdered(DataValue::FromDouble(1e300), Text(u""));
    ExpectOrdered(Text(u"zzz"), DataValue(Special::Null, DataType::DateTime));
    // Lower case first at tertiary strength; an accented capital among the e's.
    ExpectOrdered(Text(u"apple"), Text(u"Apple"));
    ExpectOrdered(Text(u"banana"), Text(u"\u00C9clair"));
    ExpectOrdered(Text(u"\u00C9clair"), Text(u"pear"));
}

TEST(DataValueObjects, MovingOutOfAString)
{
    DataValue source(Special::Null, DataType::String);
    DataValue target;
    target = std::move(source);
    EXPECT_EQ(source.GetType(), DataType::Unknown);
    EXPECT_TRUE(source.IsNull());
    EXPECT_EQ(target, DataValue(Special::Null, DataType::String));
    DataValue full = Text(u"full");
    DataValue taken(std::move(full));
    EXPECT_EQ(full.GetType(), DataType::Unknown);
    EXPECT_EQ(taken.GetString(), TString(u"full"));
}

TEST(DataValueObjects, StringLiterals)
{
    struct Row
    {
        const char16_t* text;
        const char16_t* literal;
    } rows[] = {
        {u"abc", u"\"abc\""}, {u"", u"\"\""},
        {u"a\"b", u"\"a\"\"b\""}, {u"\"", u"\"\"\"\""},
        // Only double quotes are doubled.
        {u"it's", u"\"it's\""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.literal).toStdString());
        EXPECT_EQ(Text(row.text).FormatAsLiteral(), TString(row.literal));
    }
    EXPECT_EQ(DataValue(Special::Null, DataType::String).FormatAsLiteral(), TString(u"NULL"));
    std::ostringstream out;
    out << Text(u"a\"b");
    EXPECT_EQ(out.str(), "\"\\\"a\\\"\\\"b\\\"\"");
}

TEST(DataValueObjects, StringImages)
{
    EXPECT_EQ(BinaryDataValue(Text(u"abc")).GetValue(), (std::vector<char>{3, 0, 0, 0, 'a', 'b', 'c'}));
    EXPECT_EQ(BinaryDataValue(Text(u"")).GetValue(), (std::vector<char>{0, 0, 0, 0}));
    EXPECT_EQ(BinaryDataValue(DataValue(Special::Null, DataType::String)).GetValue(), (std::vector<char>{0, 0, 0, 0}));
}

//===--- Tuples ---===//

TEST(DataValueObjects, TupleValuesShareTheirTuple)
{
    const RefCntPtr<Tuple> tuple = makeRefCnt<Tuple>(Ints({1, 2}));
    {
        DataValue a(tuple);
        EXPECT_EQ(tuple->GetReferenceCount(), 2);
        EXPECT_EQ(a.GetTuple().get(), tuple.get());
        EXPECT_EQ(tuple->GetReferenceCount(), 2); // the returned pointer is gone again
        DataValue b(a);
        ExpectEqual(a, b);
        EXPECT_EQ(a.Hash(), tuple->Hash());
        b.SetNull(DataType::Integer); // a null of another type lets the tuple go
        EXPECT_EQ(tuple->GetReferenceCount(), 2);
    }
    EXPECT_EQ(tuple->GetReferenceCount(), 1);
}

TEST(DataValueObjects, TupleValuesCompareTheirTuples)
{
    ExpectEqual(TupleValue({1, 2}), TupleValue({1, 2}));
    EXPECT_EQ(TupleValue({1, 2}).Hash(), 0xC32C18E9u);
    EXPECT_EQ(TupleValue({1, 2, 3}).Hash(), 0x9320F5B6u);
    EXPECT_NE(TupleValue({1, 2}), TupleValue({2, 1}));
    // A tuple of one member is less than one of two, whatever the members.
    ExpectOrdered(TupleValue({100}), TupleValue({1, 2}));
    ExpectOrdered(TupleValue({1, 2}), TupleValue({1, 3}));
    ExpectEqual(DataValue(makeRefCnt<Tuple>()), DataValue(makeRefCnt<Tuple>()));
    ExpectOrdered(TupleValue({1}), DataValue(Special::Null, DataType::Spatial)); // by type number
}

TEST(DataValueObjects, TuplesOfStringsFollowTheCollation)
{
    auto pair = [](const char16_t* text) {
        return DataValue(makeRefCnt<Tuple>(std::vector<DataValue>{DataValue(1), Text(text, EnglishIgnoringCase())}));
    };
    ExpectEqual(pair(u"abc"), pair(u"ABC"));
    ExpectOrdered(pair(u"abc"), pair(u"abd"));
}

TEST(DataValueObjects, TupleFailures)
{
    DataValue v(7);
    const auto set = Caught([&] { v.SetTuple(nullptr); });
    ExpectFailure(*set, u"DataValue::SetTuple: bad argument", 0x92C27045u, 4);
    EXPECT_EQ(v, DataValue(7));
    const auto made = Caught([] { DataValue w{RefCntPtr<Tuple>()}; });
    ExpectFailure(*made, u"DataValue::SetTuple: bad argument", 0x92C27045u, 4);
}

//===--- Binaries ---===//

TEST(DataValueObjects, BinariesAreEqualOnlyWhenTheyShareTheirObject)
{
    const RefCntPtr<BinaryDataValue> bytes = makeRefCnt<BinaryDataValue>("ab", 2);
    const DataValue a(bytes);
    const DataValue b(a);
    ExpectEqual(a, b);
    EXPECT_EQ(bytes->GetReferenceCount(), 3);
    const DataValue other(makeRefCnt<BinaryDataValue>("ab", 2));
    EXPECT_NE(a, other);
    EXPECT_FALSE(a < other);
    EXPECT_FALSE(other < a);
    EXPECT_EQ(a.GetBinaryUnchecked().get(), bytes.get());
    EXPECT_EQ(DataValue(Special::Null, DataType::Binary).GetBinaryUnchecked().get(), nullptr);

    DataValue v(true);
    const auto set = Caught([&] { v.SetBinary(nullptr); });
    ExpectFailure(*set, u"DataValue::SetBinary: cannot construct from null", 0x0EB526BDu, 4);
    EXPECT_EQ(v, DataValue(true));
    const auto made = Caught([] { DataValue w{RefCntPtr<BinaryDataValue>()}; });
    ExpectFailure(*made, u"DataValue::SetBinary: cannot construct from null", 0x0EB526BDu, 4);
}

//===--- Spatial values ---===//

TEST(DataValueObjects, SpatialValuesCompareTheirShapes)
{
    const SpatialPointer point = Shape("POINT (1 2)");
    ASSERT_TRUE(point);
    const DataValue a(point);
    const DataValue sameShape(Shape("POINT (1 2)")); // another object, equal coordinates
    ExpectEqual(a, sameShape);
    EXPECT_EQ(a.Hash(), point->GetHash());
    EXPECT_NE(a, DataValue(Shape("POINT (1 2)", 3))); // a geography is another shape
    const DataValue line(Shape("LINESTRING (0 0, 1 1)"));
    EXPECT_NE(a, line);
    // Shapes are ordered by their hashes.
    const bool pointFirst = point->GetHash() < line.GetSpatial()->GetHash();
    ExpectOrdered(pointFirst ? a : line, pointFirst ? line : a);
    ExpectOrdered(DataValue(Special::Null, DataType::Spatial), a);
}

TEST(DataValueObjects, ACopiedSpatialValueHasABoxOfItsOwn)
{
    const SpatialPointer point = Shape("POINT (1 2)");
    auto source = std::make_unique<DataValue>(point);
    DataValue copy(*source);
    source.reset();
    EXPECT_EQ(copy.GetSpatial(), point);
    EXPECT_EQ(copy.FormatAsLiteral(), TString(u"'Point'"));
    // A copy allocates its box, and that is all.
    EXPECT_EQ(TestSupport::CountAllocations([&] { DataValue another(copy); }), 1u);
}

TEST(DataValueObjects, AnEmptyShapeIsANullOrAFailure)
{
    DataValue v(3);
    SetSpatialOrNull(v, nullptr);
    EXPECT_EQ(v.GetType(), DataType::Spatial);
    EXPECT_TRUE(v.IsNull());
    EXPECT_EQ(v.GetAny(), 0u); // no box
    SetSpatialOrNull(v, Shape("POINT (3 4)"));
    EXPECT_FALSE(v.IsNull());
    EXPECT_EQ(v.GetSpatial()->GetShapeType(), murgeo::ShapeType::Point);

    const auto set = Caught([&] { v.SetSpatial(nullptr); });
    ExpectFailure(*set, u"DataValue::SetSpatial: cannot construct from null", 0x90F95D59u, 4);
    EXPECT_EQ(v, DataValue(Shape("POINT (3 4)")));
    const auto made = Caught([] { DataValue w{SpatialPointer()}; });
    ExpectFailure(*made, u"DataValue::SetSpatial: cannot construct from null", 0x90F95D59u, 4);
}

//===--- Ordinals ---===//

TEST(DataValueObjects, OnlyAStringWithItsObjectHasAnOrdinal)
{
    auto capture = std::make_unique<TestSupport::ScopedLogCapture>(TLog::Warning);
    const std::shared_ptr<TestSupport::CapturingSink> sink = capture->sink;

    DataValue integer(5);
    EXPECT_EQ(integer.GetOrdinal(), -2);
    const auto e = Caught([&] { integer.SetOrdinal(5); });
    ExpectFailure(*e, u"Incorrect data type integer, setting expected string type.", 0xCA8336D1u, 2);
    EXPECT_EQ(e->GetErrorInfo().GetError().GetName(), TString(u"MurvaneException_IncorrectDatatypeException_0xCA8336D1"));
    EXPECT_EQ(integer, DataValue(5));

    // A null string has the right type but no object: "string" twice.
    DataValue nullString(Special::Null, DataType::String);
    EXPECT_EQ(nullString.GetOrdinal(), -2);
    ExpectFailure(*Caught([&] { nullString.SetOrdinal(1); }), u"Incorrect data type string, setting expected string type.",
                  0xCA8336D1u, 2);

    capture.reset();
    ASSERT_EQ(sink->events.size(), 2u);
    const TString& json = sink->events[0].second;
    EXPECT_TRUE(json.startsWith(TString(u"{\"event\":\"incorrect-data-type\""))) << json.toStdString();
    EXPECT_TRUE(json.contains(TString(u"\"msg\":\"Incorrect data type integer, setting expected string type.\"")));
    // The setting variant logs the thread without walking the stack.
    EXPECT_TRUE(json.contains(TString(u"\"thread\":\"")));
    EXPECT_FALSE(json.contains(TString(u"\"stack\"")));
}

//===--- Literal form ---===//

TEST(DataValueObjects, LiteralForms)
{
    struct Row
    {
        DataValue value;
        const char16_t* literal;
    } rows[] = {
        {DataValue::FromDate(At(2021, 3, 4, 10, 20, 30)), u"#2021-03-04#"},
        {DataValue::FromDate(At(400, 1, 1)), u"#0400-01-01#"}, {DataValue::FromDate(At(9999, 12, 31)), u"#9999-12-31#"},
        {DataValue::FromDateTime(At(2021, 3, 4, 10, 20, 30)), u"#2021-03-04 10:20:30#"},
        {DataValue::FromDateTime(At(1999, 12, 31, 23, 59, 59, 0.5)), u"#1999-12-31 23:59:59.500#"},
        {DataValue::FromDateTime(At(2000, 2, 29, 7, 5, 3, 0.001)), u"#2000-02-29 07:05:03.001#"},
        // Below a millisecond the short pattern is used.
        {DataValue::FromDateTime(At(2000, 2, 29, 7, 5, 3, 0.0009)), u"#2000-02-29 07:05:03#"},
        {DataValue(Shape("POLYGON ((0 0, 4 0, 4 4, 0 0))", 3)), u"'Polygon'"},
        {DataValue(Special::Null, DataType::Spatial), u"NULL"},
        // No literal, deliberately.
        {DataValue(Time(1, 2, 3, 4u), DataType::Time), u""}, {TupleValue({1, 2}), u""},
        {DataValue(makeRefCnt<BinaryDataValue>("x", 1)), u""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(TString(row.literal).toStdString());
        EXPECT_EQ(row.value.FormatAsLiteral(), TString(row.literal));
    }
    std::ostringstream out;
    out << DataValue::FromDate(At(2021, 3, 4));
    EXPECT_EQ(out.str(), "\"#2021-03-04#\"");
}

//===--- Visiting ---===//

TEST(DataValueObjects, TheInspectorSeesEveryKind)
{
    const DateTime day = At(2021, 3, 4);
    const DateTime moment = At(2021, 3, 4, 10, 20, 30);
    const RefCntPtr<Tuple> tuple = makeRefCnt<Tuple>(Ints({1, 2, 3}));
    const SpatialPointer point = Shape("POINT (1 2)");
    struct Row
    {
        DataValue value;
        std::vector<std::string> calls;
    } rows[] = {
        {Text(u"", EnglishIgnoringCase()), {"string  / LEN_RUS_S2"}}, {u"x"_dv, {"string x / LROOT"}},
        {DataValue(Special::Null, DataType::String), {"special 1 of 2"}},
        {DataValue::FromDate(day), {"date " + std::to_string(day.GetRepresentation())}},
        {DataValue::FromDateTime(moment), {"datetime " + std::to_string(moment.GetRepresentation())}},
        {DataValue(Time(0, 0, 1, 5u), DataType::Time), {"time 1000005"}}, {DataValue(tuple), {"tuple of 3"}},
        {DataValue(point), {"spatial Point"}},
        // Binary calls nothing and raises nothing.
        {DataValue(makeRefCnt<BinaryDataValue>()), {}},
        {DataValue(Special::Missing, DataType::Spatial), {"special 9 of 7"}},
        {DataValue(Special::Null, DataType::Binary), {"special 1 of 9"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.calls.empty() ? std::string("binary") : row.calls.front());
        TestSupport::RecordingInspector inspector;
        row.value.Accept(inspector);
        EXPECT_EQ(inspector.calls, row.calls);
    }
    // The tuple is shared with the inspector, and the shape's pointer is copied.
    const int32_t references = tuple->GetReferenceCount();
    TestSupport::RecordingInspector inspector;
    DataValue(tuple).Accept(inspector);
    DataValue(point).Accept(inspector);
    ASSERT_EQ(inspector.tuples.size(), 1u);
    EXPECT_EQ(inspector.tuples[0].get(), tuple.get());
    EXPECT_EQ(tuple->GetReferenceCount(), references + 1);
    ASSERT_EQ(inspector.spatials.size(), 1u);
    EXPECT_EQ(inspector.spatials[0], point);
}

//===--- Copies ---===//

TEST(DataValueObjects, CopyingACountedValueAllocatesNothing)
{
    const DataValue values[] = {Text(u"a string"), TupleValue({1, 2}), DataValue(makeRefCnt<BinaryDataValue>("ab", 2)),
                                DataValue::FromDate(At(2021, 3, 4)), DataValue(Time(1, 0, 0, 0u), DataType::Time)};
    for (const DataValue& value : values) {
        SCOPED_TRACE(int(value.GetType()));
        const size_t allocations = TestSupport::CountAllocations([&] {
            DataValue copy(value);
            DataValue assigned;
            assigned = copy;
            DataValue moved(std::move(copy));
        });
        EXPECT_EQ(allocations, 0u);
    }
}

//===--- Threads ---===//

// Fresh shared objects, so the first hashes race too; answers must match twins made apart.
TEST(DataValueObjects, ThreadsShareStringsAndTuples)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    const char16_t* texts[] = {u"apple", u"Apple", u"\u00E9clair", u"zebra", u"", u"a\"b"};

    auto makeValues = [&] {
        std::vector<DataValue> values;
        for (const char16_t* text : texts)
            values.push_back(Text(text));
        for (const char16_t* text : texts)
            values.push_back(Text(text, EnglishIgnoringCase()));
        for (long long n = 0; n < 4; ++n) {
            std::vector<DataValue> members = {DataValue(n), Text(texts[n])};
            members.push_back(DataValue(makeRefCnt<Tuple>(Ints({n, n + 1}))));
            values.emplace_back(makeRefCnt<Tuple>(std::move(members)));
        }
        return values;
    };
    const std::vector<DataValue> twins = makeValues();
    std::vector<uint32_t> hashes;
    for (const DataValue& v : twins)
        hashes.push_back(v.Hash());
    std::vector<std::vector<bool>> less(twins.size(), std::vector<bool>(twins.size()));
    for (size_t i = 0; i < twins.size(); ++i)
        for (size_t j = 0; j < twins.size(); ++j)
            less[i][j] = twins[i] < twins[j];

    for (int round = 0; round < 5; ++round) {
        const std::vector<DataValue> shared = makeValues();
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t) {
            threads.emplace_back([&, t] {
                for (int r = 0; r < kRounds; ++r) {
                    const size_t i = size_t(t + r) % shared.size();
                    const size_t j = size_t(t * 7 + r * 3) % shared.size();
                    std::vector<DataValue> copies = {shared[i], shared[j]};
                    if (copies[0].Hash() != hashes[i] || shared[j].Hash() != hashes[j])
                        ++wrong;
                    if (!(copies[0] == twins[i]) || (copies[0] < copies[1]) != less[i][j])
                        ++wrong;
                    DataValue assigned;
                    assigned = copies[1];
                    copies.clear();
                    if (!(assigned == shared[j]))
                        ++wrong;
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(wrong.load(), 0) << round;
    }
}
