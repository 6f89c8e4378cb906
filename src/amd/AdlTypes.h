// The project's own declarations of the AMD Display Library (ADL2) records and entry points
// that the service calls. ADL is a plain C interface; these layouts are ADL's published ones
// on x64 (every member an int or a char array, 4-byte alignment), pinned by the asserts below
// so that the service and the simulated driver agree with the real library byte for byte.
#pragma once

#include <cstddef>

namespace Adl {

inline constexpr int ADL_OK = 0;
inline constexpr int ADL_ERR = -1;
inline constexpr int ADL_ERR_NOT_INIT = -2;
inline constexpr int ADL_ERR_INVALID_PARAM = -3;
inline constexpr int ADL_ERR_NOT_SUPPORTED = -8;
inline constexpr int ADL_ERR_NULL_POINTER = -9;

inline constexpr int ADL_MAX_PATH = 256;
inline constexpr int ADL_MAX_EDIDDATA_SIZE = 256;
inline constexpr int ADL_MAX_NATIVEAUX_DATA_SIZE = 16;

// Bits of ADLDisplayInfo::iDisplayInfoValue.
inline constexpr int ADL_DISPLAY_DISPLAYINFO_DISPLAYCONNECTED = 0x1;
inline constexpr int ADL_DISPLAY_DISPLAYINFO_DISPLAYMAPPED = 0x2;

// Status left in ADLDisplayNativeAUXChannelData::iAuxStatus by a call that returned ADL_OK.
inline constexpr int ADL_AUX_STATUS_UNKNOWN = 0;
inline constexpr int ADL_AUX_STATUS_SUCCESSFUL = 1;

using ADL_CONTEXT_HANDLE = void*;
// ADL allocates the buffers it hands out (the display list) through this caller's callback;
// the caller frees them. On x64 the calling convention marker has no effect.
using ADL_MAIN_MALLOC_CALLBACK = void*(__stdcall*)(int size);

struct AdapterInfo {
    int iSize;
    int iAdapterIndex;
    char strUDID[ADL_MAX_PATH];
    int iBusNumber;
    int iDeviceNumber;
    int iFunctionNumber;
    int iVendorID;
    char strAdapterName[ADL_MAX_PATH];
    char strDisplayName[ADL_MAX_PATH];
    int iPresent;
    int iExist;
    char strDriverPath[ADL_MAX_PATH];
    char strDriverPathExt[ADL_MAX_PATH];
    char strPNPString[ADL_MAX_PATH];
    int iOSDisplayIndex;
};

struct ADLDisplayID {
    int iDisplayLogicalIndex;
    int iDisplayPhysicalIndex;
    int iDisplayLogicalAdapterIndex;
    int iDisplayPhysicalAdapterIndex;
};

struct ADLDisplayInfo {
    ADLDisplayID displayID;
    int iDisplayControllerIndex;
    char strDisplayName[ADL_MAX_PATH];
    char strDisplayManufacturerName[ADL_MAX_PATH];
    int iDisplayType;
    int iDisplayOutputType;
    int iDisplayConnector;
    int iDisplayInfoMask;
    int iDisplayInfoValue;
};

struct ADLDisplayEDIDData {
    int iSize;
    int iFlag;
    int iEDIDSize;
    int iBlockIndex;
    char cEDIDData[ADL_MAX_EDIDDATA_SIZE];
    int iReserved[4];
};

struct ADLDisplayNativeAUXChannelData {
    int iSize;
    int iAuxStatus;
    int iCommand;
    int iAddress;
    int iDataSize;
    char cData[ADL_MAX_NATIVEAUX_DATA_SIZE];
};

static_assert(sizeof(AdapterInfo) == 1572);
static_assert(alignof(AdapterInfo) == 4);
static_assert(offsetof(AdapterInfo, iAdapterIndex) == 4);
static_assert(offsetof(AdapterInfo, strUDID) == 8);
static_assert(offsetof(AdapterInfo, iBusNumber) == 264);
static_assert(offsetof(AdapterInfo, iVendorID) == 276);
static_assert(offsetof(AdapterInfo, strAdapterName) == 280);
static_assert(offsetof(AdapterInfo, strDisplayName) == 536);
static_assert(offsetof(AdapterInfo, iPresent) == 792);
static_assert(offsetof(AdapterInfo, iExist) == 796);
static_assert(offsetof(AdapterInfo, strDriverPath) == 800);
static_assert(offsetof(AdapterInfo, strDriverPathExt) == 1056);
static_assert(offsetof(AdapterInfo, strPNPString) == 1312);
static_assert(offsetof(AdapterInfo, iOSDisplayIndex) == 1568);

static_assert(sizeof(ADLDisplayID) == 16);
static_assert(offsetof(ADLDisplayID, iDisplayLogicalAdapterIndex) == 8);
static_assert(offsetof(ADLDisplayID, iDisplayPhysicalAdapterIndex) == 12);

static_assert(sizeof(ADLDisplayInfo) == 552);
static_assert(alignof(ADLDisplayInfo) == 4);
static_assert(offsetof(ADLDisplayInfo, displayID) + offsetof(ADLDisplayID, iDisplayLogicalAdapterIndex) == 8);
static_assert(offsetof(ADLDisplayInfo, iDisplayControllerIndex) == 16);
static_assert(offsetof(ADLDisplayInfo, strDisplayName) == 20);
static_assert(offsetof(ADLDisplayInfo, strDisplayManufacturerName) == 276);
static_assert(offsetof(ADLDisplayInfo, iDisplayType) == 532);
static_assert(offsetof(ADLDisplayInfo, iDisplayOutputType) == 536);
static_assert(offsetof(ADLDisplayInfo, iDisplayConnector) == 540);
static_assert(offsetof(ADLDisplayInfo, iDisplayInfoMask) == 544);
static_assert(offsetof(ADLDisplayInfo, iDisplayInfoValue) == 548);

static_assert(sizeof(ADLDisplayEDIDData) == 288);
static_assert(offsetof(ADLDisplayEDIDData, iEDIDSize) == 8);
static_assert(offsetof(ADLDisplayEDIDData, iBlockIndex) == 12);
static_assert(offsetof(ADLDisplayEDIDData, cEDIDData) == 16);
static_assert(offsetof(ADLDisplayEDIDData, iReserved) == 272);

static_assert(sizeof(ADLDisplayNativeAUXChannelData) == 36);
static_assert(alignof(ADLDisplayNativeAUXChannelData) == 4);
static_assert(offsetof(ADLDisplayNativeAUXChannelData, iAuxStatus) == 4);
static_assert(offsetof(ADLDisplayNativeAUXChannelData, iCommand) == 8);
static_assert(offsetof(ADLDisplayNativeAUXChannelData, iAddress) == 12);
static_assert(offsetof(ADLDisplayNativeAUXChannelData, iDataSize) == 16);
static_assert(offsetof(ADLDisplayNativeAUXChannelData, cData) == 20);

// The entry points, by their exported names.
using ADL2_MAIN_CONTROL_CREATE = int (*)(ADL_MAIN_MALLOC_CALLBACK callback, int iEnumConnectedAdapters,
                                         ADL_CONTEXT_HANDLE* context);
using ADL2_MAIN_CONTROL_DESTROY = int (*)(ADL_CONTEXT_HANDLE context);
using ADL2_ADAPTER_NUMBEROFADAPTERS_GET = int (*)(ADL_CONTEXT_HANDLE context, int* lpNumAdapters);
using ADL2_ADAPTER_ADAPTERINFO_GET = int (*)(ADL_CONTEXT_HANDLE context, AdapterInfo* lpInfo, int iInputSize);
using ADL2_DISPLAY_DISPLAYINFO_GET = int (*)(ADL_CONTEXT_HANDLE context, int iAdapterIndex, int* lpNumDisplays,
                                             ADLDisplayInfo** lppInfo, int iForceDetect);
using ADL2_DISPLAY_EDIDDATA_GET = int (*)(ADL_CONTEXT_HANDLE context, int iAdapterIndex, int iDisplayIndex,
                                          ADLDisplayEDIDData* lpEDIDData);
using ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS = int (*)(ADL_CONTEXT_HANDLE context, int iAdapterIndex, int iDisplayIndex,
                                                     ADLDisplayNativeAUXChannelData* lpData);

}  // namespace Adl
