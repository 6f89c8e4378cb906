// Out of memory, everywhere: for the factory, the start-up task, each of the fourteen commands
// and the display-power event, on the Intel and the AMD laptop, the DLL's allocation functions
// fail on the 1st call of a run, then the 2nd, the 3rd, ... until a run completes without
// reaching the failure. Every run must end in a defined outcome (a status the command can
// answer, a handler's StatusException with that handler's own catch line, or std::bad_alloc
// where an exception may leave), never in a crash, std::terminate or a hang; must leave no
// block of the DLL behind; and the same entry point must answer as before once memory is
// there again.
#include "EntryPoints.h"
#include "EntryRun.h"
#include "HostedService.h"
#include "ImportHooks.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace LumavenOsFaults;
using LumavenTest::HostedService;

constexpr uint32_t kStatusException = 0x20000006;
constexpr wchar_t kBadAlloc[] = L"std::bad_alloc";
constexpr wchar_t kQualified[] = L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::";

// A handler's catch line: the first form prints the handler's qualified name, the second the
// exception's message.
std::wstring QualifiedCatch(const wchar_t* text, const wchar_t* method)
{
    return std::wstring(L"LumavenService - ") + text + L" threw: " + kQualified + method;
}

std::wstring MessageCatch(const wchar_t* text)
{
    return std::wstring(L"LumavenService - ") + text + L" threw: " + kBadAlloc;
}

// The catch line of each command's own handler, written out here rather than taken from the
// service's catalog, so that a handler wired to another one's text fails.
std::wstring OwnCatchLine(uint32_t command, bool amd)
{
    switch (command) {
    case 1: return QualifiedCatch(L"GetOpst", L"_GetOpst");
    case 2: return MessageCatch(L"EnableOpst");
    case 3: return MessageCatch(L"DisableOpst");
    case 4: return MessageCatch(L"GetIfSystemSupportsOled");
    case 5: return MessageCatch(L"EnableEd");
    case 6: return MessageCatch(L"DisableEd");
    case 7: return MessageCatch(L"GetOledFromRegistry");
    case 8: return QualifiedCatch(L"GetOpst", L"_GetIfSystemSupportsOpst");
    case 9: return amd ? QualifiedCatch(L"SetAmdElp", L"SetAmdElp") : QualifiedCatch(L"SetIntelElp", L"SetIntelElp");
    case 10: return QualifiedCatch(L"GetIfOLEDSupport", L"_GetIfOLEDSupport");
    case 11: return QualifiedCatch(L"SetOLEDPowerSaveON", L"_SetOLEDPowerSaveON");
    case 12: return QualifiedCatch(L"SetOLEDPowerSaveOFF", L"_SetOLEDPowerSaveOFF");
    case 13: return QualifiedCatch(L"GetVaribright", L"_GetIfVaribrightSupport");
    case 14: return QualifiedCatch(L"GetVaribright", L"_SetVaribright");
    default: return {};
    }
}

// The commands whose handlers a command's handler calls with the same response.
std::vector<uint32_t> InnerCommands(uint32_t command, bool amd)
{
    switch (command) {
    case 9: return amd ? std::vector<uint32_t>{} : std::vector<uint32_t>{5, 6};
    case 10: return {4, 8, 13};
    case 11: return amd ? std::vector<uint32_t>{9, 14} : std::vector<uint32_t>{2, 5};
    case 12: return amd ? std::vector<uint32_t>{9, 14} : std::vector<uint32_t>{3, 6};
    default: return {};
    }
}

// Whether some allocation failure reaches the command's own guard on that laptop. Commands 7
// and 13 allocate nothing through the DLL's imports on either laptop (a registry read; a
// VariBright query answered into the response's own pool), and the Intel-only handlers answer
// an AMD machine without a session; their inner work, where there is any, is caught by the
// inner handlers' guards. Kept exact, so that a handler that starts or stops allocating shows.
bool OwnGuardReachable(uint32_t command, bool amd)
{
    if (command == 7 || command == 13) {
        return false;
    }
    return !amd || !(command <= 3 || command == 5 || command == 6 || command == 8);
}

// The handlers' catch lines among an entry point's log lines, without their level.
std::vector<std::wstring> CatchLines(const Outcome& outcome)
{
    std::vector<std::wstring> lines;
    for (const std::wstring& line : outcome.logs) {
        if (line.rfind(L"E:LumavenService - ", 0) == 0 && line.find(L" threw: ") != std::wstring::npos) {
            lines.push_back(line.substr(2));
        }
    }
    return lines;
}

