#include "murcoredata/data/CollatorName.h"
#include "murcoredata/foundation/Caught_test.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using C = Collation;

using TestSupport::ExpectLogicFailure;

std::string Str(const TString& text) { return text.toStdString(); }

} // namespace

TEST(CollatorName, FromWindowsIdentity)
{
    struct Row
    {
        unsigned int lcid;
        unsigned int flags;
        bool wordSort;
        const char* expected;
    } const rows[] = {
        {0x409, 0, false, "LEN_RUS"},
        {0x409, 1, false, "LEN_RUS_S2"},             // case: secondary
        {0x409, 2, false, "EO_LEN_RUS_S1"},          // accents only: primary plus case level
        {0x409, 3, false, "LEN_RUS_S1"},             // both: primary
        {0x409, 4, false, "AS_LEN_RUS_S3"},          // symbols: shifted, and S3 is kept
        {0x409, 5, false, "AS_LEN_RUS_S2"},
        {0x409, 6, false, "AS_EO_LEN_RUS_S1"},
        {0x409, 7, false, "AS_LEN_RUS_S1"},
        {0x409, 0, true, "LEN_RUS_WO"},
        {0x409, 0x80000000u, false, "LEN_RUS_VWIN"},
        {0x409, 0x80000004u, true, "AS_LEN_RUS_S3_VWIN_WO"},
        {0x407, 1, false, "LDE_RDE_S2"},
        {0x804, 0, false, "LZH_RCN"},                // ICU names it zh_CN
        {0x404, 0, false, "LZH_RTW_ZHANT"},          // zh_Hant_TW: the script comes last
        {0, 0, false, "LROOT"},                      // ICU reads no language out of "root"
        {0x400, 0, false, "LROOT"},
        // "root_VWIN" does have a language, and ICU reads its four letters as a script, too.
        {0, 0x80000000u, false, "LROOT_VWIN_ZVWIN"},
        {0x12345678, 0, false, ""},                  // an id ICU does not know is root, not 0
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Str(MakeCollatorName(row.lcid, row.flags, row.wordSort)), row.expected);
    }
}

