// The reliability suites pass only if their checks can fail: each check is shown here to
// catch the fault it is there for, on made-up input, and the watchdog to end a hung run.
#include "AuxSequenceCheck.h"
#include "CommandOutcome.h"
#include "ProcessRunner.h"
#include "Registry.h"
#include "RequestFuzzer.h"
#include "RunSettings.h"
#include "Watchdog.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace LumavenReliability;

namespace {

std::string IntelAux(const char* op, unsigned address, const char* data)
{
    return Format("{\"lib\":\"ControlLib\",\"call\":\"ctlAUXAccess\",\"adapter\":0,\"output\":0,\"op\":\"%s\","
                  "\"flags\":1,\"address\":%u,\"size\":%zu,\"data\":\"%s\",\"result\":0}",
                  op, address, std::string(data).size() / 2, data);
}

std::string AmdAux(unsigned address, const char* bytes)
{
    return Format("{\"lib\":\"atiadlxx.dll\",\"call\":\"ADL2_Display_NativeAUXChannel_Access\",\"adapter\":0,"
                  "\"display\":0,\"size\":36,\"auxStatus\":0,\"command\":1,\"address\":%u,\"dataSize\":%zu,"
                  "\"bytes\":\"%s\",\"result\":0}",
                  address, std::string(bytes).size() / 2, bytes);
}

const std::string kAdlCreate = "{\"lib\":\"atiadlxx.dll\",\"call\":\"ADL2_Main_Control_Create\",\"result\":0}";
const std::string kAdlDestroy = "{\"lib\":\"atiadlxx.dll\",\"call\":\"ADL2_Main_Control_Destroy\",\"result\":0}";
const std::string kCtlInit = "{\"lib\":\"ControlLib\",\"call\":\"ctlInit\",\"result\":0}";
const std::string kCtlClose = "{\"lib\":\"ControlLib\",\"call\":\"ctlClose\",\"result\":0}";

std::vector<std::string> AmdSequence(bool on)
{
    std::vector<std::string> records{kAdlCreate};
    for (const AuxWrite& write :
         on ? SequencesOf(LumavenSim::Panels::kSdc416C.id).on : SequencesOf(LumavenSim::Panels::kSdc416C.id).off) {
        records.push_back(AmdAux(write.address, write.bytes.c_str()));
    }
    records.push_back(kAdlDestroy);
    return records;
}

AuxTally Check(const std::vector<std::string>& records, const Laptop& laptop)
{
    AuxTally tally;
    CheckAuxLog(LumavenSim::TransactionLog(records), laptop.panelId, laptop.channel, tally);
    return tally;
}

FuzzRequest Request(uint32_t command, const wchar_t* text)
{
    FuzzRequest request;
    request.command = command;
    request.text = text;
    return request;
}

XeltoClient::Reply Answer(uint32_t status, const wchar_t* response)
{
    XeltoClient::Reply outcome;
    outcome.status = status;
    outcome.outStringWritten = true;
    outcome.hasResponse = response != nullptr;
    outcome.response = response != nullptr ? response : L"";
    return outcome;
}

}  // namespace

TEST(AuxLogCheck, AcceptsWholeSequencesOneAfterTheOther)
{
    std::vector<std::string> records = AmdSequence(true);
    const std::vector<std::string> off = AmdSequence(false);
    records.insert(records.end(), off.begin(), off.end());
    const AuxTally tally = Check(records, kAmdLaptop);
    EXPECT_EQ(tally.violations, 0u) << JoinLines(tally.firstViolations);
    EXPECT_EQ(tally.onSequences, 1u);
    EXPECT_EQ(tally.offSequences, 1u);
    EXPECT_EQ(tally.sessions, 2u);
}

TEST(AuxLogCheck, FindsTwoSequencesInterleaved)
{
    const std::vector<std::string> on = AmdSequence(true);
    const std::vector<std::string> off = AmdSequence(false);
    // Two writers whose writes alternate, each inside its own session.
    std::vector<std::string> records{kAdlCreate, kAdlCreate};
    for (size_t i = 1; i + 1 < on.size(); ++i) {
        records.push_back(on[i]);
        records.push_back(off[i]);
    }
    records.push_back(kAdlDestroy);
    records.push_back(kAdlDestroy);
    const AuxTally tally = Check(records, kAmdLaptop);
    EXPECT_GT(tally.violations, 0u);
    EXPECT_EQ(tally.onSequences + tally.offSequences, 0u);
}

TEST(AuxLogCheck, FindsASequenceCutShort)
{
    std::vector<std::string> records = AmdSequence(true);
    records.erase(records.end() - 2);  // the last write
    EXPECT_GT(Check(records, kAmdLaptop).violations, 0u);
}

