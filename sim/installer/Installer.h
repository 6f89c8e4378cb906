// Installs a machine profile into the current Wine prefix: the monitors with their EDIDs in
// the registry where SetupAPI finds them, the fake vendor libraries in system32 with the
// prefix's override that makes Wine load the fake dxgi.dll, and the fake drivers' initial
// state. It refuses to touch anything but a Wine prefix, since the
// fakes carry real driver names.
#pragma once

#include "LumavenRapidJson.h"

#include <string>
#include <vector>

namespace LumavenSim {

// The vendor library names the simulated laptop manages in system32.
extern const std::vector<std::wstring> kManagedLibraries;

struct InstallResult {
    bool ok = false;
    std::string error;  // one line, when !ok
};

// `profileText` is the profile's JSON. The fake libraries are taken from `simDllDirectory`
// (when empty: fake-vendor-libraries beside the installer in a package, sim in a build tree).
InstallResult InstallProfile(const std::string& profileText, const std::wstring& simDllDirectory = L"");
InstallResult InstallProfileFile(const std::wstring& path, const std::wstring& simDllDirectory = L"");

// Builds a 128-byte base EDID block for a panel given by EDID bytes 8..11, with a valid
// header and checksum; `length` pads it (with extension-block bytes) or cuts it.
std::vector<uint8_t> MakeEdid(const std::vector<uint8_t>& bytes8to11, size_t length = 128);

// A readable report of what is installed: monitors, libraries, state and transactions.
std::string Describe();

}  // namespace LumavenSim
