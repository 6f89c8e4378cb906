#include "oled/SettingsStore.h"

#include "xelto/Logging.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

TraceLogger* FreshLogger()
{
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    return LogManager::GetLogger();
}

}  // namespace

LumavenUtil::UniqueHkey OpenOrCreateSettingsKey(const wchar_t* subkey)
{
    TraceLogger* logger = FreshLogger();
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, subkey, 0, KEY_ALL_ACCESS, &key);
    if (status == ERROR_FILE_NOT_FOUND) {
        status = RegCreateKeyExW(HKEY_LOCAL_MACHINE, subkey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                 nullptr, &key, nullptr);
    }
    if (status != ERROR_SUCCESS) {
        logger->LogError(L"Something is wrong. Could not Open or Create the Key: %lld", static_cast<long long>(status));
    }
    return LumavenUtil::UniqueHkey(key);
}

bool SetSettingsDword(HKEY key, const wchar_t* valueName, uint32_t data)
{
    TraceLogger* logger = FreshLogger();
    const DWORD value = data;
    const LSTATUS status =
        RegSetValueExW(key, valueName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    if (status != ERROR_SUCCESS) {
        logger->LogError(L"Not able to set the Registry Value: %lld", static_cast<long long>(status));
        return false;
    }
    return true;
}

void StoreOledSetting(uint32_t value)
{
    const LumavenUtil::UniqueHkey key = OpenOrCreateSettingsKey(kSettingsKeyPath);
    SetSettingsDword(key.get(), kOledValueName, value);
}

OledSetting ReadOledSetting()
{
    const LumavenUtil::UniqueHkey key = OpenOrCreateSettingsKey(kSettingsKeyPath);
    OledSetting setting;
    DWORD type = REG_DWORD;
    DWORD size = sizeof setting.data;
    setting.status =
        RegQueryValueExW(key.get(), kOledValueName, nullptr, &type, reinterpret_cast<BYTE*>(&setting.data), &size);
    if (setting.status == ERROR_SUCCESS && type != REG_DWORD) {
        // A value of another type is not the setting. A string of one character fits the
        // 4-byte buffer and would otherwise read as the number of its character code; it
        // counts as the failed read a larger value gives.
        setting.status = ERROR_MORE_DATA;
    }
    if (setting.Failed()) {
        // Whatever a failed query left in the buffer (a string, part of a larger value) is
        // not a setting: a failed read counts as off.
        setting.data = 0;
    }
    return setting;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
