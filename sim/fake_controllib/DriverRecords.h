// The records the simulated Intel driver reads and fills, and the codes it answers, declared
// here from the library's binary interface instead of taken from the service's headers. The
// service's declarations only name the parameter types of the exports; every byte the driver
// looks at goes through these, so a field the service puts at the wrong offset reaches the
// driver as a wrong value (and is refused) instead of being misplaced the same way on both
// sides.
#pragma once

#include <cstddef>
#include <cstdint>

namespace LumavenSim::IntelDriver {

// ctl_result_t values.
constexpr uint32_t kSuccess = 0x00000000;
constexpr uint32_t kUninitialized = 0x40000008;
constexpr uint32_t kUnsupportedVersion = 0x40000009;
constexpr uint32_t kUnsupportedFeature = 0x4000000A;
constexpr uint32_t kInvalidArgument = 0x4000000B;
constexpr uint32_t kNullPointer = 0x4000000E;
constexpr uint32_t kNotImplemented = 0x40000015;

// The record version this driver knows for every record the service sends.
constexpr uint8_t kRecordVersion = 0;
// The API major version this driver implements; any minor of it is accepted.
constexpr uint32_t kApiMajor = 1;
// What ctlInit reports as supported: 1.1.
constexpr uint32_t kSupportedVersion = 0x00010001;

constexpr uint32_t kDisplayActive = 0x1;
constexpr uint32_t kDisplayAttached = 0x2;

constexpr uint32_t kAuxRead = 1;
constexpr uint32_t kAuxWrite = 2;
constexpr uint32_t kAuxNative = 0x1;
constexpr uint32_t kAuxI2c = 0x2;
constexpr uint32_t kAuxI2cMot = 0x4;
constexpr uint32_t kAuxMaxData = 132;
// DPCD addresses are 20 bits wide.
constexpr uint32_t kDpcdSpace = 0x100000;

constexpr uint32_t kFeatureFbc = 0x1;
constexpr uint32_t kFeatureDpst = 0x4;
constexpr uint32_t kFeatureLace = 0x10;
// BKLT (0x1) up to PIXOPTIX (0x40).
constexpr uint32_t kKnownDpstFeatures = 0x7F;
constexpr uint32_t kPowerSourceDc = 1;
constexpr uint32_t kPlanPowerSaver = 2;

struct Guid {
    uint32_t data1;
    uint16_t data2;
    uint16_t data3;
    uint8_t data4[8];
};

struct InitArgs {
    uint32_t Size;
    uint8_t Version;
    uint32_t AppVersion;
    uint32_t flags;
    uint32_t SupportedVersion;
    Guid ApplicationUID;
};
static_assert(sizeof(InitArgs) == 36 && alignof(InitArgs) == 4);
static_assert(offsetof(InitArgs, AppVersion) == 8 && offsetof(InitArgs, flags) == 12);
static_assert(offsetof(InitArgs, SupportedVersion) == 16 && offsetof(InitArgs, ApplicationUID) == 20);

struct RuntimePathArgs {
    uint32_t Size;
    uint8_t Version;
    Guid UnlockID;
    const wchar_t* pRuntimePath;
    uint16_t DeviceID;
    uint8_t RevID;
};
static_assert(sizeof(RuntimePathArgs) == 40 && alignof(RuntimePathArgs) == 8);
static_assert(offsetof(RuntimePathArgs, UnlockID) == 8 && offsetof(RuntimePathArgs, pRuntimePath) == 24);
static_assert(offsetof(RuntimePathArgs, DeviceID) == 32 && offsetof(RuntimePathArgs, RevID) == 34);

struct DisplayProperties {
    uint32_t Size;
    uint8_t Version;
    uint64_t OsDisplayEncoder[2];
    uint32_t Type;
    uint32_t AttachedDisplayMuxType;
    uint32_t ProtocolConverterOutput;
    uint8_t SupportedSpecRevision[3];
    uint32_t SupportedOutputBPCFlags;
    uint32_t ProtocolConverterType;
    uint32_t DisplayConfigFlags;
    uint32_t FeatureEnabledFlags;
    uint32_t FeatureSupportedFlags;
    uint32_t AdvancedFeatureEnabledFlags;
    uint32_t AdvancedFeatureSupportedFlags;
    uint64_t DisplayTiming[8];
    uint32_t ReservedFields[16];
};
static_assert(sizeof(DisplayProperties) == 200 && alignof(DisplayProperties) == 8);
static_assert(offsetof(DisplayProperties, OsDisplayEncoder) == 8 && offsetof(DisplayProperties, Type) == 24);
static_assert(offsetof(DisplayProperties, SupportedSpecRevision) == 36);
static_assert(offsetof(DisplayProperties, SupportedOutputBPCFlags) == 40);
static_assert(offsetof(DisplayProperties, DisplayConfigFlags) == 48);
static_assert(offsetof(DisplayProperties, AdvancedFeatureSupportedFlags) == 64);
static_assert(offsetof(DisplayProperties, DisplayTiming) == 72);
static_assert(offsetof(DisplayProperties, ReservedFields) == 136);

struct AuxAccessArgs {
    uint32_t Size;
    uint8_t Version;
    uint32_t OpType;
    uint32_t Flags;
    uint32_t Address;
    uint64_t RAD;
    uint32_t PortID;
    uint32_t DataSize;
    uint8_t Data[kAuxMaxData];
};
static_assert(sizeof(AuxAccessArgs) == 176 && alignof(AuxAccessArgs) == 8);
static_assert(offsetof(AuxAccessArgs, OpType) == 8 && offsetof(AuxAccessArgs, Flags) == 12);
static_assert(offsetof(AuxAccessArgs, Address) == 16 && offsetof(AuxAccessArgs, RAD) == 24);
static_assert(offsetof(AuxAccessArgs, PortID) == 32 && offsetof(AuxAccessArgs, DataSize) == 36);
static_assert(offsetof(AuxAccessArgs, Data) == 40);

struct PowerCaps {
    uint32_t Size;
    uint8_t Version;
    uint32_t SupportedFeatures;
};
static_assert(sizeof(PowerCaps) == 12 && offsetof(PowerCaps, SupportedFeatures) == 8);

struct DpstInfo {
    uint32_t Size;
    uint8_t Version;
    uint8_t MinLevel;
    uint8_t MaxLevel;
    uint8_t Level;
    uint32_t SupportedFeatures;
    uint32_t EnabledFeatures;
};
static_assert(sizeof(DpstInfo) == 16);

struct PowerSettings {
    uint32_t Size;
    uint8_t Version;
    uint32_t PowerOptimizationPlan;
    uint32_t PowerOptimizationFeature;
    // A bool on the wire; kept as its byte so that a value other than 0 or 1 can be seen.
    uint8_t Enable;
    union {
        DpstInfo DPSTInfo;
        // The largest member (the low-refresh-rate record) fixes the size.
        uint8_t Bytes[20];
    } FeatureSpecificData;
    uint32_t PowerSource;
};
static_assert(sizeof(PowerSettings) == 44 && alignof(PowerSettings) == 4);
static_assert(offsetof(PowerSettings, PowerOptimizationPlan) == 8);
static_assert(offsetof(PowerSettings, PowerOptimizationFeature) == 12);
static_assert(offsetof(PowerSettings, Enable) == 16);
static_assert(offsetof(PowerSettings, FeatureSpecificData) == 20);
static_assert(offsetof(PowerSettings, FeatureSpecificData.DPSTInfo.SupportedFeatures) == 28);
static_assert(offsetof(PowerSettings, FeatureSpecificData.DPSTInfo.EnabledFeatures) == 32);
static_assert(offsetof(PowerSettings, PowerSource) == 40);

struct VfPair {
    uint32_t Size;
    uint8_t Version;
    double Voltage;
    double Frequency;
};
static_assert(sizeof(VfPair) == 24 && offsetof(VfPair, Voltage) == 8 && offsetof(VfPair, Frequency) == 16);

}  // namespace LumavenSim::IntelDriver
