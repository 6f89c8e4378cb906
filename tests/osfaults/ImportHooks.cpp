#include "ImportHooks.h"

#include "CallTrace.h"

#include <oleauto.h>
#include <setupapi.h>
#include <wbemcli.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <mutex>
#include <optional>
#include <type_traits>

namespace LumavenOsFaults {

Hook::Hook(const char* library, const char* function) : m_library(library), m_function(function) {}

void Hook::Arm(const Failure& failure)
{
    m_failure = failure;
    m_armed = true;
    ResetCounts();
}

void Hook::Disarm()
{
    m_armed = false;
    ResetCounts();
}

void Hook::ResetCounts()
{
    m_calls = 0;
    m_failed = 0;
}

bool Hook::Fires(intptr_t& value)
{
    const int call = ++m_calls;
    if (!m_armed || call < m_failure.nth || (!m_failure.every && call != m_failure.nth)) {
        return false;
    }
    ++m_failed;
    if (m_failure.lastError != 0) {
        SetLastError(m_failure.lastError);
    }
    value = m_failure.value;
    return true;
}

namespace {

// ---- Generic replacements -----------------------------------------------------------------

template <size_t N>
struct Name {
    char text[N];
    constexpr Name(const char (&name)[N])
    {
        for (size_t i = 0; i < N; ++i) {
            text[i] = name[i];
        }
    }
};

template <class R>
R Returned(intptr_t value)
{
    if constexpr (std::is_void_v<R>) {
        return;
    } else if constexpr (std::is_pointer_v<R>) {
        return reinterpret_cast<R>(value);
    } else {
        return static_cast<R>(value);
    }
}

// The replacement of one import: a failed call returns the planned value without reaching
// the real function. (x64 Windows has one calling convention, so WINAPI is not part of the
// type.)
template <Name library, Name function, class Signature>
struct Import;

template <Name library, Name function, class R, class... A>
struct Import<library, function, R (*)(A...)> {
    static inline Hook hook{library.text, function.text};

