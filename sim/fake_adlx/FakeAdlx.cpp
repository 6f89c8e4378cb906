// The simulated AMD ADLX (amdadlx64.dll): the six exports, a system object, display services,
// a display list, displays and a VariBright interface per display, built from the project's
// own declarations of the ADLX interfaces. VariBright support and state come from the
// installed profile's "adlx" section and are kept there; the calls that matter go to the
// transaction log; faults come from the profile.
//
// Profile section (also the driver's state):
//   "adlx": {"displays": [{"varibrightSupported": true, "varibrightEnabled": false,
//                          "varibrightMode": "balanced"}],
//            "initialized": false, "loads": N, "unloads": N}
//
// Reference counts: every object handed out carries one reference for the caller, an object
// goes away when its count reaches 0, and ADLXTerminate destroys whatever is left (an ADLX
// object does not outlive the ADLX that made it).
#include "SimState.h"
#include "Transaction.h"

#include "amd/AdlxTypes.h"

#include <rapidjson/document.h>

#include <windows.h>

#include <cstdio>
#include <functional>
#include <set>
#include <string>
#include <vector>

using namespace adlx;

namespace {

// The version this fake reports (1.4.0.110); it accepts any 1.x header version.
constexpr adlx_uint64 kFakeFullVersion = 0x000100040000006EULL;
constexpr char kFakeVersion[] = "1.4.0.110";

std::string VersionHex(adlx_uint64 version)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llX", static_cast<unsigned long long>(version));
    return text;
}

class Record : public LumavenSim::Transaction {
public:
    explicit Record(const char* call) : Transaction("amdadlx64.dll", call) {}
};

rapidjson::Value& AdlxSection(rapidjson::Document& state)
{
    return LumavenSim::Section(state, "adlx");
}

std::vector<rapidjson::Value*> DisplayStates(rapidjson::Document& state)
{
    return LumavenSim::ObjectsIn(AdlxSection(state), "displays");
}

void SetMember(rapidjson::Document& state, rapidjson::Value& object, const char* name, rapidjson::Value value)
{
    object.RemoveMember(name);
    object.AddMember(rapidjson::Value(name, state.GetAllocator()), value, state.GetAllocator());
}

bool BoolMember(const rapidjson::Value& object, const char* name)
{
    return object.HasMember(name) && object[name].IsBool() && object[name].GetBool();
}

// Runs `use` on the state under the sim lock; a fault injected into `function` is answered
// instead. The state is written back.
ADLX_RESULT WithFaultableState(const char* function, const std::function<ADLX_RESULT(rapidjson::Document&)>& use)
{
    ADLX_RESULT result = ADLX_OK;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, function)) {
            result = static_cast<ADLX_RESULT>(*fault);
        } else {
            result = use(state);
        }
        return true;
    });
    return result;
}

// Set while ADLXTerminate destroys the objects left over.
bool g_terminating = false;

// Every live object, so that ADLXTerminate can destroy what the caller did not release.
class Tracked {
public:
    Tracked() { Live().insert(this); }
    virtual ~Tracked() { Live().erase(this); }
    Tracked(const Tracked&) = delete;
    Tracked& operator=(const Tracked&) = delete;
    static std::set<Tracked*>& Live()
    {
        static std::set<Tracked*> live;
        return live;
    }
};

template <class Interface>
class RefCounted : public Interface, public Tracked {
public:
    adlx_long ADLX_STD_CALL Acquire() override { return ++m_refs; }
    adlx_long ADLX_STD_CALL Release() override
    {
        const adlx_long refs = --m_refs;
        Record record("Release");
        record.Text("interface", InterfaceName()).Int("display", DisplayNumber()).Int("refs", refs).Write();
        if (refs == 0) {
            delete this;
        }
        return refs;
    }
    ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t* interfaceId, void** ppInterface) override
    {
        if (interfaceId == nullptr || ppInterface == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        const std::string id(interfaceId, interfaceId + wcslen(interfaceId));
        if (id == InterfaceName() || id == "IADLXInterface") {
            Acquire();
            *ppInterface = static_cast<Interface*>(this);
            return ADLX_OK;
        }
        *ppInterface = nullptr;
        return ADLX_UNKNOWN_INTERFACE;
    }

    virtual const char* InterfaceName() const = 0;
    // The display the object belongs to; -1 for none.
    virtual int64_t DisplayNumber() const { return -1; }

private:
    adlx_long m_refs = 1;
};

