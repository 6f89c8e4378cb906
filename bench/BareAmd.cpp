// The AMD floors: ADL's native AUX channel, loaded and freed per call, and ADLX, kept loaded.
#include "BareCalls.h"

#include "amd/AdlTypes.h"
#include "util/ProcAddress.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace LumavenBench {

namespace {

using LumavenUtil::ResolveProc;

constexpr DWORD kAdlxLoadFlags = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS |
                                 LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
constexpr int kEnumConnectedAdapters = 1;
constexpr int kAuxCommandWrite = 1;

void* __stdcall AdlAlloc(int size)
{
    return size > 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
}

// The seven entry points the writer binds before its first call.
struct AdlEntryPoints {
    explicit AdlEntryPoints(HMODULE module)
        : edid(ResolveProc<Adl::ADL2_DISPLAY_EDIDDATA_GET>(module, "ADL2_Display_EdidData_Get")),
          create(ResolveProc<Adl::ADL2_MAIN_CONTROL_CREATE>(module, "ADL2_Main_Control_Create")),
          adapterCount(
              ResolveProc<Adl::ADL2_ADAPTER_NUMBEROFADAPTERS_GET>(module, "ADL2_Adapter_NumberOfAdapters_Get")),
          adapterInfo(ResolveProc<Adl::ADL2_ADAPTER_ADAPTERINFO_GET>(module, "ADL2_Adapter_AdapterInfo_Get")),
          displayInfo(ResolveProc<Adl::ADL2_DISPLAY_DISPLAYINFO_GET>(module, "ADL2_Display_DisplayInfo_Get")),
          destroy(ResolveProc<Adl::ADL2_MAIN_CONTROL_DESTROY>(module, "ADL2_Main_Control_Destroy")),
          aux(ResolveProc<Adl::ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS>(module, "ADL2_Display_NativeAUXChannel_Access"))
    {
    }
    bool Complete() const { return edid && create && adapterCount && adapterInfo && displayInfo && destroy && aux; }

    Adl::ADL2_DISPLAY_EDIDDATA_GET edid;
    Adl::ADL2_MAIN_CONTROL_CREATE create;
    Adl::ADL2_ADAPTER_NUMBEROFADAPTERS_GET adapterCount;
    Adl::ADL2_ADAPTER_ADAPTERINFO_GET adapterInfo;
    Adl::ADL2_DISPLAY_DISPLAYINFO_GET displayInfo;
    Adl::ADL2_MAIN_CONTROL_DESTROY destroy;
    Adl::ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS aux;
};

PanelId PanelAt(const AdlEntryPoints& adl, Adl::ADL_CONTEXT_HANDLE context, int adapter, int display)
{
    Adl::ADLDisplayEDIDData edid{};
    edid.iSize = sizeof edid;
    if (adl.edid(context, adapter, display, &edid) != Adl::ADL_OK) {
        return 0;
    }
    const auto byte = [&edid](int index) { return static_cast<PanelId>(static_cast<uint8_t>(edid.cEDIDData[index])); };
    return byte(8) | byte(9) << 8 | byte(10) << 16 | byte(11) << 24;
}

void SendWrites(const AdlEntryPoints& adl, Adl::ADL_CONTEXT_HANDLE context, const std::vector<AuxWrite>& writes)
{
    for (const AuxWrite& write : writes) {
        Adl::ADLDisplayNativeAUXChannelData record{};
        record.iSize = sizeof record;
        record.iCommand = kAuxCommandWrite;
        record.iAddress = static_cast<int>(write.address);
        record.iDataSize = static_cast<int>(write.data.size());
        std::memcpy(record.cData, write.data.data(), std::min(write.data.size(), sizeof record.cData));
        adl.aux(context, 0, 0, &record);
    }
}

// Every mapped display of every adapter whose EDID carries the panel gets the writes.
bool WriteToPanel(const AdlEntryPoints& adl, Adl::ADL_CONTEXT_HANDLE context, PanelId panel,
                  const std::vector<AuxWrite>& writes)
{
    int adapterCount = 0;
    if (adl.adapterCount(context, &adapterCount) != Adl::ADL_OK || adapterCount <= 0) {
        return false;
    }
    std::vector<Adl::AdapterInfo> adapters(static_cast<size_t>(adapterCount));
    adl.adapterInfo(context, adapters.data(), static_cast<int>(adapters.size() * sizeof(Adl::AdapterInfo)));
    bool matched = false;
    for (int i = 0; i < adapterCount; ++i) {
        const int adapterIndex = adapters[static_cast<size_t>(i)].iAdapterIndex;
        int displayCount = 0;
        Adl::ADLDisplayInfo* displays = nullptr;
        if (adl.displayInfo(context, adapterIndex, &displayCount, &displays, 0) == Adl::ADL_OK && displays != nullptr) {
            for (int j = 0; j < displayCount; ++j) {
                const Adl::ADLDisplayInfo& display = displays[j];
                if ((display.iDisplayInfoValue & Adl::ADL_DISPLAY_DISPLAYINFO_DISPLAYMAPPED) != 0 &&
                    display.displayID.iDisplayLogicalAdapterIndex == adapterIndex &&
                    PanelAt(adl, context, i, j) == panel) {
                    SendWrites(adl, context, writes);
                    matched = true;
                }
            }
        }
        std::free(displays);
    }
    return matched;
}

}  // namespace