    static R Call(A... arguments)
    {
        CallTrace::Record(function.text, arguments...);
        intptr_t value = 0;
        if (hook.Fires(value)) {
            return Returned<R>(value);
        }
        return reinterpret_cast<R (*)(A...)>(hook.original)(arguments...);
    }
};

template <class Replacement>
Hook* Bind(Hook& hook, Replacement* replacement)
{
    hook.replacement = reinterpret_cast<void*>(replacement);
    return &hook;
}

// The plain function pointer type of an import, without the attributes (malloc's, say) that
// have no place in a template argument.
template <class R, class... A>
auto PlainSignature(R (*)(A...)) -> R (*)(A...);

#define LUMAVEN_IMPORT(library, function) Import<library, #function, decltype(PlainSignature(&::function))>
#define LUMAVEN_GENERIC(library, function) \
    Bind(LUMAVEN_IMPORT(library, function)::hook, &LUMAVEN_IMPORT(library, function)::Call)

// ---- The allocation functions ---------------------------------------------------------------

// Runs `use` on one of the hooks' records (the heap's, the handles', the loads') under its
// lock: the DLL's threads and the test's thread reach them at once.
template <class Record, class Use>
auto Locked(Record& record, Use&& use)
{
    const std::lock_guard guard(record.lock);
    return use(record);
}

struct Heap {
    std::mutex lock;
    // Each live block with the number of the allocation that made it and its size.
    std::map<void*, std::pair<uint64_t, size_t>> live;
    uint64_t made = 0;
    int calls = 0;
    int failAt = 0;
    size_t failFrom = 0;  // every allocation of this many bytes or more fails; 0: none
    size_t failUpTo = 0;  // ... and of no more than this many
    bool fence = false;   // new blocks are fenced (FenceBlocks)
    // Each fenced block with the pages it lies in and the fence after it.
    struct Fenced {
        void* pages;
        const unsigned char* fence;
    };
    std::map<void*, Fenced> fenced;
};

Heap& DllHeap()
{
    static Heap heap;
    return heap;
}

// Counts one allocation call of the sequence; true when it is the one that fails, or when it
// asks for more than memory has room for.
bool SequenceFails(size_t size)
{
    return Locked(DllHeap(), [size](Heap& heap) {
        return ++heap.calls == heap.failAt || (heap.failFrom != 0 && size >= heap.failFrom && size <= heap.failUpTo);
    });
}

void* Tracked(void* block, size_t size)
{
    if (block != nullptr) {
        Heap& heap = DllHeap();
        const std::lock_guard guard(heap.lock);
        heap.live[block] = {++heap.made, size};
    }
    return block;
}

void Untracked(void* block)
{
    Heap& heap = DllHeap();
    const std::lock_guard guard(heap.lock);
    heap.live.erase(block);
}

template <class Hooked>
bool AllocationFails(size_t size)
{
    const bool sequence = SequenceFails(size);
    intptr_t ignored = 0;
    const bool own = Hooked::hook.Fires(ignored);
    return sequence || own;
}

template <class Hooked>
auto Original()
{
    return reinterpret_cast<decltype(&Hooked::Call)>(Hooked::hook.original);
}

using Malloc = LUMAVEN_IMPORT("msvcrt.dll", malloc);
using Calloc = LUMAVEN_IMPORT("msvcrt.dll", calloc);
using Realloc = LUMAVEN_IMPORT("msvcrt.dll", realloc);
using Strdup = LUMAVEN_IMPORT("msvcrt.dll", _strdup);
using Free = LUMAVEN_IMPORT("msvcrt.dll", free);
using BstrAlloc = LUMAVEN_IMPORT("OLEAUT32.dll", SysAllocStringLen);
using BstrFree = LUMAVEN_IMPORT("OLEAUT32.dll", SysFreeString);

// Every block the DLL takes from the C heap gets kGuardBytes more, filled with kGuardByte; a
// block given back (freed or reallocated) with them changed was written past its end, which
// fails the test that was running. Without this a write one character too far mostly lands in
// the heap's rounding and shows nowhere.
constexpr size_t kGuardBytes = 16;
constexpr unsigned char kGuardByte = 0xFD;
// A new block's bytes (and a grown block's new ones) are not zero, as under a debug C runtime,
// which fills them with 0xCD: code that reads a block before writing it shows here, where
// fresh pages would hand it zeros.
constexpr unsigned char kNewByte = 0xCD;
// A fenced block ends where a page that cannot be touched begins, as a full page heap places
// it (Application Verifier's): a read past the end faults at once. It starts 16-aligned like
// any block of malloc's, so up to 15 guard bytes lie between its end and the fence.
constexpr size_t kAlignment = 16;

size_t PageSize()
{
    static const size_t page = [] {
        SYSTEM_INFO system{};
        GetSystemInfo(&system);
        return static_cast<size_t>(system.dwPageSize);
    }();
    return page;
}

size_t RoundUp(size_t size, size_t unit)
{
    return (size + unit - 1) / unit * unit;
}

// How many guard bytes follow a block: a fenced one's up to its fence, any other's kGuardBytes.
size_t GuardOf(const Heap& heap, void* block, size_t size)
{
    const auto found = heap.fenced.find(block);
    return found != heap.fenced.end()
               ? static_cast<size_t>(found->second.fence - static_cast<unsigned char*>(block)) - size
               : kGuardBytes;
}

// Fills the guard bytes after a block and tracks it as the DLL's.
void* Guarded(void* block, size_t size, size_t guard)
{
    if (block != nullptr) {
        std::memset(static_cast<unsigned char*>(block) + size, kGuardByte, guard);
    }
    return Tracked(block, size);
}

void* FencedBlock(size_t size)
{
    const size_t page = PageSize();
    const size_t rounded = RoundUp(size, kAlignment);
    const size_t room = std::max(RoundUp(rounded, page), page);
    auto* const pages =
        static_cast<unsigned char*>(VirtualAlloc(nullptr, room + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (pages == nullptr) {
        return nullptr;
    }
    DWORD protection = 0;
    VirtualProtect(pages + room, page, PAGE_NOACCESS, &protection);
    unsigned char* const block = pages + room - rounded;
    Locked(DllHeap(), [block, pages, room](Heap& heap) { heap.fenced[block] = {pages, pages + room}; });
    return Guarded(block, size, rounded - size);
}

// A block of `size` bytes for the DLL, fenced or from the C heap, its bytes `fill` and followed
// by guard bytes.
void* NewBlock(size_t size, unsigned char fill = kNewByte)
{
    const bool fence = Locked(DllHeap(), [](const Heap& heap) { return heap.fence; });
    void* const block = fence ? FencedBlock(size) : Guarded(Original<Malloc>()(size + kGuardBytes), size, kGuardBytes);
    if (block != nullptr) {
        std::memset(block, fill, size);
    }
    return block;
}

// Checks a block the DLL gives back and forgets it; its size, when the block is the DLL's.
std::optional<size_t> GivenBack(void* block)
{
    std::optional<size_t> size;
    size_t guard = 0;
    Locked(DllHeap(), [block, &size, &guard](const Heap& heap) {
        const auto found = heap.live.find(block);
        if (found != heap.live.end()) {
            size = found->second.second;
            guard = GuardOf(heap, block, *size);
        }
    });
    if (!size) {
        return size;  // made before the hooks, or not from the C heap
    }
    const auto* const after = static_cast<const unsigned char*>(block) + *size;
    if (std::any_of(after, after + guard, [](unsigned char byte) { return byte != kGuardByte; })) {
        ADD_FAILURE() << "LumavenService.dll wrote past the end of a block of " << *size << " bytes";
    }
    Untracked(block);
    return size;
}

// Gives a block back to where it came from: its pages or the C heap.
void Release(void* block)
{
    void* pages = nullptr;
    Locked(DllHeap(), [block, &pages](Heap& heap) {
        const auto found = heap.fenced.find(block);
        if (found != heap.fenced.end()) {
            pages = found->second.pages;
            heap.fenced.erase(found);
        }
    });
    if (pages != nullptr) {
        VirtualFree(pages, 0, MEM_RELEASE);
    } else {
        Original<Free>()(block);
    }
}

void* HookedMalloc(size_t size)
{
    if (AllocationFails<Malloc>(size)) {
        errno = ENOMEM;
        return nullptr;
    }
    return NewBlock(size);
}

void* HookedCalloc(size_t count, size_t size)
{
    if (AllocationFails<Calloc>(count * size)) {
        errno = ENOMEM;
        return nullptr;
    }
    return NewBlock(count * size, 0);
}

// A failed realloc leaves the block where it was, with its owner. Otherwise the block moves,
// as realloc may: a pointer kept to the old place reads freed memory, which for a fenced block
// is released pages and faults.
void* HookedRealloc(void* block, size_t size)
{
    if (AllocationFails<Realloc>(size)) {
        errno = ENOMEM;
        return nullptr;
    }
    if (block == nullptr) {
        return NewBlock(size);
    }
    if (!Locked(DllHeap(), [block](const Heap& heap) { return heap.live.contains(block); })) {
        // Made before the hooks (the runtime's own tables): its size is the heap's secret, so
        // the heap moves it, and it is the DLL's from now on.
        if (size == 0) {
            return Original<Realloc>()(block, 0);
        }
        return Guarded(Original<Realloc>()(block, size + kGuardBytes), size, kGuardBytes);
    }
    if (size == 0) {
        GivenBack(block);
        Release(block);
        return nullptr;
    }
    void* const moved = NewBlock(size);
    if (moved == nullptr) {
        return nullptr;
    }
    std::memcpy(moved, block, std::min(GivenBack(block).value_or(0), size));
    Release(block);
    return moved;
}

char* HookedStrdup(const char* text)
{
    if (AllocationFails<Strdup>(std::strlen(text) + 1)) {
        errno = ENOMEM;
        return nullptr;
    }
    const size_t size = std::strlen(text) + 1;
    void* const copy = NewBlock(size);
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
    }
    return static_cast<char*>(copy);
}

void HookedFree(void* block)
{
    intptr_t ignored = 0;
    Free::hook.Fires(ignored);
    GivenBack(block);
    Release(block);
}

BSTR WINAPI HookedBstrAlloc(const OLECHAR* text, UINT length)
{
    if (AllocationFails<BstrAlloc>(length * sizeof(OLECHAR))) {
        return nullptr;
    }
    return static_cast<BSTR>(Tracked(Original<BstrAlloc>()(text, length), length * sizeof(OLECHAR)));
}

void WINAPI HookedBstrFree(BSTR text)
{
    intptr_t ignored = 0;
    BstrFree::hook.Fires(ignored);
    Untracked(text);
    Original<BstrFree>()(text);
}

// ---- Handles ------------------------------------------------------------------------------------
//
// Each replacement below lets the generic one fail or forward the call, and then notes the
// handle a successful call handed out or the one given back.

enum class HandleKind { Key, DeviceSet, Library };

struct Handles {
    std::mutex lock;
    std::multimap<std::pair<HandleKind, void*>, std::string> held;
};

Handles& DllHandles()
{
    static Handles handles;
    return handles;
}

struct Loads {
    std::mutex lock;
    std::vector<LibraryLoad> asked;
};

Loads& DllLoads()
{
    static Loads loads;
    return loads;
}

void Asked(LPCWSTR name, HANDLE file, DWORD flags)
{
    Locked(DllLoads(), [&](Loads& loads) {
        loads.asked.push_back({name != nullptr ? name : L"(null)", file != nullptr, flags});
    });
}

void Take(HandleKind kind, void* handle, std::string name = {})
{
    Handles& handles = DllHandles();
    const std::lock_guard guard(handles.lock);
    handles.held.emplace(std::make_pair(kind, handle), std::move(name));
}

void GiveBack(HandleKind kind, void* handle)
{
    Handles& handles = DllHandles();
    const std::lock_guard guard(handles.lock);
    const auto found = handles.held.find(std::make_pair(kind, handle));
    if (found != handles.held.end()) {
        handles.held.erase(found);
    }
}

std::string FileNameOf(HMODULE module)
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(module, path, MAX_PATH);
    const char* const slash = std::strrchr(path, '\\');
    return slash != nullptr ? slash + 1 : path;
}

using OpenKey = LUMAVEN_IMPORT("ADVAPI32.dll", RegOpenKeyExW);
using CreateKey = LUMAVEN_IMPORT("ADVAPI32.dll", RegCreateKeyExW);
using CloseKey = LUMAVEN_IMPORT("ADVAPI32.dll", RegCloseKey);
using OpenDeviceKey = LUMAVEN_IMPORT("SETUPAPI.dll", SetupDiOpenDevRegKey);
using GetClassDevices = LUMAVEN_IMPORT("SETUPAPI.dll", SetupDiGetClassDevsW);
using DestroyDeviceList = LUMAVEN_IMPORT("SETUPAPI.dll", SetupDiDestroyDeviceInfoList);
using LoadLibraryEx = LUMAVEN_IMPORT("KERNEL32.dll", LoadLibraryExW);
using LoadLibraryPlain = LUMAVEN_IMPORT("KERNEL32.dll", LoadLibraryW);
using FreeLibraryImport = LUMAVEN_IMPORT("KERNEL32.dll", FreeLibrary);
using ClassGuids = LUMAVEN_IMPORT("SETUPAPI.dll", SetupDiClassGuidsFromNameW);
using QueryValue = LUMAVEN_IMPORT("ADVAPI32.dll", RegQueryValueExW);

LSTATUS WINAPI HookedOpenKey(HKEY parent, LPCWSTR name, DWORD options, REGSAM access, PHKEY key)
{
    const LSTATUS status = OpenKey::Call(parent, name, options, access, key);
    if (status == ERROR_SUCCESS) {
        Take(HandleKind::Key, *key);
    }
    return status;
}

LSTATUS WINAPI HookedCreateKey(HKEY parent, LPCWSTR name, DWORD reserved, LPWSTR type, DWORD options, REGSAM access,
                               const LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition)
{
    const LSTATUS status = CreateKey::Call(parent, name, reserved, type, options, access, security, key, disposition);
    if (status == ERROR_SUCCESS) {
        Take(HandleKind::Key, *key);
    }
    return status;
}

LSTATUS WINAPI HookedCloseKey(HKEY key)
{
    GiveBack(HandleKind::Key, key);
    return CloseKey::Call(key);
}

HKEY WINAPI HookedOpenDeviceKey(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD scope, DWORD profile, DWORD type,
                                REGSAM access)
{
    const HKEY key = OpenDeviceKey::Call(set, device, scope, profile, type, access);
    if (key != nullptr && key != INVALID_HANDLE_VALUE) {
        Take(HandleKind::Key, key);
    }
    return key;
}

HDEVINFO WINAPI HookedGetClassDevices(const GUID* type, PCWSTR enumerator, HWND parent, DWORD flags)
{
    const HDEVINFO set = GetClassDevices::Call(type, enumerator, parent, flags);
    if (set != nullptr && set != INVALID_HANDLE_VALUE) {
        Take(HandleKind::DeviceSet, set);
    }
    return set;
}

BOOL WINAPI HookedDestroyDeviceList(HDEVINFO set)
{
    GiveBack(HandleKind::DeviceSet, set);
    return DestroyDeviceList::Call(set);
}

HMODULE WINAPI HookedLoadLibraryEx(LPCWSTR name, HANDLE file, DWORD flags)
{
    Asked(name, file, flags);
    const HMODULE module = LoadLibraryEx::Call(name, file, flags);
    if (module != nullptr) {
        Take(HandleKind::Library, module, FileNameOf(module));
    }
    return module;
}

HMODULE WINAPI HookedLoadLibrary(LPCWSTR name)
{
    Asked(name, nullptr, 0);
    const HMODULE module = LoadLibraryPlain::Call(name);
    if (module != nullptr) {
        Take(HandleKind::Library, module, FileNameOf(module));
    }
    return module;
}

BOOL WINAPI HookedFreeLibrary(HMODULE module)
{
    GiveBack(HandleKind::Library, module);
    return FreeLibraryImport::Call(module);
}

// ---- Hostile answers -----------------------------------------------------------------------------

struct Answers {
    bool arrays = false;
    DWORD classGuidCount = 0;
    DWORD edidClaim = 0;
};

Answers& Answer()
{
    static Answers answers;
    return answers;
}

// A read of "EDID" that the claim answers: more data, of the claimed size, whatever room the
// caller gave.
LSTATUS WINAPI HookedQueryValue(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    const LSTATUS status = QueryValue::Call(key, name, reserved, type, data, size);
    const DWORD claim = Answer().edidClaim;
    if (claim == 0 || name == nullptr || std::wcscmp(name, L"EDID") != 0 || size == nullptr ||
        (status != ERROR_SUCCESS && status != ERROR_MORE_DATA)) {
        return status;
    }
    *size = claim;
    return ERROR_MORE_DATA;
}

// With a count to report, the list is filled as far as it holds real GUIDs, and the call
// succeeds only when the list has room for the whole count, as SetupAPI answers a list that
// is too small.
BOOL WINAPI HookedClassGuids(PCWSTR name, LPGUID list, DWORD size, PDWORD required)
{
    const BOOL answered = ClassGuids::Call(name, list, size, required);
    const DWORD count = Answer().classGuidCount;
    if (count == 0 || (!answered && GetLastError() != ERROR_INSUFFICIENT_BUFFER)) {
        return answered;
    }
    if (required != nullptr) {
        *required = count;
    }
    if (size < count) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    return TRUE;
}

// ---- COM methods ------------------------------------------------------------------------------
//
// The WMI objects the DLL receives get a copy of their method table in which one method is
// replaced: the object is otherwise untouched (its reference counts, its other interfaces and
// what it hands out stay its own), and the replaced method fails when armed. Slot numbers are
// those of the interfaces' published layouts: IUnknown's three methods, then the interface's
// own in declaration order.

struct MethodTable {
    size_t slots;
    size_t replaced;
};
constexpr MethodTable kLocatorTable{4, 3};       // IWbemLocator: ConnectServer
constexpr MethodTable kServicesTable{26, 20};    // IWbemServices: ExecQuery
constexpr MethodTable kEnumeratorTable{8, 4};    // IEnumWbemClassObject: Next
constexpr MethodTable kClassObjectTable{27, 4};  // IWbemClassObject: Get

Hook g_connectServer{"ole32.dll", "IWbemLocator::ConnectServer"};
Hook g_execQuery{"ole32.dll", "IWbemServices::ExecQuery"};
Hook g_next{"ole32.dll", "IEnumWbemClassObject::Next"};
Hook g_get{"ole32.dll", "IWbemClassObject::Get"};

void ReplaceMethod(void* object, const MethodTable& layout, Hook& hook)
{
    static std::mutex lock;
    static std::map<void**, std::vector<void*>> copies;
    const std::lock_guard guard(lock);
    void**& table = *static_cast<void***>(object);
    for (const auto& [original, copy] : copies) {
        if (table == copy.data()) {
            return;  // handed out again: already has its copy
        }
    }
    std::vector<void*>& copy = copies[table];
    if (copy.empty()) {
        copy.assign(table, table + layout.slots);
        copy[layout.replaced] = hook.replacement;
    }
    hook.original = table[layout.replaced];
    table = copy.data();
}

template <class Method>
Method OriginalMethod(const Hook& hook)
{
    return reinterpret_cast<Method>(hook.original);
}

HRESULT WINAPI HookedGet(IWbemClassObject* self, LPCWSTR name, long flags, VARIANT* value, CIMTYPE* type, long* flavor)
{
    CallTrace::Record(g_get.Function(), name, flags, value, type, flavor);
    intptr_t failed = 0;
    if (g_get.Fires(failed)) {
        return static_cast<HRESULT>(failed);
    }
    const HRESULT result = OriginalMethod<decltype(&HookedGet)>(g_get)(self, name, flags, value, type, flavor);
    if (SUCCEEDED(result) && Answer().arrays && value != nullptr && value->vt == VT_BSTR) {
        // Made and filled by the test process itself, not through the DLL's imports; the DLL
        // frees it when it clears the variant.
        SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 1);
        LONG first = 0;
        SafeArrayPutElement(array, &first, value->bstrVal);
        VariantClear(value);
        value->vt = VT_ARRAY | VT_BSTR;
        value->parray = array;
    }
    return result;
}

HRESULT WINAPI HookedNext(IEnumWbemClassObject* self, long timeout, ULONG count, IWbemClassObject** objects,
                          ULONG* returned)
{
    CallTrace::Record(g_next.Function(), timeout, count, objects, returned);
    intptr_t failed = 0;
    if (g_next.Fires(failed)) {
        if (returned != nullptr) {
            *returned = 0;
        }
        return static_cast<HRESULT>(failed);
    }
    const HRESULT result = OriginalMethod<decltype(&HookedNext)>(g_next)(self, timeout, count, objects, returned);
    for (ULONG i = 0; SUCCEEDED(result) && returned != nullptr && i < *returned; ++i) {
        ReplaceMethod(objects[i], kClassObjectTable, g_get);
    }
    return result;
}

HRESULT WINAPI HookedExecQuery(IWbemServices* self, BSTR language, BSTR query, long flags, IWbemContext* context,
                               IEnumWbemClassObject** enumerator)
{
    CallTrace::Record(g_execQuery.Function(), CallTrace::CountedText{language}, CallTrace::CountedText{query}, flags,
                      context, enumerator);
    intptr_t failed = 0;
    if (g_execQuery.Fires(failed)) {
        *enumerator = nullptr;
        return static_cast<HRESULT>(failed);
    }
    const HRESULT result =
        OriginalMethod<decltype(&HookedExecQuery)>(g_execQuery)(self, language, query, flags, context, enumerator);
    if (SUCCEEDED(result) && *enumerator != nullptr) {
        ReplaceMethod(*enumerator, kEnumeratorTable, g_next);
    }
    return result;
}

HRESULT WINAPI HookedConnectServer(IWbemLocator* self, BSTR wmiNamespace, BSTR user, BSTR password, BSTR locale,
                                   long securityFlags, BSTR authority, IWbemContext* context, IWbemServices** services)
{
    CallTrace::Record(g_connectServer.Function(), CallTrace::CountedText{wmiNamespace}, CallTrace::CountedText{user},
                      CallTrace::CountedText{password}, CallTrace::CountedText{locale}, securityFlags,
                      CallTrace::CountedText{authority}, context, services);
    intptr_t failed = 0;
    if (g_connectServer.Fires(failed)) {
        *services = nullptr;
        return static_cast<HRESULT>(failed);
    }
    const HRESULT result = OriginalMethod<decltype(&HookedConnectServer)>(g_connectServer)(
        self, wmiNamespace, user, password, locale, securityFlags, authority, context, services);
    if (SUCCEEDED(result) && *services != nullptr) {
        ReplaceMethod(*services, kServicesTable, g_execQuery);
    }
    return result;
}

using CreateInstance = LUMAVEN_IMPORT("ole32.dll", CoCreateInstance);

HRESULT WINAPI HookedCreateInstance(REFCLSID type, IUnknown* outer, DWORD context, REFIID interfaceId, void** object)
{
    CallTrace::Record(CreateInstance::hook.Function(), type, outer, context, interfaceId, object);
    intptr_t failed = 0;
    if (CreateInstance::hook.Fires(failed)) {
        *object = nullptr;
        return static_cast<HRESULT>(failed);
    }
    const HRESULT result = Original<CreateInstance>()(type, outer, context, interfaceId, object);
    if (SUCCEEDED(result) && IsEqualIID(interfaceId, IID_IWbemLocator)) {
        ReplaceMethod(*object, kLocatorTable, g_connectServer);
    }
    return result;
}

// ---- The list -------------------------------------------------------------------------------

std::vector<Hook*> MakeHooks()
{
    g_connectServer.replacement = reinterpret_cast<void*>(&HookedConnectServer);
    g_execQuery.replacement = reinterpret_cast<void*>(&HookedExecQuery);
    g_next.replacement = reinterpret_cast<void*>(&HookedNext);
    g_get.replacement = reinterpret_cast<void*>(&HookedGet);
    return {
        Bind(CloseKey::hook, &HookedCloseKey),
        Bind(CreateKey::hook, &HookedCreateKey),
        Bind(OpenKey::hook, &HookedOpenKey),
        Bind(QueryValue::hook, &HookedQueryValue),
        LUMAVEN_GENERIC("ADVAPI32.dll", RegSetValueExW),
        Bind(ClassGuids::hook, &HookedClassGuids),
        Bind(DestroyDeviceList::hook, &HookedDestroyDeviceList),
        LUMAVEN_GENERIC("SETUPAPI.dll", SetupDiEnumDeviceInfo),
        Bind(GetClassDevices::hook, &HookedGetClassDevices),
        Bind(OpenDeviceKey::hook, &HookedOpenDeviceKey),
        LUMAVEN_GENERIC("OLEAUT32.dll", SafeArrayAccessData),
        LUMAVEN_GENERIC("OLEAUT32.dll", SafeArrayGetElement),
        LUMAVEN_GENERIC("OLEAUT32.dll", SafeArrayUnaccessData),
        LUMAVEN_GENERIC("OLEAUT32.dll", SysStringLen),
        LUMAVEN_GENERIC("OLEAUT32.dll", VariantClear),
        LUMAVEN_GENERIC("OLEAUT32.dll", VariantInit),
        Bind(BstrAlloc::hook, &HookedBstrAlloc),
        Bind(BstrFree::hook, &HookedBstrFree),
        LUMAVEN_GENERIC("ole32.dll", CoInitializeEx),
        LUMAVEN_GENERIC("ole32.dll", CoInitializeSecurity),
        LUMAVEN_GENERIC("ole32.dll", CoSetProxyBlanket),
        LUMAVEN_GENERIC("ole32.dll", CoUninitialize),
        Bind(CreateInstance::hook, &HookedCreateInstance),
        Bind(LoadLibraryEx::hook, &HookedLoadLibraryEx),
        Bind(LoadLibraryPlain::hook, &HookedLoadLibrary),
        LUMAVEN_GENERIC("KERNEL32.dll", GetProcAddress),
        Bind(FreeLibraryImport::hook, &HookedFreeLibrary),
        LUMAVEN_GENERIC("KERNEL32.dll", Sleep),
        Bind(Malloc::hook, &HookedMalloc),
        Bind(Calloc::hook, &HookedCalloc),
        Bind(Realloc::hook, &HookedRealloc),
        Bind(Strdup::hook, &HookedStrdup),
        Bind(Free::hook, &HookedFree),
        &g_connectServer,
        &g_execQuery,
        &g_next,
        &g_get,
    };
}

bool SameName(const char* a, const char* b)
{
    return _stricmp(a, b) == 0;
}

}  // namespace