class FakeDisplay final : public RefCounted<IADLXDisplay> {
public:
    explicit FakeDisplay(size_t index) : m_index(index) {}
    const char* InterfaceName() const override { return "IADLXDisplay"; }
    int64_t DisplayNumber() const override { return static_cast<int64_t>(m_index); }

    ADLX_RESULT ADLX_STD_CALL ManufacturerID(adlx_uint* manufacturerID) override
    {
        return Give(manufacturerID, 0x4C83u);
    }
    ADLX_RESULT ADLX_STD_CALL DisplayType(ADLX_DISPLAY_TYPE* displayType) override
    {
        return Give(displayType, ADLX_DISPLAY_TYPE{});
    }
    ADLX_RESULT ADLX_STD_CALL ConnectorType(ADLX_DISPLAY_CONNECTOR_TYPE* connectType) override
    {
        return Give(connectType, ADLX_DISPLAY_CONNECTOR_TYPE{});
    }
    ADLX_RESULT ADLX_STD_CALL Name(const char** displayName) override { return Give(displayName, "Simulated panel"); }
    ADLX_RESULT ADLX_STD_CALL EDID(const char** edid) override { return Give(edid, ""); }
    ADLX_RESULT ADLX_STD_CALL NativeResolution(adlx_int* maxHResolution, adlx_int* maxVResolution) override
    {
        if (maxHResolution == nullptr || maxVResolution == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        *maxHResolution = 2880;
        *maxVResolution = 1800;
        return ADLX_OK;
    }
    ADLX_RESULT ADLX_STD_CALL RefreshRate(adlx_double* refreshRate) override { return Give(refreshRate, 60.0); }
    ADLX_RESULT ADLX_STD_CALL PixelClock(adlx_uint* pixelClock) override { return Give(pixelClock, 333000u); }
    ADLX_RESULT ADLX_STD_CALL ScanType(ADLX_DISPLAY_SCAN_TYPE* scanType) override
    {
        return Give(scanType, ADLX_DISPLAY_SCAN_TYPE{});
    }
    ADLX_RESULT ADLX_STD_CALL GetGPU(IADLXGPU** ppGPU) override
    {
        if (ppGPU != nullptr) {
            *ppGPU = nullptr;
        }
        return ADLX_NOT_SUPPORTED;
    }
    // The display's position in the profile: how the display services know whose VariBright
    // is wanted.
    ADLX_RESULT ADLX_STD_CALL UniqueId(adlx_size* uniqueId) override { return Give(uniqueId, m_index); }

private:
    template <class T, class V>
    static ADLX_RESULT Give(T* out, V value)
    {
        if (out == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        *out = static_cast<T>(value);
        return ADLX_OK;
    }
    size_t m_index;
};

class FakeDisplayList final : public RefCounted<IADLXDisplayList> {
public:
    explicit FakeDisplayList(size_t count)
    {
        for (size_t i = 0; i < count; ++i) {
            m_items.push_back(new FakeDisplay(i));
        }
    }
    ~FakeDisplayList() override
    {
        // While ADLX terminates, the displays are destroyed with everything else.
        if (g_terminating) {
            return;
        }
        for (FakeDisplay* display : m_items) {
            display->Release();
        }
    }
    const char* InterfaceName() const override { return "IADLXDisplayList"; }

    adlx_uint ADLX_STD_CALL Size() override { return static_cast<adlx_uint>(m_items.size()); }
    adlx_bool ADLX_STD_CALL Empty() override { return m_items.empty(); }
    adlx_uint ADLX_STD_CALL Begin() override { return 0; }
    adlx_uint ADLX_STD_CALL End() override { return Size(); }
    ADLX_RESULT ADLX_STD_CALL At(const adlx_uint location, IADLXInterface** ppItem) override
    {
        IADLXDisplay* display = nullptr;
        const ADLX_RESULT result = Take(location, &display);
        if (ppItem != nullptr) {
            *ppItem = display;
        }
        return result;
    }
    ADLX_RESULT ADLX_STD_CALL Clear() override { return ADLX_NOT_SUPPORTED; }
    ADLX_RESULT ADLX_STD_CALL Remove_Back() override { return ADLX_NOT_SUPPORTED; }
    ADLX_RESULT ADLX_STD_CALL Add_Back(IADLXInterface*) override { return ADLX_NOT_SUPPORTED; }
    ADLX_RESULT ADLX_STD_CALL At_DisplayList(const adlx_uint location, IADLXDisplay** ppItem) override
    {
        return Take(location, ppItem);
    }
    ADLX_RESULT ADLX_STD_CALL Add_Back_DisplayList(IADLXDisplay*) override { return ADLX_NOT_SUPPORTED; }

private:
    ADLX_RESULT Take(adlx_uint location, IADLXDisplay** ppItem)
    {
        Record record("At");
        record.Int("index", location);
        if (ppItem == nullptr) {
            return record.Done(ADLX_INVALID_ARGS);
        }
        *ppItem = nullptr;
        const ADLX_RESULT result = WithFaultableState("At", [&](rapidjson::Document&) {
            return location < m_items.size() ? ADLX_OK : ADLX_INVALID_ARGS;
        });
        if (result == ADLX_OK) {
            m_items[location]->Acquire();
            *ppItem = m_items[location];
        }
        return record.Done(result);
    }
    std::vector<FakeDisplay*> m_items;
};

class FakeVariBright final : public RefCounted<IADLXDisplayVariBright> {
public:
    explicit FakeVariBright(size_t display) : m_display(display) {}
    const char* InterfaceName() const override { return "IADLXDisplayVariBright"; }
    int64_t DisplayNumber() const override { return static_cast<int64_t>(m_display); }

    ADLX_RESULT ADLX_STD_CALL IsSupported(adlx_bool* supported) override
    {
        Record record("IsSupported");
        record.Int("display", DisplayNumber());
        const ADLX_RESULT result = Read("IsSupported", supported, [](const rapidjson::Value& display) {
            return BoolMember(display, "varibrightSupported");
        });
        if (result == ADLX_OK) {
            record.Bool("supported", *supported);
        }
        return record.Done(result);
    }
    ADLX_RESULT ADLX_STD_CALL IsEnabled(adlx_bool* enabled) override
    {
        return Read("IsEnabled", enabled,
                    [](const rapidjson::Value& display) { return BoolMember(display, "varibrightEnabled"); });
    }
    ADLX_RESULT ADLX_STD_CALL SetEnabled(adlx_bool enabled) override
    {
        Record record("SetEnabled");
        record.Int("display", DisplayNumber()).Bool("value", enabled);
        return record.Done(Change("SetEnabled", [enabled](rapidjson::Document& state, rapidjson::Value& display) {
            SetMember(state, display, "varibrightEnabled", rapidjson::Value(enabled));
        }));
    }
    ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBrightness(adlx_bool* isCurrent) override
    {
        return IsMode("IsCurrentMaximizeBrightness", "maximizeBrightness", isCurrent);
    }
    ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBrightness(adlx_bool* isCurrent) override
    {
        return IsMode("IsCurrentOptimizeBrightness", "optimizeBrightness", isCurrent);
    }
    ADLX_RESULT ADLX_STD_CALL IsCurrentBalanced(adlx_bool* isCurrent) override
    {
        return IsMode("IsCurrentBalanced", "balanced", isCurrent);
    }
    ADLX_RESULT ADLX_STD_CALL IsCurrentOptimizeBattery(adlx_bool* isCurrent) override
    {
        return IsMode("IsCurrentOptimizeBattery", "optimizeBattery", isCurrent);
    }
    ADLX_RESULT ADLX_STD_CALL IsCurrentMaximizeBattery(adlx_bool* isCurrent) override
    {
        return IsMode("IsCurrentMaximizeBattery", "maximizeBattery", isCurrent);
    }
    ADLX_RESULT ADLX_STD_CALL SetMaximizeBrightness() override
    {
        return SetMode("SetMaximizeBrightness", "maximizeBrightness");
    }
    ADLX_RESULT ADLX_STD_CALL SetOptimizeBrightness() override
    {
        return SetMode("SetOptimizeBrightness", "optimizeBrightness");
    }
    ADLX_RESULT ADLX_STD_CALL SetBalanced() override { return SetMode("SetBalanced", "balanced"); }
    ADLX_RESULT ADLX_STD_CALL SetOptimizeBattery() override { return SetMode("SetOptimizeBattery", "optimizeBattery"); }
    ADLX_RESULT ADLX_STD_CALL SetMaximizeBattery() override { return SetMode("SetMaximizeBattery", "maximizeBattery"); }

private:
    rapidjson::Value* MyDisplay(rapidjson::Document& state) const
    {
        const auto displays = DisplayStates(state);
        return m_display < displays.size() ? displays[m_display] : nullptr;
    }
    ADLX_RESULT Read(const char* function, adlx_bool* out, const std::function<bool(const rapidjson::Value&)>& read)
    {
        if (out == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        return WithFaultableState(function, [&](rapidjson::Document& state) {
            const rapidjson::Value* display = MyDisplay(state);
            if (display == nullptr) {
                return ADLX_INVALID_OBJECT;
            }
            *out = read(*display);
            return ADLX_OK;
        });
    }
    // A change is accepted only where VariBright is supported.
    ADLX_RESULT Change(const char* function, const std::function<void(rapidjson::Document&, rapidjson::Value&)>& change)
    {
        return WithFaultableState(function, [&](rapidjson::Document& state) {
            rapidjson::Value* display = MyDisplay(state);
            if (display == nullptr) {
                return ADLX_INVALID_OBJECT;
            }
            if (!BoolMember(*display, "varibrightSupported")) {
                return ADLX_NOT_SUPPORTED;
            }
            change(state, *display);
            return ADLX_OK;
        });
    }
    ADLX_RESULT IsMode(const char* function, const char* mode, adlx_bool* isCurrent)
    {
        return Read(function, isCurrent, [mode](const rapidjson::Value& display) {
            return display.HasMember("varibrightMode") && display["varibrightMode"].IsString() &&
                   std::string(display["varibrightMode"].GetString()) == mode;
        });
    }
    ADLX_RESULT SetMode(const char* function, const char* mode)
    {
        Record record(function);
        record.Int("display", DisplayNumber());
        return record.Done(Change(function, [mode](rapidjson::Document& state, rapidjson::Value& display) {
            SetMember(state, display, "varibrightMode", rapidjson::Value(mode, state.GetAllocator()));
        }));
    }
    size_t m_display;
};

class FakeDisplayServices final : public RefCounted<IADLXDisplayServices> {
public:
    const char* InterfaceName() const override { return "IADLXDisplayServices"; }

    ADLX_RESULT ADLX_STD_CALL GetNumberOfDisplays(adlx_uint* numDisplays) override
    {
        if (numDisplays == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        return WithFaultableState("GetNumberOfDisplays", [&](rapidjson::Document& state) {
            *numDisplays = static_cast<adlx_uint>(DisplayStates(state).size());
            return ADLX_OK;
        });
    }
    ADLX_RESULT ADLX_STD_CALL GetDisplays(IADLXDisplayList** ppDisplays) override
    {
        Record record("GetDisplays");
        if (ppDisplays == nullptr) {
            return record.Done(ADLX_INVALID_ARGS);
        }
        *ppDisplays = nullptr;
        size_t count = 0;
        const ADLX_RESULT result = WithFaultableState("GetDisplays", [&](rapidjson::Document& state) {
            count = DisplayStates(state).size();
            return ADLX_OK;
        });
        if (result == ADLX_OK) {
            *ppDisplays = new FakeDisplayList(count);
            record.Int("count", static_cast<int64_t>(count));
        }
        return record.Done(result);
    }
    ADLX_RESULT ADLX_STD_CALL Get3DLUT(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetGamut(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetGamma(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetDisplayChangedHandling(IADLXDisplayChangedHandling** out) override
    {
        return None(out);
    }
    ADLX_RESULT ADLX_STD_CALL GetFreeSync(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetVirtualSuperResolution(IADLXDisplay*, IADLXInterface** out) override
    {
        return None(out);
    }
    ADLX_RESULT ADLX_STD_CALL GetGPUScaling(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetScalingMode(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetIntegerScaling(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetColorDepth(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetPixelFormat(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetCustomColor(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetHDCP(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetCustomResolution(IADLXDisplay*, IADLXInterface** out) override { return None(out); }
    ADLX_RESULT ADLX_STD_CALL GetVariBright(IADLXDisplay* pDisplay, IADLXDisplayVariBright** ppVariBright) override
    {
        Record record("GetVariBright");
        if (ppVariBright == nullptr || pDisplay == nullptr) {
            if (ppVariBright != nullptr) {
                *ppVariBright = nullptr;
            }
            return record.Done(ADLX_INVALID_ARGS);
        }
        *ppVariBright = nullptr;
        adlx_size display = 0;
        if (pDisplay->UniqueId(&display) != ADLX_OK) {
            return record.Done(ADLX_INVALID_OBJECT);
        }
        record.Int("display", static_cast<int64_t>(display));
        const ADLX_RESULT result =
            WithFaultableState("GetVariBright", [](rapidjson::Document&) { return ADLX_OK; });
        if (result == ADLX_OK) {
            *ppVariBright = new FakeVariBright(display);
        }
        return record.Done(result);
    }

private:
    template <class T>
    static ADLX_RESULT None(T** out)
    {
        if (out != nullptr) {
            *out = nullptr;
        }
        return ADLX_NOT_SUPPORTED;
    }
};

// Not reference counted, like ADLX's own: it lives from ADLXInitialize to ADLXTerminate.
class FakeSystem final : public IADLXSystem {
public:
    ADLX_RESULT ADLX_STD_CALL HybridGraphicsType(ADLX_HG_TYPE* hgType) override
    {
        if (hgType == nullptr) {
            return ADLX_INVALID_ARGS;
        }
        *hgType = ADLX_HG_TYPE{};
        return ADLX_OK;
    }
    ADLX_RESULT ADLX_STD_CALL GetGPUs(IADLXGPUList** ppGPUs) override
    {
        if (ppGPUs != nullptr) {
            *ppGPUs = nullptr;
        }
        return ADLX_NOT_SUPPORTED;
    }
    ADLX_RESULT ADLX_STD_CALL QueryInterface(const wchar_t*, void** ppInterface) override
    {
        if (ppInterface != nullptr) {
            *ppInterface = nullptr;
        }
        return ADLX_UNKNOWN_INTERFACE;
    }
    ADLX_RESULT ADLX_STD_CALL GetDisplaysServices(IADLXDisplayServices** ppDispServices) override
    {
        Record record("GetDisplaysServices");
        if (ppDispServices == nullptr) {
            return record.Done(ADLX_INVALID_ARGS);
        }
        *ppDispServices = nullptr;
        const ADLX_RESULT result =
            WithFaultableState("GetDisplaysServices", [](rapidjson::Document&) { return ADLX_OK; });
        if (result == ADLX_OK) {
            *ppDispServices = new FakeDisplayServices();
        }
        return record.Done(result);
    }
};

FakeSystem* g_system = nullptr;

void SetInitialized(bool initialized)
{
    LumavenSim::WithState([initialized](rapidjson::Document& state) {
        SetMember(state, AdlxSection(state), "initialized", rapidjson::Value(initialized));
        return true;
    });
}

ADLX_RESULT Initialize(const char* call, adlx_uint64 version, IADLXSystem** ppSystem)
{
    Record record(call);
    record.Text("version", VersionHex(version));
    if (ppSystem == nullptr) {
        return record.Done(ADLX_INVALID_ARGS);
    }
    const ADLX_RESULT result = WithFaultableState(call, [version](rapidjson::Document&) {
        return (version >> 48) == (kFakeFullVersion >> 48) ? ADLX_OK : ADLX_BAD_VER;
    });
    if (result != ADLX_OK) {
        *ppSystem = nullptr;
        return record.Done(result);
    }
    if (g_system != nullptr) {
        *ppSystem = g_system;
        return record.Done(ADLX_ALREADY_INITIALIZED);
    }
    g_system = new FakeSystem();
    *ppSystem = g_system;
    SetInitialized(true);
    return record.Done(ADLX_OK);
}

}  // namespace

extern "C" {

ADLX_RESULT ADLXQueryFullVersion(adlx_uint64* fullVersion)
{
    Record record("ADLXQueryFullVersion");
    if (fullVersion == nullptr) {
        return record.Done(ADLX_INVALID_ARGS);
    }
    return record.Done(WithFaultableState("ADLXQueryFullVersion", [fullVersion](rapidjson::Document&) {
        *fullVersion = kFakeFullVersion;
        return ADLX_OK;
    }));
}

ADLX_RESULT ADLXQueryVersion(const char** version)
{
    Record record("ADLXQueryVersion");
    if (version == nullptr) {
        return record.Done(ADLX_INVALID_ARGS);
    }
    return record.Done(WithFaultableState("ADLXQueryVersion", [version](rapidjson::Document&) {
        *version = kFakeVersion;
        return ADLX_OK;
    }));
}

ADLX_RESULT ADLXInitializeWithCallerAdl(adlx_uint64 version, IADLXSystem** ppSystem, IADLMapping** ppAdlMapping,
                                        void*, void (*)(void**))
{
    if (ppAdlMapping != nullptr) {
        *ppAdlMapping = nullptr;
    }
    return Initialize("ADLXInitializeWithCallerAdl", version, ppSystem);
}

ADLX_RESULT ADLXInitializeWithIncompatibleDriver(adlx_uint64 version, IADLXSystem** ppSystem)
{
    return Initialize("ADLXInitializeWithIncompatibleDriver", version, ppSystem);
}

ADLX_RESULT ADLXInitialize(adlx_uint64 version, IADLXSystem** ppSystem)
{
    return Initialize("ADLXInitialize", version, ppSystem);
}

ADLX_RESULT ADLXTerminate()
{
    Record record("ADLXTerminate");
    const ADLX_RESULT result = WithFaultableState("ADLXTerminate", [](rapidjson::Document&) { return ADLX_OK; });
    if (result != ADLX_OK) {
        return record.Done(result);
    }
    // What the caller still holds dies with ADLX.
    const std::set<Tracked*> orphans = Tracked::Live();
    record.Int("orphans", static_cast<int64_t>(orphans.size()));
    g_terminating = true;
    for (Tracked* object : orphans) {
        delete object;
    }
    g_terminating = false;
    const bool wasInitialized = g_system != nullptr;
    delete g_system;
    g_system = nullptr;
    if (wasInitialized) {
        SetInitialized(false);
    }
    return record.Done(ADLX_OK);
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(instance);
    }
    LumavenSim::CountLoadsAndUnloads("adlx", reason, reserved);
    return TRUE;
}

}  // extern "C"