bool AdlAuxWrite(PanelId panel, const std::vector<AuxWrite>& writes)
{
    HMODULE module = LoadLibraryW(L"atiadlxx.dll");
    if (module == nullptr) {
        module = LoadLibraryW(L"atiadlxy.dll");
    }
    if (module == nullptr) {
        return false;
    }
    bool matched = false;
    const AdlEntryPoints adl(module);
    Adl::ADL_CONTEXT_HANDLE context = nullptr;
    if (adl.Complete() && adl.create(&AdlAlloc, kEnumConnectedAdapters, &context) == Adl::ADL_OK) {
        matched = WriteToPanel(adl, context, panel, writes);
        adl.destroy(context);
    }
    FreeLibrary(module);
    return matched;
}

Adlx::Adlx() : m_module(LoadLibraryExW(L"amdadlx64.dll", nullptr, kAdlxLoadFlags))
{
    if (m_module == nullptr) {
        return;
    }
    m_fullVersion = ResolveProc<ADLXQueryFullVersion_Fn>(m_module, ADLX_QUERY_FULL_VERSION_FUNCTION_NAME);
    m_version = ResolveProc<ADLXQueryVersion_Fn>(m_module, ADLX_QUERY_VERSION_FUNCTION_NAME);
    m_initialize = ResolveProc<ADLXInitialize_Fn>(m_module, ADLX_INIT_FUNCTION_NAME);
    InitializeDisplay();
}

Adlx::~Adlx()
{
    // ADLX itself is not terminated: the service shares it and terminates it when it unloads.
    if (m_display != nullptr) {
        m_display->Release();
    }
    if (m_services != nullptr) {
        m_services->Release();
    }
    if (m_module != nullptr) {
        FreeLibrary(m_module);
    }
}

void Adlx::InitializeDisplay()
{
    if (m_fullVersion == nullptr || m_version == nullptr || m_initialize == nullptr) {
        return;
    }
    adlx_uint64 fullVersion = 0;
    const char* version = nullptr;
    m_fullVersion(&fullVersion);
    m_version(&version);
    if (ADLX_FAILED(m_initialize(ADLX_FULL_VERSION, &m_system)) || m_system == nullptr) {
        return;
    }
    if (m_services != nullptr) {
        m_services->Release();
        m_services = nullptr;
    }
    if (ADLX_FAILED(m_system->GetDisplaysServices(&m_services)) || m_services == nullptr) {
        m_services = nullptr;
        return;
    }
    // The list is given back once the first display is taken, as the service does.
    adlx::IADLXDisplayList* displays = nullptr;
    if (ADLX_SUCCEEDED(m_services->GetDisplays(&displays)) && displays != nullptr) {
        if (m_display != nullptr) {
            m_display->Release();
            m_display = nullptr;
        }
        displays->At_DisplayList(0, &m_display);
        displays->Release();
    }
}

// A fresh interface per call, given back after its one call as the service does.
adlx::IADLXDisplayVariBright* Adlx::VariBright()
{
    adlx::IADLXDisplayVariBright* variBright = nullptr;
    if (m_services == nullptr || ADLX_FAILED(m_services->GetVariBright(m_display, &variBright))) {
        return nullptr;
    }
    return variBright;
}

bool Adlx::IsSupported()
{
    adlx::IADLXDisplayVariBright* const variBright = VariBright();
    if (variBright == nullptr) {
        return false;
    }
    adlx_bool supported = false;
    const bool answered = ADLX_SUCCEEDED(variBright->IsSupported(&supported));
    variBright->Release();
    return answered && supported;
}

bool Adlx::SetEnabled(bool enable)
{
    adlx::IADLXDisplayVariBright* const variBright = VariBright();
    if (variBright == nullptr) {
        return false;
    }
    const bool done = ADLX_SUCCEEDED(variBright->SetEnabled(enable));
    variBright->Release();
    return done;
}

bool Adlx::SetMaximizeBattery()
{
    adlx::IADLXDisplayVariBright* const variBright = VariBright();
    if (variBright == nullptr) {
        return false;
    }
    const bool done = ADLX_SUCCEEDED(variBright->SetMaximizeBattery());
    variBright->Release();
    return done;
}

}  // namespace LumavenBench
