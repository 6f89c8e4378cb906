// The two ways the service's life ends, on both laptops, after commands that leave vendor
// libraries loaded. When the host process ends, the loader detaches those libraries before
// the service, and nothing may call into them any more: the simulated drivers refuse and log
// any call that comes after their own detach. When the host unloads the service with
// FreeLibrary and runs on, the service gives everything back: ADLX terminated, ADL's context
// destroyed, every library it loaded unloaded.
#include "HostedService.h"
#include "ProcessRunner.h"
#include "SimMachine.h"
#include "SimState.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

// A shipped profile with these vendor faults injected.
void InstallWithFaults(const std::string& name, const std::vector<LumavenSim::Profile::Fault>& faults)
{
    LumavenTest::InstallShippedProfile(name);
    LumavenSim::Profile::Arm(faults);
}

// The names of the calls made into `library`, in order.
std::vector<std::string> CallsInto(const std::string& library)
{
    return LumavenSim::TransactionLog::Read().CallNames(library);
}

// The last record of a call into `library`, as compact JSON; empty when there is none.
std::string LastCall(const std::string& library, const std::string& call)
{
    const auto last = LumavenSim::TransactionLog::Read().Last({.lib = library, .call = call});
    return last ? last->Text() : std::string();
}

// How often the library was loaded and how often FreeLibrary unloaded it, from the driver's
// own counters (an unload at process exit is not counted).
std::pair<int64_t, int64_t> LoadsAndUnloads(const char* section)
{
    std::pair<int64_t, int64_t> counts;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (state.HasMember(section) && state[section].IsObject()) {
            const auto& object = state[section];
            counts.first = object.HasMember("loads") ? object["loads"].GetInt64() : 0;
            counts.second = object.HasMember("unloads") ? object["unloads"].GetInt64() : 0;
        }
        return false;
    });
    return counts;
}

bool Contains(const std::vector<std::string>& calls, const std::string& call)
{
    return std::find(calls.begin(), calls.end(), call) != calls.end();
}

// ADL's count of adapters fails, so command 9 stops after creating its context: the library
// stays loaded and the context alive until the service lets go of them.
const std::vector<LumavenSim::Profile::Fault> kAdlStopsEarly{
    {.function = "ADL2_Adapter_NumberOfAdapters_Get", .code = -1}};
// ControlLib refuses every ctlClose, so the library stays loaded after each Intel session.
const std::vector<LumavenSim::Profile::Fault> kControlLibStaysOpen{{.function = "ctlClose", .code = 1073741825}};

}  // namespace

TEST(ProcessEnd, AmdProcessExitCallsNothingInAdlxOrAdl)
{
    InstallWithFaults("amd-laptop", kAdlStopsEarly);
    // 10 and 13 leave ADLX loaded and initialised; 9 leaves ADL loaded with a live context.
    const auto run = LumavenTest::RunProgram(LR"(lumaven-exit-host.exe 10 13 "9={\"BValue\":true}")");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    EXPECT_NE(run.output.find("command 13: status 0x0 {\"result\":true}"), std::string::npos) << run.output;

    EXPECT_EQ(LumavenTest::CallsAfterDetach(), std::vector<std::string>{});
    const auto adlx = CallsInto("amdadlx64.dll");
    EXPECT_TRUE(Contains(adlx, "ADLXInitialize"));
    EXPECT_FALSE(Contains(adlx, "ADLXTerminate")) << "ADLX is left to the ending process";
    const auto adl = CallsInto("atiadlxx.dll");
    EXPECT_TRUE(Contains(adl, "ADL2_Main_Control_Create"));
    EXPECT_FALSE(Contains(adl, "ADL2_Main_Control_Destroy")) << "the context is left to the ending process";
    // Both were still loaded when the process ended: never unloaded by FreeLibrary.
    EXPECT_EQ(LoadsAndUnloads("adlx"), std::make_pair(int64_t{1}, int64_t{0}));
    EXPECT_EQ(LoadsAndUnloads("amd"), std::make_pair(int64_t{1}, int64_t{0}));
}

TEST(ProcessEnd, IntelProcessExitCallsNothingInControlLib)
{
    InstallWithFaults("intel-laptop", kControlLibStaysOpen);
    const auto run = LumavenTest::RunProgram(L"lumaven-exit-host.exe 1 8");
    ASSERT_EQ(run.exitCode, 0u) << run.output;

    EXPECT_EQ(LumavenTest::CallsAfterDetach(), std::vector<std::string>{});
    EXPECT_TRUE(Contains(CallsInto("ControlLib"), "ctlClose"));
    EXPECT_EQ(LoadsAndUnloads("intel"), std::make_pair(int64_t{1}, int64_t{0})) << "loaded until the process ended";
}

