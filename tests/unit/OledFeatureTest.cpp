// Start-up choices, the ELP setters, the composite queries and switches and the display-power
// event path, on the service object itself.
#include "AdlSimSupport.h"
#include "LogCapture.h"
#include "XeltoClient.h"
#include "Registry.h"
#include "ServiceProcessState.h"
#include "SimMachine.h"

#include "amd/ADLXHelper.h"
#include "oled/EventGate.h"
#include "oled/OledEvent.h"
#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::LogCapture;
using XeltoClient::kConsoleDisplayState;
using XeltoClient::kLidSwitchStateChange;
using XeltoClient::RunCommand;

namespace {

namespace Profile = LumavenSim::Profile;
namespace Panels = LumavenSim::Panels;
using Libraries = std::map<std::string, std::string>;

const char kIntelGpu[] = "Intel(R) Iris(R) Xe Graphics";
const char kAmdGpu[] = "AMD Radeon(TM) Graphics";
const Libraries kDxgi{{"dxgi.dll", "dxgi.dll"}};
const Libraries kIntelDrivers{{"dxgi.dll", "dxgi.dll"}, {"ControlLib.dll", "ControlLib.dll"}};

// A machine with one monitor of this panel, this GPU and these vendor libraries.
Profile::Machine Machine(LumavenSim::PanelIdentity panel, const std::string& gpu, const Libraries& libraries)
{
    return {.monitors = {{.panel = panel}}, .gpuName = gpu, .libraries = libraries};
}

// The machine with one Intel adapter whose one output is `output`, and these faults.
Profile::Machine WithIntel(Profile::Machine machine, const Profile::IntelOutput& output,
                           std::vector<Profile::Fault> faults = {})
{
    machine.intel = Profile::Intel{.adapters = {{.outputs = {output}}}};
    machine.faults = std::move(faults);
    return machine;
}

// An AMD laptop: the panel on ADL's adapter 0, display 0, and ADLX's display with VariBright off.
Profile::Machine AmdLaptop(LumavenSim::PanelIdentity panel)
{
    // ADL's display always carries panel 416C; the monitor the service identifies is `panel`.
    Profile::Machine machine = Profile::AmdLaptop(Panels::kSdc416C);
    machine.monitors = {{.panel = panel}};
    machine.libraries["amdadlx64.dll"] = "amdadlx64.dll";
    machine.adlx = Profile::Adlx{.displays = {{.varibrightSupported = true, .varibrightEnabled = false}}};
    return machine;
}

class OledFeature : public ::testing::Test {
protected:
    void SetUp() override
    {
        LumavenTest::ResetServiceProcessState();
        LumavenTest::DeleteSettingsKey();
    }
    void TearDown() override { LumavenTest::ResetServiceProcessState(); }

    std::unique_ptr<LumavenService> Started(const Profile::Machine& profile)
    {
        LumavenTest::InstallProfile(profile);
        auto service = std::make_unique<LumavenService>();
        service->startup_task();
        LumavenSim::ClearTransactions();
        return service;
    }

    // What the event task hands back to the host: 0 on every way through it.
    static uint32_t Event(LumavenService& service, const GUID& setting, DWORD data)
    {
        const XeltoClient::PowerSettingRecord record = XeltoClient::MakePowerSetting(setting, data);
        return service.OledEventCalled(&record.header);
    }
};

}  // namespace

TEST_F(OledFeature, StartupOnIntelSharesTheTableWithTheIntelPath)
{
    LogCapture capture;
    auto service = Started(Machine(Panels::kSdc4174, kIntelGpu, kDxgi));
    EXPECT_EQ(capture.Texts().front(), L"Opening startup_task in LumavenService\n");
    EXPECT_EQ(service->m_videoController, kVendorIntel);
    EXPECT_EQ(service->m_panelId, Panels::kSdc4174.id);
    ASSERT_NE(service->m_auxData, nullptr);
    EXPECT_EQ(g_auxData, service->m_auxData.get());
    EXPECT_EQ(service->m_setElp, &LumavenService::SetIntelElp);
    service.reset();
    EXPECT_EQ(g_auxData, nullptr) << "a destroyed service leaves no view of its table behind";
}

