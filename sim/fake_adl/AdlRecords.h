// The AMD Display Library records and codes of the simulated ADL, declared here from ADL's
// binary interface rather than taken from the service's headers, so that a field the service
// puts at the wrong offset reaches this driver as a wrong value instead of being misplaced the
// same way on both sides. Every member is an int or a char array, aligned to 4.
#pragma once

#include <cstddef>

namespace LumavenSim::AdlDriver {

constexpr int kOk = 0;
constexpr int kError = -1;
constexpr int kNotInitialized = -2;
constexpr int kInvalidParameter = -3;
constexpr int kNullPointer = -9;

constexpr int kMaxPath = 256;
constexpr int kMaxEdidData = 256;
constexpr int kMaxAuxData = 16;

constexpr int kDisplayConnected = 0x1;
constexpr int kDisplayMapped = 0x2;

constexpr int kAuxStatusSuccessful = 1;
// DPCD addresses are 20 bits wide.
constexpr int kDpcdSpace = 0x100000;

using Context = void*;
using AllocateCallback = void*(__stdcall*)(int size);

struct AdapterInfo {
    int iSize;
    int iAdapterIndex;
    char strUDID[kMaxPath];
    int iBusNumber;
    int iDeviceNumber;
    int iFunctionNumber;
    int iVendorID;
    char strAdapterName[kMaxPath];
    char strDisplayName[kMaxPath];
    int iPresent;
    int iExist;
    char strDriverPath[kMaxPath];
    char strDriverPathExt[kMaxPath];
    char strPNPString[kMaxPath];
    int iOSDisplayIndex;
};
static_assert(sizeof(AdapterInfo) == 1572 && alignof(AdapterInfo) == 4);
static_assert(offsetof(AdapterInfo, iAdapterIndex) == 4 && offsetof(AdapterInfo, strUDID) == 8);
static_assert(offsetof(AdapterInfo, iBusNumber) == 264 && offsetof(AdapterInfo, iVendorID) == 276);
static_assert(offsetof(AdapterInfo, strAdapterName) == 280 && offsetof(AdapterInfo, strDisplayName) == 536);
static_assert(offsetof(AdapterInfo, iPresent) == 792 && offsetof(AdapterInfo, iExist) == 796);
static_assert(offsetof(AdapterInfo, strDriverPath) == 800 && offsetof(AdapterInfo, strDriverPathExt) == 1056);
static_assert(offsetof(AdapterInfo, strPNPString) == 1312 && offsetof(AdapterInfo, iOSDisplayIndex) == 1568);

struct DisplayId {
    int iDisplayLogicalIndex;
    int iDisplayPhysicalIndex;
    int iDisplayLogicalAdapterIndex;
    int iDisplayPhysicalAdapterIndex;
};
static_assert(sizeof(DisplayId) == 16);

struct DisplayInfo {
    DisplayId displayID;
    int iDisplayControllerIndex;
    char strDisplayName[kMaxPath];
    char strDisplayManufacturerName[kMaxPath];
    int iDisplayType;
    int iDisplayOutputType;
    int iDisplayConnector;
    int iDisplayInfoMask;
    int iDisplayInfoValue;
};
static_assert(sizeof(DisplayInfo) == 552 && alignof(DisplayInfo) == 4);
static_assert(offsetof(DisplayInfo, displayID) + offsetof(DisplayId, iDisplayLogicalAdapterIndex) == 8);
static_assert(offsetof(DisplayInfo, iDisplayControllerIndex) == 16 && offsetof(DisplayInfo, strDisplayName) == 20);
static_assert(offsetof(DisplayInfo, strDisplayManufacturerName) == 276);
static_assert(offsetof(DisplayInfo, iDisplayType) == 532 && offsetof(DisplayInfo, iDisplayInfoMask) == 544);
static_assert(offsetof(DisplayInfo, iDisplayInfoValue) == 548);

struct EdidData {
    int iSize;
    int iFlag;
    int iEDIDSize;
    int iBlockIndex;
    char cEDIDData[kMaxEdidData];
    int iReserved[4];
};
static_assert(sizeof(EdidData) == 288);
static_assert(offsetof(EdidData, iEDIDSize) == 8 && offsetof(EdidData, iBlockIndex) == 12);
static_assert(offsetof(EdidData, cEDIDData) == 16 && offsetof(EdidData, iReserved) == 272);

struct AuxChannelData {
    int iSize;
    int iAuxStatus;
    int iCommand;
    int iAddress;
    int iDataSize;
    char cData[kMaxAuxData];
};
static_assert(sizeof(AuxChannelData) == 36 && alignof(AuxChannelData) == 4);
static_assert(offsetof(AuxChannelData, iCommand) == 8 && offsetof(AuxChannelData, iAddress) == 12);
static_assert(offsetof(AuxChannelData, iDataSize) == 16 && offsetof(AuxChannelData, cData) == 20);

}  // namespace LumavenSim::AdlDriver