class OutOfMemory : public ::testing::TestWithParam<OnLaptop> {
protected:
    void SetUp() override
    {
        LumavenTest::InstallShippedProfile(Laptop());
        m_amd = OnAmd(Laptop());
        m_module = LoadLibraryW(L"LumavenService.dll");
        ASSERT_NE(m_module, nullptr);
        m_patch = std::make_unique<PatchedImports>(m_module);
        // The display-on re-write waits half a second for the panel; the loops do not.
        SkipWaits();
        // The first exception thrown on a thread gives the runtime its per-thread blocks
        // (exception globals, thread-local storage), kept until the thread ends: one failed
        // factory call here makes them before any figure is taken.
        FailNthAllocation(1);
        HostedService warmUp(false);
        FailNthAllocation(0);
    }
    void TearDown() override
    {
        DisarmAll();
        m_patch.reset();
        if (m_module != nullptr) {
            FreeLibrary(m_module);
        }
    }

    // Runs the entry point once on `hosted` (made fresh for the factory and the start-up).
    static Outcome Run(const EntryPoint& entry, std::unique_ptr<HostedService>& hosted)
    {
        return RunEntry(entry.kind, entry.command, entry.request, hosted);
    }

    static const char* Laptop() { return std::get<0>(GetParam()); }
    static const EntryPoint& Entry() { return std::get<1>(GetParam()); }

    bool m_amd = false;
    HMODULE m_module = nullptr;
    std::unique_ptr<PatchedImports> m_patch;
};

// The catch lines a run of this entry point may write: its own handler's, and those of the
// handlers it calls.
std::set<std::wstring> AllowedCatchLines(const EntryPoint& entry, bool amd)
{
    std::set<std::wstring> allowed;
    if (entry.kind == Entry::Startup) {
        // Vendor detection catches its own errors and goes on with vendor 0.
        allowed.insert(MessageCatch(L"CheckVideoControllerType"));
    }
    if (entry.kind == Entry::Event) {
        // The event task's own guard, the stored-setting read's and the Intel re-write's; the
        // message is std::bad_alloc's, or a mutex's std::system_error.
        for (const wchar_t* message : {kBadAlloc, L"Cannot allocate memory"}) {
            for (const wchar_t* text : {L"OledEventCalled", L"GetOledFromRegistryForEvent", L"EnableEd"}) {
                allowed.insert(std::wstring(L"LumavenService - ") + text + L" threw: " + message);
            }
        }
    }
    if (entry.kind != Entry::Command) {
        return allowed;
    }
    allowed.insert(OwnCatchLine(entry.command, amd));
    for (const uint32_t inner : InnerCommands(entry.command, amd)) {
        allowed.insert(OwnCatchLine(inner, amd));
        for (const uint32_t innermost : InnerCommands(inner, amd)) {
            allowed.insert(OwnCatchLine(innermost, amd));
        }
    }
    return allowed;
}

