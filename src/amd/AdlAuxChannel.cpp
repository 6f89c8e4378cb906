#include "amd/AdlAuxChannel.h"

#include "amd/AdlTypes.h"

#include "service/ModuleLifetime.h"

#include "util/ProcAddress.h"
#include "util/UniqueHandles.h"

#include "xelto/Logging.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// The entry points in the order they are resolved, with whether a call can go on without
// them. The AUX entry is required too but is tested on its own, after the others; the EDID
// entry's absence is only noticed per display.
#define LUMAVEN_ADL_ENTRY_POINTS(X)                                               \
    X(ADL2_Display_EdidData_Get, ADL2_DISPLAY_EDIDDATA_GET, false)                \
    X(ADL2_Main_Control_Create, ADL2_MAIN_CONTROL_CREATE, true)                   \
    X(ADL2_Adapter_NumberOfAdapters_Get, ADL2_ADAPTER_NUMBEROFADAPTERS_GET, true) \
    X(ADL2_Adapter_AdapterInfo_Get, ADL2_ADAPTER_ADAPTERINFO_GET, true)           \
    X(ADL2_Display_DisplayInfo_Get, ADL2_DISPLAY_DISPLAYINFO_GET, true)           \
    X(ADL2_Main_Control_Destroy, ADL2_MAIN_CONTROL_DESTROY, true)                 \
    X(ADL2_Display_NativeAUXChannel_Access, ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS, false)

// An ADL context, destroyed through the entry point of the library that created it. A context
// exists only once the required entry points, this one among them, are bound.
struct AdlContextDestroyer {
    Adl::ADL2_MAIN_CONTROL_DESTROY destroy = nullptr;
    void operator()(Adl::ADL_CONTEXT_HANDLE context) const { destroy(context); }
};
using UniqueAdlContext = std::unique_ptr<void, AdlContextDestroyer>;

// What one WriteAuxDataAmd call holds of ADL. It is process-wide so that a call that stops
// early (which leaves the library loaded and its context alive) can still be released later,
// by the next call, by the service's destructor or, failing both, when the host unloads the
// service. The owners are declared in the order they are taken, so they are given back in
// reverse: the buffers, then the context, then the library.
struct AdlBinding {
    AdlBinding() = default;
    AdlBinding(const AdlBinding&) = delete;
    AdlBinding& operator=(const AdlBinding&) = delete;
    AdlBinding(AdlBinding&&) = default;
    AdlBinding& operator=(AdlBinding&&) = default;
    // When the process is ending, ADL (loaded after this module) is already detached: the
    // context is not destroyed through it and the library is not freed; both go with the
    // process. The buffers are the service's own and are freed as always.
    ~AdlBinding()
    {
        if (ProcessIsEnding()) {
            (void)context.release();  // GCOVR_EXCL_LINE: runs as the process ends, after the counters are written
            (void)module.release();   // GCOVR_EXCL_LINE: runs as the process ends, after the counters are written
        }
    }

    LumavenUtil::UniqueModule module;
    // Bound from `module`; valid while it is loaded.
#define LUMAVEN_ADL_MEMBER(name, type, required) Adl::type name = nullptr;
    LUMAVEN_ADL_ENTRY_POINTS(LUMAVEN_ADL_MEMBER)
#undef LUMAVEN_ADL_MEMBER
    UniqueAdlContext context;
    LumavenUtil::MallocPtr<Adl::AdapterInfo[]> adapterInfo;
    // Allocated by ADL through AdlMainMemoryAlloc, so freed like a malloc block.
    LumavenUtil::MallocPtr<Adl::ADLDisplayInfo[]> displayInfo;
};

AdlBinding g_adl;

// AUX records always go to this adapter and display, whichever display matched the panel.
constexpr int kAuxTargetAdapter = 0;
constexpr int kAuxTargetDisplay = 0;
// The second and third words of every AUX record.
constexpr int kAuxStatusBeforeCall = 0;
constexpr int kAuxCommandWrite = 1;

constexpr int kEnumConnectedAdapters = 1;

