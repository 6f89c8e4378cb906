// How the service asks the system, call by call. A working system answers most of these calls
// the same whatever their flags, counts or order, so only the trace of what the service asked
// can tell a wrong argument or a step out of place.
#include "CallTrace.h"
#include "EntryRun.h"
#include "ImportHooks.h"
#include "Registry.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace LumavenOsFaults;

// The calls an entry point made, traced from the moment it was entered.
// The setting as the entry point finds it: a value, or no key at all.
std::vector<std::wstring> TraceOf(const char* laptop, Entry entry, uint32_t command, const wchar_t* request,
                                  std::optional<DWORD> oled = 0)
{
    LumavenTest::InstallShippedProfile(laptop);
    LoadedDll dll;
    EXPECT_TRUE(dll.Loaded());
    std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(entry);
    if (oled) {
        LumavenTest::SetOledDword(*oled);
    } else {
        LumavenTest::DeleteSettingsKey();
    }
    SkipWaits();
    TraceCalls(true);
    const Outcome outcome = RunEntry(entry, command, request, hosted);
    std::vector<std::wstring> calls = TracedCalls();
    DisarmAll();
    EXPECT_TRUE(outcome.returned) << outcome.Describe();
    return calls;
}

std::wstring NameOf(const std::wstring& call)
{
    return call.substr(0, call.find(L'('));
}

std::vector<std::wstring> Only(const std::vector<std::wstring>& calls, const std::set<std::wstring>& names)
{
    std::vector<std::wstring> kept;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(kept),
                 [&](const std::wstring& call) { return names.count(NameOf(call)) != 0; });
    return kept;
}

// The position of the first call that begins with `start`; the count of calls when none does.
size_t First(const std::vector<std::wstring>& calls, const std::wstring& start)
{
    return static_cast<size_t>(
        std::find_if(calls.begin(), calls.end(), [&](const std::wstring& call) { return call.rfind(start, 0) == 0; }) -
        calls.begin());
}

// The documented values, typed here rather than taken from the SDK's symbols.
constexpr wchar_t kWbemLocatorClass[] = L"{4590F811-1D3A-11D0-891F-00AA004B2E24}";
constexpr wchar_t kWbemLocatorInterface[] = L"{DC12A687-737F-11CF-884D-00AA004B2E24}";

TEST(CallTrace, TheVendorQueryAsksWmiWithTheDocumentedArguments)
{
    const std::vector<std::wstring> calls = TraceOf("intel-laptop", Entry::Startup, 0, L"{}");
    const std::wstring locator =
        std::wstring(L"CoCreateInstance(") + kWbemLocatorClass + L", null, 1, " + kWbemLocatorInterface + L", ptr)";
    EXPECT_EQ(Only(calls, {L"CoInitializeEx", L"CoInitializeSecurity", L"CoCreateInstance",
                           L"IWbemLocator::ConnectServer", L"CoSetProxyBlanket", L"IWbemServices::ExecQuery",
                           L"IEnumWbemClassObject::Next", L"IWbemClassObject::Get", L"CoUninitialize"}),
              (std::vector<std::wstring>{
                  // A multithreaded apartment (COINIT_MULTITHREADED 0).
                  L"CoInitializeEx(null, 0)",
                  // No descriptor, the default services (-1), default authentication level (0),
                  // impersonation (3), no capabilities.
                  L"CoInitializeSecurity(null, -1, null, null, 0, 3, null, 0, null)",
                  // In-process server (CLSCTX_INPROC_SERVER 1).
                  locator,
                  // The namespace, no user, password, locale or authority, flags 0, no context.
                  L"IWbemLocator::ConnectServer(\"ROOT\\CIMV2\", null, null, null, 0, null, null, ptr)",
                  // NTLM (10), no authorisation service (0), packet level per call (3),
                  // impersonation (3), no capabilities.
                  L"CoSetProxyBlanket(ptr, 10, 0, null, 3, 3, null, 0)",
                  // Forward only and return immediately (0x10 | 0x20).
                  L"IWbemServices::ExecQuery(\"WQL\", \"SELECT * FROM Win32_VideoController\", 48, null, ptr)",
                  // No time-out (WBEM_INFINITE), one object at a time.
                  L"IEnumWbemClassObject::Next(-1, 1, ptr, ptr)",
                  L"IWbemClassObject::Get(\"Name\", 0, ptr, null, null)",
                  L"IEnumWbemClassObject::Next(-1, 1, ptr, ptr)",
                  L"CoUninitialize()",
              }));
}

