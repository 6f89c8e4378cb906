#include "intel/OpstProbe.h"

#include "xelto/Logging.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

ctl_power_optimization_settings_t g_opstSettings{};

namespace {

constexpr uint32_t kFeatureDpst = CTL_POWER_OPTIMIZATION_FLAG_DPST;
constexpr uint32_t kDpstOpst = CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST;

}  // namespace

bool IsOpstSupported(ctl_display_output_handle_t display, ctl_result_t& status)
{
    status = CTL_RESULT_SUCCESS;
    // Only these fields are primed; the rest keep what the last call left in the record.
    g_opstSettings.Size = sizeof g_opstSettings;
    g_opstSettings.PowerOptimizationPlan = CTL_POWER_OPTIMIZATION_PLAN_BALANCED;
    g_opstSettings.PowerOptimizationFeature = kFeatureDpst;
    g_opstSettings.PowerSource = CTL_POWER_SOURCE_DC;

    ctl_power_optimization_caps_t caps{};
    caps.Size = sizeof caps;
    caps.Version = 0;
    status = ctlGetPowerOptimizationCaps(display, &caps);
    status = ctlGetPowerOptimizationSetting(display, &g_opstSettings);
    if ((caps.SupportedFeatures & kFeatureDpst) != 0 &&
        (g_opstSettings.FeatureSpecificData.DPSTInfo.SupportedFeatures & kDpstOpst) != 0) {
        LogManager::GetLogger()->LogInfo(L"OPST is supported");
        return true;
    }
    LogManager::GetLogger()->LogInfo(L"OPST is not supported");
    status = CTL_RESULT_ERROR_UNSUPPORTED_FEATURE;
    return false;
}

bool IsOpstEnabled(ctl_display_output_handle_t display, ctl_result_t& status)
{
    // Any other DPST feature enabled beside OPST reads as off.
    return IsOpstSupported(display, status) && g_opstSettings.FeatureSpecificData.DPSTInfo.EnabledFeatures == kDpstOpst;
}

bool SwitchOpst(ctl_display_output_handle_t display, ctl_result_t& status, bool enable)
{
    if (!IsOpstSupported(display, status)) {
        return false;
    }
    status = CTL_RESULT_SUCCESS;
    ctl_power_optimization_settings_t request{};
    request.Size = sizeof request;
    request.PowerOptimizationFeature = kFeatureDpst;
    request.Enable = enable;
    request.FeatureSpecificData.DPSTInfo.EnabledFeatures = kDpstOpst;
    request.PowerSource = CTL_POWER_SOURCE_DC;
    // The read-back's result replaces the set call's: a failed set with a good read-back
    // still tells whether the panel is in the requested state.
    status = ctlSetPowerOptimizationSetting(display, &request);
    status = ctlGetPowerOptimizationSetting(display, &g_opstSettings);
    return request.Enable == g_opstSettings.Enable && g_opstSettings.Enable == enable;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
