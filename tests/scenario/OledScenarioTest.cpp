// The whole service as the host uses it, on simulated Intel and AMD laptops and on a machine
// of neither vendor: start-up, all fourteen commands and the display-power events, checked on
// statuses, responses, the registry and what reached the simulated panels.
#include "HostedService.h"
#include "IntelState.h"
#include "LogCapture.h"
#include "XeltoClient.h"
#include "Registry.h"
#include "ServiceAnswers.h"
#include "SimMachine.h"
#include "SimState.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <string>
#include <vector>

using LumavenTest::HostedService;
using LumavenTest::LogCapture;
using LumavenTest::Answers::kFalse;
using LumavenTest::Answers::kTrue;
using std::chrono::milliseconds;
using XeltoClient::kConsoleDisplayState;
using XeltoClient::kLidSwitchStateChange;

namespace {

// How long the service took to answer a display or lid notification.
milliseconds TimedDeliver(HostedService& host, const GUID& setting, DWORD data)
{
    const auto start = std::chrono::steady_clock::now();
    host.Deliver(setting, data);
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

constexpr uint32_t kSuccess = 0;
constexpr uint32_t kInvalidArgument = 0x20000002;

rapidjson::Document State()
{
    rapidjson::Document copy;
    LumavenSim::WithState([&copy](rapidjson::Document& state) {
        copy.CopyFrom(state, copy.GetAllocator());
        return false;
    });
    return copy;
}

// The AUX writes the fakes logged since the log was last cleared, as "address=bytes" each.
std::vector<std::string> AuxWrites()
{
    std::vector<std::string> writes;
    for (const LumavenSim::AuxAccess& write : LumavenSim::TransactionLog::Read().AuxWrites()) {
        char address[16];
        snprintf(address, sizeof address, "%04X", write.address);
        writes.push_back(std::string(address) + "=" + write.bytes);
    }
    return writes;
}

// How long after `since` (a TransactionClock time) the earliest logged AUX write was made;
// -1 ms when there was none.
milliseconds FirstAuxWriteAfter(int64_t since)
{
    int64_t first = -1;
    for (const LumavenSim::AuxAccess& write : LumavenSim::TransactionLog::Read().AuxWrites()) {
        first = first < 0 ? write.time : std::min(first, write.time);
    }
    return milliseconds(first < 0 ? -1 : (first - since) / 1000);
}

int AmdRegister(const char* address)
{
    const auto state = State();
    const auto& dpcd = state["amd"]["adapters"][0]["displays"][0]["dpcd"];
    return dpcd.HasMember(address) ? dpcd[address].GetInt() : 0;
}

const rapidjson::Value& AdlxDisplay(const rapidjson::Document& state)
{
    return state["adlx"]["displays"][0];
}

// One command of a sequence and the response it must give.
struct Step {
    uint32_t command;
    const wchar_t* response;
    const wchar_t* request = L"{}";
};

// Runs the steps on `host` in their order.
void ExpectResponses(HostedService& host, std::initializer_list<Step> steps)
{
    for (const Step& step : steps) {
        EXPECT_EQ(host.Run(step.command, step.request).response, step.response) << "command " << step.command;
    }
}

}  // namespace

// A shipped laptop profile on a machine whose setting was never written.
template <const char* profile>
class ShippedLaptop : public ::testing::Test {
protected:
    void SetUp() override
    {
        LumavenTest::InstallShippedProfile(profile);
        LumavenTest::DeleteSettingsKey();
    }
};

constexpr char kIntelLaptop[] = "intel-laptop";
constexpr char kAmdLaptop[] = "amd-laptop";
using IntelLaptop = ShippedLaptop<kIntelLaptop>;
using AmdLaptop = ShippedLaptop<kAmdLaptop>;

TEST_F(IntelLaptop, QueriesAnswerForTheFittedPanel)
{
    HostedService host;
    ASSERT_TRUE(host.Created());
    // The OPST support handler adds its own member to 10 before the composite's.
    ExpectResponses(host, {{4, kTrue},
                           {7, L"{\"result\":0}"},
                           {8, kTrue},
                           {10, L"{\"result\":true,\"result\":true}"},
                           {13, kFalse},
                           {1, kFalse}});
}

TEST_F(IntelLaptop, PowerSaveOnAndOffSwitchOpstAndThePanel)
{
    HostedService host;
    // Power save on (11) or off (12): both members true, and the panel's register, OPST and
    // the stored setting all follow.
    const auto expectSwitched = [&host](uint32_t command, bool on) {
        const auto reply = host.Run(command);
        EXPECT_EQ(reply.status, kSuccess) << command;
        EXPECT_EQ(reply.response, L"{\"result\":true,\"result\":true}") << command;
        EXPECT_EQ(LumavenSim::Intel::ReadRegisters(0, 0, 0x4027, 1),
                  std::vector<uint8_t>{on ? uint8_t{0xC0} : uint8_t{0}})
            << command;
        EXPECT_EQ(LumavenSim::Intel::OpstEnabled(0, 0), on) << command;
        EXPECT_EQ(LumavenTest::OledDword(), on ? 1u : 0u) << command;
    };
    expectSwitched(11, true);
    ExpectResponses(host, {{1, kTrue}, {7, L"{\"result\":1}"}});
    expectSwitched(12, false);
}

TEST_F(IntelLaptop, ElpSetterFollowsBValue)
{
    HostedService host;
    EXPECT_EQ(host.Run(9, L"{\"BValue\":true}").response, L"{\"result\":true}");
    EXPECT_EQ(LumavenSim::Intel::ReadRegisters(0, 0, 0x4027, 1), std::vector<uint8_t>{0xC0});
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
    // Only the literal true switches on.
    EXPECT_EQ(host.Run(9, L"{\"BValue\":\"true\"}").response, L"{\"result\":true}");
    EXPECT_EQ(LumavenSim::Intel::ReadRegisters(0, 0, 0x4027, 1), std::vector<uint8_t>{0x00});
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
    LogCapture capture;
    for (const wchar_t* request : {L"{}", L"{\"BValue\":null}"}) {
        const auto result = host.Run(9, request);
        EXPECT_EQ(result.status, kInvalidArgument);
        EXPECT_EQ(result.response, L"{}");
    }
    EXPECT_EQ(capture.Count(L"SetIntelElp() check data failed\n\n"), 2u);
}

TEST_F(IntelLaptop, DisplayOnReappliesTheOnSequenceOncePerCycle)
{
    HostedService host;
    host.Run(5);
    LumavenSim::ClearTransactions();

    EXPECT_LT(TimedDeliver(host, kConsoleDisplayState, 0), milliseconds(400));
    EXPECT_TRUE(AuxWrites().empty());
    const int64_t delivered = LumavenSim::TransactionClock();
    host.Deliver(kConsoleDisplayState, 1);
    EXPECT_EQ(AuxWrites(), std::vector<std::string>{"4027=C0"});
    EXPECT_GE(FirstAuxWriteAfter(delivered), milliseconds(490)) << "the panel is given half a second before the write";

    LumavenSim::ClearTransactions();
    EXPECT_LT(TimedDeliver(host, kConsoleDisplayState, 1), milliseconds(400));
    EXPECT_TRUE(AuxWrites().empty()) << "a second display-on in a row does nothing";

    host.Deliver(kLidSwitchStateChange, 0);
    host.Deliver(kLidSwitchStateChange, 1);
    EXPECT_EQ(AuxWrites(), std::vector<std::string>{"4027=C0"}) << "lid open after lid closed re-applies";
}

TEST_F(IntelLaptop, EventsWhileStoredOffOnlyLogTheirEntry)
{
    HostedService host;
    host.Run(6);
    LumavenSim::ClearTransactions();
    LogCapture capture;
    host.Deliver(kConsoleDisplayState, 0);
    host.Deliver(kConsoleDisplayState, 1);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
    EXPECT_EQ(capture.Count(L"LumavenService - OledEventCalled entered"), 2u);
    EXPECT_EQ(capture.Count(L"LumavenService - OledEventCalled OLED ON"), 0u);
}

TEST_F(AmdLaptop, VaribrightNeedsAnOledCommandFirst)
{
    HostedService host;
    ASSERT_TRUE(host.Created());
    ExpectResponses(host, {{13, kFalse}, {10, kTrue}, {13, kTrue}, {14, kTrue, L"{\"BValue\":true}"}});
    EXPECT_TRUE(AdlxDisplay(State())["varibrightEnabled"].GetBool());
}

TEST_F(AmdLaptop, PowerSaveOnWritesThePanelThroughAdapterZeroDisplayZero)
{
    HostedService host;
    LumavenSim::ClearTransactions();
    const auto on = host.Run(11);
    EXPECT_EQ(on.status, kSuccess);
    EXPECT_EQ(on.response, L"{\"result\":true}") << "only SetAmdElp's member";
    const auto state = State();
    EXPECT_TRUE(AdlxDisplay(state)["varibrightEnabled"].GetBool());
    EXPECT_STREQ(AdlxDisplay(state)["varibrightMode"].GetString(), "maximizeBattery");
    EXPECT_EQ(AuxWrites(), (std::vector<std::string>{"045C=06", "0454=18", "0453=41", "045A=C0", "045B=40"}));
    for (const auto& record : LumavenSim::TransactionLog::Read().CallsOf("ADL2_Display_NativeAUXChannel_Access")) {
        EXPECT_EQ(record["adapter"].GetInt(), 0);
        EXPECT_EQ(record["display"].GetInt(), 0);
        EXPECT_EQ(record["size"].GetInt(), 36);
        EXPECT_EQ(record["auxStatus"].GetInt(), 0);
        EXPECT_EQ(record["command"].GetInt(), 1);
        EXPECT_EQ(record["dataSize"].GetInt(), 1);
    }
    EXPECT_EQ(AmdRegister("0x045A"), 0xC0);
    EXPECT_EQ(LumavenTest::OledDword(), 1u);
}

TEST_F(AmdLaptop, PowerSaveOffReportsVaribrightThenThePanel)
{
    HostedService host;
    host.Run(11);
    const auto off = host.Run(12);
    EXPECT_EQ(off.status, kSuccess);
    EXPECT_EQ(off.response, L"{\"result\":true,\"result\":true}");
    EXPECT_FALSE(AdlxDisplay(State())["varibrightEnabled"].GetBool());
    EXPECT_EQ(AmdRegister("0x045A"), 0x00);
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(AmdLaptop, PowerSaveOffWithoutAdlxStillSwitchesThePanel)
{
    LumavenTest::InstallProfile(LumavenSim::Profile::AmdLaptop(LumavenSim::Panels::kSdc416C));
    HostedService host;
    const auto off = host.Run(12);
    EXPECT_EQ(off.status, kSuccess);
    EXPECT_EQ(off.response, L"{\"result\":false,\"result\":true}");
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
}

TEST_F(AmdLaptop, ElpSetterWritesTheTableSequence)
{
    HostedService host;
    LumavenSim::ClearTransactions();
    EXPECT_EQ(host.Run(9, L"{\"BValue\":false}").response, L"{\"result\":true}");
    EXPECT_EQ(AuxWrites(), (std::vector<std::string>{"045C=06", "0454=18", "0453=41", "045A=00", "045B=40"}));
    EXPECT_EQ(LumavenTest::OledDword(), 0u);
    LogCapture capture;
    EXPECT_EQ(host.Run(9, L"{\"BValue\":null}").status, kInvalidArgument);
    EXPECT_EQ(capture.Count(L"SetAmdElp() check data failed\n\n"), 1u);
}

TEST_F(AmdLaptop, DisplayOnReappliesThroughAdl)
{
    HostedService host;
    host.Run(9, L"{\"BValue\":true}");
    LumavenSim::ClearTransactions();
    host.Deliver(kConsoleDisplayState, 0);
    EXPECT_TRUE(AuxWrites().empty());
    const int64_t delivered = LumavenSim::TransactionClock();
    host.Deliver(kConsoleDisplayState, 1);
    EXPECT_EQ(AuxWrites(), (std::vector<std::string>{"045C=06", "0454=18", "0453=41", "045A=C0", "045B=40"}));
    EXPECT_GE(FirstAuxWriteAfter(delivered), milliseconds(490)) << "the panel is given half a second before the write";
}

TEST(OtherVendor, CommandsThatNeedAVendorDoNothing)
{
    LumavenTest::InstallProfile(LumavenSim::Profile::Machine{.monitors = {{.panel = LumavenSim::Panels::kSdc4174}},
                                                             .gpuName = "Microsoft Basic Display Adapter",
                                                             .libraries = {{"dxgi.dll", "dxgi.dll"}}});
    LumavenTest::DeleteSettingsKey();
    HostedService host;
    ASSERT_TRUE(host.Created());
    const auto elp = host.Run(9, L"{\"BValue\":true}");
    EXPECT_EQ(elp.status, kInvalidArgument);
    EXPECT_EQ(elp.response, L"{}");
    const auto support = host.Run(10);
    EXPECT_EQ(support.status, kSuccess);
    EXPECT_EQ(support.response, L"{\"result\":false}");
    for (const uint32_t command : {11u, 12u}) {
        const auto result = host.Run(command, L"{\"BValue\":true}");
        EXPECT_EQ(result.status, kSuccess) << command;
        EXPECT_EQ(result.response, L"{}") << command;
    }
    EXPECT_FALSE(LumavenTest::OledDword().has_value());
}
