// The project's own declarations of the AMD ADLX exports and of the ADLX interfaces the
// service uses, under ADLX's published names. The interfaces are abstract classes of pure
// virtual methods only (no data, no virtual destructor, single inheritance), so their
// vtables are laid out slot by slot in declaration order by every x64 Windows compiler.
// Every slot up to the last one used is declared, in ADLX's order; the ones the service
// never calls keep ADLX's names with parameter types reduced to what the layout needs.
#pragma once

#include <cstddef>
#include <cstdint>

using adlx_int = int;
using adlx_uint = unsigned int;
using adlx_long = long;
using adlx_int64 = int64_t;
using adlx_uint64 = uint64_t;
using adlx_bool = bool;
using adlx_double = double;
using adlx_size = size_t;

static_assert(sizeof(adlx_long) == 4, "ADLX's long is 4 bytes on x64 Windows");
static_assert(sizeof(adlx_bool) == 1);
static_assert(sizeof(wchar_t) == 2);

// On x64 there is one calling convention; the marker is kept for readers of ADLX's headers.
#define ADLX_STD_CALL __stdcall

enum ADLX_RESULT : int {
    ADLX_OK = 0,
    ADLX_ALREADY_ENABLED = 1,
    ADLX_ALREADY_INITIALIZED = 2,
    ADLX_FAIL = 3,
    ADLX_INVALID_ARGS = 4,
    ADLX_BAD_VER = 5,
    ADLX_UNKNOWN_INTERFACE = 6,
    ADLX_TERMINATED = 7,
    ADLX_ADL_INIT_ERROR = 8,
    ADLX_NOT_FOUND = 9,
    ADLX_INVALID_OBJECT = 10,
    ADLX_ORPHAN_OBJECTS = 11,
    ADLX_NOT_SUPPORTED = 12,
    ADLX_PENDING_OPERATION = 13,
    ADLX_GPU_INACTIVE = 14,
};
static_assert(sizeof(ADLX_RESULT) == 4);

// OK, already enabled and already initialised count as success; anything else is failure.
constexpr bool ADLX_SUCCEEDED(ADLX_RESULT result)
{
    return static_cast<unsigned>(result) <= static_cast<unsigned>(ADLX_ALREADY_INITIALIZED);
}
constexpr bool ADLX_FAILED(ADLX_RESULT result)
{
    return !ADLX_SUCCEEDED(result);
}

// The ADLX header version the service is built against (1.2.0.72), packed as
// major << 48 | minor << 32 | release << 16 | build.
inline constexpr adlx_uint64 ADLX_FULL_VERSION = 0x0001000200000048ULL;

// Enumerations that only appear in the signatures of slots the service does not call.
enum ADLX_HG_TYPE : int {};
enum ADLX_DISPLAY_TYPE : int {};
enum ADLX_DISPLAY_CONNECTOR_TYPE : int {};
enum ADLX_DISPLAY_SCAN_TYPE : int {};

namespace adlx {

// NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor): ADLX objects are given back with
// Release, never deleted through these classes, and a virtual destructor would take vtable
// slots that ADLX's layout does not have.

class IADLXInterface {
public:
    virtual adlx_long ADLX_STD_CALL Acquire() = 0;                                                         // 0
    virtual adlx_long ADLX_STD_CALL Release() = 0;                                                         // 1
    virtual ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t* interfaceId, void** ppInterface) = 0;  // 2
};

class IADLXDisplay;
class IADLXDisplayList;
class IADLXDisplayServices;
class IADLXDisplayVariBright;
// Interfaces that appear only as parameters of slots the service does not call.
class IADLXGPU;
class IADLXGPUList;
class IADLXDesktopServices;
class IADLXGPUsChangedHandling;
class IADLX3DSettingsServices;
class IADLXGPUTuningServices;
class IADLXPerformanceMonitoringServices;
class IADLXI2C;
class IADLXDisplayChangedHandling;
class IADLMapping;

// Not reference counted: it has no Acquire/Release and is never released.
class IADLXSystem {
public:
    virtual ADLX_RESULT ADLX_STD_CALL HybridGraphicsType(ADLX_HG_TYPE* hgType) = 0;                        // 0
    virtual ADLX_RESULT ADLX_STD_CALL GetGPUs(IADLXGPUList** ppGPUs) = 0;                                  // 1
    virtual ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t* interfaceId, void** ppInterface) = 0;  // 2
    virtual ADLX_RESULT ADLX_STD_CALL GetDisplaysServices(IADLXDisplayServices** ppDispServices) = 0;      // 3
};

