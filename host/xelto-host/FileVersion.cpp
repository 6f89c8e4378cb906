#include "FileVersion.h"

#include <windows.h>

#include <vector>

namespace XeltoHost {

std::optional<std::wstring> FileProductVersion(const std::wstring& path)
{
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
    if (size == 0) {
        return std::nullopt;
    }
    std::vector<BYTE> block(size);
    if (!GetFileVersionInfoW(path.c_str(), 0, size, block.data())) {
        return std::nullopt;
    }
    // The string tables are keyed by language and code page; take the first one listed.
    struct Translation {
        WORD language;
        WORD codePage;
    };
    Translation* translations = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), L"\\VarFileInfo\\Translation", reinterpret_cast<void**>(&translations),
                        &length) ||
        length < sizeof(Translation)) {
        return std::nullopt;
    }
    wchar_t key[64];
    swprintf(key, 64, L"\\StringFileInfo\\%04x%04x\\ProductVersion", translations[0].language,
             translations[0].codePage);
    wchar_t* value = nullptr;
    if (!VerQueryValueW(block.data(), key, reinterpret_cast<void**>(&value), &length) || length == 0) {
        return std::nullopt;
    }
    return std::wstring(value);
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
