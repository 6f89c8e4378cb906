// A binary's VERSIONINFO resource, read as Windows' file properties read it: the reference
// host prints the service's version from it and the release checks compare it with the
// project's.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace XeltoClient {

class VersionResource {
public:
    // Reads the resource of the file at `path`; Loaded() is false when the file cannot be
    // read or has none, and GetLastError() then says why.
    explicit VersionResource(const std::wstring& path);

    bool Loaded() const { return !m_block.empty(); }
    // The fixed part (signature, file and product version, file type); null when absent.
    const VS_FIXEDFILEINFO* Fixed() const;
    // The value `name` ("ProductVersion", "FileDescription", ...) of the first string table
    // listed; nothing when the resource has no such value or it is empty.
    std::optional<std::wstring> String(const wchar_t* name) const;

private:
    std::vector<BYTE> m_block;
};

}  // namespace XeltoClient
