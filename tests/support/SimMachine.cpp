#include "SimMachine.h"

#include "DetachGuard.h"
#include "Installer.h"
#include "SimState.h"

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

std::vector<rapidjson::Document> Transactions()
{
    std::vector<rapidjson::Document> records;
    for (const std::string& text : LumavenSim::ReadTransactions()) {
        rapidjson::Document record;
        record.Parse(text.c_str());
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<std::string> CallsAfterDetach()
{
    std::vector<std::string> calls;
    for (const std::string& text : LumavenSim::ReadTransactions()) {
        rapidjson::Document record;
        record.Parse(text.c_str());
        if (!record.HasParseError() && record.IsObject() && record.HasMember("refused") &&
            record["refused"].IsString() &&
            std::string(record["refused"].GetString()).rfind(LumavenSim::kAfterDetach, 0) == 0) {
            calls.push_back(text);
        }
    }
    return calls;
}

}  // namespace LumavenTest
