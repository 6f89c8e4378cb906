// Commands 13 (_GetIfVaribrightSupport) and 14 (_SetVaribright) through ExecuteCommand on a
// simulated AMD laptop, with the answer checked against the fake ADLX's state and log; and
// the first command of a fresh host process, before any AMD OLED command has initialised
// ADLX.
#include "AdlSimSupport.h"
#include "LogCapture.h"
#include "ProcessRunner.h"
#include "ServiceAnswers.h"
#include "ServiceProcessState.h"
#include "SimMachine.h"
#include "XeltoClient.h"

#include "amd/ADLXHelper.h"
#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>

using namespace Xelto::Spanlet::Server::Services;
using namespace Xelto::Spanlet::Server::Services::Lumaven;
using namespace LumavenTest::Amd;
using LumavenTest::InstallProfile;
using LumavenTest::LogCapture;

namespace {

constexpr uint64_t kContextWord = 0x5EED;

LumavenSim::Profile::Machine Laptop(bool supported, bool enabled,
                                    std::map<std::string, std::string> libraries = {{"amdadlx64.dll", "amdadlx64.dll"}})
{
    return {.monitors = {{.panel = LumavenSim::Panels::kSdc416C}},
            .libraries = std::move(libraries),
            .adlx = LumavenSim::Profile::Adlx{
                .displays = {{.varibrightSupported = supported, .varibrightEnabled = enabled}}}};
}

XeltoClient::Reply Execute(LumavenService& service, uint32_t command, const wchar_t* request)
{
    return XeltoClient::RunCommand(service, command, request, kContextWord);
}

bool Enabled()
{
    const rapidjson::Document state = State();
    return Flag(state["adlx"]["displays"][0], "varibrightEnabled");
}

class VaribrightCommands : public testing::Test {
protected:
    // ADLX as an earlier AMD OLED command leaves it: initialised, with display services.
    void Prepare(bool supported, bool enabled)
    {
        InstallProfile(Laptop(supported, enabled));
        InitializeAdlxDisplay();
        ASSERT_NE(adlxDisplayServices, nullptr);
        LumavenSim::ClearTransactions();
        m_capture.Clear();
    }
    void SetUp() override { LumavenTest::ResetServiceProcessState(); }
    void TearDown() override { LumavenTest::ResetServiceProcessState(); }

    // Every SetEnabled value the fake received.
    static std::vector<bool> SetEnabledValues()
    {
        std::vector<bool> values;
        for (const auto& record : RecordsOf("SetEnabled")) {
            values.push_back(Flag(record, "value"));
        }
        return values;
    }

    LumavenService m_service;
    LogCapture m_capture;
};

}  // namespace

TEST_F(VaribrightCommands, Command13AnswersSupported)
{
    Prepare(true, false);
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 13, L"{}"), true));
    EXPECT_EQ(Calls(), (std::vector<std::string>{"GetVariBright", "IsSupported", "Release"}));
    EXPECT_TRUE(m_capture.Texts().empty());
}

TEST_F(VaribrightCommands, Command13AnswersUnsupported)
{
    Prepare(false, false);
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 13, L"{\"BValue\": true}"), false));
}

namespace {

// Command 14 with one request on a display whose VariBright is supported or not, and on or
// off beforehand: what it answers, the one SetEnabled value ADLX gets, VariBright afterwards.
struct SetCase {
    const char* name;
    const wchar_t* request;
    bool supported;
    bool enabled;
    bool answer;
    bool value;
    bool after;
};

void PrintTo(const SetCase& row, std::ostream* out)
{
    *out << row.name;
}

class VaribrightSet : public VaribrightCommands, public testing::WithParamInterface<SetCase> {};

}  // namespace

TEST_P(VaribrightSet, AnswersAndSetsAsTheBValueSays)
{
    const SetCase& row = GetParam();
    Prepare(row.supported, row.enabled);
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 14, row.request), row.answer));
    EXPECT_EQ(SetEnabledValues(), std::vector<bool>{row.value});
    EXPECT_EQ(Enabled(), row.after);
}

// Only the literal true enables; a display without VariBright refuses, and the command still
// succeeds with the answer false.
INSTANTIATE_TEST_SUITE_P(
    Command14, VaribrightSet,
    testing::Values(SetCase{"TrueEnables", L"{\"BValue\": true}", true, false, true, true, true},
                    SetCase{"NumberOneDisables", L"{\"BValue\": 1}", true, true, true, false, false},
                    SetCase{"StringTrueDisables", L"{\"BValue\": \"true\"}", true, true, true, false, false},
                    SetCase{"FalseDisables", L"{\"BValue\": false}", true, true, true, false, false},
                    SetCase{"RefusedByAdlxAnswersFalseWithSuccess", L"{\"BValue\": true}", false, false, false, true,
                            false}),
    [](const testing::TestParamInfo<SetCase>& info) { return info.param.name; });

TEST_F(VaribrightCommands, Command14WithoutBValueFailsTheDataCheck)
{
    Prepare(true, false);
    const XeltoClient::Reply reply = Execute(m_service, 14, L"{}");
    EXPECT_EQ(reply.status, StatusInvalidArgument);
    EXPECT_EQ(reply.response, L"{}");
    const auto records = m_capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, Xelto::Logging::Level::Info);
    EXPECT_EQ(records[0].text, L"SetVaribright() check data failed\n\n");
    EXPECT_TRUE(Calls().empty());
    EXPECT_FALSE(Enabled());
}

