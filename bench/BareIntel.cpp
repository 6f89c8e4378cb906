// The Intel floors: one control library session per command, called straight through
// GetProcAddress.
#include "BareCalls.h"

#include "intel/ControlLibFunctions.h"
#include "intel/AuxRequest.h"
#include "util/ProcAddress.h"

#include <algorithm>
#include <cstring>

namespace LumavenBench {

namespace {

using LumavenUtil::ResolveProc;

// A pointer type per entry point, named after it, from the project's one table of them.
#define LUMAVEN_BENCH_CTL_POINTER(name, ...) using name##_fn = ctl_result_t(CTL_APICALL*)(__VA_ARGS__);
LUMAVEN_CTL_FUNCTIONS(LUMAVEN_BENCH_CTL_POINTER, LUMAVEN_BENCH_CTL_POINTER)
#undef LUMAVEN_BENCH_CTL_POINTER

constexpr wchar_t kControlLibrary[] = L"ControlLib.dll";
constexpr uint32_t kApiVersion1_0 = 0x00010000;
constexpr uint32_t kDpst = CTL_POWER_OPTIMIZATION_FLAG_DPST;
constexpr uint32_t kOpst = CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST;

// The session's library: loaded from system32 only, freed at the end of the session.
class ControlLibrary {
public:
    ControlLibrary() : m_module(LoadLibraryExW(kControlLibrary, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}
    ~ControlLibrary()
    {
        if (m_module != nullptr) {
            FreeLibrary(m_module);
        }
    }
    ControlLibrary(const ControlLibrary&) = delete;
    ControlLibrary& operator=(const ControlLibrary&) = delete;

    bool Loaded() const { return m_module != nullptr; }

    // Looks the symbol up for this one call and calls it.
    template <class Function, class... Args>
    ctl_result_t Call(const char* name, Args... args) const
    {
        const auto function = ResolveProc<Function>(m_module, name);
        return function != nullptr ? function(args...) : CTL_RESULT_ERROR_NOT_INITIALIZED;
    }

private:
    HMODULE m_module;
};

#define CTL_CALL(library, name, ...) (library).Call<name##_fn>(#name, __VA_ARGS__)

bool Attached(const ControlLibrary& library, ctl_display_output_handle_t display)
{
    ctl_display_properties_t properties{};
    properties.Size = sizeof properties;
    CTL_CALL(library, ctlGetDisplayProperties, display, &properties);
    return (properties.DisplayConfigFlags & CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ATTACHED) != 0;
}

// The DPST settings record as the support probe asks for it, filled by the library.
ctl_power_optimization_settings_t DpstSettings(const ControlLibrary& library, ctl_display_output_handle_t display,
                                               bool& supported)
{
    ctl_power_optimization_caps_t caps{};
    caps.Size = sizeof caps;
    CTL_CALL(library, ctlGetPowerOptimizationCaps, display, &caps);
    ctl_power_optimization_settings_t settings{};
    settings.Size = sizeof settings;
    settings.PowerOptimizationPlan = CTL_POWER_OPTIMIZATION_PLAN_BALANCED;
    settings.PowerOptimizationFeature = kDpst;
    settings.PowerSource = CTL_POWER_SOURCE_DC;
    CTL_CALL(library, ctlGetPowerOptimizationSetting, display, &settings);
    supported =
        (caps.SupportedFeatures & kDpst) != 0 && (settings.FeatureSpecificData.DPSTInfo.SupportedFeatures & kOpst) != 0;
    return settings;
}

bool SwitchOpst(const ControlLibrary& library, ctl_display_output_handle_t display, bool enable)
{
    bool supported = false;
    DpstSettings(library, display, supported);
    if (!supported) {
        return false;
    }
    ctl_power_optimization_settings_t request{};
    request.Size = sizeof request;
    request.PowerOptimizationFeature = kDpst;
    request.Enable = enable;
    request.FeatureSpecificData.DPSTInfo.EnabledFeatures = kOpst;
    request.PowerSource = CTL_POWER_SOURCE_DC;
    CTL_CALL(library, ctlSetPowerOptimizationSetting, display, &request);
    ctl_power_optimization_settings_t readBack = request;
    CTL_CALL(library, ctlGetPowerOptimizationSetting, display, &readBack);
    return readBack.Enable == enable;
}

// The panel is looked up by walking the EDIDs for every display written, as the writer does.
bool WritePanelSequence(const ControlLibrary& library, ctl_display_output_handle_t display, const AuxDataMap& table,
                        bool on)
{
    const std::vector<AuxWrite>& writes = SequenceFor(table, FittedPanel(table), on);
    if (writes.empty()) {
        return false;
    }
    for (const AuxWrite& entry : writes) {
        ctl_aux_access_args_t request = AuxRequest(CTL_OPERATION_TYPE_WRITE, entry);
        std::memcpy(request.Data, entry.data.data(), std::min(entry.data.size(), sizeof request.Data));
        if (CTL_CALL(library, ctlAUXAccess, display, &request) != CTL_RESULT_SUCCESS) {
            return false;
        }
    }
    ctl_aux_access_args_t readBack = AuxRequest(CTL_OPERATION_TYPE_READ, writes.front());
    CTL_CALL(library, ctlAUXAccess, display, &readBack);
    return std::equal(writes.front().data.begin(), writes.front().data.end(), readBack.Data);
}

bool RunMode(const ControlLibrary& library, ctl_display_output_handle_t display, uint32_t mode, const AuxDataMap& table)
{
    bool supported = false;
    switch (mode) {
    case 1: {
        const ctl_power_optimization_settings_t settings = DpstSettings(library, display, supported);
        return supported && settings.FeatureSpecificData.DPSTInfo.EnabledFeatures == kOpst;
    }
    case 2: return SwitchOpst(library, display, true);
    case 3: return SwitchOpst(library, display, false);
    case 5: return Attached(library, display) && WritePanelSequence(library, display, table, true);
    case 6: return Attached(library, display) && WritePanelSequence(library, display, table, false);
    case 8:
        if (Attached(library, display)) {
            DpstSettings(library, display, supported);
        }
        return supported;
    default: return false;
    }
}

}  // namespace

bool ControlLibraryPresent()
{
    return ControlLibrary().Loaded();
}

IntelOutcome IntelSession(uint32_t mode, const AuxDataMap& table)
{
    IntelOutcome outcome;
    const ControlLibrary library;
    if (!library.Loaded()) {
        return outcome;
    }
    ctl_init_args_t args{};
    args.Size = sizeof args;
    args.AppVersion = kApiVersion1_0;
    ctl_api_handle_t api = nullptr;
    uint32_t deviceCount = 0;
    if (CTL_CALL(library, ctlInit, &args, &api) != CTL_RESULT_SUCCESS ||
        CTL_CALL(library, ctlEnumerateDevices, api, &deviceCount, nullptr) != CTL_RESULT_SUCCESS) {
        return outcome;
    }
    std::vector<ctl_device_adapter_handle_t> devices(deviceCount);
    CTL_CALL(library, ctlEnumerateDevices, api, &deviceCount, devices.data());
    outcome.opened = true;
    for (const ctl_device_adapter_handle_t device : devices) {
        uint32_t displayCount = 0;
        if (CTL_CALL(library, ctlEnumerateDisplayOutputs, device, &displayCount, nullptr) != CTL_RESULT_SUCCESS ||
            displayCount == 0) {
            continue;
        }
        std::vector<ctl_display_output_handle_t> displays(displayCount);
        CTL_CALL(library, ctlEnumerateDisplayOutputs, device, &displayCount, displays.data());
        for (const ctl_display_output_handle_t display : displays) {
            outcome.value = RunMode(library, display, mode, table) || outcome.value;
        }
        break;
    }
    CTL_CALL(library, ctlClose, api);
    return outcome;
}

}  // namespace LumavenBench
