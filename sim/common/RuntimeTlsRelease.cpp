// Gives back the TLS slots the MinGW thread runtime takes each time a fake driver is loaded.
//
// The fakes link the C++ runtime statically, and with it winpthreads, which takes one TLS
// index (TlsAlloc) on every load of the DLL and never frees it. The service loads and frees
// ControlLib.dll and the ADL library on every call, as it must with the real drivers, so a
// long run in one process used up the 1,088 TLS indexes after about a thousand vendor calls
// and the next load of a fake aborted the process. The real drivers have no such runtime.
//
// The first TLS callback of the DLL (it runs before the runtime's own) routes the DLL's
// TlsAlloc import through a recorder; the last one frees what was recorded when the DLL is
// unloaded by FreeLibrary, after the runtime's own detach work.
#if defined(__MINGW32__)

#include <windows.h>

namespace {

using TlsAllocFunction = DWORD(WINAPI*)();

constexpr LONG kMaxRecorded = 8;
TlsAllocFunction g_systemTlsAlloc = nullptr;
DWORD g_recorded[kMaxRecorded];
LONG g_recordedCount = 0;

}  // namespace

// The DLL's import address table entry for TlsAlloc. GNU ld puts the table in writable
// data, LLD in read-only data (as the loader leaves it after binding on Windows too).
extern "C" TlsAllocFunction __imp_TlsAlloc;

namespace {

DWORD WINAPI RecordingTlsAlloc()
{
    const DWORD index = g_systemTlsAlloc();
    if (index != TLS_OUT_OF_INDEXES) {
        const LONG slot = InterlockedIncrement(&g_recordedCount) - 1;
        if (slot < kMaxRecorded) {
            g_recorded[slot] = index;
        }
    }
    return index;
}

void NTAPI RouteTlsAlloc(PVOID, DWORD reason, PVOID)
{
    if (reason != DLL_PROCESS_ATTACH || g_systemTlsAlloc != nullptr) {
        return;
    }
    // A write to a read-only table would fault, and Wine's loader ignores a fault in a TLS
    // callback: the slots would silently never be recorded.
    DWORD protection = 0;
    if (!VirtualProtect(&__imp_TlsAlloc, sizeof(__imp_TlsAlloc), PAGE_READWRITE, &protection)) {
        return;
    }
    g_systemTlsAlloc = __imp_TlsAlloc;
    __imp_TlsAlloc = &RecordingTlsAlloc;
    VirtualProtect(&__imp_TlsAlloc, sizeof(__imp_TlsAlloc), protection, &protection);
}

void NTAPI FreeRecordedTls(PVOID, DWORD reason, PVOID reserved)
{
    // At process exit (reserved not null) nothing needs giving back.
    if (reason != DLL_PROCESS_DETACH || reserved != nullptr) {
        return;
    }
    const LONG count = g_recordedCount < kMaxRecorded ? g_recordedCount : kMaxRecorded;
    for (LONG i = 0; i < count; ++i) {
        TlsFree(g_recorded[i]);
    }
    g_recordedCount = 0;
}

}  // namespace

// The loader calls the callbacks in the order of these section names: .CRT$XLB before the
// runtime's (.CRT$XLC, .CRT$XLF), .CRT$XLY after them.
extern "C" {
__attribute__((section(".CRT$XLB"), used)) extern const PIMAGE_TLS_CALLBACK lumavenRouteTlsAlloc = RouteTlsAlloc;
__attribute__((section(".CRT$XLY"), used)) extern const PIMAGE_TLS_CALLBACK lumavenFreeRecordedTls = FreeRecordedTls;
}

#endif
