#include "murcoredata/core/StringTable.h"

#include <gtest/gtest.h>

#include <set>

namespace {

struct Row
{
    uint32_t id;
    const char* key;
    const char* english;
};

// A sample of the table as the library documents it: ids, keys and texts, byte for byte.
const Row s_rows[] = {
    {0x92B2281Fu, "IDP_DATE_PARSE_ERROR", "Error parsing date '%1'"},
    {0x7409F8A7u, "IDP_STRINGUTILS_MISMATCH_QUOTE", "Mismatched quote in '%1'"},
    {0xD81F3D98u, "IDP_VALUE_LIST_FEW_VALUES", "%1 & %2"},
    {0x955FFB44u, "IDP_VALUE_LIST_MANY_VALUES", "%1 and %2 more"},
    {0x10DFCB64u, "IDS_DASH_LAYOUT_SPACING_COLOR_RGB", "rgb (%1,%2,%3)"},
    {0xB744EDD2u, "IDS_DATETIME_ERROR", "Invalid datetime value"},
    {0x7C61D0A1u, "IDS_ERR_BRACKET_MISMATCH", "Invalid input: mismatched brackets"},
    {0xE9B307EBu, "IDS_ERR_DANGLING_LBRACKET", "Invalid input: dangling '['"},
    {0x74F09893u, "IDS_ERR_EXPECT_DOT", "Invalid input: expected '.'"},
    {0x24934CD9u, "IDS_ERR_INCORRECT_DATA_TYPE_GET", "Incorrect data type %2, getting expected %1 type."},
    {0x0E8F2AF6u, "IDS_ERR_INCORRECT_DATA_TYPE_SET", "Incorrect data type %2, setting expected %1 type."},
    {0xF975EA07u, "IDS_ERR_XML_ENUM_ENCODING", "XML enumerated value cannot be encoded."},
    {0xEF5E45AFu, "IDS_ISO8601_TRUNC_WEEKDAY_EXAMPLE", "Oct 15, 2015"},
    {0x8CF52016u, "IDS_STRING_COMPARISON_ERROR", "String comparison error."},
    {0x6A726E83u, "IDS_VALUE_LIST_SEPARATOR", ", "},
    {0xAC09256Fu, "IDS_PALETTE_TOOLTIP_WHITE", "White"},
    {0xC36CA448u, "IDS_PALETTE_TOOLTIP_VERY_LIGHT_RED", "Light Pink"},
    {0xB8D74ED6u, "IDS_PALETTE_TOOLTIP_VERY_DARK_YELLOW", "Dark Gray"},
    {0x57A23C99u, "IDS_PALETTE_TOOLTIP_VERY_DARK_BROWN", "Very Dark Brown"},
};

} // namespace

TEST(StringTable, RowsGiveTheirKeyAndEnglishText)
{
    for (const Row& r : s_rows) {
        const auto id = CoreData::StringId(int32_t(r.id));
        EXPECT_EQ(CoreData::LookupStringKey(id), TString::fromUtf8(r.key)) << std::hex << r.id;
        EXPECT_EQ(CoreData::LookupTStr(id), TString::fromUtf8(r.english)) << std::hex << r.id;
        EXPECT_EQ(CoreData::LookupTFmtStr(id).result(), TString::fromUtf8(r.english));
    }
    // The ids that callers spell in decimal are the same rows.
    EXPECT_EQ(CoreData::LookupTStr(CoreData::StringId(613633241)), TString(u"Incorrect data type %2, getting expected %1 type."));
    EXPECT_EQ(CoreData::LookupTStr(CoreData::StringId(244263670)), TString(u"Incorrect data type %2, setting expected %1 type."));
    EXPECT_EQ(CoreData::LookupTStr(CoreData::IDS_ERR_EXPECT_DOT), TString(u"Invalid input: expected '.'"));
}

TEST(StringTable, UnknownIdsGiveTheEmptyText)
{
    for (uint32_t id : {0u, 1u, 0x12345678u, 0xFFFFFFFFu, 0x74F09894u}) {
        EXPECT_TRUE(CoreData::LookupTStr(CoreData::StringId(int32_t(id))).isEmpty());
        EXPECT_TRUE(CoreData::LookupStringKey(CoreData::StringId(int32_t(id))).isEmpty());
    }
}

TEST(StringTable, FormatStringsFillInOrder)
{
    const TString text = CoreData::LookupTFmtStr(CoreData::IDS_ERR_INCORRECT_DATA_TYPE_GET)
                             .arg(TString(u"integer"))
                             .arg(TString(u"real"));
    EXPECT_EQ(text, TString(u"Incorrect data type real, getting expected integer type."));
}

TEST(StringTable, ATranslatorComesFirstAndEnglishIsTheFallback)
{
    struct German : CoreData::IStringTranslator
    {
        bool Translate(CoreData::StringId id, const TString& key, const TString&, TString& out) const override
        {
            if (id != CoreData::IDS_NO_FILL || key != TString(u"IDS_NO_FILL"))
                return false;
            out = TString(u"Keine Füllung");
            return true;
        }
    } german;
    CoreData::SetStringTranslator(&german);
    EXPECT_EQ(CoreData::LookupTStr(CoreData::IDS_NO_FILL), TString(u"Keine Füllung"));
    EXPECT_EQ(CoreData::LookupTStr(CoreData::IDS_AGG_DAY), TString(u"Day"));
    EXPECT_EQ(CoreData::LookupEnglishTStr(CoreData::IDS_NO_FILL), TString(u"No Fill"));
    CoreData::SetStringTranslator(nullptr);
    EXPECT_EQ(CoreData::LookupTStr(CoreData::IDS_NO_FILL), TString(u"No Fill"));
}
