// Which vendor libraries this machine would give the service, and from where: each library is
// loaded the way the service loads it (same name, same search flags), its path noted, and
// unloaded again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace XeltoHost {

struct LibraryProbe {
    const wchar_t* name;    // the file name the service asks for
    const char* search;     // where the loader looks, in words
    const char* neededFor;  // what the service needs it for
    bool loaded = false;
    std::wstring path;   // where it was found, when loaded
    uint32_t error = 0;  // GetLastError() when not loaded
};

std::vector<LibraryProbe> ProbeVendorLibraries();

}  // namespace XeltoHost
