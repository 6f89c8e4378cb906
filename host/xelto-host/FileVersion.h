// The version a binary carries in its VERSIONINFO resource, as Windows' file properties
// show it.
#pragma once

#include <optional>
#include <string>

namespace XeltoHost {

// The "ProductVersion" string of the file's first string table, or nothing when the file
// cannot be read or has no version resource.
std::optional<std::wstring> FileProductVersion(const std::wstring& path);

// The full path of a module loaded into this process (empty when it is not loaded).
std::wstring LoadedModulePath(const wchar_t* moduleName);

}  // namespace XeltoHost
