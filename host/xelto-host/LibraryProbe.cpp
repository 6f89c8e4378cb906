#include "LibraryProbe.h"

#include <windows.h>

namespace XeltoHost {

namespace {

struct LibraryRule {
    const wchar_t* name;
    DWORD flags;  // LoadLibraryExW flags; 0 is the default search order of LoadLibraryW
    const char* search;
    const char* neededFor;
};

// The service's own load calls. IGCL: system32 only. ADL: the default search order (the
// application's folder, system32, the Windows folder, the current folder, PATH), first
// atiadlxx.dll, then atiadlxy.dll. ADLX: the application's folder, folders added with
// AddDllDirectory, system32 (LOAD_LIBRARY_SEARCH_DEFAULT_DIRS with the three others: 0x1E00).
constexpr LibraryRule kRules[] = {
    {L"ControlLib.dll", LOAD_LIBRARY_SEARCH_SYSTEM32, "system32 only",
     "Intel: OPST (commands 1, 2, 3, 8, 10), Ed and ELP (5, 6, 9, 11, 12), display-on re-apply"},
    {L"atiadlxx.dll", 0, "default search order, including the host's folder and PATH",
     "AMD: ELP panel writes (commands 9, 11, 12), display-on re-apply"},
    {L"atiadlxy.dll", 0, "default search order, including the host's folder and PATH",
     "AMD: ELP panel writes when atiadlxx.dll is missing"},
    {L"amdadlx64.dll",
     LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS | LOAD_LIBRARY_SEARCH_SYSTEM32 |
         LOAD_LIBRARY_SEARCH_DEFAULT_DIRS,
     "application folder, user folders (AddDllDirectory), system32", "AMD: VariBright (commands 10, 11, 12, 13, 14)"},
};

}  // namespace

std::vector<LibraryProbe> ProbeVendorLibraries()
{
    std::vector<LibraryProbe> probes;
    for (const LibraryRule& rule : kRules) {
        LibraryProbe probe{};
        probe.name = rule.name;
        probe.search = rule.search;
        probe.neededFor = rule.neededFor;
        const HMODULE module =
            rule.flags == 0 ? LoadLibraryW(rule.name) : LoadLibraryExW(rule.name, nullptr, rule.flags);
        if (module == nullptr) {
            probe.error = GetLastError();
        } else {
            probe.loaded = true;
            wchar_t path[MAX_PATH];
            probe.path.assign(path, GetModuleFileNameW(module, path, MAX_PATH));
            FreeLibrary(module);
        }
        probes.push_back(std::move(probe));
    }
    return probes;
}

}  // namespace XeltoHost