const std::vector<Hook*>& AllHooks()
{
    static const std::vector<Hook*> hooks = MakeHooks();
    return hooks;
}

Hook* FindHook(const std::string& function)
{
    for (Hook* hook : AllHooks()) {
        if (function == hook->Function()) {
            return hook;
        }
    }
    return nullptr;
}

void DisarmAll()
{
    for (Hook* hook : AllHooks()) {
        hook->Disarm();
    }
    FailNthAllocation(0);
    AnswerStringPropertiesAsArrays(false);
    AnswerClassGuidCount(0);
    AnswerEdidClaim(0);
    FailAllocationsFrom(0);
    FenceBlocks(false);
    TraceCalls(false);
}

void SkipWaits()
{
    FindHook("Sleep")->Arm(Failure{1, true, 0, 0});
}

void AnswerStringPropertiesAsArrays(bool on)
{
    Answer().arrays = on;
}

void AnswerClassGuidCount(DWORD count)
{
    Answer().classGuidCount = count;
}

void AnswerEdidClaim(DWORD bytes)
{
    Answer().edidClaim = bytes;
}

HeldHandles Held()
{
    Handles& handles = DllHandles();
    const std::lock_guard guard(handles.lock);
    HeldHandles held;
    for (const auto& [key, name] : handles.held) {
        switch (key.first) {
        case HandleKind::Key: ++held.keys; break;
        case HandleKind::DeviceSet: ++held.deviceSets; break;
        case HandleKind::Library: held.libraries.push_back(name); break;
        }
    }
    return held;
}

