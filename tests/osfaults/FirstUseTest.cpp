// A host may make its first call into the service when memory is already short. What the DLL
// makes once for its whole life is then made under that shortage too, so each allocation of
// a fresh DLL's first calls fails in turn, each time in a DLL just loaded: every run must end
// in a defined outcome, never a crash.
#include "EntryRun.h"
#include "HostedService.h"
#include "ImportHooks.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <exception>
#include <memory>
#include <string>

namespace {

using namespace LumavenOsFaults;

constexpr uint32_t kStatusException = 0x20000006;
constexpr uint32_t kInvalidParameter = 0x20000002;

// The first calls a host makes, each of them reaching something the DLL makes once: the
// factory (the service's type name), a command without a message (the null check's type
// name) and a command whose request lacks its member (the shared null value). Whatever an
// exception leaves a call with is caught here, as the host's own guard would.
int FirstCallsOfAFreshDll(int nth, std::string& failures)
{
    const HMODULE module = LoadLibraryW(L"LumavenService.dll");
    if (module == nullptr) {
        failures += "the DLL did not load; ";
        return 0;
    }
    auto patch = std::make_unique<PatchedImports>(module);
    SkipWaits();
    FailNthAllocation(nth);
    int calls = 0;
    {
        LumavenTest::HostedService hosted(false);
        if (hosted.Created()) {
            try {
                XeltoClient::Call call;
                call.command = 1;
                call.request = nullptr;
                const XeltoClient::Reply reply = XeltoClient::Execute(hosted.Service(), call);
                if (reply.status != kInvalidParameter && reply.status != kStatusException) {
                    failures += "a null message answered " + std::to_string(reply.status) + "; ";
                }
            } catch (const std::exception&) {
            }
            try {
                hosted.Run(9, L"{}");
            } catch (const std::exception&) {
            }
        }
        calls = AllocationCalls();
        FailNthAllocation(0);
    }
    DisarmAll();
    patch->LeaveForUnload();
    FreeLibrary(module);
    return calls;
}

TEST(FirstUse, EachAllocationOfAFreshDllsFirstCallsFailsInTurn)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    int nth = 1;
    for (;; ++nth) {
        std::string failures;
        const int calls = FirstCallsOfAFreshDll(nth, failures);
        EXPECT_EQ(failures, "") << "allocation " << nth;
        if (calls < nth) {
            break;
        }
        ASSERT_LT(nth, 500) << "the first calls never got through";
    }
    EXPECT_GT(nth, 5) << "hardly anything was failed";
    std::printf("[first-use] allocation points failed: %d\n", nth - 1);
}

}  // namespace
