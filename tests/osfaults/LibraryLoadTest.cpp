// Where the vendor libraries are looked for is part of the service's safety: a library found
// in the current folder or on PATH could be anyone's. Each library is asked for exactly as the
// service must ask: the Intel control library from System32 only (LOAD_LIBRARY_SEARCH_SYSTEM32),
// ADLX from the application's folder, the added folders, System32 and the default folders
// (0x1E00), the ADL library by its bare name through LoadLibraryW, and never with a file handle.
#include "EntryRun.h"
#include "ImportHooks.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;

// The flags typed from their documented values, not the SDK's symbols.
constexpr DWORD kSearchSystem32 = 0x00000800;
constexpr DWORD kAdlxSearch = 0x00001E00;

std::vector<LibraryLoad> LoadsOfCommand(const char* laptop, uint32_t command, const wchar_t* request)
{
    LumavenTest::InstallShippedProfile(laptop);
    LoadedDll dll;
    EXPECT_TRUE(dll.Loaded());
    std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(Entry::Command);
    ForgetLibraryLoads();
    const Outcome outcome = RunEntry(Entry::Command, command, request, hosted);
    EXPECT_TRUE(outcome.returned) << outcome.Describe();
    return LibraryLoads();
}

TEST(LibraryLoad, TheIntelControlLibraryComesFromSystem32Only)
{
    EXPECT_EQ(LoadsOfCommand("intel-laptop", 1, L"{}"),
              (std::vector<LibraryLoad>{{L"ControlLib.dll", false, kSearchSystem32}}));
}

TEST(LibraryLoad, AdlxIsSearchedForInTheTrustedFoldersOnly)
{
    EXPECT_EQ(LoadsOfCommand("amd-laptop", 10, L"{}"),
              (std::vector<LibraryLoad>{{L"amdadlx64.dll", false, kAdlxSearch}}));
}

TEST(LibraryLoad, TheAdlLibraryIsAskedForByItsName)
{
    EXPECT_EQ(LoadsOfCommand("amd-laptop", 9, L"{\"BValue\":true}"),
              (std::vector<LibraryLoad>{{L"atiadlxx.dll", false, 0}}));
}

}  // namespace
