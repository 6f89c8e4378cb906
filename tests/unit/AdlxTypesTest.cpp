// The project's ADLX interface declarations put every method in ADLX's vtable slot: each
// probe object records which method ran, and every slot is called by its number through
// the raw vtable, as ADLX's own callers (and ADLX calling back) do.
#include "amd/AdlxTypes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace adlx;

namespace {

std::string g_called;

// Each probe method is one line whose body is a macro; clang-format cannot see the body and
// would run the methods together, so the probes keep their hand layout.
// clang-format off
#define LUMAVEN_PROBE(name)  \
    {                        \
        g_called = #name;    \
        return {};           \
    }

class SystemProbe final : public IADLXSystem {
public:
    ADLX_RESULT ADLX_STD_CALL HybridGraphicsType(ADLX_HG_TYPE*) override LUMAVEN_PROBE(HybridGraphicsType)
    ADLX_RESULT ADLX_STD_CALL GetGPUs(IADLXGPUList**) override LUMAVEN_PROBE(GetGPUs)
    ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t*, void**) override LUMAVEN_PROBE(QueryInterface)
    ADLX_RESULT ADLX_STD_CALL GetDisplaysServices(IADLXDisplayServices**) override LUMAVEN_PROBE(GetDisplaysServices)
};

#define LUMAVEN_PROBE_INTERFACE                                                                     \
    adlx_long ADLX_STD_CALL Acquire() override LUMAVEN_PROBE(Acquire)                               \
    adlx_long ADLX_STD_CALL Release() override LUMAVEN_PROBE(Release)                               \
    ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t*, void**) override LUMAVEN_PROBE(QueryInterface)

class DisplayListProbe final : public IADLXDisplayList {
public:
    LUMAVEN_PROBE_INTERFACE
    adlx_uint ADLX_STD_CALL Size() override LUMAVEN_PROBE(Size)
    adlx_bool ADLX_STD_CALL Empty() override LUMAVEN_PROBE(Empty)
    adlx_uint ADLX_STD_CALL Begin() override LUMAVEN_PROBE(Begin)
    adlx_uint ADLX_STD_CALL End() override LUMAVEN_PROBE(End)
    ADLX_RESULT ADLX_STD_CALL At(const adlx_uint, IADLXInterface**) override LUMAVEN_PROBE(At)
    ADLX_RESULT ADLX_STD_CALL Clear() override LUMAVEN_PROBE(Clear)
    ADLX_RESULT ADLX_STD_CALL Remove_Back() override LUMAVEN_PROBE(Remove_Back)
    ADLX_RESULT ADLX_STD_CALL Add_Back(IADLXInterface*) override LUMAVEN_PROBE(Add_Back)
    ADLX_RESULT ADLX_STD_CALL At_DisplayList(const adlx_uint, IADLXDisplay**) override LUMAVEN_PROBE(At_DisplayList)
    ADLX_RESULT ADLX_STD_CALL Add_Back_DisplayList(IADLXDisplay*) override LUMAVEN_PROBE(Add_Back_DisplayList)
};

class DisplayProbe final : public IADLXDisplay {
public:
    LUMAVEN_PROBE_INTERFACE
    ADLX_RESULT ADLX_STD_CALL ManufacturerID(adlx_uint*) override LUMAVEN_PROBE(ManufacturerID)
    ADLX_RESULT ADLX_STD_CALL DisplayType(ADLX_DISPLAY_TYPE*) override LUMAVEN_PROBE(DisplayType)
    ADLX_RESULT ADLX_STD_CALL ConnectorType(ADLX_DISPLAY_CONNECTOR_TYPE*) override LUMAVEN_PROBE(ConnectorType)
    ADLX_RESULT ADLX_STD_CALL Name(const char**) override LUMAVEN_PROBE(Name)
    ADLX_RESULT ADLX_STD_CALL EDID(const char**) override LUMAVEN_PROBE(EDID)
    ADLX_RESULT ADLX_STD_CALL NativeResolution(adlx_int*, adlx_int*) override LUMAVEN_PROBE(NativeResolution)
    ADLX_RESULT ADLX_STD_CALL RefreshRate(adlx_double*) override LUMAVEN_PROBE(RefreshRate)
    ADLX_RESULT ADLX_STD_CALL PixelClock(adlx_uint*) override LUMAVEN_PROBE(PixelClock)
    ADLX_RESULT ADLX_STD_CALL ScanType(ADLX_DISPLAY_SCAN_TYPE*) override LUMAVEN_PROBE(ScanType)
    ADLX_RESULT ADLX_STD_CALL GetGPU(IADLXGPU**) override LUMAVEN_PROBE(GetGPU)
    ADLX_RESULT ADLX_STD_CALL UniqueId(adlx_size*) override LUMAVEN_PROBE(UniqueId)
};