TEST(ProcessEnd, AmdFreeLibraryTerminatesAdlxAndReleasesAdl)
{
    InstallWithFaults("amd-laptop", kAdlStopsEarly);
    {
        LumavenTest::HostedService host;
        ASSERT_TRUE(host.Created());
        EXPECT_EQ(host.Run(10).response, L"{\"result\":true}");
        EXPECT_EQ(host.Run(13).response, L"{\"result\":true}");
        EXPECT_EQ(host.Run(9, L"{\"BValue\":true}").response, L"{\"result\":false}");
    }
    EXPECT_EQ(GetModuleHandleW(L"LumavenService.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"amdadlx64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"atiadlxx.dll"), nullptr);
    EXPECT_NE(LastCall("amdadlx64.dll", "ADLXTerminate").find("\"result\":0"), std::string::npos)
        << LastCall("amdadlx64.dll", "ADLXTerminate");
    EXPECT_EQ(CallsInto("amdadlx64.dll").back(), "ADLXTerminate");
    EXPECT_NE(LastCall("atiadlxx.dll", "ADL2_Main_Control_Destroy").find("\"result\":0"), std::string::npos)
        << LastCall("atiadlxx.dll", "ADL2_Main_Control_Destroy");
    EXPECT_EQ(LoadsAndUnloads("adlx"), std::make_pair(int64_t{1}, int64_t{1}));
    EXPECT_EQ(LoadsAndUnloads("amd"), std::make_pair(int64_t{1}, int64_t{1}));
    EXPECT_EQ(LumavenTest::CallsAfterDetach(), std::vector<std::string>{});
}

// A host that unloads the service without destroying it first: what the service holds for
// the whole process (ADLX, and ADL after a write that stopped early) is released by the
// module's own unload.
TEST(ProcessEnd, AmdFreeLibraryWithoutDestroyingTheServiceStillReleasesEverything)
{
    InstallWithFaults("amd-laptop", kAdlStopsEarly);
    HMODULE module = LoadLibraryW(L"LumavenService.dll");
    ASSERT_NE(module, nullptr);
    const auto create = reinterpret_cast<XeltoCreateServiceFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "XeltoCreateService")));
    ASSERT_NE(create, nullptr);
    // Deliberately never destroyed: its code goes away with the module.
    Xelto::Spanlet::Server::Services::XeltoService* const service = create();
    ASSERT_NE(service, nullptr);
    service->startup_task();
    EXPECT_EQ(XeltoClient::RunCommand(*service, 10).response, L"{\"result\":true}");
    EXPECT_EQ(XeltoClient::RunCommand(*service, 9, L"{\"BValue\":true}").response, L"{\"result\":false}");
    EXPECT_NE(GetModuleHandleW(L"atiadlxx.dll"), nullptr) << "the stopped write left ADL loaded";
    FreeLibrary(module);

    EXPECT_EQ(GetModuleHandleW(L"LumavenService.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"amdadlx64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"atiadlxx.dll"), nullptr);
    EXPECT_NE(LastCall("amdadlx64.dll", "ADLXTerminate").find("\"result\":0"), std::string::npos);
    EXPECT_NE(LastCall("atiadlxx.dll", "ADL2_Main_Control_Destroy").find("\"result\":0"), std::string::npos);
    EXPECT_EQ(LoadsAndUnloads("adlx"), std::make_pair(int64_t{1}, int64_t{1}));
    EXPECT_EQ(LoadsAndUnloads("amd"), std::make_pair(int64_t{1}, int64_t{1}));
    EXPECT_EQ(LumavenTest::CallsAfterDetach(), std::vector<std::string>{});
}

TEST(ProcessEnd, IntelFreeLibraryLeavesNoVendorLibraryLoaded)
{
    LumavenTest::InstallShippedProfile("intel-laptop");
    {
        LumavenTest::HostedService host;
        ASSERT_TRUE(host.Created());
        EXPECT_EQ(host.Run(1).status, 0u);
        EXPECT_EQ(host.Run(8).response, L"{\"result\":true}");
    }
    EXPECT_EQ(GetModuleHandleW(L"LumavenService.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"ControlLib.dll"), nullptr);
    const auto [loads, unloads] = LoadsAndUnloads("intel");
    EXPECT_GE(loads, 2);
    EXPECT_EQ(unloads, loads);
    EXPECT_EQ(CallsInto("ControlLib").back(), "ctlClose");
    EXPECT_EQ(LumavenTest::CallsAfterDetach(), std::vector<std::string>{});
}
