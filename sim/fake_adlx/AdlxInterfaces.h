// The ADLX interfaces the simulated ADLX implements, declared here from ADLX's binary
// interface rather than taken from the service's headers: the service reaches these objects
// only through vtable slots, so a slot the service numbers differently from ADLX lands on
// another method of this driver instead of lining up with the same mistake. Abstract classes
// of pure virtual methods only (no data, no virtual destructor, single inheritance), every slot
// up to the last one used declared in ADLX's order; slots nobody here calls take opaque
// pointers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace LumavenSim::AdlxDriver {

enum Result : int {
    kOk = 0,
    kAlreadyInitialized = 2,
    kFail = 3,
    kInvalidArgs = 4,
    kBadVersion = 5,
    kUnknownInterface = 6,
    kTerminated = 7,
    kInvalidObject = 10,
    kNotSupported = 12,
};
static_assert(sizeof(Result) == 4);
static_assert(sizeof(long) == 4, "ADLX's long is 4 bytes on x64 Windows");
static_assert(sizeof(bool) == 1);

// major << 48 | minor << 32 | release << 16 | build.
constexpr uint64_t VersionMajor(uint64_t version)
{
    return version >> 48;
}

// NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor): ADLX objects are given back with
// Release, never deleted through these classes, and a virtual destructor would take vtable
// slots that ADLX's layout does not have.

class Interface {
public:
    virtual long __stdcall Acquire() = 0;                                                 // 0
    virtual long __stdcall Release() = 0;                                                 // 1
    virtual Result __stdcall QueryInterface(const wchar_t* interfaceId, void** out) = 0;  // 2
};

class Display;
class DisplayList;
class DisplayServices;
class DisplayVariBright;

// Not reference counted: no Acquire/Release.
class System {
public:
    virtual Result __stdcall HybridGraphicsType(int* type) = 0;                           // 0
    virtual Result __stdcall GetGPUs(void** gpus) = 0;                                    // 1
    virtual Result __stdcall QueryInterface(const wchar_t* interfaceId, void** out) = 0;  // 2
    virtual Result __stdcall GetDisplaysServices(DisplayServices** services) = 0;         // 3
};

class List : public Interface {
public:
    virtual unsigned __stdcall Size() = 0;                                 // 3
    virtual bool __stdcall Empty() = 0;                                    // 4
    virtual unsigned __stdcall Begin() = 0;                                // 5
    virtual unsigned __stdcall End() = 0;                                  // 6
    virtual Result __stdcall At(unsigned location, Interface** item) = 0;  // 7
    virtual Result __stdcall Clear() = 0;                                  // 8
    virtual Result __stdcall Remove_Back() = 0;                            // 9
    virtual Result __stdcall Add_Back(Interface* item) = 0;                // 10
};

class DisplayList : public List {
public:
    virtual Result __stdcall AtDisplay(unsigned location, Display** item) = 0;  // 11
    virtual Result __stdcall AddBackDisplay(Display* item) = 0;                 // 12
};

class Display : public Interface {
public:
    virtual Result __stdcall ManufacturerID(unsigned* id) = 0;               // 3
    virtual Result __stdcall DisplayType(int* type) = 0;                     // 4
    virtual Result __stdcall ConnectorType(int* type) = 0;                   // 5
    virtual Result __stdcall Name(const char** name) = 0;                    // 6
    virtual Result __stdcall EDID(const char** edid) = 0;                    // 7
    virtual Result __stdcall NativeResolution(int* width, int* height) = 0;  // 8
    virtual Result __stdcall RefreshRate(double* rate) = 0;                  // 9
    virtual Result __stdcall PixelClock(unsigned* clock) = 0;                // 10
    virtual Result __stdcall ScanType(int* type) = 0;                        // 11
    virtual Result __stdcall GetGPU(void** gpu) = 0;                         // 12
    virtual Result __stdcall UniqueId(size_t* id) = 0;                       // 13
};

class DisplayServices : public Interface {
public:
    virtual Result __stdcall GetNumberOfDisplays(unsigned* count) = 0;  // 3
    virtual Result __stdcall GetDisplays(DisplayList** displays) = 0;   // 4
    // 5 to 18: per-display services (one takes no display: 8, the change handling).
    virtual Result __stdcall Get3DLUT(Display* display, void** out) = 0;                    // 5
    virtual Result __stdcall GetGamut(Display* display, void** out) = 0;                    // 6
    virtual Result __stdcall GetGamma(Display* display, void** out) = 0;                    // 7
    virtual Result __stdcall GetDisplayChangedHandling(void** out) = 0;                     // 8
    virtual Result __stdcall GetFreeSync(Display* display, void** out) = 0;                 // 9
    virtual Result __stdcall GetVirtualSuperResolution(Display* display, void** out) = 0;   // 10
    virtual Result __stdcall GetGPUScaling(Display* display, void** out) = 0;               // 11
    virtual Result __stdcall GetScalingMode(Display* display, void** out) = 0;              // 12
    virtual Result __stdcall GetIntegerScaling(Display* display, void** out) = 0;           // 13
    virtual Result __stdcall GetColorDepth(Display* display, void** out) = 0;               // 14
    virtual Result __stdcall GetPixelFormat(Display* display, void** out) = 0;              // 15
    virtual Result __stdcall GetCustomColor(Display* display, void** out) = 0;              // 16
    virtual Result __stdcall GetHDCP(Display* display, void** out) = 0;                     // 17
    virtual Result __stdcall GetCustomResolution(Display* display, void** out) = 0;         // 18
    virtual Result __stdcall GetVariBright(Display* display, DisplayVariBright** out) = 0;  // 19
};

class DisplayVariBright : public Interface {
public:
    virtual Result __stdcall IsSupported(bool* supported) = 0;                // 3
    virtual Result __stdcall IsEnabled(bool* enabled) = 0;                    // 4
    virtual Result __stdcall SetEnabled(bool enabled) = 0;                    // 5
    virtual Result __stdcall IsCurrentMaximizeBrightness(bool* current) = 0;  // 6
    virtual Result __stdcall IsCurrentOptimizeBrightness(bool* current) = 0;  // 7
    virtual Result __stdcall IsCurrentBalanced(bool* current) = 0;            // 8
    virtual Result __stdcall IsCurrentOptimizeBattery(bool* current) = 0;     // 9
    virtual Result __stdcall IsCurrentMaximizeBattery(bool* current) = 0;     // 10
    virtual Result __stdcall SetMaximizeBrightness() = 0;                     // 11
    virtual Result __stdcall SetOptimizeBrightness() = 0;                     // 12
    virtual Result __stdcall SetBalanced() = 0;                               // 13
    virtual Result __stdcall SetOptimizeBattery() = 0;                        // 14
    virtual Result __stdcall SetMaximizeBattery() = 0;                        // 15
};

// NOLINTEND(cppcoreguidelines-virtual-class-destructor)

}  // namespace LumavenSim::AdlxDriver
