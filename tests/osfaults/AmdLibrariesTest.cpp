// The AMD libraries as the service binds them, where only a failing OS call shows it.
// - ADLX is taken only with all six of its entry points, also the two initialisations the
//   service never calls: a library that lacks any of them is not the ADLX the service is built
//   for. Each one missing in turn (its lookup answers "procedure not found"), command 10 on the
//   AMD laptop must answer false without calling into the library at all.
// - ADL's adapter list needs a buffer the service allocates; when it cannot be had, no adapter
//   is asked about and the binding is still released. When ADL fails to fill it, the service's
//   own clearing is what the records hold: the DLL's blocks come with bytes that are not zero.
#include "EntryRun.h"
#include "ImportHooks.h"
#include "SimMachine.h"
#include "SimState.h"
#include "TransactionLog.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;

constexpr int kAdlxEntryPoints = 6;
constexpr int kAdlError = -1;  // ADL_ERR

// The calls the simulated library of this file name logged, in order.
std::vector<std::string> CallsInto(const char* library)
{
    return LumavenSim::TransactionLog::Read().CallNames(library);
}

TEST(AdlxExports, EachOfTheSixMissingMeansNoAdlx)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    for (int missing = 0; missing <= kAdlxEntryPoints; ++missing) {
        SCOPED_TRACE(missing == 0 ? std::string("none missing")
                                  : "entry point " + std::to_string(missing) + " missing");
        LoadedDll dll;
        ASSERT_TRUE(dll.Loaded());
        std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(Entry::Command);
        LumavenSim::ClearTransactions();
        Hook* lookup = FindHook("GetProcAddress");
        ASSERT_NE(lookup, nullptr);
        lookup->ResetCounts();
        if (missing > 0) {
            lookup->Arm(Failure{missing, false, 0, ERROR_PROC_NOT_FOUND});
        }
        const Outcome outcome = RunEntry(Entry::Command, 10, L"{}", hosted);
        const int lookups = lookup->Calls();
        DisarmAll();
        SkipWaits();

        EXPECT_EQ(lookups, kAdlxEntryPoints) << "one lookup for each entry point, the missing one's too";
        EXPECT_EQ(outcome.call.status, 0u) << outcome.Describe();
        if (missing == 0) {
            EXPECT_EQ(outcome.call.response, L"{\"result\":true}");
            EXPECT_FALSE(CallsInto("amdadlx64.dll").empty());
        } else {
            EXPECT_EQ(outcome.call.response, L"{\"result\":false}");
            EXPECT_EQ(CallsInto("amdadlx64.dll"), std::vector<std::string>{}) << "the library was called";
        }
        EXPECT_EQ(outcome.logs, std::vector<std::wstring>{});
    }
}

// Command 9 turning power saving on, on a DLL loaded for this run, with `arrange` run just
// before it (the transaction log emptied).
template <class Arrange>
Outcome PowerSavingOn(Arrange&& arrange)
{
    LoadedDll dll;
    EXPECT_TRUE(dll.Loaded());
    std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(Entry::Command);
    LumavenSim::ClearTransactions();
    arrange();
    const Outcome outcome = RunEntry(Entry::Command, 9, L"{\"BValue\":true}", hosted);
    DisarmAll();
    SkipWaits();
    return outcome;
}

TEST(AdlBinding, AnAdapterBufferThatCannotBeHadAsksNoAdapter)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    // The laptop's one adapter record: 1572 bytes, a size nothing else of the command asks for.
    const Outcome outcome = PowerSavingOn([] { FailAllocationsFrom(1572, 1572); });
    EXPECT_EQ(outcome.call.status, 0u) << outcome.Describe();
    EXPECT_EQ(outcome.call.response, L"{\"result\":false}");
    EXPECT_EQ(outcome.logs, std::vector<std::wstring>{L"I:nAdapter count=1"});
    EXPECT_EQ(CallsInto("atiadlxx.dll"),
              (std::vector<std::string>{"ADL2_Main_Control_Create", "ADL2_Adapter_NumberOfAdapters_Get",
                                        "ADL2_Main_Control_Destroy"}));
}

// ADL answers the adapter list with an error and writes nothing: each record reads as the
// service cleared it, adapter index 0, and that adapter is asked for its displays and written.
TEST(AdlBinding, AnAdapterListADLFailedToFillReadsAsAdapterZero)
{
    LumavenSim::Profile::Machine machine = LumavenSim::Profile::AmdLaptop(LumavenSim::Panels::kSdc416C);
    machine.faults = {{.function = "ADL2_Adapter_AdapterInfo_Get", .code = kAdlError}};
    LumavenTest::InstallProfile(machine);
    const Outcome outcome = PowerSavingOn([] {});
    EXPECT_EQ(outcome.call.response, L"{\"result\":true}") << outcome.Describe();
    const auto listed = LumavenSim::TransactionLog::Read().CallsOf("ADL2_Display_DisplayInfo_Get");
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].Number("adapter"), 0) << listed[0].Text();
}

}  // namespace
