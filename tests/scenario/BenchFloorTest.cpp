// The benchmark's floors and the reference host's bench action. A floor is only a fair
// measure when it makes the vendor calls its command makes: for every command on both shipped
// laptops, the simulated drivers must log the same calls with the same arguments for the
// command and for its floor, and the settings value must end the same.
#include "CommandFloors.h"
#include "HostedService.h"
#include "ProcessRunner.h"
#include "Registry.h"
#include "SimMachine.h"
#include "SimState.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

using LumavenBench::CommandFloors;
using LumavenTest::HostedService;

namespace {

constexpr wchar_t kOn[] = L"{\"BValue\":true}";
constexpr wchar_t kOff[] = L"{\"BValue\":false}";
// Neither 0 nor 1, so that any write shows.
constexpr DWORD kUntouched = 7;

struct FloorCase {
    uint32_t command;
    const wchar_t* request;
    // Brings the state back before each side, as the benchmark does; 0 for none.
    uint32_t reset;
    const wchar_t* resetRequest;
};

const FloorCase kCases[] = {
    {1, kOn, 0, nullptr},  {2, kOn, 3, kOn},      {3, kOn, 2, kOn},     {4, kOn, 0, nullptr},  {5, kOn, 6, kOn},
    {6, kOn, 5, kOn},      {7, kOn, 0, nullptr},  {8, kOn, 0, nullptr}, {9, kOn, 9, kOff},     {9, kOff, 9, kOn},
    {10, kOn, 0, nullptr}, {11, kOn, 12, kOn},    {12, kOn, 11, kOn},   {13, kOn, 0, nullptr}, {14, kOn, 14, kOff},
    {14, kOff, 14, kOn},   {15, kOn, 0, nullptr},
};

// The vendor calls logged since the last clear, each as its record without the raw argument
// values (pointers differ between any two callers) and without the time it was made.
std::vector<std::string> VendorCalls()
{
    std::vector<std::string> calls;
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        calls.push_back(record.TextWithout({"args", "time"}));
    }
    return calls;
}

std::string Lines(const std::vector<std::string>& calls)
{
    std::ostringstream text;
    for (const std::string& call : calls) {
        text << "  " << call << "\n";
    }
    return text.str();
}

struct Effect {
    std::vector<std::string> calls;
    std::optional<DWORD> oled;
};

template <class Work>
Effect EffectOf(HostedService& service, const FloorCase& c, Work&& work)
{
    if (c.reset != 0) {
        service.Run(c.reset, c.resetRequest);
    }
    LumavenTest::SetOledDword(kUntouched);
    LumavenSim::ClearTransactions();
    work();
    return {VendorCalls(), LumavenTest::OledDword()};
}

void ExpectFloorsMatchCommands(const char* laptop, size_t minimumCalls)
{
    LumavenTest::InstallShippedProfile(laptop);
    size_t totalCalls = 0;
    {
        HostedService service;
        ASSERT_TRUE(service.Created());
        const auto floors = std::make_unique<CommandFloors>();
        // The first AMD OLED command initialises ADLX; the floors' own is initialised already.
        service.Run(10, kOn);
        for (const FloorCase& c : kCases) {
            const Effect command = EffectOf(service, c, [&] { service.Run(c.command, c.request); });
            const Effect floor = EffectOf(service, c, [&] { floors->Command(c.command, c.request == kOn); });
            EXPECT_TRUE(command.calls == floor.calls) << laptop << ", command " << c.command << "\ncommand:\n"
                                                      << Lines(command.calls) << "floor:\n"
                                                      << Lines(floor.calls);
            EXPECT_EQ(command.oled, floor.oled) << laptop << ", command " << c.command;
            totalCalls += command.calls.size();
        }
    }
    // The comparison means something only when the commands reached the drivers.
    EXPECT_GE(totalCalls, minimumCalls) << laptop;
}

}  // namespace

TEST(BenchFloors, MakeTheVendorCallsOfEachCommandOnTheIntelLaptop)
{
    ExpectFloorsMatchCommands("intel-laptop", 100);
}

TEST(BenchFloors, MakeTheVendorCallsOfEachCommandOnTheAmdLaptop)
{
    ExpectFloorsMatchCommands("amd-laptop", 50);
}

TEST(BenchFloors, StartUpFloorQueriesTheGraphicsAdapterAsTheStartUpTaskDoes)
{
    LumavenTest::InstallShippedProfile("intel-laptop");
    CommandFloors floors;
    LumavenSim::ClearTransactions();
    std::vector<std::string> startup;
    {
        const HostedService service;  // the factory and the start-up task
        ASSERT_TRUE(service.Created());
        startup = VendorCalls();
    }
    LumavenSim::ClearTransactions();
    floors.StartUp();
    EXPECT_FALSE(startup.empty());
    EXPECT_TRUE(startup == VendorCalls()) << "start-up:\n" << Lines(startup) << "floor:\n" << Lines(VendorCalls());
}

TEST(Bench, PrintsARowForEveryCommandTheEventAndTheStartUp)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    const auto result = LumavenTest::RunProgram(L"lumaven-bench.exe 1");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    for (const char* row :
         {"1 _GetOpst", "4 GetIfSystemSupportsOled", "9 SetElp on", "9 SetElp off", "11 _SetOLEDPowerSaveON",
          "14 _SetVaribright off", "15 (unsupported)", "event display-on", "start-up (factory + startup_task)"}) {
        EXPECT_NE(result.output.find("\n" + std::string(row)), std::string::npos) << row << "\n" << result.output;
    }
    EXPECT_NE(result.output.find("json + ADL load + AUX write + reg write"), std::string::npos) << result.output;
}
