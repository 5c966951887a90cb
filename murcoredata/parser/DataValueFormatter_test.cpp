#include "murcoredata/parser/DataValueFormatter.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

namespace {

using TestSupport::Caught;

enum class Colour
{
    Red = 1,
    Green = 2,
    Blue = 4,
};

} // namespace

TEST(DataValueFormatter, TypeNamesByNumber)
{
    const char16_t* names[] = {u"integer", u"real",    u"string",  u"datetime", u"boolean", u"date",
                               u"tuple",   u"spatial", u"unknown", u"binary",   u"time",    u"table"};
    const auto& table = DataValueFormatter::sDataTypeEncodings;
    ASSERT_EQ(table.GetMap().size(), 12u);
    for (int t = 0; t < 12; ++t) {
        SCOPED_TRACE(t);
        EXPECT_EQ(table.Encode(DataType(t)), TString(names[t]));
        EXPECT_EQ(table.Decode(TString(names[t])), DataType(t));
    }
    EXPECT_EQ(table.GetDefault(), DataType::Unknown);
    const std::vector<DataType> keys = table.GetKeys();
    ASSERT_EQ(keys.size(), 12u);
    for (size_t i = 0; i < keys.size(); ++i)
        EXPECT_EQ(keys[i], DataType(i));
}

TEST(DataValueFormatter, AMissingTypeFailsToEncode)
{
    const auto& table = DataValueFormatter::sDataTypeEncodings;
    EXPECT_EQ(table.Find(DataType(12)), nullptr);
    const auto e = Caught([&] { (void)table.Encode(DataType(12)); });
    EXPECT_EQ(e->GetMessagesFront(), TString(u"XML enumerated value cannot be encoded."));
    // No error record: the failure belongs to whoever asked.
    EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0u);
    EXPECT_EQ(int(e->GetErrorInfo().GetSource()), 4);
    // Its own class, which survives a clone and a rethrow.
    EXPECT_NE(typeid(*e), typeid(MurvaneException));
    const auto again = Caught([&] { e->Throw(); });
    EXPECT_EQ(typeid(*again), typeid(*e));
}

TEST(DataValueFormatter, UnknownTextsFailToDecode)
{
    const auto& table = DataValueFormatter::sDataTypeEncodings;
    for (const char16_t* text : {u"", u"INTEGER", u"integer ", u"int", u"%null%"}) {
        SCOPED_TRACE(TString(text).toStdString());
        const auto e = Caught([&] { (void)table.Decode(TString(text)); });
        EXPECT_EQ(e->GetMessagesFront(), TString(u"XML enumerated value cannot be decoded."));
        EXPECT_EQ(e->GetErrorInfo().GetError().GetCode(), 0u);
        EXPECT_EQ(table.DecodeOrDefault(TString(text)), DataType::Unknown);
        DataType out = DataType::Binary;
        EXPECT_FALSE(table.TryDecode(TString(text), out));
        EXPECT_EQ(out, DataType::Binary);
    }
    const auto enc = Caught([] { Implementation::ThrowXMLEnumEncodingException(); });
    const auto dec = Caught([] { Implementation::ThrowXMLEnumDecodingException(); });
    EXPECT_NE(typeid(*enc), typeid(*dec));
}

TEST(DataValueFormatter, TablesOfOtherEnumerations)
{
    const Implementation::EnumXMLEncodingBase<Colour> colours(
        {{Colour::Blue, TString(u"blue")}, {Colour::Red, TString(u"red")}}, Colour::Red);
    EXPECT_EQ(colours.Encode(Colour::Blue), TString(u"blue"));
    EXPECT_EQ(colours.Decode(TString(u"red")), Colour::Red);
    EXPECT_EQ(colours.DecodeOrDefault(TString(u"green")), Colour::Red);
    EXPECT_THROW((void)colours.Encode(Colour::Green), MurvaneException);
    // Keys come in ascending order, whatever order the rows were given in.
    EXPECT_EQ(colours.GetKeys(), (std::vector<Colour>{Colour::Red, Colour::Blue}));

    // An empty table (as before its static initialiser has run) knows no key.
    const Implementation::EnumXMLEncodingBase<Colour> empty({}, Colour::Green);
    EXPECT_EQ(empty.Find(Colour::Green), nullptr);
    EXPECT_THROW((void)empty.Encode(Colour::Green), MurvaneException);
    EXPECT_THROW((void)empty.Decode(TString()), MurvaneException);
    EXPECT_TRUE(empty.GetKeys().empty());
}
