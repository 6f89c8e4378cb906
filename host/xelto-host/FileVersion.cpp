#include "FileVersion.h"

#include "VersionResource.h"

#include <windows.h>

namespace XeltoHost {

std::optional<std::wstring> FileProductVersion(const std::wstring& path)
{
    return XeltoClient::VersionResource(path).String(L"ProductVersion");
}

std::wstring LoadedModulePath(const wchar_t* moduleName)
{
    const HMODULE module = GetModuleHandleW(moduleName);
    if (module == nullptr) {
        return {};
    }
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    return std::wstring(path, length);
}

}  // namespace XeltoHost
