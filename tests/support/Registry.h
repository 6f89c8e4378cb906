// Direct access to the service's settings value in Wine's registry, for arranging and
// checking what the service reads and writes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace LumavenTest {

// Removes HKLM\SOFTWARE\Xelto\Xelto Lumaven entirely (a clean machine).
void DeleteSettingsKey();
bool SettingsKeyExists();
void SetOledDword(DWORD value);
void SetOledString(const std::wstring& value);
// The "OLED" value when it is a REG_DWORD, nothing when missing or of another type.
std::optional<DWORD> OledDword();

}  // namespace LumavenTest
