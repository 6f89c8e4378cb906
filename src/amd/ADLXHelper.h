// ADLX ("amdadlx64.dll") for the whole process: one helper that loads, initialises and
// terminates it, and the display services and first display that the VariBright operations
// use. Unlike ADL, ADLX stays loaded between commands, until the display services cannot
// be had or the module unloads. Nothing here is locked: the service's m_adlxMutex
// serialises every user.
#pragma once

#include "amd/AdlxTypes.h"

#include <windows.h>

#include <cstdint>

// ADLX's six exports in the order they are resolved, as X(member, function type, export
// name). The helper binds all of them from this one list and needs all of them.
#define LUMAVEN_ADLX_ENTRY_POINTS(X)                                                                        \
    X(m_fullVersionFn, ADLXQueryFullVersion_Fn, ADLX_QUERY_FULL_VERSION_FUNCTION_NAME)                      \
    X(m_versionFn, ADLXQueryVersion_Fn, ADLX_QUERY_VERSION_FUNCTION_NAME)                                   \
    X(m_initWithCallerAdlFn, ADLXInitializeWithCallerAdl_Fn, ADLX_INIT_WITH_CALLER_ADL_FUNCTION_NAME)       \
    X(m_initWithIncompatibleDriverFn, ADLXInitializeWithIncompatibleDriver_Fn,                              \
      ADLX_INIT_WITH_INCOMPATIBLE_DRIVER_FUNCTION_NAME)                                                     \
    X(m_initFn, ADLXInitialize_Fn, ADLX_INIT_FUNCTION_NAME)                                                 \
    X(m_terminateFn, ADLXTerminate_Fn, ADLX_TERMINATE_FUNCTION_NAME)

class ADLXHelper {
public:
    constexpr ADLXHelper() = default;
    // Terminates ADLX, so the process-wide instance releases the library at module unload.
    virtual ~ADLXHelper();
    ADLXHelper(const ADLXHelper&) = delete;
    ADLXHelper& operator=(const ADLXHelper&) = delete;

    // Loads the library and binds its six exports (once), then initialises ADLX. 3 when the
    // library or any export is missing; a repeated call answers ADLX_ALREADY_INITIALIZED.
    ADLX_RESULT Initialize();
    // Terminates ADLX and unloads the library; 0 when it is not loaded.
    ADLX_RESULT Terminate();

    adlx::IADLXSystem* GetSystemServices() const { return m_pSystemServices; }
    adlx_uint64 QueryFullVersion() const { return m_ADLXFullVersion; }
    const char* QueryVersion() const { return m_ADLXVersion; }
    bool IsLoaded() const { return m_hDLLHandle != nullptr; }
    // How many times the library has been loaded. ADLX objects die with the load that made
    // them: one obtained under an earlier load must not be used or released.
    uint64_t LoadCount() const { return m_loads; }

private:
    HMODULE m_hDLLHandle = nullptr;
    adlx_uint64 m_ADLXFullVersion = 0;
    const char* m_ADLXVersion = nullptr;  // owned by ADLX
    adlx::IADLXSystem* m_pSystemServices = nullptr;
    adlx::IADLMapping* m_pAdlMapping = nullptr;  // only the caller-ADL initialisation fills it
#define LUMAVEN_ADLX_MEMBER(member, type, name) type member = nullptr;
    LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_MEMBER)
#undef LUMAVEN_ADLX_MEMBER
    uint64_t m_loads = 0;
};

// The process-wide instance.
extern ADLXHelper g_ADLXHelp;

// The display services and the first display of the most recent successful
// InitializeAdlxDisplay; null until then.
extern adlx::IADLXDisplayServices* adlxDisplayServices;
extern adlx::IADLXDisplay* adlxDisplay;

// Initialises ADLX and (re)takes its display services and first display, releasing the
// previous ones. Without display services ADLX is terminated again.
void InitializeAdlxDisplay();
// The VariBright interface of the first display, a new reference that the caller may keep.
// ADLX_FAIL (and null) when there are no display services.
ADLX_RESULT GetVariBright(adlx::IADLXDisplayVariBright** ppVariBright);
// Whether the first display supports VariBright; false when it cannot be asked.
bool IsVaribrightSupported();
// Switches VariBright of the first display; true when ADLX accepted it.
bool SetVaribrightEnabled(bool enable);