class IADLXList : public IADLXInterface {
public:
    virtual adlx_uint ADLX_STD_CALL Size() = 0;                                                   // 3
    virtual adlx_bool ADLX_STD_CALL Empty() = 0;                                                  // 4
    virtual adlx_uint ADLX_STD_CALL Begin() = 0;                                                  // 5
    virtual adlx_uint ADLX_STD_CALL End() = 0;                                                    // 6
    virtual ADLX_RESULT ADLX_STD_CALL At(const adlx_uint location, IADLXInterface** ppItem) = 0;  // 7
    virtual ADLX_RESULT ADLX_STD_CALL Clear() = 0;                                                // 8
    virtual ADLX_RESULT ADLX_STD_CALL Remove_Back() = 0;                                          // 9
    virtual ADLX_RESULT ADLX_STD_CALL Add_Back(IADLXInterface* pItem) = 0;                        // 10
};

// ADLX overloads At and Add_Back here; overloaded virtuals are ordered differently by MSVC
// and GCC, so the typed pair has names of its own and keeps slots 11 and 12 everywhere.
class IADLXDisplayList : public IADLXList {
public:
    virtual ADLX_RESULT ADLX_STD_CALL At_DisplayList(const adlx_uint location, IADLXDisplay** ppItem) = 0;  // 11
    virtual ADLX_RESULT ADLX_STD_CALL Add_Back_DisplayList(IADLXDisplay* pItem) = 0;                        // 12
};

class IADLXDisplay : public IADLXInterface {
public:
    virtual ADLX_RESULT ADLX_STD_CALL ManufacturerID(adlx_uint* manufacturerID) = 0;                             // 3
    virtual ADLX_RESULT ADLX_STD_CALL DisplayType(ADLX_DISPLAY_TYPE* displayType) = 0;                           // 4
    virtual ADLX_RESULT ADLX_STD_CALL ConnectorType(ADLX_DISPLAY_CONNECTOR_TYPE* connectType) = 0;               // 5
    virtual ADLX_RESULT ADLX_STD_CALL Name(const char** displayName) = 0;                                        // 6
    virtual ADLX_RESULT ADLX_STD_CALL EDID(const char** edid) = 0;                                               // 7
    virtual ADLX_RESULT ADLX_STD_CALL NativeResolution(adlx_int* maxHResolution, adlx_int* maxVResolution) = 0;  // 8
    virtual ADLX_RESULT ADLX_STD_CALL RefreshRate(adlx_double* refreshRate) = 0;                                 // 9
    virtual ADLX_RESULT ADLX_STD_CALL PixelClock(adlx_uint* pixelClock) = 0;                                     // 10
    virtual ADLX_RESULT ADLX_STD_CALL ScanType(ADLX_DISPLAY_SCAN_TYPE* scanType) = 0;                            // 11
    virtual ADLX_RESULT ADLX_STD_CALL GetGPU(IADLXGPU** ppGPU) = 0;                                              // 12
    virtual ADLX_RESULT ADLX_STD_CALL UniqueId(adlx_size* uniqueId) = 0;                                         // 13
};

class IADLXDisplayServices : public IADLXInterface {
public:
    virtual ADLX_RESULT ADLX_STD_CALL GetNumberOfDisplays(adlx_uint* numDisplays) = 0;                     // 3
    virtual ADLX_RESULT ADLX_STD_CALL GetDisplays(IADLXDisplayList** ppDisplays) = 0;                      // 4
    virtual ADLX_RESULT ADLX_STD_CALL Get3DLUT(IADLXDisplay* pDisplay, IADLXInterface** ppDisp3DLUT) = 0;  // 5
    virtual ADLX_RESULT ADLX_STD_CALL GetGamut(IADLXDisplay* pDisplay, IADLXInterface** ppDispGamut) = 0;  // 6
    virtual ADLX_RESULT ADLX_STD_CALL GetGamma(IADLXDisplay* pDisplay, IADLXInterface** ppDispGamma) = 0;  // 7
    virtual ADLX_RESULT ADLX_STD_CALL
    GetDisplayChangedHandling(IADLXDisplayChangedHandling** ppDisplayChangedHandling) = 0;                   // 8
    virtual ADLX_RESULT ADLX_STD_CALL GetFreeSync(IADLXDisplay* pDisplay, IADLXInterface** ppFreeSync) = 0;  // 9
    virtual ADLX_RESULT ADLX_STD_CALL GetVirtualSuperResolution(IADLXDisplay* pDisplay,
                                                                IADLXInterface** ppVSR) = 0;                       // 10
    virtual ADLX_RESULT ADLX_STD_CALL GetGPUScaling(IADLXDisplay* pDisplay, IADLXInterface** ppGPUScaling) = 0;    // 11
    virtual ADLX_RESULT ADLX_STD_CALL GetScalingMode(IADLXDisplay* pDisplay, IADLXInterface** ppScalingMode) = 0;  // 12
    virtual ADLX_RESULT ADLX_STD_CALL GetIntegerScaling(IADLXDisplay* pDisplay,
                                                        IADLXInterface** ppIntegerScaling) = 0;                    // 13
    virtual ADLX_RESULT ADLX_STD_CALL GetColorDepth(IADLXDisplay* pDisplay, IADLXInterface** ppColorDepth) = 0;    // 14
    virtual ADLX_RESULT ADLX_STD_CALL GetPixelFormat(IADLXDisplay* pDisplay, IADLXInterface** ppPixelFormat) = 0;  // 15
    virtual ADLX_RESULT ADLX_STD_CALL GetCustomColor(IADLXDisplay* pDisplay, IADLXInterface** ppCustomColor) = 0;  // 16
    virtual ADLX_RESULT ADLX_STD_CALL GetHDCP(IADLXDisplay* pDisplay, IADLXInterface** ppHDCP) = 0;                // 17
    virtual ADLX_RESULT ADLX_STD_CALL GetCustomResolution(IADLXDisplay* pDisplay,
                                                          IADLXInterface** ppCustomResolution) = 0;  // 18
    virtual ADLX_RESULT ADLX_STD_CALL GetVariBright(IADLXDisplay* pDisplay,
                                                    IADLXDisplayVariBright** ppVariBright) = 0;  // 19
};