TEST_F(VaribrightCommands, Command14WithNullBValueFailsTheDataCheck)
{
    Prepare(true, true);
    const XeltoClient::Reply reply = Execute(m_service, 14, L"{\"BValue\": null}");
    EXPECT_EQ(reply.status, StatusInvalidArgument);
    EXPECT_EQ(reply.response, L"{}");
    EXPECT_EQ(m_capture.Count(L"SetVaribright() check data failed\n\n"), 1u);
    EXPECT_TRUE(Calls().empty());
    EXPECT_TRUE(Enabled());
}

TEST_F(VaribrightCommands, BeforeAnyAmdOledCommandBothAnswerFalse)
{
    InstallProfile(Laptop(true, false));
    // SetUp terminated ADLX: as in a process where no AMD OLED command ran.
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 13, L"{}"), false));
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 14, L"{\"BValue\": true}"), false));
    EXPECT_TRUE(Calls().empty()) << "neither command initialises ADLX";
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_FALSE(Enabled());
}

TEST_F(VaribrightCommands, Command13WithoutAdlxLibraryAnswersFalse)
{
    // The same steps with the library answer true; ADLX then goes away, as it does when its
    // display services fail, and the library with it.
    Prepare(true, false);
    EXPECT_EQ(Execute(m_service, 13, L"{}").response, L"{\"result\":true}");
    g_ADLXHelp.Terminate();

    InstallProfile(Laptop(true, false, {}));
    InitializeAdlxDisplay();
    // Not the state before any initialisation: the earlier display services are still held,
    // so only the missing library can make the answer false.
    ASSERT_NE(adlxDisplayServices, nullptr);
    EXPECT_TRUE(LumavenTest::Answered(Execute(m_service, 13, L"{}"), false));
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_TRUE(Calls().empty());
}

TEST_F(VaribrightCommands, HandlersCheckTheirDocuments)
{
    Prepare(true, false);
    Document document;
    document.Parse(L"{\"BValue\": true}");
    EXPECT_EQ(m_service._GetIfVaribrightSupport(nullptr, &document, kContextWord), StatusInvalidArgument);
    EXPECT_EQ(
        m_capture.Count(L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - request cannot be null"),
        1u);
    m_capture.Clear();
    EXPECT_EQ(m_service._SetVaribright(nullptr, &document, kContextWord), StatusInvalidArgument);
    EXPECT_TRUE(m_capture.Texts().empty()) << "a null request is refused at once";
    EXPECT_EQ(m_service._SetVaribright(&document, nullptr, kContextWord), StatusInvalidArgument);
    EXPECT_EQ(m_capture.Texts(),
              std::vector<std::wstring>{
                  L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - response cannot be null"});
    EXPECT_TRUE(Calls().empty());
}

TEST_F(VaribrightCommands, CaughtExceptionsLogGetVaribrightWithTheMethodName)
{
    const auto throwing = []() -> uint32_t { throw std::runtime_error("boom"); };
    EXPECT_EQ(m_service.Guarded(Handler::GetIfVaribrightSupport, throwing), StatusException);
    EXPECT_EQ(m_service.Guarded(Handler::SetVaribright, throwing), StatusException);
    const auto records = m_capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].level, Xelto::Logging::Level::Error);
    EXPECT_EQ(records[0].text, L"LumavenService - GetVaribright threw: "
                               L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::_GetIfVaribrightSupport");
    EXPECT_EQ(records[1].text, L"LumavenService - GetVaribright threw: "
                               L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::_SetVaribright");
}

TEST_F(VaribrightCommands, BothCommandsWaitForTheAdlxMutexOnly)
{
    Prepare(true, false);
    for (const uint32_t command : {13u, 14u}) {
        std::atomic<bool> done = false;
        std::unique_lock adlx(m_service.m_adlxMutex);
        std::lock_guard main(m_service.m_mutex);  // not the lock of these commands
        std::thread caller([&] {
            Execute(m_service, command, L"{\"BValue\": true}");
            done = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_FALSE(done) << "command " << command << " ran without m_adlxMutex";
        adlx.unlock();
        caller.join();
        EXPECT_TRUE(done);
    }
}

TEST(VaribrightHost, FirstCommand13OfAFreshHostAnswersFalseWithStatus0)
{
    InstallProfile(Laptop(true, true));
    const auto result = LumavenTest::RunProgram(L"xelto-host.exe run 13 {}");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    EXPECT_NE(result.output.find("(0x00000000) {\"result\":false}"), std::string::npos) << result.output;
    EXPECT_TRUE(Calls().empty()) << "ADLX is not even loaded";
    EXPECT_EQ(StateNumber("adlx", "loads"), 0);
}

TEST(VaribrightHost, FirstCommand14OfAFreshHostAnswersFalseAndChangesNothing)
{
    InstallProfile(Laptop(true, false));
    const auto result = LumavenTest::RunProgram(L"xelto-host.exe run _SetVaribright {\\\"BValue\\\":true}");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    EXPECT_NE(result.output.find("(0x00000000) {\"result\":false}"), std::string::npos) << result.output;
    EXPECT_FALSE(Enabled());
}
