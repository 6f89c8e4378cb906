// The host logging library out of memory. A logger must never throw into the code that logs,
// least of all from an error path that is logging because memory ran short: a record that
// cannot be rendered is dropped whole, one whose file line cannot be built still reaches the
// in-process sink, and nothing is left allocated. The allocation functions of XeltoLog.dll
// fail one call after another, the 1st, then the 2nd, ... until a record gets through
// without reaching the failure; then the same record must arrive whole.
#include "ImportHooks.h"
#include "LogCapture.h"
#include "ProcessRunner.h"

#include "xelto/Logging.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;
using LumavenTest::LogCapture;

// Longer than a string's own small buffer, so that rendering it takes a block of the heap.
const std::wstring kArgument = L"an argument long enough to need the heap";

struct Form {
    const char* name;
    std::function<void()> log;
    std::wstring text;
};

std::vector<Form> Forms()
{
    TraceLogger* const logger = LogManager::GetLogger();
    return {
        {"LogInfo", [logger] { logger->LogInfo(L"info: %s", kArgument.c_str()); }, L"info: " + kArgument},
        {"LogError narrow", [logger] { logger->LogError("narrow error: %s", kArgument.c_str()); },
         L"narrow error: " + kArgument},
        {"LogError wide", [logger] { logger->LogError(L"wide error: %s", kArgument.c_str()); },
         L"wide error: " + kArgument},
        {"LogError data",
         [logger] {
             logger->LogError(LoggingData{L"data error: %s", 3, 0}, kArgument.c_str());
         },
         L"data error: " + kArgument},
        {"LogWarning data",
         [logger] {
             logger->LogWarning(LoggingData{L"warning: %s", 4, 0}, kArgument.c_str());
         },
         L"warning: " + kArgument},
    };
}

class LoggerMemory : public ::testing::Test {
protected:
    void SetUp() override
    {
        wchar_t directory[MAX_PATH];
        GetTempPathW(MAX_PATH, directory);
        m_path = std::wstring(directory) + L"xelto-log-memory.jsonl";
        SetEnvironmentVariableW(L"XELTO_LOG_FILE", m_path.c_str());
    }
    void TearDown() override
    {
        DisarmAll();
        SetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr);
        DeleteFileW(m_path.c_str());
    }

    size_t FileLines() const
    {
        std::ifstream in(m_path.c_str(), std::ios::binary);
        size_t lines = 0;
        for (std::string line; std::getline(in, line);) {
            ++lines;
        }
        return lines;
    }

    std::wstring m_path;
};

TEST_F(LoggerMemory, ARecordWithoutMemoryIsDroppedOrDeliveredWholeAndLeavesNothing)
{
    const HMODULE library = GetModuleHandleW(L"XeltoLog.dll");
    ASSERT_NE(library, nullptr);
    const PatchedImports patched(library);
    ASSERT_FALSE(patched.Patched().empty());
    // The first exception the library's runtime throws in a thread sets up that thread's
    // exception state for good (ten blocks that live until the thread ends); they are not a
    // record's, so one dropped record comes before the runs that count blocks.
    FailNthAllocation(1);
    Forms().front().log();
    FailNthAllocation(0);

    for (const Form& form : Forms()) {
        SCOPED_TRACE(form.name);
        int nth = 1;
        bool sinkDropped = false;
        bool fileDropped = false;
        for (;; ++nth) {
            DeleteFileW(m_path.c_str());
            LogCapture capture;
            const uint64_t mark = AllocationMark();
            FailNthAllocation(nth);
            form.log();
            const int calls = AllocationCalls();
            FailNthAllocation(0);
            const std::vector<std::wstring> texts = capture.Texts();
            const size_t lines = FileLines();
            ASSERT_LE(texts.size(), 1u) << "failing allocation " << nth;
            if (!texts.empty()) {
                EXPECT_EQ(texts[0], form.text) << "failing allocation " << nth;
            }
            // The sink is served before the file line is built: a file line without the
            // sink's record would mean a record rendered twice.
            EXPECT_LE(lines, texts.size()) << "failing allocation " << nth;
            EXPECT_TRUE(LiveBlocksSince(mark).empty()) << "failing allocation " << nth;
            if (calls < nth) {
                EXPECT_EQ(texts.size(), 1u);
                EXPECT_EQ(lines, 1u);
                break;
            }
            sinkDropped = sinkDropped || texts.empty();
            fileDropped = fileDropped || (!texts.empty() && lines == 0);
            ASSERT_LT(nth, 100) << "the record never got through";
        }
        // Both ways of losing a record happened: while rendering (nothing reaches anyone) and
        // while building the file's line (only the sink has it).
        EXPECT_TRUE(sinkDropped);
        EXPECT_TRUE(fileDropped);
        EXPECT_GT(nth, 2);
    }
}

// The library's first call in a process sets up what it keeps for the process's life (its
// hub of sinks among them). That first call may come when memory is already short, from the
// error path that reports it: it must drop its record, not crash, and the library must work
// once memory is back. Any earlier record would have set things up, so a run of the whole
// suite runs this case again in a process of its own.
TEST_F(LoggerMemory, TheFirstCallOfAProcessWithoutMemoryDropsItsRecord)
{
    if (::testing::UnitTest::GetInstance()->test_to_run_count() != 1) {
        const auto child = LumavenTest::RunProgram(
            L"os_fault_tests.exe --gtest_filter=LoggerMemory.TheFirstCallOfAProcessWithoutMemoryDropsItsRecord");
        EXPECT_EQ(child.exitCode, 0u) << child.output;
        EXPECT_NE(child.output.find("[  PASSED  ] 1 test."), std::string::npos) << child.output;
        return;
    }
    const HMODULE library = GetModuleHandleW(L"XeltoLog.dll");
    ASSERT_NE(library, nullptr);
    const PatchedImports patched(library);
    for (int nth = 1; nth <= 3; ++nth) {
        FailNthAllocation(nth);
        LogManager::GetLogger()->LogInfo(L"first: %s", kArgument.c_str());
        FailNthAllocation(0);
    }
    EXPECT_EQ(FileLines(), 0u);
    LogManager::GetLogger()->LogInfo(L"second: %s", kArgument.c_str());
    EXPECT_EQ(FileLines(), 1u);
}

}  // namespace