TEST_F(OledFeature, StartupOnAmdLeavesTheIntelViewUnset)
{
    auto service = Started(Machine(Panels::kSdc416C, kAmdGpu, kDxgi));
    EXPECT_EQ(service->m_videoController, kVendorAmd);
    ASSERT_NE(service->m_auxData, nullptr);
    EXPECT_EQ(service->m_auxData->size(), 22u);
    EXPECT_EQ(g_auxData, nullptr);
    EXPECT_EQ(service->m_setElp, &LumavenService::SetAmdElp);
}

TEST_F(OledFeature, StartupOnAnotherVendorChoosesNoSetter)
{
    auto service = Started(Machine(Panels::kSdc4174, "Microsoft Basic Display Adapter", kDxgi));
    EXPECT_EQ(service->m_videoController, 0);
    EXPECT_NE(service->m_auxData, nullptr);
    EXPECT_EQ(service->m_setElp, nullptr);
    EXPECT_EQ(g_auxData, nullptr);
    const auto elp = RunCommand(*service, 9, L"{\"BValue\":true}");
    EXPECT_EQ(elp.status, StatusInvalidArgument);
    EXPECT_EQ(elp.response, L"{}") << "no setter, so nothing answers";
    EXPECT_EQ(RunCommand(*service, 10).response, L"{\"result\":false}");
}

TEST_F(OledFeature, UnsupportedPanelStillGetsTheTable)
{
    auto service = Started(Machine(Panels::kDel40F5, kAmdGpu, kDxgi));
    EXPECT_EQ(service->m_panelId, 0u);
    ASSERT_NE(service->m_auxData, nullptr);
    EXPECT_EQ(service->m_auxData->count({0, true}), 0u);
    EXPECT_EQ(RunCommand(*service, 9, L"{\"BValue\":true}").status, StatusDeviceError);
}

TEST_F(OledFeature, ElpSettersRefuseMalformedRequests)
{
    for (const char* gpu : {kIntelGpu, kAmdGpu}) {
        auto service = Started(Machine(Panels::kSdc4174, gpu, kDxgi));
        Document response;
        response.SetObject();
        LogCapture capture;
        EXPECT_EQ((service.get()->*service->m_setElp)(nullptr, &response, 1, 0), StatusInvalidArgument);
        EXPECT_TRUE(capture.Texts().empty()) << "a null request is refused silently";
        const auto result = RunCommand(*service, 9, L"{\"BValue\":null}");
        EXPECT_EQ(result.status, StatusInvalidArgument);
        EXPECT_EQ(result.response, L"{}");
        const std::wstring line = std::string(gpu) == kIntelGpu ? L"SetIntelElp() check data failed\n\n"
                                                                : L"SetAmdElp() check data failed\n\n";
        EXPECT_EQ(capture.Count(line), 1u);
    }
}

TEST_F(OledFeature, ElpSettersWithoutASupportedPanelAreDeviceErrors)
{
    // With the vendor's libraries present, so that a setter going on to the panel would show in
    // the drivers' log.
    const Profile::Machine intel =
        WithIntel(Machine(Panels::kDel40F5, kIntelGpu, kIntelDrivers), {.attached = true, .opstSupported = true});
    for (const Profile::Machine& machine : {intel, AmdLaptop(Panels::kDel40F5)}) {
        auto service = Started(machine);
        ASSERT_EQ(service->m_panelId, 0u) << machine.gpuName;
        for (const wchar_t* request : {L"{\"BValue\":true}", L"{\"BValue\":false}"}) {
            LumavenTest::SetOledDword(1);
            const auto result = RunCommand(*service, 9, request);
            EXPECT_EQ(result.status, StatusDeviceError) << machine.gpuName;
            EXPECT_EQ(result.response, L"{}") << machine.gpuName;
            EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty()) << "no vendor library is asked";
            EXPECT_EQ(LumavenTest::OledDword(), 1u) << "the stored setting is left alone";
        }
    }
}

