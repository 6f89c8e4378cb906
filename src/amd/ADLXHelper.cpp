#include "amd/ADLXHelper.h"

#include "service/ModuleLifetime.h"
#include "util/ProcAddress.h"

#include <utility>

namespace {

constexpr wchar_t kAdlxLibrary[] = L"amdadlx64.dll";
constexpr DWORD kAdlxLoadFlags = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS |
                                 LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
static_assert(kAdlxLoadFlags == 0x1E00);

}  // namespace

// Defined before the helper, so that at module unload they are destroyed after it: ADLX is
// terminated first (with them still held, as it always was), and then they are dropped
// without a Release because their load is gone.
constinit AdlxInterfacePtr<adlx::IADLXDisplayServices> adlxDisplayServices;
constinit AdlxInterfacePtr<adlx::IADLXDisplay> adlxDisplay;

// Destroyed at module unload, which terminates ADLX and frees the library.
constinit ADLXHelper g_ADLXHelp;

ADLXHelper::~ADLXHelper()
{
    // At process exit the loader has already detached ADLX, which was loaded after this module:
    // ADLXTerminate and FreeLibrary would run in a library whose state is gone. Nothing is left
    // to give back to a process that is ending.
    if (Xelto::Spanlet::Server::Services::Lumaven::ProcessIsEnding()) {
        // Deliberately not freed: the library is unmapped with the process.
        (void)Forget().release();  // GCOVR_EXCL_LINE: runs as the process ends, after the counters are written
    } else {
        Terminate();
    }
    if (this == &g_ADLXHelp) {
        // The process-wide pointers are destroyed after this helper, and what they hold went
        // with the ADLX just left. They let go of it here, while the helper that tells which
        // load they came from is still alive; asked after its destruction, it could answer
        // with whatever its storage still holds.
        adlxDisplayServices.drop();  // GCOVR_EXCL_LINE: runs as the module unloads, after the counters are written
        adlxDisplay.drop();          // GCOVR_EXCL_LINE: runs as the module unloads, after the counters are written
    }
}

LumavenUtil::UniqueModule ADLXHelper::Forget()
{
    m_ADLXFullVersion = 0;
    m_ADLXVersion = nullptr;
    m_pSystemServices = nullptr;
    m_pAdlMapping = nullptr;
#define LUMAVEN_ADLX_CLEAR(member, type, name) member = nullptr;
    LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_CLEAR)
#undef LUMAVEN_ADLX_CLEAR
    return std::move(m_hDLLHandle);
}

ADLX_RESULT ADLXHelper::Initialize()
{
    if (!m_hDLLHandle) {
        m_hDLLHandle.reset(LoadLibraryExW(kAdlxLibrary, nullptr, kAdlxLoadFlags));
        if (m_hDLLHandle) {
            ++m_loads;
#define LUMAVEN_ADLX_RESOLVE(member, type, name) \
    member = LumavenUtil::ResolveProc<decltype(member)>(m_hDLLHandle.get(), name);
            LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_RESOLVE)
#undef LUMAVEN_ADLX_RESOLVE
        }
    }
    // All six are required, also the two initialisations that are never called: a library
    // without them is not the ADLX this service is built for.
    bool bound = true;
#define LUMAVEN_ADLX_BOUND(member, type, name) bound = bound && (member) != nullptr;
    LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_BOUND)
#undef LUMAVEN_ADLX_BOUND
    if (!bound) {
        return ADLX_FAIL;
    }
    m_fullVersionFn(&m_ADLXFullVersion);
    m_versionFn(&m_ADLXVersion);
    return m_initFn(ADLX_FULL_VERSION, &m_pSystemServices);
}

ADLX_RESULT ADLXHelper::Terminate()
{
    if (!m_hDLLHandle) {
        return ADLX_OK;
    }
    const ADLX_RESULT result = m_terminateFn != nullptr ? m_terminateFn() : ADLX_OK;
    // Freed on return, once nothing bound from it is left.
    const LumavenUtil::UniqueModule module = Forget();
    return result;
}

void InitializeAdlxDisplay()
{
    if (ADLX_FAILED(g_ADLXHelp.Initialize())) {
        return;
    }
    adlxDisplayServices.reset();
    adlx::IADLXSystem* const system = g_ADLXHelp.GetSystemServices();
    ADLX_RESULT result = ADLX_FAIL;
    if (system != nullptr) {
        result = system->GetDisplaysServices(adlxDisplayServices.put());
    }
    // A success code that hands back no display services is no better than a failure: there
    // is nothing to ask for the display list.
    if (ADLX_FAILED(result) || !adlxDisplayServices) {
        // adlxDisplay is left as it was; it is never used without display services.
        g_ADLXHelp.Terminate();
        adlxDisplayServices.reset();  // gone with the terminated ADLX: dropped, not released
        return;
    }

    // The display holds its own reference; the list is given back when this call ends. A list
    // kept per call would pile up inside ADLX for as long as the service runs.
    AdlxInterfacePtr<adlx::IADLXDisplayList> displays;
    if (ADLX_SUCCEEDED(adlxDisplayServices->GetDisplays(displays.put())) && displays) {
        // Its answer is not looked at: a list without displays leaves no display.
        displays->At_DisplayList(0, adlxDisplay.put());
    }
}

ADLX_RESULT GetVariBright(adlx::IADLXDisplayVariBright** ppVariBright)
{
    *ppVariBright = nullptr;
    // Before any initialisation (or after ADLX went away) there are no display services to ask.
    if (!adlxDisplayServices || !adlxDisplayServices.FromCurrentLoad()) {
        return ADLX_FAIL;
    }
    adlx::IADLXDisplay* const display = adlxDisplay.FromCurrentLoad() ? adlxDisplay.get() : nullptr;
    return adlxDisplayServices->GetVariBright(display, ppVariBright);
}

// Each GetVariBright hands out a new reference; it is given back after the one call, or the
// interfaces would pile up inside ADLX with every command.
bool IsVaribrightSupported()
{
    AdlxInterfacePtr<adlx::IADLXDisplayVariBright> varibright;
    if (ADLX_FAILED(GetVariBright(varibright.put())) || !varibright) {
        return false;
    }
    adlx_bool supported = false;
    varibright->IsSupported(&supported);
    return supported;
}

bool SetVaribrightEnabled(bool enable)
{
    AdlxInterfacePtr<adlx::IADLXDisplayVariBright> varibright;
    if (ADLX_FAILED(GetVariBright(varibright.put())) || !varibright) {
        return false;
    }
    return ADLX_SUCCEEDED(varibright->SetEnabled(enable));
}