std::vector<LibraryLoad> LibraryLoads()
{
    return Locked(DllLoads(), [](const Loads& loads) { return loads.asked; });
}

void ForgetLibraryLoads()
{
    Locked(DllLoads(), [](Loads& loads) { loads.asked.clear(); });
}

void ForgetHeld()
{
    Locked(DllHandles(), [](Handles& handles) { handles.held.clear(); });
}

void FailNthAllocation(int nth)
{
    Locked(DllHeap(), [nth](Heap& heap) {
        heap.calls = 0;
        heap.failAt = nth;
    });
}

void FailAllocationsFrom(size_t bytes, size_t upTo)
{
    Locked(DllHeap(), [bytes, upTo](Heap& heap) {
        heap.failFrom = bytes;
        heap.failUpTo = upTo;
    });
}

void FenceBlocks(bool on)
{
    Locked(DllHeap(), [on](Heap& heap) { heap.fence = on; });
}

std::optional<size_t> FencedBlockBefore(const void* address)
{
    const size_t page = PageSize();
    return Locked(DllHeap(), [address, page](const Heap& heap) {
        const auto* const at = static_cast<const unsigned char*>(address);
        for (const auto& [block, fenced] : heap.fenced) {
            const auto live = heap.live.find(block);
            if (at >= fenced.fence && at < fenced.fence + page && live != heap.live.end()) {
                return std::optional<size_t>(live->second.second);
            }
        }
        return std::optional<size_t>();
    });
}

