// A GoogleTest program that misbehaves on request, for the test runner's own check: each
// test below ends the process in one of the ways that a broken suite can end it. Run alone
// with --gtest_filter, every one except Probe.Passes must be reported as a failed run.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

namespace {

// Reads through a null pointer when the process exits, after GoogleTest has written its
// report, if a test asked for it: a crash that only the exit code can show.
struct CrashAtExit {
    bool armed = false;
    ~CrashAtExit()
    {
        if (armed) {
            volatile int* nowhere = nullptr;
            *nowhere = 1;
        }
    }
} g_crashAtExit;

TEST(Probe, Passes)
{
    EXPECT_EQ(2 + 2, 4);
}

TEST(Probe, Fails)
{
    EXPECT_EQ(2 + 2, 5);
}

TEST(Probe, CrashesOnNullRead)
{
    volatile int* nowhere = nullptr;
    EXPECT_EQ(*nowhere, 0);
}

TEST(Probe, ExitsEarlyWithZero)
{
    std::exit(0);
}

TEST(Probe, TerminatesWithZero)
{
    TerminateProcess(GetCurrentProcess(), 0);
}

TEST(Probe, CrashesAtExit)
{
    g_crashAtExit.armed = true;
}

TEST(Probe, Hangs)
{
    Sleep(INFINITE);
}

// The heap check's own check (scripts/heapcheck.sh): two misuses of the process heap that
// end well as far as GoogleTest can see, and that Wine's heap checking must report.
TEST(Probe, FreesTwice)
{
    const HANDLE heap = GetProcessHeap();
    void* block = HeapAlloc(heap, 0, 24);
    ASSERT_NE(block, nullptr);
    HeapFree(heap, 0, block);
    HeapFree(heap, 0, block);
}

TEST(Probe, WritesAfterFree)
{
    const HANDLE heap = GetProcessHeap();
    auto* block = static_cast<volatile char*>(HeapAlloc(heap, 0, 24));
    ASSERT_NE(block, nullptr);
    HeapFree(heap, 0, const_cast<char*>(block));
    block[0] = 1;
    block[8] = 2;
    HeapValidate(heap, 0, nullptr);
}

}  // namespace
