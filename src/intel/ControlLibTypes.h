// The Intel Graphics Control Library types the service and the simulated driver exchange
// with ControlLib.dll, declared by this project from the library's binary interface: the
// handles, the records whose fields are read or written, and the constants. Records that are
// only passed through by pointer are left incomplete. Sizes and offsets are checked below, so a
// layout change cannot go unnoticed on either compiler.
#pragma once

#include <cstddef>
#include <cstdint>

// x64 has one calling convention; the marker documents the C interface.
#define CTL_APICALL __cdecl

// Every entry point answers a 4-byte result; values beyond the named ones pass through as
// they are.
enum ctl_result_t : uint32_t {
    CTL_RESULT_SUCCESS = 0x00000000,
    CTL_RESULT_ERROR_NOT_INITIALIZED = 0x40000001,
    CTL_RESULT_ERROR_UNINITIALIZED = 0x40000008,
    CTL_RESULT_ERROR_UNSUPPORTED_VERSION = 0x40000009,
    CTL_RESULT_ERROR_UNSUPPORTED_FEATURE = 0x4000000A,
    CTL_RESULT_ERROR_INVALID_ARGUMENT = 0x4000000B,
    CTL_RESULT_ERROR_INVALID_NULL_POINTER = 0x4000000E,
    CTL_RESULT_ERROR_NOT_IMPLEMENTED = 0x40000015,
    CTL_RESULT_ERROR_LOAD = 0x40000026,
};
static_assert(sizeof(ctl_result_t) == 4);

// Handles are pointers to records only the library knows.
typedef struct _ctl_api_handle_t* ctl_api_handle_t;
typedef struct _ctl_device_adapter_handle_t* ctl_device_adapter_handle_t;
typedef struct _ctl_display_output_handle_t* ctl_display_output_handle_t;
typedef struct _ctl_engine_handle_t* ctl_engine_handle_t;
typedef struct _ctl_fan_handle_t* ctl_fan_handle_t;
typedef struct _ctl_freq_handle_t* ctl_freq_handle_t;
typedef struct _ctl_mem_handle_t* ctl_mem_handle_t;
typedef struct _ctl_pwr_handle_t* ctl_pwr_handle_t;
typedef struct _ctl_temp_handle_t* ctl_temp_handle_t;
typedef struct _ctl_mux_output_handle_t* ctl_mux_output_handle_t;

// Major version in the upper 16 bits, minor in the lower 16 (1.0 = 0x00010000).
typedef uint32_t ctl_version_info_t;
constexpr uint32_t CtlMajorVersion(ctl_version_info_t version)
{
    return version >> 16;
}

enum ctl_fan_speed_units_t : uint32_t {
    CTL_FAN_SPEED_UNITS_RPM = 0,
    CTL_FAN_SPEED_UNITS_PERCENT = 1,
};
static_assert(sizeof(ctl_fan_speed_units_t) == 4);