// The most adapters and displays per adapter ADL may report. ADL lists each graphics adapter
// several times (once per logical adapter) and a handful of displays for each, so a real
// machine stays far below these; a larger count is ADL failing, and taking it would size the
// adapter buffer from it (up to 2 GiB) and call ADL again for every adapter and display, under
// the command lock.
constexpr int kMaxAdapters = 1024;
constexpr int kMaxDisplaysPerAdapter = 256;
// ADL takes the adapter buffer's size as an int.
static_assert(static_cast<size_t>(kMaxAdapters) * sizeof(Adl::AdapterInfo) <=
              static_cast<size_t>(std::numeric_limits<int>::max()));

void* __stdcall AdlMainMemoryAlloc(int size)
{
    return size > 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
}

bool RequiredEntryPointsBound()
{
    bool bound = true;
#define LUMAVEN_ADL_CHECK(name, type, required) \
    if ((required) && g_adl.name == nullptr) {  \
        bound = false;                          \
    }
    LUMAVEN_ADL_ENTRY_POINTS(LUMAVEN_ADL_CHECK)
#undef LUMAVEN_ADL_CHECK
    return bound;
}

// The panel identity in the EDID of the display at these loop positions; 0 when it cannot
// be read. ADL is handed the positions, not the adapter's or display's own indices.
PanelId ReadPanelIdAt(TraceLogger* logger, int adapterPosition, int displayPosition)
{
    if (g_adl.ADL2_Display_EdidData_Get == nullptr) {
        logger->LogInfo(L"EDID API is NULL");
        return 0;
    }
    Adl::ADLDisplayEDIDData edid{};
    edid.iSize = sizeof edid;
    if (g_adl.ADL2_Display_EdidData_Get(g_adl.context.get(), adapterPosition, displayPosition, &edid) != Adl::ADL_OK) {
        return 0;
    }
    const auto byte = [&edid](int index) { return static_cast<PanelId>(static_cast<uint8_t>(edid.cEDIDData[index])); };
    return byte(8) | byte(9) << 8 | byte(10) << 16 | byte(11) << 24;
}

// One AUX transaction per write, in list order, without waiting for or reading back any of
// them: ADL's answer is not looked at.
void SendAuxWrites(const std::vector<AuxWrite>& writes)
{
    for (const AuxWrite& write : writes) {
        Adl::ADLDisplayNativeAUXChannelData record{};
        record.iSize = sizeof record;
        record.iAuxStatus = kAuxStatusBeforeCall;
        record.iCommand = kAuxCommandWrite;
        record.iAddress = static_cast<int>(write.address);
        record.iDataSize = static_cast<int>(write.data.size());
        // The table's writes are at most 3 bytes; a longer list cannot fit the record.
        std::memcpy(record.cData, write.data.data(), std::min(write.data.size(), sizeof record.cData));
        g_adl.ADL2_Display_NativeAUXChannel_Access(g_adl.context.get(), kAuxTargetAdapter, kAuxTargetDisplay, &record);
    }
}

// Walks every adapter's displays and writes to each mapped display of the panel.
bool WriteToMatchingDisplays(TraceLogger* logger, int adapterCount, PanelId panelId,
                             const std::vector<AuxWrite>& writes)
{
    bool matched = false;
    for (int i = 0; i < adapterCount; ++i) {
        g_adl.displayInfo.reset();
        const int adapterIndex = g_adl.adapterInfo[i].iAdapterIndex;
        int displayCount = 0;
        Adl::ADLDisplayInfo* displays = nullptr;
        const int listed =
            g_adl.ADL2_Display_DisplayInfo_Get(g_adl.context.get(), adapterIndex, &displayCount, &displays, 0);
        // Whatever ADL allocated is ours to free, also when it reports a failure.
        g_adl.displayInfo.reset(displays);
        // A display count no adapter has is taken as the call failing.
        if (listed != Adl::ADL_OK || displayCount > kMaxDisplaysPerAdapter) {
            continue;
        }
        logger->LogInfo(L"display count=%d", displayCount);
        if (g_adl.displayInfo == nullptr) {
            continue;
        }
        for (int j = 0; j < displayCount; ++j) {
            const Adl::ADLDisplayInfo& display = g_adl.displayInfo[j];
            // Mapped is what counts; the connected bit is deliberately not required.
            const bool mapped = ((display.iDisplayInfoValue & Adl::ADL_DISPLAY_DISPLAYINFO_DISPLAYMAPPED) |
                                 Adl::ADL_DISPLAY_DISPLAYINFO_DISPLAYCONNECTED) == 3;
            if (!mapped || display.displayID.iDisplayLogicalAdapterIndex != adapterIndex) {
                continue;
            }
            if (ReadPanelIdAt(logger, i, j) != panelId) {
                continue;
            }
            logger->LogInfo(L"Write AUX data");
            matched = true;
            SendAuxWrites(writes);
        }
    }
    return matched;
}

}  // namespace

