// Runs the OS fault table. Each row gets the shipped DLL freshly loaded with its imports
// patched, so that no state of an earlier row or run (a library the service keeps, a display
// the process remembers) plays a part, and:
// 1. runs its entry point once without a fault, in a DLL of its own: the answer every later
//    run must give again;
// 2. runs it in a freshly loaded DLL with the row's fault armed and checks the row's outcome: the service made
//    or the exception that left, status, response, every log line, the stored "OLED" value,
//    and that the failing call was reached at all;
// 3. runs it once more with the function working again and wants the first answer back;
// 4. destroys the service and unloads the DLL, and wants every block, registry key, device
//    information set and library reference the DLL took through its imports given back.
#include "EntryRun.h"
#include "HostedService.h"
#include "ImportHooks.h"
#include "OsFaultTable.h"
#include "Registry.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace LumavenOsFaults;
using LumavenTest::HostedService;

constexpr const char* kVendorLibraries[] = {"ControlLib.dll", "atiadlxx.dll", "atiadlxy.dll", "amdadlx64.dll"};

void InstallLaptop(Laptop laptop)
{
    // Rows run in table order; the profile is installed again only when the laptop changes.
    static std::optional<Laptop> installed;
    if (installed != laptop) {
        LumavenTest::InstallShippedProfile(laptop == Laptop::Intel ? "intel-laptop" : "amd-laptop");
        installed = laptop;
    }
}

void Arrange(Oled oled)
{
    switch (oled) {
    case Oled::Absent: LumavenTest::DeleteSettingsKey(); break;
    case Oled::Zero: LumavenTest::SetOledDword(0); break;
    case Oled::One: LumavenTest::SetOledDword(1); break;
    }
}

std::string Stored()
{
    if (!LumavenTest::SettingsKeyExists()) {
        return "no key";
    }
    const std::optional<DWORD> value = LumavenTest::OledDword();
    return value ? "OLED=" + std::to_string(*value) : "no OLED";
}

std::string Expected(Oled oled)
{
    switch (oled) {
    case Oled::Absent: return "no key";
    case Oled::Zero: return "OLED=0";
    case Oled::One: return "OLED=1";
    }
    return {};
}

std::string Lines(const std::vector<std::wstring>& lines)
{
    std::string text;
    for (const std::wstring& line : lines) {
        text += "\n  " + Narrow(line);
    }
    return text.empty() ? "\n  (none)" : text;
}

// What of an outcome must come back once the function works again: for a command its status
// and text, otherwise what it logged (the vendor found, the panel re-written).
std::string Answer(Entry entry, const Outcome& outcome)
{
    if (entry == Entry::Command) {
        return outcome.Describe();
    }
    return (outcome.created ? "created" : "refused") + (" " + outcome.Describe()) + Lines(outcome.logs);
}

// The test's own join of the multithreaded apartment, for the rows that run on a thread
// already in it; the service's leave takes it off again.
void Join(Apartment apartment)
{
    if (apartment == Apartment::JoinedOnce) {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    }
}

class OsFaults : public ::testing::TestWithParam<size_t> {
protected:
    void SetUp() override
    {
        DisarmAll();
        ForgetHeld();
    }
    void TearDown() override
    {
        DisarmAll();
        // A library reference a row made the service lose (its FreeLibrary failed) stays with
        // this process; it is dropped here so that the next row starts without it.
        for (const char* library : kVendorLibraries) {
            while (const HMODULE left = GetModuleHandleA(library)) {
                FreeLibrary(left);
            }
        }
    }
};

