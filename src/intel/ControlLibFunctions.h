// The one list of the Intel Graphics Control Library entry points that LumavenService.dll
// offers: every name with its parameter types, in the library's own order. Everything else is
// generated from it: the declarations, the forwarders, the export list of the module
// definition file (cmake/ControlLibExports.cmake reads the entry lines), the simulated
// driver's exports and the tests that prove each forwarder.
//
// LUMAVEN_CTL_FUNCTIONS(LOADER, FORWARDED) expands LOADER(name, types...) for the three entry
// points that load, unload and point the client layer at a library, and FORWARDED(name,
// types...) for the 90 that only look their symbol up and pass the call on.
//
// Keep one entry per line, starting with LOADER( or FORWARDED(: the build reads the names from
// these lines.
#pragma once

#include "intel/ControlLibTypes.h"

// clang-format off
#define LUMAVEN_CTL_FUNCTIONS(LOADER, FORWARDED) \
    LOADER(ctlInit, ctl_init_args_t*, ctl_api_handle_t*) \
    LOADER(ctlClose, ctl_api_handle_t) \
    LOADER(ctlSetRuntimePath, ctl_runtime_path_args_t*) \
    FORWARDED(ctlWaitForPropertyChange, ctl_device_adapter_handle_t, ctl_wait_property_change_args_t*) \
    FORWARDED(ctlReservedCall, ctl_device_adapter_handle_t, ctl_reserved_args_t*) \
    FORWARDED(ctlGetSupported3DCapabilities, ctl_device_adapter_handle_t, ctl_3d_feature_caps_t*) \
    FORWARDED(ctlGetSet3DFeature, ctl_device_adapter_handle_t, ctl_3d_feature_getset_t*) \
    FORWARDED(ctlCheckDriverVersion, ctl_device_adapter_handle_t, ctl_version_info_t) \
    FORWARDED(ctlEnumerateDevices, ctl_api_handle_t, uint32_t*, ctl_device_adapter_handle_t*) \
    FORWARDED(ctlEnumerateDisplayOutputs, ctl_device_adapter_handle_t, uint32_t*, ctl_display_output_handle_t*) \
    FORWARDED(ctlGetDeviceProperties, ctl_device_adapter_handle_t, ctl_device_adapter_properties_t*) \
    FORWARDED(ctlGetDisplayProperties, ctl_display_output_handle_t, ctl_display_properties_t*) \
    FORWARDED(ctlGetAdaperDisplayEncoderProperties, ctl_display_output_handle_t, ctl_adapter_display_encoder_properties_t*) \
    FORWARDED(ctlGetZeDevice, ctl_device_adapter_handle_t, void*, void**) \
    FORWARDED(ctlGetSharpnessCaps, ctl_display_output_handle_t, ctl_sharpness_caps_t*) \
    FORWARDED(ctlGetCurrentSharpness, ctl_display_output_handle_t, ctl_sharpness_settings_t*) \
    FORWARDED(ctlSetCurrentSharpness, ctl_display_output_handle_t, ctl_sharpness_settings_t*) \
    FORWARDED(ctlI2CAccess, ctl_display_output_handle_t, ctl_i2c_access_args_t*) \
    FORWARDED(ctlAUXAccess, ctl_display_output_handle_t, ctl_aux_access_args_t*) \
    FORWARDED(ctlGetPowerOptimizationCaps, ctl_display_output_handle_t, ctl_power_optimization_caps_t*) \
    FORWARDED(ctlGetPowerOptimizationSetting, ctl_display_output_handle_t, ctl_power_optimization_settings_t*) \
    FORWARDED(ctlSetPowerOptimizationSetting, ctl_display_output_handle_t, ctl_power_optimization_settings_t*) \
    FORWARDED(ctlSetBrightnessSetting, ctl_display_output_handle_t, ctl_set_brightness_t*) \
    FORWARDED(ctlGetBrightnessSetting, ctl_display_output_handle_t, ctl_get_brightness_t*) \
    FORWARDED(ctlPixelTransformationGetConfig, ctl_display_output_handle_t, ctl_pixtx_pipe_get_config_t*) \
    FORWARDED(ctlPixelTransformationSetConfig, ctl_display_output_handle_t, ctl_pixtx_pipe_set_config_t*) \
    FORWARDED(ctlPanelDescriptorAccess, ctl_display_output_handle_t, ctl_panel_descriptor_access_args_t*) \
    FORWARDED(ctlGetSupportedRetroScalingCapability, ctl_device_adapter_handle_t, ctl_retro_scaling_caps_t*) \
    FORWARDED(ctlGetSetRetroScaling, ctl_device_adapter_handle_t, ctl_retro_scaling_settings_t*) \
    FORWARDED(ctlGetSupportedScalingCapability, ctl_display_output_handle_t, ctl_scaling_caps_t*) \
    FORWARDED(ctlGetCurrentScaling, ctl_display_output_handle_t, ctl_scaling_settings_t*) \
    FORWARDED(ctlSetCurrentScaling, ctl_display_output_handle_t, ctl_scaling_settings_t*) \
    FORWARDED(ctlGetLACEConfig, ctl_display_output_handle_t, ctl_lace_config_t*) \
    FORWARDED(ctlSetLACEConfig, ctl_display_output_handle_t, ctl_lace_config_t*) \
    FORWARDED(ctlSoftwarePSR, ctl_display_output_handle_t, ctl_sw_psr_settings_t*) \
    FORWARDED(ctlGetIntelArcSyncInfoForMonitor, ctl_display_output_handle_t, ctl_intel_arc_sync_monitor_params_t*) \
    FORWARDED(ctlEnumerateMuxDevices, ctl_api_handle_t, uint32_t*, ctl_mux_output_handle_t*) \
    FORWARDED(ctlGetMuxProperties, ctl_mux_output_handle_t, ctl_mux_properties_t*) \
    FORWARDED(ctlSwitchMux, ctl_mux_output_handle_t, ctl_display_output_handle_t) \
    FORWARDED(ctlGetIntelArcSyncProfile, ctl_display_output_handle_t, ctl_intel_arc_sync_profile_params_t*) \
    FORWARDED(ctlSetIntelArcSyncProfile, ctl_display_output_handle_t, ctl_intel_arc_sync_profile_params_t*) \
    FORWARDED(ctlEdidManagement, ctl_display_output_handle_t, ctl_edid_management_args_t*) \
    FORWARDED(ctlGetSetCustomMode, ctl_display_output_handle_t, ctl_get_set_custom_mode_args_t*) \
    FORWARDED(ctlEnumEngineGroups, ctl_device_adapter_handle_t, uint32_t*, ctl_engine_handle_t*) \
    FORWARDED(ctlEngineGetProperties, ctl_engine_handle_t, ctl_engine_properties_t*) \
    FORWARDED(ctlEngineGetActivity, ctl_engine_handle_t, ctl_engine_stats_t*) \
    FORWARDED(ctlEnumFans, ctl_device_adapter_handle_t, uint32_t*, ctl_fan_handle_t*) \
    FORWARDED(ctlFanGetProperties, ctl_fan_handle_t, ctl_fan_properties_t*) \
    FORWARDED(ctlFanGetConfig, ctl_fan_handle_t, ctl_fan_config_t*) \
    FORWARDED(ctlFanSetDefaultMode, ctl_fan_handle_t) \
    FORWARDED(ctlFanSetFixedSpeedMode, ctl_fan_handle_t, const ctl_fan_speed_t*) \
    FORWARDED(ctlFanSetSpeedTableMode, ctl_fan_handle_t, const ctl_fan_speed_table_t*) \
    FORWARDED(ctlFanGetState, ctl_fan_handle_t, ctl_fan_speed_units_t, int32_t*) \
    FORWARDED(ctlEnumFrequencyDomains, ctl_device_adapter_handle_t, uint32_t*, ctl_freq_handle_t*) \
    FORWARDED(ctlFrequencyGetProperties, ctl_freq_handle_t, ctl_freq_properties_t*) \
    FORWARDED(ctlFrequencyGetAvailableClocks, ctl_freq_handle_t, uint32_t*, double*) \
    FORWARDED(ctlFrequencyGetRange, ctl_freq_handle_t, ctl_freq_range_t*) \
    FORWARDED(ctlFrequencySetRange, ctl_freq_handle_t, const ctl_freq_range_t*) \
    FORWARDED(ctlFrequencyGetState, ctl_freq_handle_t, ctl_freq_state_t*) \
    FORWARDED(ctlFrequencyGetThrottleTime, ctl_freq_handle_t, ctl_freq_throttle_time_t*) \
    FORWARDED(ctlGetSupportedVideoProcessingCapabilities, ctl_device_adapter_handle_t, ctl_video_processing_feature_caps_t*) \
    FORWARDED(ctlGetSetVideoProcessingFeature, ctl_device_adapter_handle_t, ctl_video_processing_feature_getset_t*) \
    FORWARDED(ctlEnumMemoryModules, ctl_device_adapter_handle_t, uint32_t*, ctl_mem_handle_t*) \
    FORWARDED(ctlMemoryGetProperties, ctl_mem_handle_t, ctl_mem_properties_t*) \
    FORWARDED(ctlMemoryGetState, ctl_mem_handle_t, ctl_mem_state_t*) \
    FORWARDED(ctlMemoryGetBandwidth, ctl_mem_handle_t, ctl_mem_bandwidth_t*) \
    FORWARDED(ctlOverclockGetProperties, ctl_device_adapter_handle_t, ctl_oc_properties_t*) \
    FORWARDED(ctlOverclockWaiverSet, ctl_device_adapter_handle_t) \
    FORWARDED(ctlOverclockGpuFrequencyOffsetGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockGpuFrequencyOffsetSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlOverclockGpuVoltageOffsetGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockGpuVoltageOffsetSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlOverclockGpuLockGet, ctl_device_adapter_handle_t, ctl_oc_vf_pair_t*) \
    FORWARDED(ctlOverclockGpuLockSet, ctl_device_adapter_handle_t, ctl_oc_vf_pair_t) \
    FORWARDED(ctlOverclockVramFrequencyOffsetGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockVramFrequencyOffsetSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlOverclockVramVoltageOffsetGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockVramVoltageOffsetSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlOverclockPowerLimitGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockPowerLimitSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlOverclockTemperatureLimitGet, ctl_device_adapter_handle_t, double*) \
    FORWARDED(ctlOverclockTemperatureLimitSet, ctl_device_adapter_handle_t, double) \
    FORWARDED(ctlPowerTelemetryGet, ctl_device_adapter_handle_t, ctl_power_telemetry_t*) \
    FORWARDED(ctlPciGetProperties, ctl_device_adapter_handle_t, ctl_pci_properties_t*) \
    FORWARDED(ctlPciGetState, ctl_device_adapter_handle_t, ctl_pci_state_t*) \
    FORWARDED(ctlEnumPowerDomains, ctl_device_adapter_handle_t, uint32_t*, ctl_pwr_handle_t*) \
    FORWARDED(ctlPowerGetProperties, ctl_pwr_handle_t, ctl_power_properties_t*) \
    FORWARDED(ctlPowerGetEnergyCounter, ctl_pwr_handle_t, ctl_power_energy_counter_t*) \
    FORWARDED(ctlPowerGetLimits, ctl_pwr_handle_t, ctl_power_limits_t*) \
    FORWARDED(ctlPowerSetLimits, ctl_pwr_handle_t, const ctl_power_limits_t*) \
    FORWARDED(ctlEnumTemperatureSensors, ctl_device_adapter_handle_t, uint32_t*, ctl_temp_handle_t*) \
    FORWARDED(ctlTemperatureGetProperties, ctl_temp_handle_t, ctl_temp_properties_t*) \
    FORWARDED(ctlTemperatureGetState, ctl_temp_handle_t, double*)
