#include "murcoredata/parser/DataValueFormatter.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurvaneError.h"

namespace {

// The two failures of the enumeration tables carry a message and no error record: they are
// reached from many sites, none of which is the place to blame.
class XMLEnumEncodingException : public MurvaneException
{
public:
    XMLEnumEncodingException() : MurvaneException(static_cast<const TStringCore&>(CoreData::LookupTStr(CoreData::IDS_ERR_XML_ENUM_ENCODING))) {}
    XMLEnumEncodingException* Clone() const override { return new XMLEnumEncodingException(*this); }
    [[noreturn]] void Throw() const override { throw XMLEnumEncodingException(*this); }
};

class XMLEnumDecodingException : public MurvaneException
{
public:
    XMLEnumDecodingException() : MurvaneException(static_cast<const TStringCore&>(CoreData::LookupTStr(CoreData::IDS_ERR_XML_ENUM_DECODING))) {}
    XMLEnumDecodingException* Clone() const override { return new XMLEnumDecodingException(*this); }
    [[noreturn]] void Throw() const override { throw XMLEnumDecodingException(*this); }
};

} // namespace

namespace Implementation {

void ThrowXMLEnumEncodingException()
{
    throw XMLEnumEncodingException();
}

void ThrowXMLEnumDecodingException()
{
    throw XMLEnumDecodingException();
}

} // namespace Implementation

const DataValueFormatter::DataTypeEncodings DataValueFormatter::sDataTypeEncodings(
    {
        {DataType::Integer, TString(u"integer")},
        {DataType::Real, TString(u"real")},
        {DataType::String, TString(u"string")},
        {DataType::DateTime, TString(u"datetime")},
        {DataType::Boolean, TString(u"boolean")},
        {DataType::Date, TString(u"date")},
        {DataType::Tuple, TString(u"tuple")},
        {DataType::Spatial, TString(u"spatial")},
        {DataType::Unknown, TString(u"unknown")},
        {DataType::Binary, TString(u"binary")},
        {DataType::Time, TString(u"time")},
        {DataType::Table, TString(u"table")},
    },
    DataType::Unknown);