TEST_P(OsFaults, RowHolds)
{
    const OsFaultRow& row = OsFaultTable()[GetParam()];
    Hook* const hook = FindHook(row.function);
    ASSERT_NE(hook, nullptr) << row.function << " has no hook";
    Hook* const partner = row.counted != nullptr ? FindHook(row.counted) : nullptr;
    ASSERT_EQ(partner != nullptr, row.counted != nullptr) << row.counted << " has no hook";
    InstallLaptop(row.laptop);

    // 1. The answer without a fault, from a DLL of its own.
    Outcome baseline;
    {
        LoadedDll dll;
        ASSERT_TRUE(dll.Loaded());
        Arrange(row.before);
        std::unique_ptr<HostedService> hosted = Prepared(row.run);
        baseline = RunEntry(row.run, row.command, row.request, hosted);
        ASSERT_TRUE(baseline.returned) << baseline.Describe();
    }
    ForgetHeld();

    // 2. With the fault, in a DLL loaded afresh.
    LoadedDll dll;
    ASSERT_TRUE(dll.Loaded());
    const uint64_t mark = AllocationMark();
    Arrange(row.before);
    std::unique_ptr<HostedService> hosted = Prepared(row.run);
    // A row either fails the function, or only counts it, or only has it answer as a hostile
    // system may.
    const bool fails = row.counted == nullptr && row.classGuidCount == 0;
    hook->ResetCounts();
    if (partner != nullptr) {
        partner->ResetCounts();
    }
    if (fails) {
        hook->Arm(row.failure);
    }
    AnswerStringPropertiesAsArrays(row.propertyAsArray);
    AnswerClassGuidCount(row.classGuidCount);
    Join(row.apartment);
    const Outcome failed = RunEntry(row.run, row.command, row.request, hosted);
    const int calls = hook->Calls();
    const int failures = hook->Failed();
    const int partnerCalls = partner != nullptr ? partner->Calls() : 0;
    DisarmAll();
    SkipWaits();

    EXPECT_GT(calls, 0) << row.function << " was not called";
    if (fails) {
        EXPECT_GT(failures, 0) << row.function << " was not made to fail (" << calls << " calls)";
    }
    if (partner != nullptr) {
        EXPECT_EQ(calls, partnerCalls) << row.function << " against " << row.counted;
    }
    switch (row.run) {
    case Entry::Factory: EXPECT_EQ(failed.created, row.created); break;
    case Entry::Startup: EXPECT_EQ(failed.thrown, row.thrown); break;
    case Entry::Command:
        EXPECT_TRUE(failed.returned) << failed.Describe();
        EXPECT_EQ(failed.call.status, row.status) << failed.Describe();
        EXPECT_EQ(failed.call.hasResponse, row.response != nullptr) << failed.Describe();
        if (row.response != nullptr) {
            EXPECT_EQ(Narrow(failed.call.response), Narrow(row.response));
        }
        break;
    case Entry::Event: EXPECT_TRUE(failed.returned) << failed.Describe(); break;
    }
    EXPECT_EQ(failed.logs, row.logs) << "logged:" << Lines(failed.logs) << "\nexpected:" << Lines(row.logs);
    EXPECT_EQ(Stored(), Expected(row.after));

    // 3. The function works again: the same answer as before the fault.
    Arrange(row.before);
    if (row.run == Entry::Factory || row.run == Entry::Startup) {
        hosted = Prepared(row.run);
    }
    const Outcome again = RunEntry(row.run, row.command, row.request, hosted);
    EXPECT_EQ(Answer(row.run, again), Answer(row.run, baseline));
    hosted.reset();

    // 4. Unloaded, the DLL holds nothing it took during the row: what it allocated, and the
    // keys, device information sets and library references it was handed.
    dll.Unload();
    EXPECT_EQ(LiveBlocksSince(mark), std::vector<size_t>{}) << "blocks of the DLL left behind (their sizes)";
    const HeldHandles held = Held();
    EXPECT_EQ(held.keys, 0u) << "registry keys left open";
    EXPECT_EQ(held.deviceSets, 0u) << "device information sets left";
    EXPECT_EQ(held.libraries, row.keptLibraries) << "library references left";
}

std::string RowName(const ::testing::TestParamInfo<size_t>& info)
{
    const OsFaultRow& row = OsFaultTable()[info.param];
    std::string name = std::to_string(info.param) + "_" + row.function;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Table, OsFaults, ::testing::Range<size_t>(0, OsFaultTable().size()), RowName);

}  // namespace