TEST(CollatorName, OptionsReplaceWhatTheNameSaid)
{
    struct Row
    {
        const char16_t* name;
        C::CaseOpt caseOpt;
        C::AccentOpt accentOpt;
        C::SortOpt sortOpt;
        C::PunctOpt punctOpt;
        const char* expected;
    } const rows[] = {
        {u"LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {u"LEN_RUS_S1", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {u"AS_LEN_RUS_WO", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {u"LEN_RUS", C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS_S2"},
        {u"LEN_RUS", C::CaseIgnore, C::AccentIgnore, C::SortDefault, C::PunctDefault, "LEN_RUS_S1"},
        {u"LEN_RUS", C::CaseDefault, C::AccentIgnore, C::SortDefault, C::PunctDefault, "EO_LEN_RUS_S1"},
        {u"LEN_RUS", C::CaseUpperFirst, C::AccentDefault, C::SortDefault, C::PunctDefault, "CU_LEN_RUS"},
        {u"LEN_RUS", C::CaseLowerFirst, C::AccentIgnore, C::SortDefault, C::PunctDefault, "CL_EO_LEN_RUS_S1"},
        {u"LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctIgnore, "AS_LEN_RUS"},
        {u"LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctQuaternary, "LEN_RUS_S4"},
        {u"LEN_RUS", C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctIgnore, "AS_LEN_RUS_S2"},
        {u"LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortWord, C::PunctDefault, "LEN_RUS_WO"},
        {u"LEN_RUS", C::CaseIgnore, C::AccentDefault, C::SortIdentical, C::PunctDefault, "LEN_RUS_SI"},
        {u"LROOT", C::CaseIgnore, C::AccentIgnore, C::SortWord, C::PunctIgnore, "AS_LROOT_S1_WO"},
        // Not canonical in, canonical out: sorted, one part a letter (the last one wins).
        {u"RUS_LEN", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {u"LEN_LDE_RDE", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LDE_RDE"},
        {u"XO_LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS_XO"},
        // Lower case is not upper-cased here, and sorts after every capital.
        {u"len_rus", C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctDefault, "S2_len_rus"},
        {nullptr, C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctDefault, "S2"},
        {u"", C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, ""},
        // Out-of-range options count as their defaults.
        {u"LEN_RUS", C::CaseOpt(9), C::AccentOpt(5), C::SortOpt(7), C::PunctOpt(-1), "LEN_RUS"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Str(MakeCollatorName(row.name, row.caseOpt, row.accentOpt, row.sortOpt, row.punctOpt)), row.expected);
    }
}

TEST(CollatorName, FromICULocale)
{
    struct Row
    {
        const char* locale;
        bool ignoreDigits;
        C::CaseOpt caseOpt;
        C::AccentOpt accentOpt;
        C::SortOpt sortOpt;
        C::PunctOpt punctOpt;
        const char* expected;
    } const rows[] = {
        {"en_US", false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {"en_us", false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {"en_US_POSIX", false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LEN_RUS"},
        {"zh_Hant_TW", false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, "LZH_RTW_ZHANT"},
        {"de_DE", false, C::CaseIgnore, C::AccentDefault, C::SortDefault, C::PunctDefault, "LDE_RDE_S2"},
        {"de_DE", false, C::CaseDefault, C::AccentIgnore, C::SortDefault, C::PunctDefault, "EO_LDE_RDE_S1"},
        {"de_DE", false, C::CaseIgnore, C::AccentIgnore, C::SortDefault, C::PunctDefault, "LDE_RDE_S1"},
        {"de_DE", false, C::CaseUpperFirst, C::AccentDefault, C::SortDefault, C::PunctDefault, "CU_LDE_RDE"},
        {"fr", false, C::CaseDefault, C::AccentDefault, C::SortWord, C::PunctIgnore, "AS_LFR_WO"},
        {"fr", false, C::CaseDefault, C::AccentDefault, C::SortIdentical, C::PunctDefault, "LFR"},
        // Ignoring digits drops the punctuation option and the accent option's strength...
        {"en_US", true, C::CaseDefault, C::AccentIgnore, C::SortDefault, C::PunctIgnore, "LEN_RUS_XO"},
        // ...but not the case option's.
        {"en_US", true, C::CaseIgnore, C::AccentIgnore, C::SortDefault, C::PunctDefault, "LEN_RUS_S2_XO"},
        {"", false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Str(MakeICUCollatorName(row.locale, row.ignoreDigits, row.caseOpt, row.accentOpt, row.sortOpt,
                                          row.punctOpt)),
                  row.expected);
    }
}

TEST(CollatorName, FromLocaleThroughItsId)
{
    struct Row
    {
        const char* locale;
        bool ignoreDigits;
        C::CaseOpt caseOpt;
        const char* expected;
    } const rows[] = {
        {"en-US", false, C::CaseDefault, "LEN_RUS"},
        {"en_US", false, C::CaseIgnore, "LEN_RUS_S2"},
        {"de-DE", false, C::CaseDefault, "LDE_RDE"},
        // Digit-ignoring forces accent- and punctuation-ignoring.
        {"en_US", true, C::CaseDefault, "AS_EO_LEN_RUS_S1_XO"},
        {"en_US", true, C::CaseIgnore, "AS_LEN_RUS_S1_XO"},
        // No id: 1024, whose locale is the root.
        {"xx_YY", false, C::CaseDefault, "LROOT"},
        {nullptr, false, C::CaseDefault, "LROOT"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Str(CollatorNameFromLocaleName(row.locale, row.ignoreDigits, row.caseOpt, C::AccentDefault,
                                                 C::SortDefault, C::PunctDefault)),
                  row.expected);
    }
}

TEST(CollatorName, OneAttributeAtATime)
{
    struct Row
    {
        const char16_t* name;
        ICUCollator::Attr attr;
        ICUColAttributeValue value;
        const char* expected;
    } const rows[] = {
        {u"LEN_RUS", ICUCollator::Strength, MurICU::UCOL_PRIMARY, "LEN_RUS_S1"},
        {u"LEN_RUS_S1", ICUCollator::Strength, MurICU::UCOL_TERTIARY, "LEN_RUS"}, // the default removes
        {u"LEN_RUS_S1", ICUCollator::Strength, MurICU::UCOL_DEFAULT, "LEN_RUS"},
        {u"LEN_RUS", ICUCollator::NumericCollation, MurICU::UCOL_ON, "IO_LEN_RUS"},
        {u"LEN_RUS", ICUCollator::FrenchCollation, MurICU::UCOL_OFF, "FX_LEN_RUS"},
        {u"LEN_RUS", ICUCollator::NormalizationMode, MurICU::UCOL_ON, "LEN_NO_RUS"},
        {u"LEN_RUS", ICUCollator::AlternateHandling, MurICU::UCOL_NON_IGNORABLE, "AN_LEN_RUS"},
        {u"LEN_RUS", ICUCollator::HiraganaQuaternaryMode, MurICU::UCOL_ON, "HO_LEN_RUS"},
        {u"LEN_RUS", ICUCollator::IgnoreDigits, MurICU::UCOL_ON, "LEN_RUS_XO"},
        {u"LEN_RUS_XO", ICUCollator::IgnoreDigits, MurICU::UCOL_OFF, "LEN_RUS"},
        {u"LEN_RUS_WO", ICUCollator::WordSort, MurICU::UCOL_OFF, "LEN_RUS"},
        {u"", ICUCollator::WordSort, MurICU::UCOL_ON, "WO"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(Str(ICUCollator::AddAttrToName(row.name, row.attr, row.value)), row.expected);
    }
    EXPECT_EQ(Str(ICUCollator::SetWordSort(u"AS_LEN_RUS", true)), "AS_LEN_RUS_WO");
    EXPECT_EQ(Str(ICUCollator::SetWordSort(u"AS_LEN_RUS_WO", false)), "AS_LEN_RUS");
}

TEST(CollatorName, HostileNamesAndNumbersFailTheirAssertions)
{
    const auto defaults = [](const char16_t* name) {
        (void)MakeCollatorName(name, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault);
    };
    for (const char16_t* name : {u"LEN__RUS", u"_LEN_RUS", u"LEN_RUS_", u"_"}) {
        SCOPED_TRACE(TString(name).toStdString());
        ExpectLogicFailure([&] { defaults(name); }, 0x930903CF, "!i->isEmpty()");
    }

    for (int attr : {-1, 8, 11, 1000}) {
        SCOPED_TRACE(attr);
        ExpectLogicFailure([&] { ICUCollator::AddAttrToName(u"LEN_RUS", ICUCollator::Attr(attr), MurICU::UCOL_ON); },
                           0x1E0FC030, "a.attr.enumVal == i->first.enumVal");
    }
    for (int value : {-2, 4, 14, 18, 26, 1 << 30}) {
        SCOPED_TRACE(value);
        ExpectLogicFailure(
            [&] { ICUCollator::AddAttrToName(u"LEN_RUS", ICUCollator::Strength, ICUColAttributeValue(value)); },
            0x7FDA70DD, "v.value == i->second");
    }

    const char* binary = "TString(name).compare(CollationType::s_binary, TString::CaseInsensitive) != 0";
    for (const char16_t* name : {u"binary", u"BINARY", u"Binary"})
        ExpectLogicFailure([&] { ICUCollator::SetWordSort(name, true); }, 0x9B62A87D, binary);

    for (int sortOpt : {2, 3}) {
        SCOPED_TRACE(sortOpt);
        ExpectLogicFailure(
            [&] { MakeCollatorName(u"LEN_RUS", C::CaseDefault, C::AccentDefault, C::SortOpt(sortOpt), C::PunctDefault); },
            0x8E052837, "false");
        ExpectLogicFailure(
            [&] { MakeICUCollatorName("en_US", false, C::CaseDefault, C::AccentDefault, C::SortOpt(sortOpt), C::PunctDefault); },
            0xBC905FDE, "false");
    }
}

TEST(CollatorName, LocaleTextICUCannotReadThrows)
{
    // A language longer than the 31-character buffer.
    const std::string locale(40, 'a');
    try {
        (void)MakeICUCollatorName(locale, false, C::CaseDefault, C::AccentDefault, C::SortDefault, C::PunctDefault);
        ADD_FAILURE() << "expected a failure";
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x5EA10C35u);
        EXPECT_EQ(Str(e.GetMessagesFront()), "String comparison error.");
    }
}
