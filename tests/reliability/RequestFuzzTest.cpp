// At least 100,000 seeded requests per laptop: random and mutated JSON, command numbers 0 to
// 20 and null pointers. Every call must answer a defined status under the argument rules with
// a well-formed response, the stored "OLED" value must stay absent, 0 or 1, and the panel must
// only ever receive whole sequences of its table.
#include "AuxSequenceCheck.h"
#include "CommandOutcome.h"
#include "HostedService.h"
#include "Laptops.h"
#include "LogLineCounter.h"
#include "Registry.h"
#include "RequestFuzzer.h"
#include "RunSettings.h"
#include "SimMachine.h"
#include "SimState.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <array>

using namespace LumavenReliability;

class RequestFuzz : public ::testing::TestWithParam<Laptop> {};

TEST_P(RequestFuzz, EveryRequestIsAnsweredByTheRulesAndThePanelGetsOnlyWholeSequences)
{
    const Laptop& laptop = GetParam();
    const uint64_t requests = ChosenCount(100000, 100000, "LUMAVEN_FUZZ_REQUESTS");
    LumavenTest::InstallShippedProfile(laptop.profile);
    LumavenTest::DeleteSettingsKey();
    LumavenTest::HostedService host;
    ASSERT_TRUE(host.Created());
    LumavenSim::ClearTransactions();
    const LogLineCounter lines({});

    RequestFuzzer fuzzer(DeriveSeed(RunSeed(), 100 + static_cast<uint64_t>(laptop.channel)));
    OutcomeTally tally;
    AuxTally aux;
    std::array<uint64_t, static_cast<size_t>(RequestShape::Count)> shapes{};
    uint64_t handled = 0;
    OledWatch oled;
    const Stopwatch clock;
    for (uint64_t index = 0; index < requests; ++index) {
        const FuzzRequest request = fuzzer.Next();
        ++shapes[static_cast<size_t>(request.shape)];
        if (RunChecked(host.Service(), request, index, tally).reachedHandler) {
            ++handled;
            if (MayStoreOled(request.command)) {
                oled.Check(Format("request #%llu: ", static_cast<unsigned long long>(index)) + Describe(request));
            }
        }
        if ((index + 1) % 5000 == 0) {
            CheckAndClearAuxLog(laptop, aux);
        }
    }
    CheckAndClearAuxLog(laptop, aux);
    const bool heapValid = HeapValidate(GetProcessHeap(), 0, nullptr) != FALSE;

    std::string figures = Format("laptop=%s seed=%llu requests=%llu", laptop.profile,
                                 static_cast<unsigned long long>(RunSeed()), static_cast<unsigned long long>(requests));
    for (size_t shape = 0; shape < shapes.size(); ++shape) {
        figures += Format(" %s=%llu", ShapeName(static_cast<RequestShape>(shape)),
                          static_cast<unsigned long long>(shapes[shape]));
    }
    figures += Format(" reached-handler=%llu statuses=%s problems=%llu oled-problems=%llu %s log-lines=%llu heap=%s "
                      "crashes=0 elapsed=%.1fs",
                      static_cast<unsigned long long>(handled), tally.Statuses().c_str(),
                      static_cast<unsigned long long>(tally.Problems()),
                      static_cast<unsigned long long>(oled.Problems()), aux.Figures().c_str(),
                      static_cast<unsigned long long>(lines.Lines()), heapValid ? "valid" : "CORRUPT", clock.Seconds());
    PrintSummary("fuzz", figures);

    EXPECT_EQ(tally.Problems(), 0u) << "repeat with LUMAVEN_SEED=" << RunSeed() << JoinLines(tally.FirstProblems());
    EXPECT_EQ(oled.Problems(), 0u) << JoinLines(oled.FirstProblems());
    EXPECT_EQ(aux.violations, 0u) << JoinLines(aux.firstViolations);
    EXPECT_GT(aux.onSequences + aux.offSequences, 0u) << "no request reached the panel: the run proves nothing";
    EXPECT_TRUE(heapValid);
    EXPECT_TRUE(CheckOledValue().empty()) << CheckOledValue();
}

INSTANTIATE_TEST_SUITE_P(ShippedLaptops, RequestFuzz, ::testing::Values(kIntelLaptop, kAmdLaptop), LaptopTestName());
