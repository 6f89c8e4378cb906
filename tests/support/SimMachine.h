// Puts the simulated laptop a test needs into the Wine prefix.
#pragma once

// Tests that install a machine read back what its drivers saw through the one reader.
#include "TransactionLog.h"

#include <string>
#include <vector>

namespace LumavenTest {

// Installs a profile given as JSON text; fails the current test when the installer refuses.
void InstallProfile(const std::string& profileJson);
// Installs one of the shipped profiles (bin\profiles\NAME.json).
void InstallShippedProfile(const std::string& name);
// A profile with just these monitors (each "panel" hex of EDID bytes 8..11, or a full
// monitor object as JSON text when it starts with '{').
std::string MonitorsProfile(const std::vector<std::string>& monitors);

// The directory of the running test executable (bin).
std::wstring ExecutableDirectory();

// The records of calls a fake driver refused because they reached it after its own
// DLL_PROCESS_DETACH, as compact JSON texts. Any such record is a failure: it can only come
// from a process that called into a vendor library the loader had already detached.
std::vector<std::string> CallsAfterDetach();

}  // namespace LumavenTest
