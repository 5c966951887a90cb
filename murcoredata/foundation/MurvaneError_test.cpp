#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/MurvaneError.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <thread>

TEST(MurErrorsError, TheTableHas150UniqueSitesWithNamesThatCarryTheirCodes)
{
    size_t count = 0;
    const MurErrorsError::Entry* entries = MurErrorsError::GetEntries(&count);
    ASSERT_EQ(count, 150u);
    std::set<uint32_t> codes;
    for (size_t i = 0; i < count; ++i) {
        codes.insert(entries[i].code);
        char hex[16];
        std::snprintf(hex, sizeof hex, "_0x%08X", entries[i].code);
        const std::string name = entries[i].name;
        ASSERT_GE(name.size(), strlen(hex));
        EXPECT_EQ(name.substr(name.size() - strlen(hex)), hex) << name;
    }
    EXPECT_EQ(codes.size(), 150u);
}

TEST(MurErrorsError, FunctionsGiveTheirExactNameAndCode)
{
    struct Row
    {
        MurvaneError error;
        uint32_t code;
        const char16_t* name;
    } rows[] = {
        {MurErrorsError::LogicAssert_0xB1362645(), 0xB1362645u, u"LogicException_LogicAssert_0xB1362645"},
        {MurErrorsError::AutoGen_0xF6FE9A60(), 0xF6FE9A60u, u"MurvaneException_AutoGen_0xF6FE9A60"},
        {MurErrorsError::AutoGen_0x5EA10C35(), 0x5EA10C35u, u"StringException_AutoGen_0x5EA10C35"},
        {MurErrorsError::AutoGen_0x5EA10C36(), 0x5EA10C36u, u"DataValueOperatorException_AutoGen_0x5EA10C36"},
        {MurErrorsError::QualifiedNameParseException_0x5F1F5407(), 0x5F1F5407u,
         u"MurvaneException_QualifiedNameParseException_0x5F1F5407"},
        {MurErrorsError::IncorrectDatatypeException_0xCA8348EE(), 0xCA8348EEu,
         u"MurvaneException_IncorrectDatatypeException_0xCA8348EE"},
        {MurErrorsError::DataValueFormatter_0x89515929(), 0x89515929u, u"MurvaneException_DataValueFormatter_0x89515929"},
        {MurErrorsError::AutoGen18E7_0xCA83206C(), 0xCA83206Cu, u"LogSite_AutoGen18E7_0xCA83206C"},
        {MurErrorsError::AutoGen1D87_0xCA831455(), 0xCA831455u, u"LogSite_AutoGen1D87_0xCA831455"},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.error.GetCode(), r.code);
        EXPECT_EQ(r.error.GetName(), TString(r.name));
    }
    EXPECT_EQ(MurErrorsError::FindByCode(0x5F1F540Cu)->code, 0x5F1F540Cu);
    EXPECT_EQ(MurErrorsError::FindByCode(0x12345678u), nullptr);
}

TEST(MurvaneException, CarriesMessagesAndErrorInfo)
{
    const TError::ErrorInfo info(MurErrorsError::QualifiedNameParseException_0x5F1F5408(), TError::ErrorSource::QualifiedName,
                                 grpc::StatusCode::UNKNOWN);
    MurvaneException e(TString(u"first é"), info);
    e.AddMessage(TString(u"second"));
    EXPECT_STREQ(e.what(), "first \xC3\xA9");
    EXPECT_EQ(e.GetMessagesFront(), TString(u"first é"));
    EXPECT_EQ(e.GetConcatenatedMessages(), TString(u"first é\nsecond"));
    EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x5F1F5408u);
    EXPECT_EQ(int(e.GetErrorInfo().GetSource()), 6);
    EXPECT_EQ(int(e.GetErrorInfo().GetStatusCode()), 2);
    EXPECT_NE(e.CollateMessagesForLog().indexOf(TString(u"0x5F1F5408")), -1);

    // The library's default pair is source 4, status 2.
    const StringException plain(TString(u"x"));
    EXPECT_EQ(int(plain.GetErrorInfo().GetSource()), 4);
    EXPECT_EQ(int(plain.GetErrorInfo().GetStatusCode()), 2);
    EXPECT_EQ(plain.GetErrorInfo().GetError().GetCode(), 0u);
}

TEST(MurvaneException, CloneAndThrowKeepTheDynamicTypeAcrossThreads)
{
    std::unique_ptr<MurvaneException> carried;
    std::thread worker([&] {
        try {
            throw StringException(TString(u"from the worker"), TError::ErrorInfo(MurErrorsError::AutoGen_0xF43CCF25()));
        } catch (const MurvaneException& e) {
            carried.reset(e.Clone());
        }
    });
    worker.join();
    ASSERT_TRUE(carried);
    try {
        carried->Throw();
        FAIL() << "Throw returned";
    } catch (const StringException& e) {
        EXPECT_EQ(e.GetMessagesFront(), TString(u"from the worker"));
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0xF43CCF25u);
    }
}

TEST(LogicException, MessageHoldsTheSourcePathAndCondition)
{
    try {
        const int components = 0;
        MUR_LOGIC_ASSERT(components > 0, LogicAssert_0x4181ADF3);
        FAIL() << "the assertion did not throw";
    } catch (const LogicException& e) {
        const TString m = e.GetMessagesFront();
        EXPECT_TRUE(m.startsWith(TString(u"foundation/MurvaneError_test.cpp("))) << e.what();
        EXPECT_NE(m.indexOf(TString(u"components > 0")), -1);
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0x4181ADF3u);
    }
    try {
        ThrowLogicException("/x/y/murcoredata/data/MakeQualifiedName.cpp", 12, "name.GetNumberOfComponents() > 0");
    } catch (const MurvaneException& e) {
        EXPECT_EQ(e.GetMessagesFront(),
                  TString(u"data/MakeQualifiedName.cpp(12): logic assertion failed: name.GetNumberOfComponents() > 0"));
        EXPECT_EQ(e.GetErrorInfo().GetError().GetCode(), 0u);
        EXPECT_NE(dynamic_cast<const LogicException*>(&e), nullptr);
    }
}
