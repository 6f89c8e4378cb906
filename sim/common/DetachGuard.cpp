#include "DetachGuard.h"

#include "Transaction.h"

#include <windows.h>

#include <atomic>

namespace LumavenSim {

namespace {

// Each fake links its own copy of this library, so each library has its own mark. Set by the
// loader's thread and read by any caller's: atomic.
enum class Detach { kNone, kProcessExit, kFreeLibrary };
constinit std::atomic<Detach> g_detach{Detach::kNone};

}  // namespace

void NoteDetach(unsigned long reason, void* reserved)
{
    if (reason == DLL_PROCESS_DETACH) {
        g_detach.store(reserved != nullptr ? Detach::kProcessExit : Detach::kFreeLibrary);
    }
}

bool RefusedAfterDetach(const std::string& library, const char* call, int64_t result)
{
    const Detach detach = g_detach.load();
    if (detach == Detach::kNone) {
        return false;
    }
    // Only the log is touched: it lives in files, not in this library's torn-down statics.
    Transaction record(library, call);
    record.Refused(std::string(kAfterDetach) + (detach == Detach::kProcessExit ? " (process exit)" : " (FreeLibrary)"))
        .Done(result);
    return true;
}

}  // namespace LumavenSim
