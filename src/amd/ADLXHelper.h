// ADLX ("amdadlx64.dll") for the whole process: one helper that loads, initialises and
// terminates it, and the display services and first display that the VariBright operations
// use. Unlike ADL, ADLX stays loaded between commands, until the display services cannot
// be had or the module unloads (but not when the process ends: see ~ADLXHelper). Nothing here
// is locked: the service's m_adlxMutex serialises every user.
#pragma once

#include "amd/AdlxTypes.h"

#include "util/UniqueHandles.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>

// ADLX's six exports in the order they are resolved, as X(member, function type, export
// name). The helper binds all of them from this one list and needs all of them.
#define LUMAVEN_ADLX_ENTRY_POINTS(X)                                                                  \
    X(m_fullVersionFn, ADLXQueryFullVersion_Fn, ADLX_QUERY_FULL_VERSION_FUNCTION_NAME)                \
    X(m_versionFn, ADLXQueryVersion_Fn, ADLX_QUERY_VERSION_FUNCTION_NAME)                             \
    X(m_initWithCallerAdlFn, ADLXInitializeWithCallerAdl_Fn, ADLX_INIT_WITH_CALLER_ADL_FUNCTION_NAME) \
    X(m_initWithIncompatibleDriverFn, ADLXInitializeWithIncompatibleDriver_Fn,                        \
      ADLX_INIT_WITH_INCOMPATIBLE_DRIVER_FUNCTION_NAME)                                               \
    X(m_initFn, ADLXInitialize_Fn, ADLX_INIT_FUNCTION_NAME)                                           \
    X(m_terminateFn, ADLXTerminate_Fn, ADLX_TERMINATE_FUNCTION_NAME)

class ADLXHelper {
public:
    constexpr ADLXHelper() = default;
    // Terminates ADLX, so the process-wide instance releases the library when the host unloads
    // the service. When the process is ending it leaves ADLX alone instead.
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
    bool IsLoaded() const { return static_cast<bool>(m_hDLLHandle); }
    // How many times the library has been loaded. ADLX objects die with the load that made
    // them: one obtained under an earlier load must not be used or released.
    uint64_t LoadCount() const { return m_loads; }

private:
    // Clears everything bound from the library, without calling it, and hands its module over.
    LumavenUtil::UniqueModule Forget();

    LumavenUtil::UniqueModule m_hDLLHandle;
    adlx_uint64 m_ADLXFullVersion = 0;
    const char* m_ADLXVersion = nullptr;  // owned by ADLX
    // Not reference counted: ADLX keeps it from initialisation to termination, and it is
    // never released.
    adlx::IADLXSystem* m_pSystemServices = nullptr;
    adlx::IADLMapping* m_pAdlMapping = nullptr;  // only the caller-ADL initialisation fills it
#define LUMAVEN_ADLX_MEMBER(member, type, name) type member = nullptr;
    LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_MEMBER)
#undef LUMAVEN_ADLX_MEMBER
    uint64_t m_loads = 0;
};

// The process-wide instance.
extern ADLXHelper g_ADLXHelp;

// One reference to an ADLX interface. It is given back with Release when the owner is reset,
// refilled or destroyed, but only while the load of the library that handed it out is still
// the current one: objects of an ADLX that was terminated in the meantime are gone with it
// and are dropped without a Release.
template <class Interface>
class AdlxInterfacePtr {
public:
    constexpr AdlxInterfacePtr() = default;
    // The process-wide pointers are destroyed after g_ADLXHelp, whose destructor has dropped
    // them already: they never ask a helper that is no longer alive.
    ~AdlxInterfacePtr() { reset(); }
    AdlxInterfacePtr(const AdlxInterfacePtr&) = delete;
    AdlxInterfacePtr& operator=(const AdlxInterfacePtr&) = delete;

    Interface* get() const { return m_interface; }
    Interface* operator->() const { return m_interface; }
    explicit operator bool() const { return m_interface != nullptr; }
    bool operator==(std::nullptr_t) const { return m_interface == nullptr; }

    // Whether the reference comes from the ADLX that is loaded now.
    bool FromCurrentLoad() const { return g_ADLXHelp.IsLoaded() && m_load == g_ADLXHelp.LoadCount(); }

    void reset()
    {
        if (m_interface != nullptr && FromCurrentLoad()) {
            m_interface->Release();
        }
        m_interface = nullptr;
    }
    // Lets go of the reference without a Release: the ADLX that handed it out is gone.
    void drop() { m_interface = nullptr; }  // GCOVR_EXCL_LINE: runs at unload, after gcov's counters are written
    // Gives back the reference held and hands out the slot for an ADLX call that returns a
    // new one, which then belongs to the current load.
    Interface** put()
    {
        reset();
        m_load = g_ADLXHelp.LoadCount();
        return &m_interface;
    }

private:
    Interface* m_interface = nullptr;
    uint64_t m_load = 0;
};

// The display services and the first display of the most recent successful
// InitializeAdlxDisplay; empty until then. Both are kept across commands; at module unload
// they outlive g_ADLXHelp, so ADLX is terminated (or, at process exit, left alone) with them
// still held, and they are dropped without a Release.
extern AdlxInterfacePtr<adlx::IADLXDisplayServices> adlxDisplayServices;
extern AdlxInterfacePtr<adlx::IADLXDisplay> adlxDisplay;

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