TEST_F(OledFeature, AmdPanelInTheTableForOneFlagOnlyRefusesTheOther)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    ASSERT_EQ(service->m_auxData->erase({Panels::kSdc416C.id, true}), 1u);
    LumavenTest::SetOledDword(0);
    const auto on = RunCommand(*service, 9, L"{\"BValue\":true}");
    EXPECT_EQ(on.status, StatusDeviceError);
    EXPECT_EQ(on.response, L"{}");
    EXPECT_EQ(service->m_auxData->count({Panels::kSdc416C.id, true}), 0u) << "the look-up adds no entry";
    EXPECT_TRUE(LumavenTest::Amd::Calls().empty()) << "ADL is not even loaded";
    EXPECT_EQ(LumavenTest::OledDword(), 0u);

    LumavenTest::SetOledDword(1);
    const auto off = RunCommand(*service, 9, L"{\"BValue\":false}");
    EXPECT_EQ(off.status, StatusSuccess);
    EXPECT_EQ(off.response, L"{\"result\":true}");
    EXPECT_EQ(LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(OledFeature, IntelSupportQueryCountsAFailingOpstQueryAsSupported)
{
    // No control library: the OPST query fails, adds nothing, and counts as supported.
    auto service = Started(Machine(Panels::kDel40F5, kIntelGpu, kDxgi));
    const auto result = RunCommand(*service, 10);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(result.response, L"{\"result\":true}");
    EXPECT_EQ(RunCommand(*service, 4).response, L"{\"result\":false}");
}

TEST_F(OledFeature, IntelSupportQueryWithoutASupportedPanelIsFalse)
{
    auto service = Started(
        WithIntel(Machine(Panels::kDel40F5, kIntelGpu, kIntelDrivers), {.attached = true, .opstSupported = true}));
    EXPECT_EQ(RunCommand(*service, 10).response, L"{\"result\":true,\"result\":false}");
    EXPECT_EQ(RunCommand(*service, 4).response, L"{\"result\":false}");
}

TEST_F(OledFeature, IntelPowerSaveOnSkipsEdWhenOpstFails)
{
    auto service = Started(WithIntel(Machine(Panels::kSdc4174, kIntelGpu, kIntelDrivers), {.attached = true},
                                     {{.function = "ctlInit", .code = 1073741825, .nth = 1}}));
    LumavenTest::SetOledDword(0);
    const auto result = RunCommand(*service, 11);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(result.response, L"{}");
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().CallsOf("ctlAUXAccess").empty());
}

TEST_F(OledFeature, AmdPowerSaveOnRewritesTheRequest)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    Document request;
    ASSERT_TRUE(ParseRequest(request, L"{\"BValue\":false,\"other\":[1,2]}"));
    Document response;
    response.SetObject();
    EXPECT_EQ(service->_SetOLEDPowerSaveON(&request, &response, 1, 0), StatusSuccess);
    JsonText text;
    WriteCompact(request, text);
    EXPECT_EQ(std::wstring(text.GetString()), L"{\"BValue\":true}");
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
}

TEST_F(OledFeature, EventGateIsTakenAtOnceWhenFreeAndWaitsOtherwise)
{
    EventGate gate;
    EXPECT_TRUE(gate.TryTakeUntil(EventGate::OneSecondFromNow()));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(gate.TryTakeUntil(start + std::chrono::milliseconds(50)));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(45));
    std::thread releaser([&gate] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        gate.Release();
    });
    EXPECT_TRUE(gate.TryTakeUntil(EventGate::OneSecondFromNow()));
    releaser.join();
}

