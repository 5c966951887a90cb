#include "murcoredata/foundation/TLog.h"
#include "murcoredata/foundation/TPath.h"
#include "murcoredata/foundation/TSettings.h"
#include "murcoredata/foundation/CorePlatform.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <mutex>
#include <vector>

namespace {

struct CapturingSink : TLog::ISink
{
    std::mutex mutex;
    std::vector<std::pair<int, TString>> lines;
    void WriteEvent(int severity, const TLog::Event& event) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        lines.emplace_back(severity, event.ToJson());
    }
    void WriteMessage(int severity, const TString& text, const TError::ErrorInfo* info) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        lines.emplace_back(severity, info ? text + TString(u" #") + TString::number(info->GetError().GetCode(), 16) : text);
    }
};

} // namespace

TEST(TLog, EventsReachTheSinkOnlyWhenTheirSeverityIsEnabled)
{
    auto sink = std::make_shared<CapturingSink>();
    TLog::Logger& logger = TLog::Logger::Get();
    const int oldMinimum = logger.GetMinimumSeverity();
    auto old = logger.SetSink(sink);
    logger.SetMinimumSeverity(TLog::Warning);

    TLog::ValueMap fields;
    fields[TString(u"msg")] = TLog::Literal::String(TString(u"say \"hi\""));
    fields[TString(u"actual")] = TLog::Literal::String(TString(u"real"));
    TLog::LogMessage(3, TString(u"incorrect-data-type"), fields);
    TLog::LogMessage(2, TString(u"ignored"), fields);
    LogMessage(TString(u"info line, below the minimum"));
    LogMessage(TLog::AnySeverity(4), TFormatString(u"value %1").arg(5));
    LogMessage(TLog::NonErrorSeverity(5), TString(u"capped"), TError::ErrorInfo(MurvaneError::MakeError(0xAB, TStringCore())));

    logger.SetSink(old);
    logger.SetMinimumSeverity(oldMinimum);
    ASSERT_EQ(sink->lines.size(), 3u);
    EXPECT_EQ(sink->lines[0].first, 3);
    // Object members are written in key order, so the text is stable.
    EXPECT_EQ(sink->lines[0].second,
              TString(u"{\"event\":\"incorrect-data-type\",\"value\":{\"actual\":\"real\",\"msg\":\"say \\\"hi\\\"\"}}"));
    EXPECT_EQ(sink->lines[1], std::make_pair(4, TString(u"value 5")));
    EXPECT_EQ(sink->lines[2], std::make_pair(3, TString(u"capped #ab"))); // a non-error severity stays below Error
}

TEST(TLog, StackCaptureGivesFields)
{
    const TLog::ValueMap withStack = CaptureStackTraceForLogging(true);
    EXPECT_EQ(withStack.count(TString(u"thread")), 1u);
    EXPECT_EQ(withStack.count(TString(u"stack")), 1u);
    EXPECT_EQ(CaptureStackTraceForLogging(false).count(TString(u"stack")), 0u);
}

TEST(TSettings, ValuesPersistPerGroup)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    TSettings::SetStorageDirectory(TString(dir.path()));
    EXPECT_EQ(TSettings::GetStringValue(37, TString(u"LanguageCode"), TString(u"none")), TString(u"none"));
    TSettings::SetStringValue(37, TString(u"LanguageCode"), TString(u"de_DE"));
    EXPECT_EQ(TSettings::GetStringValue(37, TString(u"LanguageCode")), TString(u"de_DE"));
    EXPECT_EQ(TSettings::GetStringValue(38, TString(u"LanguageCode")), TString()); // groups are apart
    TSettings settings(37, TString(u"murcoredata"), TString(u"murcoredata"));
    EXPECT_TRUE(settings.ValueExists(TString(u"LanguageCode")));
    settings.RemoveValue(TString(u"LanguageCode"));
    EXPECT_FALSE(settings.ValueExists(TString(u"LanguageCode")));
}

TEST(TPath, JoinsWithOneSlashAndFindsModules)
{
    EXPECT_EQ((TPath(u"a") / TPath(u"b")).ToString(), TString(u"a/b"));
    EXPECT_EQ((TPath(u"a/") / TPath(u"/b")).ToString(), TString(u"a/b"));
    EXPECT_EQ((TPath() / TPath(u"b")).ToString(), TString(u"b"));
    EXPECT_TRUE(FileExists(TPath(u"/")));
    EXPECT_FALSE(FileExists(TPath(u"/no/such/file/here")));
    EXPECT_FALSE(FileExists(TPath()));
    // The library's folder holds the library.
    const TPath dir = ModuleDirectory(reinterpret_cast<const void*>(&THash32));
    ASSERT_FALSE(dir.IsEmpty());
    EXPECT_TRUE(FileExists(dir));
    EXPECT_TRUE(ModuleDirectory(nullptr).IsEmpty());
}

TEST(CorePlatform, CharacterClasses)
{
    EXPECT_TRUE(TCType::isAlpha(u'é'));
    EXPECT_FALSE(TCType::isAlpha(u'1'));
    EXPECT_TRUE(TCType::isDigit(u'9'));
    EXPECT_FALSE(TCType::isDigit(u'\u0663')); // Arabic-Indic three is not read as a digit
    EXPECT_TRUE(CorePlatformUtils::IsValidCharacter(u'\t'));
    EXPECT_FALSE(CorePlatformUtils::IsValidCharacter(u'\x01'));
    EXPECT_FALSE(CorePlatformUtils::IsValidCharacter(char16_t(0xD800)));
    EXPECT_FALSE(CorePlatformUtils::IsValidCharacter(char16_t(0xFFFE)));
    const char16_t text[] = {u'a', 0xD83D, 0xDE00, 0xDC00, 0};
    EXPECT_EQ(Unicode::toStdWString(text, 4), std::wstring({L'a', wchar_t(0x1F600), wchar_t(0xFFFD)}));
}
