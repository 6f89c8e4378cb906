// Commands 1, 2, 3, 5, 6 and 8 on simulated Intel laptops: what reaches the panel is read from
// the fake driver's registers and transaction log, what is stored from the registry.
#include "ControlLibFixture.h"
#include "LogCapture.h"
#include "Registry.h"
#include "ServiceAnswers.h"
#include "XeltoClient.h"

#include "intel/IntelAuxWriter.h"
#include "intel/IntelSession.h"
#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::LogCapture;
namespace Intel = LumavenSim::Intel;

namespace {

namespace Profile = LumavenSim::Profile;

constexpr LumavenSim::PanelIdentity kPanel4174 = LumavenSim::Panels::kSdc4174;
constexpr LumavenSim::PanelIdentity kPanel4160 = LumavenSim::Panels::kSdc4160;

const Profile::IntelOutput kOpstOutput{
    .attached = true, .dpstSupported = true, .opstSupported = true, .dpstEnabled = 0};
const Profile::IntelOutput kNoOpstOutput{
    .attached = true, .dpstSupported = true, .opstSupported = false, .dpstEnabled = 0};
const Profile::IntelOutput kDetachedOutput{.attached = false, .dpstSupported = true, .opstSupported = true};

Profile::Intel Adapters(const std::vector<std::vector<Profile::IntelOutput>>& adapters)
{
    Profile::Intel intel;
    for (const auto& outputs : adapters) {
        intel.adapters.push_back({.outputs = outputs});
    }
    return intel;
}

class IntelFeature : public LumavenTest::ControlLibTest {
protected:
    // An Intel laptop with this panel, these adapters and faults; the service started on it.
    void Machine(LumavenSim::PanelIdentity panel, Profile::Intel intel, std::vector<Profile::Fault> faults = {},
                 const std::string& library = "ControlLib.dll")
    {
        Profile::Machine machine = Profile::IntelLaptop(panel, std::move(intel.adapters));
        machine.faults = std::move(faults);
        if (library.empty()) {
            machine.libraries.erase("ControlLib.dll");
        } else {
            machine.libraries["ControlLib.dll"] = library;
        }
        LumavenTest::InstallProfile(machine);
        m_service = std::make_unique<LumavenService>();
        m_service->startup_task();
        ASSERT_EQ(m_service->m_videoController, kVendorIntel);
        LumavenSim::ClearTransactions();
    }

    XeltoClient::Reply Run(uint32_t command, const wchar_t* request = L"{}")
    {
        return XeltoClient::RunCommand(*m_service, command, request);
    }

    static size_t CallCount(const std::string& function) { return Calls(function).size(); }

    // Runs `command`, which must answer false with success and never call the driver's
    // `function` (the one that would change the panel).
    void ExpectFalseWithout(uint32_t command, const std::string& function)
    {
        EXPECT_TRUE(LumavenTest::Answered(Run(command), false)) << "command " << command;
        EXPECT_EQ(CallCount(function), 0u) << function << ", command " << command;
    }

    // The same with `stored` as the setting beforehand, which the command must leave as it is.
    void ExpectFalseWithout(uint32_t command, const std::string& function, DWORD stored)
    {
        LumavenTest::SetOledDword(stored);
        ExpectFalseWithout(command, function);
        EXPECT_EQ(LumavenTest::OledDword(), stored) << "command " << command;
    }

    std::unique_ptr<LumavenService> m_service;
};

}  // namespace

TEST_F(IntelFeature, EdOnAndOffWriteThePanelAndRecordTheState)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    LumavenTest::SetOledDword(0);
    auto result = Run(5);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(result.response, L"{\"result\":true}");
    EXPECT_EQ(Intel::ReadRegisters(0, 0, 0x4027, 1), std::vector<uint8_t>{0xC0});
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
    result = Run(6);
    EXPECT_EQ(result.response, L"{\"result\":true}");
    EXPECT_EQ(Intel::ReadRegisters(0, 0, 0x4027, 1), std::vector<uint8_t>{0x00});
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, EveryCommandLoadsAndUnloadsTheLibraryOnce)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    const int64_t loads = Intel::Counter("loads");
    const int64_t unloads = Intel::Counter("unloads");
    for (const uint32_t command : {1u, 2u, 3u, 5u, 6u, 8u}) {
        Run(command);
    }
    EXPECT_EQ(Intel::Counter("loads") - loads, 6);
    EXPECT_EQ(Intel::Counter("unloads") - unloads, 6);
    EXPECT_EQ(controlLibModule, nullptr);
}

