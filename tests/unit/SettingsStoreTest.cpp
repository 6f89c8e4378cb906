// The settings value "OLED" in Wine's real registry, and command 7 that reads it.
#include "LogCapture.h"
#include "Registry.h"
#include "XeltoClient.h"

#include "oled/SettingsStore.h"
#include "service/LumavenService.h"
#include "util/UniqueHandles.h"

#include <gtest/gtest.h>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::LogCapture;
using XeltoClient::RunCommand;

TEST(SettingsStore, OpenOrCreateCreatesTheMissingKey)
{
    LumavenTest::DeleteSettingsKey();
    LogCapture capture;
    const LumavenUtil::UniqueHkey key = OpenOrCreateSettingsKey(kSettingsKeyPath);
    EXPECT_NE(key.get(), nullptr);
    EXPECT_TRUE(LumavenTest::SettingsKeyExists());
    EXPECT_TRUE(capture.Texts().empty());
}

TEST(SettingsStore, SetSettingsDwordWritesAFourByteDword)
{
    LumavenTest::DeleteSettingsKey();
    {
        const LumavenUtil::UniqueHkey key = OpenOrCreateSettingsKey(kSettingsKeyPath);
        EXPECT_TRUE(SetSettingsDword(key.get(), L"OLED", 1));
    }
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
    StoreOledSetting(0);
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST(SettingsStore, FailedOpenIsLoggedAndTheFollowingSetFails)
{
    LogCapture capture;
    // A key name component longer than the registry allows cannot be created.
    const std::wstring tooLong = std::wstring(L"SOFTWARE\\Xelto\\") + std::wstring(300, L'k');
    const LumavenUtil::UniqueHkey key = OpenOrCreateSettingsKey(tooLong.c_str());
    EXPECT_FALSE(key);
    EXPECT_FALSE(SetSettingsDword(key.get(), L"OLED", 1));
    const auto texts = capture.Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].rfind(L"Something is wrong. Could not Open or Create the Key: ", 0), 0u) << texts[0];
    EXPECT_NE(texts[0], L"Something is wrong. Could not Open or Create the Key: 0");
    EXPECT_EQ(texts[1].rfind(L"Not able to set the Registry Value: ", 0), 0u) << texts[1];
    EXPECT_EQ(capture.Records()[0].provider, "Xelto-Spanlet-SystemInformation");
}

TEST(SettingsStore, ReadingRuleOnAMissingValueIsOff)
{
    LumavenTest::DeleteSettingsKey();
    const OledSetting setting = ReadOledSetting();
    EXPECT_EQ(setting.status, ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(setting.Failed());
    EXPECT_TRUE(setting.Off());
    EXPECT_TRUE(LumavenTest::SettingsKeyExists());  // the read created the key
}

TEST(SettingsStore, ReadingRuleOnAStringIsAFailedOff)
{
    LumavenTest::SetOledString(L"1");
    const OledSetting setting = ReadOledSetting();
    EXPECT_EQ(setting.status, ERROR_MORE_DATA);
    EXPECT_TRUE(setting.Failed());
    EXPECT_TRUE(setting.Off());
}

TEST(GetOledFromRegistry, CleanMachineAnswersZeroAndCreatesTheKey)
{
    LumavenTest::DeleteSettingsKey();
    LumavenService service;
    const auto result = RunCommand(service, 7);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(result.response, L"{\"result\":0}");
    EXPECT_TRUE(LumavenTest::SettingsKeyExists());
}

TEST(GetOledFromRegistry, AnswersOneAndZero)
{
    LumavenService service;
    LumavenTest::SetOledDword(1);
    EXPECT_EQ(RunCommand(service, 7).response, L"{\"result\":1}");
    LumavenTest::SetOledDword(0);
    EXPECT_EQ(RunCommand(service, 7).response, L"{\"result\":0}");
}

TEST(GetOledFromRegistry, OtherNumbersAnswerMinusOne)
{
    LumavenService service;
    for (const DWORD value : {2u, 5u, 0xFFFFFFFFu}) {
        LumavenTest::SetOledDword(value);
        const auto result = RunCommand(service, 7);
        EXPECT_EQ(result.status, StatusSuccess) << value;
        EXPECT_EQ(result.response, L"{\"result\":-1}") << value;
    }
}

TEST(GetOledFromRegistry, StringValueAnswersZeroWithRegistryError)
{
    LumavenTest::SetOledString(L"1");
    LumavenService service;
    const auto result = RunCommand(service, 7);
    EXPECT_EQ(result.status, StatusRegistryError);
    EXPECT_EQ(result.response, L"{\"result\":0}");
}

TEST(GetOledFromRegistry, NullResponseIsInvalidAndWritesNothing)
{
    LumavenService service;
    Document request;
    request.SetObject();
    LogCapture capture;
    EXPECT_EQ(service.GetOledFromRegistry(&request, nullptr, 3), StatusInvalidArgument);
    EXPECT_EQ(capture.Texts(),
              std::vector<std::wstring>{
                  L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - response cannot be null"});
    Document response;
    response.SetObject();
    EXPECT_EQ(service.GetOledFromRegistry(nullptr, &response, 3), StatusInvalidArgument);
    EXPECT_EQ(response.MemberCount(), 0u);
}
