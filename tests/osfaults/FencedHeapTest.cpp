// Nothing read past the end of a block: each entry point on the Intel and the AMD laptop runs
// once as usual and once with every block the DLL allocates fenced (a page that cannot be
// touched right after its end, as a full page heap places it), and must answer the same. That
// covers the service's own buffers and the lists the vendor libraries fill in blocks of the
// service's (ADL's display list comes from the service's allocation callback). A read past
// the end faults; the handler below names the block, and the suite, whose process then ends
// without GoogleTest's report of every test passed, fails.
#include "EntryPoints.h"
#include "EntryRun.h"
#include "ImportHooks.h"
#include "Registry.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

using namespace LumavenOsFaults;

LONG CALLBACK NameTheBlock(EXCEPTION_POINTERS* exception)
{
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2) {
        const auto* const address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
        if (const std::optional<size_t> size = FencedBlockBefore(address)) {
            std::fprintf(stderr, "LumavenService.dll read past the end of a block of %zu bytes\n", *size);
            std::fflush(stderr);
        }
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

class FencedHeap : public ::testing::TestWithParam<OnLaptop> {
protected:
    void SetUp() override { m_handler = AddVectoredExceptionHandler(1, NameTheBlock); }
    void TearDown() override
    {
        DisarmAll();
        RemoveVectoredExceptionHandler(m_handler);
    }

    // The entry point on the laptop as installed afresh, power saving stored off.
    static Outcome RunOnFreshLaptop(bool fenced)
    {
        LumavenTest::InstallShippedProfile(std::get<0>(GetParam()));
        LumavenTest::SetOledDword(0);
        const EntryPoint& entry = std::get<1>(GetParam());
        std::unique_ptr<LumavenTest::HostedService> hosted = PreparedFor(entry);
        FenceBlocks(fenced);
        const Outcome outcome = RunEntry(entry.kind, entry.command, entry.request, hosted);
        FenceBlocks(false);
        return outcome;
    }

    void* m_handler = nullptr;
};

TEST_P(FencedHeap, NothingIsReadPastTheEndOfABlock)
{
    LoadedDll dll;
    ASSERT_TRUE(dll.Loaded());
    SkipWaits();
    const Outcome plain = RunOnFreshLaptop(false);
    const Outcome fenced = RunOnFreshLaptop(true);
    EXPECT_EQ(fenced.created, plain.created);
    EXPECT_EQ(fenced.returned, plain.returned) << fenced.Describe();
    EXPECT_EQ(fenced.call.status, plain.call.status);
    EXPECT_EQ(fenced.call.response, plain.call.response);
    EXPECT_EQ(fenced.logs, plain.logs);
}

INSTANTIATE_TEST_SUITE_P(ShippedLaptops, FencedHeap, kOnShippedLaptops, NameOnLaptop);

}  // namespace