TEST_F(IntelFeature, SecondAdapterIsUsedWhenTheFirstHasNoOutputs)
{
    Machine(kPanel4174, Adapters({{}, {kOpstOutput}}));
    EXPECT_EQ(Run(5).response, L"{\"result\":true}");
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4027, 1), std::vector<uint8_t>{0xC0});
    for (const auto& write : Calls("ctlAUXAccess")) {
        EXPECT_EQ(write["adapter"].GetInt(), 1);
    }
}

TEST_F(IntelFeature, FailedOutputEnumerationIsLoggedOnceAndTheNextAdapterUsed)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}, {kOpstOutput}}),
            {{.function = "ctlEnumerateDisplayOutputs", .code = 1073741835, .nth = 1}});
    LogCapture capture;
    const auto result = Run(1);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(capture.Count(L"ctlEnumerateDisplayOutputs returned failure code: 0x4000000B\n"), 1u);
    const auto probes = Calls("ctlGetPowerOptimizationCaps");
    ASSERT_EQ(probes.size(), 1u);
    EXPECT_EQ(probes[0]["adapter"].GetInt(), 1);
}

// A mode outside the table, or any mode over an empty display list, answers 0 with status 0
// and asks the driver nothing.
TEST_F(IntelFeature, ModesOutsideTheTableAndEmptyListsDoNothing)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    ctl_display_output_handle_t displays[1] = {nullptr};
    const std::vector<std::pair<uint32_t, uint32_t>> runs = {{1, 0},
                                                             {1, 4},
                                                             {1, 7},
                                                             {1, 9},
                                                             {0, kModeGetOpst},
                                                             {0, kModeEnableOpst},
                                                             {0, kModeDisableOpst},
                                                             {0, kModeEdOn},
                                                             {0, kModeEdOff},
                                                             {0, kModeOpstSupport}};
    for (const auto& [count, mode] : runs) {
        ctl_result_t status = static_cast<ctl_result_t>(0x1234);
        EXPECT_EQ(ApplyToTargetDisplays(displays, count, status, mode), 0) << count << " displays, mode " << mode;
        EXPECT_EQ(status, CTL_RESULT_SUCCESS) << count << " displays, mode " << mode;
    }
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(IntelFeature, VerifyingAnEmptyListIsFalseAndReadsNothing)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    ctl_result_t status = static_cast<ctl_result_t>(0x1234);
    EXPECT_FALSE(VerifyAuxData(status, nullptr, {}));
    EXPECT_EQ(status, CTL_RESULT_SUCCESS);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(IntelFeature, FailingInitStillClosesAndAnswersDeviceError)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}), {{.function = "ctlInit", .code = 1073741825}});
    LumavenTest::SetOledDword(7);
    for (const uint32_t command : {1u, 2u, 3u, 5u, 6u, 8u}) {
        LumavenSim::ClearTransactions();
        const auto result = Run(command);
        EXPECT_EQ(result.status, StatusDeviceError) << command;
        EXPECT_EQ(result.response, L"{}") << command;
        const auto closes = Calls("ctlClose");
        ASSERT_EQ(closes.size(), 1u) << command;
        EXPECT_EQ(closes[0]["args"][0].GetUint64(), 0u) << "ctlClose gets the handle ctlInit left: none";
    }
    // DisableEd records off before it touches the library; nothing else wrote.
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, WithoutTheLibraryEveryCommandIsADeviceErrorAndWritesNothing)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}), {}, "");
    LumavenTest::SetOledDword(7);
    for (const uint32_t command : {1u, 2u, 3u, 5u, 8u}) {
        const auto result = Run(command);
        EXPECT_EQ(result.status, StatusDeviceError) << command;
        EXPECT_EQ(result.response, L"{}") << command;
    }
    EXPECT_EQ(LumavenTest::OledDword(), 7u);
}

TEST_F(IntelFeature, UnsupportedPanelWritesNothing)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    LumavenTest::InstallProfile(
        Profile::Machine{.monitors = {{.panel = LumavenSim::Panels::kDel40F5}},
                         .libraries = {{"dxgi.dll", "dxgi.dll"}, {"ControlLib.dll", "ControlLib.dll"}},
                         .intel = Adapters({{kOpstOutput}})});
    LogCapture capture;
    ExpectFalseWithout(5, "ctlAUXAccess", 0);
    EXPECT_EQ(capture.Count(L"Can't find the Pid Vid"), 1u);
}

