#include "Registry.h"

namespace LumavenTest {

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\Xelto\\Xelto Lumaven";

HKEY CreateSettingsKey()
{
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    return key;
}

}  // namespace

void DeleteSettingsKey()
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kKey);
}

bool SettingsKeyExists()
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(key);
    return true;
}

void SetOledDword(DWORD value)
{
    HKEY key = CreateSettingsKey();
    RegSetValueExW(key, L"OLED", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    RegCloseKey(key);
}

void SetOledString(const std::wstring& value)
{
    HKEY key = CreateSettingsKey();
    RegSetValueExW(key, L"OLED", 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
}

std::optional<DWORD> OledDword()
{
    DWORD value = 0;
    DWORD size = sizeof value;
    DWORD type = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"OLED", RRF_RT_ANY, &type, &value, &size) != ERROR_SUCCESS ||
        type != REG_DWORD) {
        return std::nullopt;
    }
    return value;
}

}  // namespace LumavenTest
