// The ctl* exports of the built LumavenService.dll, called as another program would call them:
// looked up by name in the module, each forwarder reaches the simulated driver with its
// arguments unchanged and hands back the driver's own answer.
#include "ControlLibProof.h"
#include "PeFile.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace Proof = LumavenTest::ControlLibProof;

namespace {

struct ModuleFreer {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

// The control library's entry points as its callers know them, kept apart from the table the
// service generates its exports from, so that a name lost or changed there shows here: the
// three that load, unload and point at the library, then by the arguments they pass on.
// Grouped by shape, several names a line: one name a line would hide the groups.
// clang-format off
constexpr const char* kControlLibraryNames[] = {
    "ctlInit", "ctlClose", "ctlSetRuntimePath",
    // a handle; a handle and a 32-bit value; a handle and a double; a handle and a structure
    "ctlFanSetDefaultMode", "ctlOverclockWaiverSet", "ctlCheckDriverVersion", "ctlOverclockGpuFrequencyOffsetSet",
    "ctlOverclockGpuVoltageOffsetSet", "ctlOverclockVramFrequencyOffsetSet", "ctlOverclockVramVoltageOffsetSet",
    "ctlOverclockPowerLimitSet", "ctlOverclockTemperatureLimitSet", "ctlOverclockGpuLockSet",
    // a handle, a count and a list
    "ctlEnumerateDevices", "ctlEnumerateDisplayOutputs", "ctlGetZeDevice", "ctlEnumerateMuxDevices",
    "ctlEnumEngineGroups", "ctlEnumFans", "ctlEnumFrequencyDomains", "ctlFrequencyGetAvailableClocks",
    "ctlEnumMemoryModules", "ctlEnumPowerDomains", "ctlEnumTemperatureSensors",
    // a handle, a 32-bit value and a pointer
    "ctlFanGetState",
    // a handle and a pointer
    "ctlWaitForPropertyChange", "ctlReservedCall", "ctlGetSupported3DCapabilities", "ctlGetSet3DFeature",
    "ctlGetDeviceProperties", "ctlGetDisplayProperties", "ctlGetAdaperDisplayEncoderProperties",
    "ctlGetSharpnessCaps", "ctlGetCurrentSharpness", "ctlSetCurrentSharpness", "ctlI2CAccess", "ctlAUXAccess",
    "ctlGetPowerOptimizationCaps", "ctlGetPowerOptimizationSetting", "ctlSetPowerOptimizationSetting",
    "ctlSetBrightnessSetting", "ctlGetBrightnessSetting", "ctlPixelTransformationGetConfig",
    "ctlPixelTransformationSetConfig", "ctlPanelDescriptorAccess", "ctlGetSupportedRetroScalingCapability",
    "ctlGetSetRetroScaling", "ctlGetSupportedScalingCapability", "ctlGetCurrentScaling", "ctlSetCurrentScaling",
    "ctlGetLACEConfig", "ctlSetLACEConfig", "ctlSoftwarePSR", "ctlGetIntelArcSyncInfoForMonitor",
    "ctlGetMuxProperties", "ctlSwitchMux", "ctlGetIntelArcSyncProfile", "ctlSetIntelArcSyncProfile",
    "ctlEdidManagement", "ctlGetSetCustomMode", "ctlEngineGetProperties", "ctlEngineGetActivity",
    "ctlFanGetProperties", "ctlFanGetConfig", "ctlFanSetFixedSpeedMode", "ctlFanSetSpeedTableMode",
    "ctlFrequencyGetProperties", "ctlFrequencyGetRange", "ctlFrequencySetRange", "ctlFrequencyGetState",
    "ctlFrequencyGetThrottleTime", "ctlGetSupportedVideoProcessingCapabilities", "ctlGetSetVideoProcessingFeature",
    "ctlMemoryGetProperties", "ctlMemoryGetState", "ctlMemoryGetBandwidth", "ctlOverclockGetProperties",
    "ctlOverclockGpuFrequencyOffsetGet", "ctlOverclockGpuVoltageOffsetGet", "ctlOverclockGpuLockGet",
    "ctlOverclockVramFrequencyOffsetGet", "ctlOverclockVramVoltageOffsetGet", "ctlOverclockPowerLimitGet",
    "ctlOverclockTemperatureLimitGet", "ctlPowerTelemetryGet", "ctlPciGetProperties", "ctlPciGetState",
    "ctlPowerGetProperties", "ctlPowerGetEnergyCounter", "ctlPowerGetLimits", "ctlPowerSetLimits",
    "ctlTemperatureGetProperties", "ctlTemperatureGetState",
};
// clang-format on

template <class Function>
Function Export(HMODULE module, const char* name)
{
    // Through void(*)(): GCC accepts a cast from it to any function type without a warning.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace

TEST(ControlLibExports, EveryExportedForwarderReachesTheDriverUnchanged)
{
    LumavenTest::InstallProfile(Proof::Profile("ControlLib.dll"));
    const Module service(LoadLibraryW((LumavenTest::ExecutableDirectory() + L"\\LumavenService.dll").c_str()));
    ASSERT_NE(service, nullptr);
    const auto init = Export<ctl_result_t(CTL_APICALL*)(ctl_init_args_t*, ctl_api_handle_t*)>(service.get(), "ctlInit");
    const auto close = Export<ctl_result_t(CTL_APICALL*)(ctl_api_handle_t)>(service.get(), "ctlClose");
    ASSERT_NE(init, nullptr);
    ASSERT_NE(close, nullptr);
    ctl_init_args_t args{};
    args.Size = sizeof args;
    args.AppVersion = 0x00010000;
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(init(&args, &api), CTL_RESULT_SUCCESS);

    int index = 0;
#define LUMAVEN_PROVE_EXPORT(name, ...)                                                               \
    {                                                                                                 \
        const auto forwarder = Export<ctl_result_t(CTL_APICALL*)(__VA_ARGS__)>(service.get(), #name); \
        EXPECT_NE(forwarder, nullptr) << #name;                                                       \
        if (forwarder != nullptr) {                                                                   \
            Proof::Prove(#name, forwarder, index);                                                    \
        }                                                                                             \
        ++index;                                                                                      \
    }
    LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_PROVE_EXPORT)
#undef LUMAVEN_PROVE_EXPORT
    EXPECT_EQ(index, 90);

    // Unloads the driver again, so the next test's profile can replace it.
    EXPECT_EQ(close(api), CTL_RESULT_SUCCESS);
}

TEST(ControlLibExports, TheDllExportsTheFactoryAndTheControlLibraryByTheirOwnNames)
{
    std::vector<std::string> expected(std::begin(kControlLibraryNames), std::end(kControlLibraryNames));
    ASSERT_EQ(expected.size(), 93u);
    expected.emplace_back("XeltoCreateService");
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(std::adjacent_find(expected.begin(), expected.end()), expected.end()) << "a name typed twice";

    std::vector<std::string> exported =
        LumavenTest::ExportedNames(LumavenTest::ExecutableDirectory() + L"\\LumavenService.dll");
    std::sort(exported.begin(), exported.end());
    std::vector<std::string> missing;
    std::set_difference(expected.begin(), expected.end(), exported.begin(), exported.end(),
                        std::back_inserter(missing));
    std::vector<std::string> extra;
    std::set_difference(exported.begin(), exported.end(), expected.begin(), expected.end(), std::back_inserter(extra));
    EXPECT_EQ(missing, std::vector<std::string>{}) << "not exported";
    EXPECT_EQ(extra, std::vector<std::string>{}) << "exported beside the 94";
    EXPECT_EQ(exported.size(), 94u);
}