TEST_F(IntelFeature, WithoutTheSharedTableNothingIsWritten)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    // As before any start-up on an Intel machine: the AUX writer has no table to read.
    g_auxData = nullptr;
    LogCapture capture;
    ExpectFalseWithout(5, "ctlAUXAccess", 0);
    EXPECT_EQ(capture.Count(L"AuxDataMapPtr is not initialized"), 1u);
    EXPECT_EQ(capture.Count(L"Can't find the Pid Vid"), 0u);
}

TEST_F(IntelFeature, PanelWithoutASequenceForTheFlagWritesNothing)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    ASSERT_EQ(g_auxData, m_service->m_auxData.get());
    ASSERT_EQ(g_auxData->erase({0x4174834C, true}), 1u);
    LogCapture capture;
    ExpectFalseWithout(5, "ctlAUXAccess", 0);
    EXPECT_EQ(capture.Count(L"Can't find the Aux data of Pid Vid: 4174834c"), 1u);
    EXPECT_EQ(g_auxData->count({0x4174834C, true}), 0u) << "the look-up adds no entry";
    for (const auto& text : capture.Texts()) {
        EXPECT_EQ(text.rfind(L"EnumerateTargetDisplays returned failure code", 0), std::wstring::npos)
            << "the display counts as done, with the answer false: " << std::string(text.begin(), text.end());
    }
    // The other flag still has its sequence.
    EXPECT_EQ(Run(6).response, L"{\"result\":true}");
    EXPECT_EQ(CallCount("ctlAUXAccess"), 2u);
}

TEST_F(IntelFeature, LastDisplayThatAnswersDecides)
{
    const Profile::IntelOutput opstOn{.attached = true, .opstSupported = true, .dpstEnabled = 4};
    const Profile::IntelOutput opstOff{.attached = true, .opstSupported = true, .dpstEnabled = 0};
    Machine(kPanel4174, Adapters({{opstOn, opstOff}}));
    EXPECT_TRUE(LumavenTest::Answered(Run(1), false)) << "on, then off";
    EXPECT_EQ(CallCount("ctlGetPowerOptimizationSetting"), 2u) << "both displays answered";
    Machine(kPanel4174, Adapters({{opstOff, opstOn}}));
    EXPECT_TRUE(LumavenTest::Answered(Run(1), true)) << "off, then on";
}

TEST_F(IntelFeature, SecondOfFourWritesFailingStopsTheSequence)
{
    Machine(kPanel4160, Adapters({{kOpstOutput}}), {{.function = "ctlAUXAccess", .code = 1073741835, .nth = 2}});
    LumavenTest::SetOledDword(0);
    LogCapture capture;
    EXPECT_EQ(Run(5).response, L"{\"result\":false}");
    const auto writes = Calls("ctlAUXAccess");
    ASSERT_EQ(writes.size(), 2u);
    EXPECT_EQ(writes[0]["address"].GetUint(), 0x404Bu);
    EXPECT_EQ(Intel::ReadRegisters(0, 0, 0x404B, 3), (std::vector<uint8_t>{0x7C, 0x84, 0xCC}));
    EXPECT_EQ(Intel::ReadRegisters(0, 0, 0x4056, 3), (std::vector<uint8_t>{0, 0, 0}));
    const auto texts = capture.Texts();
    auto line = [&](const std::wstring& prefix) {
        return std::find_if(texts.begin(), texts.end(), [&](const std::wstring& t) { return t.rfind(prefix, 0) == 0; });
    };
    const auto writeLine = line(L"ctlAUXAccess for Native Aux DPCD WRITE returned failure code: 0x");
    const auto failedLine = line(L"Write Aux data failed: ");
    ASSERT_NE(writeLine, texts.end());
    ASSERT_NE(failedLine, texts.end());
    EXPECT_LT(writeLine, failedLine);
    EXPECT_EQ(writeLine->back(), L'\n');
    // The two lines name where the status word lives, not the failing code.
    EXPECT_EQ(writeLine->find(L"4000000B"), std::wstring::npos);
    EXPECT_EQ(capture.Count(L"EnumerateTargetDisplays returned failure code: 0x4000000B\n"), 1u);
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, ReadBackThatDiffersFailsTheVerification)
{
    // The read answers success without data: the first byte comes back 00 instead of C0.
    Machine(kPanel4174, Adapters({{kOpstOutput}}), {{.function = "ctlAUXAccess", .code = 0, .nth = 2}});
    LumavenTest::SetOledDword(0);
    LogCapture capture;
    EXPECT_EQ(Run(5).response, L"{\"result\":false}");
    EXPECT_EQ(Intel::ReadRegisters(0, 0, 0x4027, 1), std::vector<uint8_t>{0xC0});
    const auto texts = capture.Texts();
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                            [](const std::wstring& t) { return t.rfind(L"Verify Aux data failed: ", 0) == 0; }),
              1);
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, OffSequenceOfPanel4160IsFourWritesAndOneRead)
{
    Machine(kPanel4160, Adapters({{kOpstOutput}}));
    EXPECT_EQ(Run(6).response, L"{\"result\":true}");
    const auto calls = Calls("ctlAUXAccess");
    ASSERT_EQ(calls.size(), 5u);
    const std::vector<std::pair<uint32_t, std::string>> expected = {
        {0x404B, "7C84CC"}, {0x4056, "1756F0"}, {0x404E, "0C0003"}, {0x4054, "02"}};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_STREQ(calls[i]["op"].GetString(), "write");
        EXPECT_EQ(calls[i]["address"].GetUint(), expected[i].first);
        EXPECT_EQ(calls[i]["data"].GetString(), expected[i].second);
        EXPECT_EQ(calls[i]["flags"].GetUint(), 1u);
    }
    EXPECT_STREQ(calls[4]["op"].GetString(), "read");
    EXPECT_EQ(calls[4]["address"].GetUint(), 0x404Bu);
    EXPECT_EQ(calls[4]["size"].GetUint(), 3u);
    EXPECT_STREQ(calls[4]["data"].GetString(), "7C84CC");
}