TEST_F(OledFeature, EventReaderReportsTheStoredState)
{
    EXPECT_EQ(GetOledFromRegistryForEvent(), L"0");
    LumavenTest::SetOledDword(1);
    EXPECT_EQ(GetOledFromRegistryForEvent(), L"1");
    LumavenTest::SetOledDword(2);
    EXPECT_EQ(GetOledFromRegistryForEvent(), L"-1");
    LumavenTest::SetOledString(L"1");
    EXPECT_EQ(GetOledFromRegistryForEvent(), L"0");
}

TEST_F(OledFeature, EventsWhileOffLeaveThePreviousStateAlone)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(0);
    LogCapture capture;
    EXPECT_EQ(Event(*service, kConsoleDisplayState, 0), 0u);
    EXPECT_EQ(g_prevDisplayState, -1);
    EXPECT_EQ(capture.Texts(), std::vector<std::wstring>{L"LumavenService - OledEventCalled entered"});
}

TEST_F(OledFeature, EventsWithoutAStoredStateLeaveThePreviousStateAlone)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    ASSERT_FALSE(LumavenTest::OledDword().has_value()) << "SetUp removed the setting";
    LogCapture capture;
    EXPECT_EQ(Event(*service, kConsoleDisplayState, 0), 0u);
    EXPECT_EQ(g_prevDisplayState, -1);
    EXPECT_EQ(Event(*service, kLidSwitchStateChange, 1), 0u);
    EXPECT_EQ(g_prevDisplayState, -1);
    EXPECT_EQ(capture.Texts(), std::vector<std::wstring>(2, L"LumavenService - OledEventCalled entered"));
    EXPECT_TRUE(LumavenTest::Amd::Calls().empty());
    EXPECT_FALSE(LumavenTest::OledDword().has_value()) << "the event path writes no setting";
}

TEST_F(OledFeature, EventTransitionsFollowTheTable)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(1);
    const auto writes = [] { return LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(); };

    // An unrelated notification with data 0 counts as display off.
    const GUID unrelated = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};
    LogCapture capture;
    EXPECT_EQ(Event(*service, unrelated, 0), 0u);
    EXPECT_EQ(g_prevDisplayState, 0);
    EXPECT_EQ(capture.Count(L"LumavenService - OledEventCalled PrevDisplay ON"), 1u);
    EXPECT_EQ(Event(*service, unrelated, 1), 0u);
    EXPECT_EQ(g_prevDisplayState, 0) << "data 1 of another setting changes nothing";
    EXPECT_EQ(Event(*service, kConsoleDisplayState, 2), 0u);
    EXPECT_EQ(g_prevDisplayState, 0) << "data 2 changes nothing";
    EXPECT_EQ(writes(), 0u);
    EXPECT_EQ(Event(*service, kLidSwitchStateChange, 1), 0u);
    EXPECT_EQ(g_prevDisplayState, 1);
    EXPECT_EQ(capture.Count(L"LumavenService - OledEventCalled PrevDisplay OFF"), 1u);
    EXPECT_EQ(writes(), 5u);
    EXPECT_EQ(Event(*service, kConsoleDisplayState, 1), 0u);
    EXPECT_EQ(writes(), 5u) << "already on";
}

TEST_F(OledFeature, FirstDisplayOnAfterStartReapplies)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(1);
    Event(*service, kConsoleDisplayState, 1);
    EXPECT_EQ(LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
}

TEST_F(OledFeature, AmdWithoutSupportedPanelGainsAnEmptyEntryAndWritesNothing)
{
    auto service = Started(AmdLaptop(Panels::kDel40F5));
    LumavenTest::SetOledDword(1);
    ASSERT_EQ(service->m_auxData->count({0, true}), 0u);
    Event(*service, kConsoleDisplayState, 1);
    ASSERT_EQ(service->m_auxData->count({0, true}), 1u);
    EXPECT_TRUE(service->m_auxData->at({0, true}).empty());
    EXPECT_TRUE(LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
}

TEST_F(OledFeature, NullEventRecordIsIgnored)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(1);
    EXPECT_EQ(service->OledEventCalled(nullptr), 0u);
    EXPECT_EQ(g_prevDisplayState, -1);
}

