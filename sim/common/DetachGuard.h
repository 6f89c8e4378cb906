// What a fake driver does once the loader has detached it. A real driver's state is gone after
// its DLL_PROCESS_DETACH, whether FreeLibrary unloaded it or the process is ending; at process
// exit its code even stays mapped, so a caller that comes too late reaches it and finds nothing
// to work on. The fakes refuse every such call and log it, so that the caller is seen.
#pragma once

#include <cstdint>
#include <string>

namespace LumavenSim {

// The start of the "refused" text of a call made after the library's detach; the rest says
// which detach it was: "(process exit)" or "(FreeLibrary)".
inline constexpr char kAfterDetach[] = "called after the library's DLL_PROCESS_DETACH";

// For a fake's DllMain, before anything else: remembers a DLL_PROCESS_DETACH of either kind.
void NoteDetach(unsigned long reason, void* reserved);

// Whether the library has been detached. When it has, writes the record
// {"lib": library, "call": call, "refused": kAfterDetach + which detach, "result": result}
// first; the caller then answers `result` without touching anything else.
bool RefusedAfterDetach(const std::string& library, const char* call, int64_t result);

}  // namespace LumavenSim