void ReleaseAdlBinding()
{
    // Taken out whole, leaving an empty binding, and destroyed at the end of this scope in
    // reverse member order.
    const AdlBinding released = std::exchange(g_adl, AdlBinding{});
}

bool WriteAuxDataAmd(PanelId panelId, const std::vector<AuxWrite>& writes)
{
    TraceLogger* logger = LogManager::GetLogger();
    // An earlier call that stopped early left ADL loaded; every call starts from a fresh load.
    ReleaseAdlBinding();

    LumavenUtil::UniqueModule module(LoadLibraryW(L"atiadlxx.dll"));
    if (!module) {
        module.reset(LoadLibraryW(L"atiadlxy.dll"));
    }
    if (!module) {
        logger->LogInfo(L"ADL library not found!");
        return false;
    }
    g_adl.module = std::move(module);
#define LUMAVEN_ADL_RESOLVE(name, type, required) \
    g_adl.name = LumavenUtil::ResolveProc<Adl::type>(g_adl.module.get(), #name);
    LUMAVEN_ADL_ENTRY_POINTS(LUMAVEN_ADL_RESOLVE)
#undef LUMAVEN_ADL_RESOLVE

    // From here on, the early failures leave the library loaded (and, once created, the
    // context alive) for ReleaseAdlBinding.
    if (!RequiredEntryPointsBound()) {
        logger->LogInfo(L"ADL2's API is missing!");
        return false;
    }
    if (g_adl.ADL2_Display_NativeAUXChannel_Access == nullptr) {
        logger->LogInfo(L"ADL2_Display_NativeAUXChannel_Access API is missing!");
        return false;
    }
    Adl::ADL_CONTEXT_HANDLE context = nullptr;
    const int created = g_adl.ADL2_Main_Control_Create(&AdlMainMemoryAlloc, kEnumConnectedAdapters, &context);
    g_adl.context = UniqueAdlContext(context, AdlContextDestroyer{g_adl.ADL2_Main_Control_Destroy});
    if (created != Adl::ADL_OK) {
        logger->LogInfo(L"ADL Initialization Error!");
        return false;
    }
    int adapterCount = 0;
    if (g_adl.ADL2_Adapter_NumberOfAdapters_Get(g_adl.context.get(), &adapterCount) != Adl::ADL_OK) {
        logger->LogInfo(L"Cannot get the number of adapters!");
        return false;
    }
    logger->LogInfo(L"nAdapter count=%d", adapterCount);
    // An adapter count no machine has is refused as a buffer too large to ask for.
    if (adapterCount > kMaxAdapters) {
        logger->LogInfo(L"lpAdapterInfo buffer size overflow");
        return false;
    }
    const int adapterBytes = adapterCount * static_cast<int>(sizeof(Adl::AdapterInfo));

    bool matched = false;
    if (adapterCount > 0) {
        g_adl.adapterInfo.reset(static_cast<Adl::AdapterInfo*>(std::malloc(static_cast<size_t>(adapterBytes))));
        if (g_adl.adapterInfo) {
            std::memset(g_adl.adapterInfo.get(), 0, static_cast<size_t>(adapterBytes));
            // Its answer is not looked at: a failed fill leaves zeroed records (adapter index 0).
            g_adl.ADL2_Adapter_AdapterInfo_Get(g_adl.context.get(), g_adl.adapterInfo.get(), adapterBytes);
            matched = WriteToMatchingDisplays(logger, adapterCount, panelId, writes);
        }
    }

    ReleaseAdlBinding();
    return matched;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
