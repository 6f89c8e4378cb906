// Makes the functions that LumavenService.dll imports fail on demand, from the test process.
// The DLL's import address table is pointed at replacements here, which fail the calls they
// are told to fail, exactly as the real function reports that failure (its return value and
// last error), and hand every other call to the real function. The service is unchanged and
// cannot tell. The replacements also count calls, the allocation functions keep the set of
// blocks the DLL holds, and the functions that hand out or give back a handle keep the
// handles the DLL holds, so that a test can tell a leak.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LumavenOsFaults {

// Which calls of one import fail, counted from the moment it is armed.
struct Failure {
    int nth = 1;          // the first call that fails (1: the first call after arming)
    bool every = false;   // and every call after it
    intptr_t value = 0;   // what a failed call returns: a status, an HRESULT, 0 for a null handle
    DWORD lastError = 0;  // set with SetLastError on a failed call when not 0
};

// One import of the DLL (or one method of a COM interface the DLL receives) that a test can
// fail and whose calls it can count.
class Hook {
public:
    Hook(const char* library, const char* function);
    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;

    const char* Library() const { return m_library; }
    const char* Function() const { return m_function; }

    void Arm(const Failure& failure);
    void Disarm();
    // Calls since the last Arm, Disarm or ResetCounts, and how many of them failed.
    int Calls() const { return m_calls; }
    int Failed() const { return m_failed; }
    void ResetCounts();

    // For the replacements: counts the call and says whether it fails; when it does, the
    // last error is set already and `value` holds the failed call's result.
    bool Fires(intptr_t& value);

    // The address the DLL called before it was patched; filled by PatchedImports.
    void* original = nullptr;
    void* replacement = nullptr;

private:
    const char* m_library;
    const char* m_function;
    bool m_armed = false;
    Failure m_failure;
    int m_calls = 0;
    int m_failed = 0;
};

// Every hook: the imports (patched into the DLL) first, then the COM methods.
const std::vector<Hook*>& AllHooks();
// The hook of an import or COM method by its name ("RegOpenKeyExW",
// "IWbemServices::ExecQuery"); null when there is none.
Hook* FindHook(const std::string& function);
void DisarmAll();
// A function that returns nothing cannot report a failure: armed, such a call is skipped. This
// arms Sleep so, and the display-on re-write does not wait its half second for the panel.
void SkipWaits();

// The DLL's allocation functions as one sequence: malloc, calloc, realloc, _strdup and
// SysAllocStringLen count towards it, and the nth of them fails (each as its own function
// fails for want of memory). Disarmed with 0.
void FailNthAllocation(int nth);
// Every allocation of at least `bytes` (and at most `upTo`) fails as well, as where memory is
// short for a large block only. Disarmed with 0.
void FailAllocationsFrom(size_t bytes, size_t upTo = SIZE_MAX);
// While on, every block the DLL allocates from the C heap lies in pages of its own and ends
// where a page that cannot be touched begins: reading past its end faults. Blocks keep their
// place when it is switched off.
void FenceBlocks(bool on);
// The size of the fenced block whose fence holds `address`, if any.
std::optional<size_t> FencedBlockBefore(const void* address);
// Allocation calls since the last FailNthAllocation.
int AllocationCalls();
// Blocks the DLL allocated through its imports (heap blocks and BSTRs) and has not freed.
size_t LiveBlocks();
// The allocations made so far, and the sizes of the blocks allocated after such a mark that
// are still live.
uint64_t AllocationMark();
std::vector<size_t> LiveBlocksSince(uint64_t mark);

// Handles the DLL took through its imports and has not given back, by kind: registry keys
// (opened, created, or a device's key), device information sets, and references to
// libraries (by file name, one entry per reference).
struct HeldHandles {
    size_t keys = 0;
    size_t deviceSets = 0;
    std::vector<std::string> libraries;
};
HeldHandles Held();
// Forgets every handle counted so far (handles taken before a test are not its own).
void ForgetHeld();

// Every library the DLL asked the loader for, in order, as it asked: the name or path, whether
// a file handle was passed, and the search flags (LoadLibraryW's as 0).
struct LibraryLoad {
    std::wstring name;
    bool withFile = false;
    DWORD flags = 0;
    bool operator==(const LibraryLoad&) const = default;
};
std::vector<LibraryLoad> LibraryLoads();
void ForgetLibraryLoads();

// Hostile but legal answers of a working system, for the paths that only such answers reach.
// Each stays in force until changed; DisarmAll resets them all.
// - IWbemClassObject::Get hands a string property back as an array of that one string, as a
//   provider may for an array-valued property.
void AnswerStringPropertiesAsArrays(bool on);
// - SetupDiClassGuidsFromNameW reports this many GUIDs for every class name (0: the truth),
//   filling what the caller's list holds with the real ones.
void AnswerClassGuidCount(DWORD count);

// - RegQueryValueExW answers every read of a value named "EDID" with ERROR_MORE_DATA and this
//   size (0: the truth), as a value rewritten between two reads, or a filter that misreports
//   it, may.
void AnswerEdidClaim(DWORD bytes);
// While alive, the DLL's import address table points at the hooks; the destructor restores
// it. Imports without a hook are left as they are.
class PatchedImports {
public:
    explicit PatchedImports(HMODULE module);
    ~PatchedImports();
    PatchedImports(const PatchedImports&) = delete;
    // For a module that is about to be unloaded: its table goes with it and is not restored,
    // so that what it does while it unloads still goes through the hooks.
    void LeaveForUnload() { m_slots.clear(); }
    PatchedImports& operator=(const PatchedImports&) = delete;

    // "ADVAPI32.dll!RegOpenKeyExW" for each slot patched.
    const std::vector<std::string>& Patched() const { return m_names; }

private:
    struct Slot {
        void** address;
        void* original;
    };
    std::vector<Slot> m_slots;
    std::vector<std::string> m_names;
};

}  // namespace LumavenOsFaults
