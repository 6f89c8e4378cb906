#include "ProcessFigures.h"

#include "RunSettings.h"

#include <windows.h>
#include <psapi.h>

#include <vector>

namespace LumavenReliability {

namespace {

// The system handle list as NtQuerySystemInformation class 64 (extended handle information)
// returns it.
struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTraceIndex;
    USHORT typeIndex;
    ULONG attributes;
    ULONG reserved;
};
struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
constexpr ULONG kExtendedHandleInformation = 64;
constexpr LONG kInfoLengthMismatch = static_cast<LONG>(0xC0000004);
using QuerySystemInformation = LONG(NTAPI*)(ULONG, void*, ULONG, ULONG*);

uint32_t HandlesInSystemList()
{
    const auto query = reinterpret_cast<QuerySystemInformation>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    if (query == nullptr) {
        return 0;
    }
    std::vector<char> buffer(256 * 1024);
    ULONG length = 0;
    LONG status = 0;
    while ((status = query(kExtendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &length)) ==
           kInfoLengthMismatch) {
        buffer.resize(buffer.size() * 2);
    }
    if (status != 0) {
        return 0;
    }
    const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
    uint32_t count = 0;
    for (ULONG_PTR i = 0; i < list->count; ++i) {
        count += list->entries[i].processId == GetCurrentProcessId() ? 1 : 0;
    }
    return count;
}

}  // namespace

ProcessFigures SampleProcess()
{
    ProcessFigures figures;
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    if (GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                             sizeof counters)) {
        figures.privateBytes = counters.PrivateUsage;
        if (figures.privateBytes == 0) {
            figures.privateBytes = counters.PagefileUsage;
            figures.privateSource = "PagefileUsage";
        }
    }
    DWORD handles = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &handles) || handles == 0) {
        handles = HandlesInSystemList();
        figures.handleSource = "system-handle-list";
    }
    figures.handles = handles;
    const DWORD index = TlsAlloc();
    figures.tlsIndex = index;
    if (index != TLS_OUT_OF_INDEXES) {
        TlsFree(index);
    }
    return figures;
}

std::string Describe(const ProcessFigures& figures)
{
    return Format("private=%llu handles=%lu tls=%lu", static_cast<unsigned long long>(figures.privateBytes),
                  static_cast<unsigned long>(figures.handles), static_cast<unsigned long>(figures.tlsIndex));
}

}  // namespace LumavenReliability
