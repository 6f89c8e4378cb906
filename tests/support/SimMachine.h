// Puts the simulated laptop a test needs into the Wine prefix.
#pragma once

// A test describes its machine with the typed profile and the named panels, and reads back
// what the machine's drivers saw through the one reader of their log.
#include "MachineProfile.h"
#include "Panels.h"
#include "TransactionLog.h"

#include <string>
#include <vector>

namespace LumavenTest {

namespace Profile = LumavenSim::Profile;
namespace Panels = LumavenSim::Panels;

// Installs the machine; fails the current test when the installer refuses.
void InstallProfile(const Profile::Machine& machine);
// Installs one of the shipped profiles (bin\profiles\NAME.json).
void InstallShippedProfile(const std::string& name);
// A machine with just monitors fitted with these panels.
Profile::Machine MonitorsProfile(const std::vector<LumavenSim::PanelIdentity>& panels);

// The directory of the running test executable (bin).
std::wstring ExecutableDirectory();

// The records of calls a fake driver refused because they reached it after its own
// DLL_PROCESS_DETACH, as compact JSON texts. Any such record is a failure: it can only come
// from a process that called into a vendor library the loader had already detached.
std::vector<std::string> CallsAfterDetach();

}  // namespace LumavenTest
