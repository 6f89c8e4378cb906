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

void InstallProfile(const std::string& profileJson)
{
    const LumavenSim::InstallResult result = LumavenSim::InstallProfile(profileJson, ExecutableDirectory() + L"\\sim");
    ASSERT_TRUE(result.ok) << "lumaven-sim install failed: " << result.error;
}

void InstallShippedProfile(const std::string& name)
{
    const std::wstring path =
        ExecutableDirectory() + L"\\profiles\\" + std::wstring(name.begin(), name.end()) + L".json";
    const LumavenSim::InstallResult result = LumavenSim::InstallProfileFile(path, ExecutableDirectory() + L"\\sim");
    ASSERT_TRUE(result.ok) << "lumaven-sim install " << name << " failed: " << result.error;
}

std::string MonitorsProfile(const std::vector<std::string>& monitors)
{
    std::string profile = "{\"monitors\":[";
    for (size_t i = 0; i < monitors.size(); ++i) {
        if (i > 0) {
            profile += ",";
        }
        profile += monitors[i].rfind("{", 0) == 0 ? monitors[i] : "{\"panel\":\"" + monitors[i] + "\"}";
    }
    return profile + "]}";
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