// The GUID-shaped identifiers of the init and runtime-path records.
struct ctl_application_id_t {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
static_assert(sizeof(ctl_application_id_t) == 16 && alignof(ctl_application_id_t) == 4);

struct ctl_init_args_t {
    uint32_t Size;
    uint8_t Version;
    ctl_version_info_t AppVersion;
    uint32_t flags;
    ctl_version_info_t SupportedVersion;
    ctl_application_id_t ApplicationUID;
};
static_assert(sizeof(ctl_init_args_t) == 36 && alignof(ctl_init_args_t) == 4);
static_assert(offsetof(ctl_init_args_t, Version) == 4);
static_assert(offsetof(ctl_init_args_t, AppVersion) == 8);
static_assert(offsetof(ctl_init_args_t, flags) == 12);
static_assert(offsetof(ctl_init_args_t, SupportedVersion) == 16);
static_assert(offsetof(ctl_init_args_t, ApplicationUID) == 20);

struct ctl_runtime_path_args_t {
    uint32_t Size;
    uint8_t Version;
    ctl_application_id_t UnlockID;
    wchar_t* pRuntimePath;
    uint16_t DeviceID;
    uint8_t RevID;
};
static_assert(sizeof(ctl_runtime_path_args_t) == 40 && alignof(ctl_runtime_path_args_t) == 8);
static_assert(offsetof(ctl_runtime_path_args_t, UnlockID) == 8);
static_assert(offsetof(ctl_runtime_path_args_t, pRuntimePath) == 24);
static_assert(offsetof(ctl_runtime_path_args_t, DeviceID) == 32);
static_assert(offsetof(ctl_runtime_path_args_t, RevID) == 34);

// Display configuration flags of ctl_display_properties_t.
constexpr uint32_t CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ACTIVE = 0x1;
constexpr uint32_t CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ATTACHED = 0x2;

struct ctl_revision_datatype_t {
    uint8_t major_version;
    uint8_t minor_version;
    uint8_t revision_version;
};
static_assert(sizeof(ctl_revision_datatype_t) == 3);

// Only passed through: the OS's encoder identifier and the current timing.
struct ctl_os_display_encoder_identifier_t {
    alignas(8) uint8_t bytes[16];
};
struct ctl_display_timing_t {
    alignas(8) uint8_t bytes[64];
};

struct ctl_display_properties_t {
    uint32_t Size;
    uint8_t Version;
    ctl_os_display_encoder_identifier_t Os_display_encoder_handle;
    uint32_t Type;
    uint32_t AttachedDisplayMuxType;
    uint32_t ProtocolConverterOutput;
    ctl_revision_datatype_t SupportedRevision;
    uint32_t SupportedOutputBPCFlags;
    uint32_t ProtocolConverterType;
    uint32_t DisplayConfigFlags;
    uint32_t FeatureEnabledFlags;
    uint32_t FeatureSupportedFlags;
    uint32_t AdvancedFeatureEnabledFlags;
    uint32_t AdvancedFeatureSupportedFlags;
    ctl_display_timing_t Display_Timing_Info;
    uint32_t ReservedFields[16];
};
static_assert(sizeof(ctl_display_properties_t) == 200 && alignof(ctl_display_properties_t) == 8);
static_assert(offsetof(ctl_display_properties_t, Os_display_encoder_handle) == 8);
static_assert(offsetof(ctl_display_properties_t, Type) == 24);
static_assert(offsetof(ctl_display_properties_t, SupportedRevision) == 36);
static_assert(offsetof(ctl_display_properties_t, SupportedOutputBPCFlags) == 40);
static_assert(offsetof(ctl_display_properties_t, DisplayConfigFlags) == 48);
static_assert(offsetof(ctl_display_properties_t, AdvancedFeatureSupportedFlags) == 64);
static_assert(offsetof(ctl_display_properties_t, Display_Timing_Info) == 72);
static_assert(offsetof(ctl_display_properties_t, ReservedFields) == 136);

enum ctl_operation_type_t : uint32_t {
    CTL_OPERATION_TYPE_READ = 1,
    CTL_OPERATION_TYPE_WRITE = 2,
};
constexpr uint32_t CTL_AUX_FLAG_NATIVE_AUX = 0x1;
constexpr uint32_t CTL_AUX_FLAG_I2C_AUX = 0x2;
constexpr uint32_t CTL_AUX_FLAG_I2C_AUX_MOT = 0x4;
constexpr uint32_t CTL_AUX_MAX_DATA_SIZE = 132;

struct ctl_aux_access_args_t {
    uint32_t Size;
    uint8_t Version;
    ctl_operation_type_t OpType;
    uint32_t Flags;
    uint32_t Address;
    uint64_t RAD;
    uint32_t PortID;
    uint32_t DataSize;
    uint8_t Data[CTL_AUX_MAX_DATA_SIZE];
};
static_assert(sizeof(ctl_aux_access_args_t) == 176 && alignof(ctl_aux_access_args_t) == 8);
static_assert(offsetof(ctl_aux_access_args_t, OpType) == 8);
static_assert(offsetof(ctl_aux_access_args_t, Flags) == 12);
static_assert(offsetof(ctl_aux_access_args_t, Address) == 16);
static_assert(offsetof(ctl_aux_access_args_t, RAD) == 24);
static_assert(offsetof(ctl_aux_access_args_t, PortID) == 32);
static_assert(offsetof(ctl_aux_access_args_t, DataSize) == 36);
static_assert(offsetof(ctl_aux_access_args_t, Data) == 40);

// Power-optimisation features, and the DPST sub-features.
constexpr uint32_t CTL_POWER_OPTIMIZATION_FLAG_FBC = 0x1;
constexpr uint32_t CTL_POWER_OPTIMIZATION_FLAG_PSR = 0x2;
constexpr uint32_t CTL_POWER_OPTIMIZATION_FLAG_DPST = 0x4;
constexpr uint32_t CTL_POWER_OPTIMIZATION_FLAG_LRR = 0x8;
constexpr uint32_t CTL_POWER_OPTIMIZATION_FLAG_LACE = 0x10;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_BKLT = 0x1;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_PANEL_CABC = 0x2;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST = 0x4;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_ELP = 0x8;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_EPSM = 0x10;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_APD = 0x20;
constexpr uint32_t CTL_POWER_OPTIMIZATION_DPST_FLAG_PIXOPTIX = 0x40;

enum ctl_power_source_t : uint32_t {
    CTL_POWER_SOURCE_AC = 0,
    CTL_POWER_SOURCE_DC = 1,
};
enum ctl_power_optimization_plan_t : uint32_t {
    CTL_POWER_OPTIMIZATION_PLAN_BALANCED = 0,
    CTL_POWER_OPTIMIZATION_PLAN_HIGH_PERFORMANCE = 1,
    CTL_POWER_OPTIMIZATION_PLAN_POWER_SAVER = 2,
};

struct ctl_power_optimization_caps_t {
    uint32_t Size;
    uint8_t Version;
    uint32_t SupportedFeatures;
};
static_assert(sizeof(ctl_power_optimization_caps_t) == 12 && alignof(ctl_power_optimization_caps_t) == 4);
static_assert(offsetof(ctl_power_optimization_caps_t, SupportedFeatures) == 8);

struct ctl_power_optimization_dpst_t {
    uint32_t Size;
    uint8_t Version;
    uint8_t MinLevel;
    uint8_t MaxLevel;
    uint8_t Level;
    uint32_t SupportedFeatures;
    uint32_t EnabledFeatures;
};
static_assert(sizeof(ctl_power_optimization_dpst_t) == 16);

// The per-feature data; only the DPST member is used. The largest member (the low-refresh-rate
// record) fixes the union's size.
union ctl_power_optimization_feature_specific_info_t {
    ctl_power_optimization_dpst_t DPSTInfo;
    uint32_t LargestMember[5];
};
static_assert(sizeof(ctl_power_optimization_feature_specific_info_t) == 20);

struct ctl_power_optimization_settings_t {
    uint32_t Size;
    uint8_t Version;
    ctl_power_optimization_plan_t PowerOptimizationPlan;
    uint32_t PowerOptimizationFeature;
    bool Enable;
    ctl_power_optimization_feature_specific_info_t FeatureSpecificData;
    ctl_power_source_t PowerSource;
};
static_assert(sizeof(ctl_power_optimization_settings_t) == 44 && alignof(ctl_power_optimization_settings_t) == 4);
static_assert(offsetof(ctl_power_optimization_settings_t, PowerOptimizationPlan) == 8);
static_assert(offsetof(ctl_power_optimization_settings_t, PowerOptimizationFeature) == 12);
static_assert(offsetof(ctl_power_optimization_settings_t, Enable) == 16);
static_assert(offsetof(ctl_power_optimization_settings_t, FeatureSpecificData) == 20);
static_assert(offsetof(ctl_power_optimization_settings_t, FeatureSpecificData.DPSTInfo.SupportedFeatures) == 28);
static_assert(offsetof(ctl_power_optimization_settings_t, FeatureSpecificData.DPSTInfo.EnabledFeatures) == 32);
static_assert(offsetof(ctl_power_optimization_settings_t, PowerSource) == 40);

// The voltage/frequency pair that ctlOverclockGpuLockSet takes by value.
struct ctl_oc_vf_pair_t {
    uint32_t Size;
    uint8_t Version;
    double Voltage;
    double Frequency;
};
static_assert(sizeof(ctl_oc_vf_pair_t) == 24 && alignof(ctl_oc_vf_pair_t) == 8);
static_assert(offsetof(ctl_oc_vf_pair_t, Voltage) == 8);
static_assert(offsetof(ctl_oc_vf_pair_t, Frequency) == 16);

// Records the service only passes through by pointer.
struct ctl_wait_property_change_args_t;
struct ctl_reserved_args_t;
struct ctl_3d_feature_caps_t;
struct ctl_3d_feature_getset_t;
struct ctl_device_adapter_properties_t;
struct ctl_adapter_display_encoder_properties_t;
struct ctl_sharpness_caps_t;
struct ctl_sharpness_settings_t;
struct ctl_i2c_access_args_t;
struct ctl_set_brightness_t;
struct ctl_get_brightness_t;
struct ctl_pixtx_pipe_get_config_t;
struct ctl_pixtx_pipe_set_config_t;
struct ctl_panel_descriptor_access_args_t;
struct ctl_retro_scaling_caps_t;
struct ctl_retro_scaling_settings_t;
struct ctl_scaling_caps_t;
struct ctl_scaling_settings_t;
struct ctl_lace_config_t;
struct ctl_sw_psr_settings_t;
struct ctl_intel_arc_sync_monitor_params_t;
struct ctl_mux_properties_t;
struct ctl_intel_arc_sync_profile_params_t;
struct ctl_edid_management_args_t;
struct ctl_get_set_custom_mode_args_t;
struct ctl_engine_properties_t;
struct ctl_engine_stats_t;
struct ctl_fan_properties_t;
struct ctl_fan_config_t;
struct ctl_fan_speed_t;
struct ctl_fan_speed_table_t;
struct ctl_freq_properties_t;
struct ctl_freq_range_t;
struct ctl_freq_state_t;
struct ctl_freq_throttle_time_t;
struct ctl_video_processing_feature_caps_t;
struct ctl_video_processing_feature_getset_t;
struct ctl_mem_properties_t;
struct ctl_mem_state_t;
struct ctl_mem_bandwidth_t;
struct ctl_oc_properties_t;
struct ctl_power_telemetry_t;
struct ctl_pci_properties_t;
struct ctl_pci_state_t;
struct ctl_power_properties_t;
struct ctl_power_energy_counter_t;
struct ctl_power_limits_t;
struct ctl_temp_properties_t;
