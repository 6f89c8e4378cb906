// A start-up task that cannot build the panel table: the exception leaves the task, and the
// service answers from then on as one without a table and without an ELP setter, on the
// vendor and panel it had already found.
#include "EntryRun.h"
#include "ImportHooks.h"
#include "Registry.h"
#include "SimMachine.h"
#include "SimState.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;

TEST(StartupTable, AFailedBuildLeavesNeitherTableNorSetter)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    LoadedDll dll;
    ASSERT_TRUE(dll.Loaded());
    const uint64_t mark = AllocationMark();

    // The table is the last thing the task allocates: failing the task's last allocation fails
    // the table. Counted on a second start-up, which, like the one failed below, finds what the
    // first made once for the process (COM's and WMI's own).
    int allocations = 0;
    for (int run = 0; run < 2; ++run) {
        LumavenTest::HostedService counted(false);
        ASSERT_TRUE(counted.Created());
        FailNthAllocation(0);
        counted.Service().startup_task();
        allocations = AllocationCalls();
    }
    ASSERT_GT(allocations, 0);

    std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(Entry::Startup);
    FailNthAllocation(allocations);
    const Outcome startup = RunEntry(Entry::Startup, 0, L"{}", hosted);
    FailNthAllocation(0);
    EXPECT_EQ(startup.thrown, "std::bad_alloc") << startup.Describe();

    // The vendor was found: command 10 asks ADLX, as on any AMD machine.
    EXPECT_EQ(hosted->Run(10).response, L"{\"result\":true}");
    // No setter was chosen: command 9 has nobody to answer it.
    const XeltoClient::Reply elp = hosted->Run(9, L"{\"BValue\":true}");
    EXPECT_EQ(elp.status, 0x20000002u);
    EXPECT_EQ(elp.response, L"{}");
    // With power saving stored on, the display coming back writes nothing: there is no table.
    LumavenTest::SetOledDword(1);
    LumavenSim::ClearTransactions();
    const Outcome event = RunEntry(Entry::Event, 0, L"{}", hosted);
    EXPECT_TRUE(event.returned) << event.Describe();
    const std::wstring enter =
        L"I:Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task::PEXelto::Enter";
    EXPECT_EQ(event.logs, (std::vector<std::wstring>{
                              enter,
                              L"I:LumavenService - OledEventCalled entered",
                              L"I:LumavenService - OledEventCalled OLED ON",
                              L"I:LumavenService - OledEventCalled PrevDisplay ON",
                              enter,
                              L"I:LumavenService - OledEventCalled entered",
                              L"I:LumavenService - OledEventCalled OLED ON",
                              L"I:LumavenService - OledEventCalled PrevDisplay OFF",
                          }));
    for (const std::string& call : LumavenSim::TransactionLog::Read().CallNames()) {
        EXPECT_EQ(call.rfind("ADL2_", 0), std::string::npos) << "ADL was asked: " << call;
    }

    hosted.reset();
    dll.Unload();
    EXPECT_EQ(LiveBlocksSince(mark), std::vector<size_t>{}) << "blocks of the DLL left behind (their sizes)";
}

}  // namespace
