#include "intel/ControlLibClient.h"

#include "util/ProcAddress.h"

#include <cwchar>
#include <initializer_list>

// strsafe.h renames the plain formatting functions to deprecation messages; it comes last.
#include <strsafe.h>

namespace Xelto::Spanlet::Server::Services::Lumaven {

HMODULE controlLibModule = nullptr;
ctl_runtime_path_args_t* runtimePathArgs = nullptr;

namespace {

#define LUMAVEN_CTL_NAME(name, ...) #name,
constexpr size_t kLoaderFunctions =
    std::initializer_list<const char*>{LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NAME, LUMAVEN_CTL_NOTHING)}.size();
constexpr size_t kForwardedFunctions =
    std::initializer_list<const char*>{LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_CTL_NAME)}.size();
#undef LUMAVEN_CTL_NAME
static_assert(kLoaderFunctions == 3 && kForwardedFunctions == 90, "the client layer offers 93 entry points");

// The library's symbol `name` as a pointer of the caller's own type, or null when no library
// is loaded or it lacks the symbol. Looked up afresh on every call: a library replaced between
// two sessions is never called through a stale address.
template <class Function>
Function LookUp(const char* name)
{
    if (controlLibModule == nullptr) {
        return nullptr;
    }
    return LumavenUtil::ResolveProc<Function>(controlLibModule, name);
}

}  // namespace

void FormatLibraryFileName(wchar_t (&path)[kControlLibPathCapacity], const wchar_t* baseName)
{
    static_assert(kControlLibFileNameBytes <= kControlLibPathCapacity * sizeof(wchar_t));
    // The formatter's own result is not needed: a name that does not fit is cut.
    (void)StringCbPrintfW(path, kControlLibFileNameBytes, L"%s.dll", baseName);
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven

using Xelto::Spanlet::Server::Services::Lumaven::controlLibModule;
using Xelto::Spanlet::Server::Services::Lumaven::FormatLibraryFileName;
using Xelto::Spanlet::Server::Services::Lumaven::kControlLibPathCapacity;
using Xelto::Spanlet::Server::Services::Lumaven::LookUp;
using Xelto::Spanlet::Server::Services::Lumaven::runtimePathArgs;

extern "C" ctl_result_t CTL_APICALL ctlInit(ctl_init_args_t* pInitDesc, ctl_api_handle_t* phAPIHandle)
{
    ctl_result_t result = CTL_RESULT_ERROR_NOT_INITIALIZED;
    if (controlLibModule == nullptr) {
        wchar_t path[kControlLibPathCapacity] = {};
        bool load = true;
        if (runtimePathArgs != nullptr && runtimePathArgs->pRuntimePath != nullptr) {
            // A caller that names its own library gets it without a version check; an
            // over-long path is cut, not refused.
            wcsncpy_s(path, kControlLibPathCapacity, runtimePathArgs->pRuntimePath, kControlLibPathCapacity - 1);
        } else if (pInitDesc != nullptr && CtlMajorVersion(pInitDesc->AppVersion) > 1) {
            result = CTL_RESULT_ERROR_UNSUPPORTED_VERSION;
            load = false;
        } else {
            FormatLibraryFileName(path, L"ControlLib");
        }
        if (load) {
            // A runtime path goes to the loader as it stands; only a bare name is searched
            // for, and then in system32 only.
            controlLibModule = LoadLibraryExW(path, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
            if (controlLibModule == nullptr) {
                result = CTL_RESULT_ERROR_LOAD;
            } else {
                result = CTL_RESULT_SUCCESS;
                if (runtimePathArgs != nullptr) {
                    if (const auto setRuntimePath = LookUp<decltype(&ctlSetRuntimePath)>("ctlSetRuntimePath")) {
                        (void)setRuntimePath(runtimePathArgs);
                    }
                }
            }
        }
        if (controlLibModule == nullptr) {
            return result;
        }
    }
    // A library loaded by this very call reports success even without its own ctlInit; one
    // loaded before reports the not-initialised error instead.
    if (const auto init = LookUp<decltype(&ctlInit)>("ctlInit")) {
        return init(pInitDesc, phAPIHandle);
    }
    return result;
}

extern "C" ctl_result_t CTL_APICALL ctlClose(ctl_api_handle_t hAPIHandle)
{
    ctl_result_t result = CTL_RESULT_ERROR_NOT_INITIALIZED;
    if (const auto close = LookUp<decltype(&ctlClose)>("ctlClose")) {
        result = close(hAPIHandle);
        // A library that refused to close stays loaded, so the next ctlInit reuses it.
        if (result == CTL_RESULT_SUCCESS) {
            FreeLibrary(controlLibModule);
            controlLibModule = nullptr;
        }
    }
    runtimePathArgs = nullptr;
    return result;
}

extern "C" ctl_result_t CTL_APICALL ctlSetRuntimePath(ctl_runtime_path_args_t* pArgs)
{
    if (controlLibModule != nullptr) {
        const auto setRuntimePath = LookUp<decltype(&ctlSetRuntimePath)>("ctlSetRuntimePath");
        return setRuntimePath != nullptr ? setRuntimePath(pArgs) : CTL_RESULT_ERROR_NOT_INITIALIZED;
    }
    // Remembered for the next load; the caller keeps the record and its path alive until then.
    if (pArgs != nullptr && pArgs->pRuntimePath != nullptr) {
        runtimePathArgs = pArgs;
        return CTL_RESULT_SUCCESS;
    }
    return CTL_RESULT_ERROR_NOT_INITIALIZED;
}

// The 90 forwarders: the symbol of the same name, called with the arguments unchanged (a
// record passed by value reaches the library as this function's copy), its result returned
// unchanged; 0x40000001 when there is no library or no such symbol.
#define LUMAVEN_CTL_DEFINE_FORWARDER(name, ...)                                                              \
    extern "C" ctl_result_t CTL_APICALL name(LUMAVEN_CTL_PARAMS(__VA_ARGS__))                                \
    {                                                                                                        \
        const auto symbol = LookUp<decltype(&name)>(#name);                                                  \
        return symbol != nullptr ? symbol(LUMAVEN_CTL_ARGS(__VA_ARGS__)) : CTL_RESULT_ERROR_NOT_INITIALIZED; \
    }
LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_CTL_DEFINE_FORWARDER)
#undef LUMAVEN_CTL_DEFINE_FORWARDER