// The session ends before the setting is stored: the store runs, and may fail, with the
// control library already given back.
TEST(CallTrace, AnIntelCommandGivesTheLibraryBackBeforeItStoresTheSetting)
{
    const std::vector<std::wstring> calls = TraceOf("intel-laptop", Entry::Command, 2, L"{}");
    const size_t released = First(calls, L"FreeLibrary(ControlLib.dll)");
    const size_t stored = First(calls, L"RegSetValueExW(ptr, \"OLED\", 0, 4, ptr, 4)");
    ASSERT_LT(released, calls.size()) << "the control library was not given back";
    ASSERT_LT(stored, calls.size()) << "the setting was not stored";
    EXPECT_LT(released, stored);
}

const std::set<std::wstring> kRegistryCalls{L"RegOpenKeyExW", L"RegCreateKeyExW", L"RegSetValueExW",
                                            L"RegQueryValueExW", L"RegCloseKey"};
// HKEY_LOCAL_MACHINE's settings key, with every access right (KEY_ALL_ACCESS 0xF003F).
const std::wstring kOpenSettings = L"RegOpenKeyExW(ptr, \"SOFTWARE\\Xelto\\Xelto Lumaven\", 0, 983103, ptr)";

// Open, write a 4-byte REG_DWORD (4), close: nothing between the steps.
TEST(CallTrace, TheSettingIsOpenedWrittenAndClosedWithTheDocumentedArguments)
{
    EXPECT_EQ(Only(TraceOf("intel-laptop", Entry::Command, 2, L"{}"), kRegistryCalls),
              (std::vector<std::wstring>{kOpenSettings, L"RegSetValueExW(ptr, \"OLED\", 0, 4, ptr, 4)",
                                         L"RegCloseKey(ptr)"}));
}

// A read of a missing key creates it: no class, non-volatile (0), every access right, no
// security attributes, no disposition asked for. The value is asked for with its type.
TEST(CallTrace, AReadOfAMissingKeyCreatesItWithTheDocumentedArguments)
{
    EXPECT_EQ(Only(TraceOf("intel-laptop", Entry::Command, 7, L"{}", std::nullopt), kRegistryCalls),
              (std::vector<std::wstring>{
                  kOpenSettings,
                  L"RegCreateKeyExW(ptr, \"SOFTWARE\\Xelto\\Xelto Lumaven\", 0, null, 0, 983103, null, ptr, null)",
                  L"RegQueryValueExW(ptr, \"OLED\", null, ptr, ptr, ptr)", L"RegCloseKey(ptr)"}));
}

// The factory reads each monitor's EDID from the device's own hardware key: the global
// configuration (DICS_FLAG_GLOBAL 1) of the current hardware profile (0), the device key
// (DIREG_DEV 1), for reading only (KEY_READ 0x20019).
TEST(CallTrace, EachMonitorKeyIsOpenedWithTheDocumentedArguments)
{
    const std::vector<std::wstring> opened =
        Only(TraceOf("intel-laptop", Entry::Factory, 0, L"{}"), {L"SetupDiOpenDevRegKey"});
    ASSERT_FALSE(opened.empty());
    for (const std::wstring& call : opened) {
        EXPECT_EQ(call, L"SetupDiOpenDevRegKey(ptr, ptr, 1, 0, 1, 131097)");
    }
}

// The panel gets half a second after the display comes back on before it is written, once.
TEST(CallTrace, TheDisplayOnRewriteWaitsHalfASecondOnce)
{
    for (const char* laptop : {"intel-laptop", "amd-laptop"}) {
        const std::vector<std::wstring> calls = TraceOf(laptop, Entry::Event, 0, L"{}", 1);
        EXPECT_EQ(Only(calls, {L"Sleep"}), std::vector<std::wstring>{L"Sleep(500)"}) << laptop;
    }
}

}  // namespace