int AllocationCalls()
{
    return Locked(DllHeap(), [](const Heap& heap) { return heap.calls; });
}

size_t LiveBlocks()
{
    return Locked(DllHeap(), [](const Heap& heap) { return heap.live.size(); });
}

uint64_t AllocationMark()
{
    return Locked(DllHeap(), [](const Heap& heap) { return heap.made; });
}

std::vector<size_t> LiveBlocksSince(uint64_t mark)
{
    return Locked(DllHeap(), [mark](const Heap& heap) {
        std::vector<size_t> sizes;
        for (const auto& [block, made] : heap.live) {
            if (made.first > mark) {
                sizes.push_back(made.second);
            }
        }
        return sizes;
    });
}

PatchedImports::PatchedImports(HMODULE module)
{
    auto* const base = reinterpret_cast<BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) {
        return;
    }
    for (auto* descriptor = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         descriptor->Name != 0; ++descriptor) {
        const auto* library = reinterpret_cast<const char*>(base + descriptor->Name);
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + descriptor->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + descriptor->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) {
                continue;
            }
            const auto* byName = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            const auto* function = reinterpret_cast<const char*>(byName->Name);
            for (Hook* hook : AllHooks()) {
                if (!SameName(hook->Library(), library) || std::strcmp(hook->Function(), function) != 0) {
                    continue;
                }
                void** const address = reinterpret_cast<void**>(&slots->u1.Function);
                DWORD protection = 0;
                VirtualProtect(address, sizeof(void*), PAGE_READWRITE, &protection);
                m_slots.push_back({address, *address});
                hook->original = *address;
                *address = hook->replacement;
                VirtualProtect(address, sizeof(void*), protection, &protection);
                m_names.push_back(std::string(library) + "!" + function);
            }
        }
    }
}

PatchedImports::~PatchedImports()
{
    for (const Slot& slot : m_slots) {
        DWORD protection = 0;
        VirtualProtect(slot.address, sizeof(void*), PAGE_READWRITE, &protection);
        *slot.address = slot.original;
        VirtualProtect(slot.address, sizeof(void*), protection, &protection);
    }
}

}  // namespace LumavenOsFaults