class DisplayServicesProbe final : public IADLXDisplayServices {
public:
    LUMAVEN_PROBE_INTERFACE
    ADLX_RESULT ADLX_STD_CALL GetNumberOfDisplays(adlx_uint*) override LUMAVEN_PROBE(GetNumberOfDisplays)
    ADLX_RESULT ADLX_STD_CALL GetDisplays(IADLXDisplayList**) override LUMAVEN_PROBE(GetDisplays)
    ADLX_RESULT ADLX_STD_CALL Get3DLUT(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(Get3DLUT)
    ADLX_RESULT ADLX_STD_CALL GetGamut(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetGamut)
    ADLX_RESULT ADLX_STD_CALL GetGamma(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetGamma)
    ADLX_RESULT ADLX_STD_CALL GetDisplayChangedHandling(IADLXDisplayChangedHandling**) override
        LUMAVEN_PROBE(GetDisplayChangedHandling)
    ADLX_RESULT ADLX_STD_CALL GetFreeSync(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetFreeSync)
    ADLX_RESULT ADLX_STD_CALL GetVirtualSuperResolution(IADLXDisplay*, IADLXInterface**) override
        LUMAVEN_PROBE(GetVirtualSuperResolution)
    ADLX_RESULT ADLX_STD_CALL GetGPUScaling(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetGPUScaling)
    ADLX_RESULT ADLX_STD_CALL GetScalingMode(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetScalingMode)
    ADLX_RESULT ADLX_STD_CALL GetIntegerScaling(IADLXDisplay*, IADLXInterface**) override
        LUMAVEN_PROBE(GetIntegerScaling)
    ADLX_RESULT ADLX_STD_CALL GetColorDepth(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetColorDepth)
    ADLX_RESULT ADLX_STD_CALL GetPixelFormat(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetPixelFormat)
    ADLX_RESULT ADLX_STD_CALL GetCustomColor(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetCustomColor)
    ADLX_RESULT ADLX_STD_CALL GetHDCP(IADLXDisplay*, IADLXInterface**) override LUMAVEN_PROBE(GetHDCP)
    ADLX_RESULT ADLX_STD_CALL GetCustomResolution(IADLXDisplay*, IADLXInterface**) override
        LUMAVEN_PROBE(GetCustomResolution)
    ADLX_RESULT ADLX_STD_CALL GetVariBright(IADLXDisplay*, IADLXDisplayVariBright**) override
        LUMAVEN_PROBE(GetVariBright)
};

class VariBrightProbe final : public IADLXDisplayVariBright {
public:
    LUMAVEN_PROBE_INTERFACE
    ADLX_RESULT ADLX_STD_CALL IsSupported(adlx_bool*) override LUMAVEN_PROBE(IsSupported)
    ADLX_RESULT ADLX_STD_CALL IsEnabled(adlx_bool*) override LUMAVEN_PROBE(IsEnabled)
    ADLX_RESULT ADLX_STD_CALL SetEnabled(adlx_bool) override LUMAVEN_PROBE(SetEnabled)
    ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBrightness(adlx_bool*) override
        LUMAVEN_PROBE(IsCurrentMaximizeBrightness)
    ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBrightness(adlx_bool*) override
        LUMAVEN_PROBE(IsCurrentOptimizeBrightness)
    ADLX_RESULT ADLX_STD_CALL IsCurrentBalanced(adlx_bool*) override LUMAVEN_PROBE(IsCurrentBalanced)
    ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBattery(adlx_bool*) override LUMAVEN_PROBE(IsCurrentOptimizeBattery)
    ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBattery(adlx_bool*) override LUMAVEN_PROBE(IsCurrentMaximizeBattery)
    ADLX_RESULT ADLX_STD_CALL SetMaximizeBrightness() override LUMAVEN_PROBE(SetMaximizeBrightness)
    ADLX_RESULT ADLX_STD_CALL SetOptimizeBrightness() override LUMAVEN_PROBE(SetOptimizeBrightness)
    ADLX_RESULT ADLX_STD_CALL SetBalanced() override LUMAVEN_PROBE(SetBalanced)
    ADLX_RESULT ADLX_STD_CALL SetOptimizeBattery() override LUMAVEN_PROBE(SetOptimizeBattery)
    ADLX_RESULT ADLX_STD_CALL SetMaximizeBattery() override LUMAVEN_PROBE(SetMaximizeBattery)
};

#undef LUMAVEN_PROBE_INTERFACE
#undef LUMAVEN_PROBE
// clang-format on

// Calls slot `slot` of the object's vtable the way a foreign caller does: the object as the
// first argument, the rest in registers. Every probe method ignores its arguments.
std::string CallSlot(void* object, size_t slot)
{
    using AnySlot = uintptr_t (*)(void* self, uintptr_t, uintptr_t);
    void** vtable = *static_cast<void***>(object);
    g_called.clear();
    reinterpret_cast<AnySlot>(vtable[slot])(object, 0, 0);
    return g_called;
}

template <class Interface, class Probe>
void ExpectSlots(const std::vector<std::string>& slots)
{
    Probe probe;
    Interface* object = &probe;
    for (size_t slot = 0; slot < slots.size(); ++slot) {
        EXPECT_EQ(CallSlot(object, slot), slots[slot]) << "slot " << slot;
    }
}

const std::vector<std::string> kInterfaceSlots = {"Acquire", "Release", "QueryInterface"};

std::vector<std::string> WithInterfaceSlots(std::vector<std::string> own)
{
    own.insert(own.begin(), kInterfaceSlots.begin(), kInterfaceSlots.end());
    return own;
}

}  // namespace