TEST(AuxLogCheck, FindsWritesThatAreNoSequenceOfTheFittedPanel)
{
    const std::vector<std::string> records{kAdlCreate,           AmdAux(0x045C, "06"), AmdAux(0x0454, "18"),
                                           AmdAux(0x0453, "41"), AmdAux(0x045A, "80"), AmdAux(0x045B, "40"),
                                           kAdlDestroy};
    EXPECT_GT(Check(records, kAmdLaptop).violations, 0u);
}

TEST(AuxLogCheck, WantsTheIntelReadBackRightAfterTheSequence)
{
    const AuxTally good =
        Check({kCtlInit, IntelAux("write", 0x4027, "C0"), IntelAux("read", 0x4027, "C0"), kCtlClose}, kIntelLaptop);
    EXPECT_EQ(good.violations, 0u) << JoinLines(good.firstViolations);
    EXPECT_EQ(good.onSequences, 1u);

    const AuxTally missing = Check({kCtlInit, IntelAux("write", 0x4027, "C0"), kCtlClose}, kIntelLaptop);
    EXPECT_GT(missing.violations, 0u);
    // A second writer slipped in between the write and its read-back.
    const AuxTally between = Check({kCtlInit, IntelAux("write", 0x4027, "C0"), IntelAux("write", 0x4027, "00"),
                                    IntelAux("read", 0x4027, "00"), IntelAux("read", 0x4027, "00"), kCtlClose},
                                   kIntelLaptop);
    EXPECT_GT(between.violations, 0u);
}

TEST(AuxLogCheck, FindsOverlappingOrUnclosedSessions)
{
    EXPECT_GT(Check({kCtlInit, kCtlInit, kCtlClose, kCtlClose}, kIntelLaptop).violations, 0u);
    EXPECT_GT(Check({kCtlInit}, kIntelLaptop).violations, 0u);
    EXPECT_GT(Check({kCtlClose}, kIntelLaptop).violations, 0u);
    EXPECT_EQ(Check({kCtlInit, kCtlClose, kCtlInit, kCtlClose}, kIntelLaptop).violations, 0u);
}

TEST(ResponseCheck, AcceptsOnlyOneObjectOfResultAndBValueMembers)
{
    EXPECT_EQ(CheckResponseText(L"{}"), "");
    EXPECT_EQ(CheckResponseText(L"{\"result\":true,\"result\":false}"), "");
    EXPECT_EQ(CheckResponseText(L"{\"result\":-1}"), "");
    EXPECT_NE(CheckResponseText(L"{\"result\":true"), "");
    EXPECT_NE(CheckResponseText(L"{}{}"), "");
    EXPECT_NE(CheckResponseText(L"[]"), "");
    EXPECT_NE(CheckResponseText(L"{\"other\":true}"), "");
    EXPECT_NE(CheckResponseText(L"{\"result\":\"true\"}"), "");
    EXPECT_NE(CheckResponseText(L"{\"result\":" + std::wstring(65530, L'1') + L"}"), "");
}

TEST(ResponseCheck, HoldsEachCallToTheArgumentRules)
{
    EXPECT_EQ(CheckOutcome(Request(7, L"{}"), true, Answer(0, L"{\"result\":0}")), "");
    EXPECT_NE(CheckOutcome(Request(7, L"{}"), true, Answer(0x20000007, L"{}")), "") << "undefined status";
    EXPECT_NE(CheckOutcome(Request(7, L"{"), false, Answer(0, L"{}")), "") << "malformed answered as fine";
    EXPECT_NE(CheckOutcome(Request(7, L"{"), false, Answer(0x20000003, L"{}")), "") << "malformed with a response";
    EXPECT_EQ(CheckOutcome(Request(7, L"{"), false, Answer(0x20000003, nullptr)), "");
    EXPECT_NE(CheckOutcome(Request(15, L"{}"), true, Answer(0, L"{}")), "") << "unknown command answered";
    EXPECT_NE(CheckOutcome(Request(4, L"{}"), true, Answer(0x20000001, L"{}")), "") << "known command refused";
    EXPECT_NE(CheckOutcome(Request(4, L"{}"), true, Answer(0, nullptr)), "") << "no response";

    FuzzRequest nullMessage = Request(7, L"{}");
    nullMessage.nullMessage = true;
    XeltoClient::Reply untouched;
    untouched.status = 0x20000002;
    EXPECT_EQ(CheckOutcome(nullMessage, true, untouched), "");
    EXPECT_NE(CheckOutcome(nullMessage, true, Answer(0x20000002, nullptr)), "") << "*outString was changed";

    XeltoClient::Reply called = Answer(0, L"{}");
    called.callbackCalls = 1;
    EXPECT_NE(CheckOutcome(Request(7, L"{}"), true, called), "") << "the callback must not be called";
}