class IADLXDisplayVariBright : public IADLXInterface {
public:
    virtual ADLX_RESULT ADLX_STD_CALL IsSupported(adlx_bool* supported) = 0;                  // 3
    virtual ADLX_RESULT ADLX_STD_CALL IsEnabled(adlx_bool* enabled) = 0;                      // 4
    virtual ADLX_RESULT ADLX_STD_CALL SetEnabled(adlx_bool enabled) = 0;                      // 5
    virtual ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBrightness(adlx_bool* isCurrent) = 0;  // 6
    virtual ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBrightness(adlx_bool* isCurrent) = 0;  // 7
    virtual ADLX_RESULT ADLX_STD_CALL IsCurrentBalanced(adlx_bool* isCurrent) = 0;            // 8
    virtual ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBattery(adlx_bool* isCurrent) = 0;     // 9
    virtual ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBattery(adlx_bool* isCurrent) = 0;     // 10
    virtual ADLX_RESULT ADLX_STD_CALL SetMaximizeBrightness() = 0;                            // 11
    virtual ADLX_RESULT ADLX_STD_CALL SetOptimizeBrightness() = 0;                            // 12
    virtual ADLX_RESULT ADLX_STD_CALL SetBalanced() = 0;                                      // 13
    virtual ADLX_RESULT ADLX_STD_CALL SetOptimizeBattery() = 0;                               // 14
    virtual ADLX_RESULT ADLX_STD_CALL SetMaximizeBattery() = 0;                               // 15
};

// Interfaces are reached through one vtable pointer and carry nothing else.
static_assert(sizeof(IADLXInterface) == sizeof(void*));
static_assert(sizeof(IADLXSystem) == sizeof(void*));
static_assert(sizeof(IADLXList) == sizeof(void*));
static_assert(sizeof(IADLXDisplayList) == sizeof(void*));
static_assert(sizeof(IADLXDisplay) == sizeof(void*));
static_assert(sizeof(IADLXDisplayServices) == sizeof(void*));
static_assert(sizeof(IADLXDisplayVariBright) == sizeof(void*));

// NOLINTEND(cppcoreguidelines-virtual-class-destructor)

}  // namespace adlx

// The six exports of amdadlx64.dll.
using ADLXQueryFullVersion_Fn = ADLX_RESULT (*)(adlx_uint64* fullVersion);
using ADLXQueryVersion_Fn = ADLX_RESULT (*)(const char** version);
using ADLXInitializeWithCallerAdl_Fn = ADLX_RESULT (*)(adlx_uint64 version, adlx::IADLXSystem** ppSystem,
                                                       adlx::IADLMapping** ppAdlMapping, void* adlContext,
                                                       void (*adlMainMemoryFree)(void**));
using ADLXInitializeWithIncompatibleDriver_Fn = ADLX_RESULT (*)(adlx_uint64 version, adlx::IADLXSystem** ppSystem);
using ADLXInitialize_Fn = ADLX_RESULT (*)(adlx_uint64 version, adlx::IADLXSystem** ppSystem);
using ADLXTerminate_Fn = ADLX_RESULT (*)();

inline constexpr char ADLX_QUERY_FULL_VERSION_FUNCTION_NAME[] = "ADLXQueryFullVersion";
inline constexpr char ADLX_QUERY_VERSION_FUNCTION_NAME[] = "ADLXQueryVersion";
inline constexpr char ADLX_INIT_WITH_CALLER_ADL_FUNCTION_NAME[] = "ADLXInitializeWithCallerAdl";
inline constexpr char ADLX_INIT_WITH_INCOMPATIBLE_DRIVER_FUNCTION_NAME[] = "ADLXInitializeWithIncompatibleDriver";
inline constexpr char ADLX_INIT_FUNCTION_NAME[] = "ADLXInitialize";
inline constexpr char ADLX_TERMINATE_FUNCTION_NAME[] = "ADLXTerminate";