TEST(AdlxTypes, SystemIsNotReferenceCountedAndHasDisplayServicesInSlot3)
{
    ExpectSlots<IADLXSystem, SystemProbe>({"HybridGraphicsType", "GetGPUs", "QueryInterface", "GetDisplaysServices"});
}

TEST(AdlxTypes, DisplayListSlotsFollowTheBaseList)
{
    ExpectSlots<IADLXDisplayList, DisplayListProbe>(
        WithInterfaceSlots({"Size", "Empty", "Begin", "End", "At", "Clear", "Remove_Back", "Add_Back", "At_DisplayList",
                            "Add_Back_DisplayList"}));
}

TEST(AdlxTypes, DisplaySlots)
{
    ExpectSlots<IADLXDisplay, DisplayProbe>(
        WithInterfaceSlots({"ManufacturerID", "DisplayType", "ConnectorType", "Name", "EDID", "NativeResolution",
                            "RefreshRate", "PixelClock", "ScanType", "GetGPU", "UniqueId"}));
}

TEST(AdlxTypes, DisplayServicesHaveGetDisplaysIn4AndGetVariBrightIn19)
{
    const std::vector<std::string> slots = WithInterfaceSlots(
        {"GetNumberOfDisplays", "GetDisplays", "Get3DLUT", "GetGamut", "GetGamma", "GetDisplayChangedHandling",
         "GetFreeSync", "GetVirtualSuperResolution", "GetGPUScaling", "GetScalingMode", "GetIntegerScaling",
         "GetColorDepth", "GetPixelFormat", "GetCustomColor", "GetHDCP", "GetCustomResolution", "GetVariBright"});
    ASSERT_EQ(slots.size(), 20u);
    EXPECT_EQ(slots[4], "GetDisplays");
    EXPECT_EQ(slots[19], "GetVariBright");
    ExpectSlots<IADLXDisplayServices, DisplayServicesProbe>(slots);
}

TEST(AdlxTypes, VariBrightHasSetEnabledIn5AndSetMaximizeBatteryIn15)
{
    const std::vector<std::string> slots = WithInterfaceSlots(
        {"IsSupported", "IsEnabled", "SetEnabled", "IsCurrentMaximizeBrightness", "IsCurrentOptimizeBrightness",
         "IsCurrentBalanced", "IsCurrentOptimizeBattery", "IsCurrentMaximizeBattery", "SetMaximizeBrightness",
         "SetOptimizeBrightness", "SetBalanced", "SetOptimizeBattery", "SetMaximizeBattery"});
    ASSERT_EQ(slots.size(), 16u);
    EXPECT_EQ(slots[3], "IsSupported");
    EXPECT_EQ(slots[5], "SetEnabled");
    EXPECT_EQ(slots[15], "SetMaximizeBattery");
    ExpectSlots<IADLXDisplayVariBright, VariBrightProbe>(slots);
}

TEST(AdlxTypes, ResultsUpToAlreadyInitializedCountAsSuccess)
{
    for (const ADLX_RESULT result : {ADLX_OK, ADLX_ALREADY_ENABLED, ADLX_ALREADY_INITIALIZED}) {
        EXPECT_TRUE(ADLX_SUCCEEDED(result)) << result;
    }
    for (const ADLX_RESULT result : {ADLX_FAIL, ADLX_NOT_SUPPORTED, static_cast<ADLX_RESULT>(-1)}) {
        EXPECT_FALSE(ADLX_SUCCEEDED(result)) << result;
    }
    EXPECT_EQ(ADLX_FULL_VERSION, 0x0001000200000048ULL);
    EXPECT_EQ(ADLX_FULL_VERSION >> 48, 1u);
    EXPECT_EQ((ADLX_FULL_VERSION >> 32) & 0xFFFF, 2u);
    EXPECT_EQ(ADLX_FULL_VERSION & 0xFFFF, 72u);
}