TEST_F(OledFeature, EventGateDeadlineSaturatesAtTheEndOfTheClock)
{
    using Clock = std::chrono::steady_clock;
    const auto second = std::chrono::duration_cast<Clock::duration>(std::chrono::seconds(1));
    const Clock::duration tick(1);
    const Clock::time_point end = Clock::time_point::max();
    EXPECT_EQ(EventGate::OneSecondAfter(Clock::time_point{}), Clock::time_point{} + second);
    EXPECT_EQ(EventGate::OneSecondAfter(Clock::time_point::min()), Clock::time_point::min() + second);
    EXPECT_EQ(EventGate::OneSecondAfter(end - second - tick), end - tick);
    EXPECT_EQ(EventGate::OneSecondAfter(end - second), end);
    EXPECT_EQ(EventGate::OneSecondAfter(end - second + tick), end) << "past the end would wrap into the past";
    EXPECT_EQ(EventGate::OneSecondAfter(end), end);
    const Clock::time_point before = Clock::now();
    const Clock::time_point deadline = EventGate::OneSecondFromNow();
    EXPECT_GE(deadline, before + second);
    EXPECT_LE(deadline, Clock::now() + second);
}

TEST_F(OledFeature, EventOnAnotherVendorWithPowerSavingOnWritesNothing)
{
    auto service = Started(Machine(Panels::kSdc4174, "Microsoft Basic Display Adapter", kDxgi));
    ASSERT_EQ(service->m_videoController, 0);
    LumavenTest::SetOledDword(1);
    LogCapture capture;
    EXPECT_EQ(Event(*service, kConsoleDisplayState, 1), 0u);
    EXPECT_EQ(g_prevDisplayState, 1) << "the cycle is counted as on any machine";
    EXPECT_EQ(capture.Texts(), (std::vector<std::wstring>{L"LumavenService - OledEventCalled entered",
                                                          L"LumavenService - OledEventCalled OLED ON",
                                                          L"LumavenService - OledEventCalled PrevDisplay OFF"}));
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty()) << "no vendor library is asked";
}

