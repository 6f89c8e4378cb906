// The service's one persistent setting: whether OLED power saving was last switched on, kept
// as the DWORD "OLED" under HKLM\SOFTWARE\Xelto\Xelto Lumaven. Missing means off.
#pragma once

#include "util/UniqueHandles.h"

#include <windows.h>

#include <cstdint>

namespace Xelto::Spanlet::Server::Services::Lumaven {

inline constexpr wchar_t kSettingsKeyPath[] = L"SOFTWARE\\Xelto\\Xelto Lumaven";
inline constexpr wchar_t kOledValueName[] = L"OLED";

// Opens the key, creating it when it does not exist; empty after a failure, which is logged.
LumavenUtil::UniqueHkey OpenOrCreateSettingsKey(const wchar_t* subkey);
// Writes `data` as a 4-byte REG_DWORD; false (and a log line) on failure.
bool SetSettingsDword(HKEY key, const wchar_t* valueName, uint32_t data);

// Every writer does open, set, close, with no check in between.
void StoreOledSetting(uint32_t value);

// The stored OLED state as both readers (the registry query command and the display-power
// event) read it. A read creates the key when it is missing.
struct OledSetting {
    LSTATUS status = ERROR_SUCCESS;
    DWORD data = 0;

    // A missing value (ERROR_FILE_NOT_FOUND) is a normal "off", not a failure.
    bool Failed() const { return (static_cast<DWORD>(status) & ~DWORD{2}) != 0; }
    bool On() const { return data == 1; }
    bool Off() const { return data == 0; }
};
OledSetting ReadOledSetting();

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
