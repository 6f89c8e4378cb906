// Common ground of the control library tests: each test starts and ends with no library loaded
// and no runtime path remembered, whatever the previous test left behind (a library without a
// ctlClose of its own cannot be unloaded through the layer).
#pragma once

#include "IntelState.h"
#include "SimMachine.h"
#include "ServiceProcessState.h"
#include "SimState.h"
#include "intel/ControlLibClient.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <windows.h>

#include <string>
#include <vector>

namespace LumavenTest {

class ControlLibTest : public ::testing::Test {
protected:
    void SetUp() override { ForgetLibrary(); }
    void TearDown() override { ForgetLibrary(); }

    static void ForgetLibrary() { ResetServiceProcessState(); }

    // A machine whose system32 holds `library` (a file of bin\sim) as ControlLib.dll, or no
    // ControlLib.dll when it is empty.
    static void InstallIntel(const std::string& library, Profile::Intel intel = {},
                             std::vector<Profile::Fault> faults = {}, std::vector<Profile::Count> counts = {})
    {
        Profile::Machine machine{.intel = std::move(intel), .faults = std::move(faults), .counts = std::move(counts)};
        if (!library.empty()) {
            machine.libraries["ControlLib.dll"] = library;
        }
        LumavenTest::InstallProfile(machine);
    }

    static ctl_init_args_t InitArgs(ctl_version_info_t appVersion)
    {
        ctl_init_args_t args{};
        args.Size = sizeof args;
        args.AppVersion = appVersion;
        return args;
    }

    // ctlInit with init arguments of API version `appVersion`, as the service fills them.
    static ctl_result_t Init(ctl_api_handle_t* api, ctl_version_info_t appVersion = 0x00010000)
    {
        ctl_init_args_t args = InitArgs(appVersion);
        return ctlInit(&args, api);
    }

    static std::wstring SimDll(const std::wstring& file) { return ExecutableDirectory() + L"\\sim\\" + file; }

    static std::wstring System32Dll(const std::wstring& file)
    {
        wchar_t path[MAX_PATH];
        const UINT length = GetSystemDirectoryW(path, MAX_PATH);
        return std::wstring(path, length) + L"\\" + file;
    }

    // The file a module was loaded from, for comparing with an expected path.
    static std::wstring ModulePath(HMODULE module)
    {
        std::wstring path(32768, L'\0');
        path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
        return path;
    }

    static bool SameFile(const std::wstring& a, const std::wstring& b)
    {
        return CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) == CSTR_EQUAL;
    }

    // The transaction records of one entry point, in order.
    static std::vector<LumavenSim::TransactionRecord> Calls(const std::string& function)
    {
        return LumavenSim::TransactionLog::Read().CallsOf(function);
    }

    static uint64_t Address(const void* pointer) { return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer)); }
};

}  // namespace LumavenTest