TEST_F(OledFeature, EventHoldsTheServiceMutexThroughItsWaitAndWrite)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(1);
    LogCapture capture;
    std::atomic<bool> eventDone = false;
    std::thread event([&] {
        Event(*service, kConsoleDisplayState, 1);
        eventDone = true;
    });
    // The event's first line is logged with the mutex already held.
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (capture.Count(L"LumavenService - OledEventCalled entered") == 0 &&
           std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const auto command = RunCommand(*service, 10);  // the dispatcher takes the service's mutex for it
    EXPECT_TRUE(eventDone) << "command 10 ran while the event was waiting for the panel";
    event.join();
    EXPECT_EQ(command.status, StatusSuccess);
    EXPECT_EQ(command.response, L"{\"result\":true}");
    EXPECT_EQ(LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
}

TEST_F(OledFeature, AmdEventWithoutATableWritesNothing)
{
    // What a start-up that could not build the table leaves: vendor and panel known, no table.
    LumavenTest::InstallProfile(AmdLaptop(Panels::kSdc416C));
    LumavenService service;
    service.m_videoController = kVendorAmd;
    service.m_panelId = Panels::kSdc416C.id;
    LumavenTest::SetOledDword(1);
    LumavenSim::ClearTransactions();
    EXPECT_EQ(Event(service, kConsoleDisplayState, 1), 0u);
    EXPECT_EQ(g_prevDisplayState, 1);
    EXPECT_EQ(service.m_auxData, nullptr) << "no table is made for the event";
    EXPECT_TRUE(LumavenTest::Amd::Calls().empty());
}

TEST_F(OledFeature, AmdElpSetterWithoutATableIsADeviceError)
{
    LumavenTest::InstallProfile(AmdLaptop(Panels::kSdc416C));
    LumavenService service;
    service.m_panelId = Panels::kSdc416C.id;
    LumavenTest::SetOledDword(0);
    LumavenSim::ClearTransactions();
    Document request;
    ASSERT_TRUE(ParseRequest(request, L"{\"BValue\":true}"));
    Document response;
    response.SetObject();
    EXPECT_EQ(service.SetAmdElp(&request, &response, 1, 0), StatusDeviceError);
    EXPECT_EQ(response.MemberCount(), 0u);
    EXPECT_TRUE(LumavenTest::Amd::Calls().empty());
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(OledFeature, AmdElpSetterWritesWithoutAResponseDocument)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(0);
    Document request;
    ASSERT_TRUE(ParseRequest(request, L"{\"BValue\":true}"));
    EXPECT_EQ(service->SetAmdElp(&request, nullptr, 1, 0), StatusSuccess);
    EXPECT_EQ(LumavenTest::Amd::RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(),
              service->m_auxData->at({Panels::kSdc416C.id, true}).size());
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
}

TEST_F(OledFeature, AmdElpSetterTakesOnlyTheLiteralTrueAsOn)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(1);
    LogCapture capture;
    const auto text = RunCommand(*service, 9, L"{\"BValue\":\"true\"}");
    EXPECT_EQ(text.status, StatusSuccess);
    EXPECT_EQ(text.response, L"{\"result\":true}");
    EXPECT_EQ(LumavenTest::OledDword(), 0u) << "a string is not on: the off sequence was written";
    EXPECT_EQ(capture.Count(L"SetAmdElp() check data failed\n\n"), 0u);

    capture.Clear();
    LumavenSim::ClearTransactions();
    const auto missing = RunCommand(*service, 9, L"{\"Value\":true}");
    EXPECT_EQ(missing.status, StatusInvalidArgument);
    EXPECT_EQ(missing.response, L"{}");
    EXPECT_EQ(capture.Texts(), std::vector<std::wstring>{L"SetAmdElp() check data failed\n\n"});
    EXPECT_TRUE(LumavenTest::Amd::Calls().empty());
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(OledFeature, CompositeHandlersCheckTheirDocuments)
{
    auto service = Started(AmdLaptop(Panels::kSdc416C));
    LumavenTest::SetOledDword(0);
    using Handler = std::function<uint32_t(Document*, Document*)>;
    const std::pair<const char*, Handler> handlers[] = {
        {"4", [&](Document* q, Document* r) { return service->GetIfSystemSupportsOled(q, r, 1); }},
        {"10", [&](Document* q, Document* r) { return service->_GetIfOLEDSupport(q, r, 1); }},
        {"11", [&](Document* q, Document* r) { return service->_SetOLEDPowerSaveON(q, r, 1, 0); }},
        {"12", [&](Document* q, Document* r) { return service->_SetOLEDPowerSaveOFF(q, r, 1, 0); }},
    };
    const std::wstring request =
        L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - request cannot be null";
    const std::wstring response =
        L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - response cannot be null";
    for (const auto& [command, handler] : handlers) {
        SCOPED_TRACE(std::string("command ") + command);
        Document document;
        ASSERT_TRUE(ParseRequest(document, L"{\"BValue\":true}"));
        LogCapture capture;
        EXPECT_EQ(handler(nullptr, &document), StatusInvalidArgument);
        EXPECT_EQ(handler(&document, nullptr), StatusInvalidArgument);
        EXPECT_EQ(handler(nullptr, nullptr), StatusInvalidArgument);
        EXPECT_EQ(capture.Texts(), (std::vector<std::wstring>{request, response, request, response}));
        EXPECT_EQ(document.MemberCount(), 1u) << "the document is left as it was";
    }
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty()) << "no driver is asked";
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}
