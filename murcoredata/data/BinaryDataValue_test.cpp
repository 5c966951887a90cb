#include "murcoredata/data/BinaryDataValue.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/DateTime.h"
#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murgeo/Serialization.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

using Special = DataValueTypes::Special;
using Bytes = std::vector<uint8_t>;

namespace {

Bytes BytesOf(const BinaryDataValue& b)
{
    return Bytes(b.GetValue().begin(), b.GetValue().end());
}

std::vector<char> Chars(std::initializer_list<int> values)
{
    std::vector<char> chars;
    for (int v : values)
        chars.push_back(char(v));
    return chars;
}

// 2021-03-04 is day 2459277 (1970-01-01, day 2440587, plus 18690 days).
DateTime March4th(int hour = 0, int minute = 0, int second = 0)
{
    return DateTime(2021, 3, 4, hour, minute, second, 0.0);
}

using TestSupport::Caught;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

static_assert(sizeof(BinaryDataValue::s_numericShifts) / sizeof(BinaryDataValue::s_numericShifts[0]) == 19,
              "the scales 0 to 18");

TEST(BinaryDataValue, NumericShiftsArePowersOfTen)
{
    unsigned long long power = 1;
    for (int i = 0; i < 19; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(BinaryDataValue::s_numericShifts[i], power);
        power *= 10;
    }
    EXPECT_EQ(BinaryDataValue::s_numericShifts[18], 1000000000000000000ULL);
}

// Every image, byte by byte. The expected bytes were written out by hand (little-endian) or
// computed apart in Python with struct.pack.
TEST(BinaryDataValue, ByteImages)
{
    struct Row
    {
        const char* what;
        std::function<void(BinaryDataValue&)> set;
        Bytes bytes;
    } rows[] = {
        {"int16 -2", [](BinaryDataValue& b) { b.SetInt16(-2); }, {0xFE, 0xFF}},
        {"int16 0x1234", [](BinaryDataValue& b) { b.SetInt16(0x1234); }, {0x34, 0x12}},
        {"int32 -1", [](BinaryDataValue& b) { b.SetInt32(-1); }, {0xFF, 0xFF, 0xFF, 0xFF}},
        {"int32 0x01020304", [](BinaryDataValue& b) { b.SetInt32(0x01020304); }, {0x04, 0x03, 0x02, 0x01}},
        {"int64 min", [](BinaryDataValue& b) { b.SetInt64(std::numeric_limits<long long>::min()); },
         {0, 0, 0, 0, 0, 0, 0, 0x80}},
        {"int64 42", [](BinaryDataValue& b) { b.SetInt64(42); }, {42, 0, 0, 0, 0, 0, 0, 0}},
        {"true", [](BinaryDataValue& b) { b.SetBoolean(true); }, {0x01}},
        {"false", [](BinaryDataValue& b) { b.SetBoolean(false); }, {0x00}},
        // A scaled decimal: 12.345 x 100 = 1234.5, rounded away from zero.
        {"12.345 scale 2", [](BinaryDataValue& b) { b.SetReal(12.345, 2); }, {0xD3, 0x04, 0, 0, 0, 0, 0, 0}},
        {"-12.345 scale 2", [](BinaryDataValue& b) { b.SetReal(-12.345, 2); },
         {0x2D, 0xFB, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {"12.345 scale -1", [](BinaryDataValue& b) { b.SetReal(12.345, -1); },
         {0x71, 0x3D, 0x0A, 0xD7, 0xA3, 0xB0, 0x28, 0x40}},
        {"0.125 scale 2", [](BinaryDataValue& b) { b.SetReal(0.125, 2); }, {13, 0, 0, 0, 0, 0, 0, 0}},
        {"2.5 scale 0", [](BinaryDataValue& b) { b.SetReal(2.5, 0); }, {3, 0, 0, 0, 0, 0, 0, 0}},
        {"-2.5 scale 0", [](BinaryDataValue& b) { b.SetReal(-2.5, 0); }, {0xFD, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        // 1.005 x 100 is 100.49999999999999 in double: the product is rounded, not the text.
        {"1.005 scale 2", [](BinaryDataValue& b) { b.SetReal(1.005, 2); }, {100, 0, 0, 0, 0, 0, 0, 0}},
        {"1.5 scale 18", [](BinaryDataValue& b) { b.SetReal(1.5, 18); }, {0x00, 0x00, 0x16, 0x7B, 0x0D, 0x12, 0xD1, 0x14}},
        // Beyond the integers, and NaN: the integer indefinite.
        {"10 scale 18", [](BinaryDataValue& b) { b.SetReal(10.0, 18); }, {0, 0, 0, 0, 0, 0, 0, 0x80}},
        {"-1e300 scale 0", [](BinaryDataValue& b) { b.SetReal(-1e300, 0); }, {0, 0, 0, 0, 0, 0, 0, 0x80}},
        {"nan scale 2", [](BinaryDataValue& b) { b.SetReal(kNaN, 2); }, {0, 0, 0, 0, 0, 0, 0, 0x80}},
        // Scales without a scaled form write the bits.
        {"1.5 scale 19", [](BinaryDataValue& b) { b.SetReal(1.5, 19); }, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {"1.5 scale -2", [](BinaryDataValue& b) { b.SetReal(1.5, -2); }, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        // Days with the first as 1: day 2459277 + 1; the time of day does not count.
        {"date", [](BinaryDataValue& b) { b.SetDate(March4th()); }, {0x8E, 0x86, 0x25, 0x00}},
        {"date with a time", [](BinaryDataValue& b) { b.SetDate(March4th(23, 59, 59)); }, {0x8E, 0x86, 0x25, 0x00}},
        {"default date", [](BinaryDataValue& b) { b.SetDate(DateTime()); }, {0xAB, 0xD9, 0x24, 0x00}},
        {"9999-12-31", [](BinaryDataValue& b) { b.SetDate(DateTime(9999, 12, 31, 0, 0, 0, 0.0)); }, {0x2C, 0xFE, 0x51, 0x00}},
        // (representation + 864,000,000) x 100.
        {"datetime", [](BinaryDataValue& b) { b.SetDateTime(March4th(10, 20, 30)); },
         {0x80, 0xF7, 0xCB, 0xD4, 0xF0, 0xE2, 0xF2, 0x02}},
        {"default datetime", [](BinaryDataValue& b) { b.SetDateTime(DateTime()); },
         {0x00, 0x20, 0x3D, 0xFF, 0x04, 0x4D, 0xE5, 0x02}},
        {"datetime wraps", [](BinaryDataValue& b) { b.SetDateTime(DateTime::FromValue(~0ULL)); },
         {0x9C, 0x5F, 0xD7, 0x1D, 0x14, 0x00, 0x00, 0x00}},
        {"string abc", [](BinaryDataValue& b) { b.SetString(std::string("abc")); }, {3, 0, 0, 0, 'a', 'b', 'c'}},
        {"empty string", [](BinaryDataValue& b) { b.SetString(std::string()); }, {0, 0, 0, 0}},
        {"empty TString", [](BinaryDataValue& b) { b.SetString(TString()); }, {0, 0, 0, 0}},
        {"TString as UTF-8", [](BinaryDataValue& b) { b.SetString(TString(u"\u00E9\u20AC")); },
         {5, 0, 0, 0, 0xC3, 0xA9, 0xE2, 0x82, 0xAC}},
        {"counted with a NUL", [](BinaryDataValue& b) { b.SetString("a\0b", 3); }, {3, 0, 0, 0, 'a', 0, 'b'}},
        {"null pointer", [](BinaryDataValue& b) { b.SetString(nullptr, 5); }, {0, 0, 0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        // Each setter replaces all the bytes, whatever was there.
        BinaryDataValue b(std::string(40, 'x').c_str(), 40);
        row.set(b);
        EXPECT_EQ(BytesOf(b), row.bytes);
    }
}

TEST(BinaryDataValue, RawBytes)
{
    const std::vector<char> bytes = Chars({1, 2, 0, 3});
    EXPECT_EQ(BinaryDataValue(bytes).GetValue(), bytes);
    EXPECT_EQ(BinaryDataValue("\x01\x02\x00\x03", 4).GetValue(), bytes);
    EXPECT_TRUE(BinaryDataValue(nullptr, 12).GetValue().empty());
    EXPECT_TRUE(BinaryDataValue().GetValue().empty());

    std::vector<char> moving = bytes;
    const char* storage = moving.data();
    const BinaryDataValue taken(std::move(moving));
    EXPECT_EQ(taken.GetValue().data(), storage);

    BinaryDataValue b;
    b.SetValue(bytes);
    EXPECT_EQ(b.GetValue(), bytes);
    b.SetValue(b.GetValue()); // its own bytes: nothing happens
    EXPECT_EQ(b.GetValue(), bytes);
    b.SetValue("zz", 2);
    EXPECT_EQ(b.GetValue(), Chars({'z', 'z'}));
    b.SetValue(nullptr, 2);
    EXPECT_TRUE(b.GetValue().empty());
    b.SetValue(Chars({9}));
    EXPECT_EQ(b.GetValue(), Chars({9}));

    EXPECT_EQ(BytesOf(BinaryDataValue(TString(u"ab"))), (Bytes{2, 0, 0, 0, 'a', 'b'}));
}

TEST(BinaryDataValue, ImagesOfValuesGoByTheirType)
{
    struct Row
    {
        const char* what;
        DataValue value;
        Bytes bytes;
    } rows[] = {
        {"integer", DataValue(-2), {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        // The stored scale picks the form.
        {"decimal", DataValue(12.345, 10, 2), {0xD3, 0x04, 0, 0, 0, 0, 0, 0}},
        {"real", DataValue::FromDouble(1.5), {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {"real with a precision only", DataValue(1.5, 10, -1), {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {"boolean", DataValue(true), {1}},
        {"date", DataValue::FromDate(March4th()), {0x8E, 0x86, 0x25, 0x00}},
        {"datetime", DataValue::FromDateTime(March4th(10, 20, 30)), {0x80, 0xF7, 0xCB, 0xD4, 0xF0, 0xE2, 0xF2, 0x02}},
        // A special writes the image of its empty payload, read by the unchecked getter.
        {"null integer", DataValue(Special::Null, DataType::Integer), {0, 0, 0, 0, 0, 0, 0, 0}},
        {"missing boolean", DataValue(Special::Missing, DataType::Boolean), {0}},
        {"null date", DataValue(Special::Null, DataType::Date), {0xAB, 0xD9, 0x24, 0x00}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(BytesOf(BinaryDataValue(row.value)), row.bytes);
    }
}

TEST(BinaryDataValue, ValuesWithoutAnImageLeaveTheBytes)
{
    const std::shared_ptr<const murgeo::Spatial> point(murgeo::WktSerialization::Read("POINT (1 2)", 2));
    ASSERT_TRUE(point);
    const DataValue values[] = {
        DataValue(makeRefCnt<Tuple>(3u)),
        DataValue(point),
        DataValue(Time(1, 2, 3, 4u), DataType::Time),
        DataValue(),
        DataValue(makeRefCnt<BinaryDataValue>("q", 1)),
        DataValue(Special::Null, DataType::Spatial),
    };
    for (const DataValue& value : values) {
        SCOPED_TRACE(int(value.GetType()));
        BinaryDataValue b("keep", 4);
        b.SetDataValue(value);
        EXPECT_EQ(b.GetValue(), Chars({'k', 'e', 'e', 'p'}));
    }
}

TEST(BinaryDataValue, TuplesAndShapesHaveNoImage)
{
    BinaryDataValue b("keep", 4);
    const auto tuple = Caught([&] { b.SetTuple(makeRefCnt<Tuple>(1u)); });
    EXPECT_EQ(typeid(*tuple), typeid(MurvaneException));
    // The types by number: 8 expected, 6 given.
    EXPECT_EQ(tuple->GetMessagesFront(), TString(u"Incorrect data type 6, setting expected 8 type."));
    EXPECT_EQ(tuple->GetErrorInfo().GetError().GetCode(), 0xCA8348EEu);
    EXPECT_EQ(tuple->GetErrorInfo().GetError().GetName(),
              TString(u"MurvaneException_IncorrectDatatypeException_0xCA8348EE"));
    EXPECT_EQ(int(tuple->GetErrorInfo().GetSource()), 2);
    EXPECT_EQ(int(tuple->GetErrorInfo().GetStatusCode()), 2);

    const auto spatial = Caught([&] { b.SetSpatial(nullptr); });
    EXPECT_EQ(spatial->GetMessagesFront(), TString(u"Incorrect data type 7, setting expected 8 type."));
    EXPECT_EQ(spatial->GetErrorInfo().GetError().GetCode(), 0xCA836145u);
    EXPECT_EQ(spatial->GetErrorInfo().GetError().GetName(),
              TString(u"MurvaneException_IncorrectDatatypeException_0xCA836145"));
    EXPECT_EQ(int(spatial->GetErrorInfo().GetSource()), 2);

    // Even a null tuple fails the same way, and the bytes stay.
    EXPECT_THROW(b.SetTuple(nullptr), MurvaneException);
    EXPECT_EQ(b.GetValue(), Chars({'k', 'e', 'e', 'p'}));
}