TEST_F(IntelFeature, OpstBesideAnotherDpstFeatureReadsAsOff)
{
    Machine(kPanel4174, Adapters({{{.attached = true, .opstSupported = true, .dpstFeatures = 1, .dpstEnabled = 5}}}));
    LumavenTest::SetOledDword(1);
    EXPECT_TRUE(LumavenTest::Answered(Run(1), false));
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, GetOpstReadsOpstAloneAsOnAndRecordsIt)
{
    Machine(kPanel4174, Adapters({{{.attached = true, .opstSupported = true, .dpstEnabled = 4}}}));
    LumavenTest::SetOledDword(0);
    EXPECT_EQ(Run(1).response, L"{\"result\":true}");
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
}

TEST_F(IntelFeature, EnableAndDisableOpstSwitchThePanelAndRecordIt)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}));
    LumavenTest::SetOledDword(0);
    EXPECT_EQ(Run(2).response, L"{\"result\":true}");
    EXPECT_TRUE(Intel::OpstEnabled(0, 0));
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
    EXPECT_EQ(Run(3).response, L"{\"result\":true}");
    EXPECT_FALSE(Intel::OpstEnabled(0, 0));
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
    // Both switches are set for the battery (CTL_POWER_SOURCE_DC, 1), their requests left at
    // the balanced plan (0).
    const auto sets = Calls("ctlSetPowerOptimizationSetting");
    ASSERT_EQ(sets.size(), 2u);
    for (const auto& set : sets) {
        EXPECT_EQ(set["powerSource"].GetUint(), 1u);
        EXPECT_EQ(set["plan"].GetUint(), 0u);
    }
    // Every read asks for the balanced plan (CTL_POWER_OPTIMIZATION_PLAN_BALANCED, 0): the
    // probes before each switch and the read-backs after it.
    const auto gets = Calls("ctlGetPowerOptimizationSetting");
    ASSERT_EQ(gets.size(), 4u);
    for (const auto& get : gets) {
        EXPECT_EQ(get["plan"].GetUint(), 0u);
    }
}

TEST_F(IntelFeature, EnableOpstWithoutSupportAnswersFalseAndLeavesTheSetting)
{
    Machine(kPanel4174, Adapters({{kNoOpstOutput}}));
    LogCapture capture;
    // Stored as on, so that a switch that records "off" on failure cannot pass unseen.
    ExpectFalseWithout(2, "ctlSetPowerOptimizationSetting", 1);
    EXPECT_EQ(capture.Count(L"OPST is not supported"), 1u);
    EXPECT_EQ(capture.Count(L"EnumerateTargetDisplays returned failure code: 0x4000000A\n"), 1u);
}

