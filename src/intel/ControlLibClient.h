// The client layer of the Intel Graphics Control Library that the service carries itself:
// ControlLib.dll is loaded by ctlInit and unloaded by a successful ctlClose, and every other
// entry point looks its own name up in the loaded library on each call and passes the call
// on. The 93 functions keep the library's C names, so the Intel code calls them just as it
// would call the library, and the module exports them under the same names.
//
// The layer's state is two unguarded globals; the callers serialise under the command lock.
#pragma once

#include "intel/ControlLibFunctions.h"

#include <windows.h>

#include <cstddef>

extern "C" {
#define LUMAVEN_CTL_DECLARE(name, ...) ctl_result_t CTL_APICALL name(__VA_ARGS__);
LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_DECLARE, LUMAVEN_CTL_DECLARE)
#undef LUMAVEN_CTL_DECLARE
}

namespace Xelto::Spanlet::Server::Services::Lumaven {

// The loaded ControlLib.dll, or null. Set by ctlInit, cleared only by a ctlClose whose
// forwarded call succeeded. Deliberately a raw handle: the library outlives any one call, and
// nothing unloads it when the service module itself is unloaded.
extern HMODULE controlLibModule;

// The caller's runtime-path arguments (not a copy), remembered by ctlSetRuntimePath while no
// library is loaded and forgotten by every ctlClose. The caller keeps them alive until the next
// ctlInit.
extern ctl_runtime_path_args_t* runtimePathArgs;

// Characters of ctlInit's library path buffer, the terminator included.
constexpr size_t kControlLibPathCapacity = 512;

// Bytes, not characters, that a formatted library file name may take, its terminator
// included: at most 255 characters, while a runtime path may fill the whole buffer.
constexpr size_t kControlLibFileNameBytes = 512;

// Writes "<baseName>.dll" into `path`, cut to what fits in kControlLibFileNameBytes.
void FormatLibraryFileName(wchar_t (&path)[kControlLibPathCapacity], const wchar_t* baseName);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