TEST_P(OutOfMemory, EveryAllocationOfEveryEntryPointFailsInTurn)
{
    const EntryPoint& entry = Entry();
    {
        const std::set<std::wstring> allowedCatches = AllowedCatchLines(entry, m_amd);
        const std::wstring ownCatch = entry.kind == Entry::Command ? OwnCatchLine(entry.command, m_amd) : L"";

        // Twice without a fault: the answer every later run must give again, and the blocks the
        // DLL holds once it has settled.
        std::unique_ptr<HostedService> hosted = PreparedFor(entry);
        Run(entry, hosted);
        const Outcome baseline = Run(entry, hosted);
        ASSERT_TRUE(baseline.returned) << baseline.Describe();
        ASSERT_TRUE(baseline.created);
        ASSERT_TRUE(CatchLines(baseline).empty());
        hosted.reset();
        const size_t settled = LiveBlocks();

        bool ownCatchSeen = false;
        // The event task's own guard (the fresh gate's mutex cannot be made) and, on Intel, the
        // re-write's own (the session's device and display lists cannot be made).
        const std::wstring kEventCatch = L"LumavenService - OledEventCalled threw: ";
        const std::wstring kRewriteCatch = L"LumavenService - EnableEd threw: ";
        bool eventGuardSeen = false;
        bool rewriteGuardSeen = false;
        int points = 0;
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE("allocation " + std::to_string(nth));
            hosted = PreparedFor(entry);
            FailNthAllocation(nth);
            const Outcome failed = Run(entry, hosted);
            const bool reached = AllocationCalls() >= nth;
            FailNthAllocation(0);
            // An Intel session is closed on every way out of it, an exception's too: the control
            // library is not left loaded for the next command to find.
            EXPECT_EQ(GetModuleHandleW(L"ControlLib.dll"), nullptr) << "the Intel session was left open";

            // Where the failure may show, and how.
            if (!failed.returned) {
                if (entry.kind == Entry::Startup) {
                    // Building the AUX table and the WMI query's COM strings let their failures out.
                    EXPECT_TRUE(failed.thrown == "std::bad_alloc" || failed.thrown == "_com_error(E_OUTOFMEMORY)")
                        << failed.Describe();
                } else {
                    // A mutex that cannot be made when it is first locked raises std::system_error
                    // out of the dispatcher or the event task; besides that, only the dispatcher's
                    // own parse and write steps let an exception (std::bad_alloc) out.
                    EXPECT_TRUE(failed.thrown == "std::system_error(ENOMEM)" ||
                                (entry.kind == Entry::Command && failed.thrown == "std::bad_alloc"))
                        << failed.Describe();
                    EXPECT_TRUE(CatchLines(failed).empty()) << "a handler caught it and it still left";
                }
            } else if (entry.kind == Entry::Command) {
                if (failed.call.status == kStatusException) {
                    EXPECT_FALSE(CatchLines(failed).empty()) << "StatusException without a catch line";
                }
                // The command's own guard caught it: the host is told so, with that status and no
                // other (an inner handler's catch may still end in another answer).
                const std::vector<std::wstring> caught = CatchLines(failed);
                if (std::find(caught.begin(), caught.end(), ownCatch) != caught.end()) {
                    EXPECT_EQ(failed.call.status, kStatusException) << failed.Describe();
                }
                const std::set<uint32_t> defined = {0, 0x20000002, 0x20000005, kStatusException};
                EXPECT_TRUE(defined.count(failed.call.status)) << failed.Describe();
            }
            for (const std::wstring& line : CatchLines(failed)) {
                EXPECT_TRUE(allowedCatches.count(line))
                    << "unexpected catch line: " << std::string(line.begin(), line.end());
                ownCatchSeen = ownCatchSeen || line == ownCatch;
                eventGuardSeen = eventGuardSeen || line.rfind(kEventCatch, 0) == 0;
                rewriteGuardSeen =
                    rewriteGuardSeen || (entry.kind == Entry::Event && line.rfind(kRewriteCatch, 0) == 0);
            }

            // Memory again: the same entry point answers as before, on the same service.
            if (entry.kind == Entry::Factory || entry.kind == Entry::Startup) {
                hosted = PreparedFor(entry);
            }
            const Outcome again = Run(entry, hosted);
            EXPECT_EQ(again.Describe(), baseline.Describe());
            EXPECT_TRUE(CatchLines(again).empty());
            hosted.reset();
            // Fewer is no leak: a run may end a block the runtime kept (a cache, a per-thread
            // record) that the settled figure still counted.
            EXPECT_LE(LiveBlocks(), settled) << "blocks of the DLL left behind";
            if (HasFailure()) {
                ADD_FAILURE() << entry.name << ": allocation " << nth << " of the run: " << failed.Describe();
                return;
            }
            if (!reached) {
                break;
            }
            ++points;
        }
        EXPECT_GT(points, 0) << "no allocation was failed";
        EXPECT_EQ(eventGuardSeen, entry.kind == Entry::Event) << "the event task's own guard";
        EXPECT_EQ(rewriteGuardSeen, entry.kind == Entry::Event && !m_amd) << "the Intel re-write's own guard";
        if (entry.kind == Entry::Command) {
            EXPECT_EQ(ownCatchSeen, OwnGuardReachable(entry.command, m_amd))
                << "the handler's own guard: " << std::string(ownCatch.begin(), ownCatch.end());
        }
        std::printf("[oom] laptop=%s entry=%s allocation points failed: %d\n", Laptop(), entry.name, points);
    }
}

INSTANTIATE_TEST_SUITE_P(ShippedLaptops, OutOfMemory, kOnShippedLaptops, NameOnLaptop);

}  // namespace
