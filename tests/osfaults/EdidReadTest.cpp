// A monitor's "EDID" value read into a buffer that grows: a value longer than the first buffer
// (a base block with extension blocks) is read whole; a buffer that cannot grow, or a value
// that claims more room without the room growing, leaves that monitor out and the walk goes
// on. The factory tells: it makes a service only when a supported panel was read.
#include "CallTrace.h"
#include "EntryRun.h"
#include "ImportHooks.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;

const std::wstring kUnsupported = L"I:LumavenService cannot be initialized as it is running on unsupported platform";

// A supported panel whose EDID carries two extension blocks: 384 bytes, more than the first
// buffer of 256 holds. The read grows the buffer to twice the size the registry reports.
const LumavenSim::Profile::Monitor kLongEdid{.panel = LumavenSim::Panels::kSdc4174, .edidLength = 384};
constexpr size_t kGrownBuffer = 768;

class EdidRead : public ::testing::Test {
protected:
    static void Machine(const std::vector<LumavenSim::Profile::Monitor>& monitors)
    {
        LumavenTest::InstallProfile(LumavenSim::Profile::Machine{.monitors = monitors});
    }

    // How often the factory queries the "EDID" value of the one monitor, a supported panel
    // whose value has this many bytes.
    static long EdidQueries(unsigned edidLength)
    {
        Machine({{.panel = LumavenSim::Panels::kSdc4174, .edidLength = edidLength}});
        std::vector<std::wstring> traced;
        const Outcome outcome = Factory([] { TraceCalls(true); }, [&traced] { traced = TracedCalls(); });
        EXPECT_TRUE(outcome.created) << outcome.Describe();
        return static_cast<long>(
            std::count(traced.begin(), traced.end(), L"RegQueryValueExW(ptr, \"EDID\", null, null, ptr, ptr)"));
    }

    // The factory on a DLL loaded for this run, with `arrange` setting the faults and `inspect`
    // run before they are disarmed; checks that the DLL gives back what it took once it is
    // unloaded.
    template <class Arrange, class Inspect = void (*)()>
    static Outcome Factory(
        Arrange&& arrange, Inspect&& inspect = [] {})
    {
        LoadedDll dll;
        EXPECT_TRUE(dll.Loaded());
        ForgetHeld();
        const uint64_t mark = AllocationMark();
        std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(Entry::Factory);
        arrange();
        const Outcome outcome = RunEntry(Entry::Factory, 0, L"{}", hosted);
        inspect();
        DisarmAll();
        hosted.reset();
        dll.Unload();
        EXPECT_EQ(LiveBlocksSince(mark), std::vector<size_t>{}) << "blocks of the DLL left behind (their sizes)";
        EXPECT_EQ(Held().keys, 0u) << "registry keys left open";
        EXPECT_EQ(Held().deviceSets, 0u) << "device information sets left";
        return outcome;
    }
};

TEST_F(EdidRead, AValueLongerThanTheFirstBufferIsReadWhole)
{
    Machine({kLongEdid});
    const Outcome outcome = Factory([] {});
    EXPECT_TRUE(outcome.created) << outcome.Describe();
    EXPECT_EQ(outcome.logs, std::vector<std::wstring>{});
}

TEST_F(EdidRead, ABufferThatCannotGrowLeavesTheMonitorOut)
{
    Machine({kLongEdid});
    const Outcome outcome = Factory([] { FailAllocationsFrom(kGrownBuffer); });
    EXPECT_FALSE(outcome.created) << "the panel was read although its buffer could not grow";
    EXPECT_EQ(outcome.logs, std::vector<std::wstring>{kUnsupported});
}

TEST_F(EdidRead, TheBufferGrowsToTwiceTheReportedSizeAndNoMore)
{
    // Blocks larger than the grown buffer cannot be had: twice the 384 bytes the registry
    // reports fits, a buffer grown by more would not.
    Machine({kLongEdid});
    const Outcome outcome = Factory([] { FailAllocationsFrom(kGrownBuffer + 1); });
    EXPECT_TRUE(outcome.created) << outcome.Describe();
    EXPECT_EQ(outcome.logs, std::vector<std::wstring>{});
}

TEST_F(EdidRead, AValueWithOneExtensionBlockFitsTheFirstBuffer)
{
    // 256 bytes, the most common EDID of a laptop panel, is read into the first buffer: the
    // factory queries it as often as a base block alone, never again for a larger buffer.
    const long once = EdidQueries(128);
    EXPECT_GT(once, 0);
    EXPECT_EQ(EdidQueries(256), once);
}

TEST_F(EdidRead, AfterAMonitorLeftOutTheNextIsRead)
{
    Machine({kLongEdid, {.panel = LumavenSim::Panels::kSdc4160}});
    const Outcome outcome = Factory([] { FailAllocationsFrom(kGrownBuffer); });
    EXPECT_TRUE(outcome.created) << "the walk stopped at the monitor whose buffer could not grow";
    EXPECT_EQ(outcome.logs, std::vector<std::wstring>{});
}

TEST_F(EdidRead, AValueThatClaimsMoreRoomWithoutGrowingLeavesTheMonitorOut)
{
    // 128 bytes claimed while 256 are offered; then 384 claimed again and again while 768 are
    // offered. Taking either at its word would read forever.
    for (const DWORD claim : {128u, 384u}) {
        SCOPED_TRACE("claimed " + std::to_string(claim));
        Machine({{.panel = LumavenSim::Panels::kSdc4174}});
        const Outcome outcome = Factory([claim] { AnswerEdidClaim(claim); });
        EXPECT_FALSE(outcome.created);
        EXPECT_EQ(outcome.logs, std::vector<std::wstring>{kUnsupported});
    }
}

}  // namespace
