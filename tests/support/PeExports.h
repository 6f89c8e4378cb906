// Reads the export names of a PE file from disk, the way a linker or a loader sees them.
#pragma once

#include <string>
#include <vector>

namespace LumavenTest {

// The names in the export directory, in the file's (sorted) order; empty when the file
// cannot be read or has no export directory.
std::vector<std::string> ExportedNames(const std::wstring& path);

}  // namespace LumavenTest