TEST(ResponseCheck, AcceptsOnlyAnAbsentZeroOrOneOled)
{
    LumavenTest::DeleteSettingsKey();
    EXPECT_EQ(CheckOledValue(), "");
    LumavenTest::SetOledDword(1);
    EXPECT_EQ(CheckOledValue(), "");
    LumavenTest::SetOledDword(2);
    EXPECT_NE(CheckOledValue(), "");
    LumavenTest::SetOledString(L"1");
    EXPECT_NE(CheckOledValue(), "");
    LumavenTest::DeleteSettingsKey();
}

TEST(Fuzzer, RepeatsItselfForTheSameSeedOnly)
{
    RequestFuzzer first(42);
    RequestFuzzer again(42);
    RequestFuzzer other(43);
    int differences = 0;
    for (int i = 0; i < 500; ++i) {
        const FuzzRequest a = first.Next();
        const FuzzRequest b = again.Next();
        const FuzzRequest c = other.Next();
        ASSERT_EQ(a.text, b.text) << "request " << i;
        ASSERT_EQ(a.command, b.command);
        ASSERT_EQ(a.shape, b.shape);
        differences += a.text != c.text ? 1 : 0;
    }
    EXPECT_GT(differences, 250);
}

TEST(Fuzzer, KeepsThePromiseOfEachShapeAndCoversTheHardCases)
{
    RequestFuzzer fuzzer(RunSeed());
    bool nulInside = false;
    bool loneSurrogate = false;
    size_t longest = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::wstring malformed = fuzzer.MalformedText();
        ASSERT_FALSE(IsWellFormedJson(malformed)) << Preview(malformed);
        const std::wstring wellFormed = fuzzer.WellFormedText();
        ASSERT_TRUE(IsWellFormedJson(wellFormed)) << Preview(wellFormed);
        for (const std::wstring* text : {&malformed, &wellFormed}) {
            nulInside |= text->find(L'\0') != std::wstring::npos;
            for (const wchar_t unit : *text) {
                loneSurrogate |= unit >= 0xD800 && unit <= 0xDFFF;
            }
            longest = std::max(longest, text->size());
        }
    }
    EXPECT_TRUE(nulInside);
    EXPECT_TRUE(loneSurrogate);
    EXPECT_GT(longest, 100000u);

    uint64_t shapes[static_cast<size_t>(RequestShape::Count)] = {};
    for (int i = 0; i < 20000; ++i) {
        ++shapes[static_cast<size_t>(fuzzer.Next().shape)];
    }
    for (size_t shape = 0; shape < static_cast<size_t>(RequestShape::Count); ++shape) {
        EXPECT_GT(shapes[shape], 0u) << ShapeName(static_cast<RequestShape>(shape));
    }
}

// Run only as a child process by the next test: two threads that take two locks in opposite
// orders deadlock, and the watchdog must end the process.
TEST(WatchdogProbe, DISABLED_DeadlockEndsTheProcess)
{
    const Watchdog watchdog(std::chrono::seconds(1), "deadlock probe");
    static std::mutex first;
    static std::mutex second;
    static std::atomic<int> holding{0};
    static std::atomic<int> finished{0};
    const auto worker = [](std::mutex& a, std::mutex& b) {
        const std::lock_guard holdA(a);
        ++holding;
        while (holding < 2) {
            std::this_thread::yield();
        }
        const std::lock_guard holdB(b);
        ++finished;
    };
    std::thread(worker, std::ref(first), std::ref(second)).detach();
    std::thread(worker, std::ref(second), std::ref(first)).detach();
    for (int i = 0; i < 300 && finished < 2; ++i) {
        Sleep(100);
    }
    ADD_FAILURE() << "the watchdog let a deadlocked run go on";
}

TEST(Watchdog, EndsAHungRunWithAFailureCode)
{
    const LumavenTest::ProcessResult result =
        LumavenTest::RunProgram(L"reliability_tests.exe --gtest_also_run_disabled_tests "
                                L"--gtest_filter=WatchdogProbe.DISABLED_DeadlockEndsTheProcess");
    EXPECT_EQ(result.exitCode, kHangExitCode) << result.output;
    EXPECT_NE(result.output.find("hangs=1"), std::string::npos) << result.output;
}
