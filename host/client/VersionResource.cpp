#include "VersionResource.h"

#include <cwchar>

namespace XeltoClient {

VersionResource::VersionResource(const std::wstring& path)
{
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
    if (size == 0) {
        return;
    }
    std::vector<BYTE> block(size);
    if (GetFileVersionInfoW(path.c_str(), 0, size, block.data())) {
        m_block = std::move(block);
    }
}

const VS_FIXEDFILEINFO* VersionResource::Fixed() const
{
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    if (!Loaded() || !VerQueryValueW(m_block.data(), L"\\", reinterpret_cast<void**>(&fixed), &length) ||
        length < sizeof(VS_FIXEDFILEINFO)) {
        return nullptr;
    }
    return fixed;
}

std::optional<std::wstring> VersionResource::String(const wchar_t* name) const
{
    if (!Loaded()) {
        return std::nullopt;
    }
    // The string tables are keyed by language and code page; take the first one listed.
    struct Translation {
        WORD language;
        WORD codePage;
    };
    Translation* translations = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(m_block.data(), L"\\VarFileInfo\\Translation", reinterpret_cast<void**>(&translations),
                        &length) ||
        length < sizeof(Translation)) {
        return std::nullopt;
    }
    wchar_t key[96];
    std::swprintf(key, 96, L"\\StringFileInfo\\%04x%04x\\%ls", translations[0].language, translations[0].codePage,
                  name);
    wchar_t* value = nullptr;
    if (!VerQueryValueW(m_block.data(), key, reinterpret_cast<void**>(&value), &length) || length == 0) {
        return std::nullopt;
    }
    return std::wstring(value);
}

}  // namespace XeltoClient
