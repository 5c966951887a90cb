#include "murcoredata/data/CoreICUUtils.h"
#include "murcoredata/foundation/LogCapture_test.h"

#include "murcoredata/data/CoreICULocale.h"
#include "murcoredata/foundation/TLog.h"

#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <unicode/utypes.h>

#include <mutex>

namespace {

// Runs `call`, which must throw the comparison error, and returns what it logged.
std::vector<std::pair<int, std::string>> LogOfFailure(void (*call)())
{
    TestSupport::ScopedLogCapture capture;
    try {
        call();
        ADD_FAILURE() << "expected a StringException";
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetMessagesFront().toStdString(), "String comparison error.");
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x5EA10C35u);
        EXPECT_EQ(e.GetErrorInfo().GetError().GetName().toStdString(), "StringException_AutoGen_0x5EA10C35");
        EXPECT_EQ(int(e.GetErrorInfo().GetSource()), 4);
        EXPECT_EQ(int(e.GetErrorInfo().GetStatusCode()), 2);
    }
    return capture.Lines();
}

} // namespace

TEST(CoreICUUtils, ThrowLogsAFramedBlockThenThrows)
{
    const auto lines = LogOfFailure([] { CoreICUUtils::ThrowICUException(TString(u"bad thing"), TString(u"LEN_RUS")); });
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, 3);
    EXPECT_EQ(lines[0].second,
              "\n--- String Compare Error ------------------------------------------------\n"
              "Error: bad thing, LEN_RUS\n"
              "-------------------------------------------------------------------------\n");
}

TEST(CoreICUUtils, StatusBecomesItsICUName)
{
    const auto lines = LogOfFailure([] { CoreICUUtils::ThrowICUException(U_ILLEGAL_ARGUMENT_ERROR, TString(u"ctx")); });
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].second.find("\nError: U_ILLEGAL_ARGUMENT_ERROR, ctx\n"), std::string::npos);
    // A number ICU has no name for still gives a text.
    const auto unknown = LogOfFailure([] { CoreICUUtils::ThrowICUException(123456, TString(u"ctx")); });
    ASSERT_EQ(unknown.size(), 1u);
    EXPECT_NE(unknown[0].second.find(", ctx\n"), std::string::npos);
}

TEST(CoreICUUtils, LocaleOfALocaleId)
{
    EXPECT_STREQ(CoreICUUtils::GetLocale(0).getName(), icu::Locale::getRoot().getName());
    EXPECT_STREQ(CoreICUUtils::GetLocale(1024).getName(), icu::Locale::getDefault().getName());
    EXPECT_STREQ(CoreICUUtils::GetLocale(2048).getName(), icu::Locale::getDefault().getName());
    EXPECT_STREQ(CoreICUUtils::GetLocale(0x407).getName(), "de_DE");
    EXPECT_STREQ(CoreICUUtils::GetLocale(0x404).getName(), "zh_Hant_TW");
    EXPECT_TRUE(CoreICUUtils::IsVersionAtLeast(U_ICU_VERSION_MAJOR_NUM, 0));
    EXPECT_FALSE(CoreICUUtils::IsVersionAtLeast(U_ICU_VERSION_MAJOR_NUM + 1, 0));
    EXPECT_TRUE(CoreICUUtils::IsVersionAtLeast(60, 99));
}
