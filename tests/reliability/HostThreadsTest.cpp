// Eight host threads send a mix of every command and display-power events at once. Nothing
// may crash or hang (a watchdog ends the process with a failure code), every call keeps the
// rules, and the fake driver's log must show the panel's AUX sequences one after the other,
// never interleaved, inside vendor sessions that never overlap.
//
// One combination is left out on the AMD laptop: command 10 takes m_mutex and then
// m_adlxMutex there, while commands 11 and 12 take m_adlxMutex and then m_mutex. The two
// orders are kept as the service defines them, so a host that ran 10 beside 11 or 12 could
// deadlock; these threads never run command 10 while 11 or 12 runs, and the reverse.
#include "AuxSequenceCheck.h"
#include "CommandOutcome.h"
#include "HostedService.h"
#include "Laptops.h"
#include "LogLineCounter.h"
#include "Registry.h"
#include "RunSettings.h"
#include "SimMachine.h"
#include "SimState.h"
#include "Watchdog.h"
#include "Workload.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

using namespace LumavenReliability;

namespace {

constexpr unsigned kThreads = 8;
// Commands per thread between two looks at the transaction log.
constexpr uint64_t kRoundLength = 250;
// A round of 8 x 250 commands takes well under a minute on the simulated laptop.
constexpr std::chrono::minutes kRoundBound{5};

// Shares per 1,000 operations: fuzzed requests (mostly cheap), commands that reach a vendor
// path, and display-power events (on top of the commands counted per thread).
constexpr WorkloadMix kThreadMix{500, 380, 120};

// Lets command 10 and commands 11/12 run beside anything but each other.
class OppositeLockOrderGate {
public:
    // 0 for command 10, 1 for commands 11 and 12, -1 for the others.
    static int Side(uint32_t command) { return command == 10 ? 0 : (command == 11 || command == 12) ? 1 : -1; }

    void Enter(int side)
    {
        std::unique_lock guard(m_lock);
        m_free.wait(guard, [&] { return m_active[1 - side] == 0; });
        ++m_active[side];
    }
    void Leave(int side)
    {
        {
            const std::lock_guard guard(m_lock);
            --m_active[side];
        }
        m_free.notify_all();
    }

private:
    std::mutex m_lock;
    std::condition_variable m_free;
    int m_active[2] = {0, 0};
};

struct ThreadFigures {
    std::atomic<uint64_t> commands{0};
    std::atomic<uint64_t> vendorCommands{0};
    std::atomic<uint64_t> events{0};
};

}  // namespace

class HostThreads : public ::testing::TestWithParam<Laptop> {};

TEST_P(HostThreads, EightThreadsNeitherHangNorInterleavePanelWrites)
{
    const Laptop& laptop = GetParam();
    const bool amd = IsAmd(laptop);
    const uint64_t perThread = ChosenCount(300, 5000, "LUMAVEN_THREAD_COMMANDS");
    // Display-on notifications per thread that may re-apply the panel state (500 ms each,
    // under the service's lock).
    const uint64_t displayOnBudget = ChosenCount(2, 12, nullptr);
    LumavenTest::InstallShippedProfile(laptop.profile);
    LumavenTest::DeleteSettingsKey();
    LumavenTest::HostedService host;
    ASSERT_TRUE(host.Created());
    LumavenSim::ClearTransactions();
    const LogLineCounter lines({kReapplyLine});

    std::vector<Workload> workloads;
    for (unsigned thread = 0; thread < kThreads; ++thread) {
        workloads.emplace_back(DeriveSeed(RunSeed(), 200 + thread * 2 + static_cast<uint64_t>(laptop.channel)),
                               kThreadMix, displayOnBudget);
    }
    OppositeLockOrderGate gate;
    OutcomeTally tally;
    OledWatch oled;
    AuxTally aux;
    ThreadFigures figures;
    const Stopwatch clock;
    const uint64_t rounds = (perThread + kRoundLength - 1) / kRoundLength;
    for (uint64_t round = 0; round < rounds; ++round) {
        const uint64_t length = std::min(kRoundLength, perThread - round * kRoundLength);
        {
            const Watchdog watchdog(kRoundBound, Format("host threads round %llu on %s",
                                                        static_cast<unsigned long long>(round), laptop.profile));
            std::vector<std::thread> threads;
            for (unsigned thread = 0; thread < kThreads; ++thread) {
                threads.emplace_back([&, thread] {
                    // `length` commands, with the events the mix puts between them.
                    for (uint64_t done = 0; done < length;) {
                        const Operation operation = workloads[thread].Next();
                        if (operation.isEvent) {
                            ++figures.events;
                            host.Deliver(operation.setting, operation.data);
                            continue;
                        }
                        const FuzzRequest& request = operation.request;
                        const int side = amd ? OppositeLockOrderGate::Side(request.command) : -1;
                        if (side >= 0) {
                            gate.Enter(side);
                        }
                        ++done;
                        const uint64_t index = figures.commands++;
                        const CheckedCall call = RunChecked(host.Service(), request, index, tally);
                        if (side >= 0) {
                            gate.Leave(side);
                        }
                        if (request.shape == RequestShape::VendorPath) {
                            ++figures.vendorCommands;
                        }
                        if (call.reachedHandler && MayStoreOled(request.command)) {
                            oled.Check(Format("request #%llu: ", static_cast<unsigned long long>(index)) +
                                       Describe(request));
                        }
                    }
                });
            }
            for (std::thread& thread : threads) {
                thread.join();
            }
        }
        CheckAndClearAuxLog(laptop, aux);
    }

    PrintSummary("threads",
                 Format("laptop=%s seed=%llu threads=%u per-thread=%llu commands=%llu vendor-path=%llu events=%llu "
                        "reapplies=%llu excluded=%s statuses=%s problems=%llu oled-problems=%llu %s crashes=0 hangs=0 "
                        "watchdog=%llds-per-%llu-commands-a-thread elapsed=%.1fs",
                        laptop.profile, static_cast<unsigned long long>(RunSeed()), kThreads,
                        static_cast<unsigned long long>(perThread), static_cast<unsigned long long>(figures.commands),
                        static_cast<unsigned long long>(figures.vendorCommands),
                        static_cast<unsigned long long>(figures.events),
                        static_cast<unsigned long long>(lines.Count(0)), amd ? "10-beside-11/12" : "none",
                        tally.Statuses().c_str(), static_cast<unsigned long long>(tally.Problems()),
                        static_cast<unsigned long long>(oled.Problems()), aux.Figures().c_str(),
                        static_cast<long long>(std::chrono::seconds(kRoundBound).count()),
                        static_cast<unsigned long long>(kRoundLength), clock.Seconds()));

    EXPECT_EQ(figures.commands.load(), kThreads * perThread);
    EXPECT_EQ(tally.Problems(), 0u) << JoinLines(tally.FirstProblems());
    EXPECT_EQ(oled.Problems(), 0u) << JoinLines(oled.FirstProblems());
    EXPECT_EQ(aux.violations, 0u) << JoinLines(aux.firstViolations);
    EXPECT_GT(aux.onSequences + aux.offSequences, 0u) << "no command reached the panel: the run proves nothing";
    EXPECT_LE(lines.Count(0), kThreads * displayOnBudget);
}

INSTANTIATE_TEST_SUITE_P(ShippedLaptops, HostThreads, ::testing::Values(kIntelLaptop, kAmdLaptop), LaptopTestName());