// clang-format on

// Parameter lists and argument lists for the entries (one to three parameters, named a1..a3).
// The extra expansion step keeps MSVC's traditional preprocessor from passing __VA_ARGS__ on
// as a single argument.
#define LUMAVEN_CTL_EXPAND(x) x
#define LUMAVEN_CTL_CAT(a, b) LUMAVEN_CTL_CAT_(a, b)
#define LUMAVEN_CTL_CAT_(a, b) a##b
#define LUMAVEN_CTL_COUNT(...) LUMAVEN_CTL_EXPAND(LUMAVEN_CTL_COUNT_(__VA_ARGS__, 3, 2, 1, 0))
#define LUMAVEN_CTL_COUNT_(t1, t2, t3, n, ...) n
#define LUMAVEN_CTL_PARAMS(...) \
    LUMAVEN_CTL_EXPAND(LUMAVEN_CTL_CAT(LUMAVEN_CTL_PARAMS_, LUMAVEN_CTL_COUNT(__VA_ARGS__))(__VA_ARGS__))
#define LUMAVEN_CTL_PARAMS_1(t1) t1 a1
#define LUMAVEN_CTL_PARAMS_2(t1, t2) t1 a1, t2 a2
#define LUMAVEN_CTL_PARAMS_3(t1, t2, t3) t1 a1, t2 a2, t3 a3
#define LUMAVEN_CTL_ARGS(...) LUMAVEN_CTL_CAT(LUMAVEN_CTL_ARGS_, LUMAVEN_CTL_COUNT(__VA_ARGS__))
#define LUMAVEN_CTL_ARGS_1 a1
#define LUMAVEN_CTL_ARGS_2 a1, a2
#define LUMAVEN_CTL_ARGS_3 a1, a2, a3

// For tables that leave an entry out.
#define LUMAVEN_CTL_NOTHING(name, ...)
