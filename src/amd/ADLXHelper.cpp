#include "amd/ADLXHelper.h"

#include "util/ProcAddress.h"

namespace {

constexpr wchar_t kAdlxLibrary[] = L"amdadlx64.dll";
constexpr DWORD kAdlxLoadFlags = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS |
                                 LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
static_assert(kAdlxLoadFlags == 0x1E00);

// The library load under which each process-wide object was obtained (see LoadCount).
uint64_t g_displayServicesLoad = 0;
uint64_t g_displayLoad = 0;

bool FromCurrentLoad(uint64_t load)
{
    return g_ADLXHelp.IsLoaded() && load == g_ADLXHelp.LoadCount();
}

// Objects of an ADLX that was terminated in the meantime are gone with it: they are dropped
// without a Release.
template <class Interface>
void ReleaseAndClear(Interface*& object, uint64_t load)
{
    if (object != nullptr && FromCurrentLoad(load)) {
        object->Release();
    }
    object = nullptr;
}

}  // namespace

// Destroyed at module unload, which terminates ADLX and frees the library.
constinit ADLXHelper g_ADLXHelp;

adlx::IADLXDisplayServices* adlxDisplayServices = nullptr;
adlx::IADLXDisplay* adlxDisplay = nullptr;

ADLXHelper::~ADLXHelper()
{
    Terminate();
}

ADLX_RESULT ADLXHelper::Initialize()
{
    if (m_hDLLHandle == nullptr) {
        m_hDLLHandle = LoadLibraryExW(kAdlxLibrary, nullptr, kAdlxLoadFlags);
        if (m_hDLLHandle != nullptr) {
            ++m_loads;
#define LUMAVEN_ADLX_RESOLVE(member, type, name) member = LumavenUtil::ResolveProc<type>(m_hDLLHandle, name);
            LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_RESOLVE)
#undef LUMAVEN_ADLX_RESOLVE
        }
    }
    // All six are required, also the two initialisations that are never called: a library
    // without them is not the ADLX this service is built for.
    bool bound = true;
#define LUMAVEN_ADLX_BOUND(member, type, name) bound = bound && member != nullptr;
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
    if (m_hDLLHandle == nullptr) {
        return ADLX_OK;
    }
    m_ADLXFullVersion = 0;
    m_ADLXVersion = nullptr;
    m_pSystemServices = nullptr;
    m_pAdlMapping = nullptr;
    const ADLX_RESULT result = m_terminateFn != nullptr ? m_terminateFn() : ADLX_OK;
#define LUMAVEN_ADLX_CLEAR(member, type, name) member = nullptr;
    LUMAVEN_ADLX_ENTRY_POINTS(LUMAVEN_ADLX_CLEAR)
#undef LUMAVEN_ADLX_CLEAR
    FreeLibrary(m_hDLLHandle);
    m_hDLLHandle = nullptr;
    return result;
}

void InitializeAdlxDisplay()
{
    if (ADLX_FAILED(g_ADLXHelp.Initialize())) {
        return;
    }
    ReleaseAndClear(adlxDisplayServices, g_displayServicesLoad);
    adlx::IADLXSystem* const system = g_ADLXHelp.GetSystemServices();
    ADLX_RESULT result = ADLX_FAIL;
    if (system != nullptr) {
        result = system->GetDisplaysServices(&adlxDisplayServices);
    }
    // A success code that hands back no display services is no better than a failure: there
    // is nothing to ask for the display list.
    if (ADLX_FAILED(result) || adlxDisplayServices == nullptr) {
        // adlxDisplay is left as it was; it is never used without display services.
        adlxDisplayServices = nullptr;
        g_ADLXHelp.Terminate();
        return;
    }
    g_displayServicesLoad = g_ADLXHelp.LoadCount();

    adlx::IADLXDisplayList* displays = nullptr;
    if (ADLX_SUCCEEDED(adlxDisplayServices->GetDisplays(&displays)) && displays != nullptr) {
        ReleaseAndClear(adlxDisplay, g_displayLoad);
        // Its answer is not looked at: a list without displays leaves no display.
        displays->At_DisplayList(0, &adlxDisplay);
        g_displayLoad = g_ADLXHelp.LoadCount();
        // The display holds its own reference. A list kept per call would pile up inside
        // ADLX for as long as the service runs.
        displays->Release();
    }
}

ADLX_RESULT GetVariBright(adlx::IADLXDisplayVariBright** ppVariBright)
{
    *ppVariBright = nullptr;
    // Before any initialisation (or after ADLX went away) there are no display services to ask.
    if (adlxDisplayServices == nullptr || !FromCurrentLoad(g_displayServicesLoad)) {
        return ADLX_FAIL;
    }
    adlx::IADLXDisplay* const display = FromCurrentLoad(g_displayLoad) ? adlxDisplay : nullptr;
    return adlxDisplayServices->GetVariBright(display, ppVariBright);
}

// Each GetVariBright hands out a new reference; it is given back after the one call, or the
// interfaces would pile up inside ADLX with every command.
bool IsVaribrightSupported()
{
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    if (ADLX_FAILED(GetVariBright(&varibright)) || varibright == nullptr) {
        return false;
    }
    adlx_bool supported = false;
    varibright->IsSupported(&supported);
    varibright->Release();
    return supported;
}

bool SetVaribrightEnabled(bool enable)
{
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    if (ADLX_FAILED(GetVariBright(&varibright)) || varibright == nullptr) {
        return false;
    }
    const bool done = ADLX_SUCCEEDED(varibright->SetEnabled(enable));
    varibright->Release();
    return done;
}