TEST_F(IntelFeature, FailedSetWithAGoodReadBackAnswersThePanelState)
{
    Machine(kPanel4174, Adapters({{kOpstOutput}}),
            {{.function = "ctlSetPowerOptimizationSetting", .code = 1073741835}});
    LogCapture capture;
    EXPECT_TRUE(LumavenTest::Answered(Run(2), false));
    EXPECT_EQ(capture.Count(L"EnumerateTargetDisplays returned failure code: 0x4000000B\n"), 0u);
}

TEST_F(IntelFeature, SupportQueryOnADetachedOutputDoesNotProbe)
{
    Machine(kPanel4174, Adapters({{kDetachedOutput}}));
    ExpectFalseWithout(8, "ctlGetPowerOptimizationCaps");
    EXPECT_EQ(CallCount("ctlGetDisplayProperties"), 1u);
}

TEST_F(IntelFeature, FirstDisplayWithOpstDecidesAndTheStatusEndsZero)
{
    Machine(kPanel4174, Adapters({{kOpstOutput, kNoOpstOutput}}));
    LogCapture capture;
    const auto result = Run(8);
    EXPECT_EQ(result.response, L"{\"result\":true}");
    EXPECT_EQ(capture.Count(L"OPST is supported"), 1u);
    EXPECT_EQ(capture.Count(L"OPST is not supported"), 1u);
    for (const auto& text : capture.Texts()) {
        EXPECT_EQ(text.rfind(L"EnumerateTargetDisplays returned failure code", 0), std::wstring::npos) << text;
    }
}

TEST_F(IntelFeature, NoAttachedOutputAnswersFalse)
{
    Machine(kPanel4174, Adapters({{kDetachedOutput}}));
    LumavenTest::SetOledDword(1);
    EXPECT_EQ(Run(5).response, L"{\"result\":false}");
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
    ExpectFalseWithout(6, "ctlAUXAccess");
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(IntelFeature, CommandsThatShareTheLockNeverInterleaveTheirSessions)
{
    Machine(kPanel4160, Adapters({{kOpstOutput}}));
    constexpr int kPerThread = 15;
    std::vector<std::thread> threads;
    for (const uint32_t command : {5u, 6u, 1u}) {
        threads.emplace_back([this, command] {
            for (int i = 0; i < kPerThread; ++i) {
                Run(command);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    // Every session is ctlInit ... ctlClose with nothing of another session in between.
    int open = 0;
    int sessions = 0;
    for (const std::string& fn : LumavenSim::TransactionLog::Read().CallNames()) {
        if (fn == "ctlInit") {
            EXPECT_EQ(open, 0) << "a session started inside another";
            ++open;
            ++sessions;
        } else if (fn == "ctlClose") {
            EXPECT_EQ(open, 1);
            --open;
        } else {
            EXPECT_EQ(open, 1) << fn << " outside a session";
        }
    }
    EXPECT_EQ(sessions, 3 * kPerThread);
}

// Once ctlInit has been called, leaving the session's scope closes it, also when an exception
// leaves it: the library is unloaded then, not at the next command.
TEST_F(IntelFeature, SessionIsClosedOnEveryWayOutOfItsScope)
{
    Machine(kPanel4160, Adapters({{kOpstOutput}}));
    try {
        IntelSession session;
        ASSERT_TRUE(session.Open());
        EXPECT_EQ(session.Devices().size(), 1u);
        throw std::runtime_error("thrown inside the session");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(CallCount("ctlClose"), 1u);
    EXPECT_EQ(controlLibModule, nullptr) << "ControlLib.dll is still loaded";

    // Closed early by its owner: closed once, not again at the end of the scope.
    LumavenSim::ClearTransactions();
    {
        IntelSession session;
        ASSERT_TRUE(session.Open());
        session.Close();
        EXPECT_EQ(controlLibModule, nullptr);
    }
    EXPECT_EQ(CallCount("ctlClose"), 1u);

    // Never opened: nothing to close.
    LumavenSim::ClearTransactions();
    {
        const IntelSession session;
    }
    EXPECT_EQ(CallCount("ctlClose"), 0u);
}

// A session its owner leaves open keeps the library loaded for the next ctlInit.
TEST_F(IntelFeature, SessionLeftOpenIsNotClosed)
{
    Machine(kPanel4160, Adapters({{kOpstOutput}}), {{.function = "ctlEnumerateDevices", .code = 1073741832, .nth = 1}});
    {
        IntelSession session;
        ASSERT_FALSE(session.Open());
        session.LeaveOpen();
    }
    EXPECT_EQ(CallCount("ctlClose"), 0u);
    EXPECT_NE(controlLibModule, nullptr);
}
