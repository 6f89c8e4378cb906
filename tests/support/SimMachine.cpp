#include "SimMachine.h"

#include "Installer.h"
#include "TransactionLog.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace LumavenTest {

std::wstring ExecutableDirectory()
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring directory(path, length);
    return directory.substr(0, directory.find_last_of(L"\\/"));
}

void InstallProfile(const Profile::Machine& machine)
{
    const std::string json = machine.Json();
    const LumavenSim::InstallResult result = LumavenSim::InstallProfile(json, ExecutableDirectory() + L"\\sim");
    ASSERT_TRUE(result.ok) << "lumaven-sim install failed: " << result.error << "\n" << json;
}

void InstallShippedProfile(const std::string& name)
{
    const std::wstring path =
        ExecutableDirectory() + L"\\profiles\\" + std::wstring(name.begin(), name.end()) + L".json";
    const LumavenSim::InstallResult result = LumavenSim::InstallProfileFile(path, ExecutableDirectory() + L"\\sim");
    ASSERT_TRUE(result.ok) << "lumaven-sim install " << name << " failed: " << result.error;
}

Profile::Machine MonitorsProfile(const std::vector<LumavenSim::PanelIdentity>& panels)
{
    Profile::Machine machine;
    for (const LumavenSim::PanelIdentity& panel : panels) {
        machine.monitors.push_back({.panel = panel});
    }
    return machine;
}

std::vector<std::string> CallsAfterDetach()
{
    std::vector<std::string> calls;
    for (const LumavenSim::TransactionRecord& record : LumavenSim::TransactionLog::Read().AfterDetach()) {
        calls.push_back(record.Text());
    }
    return calls;
}

}  // namespace LumavenTest
