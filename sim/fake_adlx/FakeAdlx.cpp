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
#include "DetachGuard.h"
#include "SimState.h"
#include "Transaction.h"

#include "AdlxInterfaces.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <cstdio>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

using namespace LumavenSim::AdlxDriver;

namespace {

// The version this fake reports (1.4.0.110); it accepts a 1.x header version up to its own.
constexpr uint64_t kFakeFullVersion = 0x000100040000006EULL;
constexpr char kFakeVersion[] = "1.4.0.110";

std::string VersionHex(uint64_t version)
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
Result WithFaultableState(const char* function, const std::function<Result(rapidjson::Document&)>& use)
{
    Result result = kOk;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, function)) {
            result = static_cast<Result>(*fault);
        } else {
            result = use(state);
        }
        return true;
    });
    return result;
}

// After the library's detach nothing of ADLX is left, its objects included: every export and
// every method asks this first, and a call that came too late is refused (logged) as one on a
// terminated ADLX.
bool Detached(const char* call)
{
    return LumavenSim::RefusedAfterDetach("amdadlx64.dll", call, kTerminated);
}

// Every object of this ADLX: the live ones, so that ADLXTerminate can destroy what the caller
// did not release, and the last ones released. A released object is kept a while instead of
// being freed at once, so that a caller who uses it again is refused (ADLX_INVALID_OBJECT,
// "refused" in the log) instead of running into freed memory.
//
// The lists go with the library's other statics at its detach; every call that could reach
// them asks Detached first.
class Tracked {
public:
    Tracked() { Live().insert(this); }
    virtual ~Tracked() = default;
    Tracked(const Tracked&) = delete;
    Tracked& operator=(const Tracked&) = delete;

    static std::set<Tracked*>& Live()
    {
        static std::set<Tracked*> live;
        return live;
    }
    static std::deque<Tracked*>& Released()
    {
        static std::deque<Tracked*> released;
        return released;
    }
    // Destroys every object, live or released; answers how many were still live.
    static size_t DestroyAll()
    {
        const size_t live = Live().size();
        for (Tracked* object : Live()) {
            delete object;
        }
        for (Tracked* object : Released()) {
            delete object;
        }
        Live().clear();
        Released().clear();
        return live;
    }

protected:
    // What the object lets go of when its last reference goes.
    virtual void OnLastRelease() {}
    void Retire()
    {
        OnLastRelease();
        Live().erase(this);
        Released().push_back(this);
        if (Released().size() > kKeptReleased) {
            delete Released().front();
            Released().pop_front();
        }
    }

private:
    static constexpr size_t kKeptReleased = 64;
};

// The record of a call this ADLX refuses, with its reason; answers `result`.
Result Refuse(const char* call, Result result, const std::string& reason)
{
    Record record(call);
    return record.Refused(reason).Done(result);
}

template <class Base>
class RefCounted : public Base, public Tracked {
public:
    long __stdcall Acquire() override
    {
        if (Detached("Acquire")) {
            return 0;
        }
        if (IsReleased()) {
            RefuseReleased("Acquire");
            return 0;
        }
        return ++m_refs;
    }
    long __stdcall Release() override
    {
        if (Detached("Release")) {
            return 0;
        }
        Record record("Release");
        record.Text("interface", InterfaceName()).Int("display", DisplayNumber());
        if (IsReleased()) {
            record.Refused(std::string("a released ") + InterfaceName()).Write();
            return 0;
        }
        const long refs = --m_refs;
        record.Int("refs", refs).Write();
        if (refs == 0) {
            Retire();
        }
        return refs;
    }
    Result __stdcall QueryInterface(const wchar_t* interfaceId, void** ppInterface) override
    {
        if (Detached("QueryInterface")) {
            return kTerminated;
        }
        if (IsReleased()) {
            return RefuseReleased("QueryInterface");
        }
        if (interfaceId == nullptr || ppInterface == nullptr) {
            return Refuse("QueryInterface", kInvalidArgs,
                          interfaceId == nullptr ? "no interface id" : "no pointer to fill");
        }
        const std::string id(interfaceId, interfaceId + wcslen(interfaceId));
        if (id == InterfaceName() || id == "IADLXInterface") {
            Acquire();
            *ppInterface = static_cast<Base*>(this);
            return kOk;
        }
        *ppInterface = nullptr;
        return kUnknownInterface;
    }

    virtual const char* InterfaceName() const = 0;
    // The display the object belongs to; -1 for none.
    virtual int64_t DisplayNumber() const { return -1; }

protected:
    bool IsReleased() const { return m_refs <= 0; }
    // The refusal of a call on this object after its last Release.
    Result RefuseReleased(const char* call) const
    {
        return Refuse(call, kInvalidObject, std::string("a released ") + InterfaceName());
    }

private:
    long m_refs = 1;
};

class FakeDisplay final : public RefCounted<Display> {
public:
    explicit FakeDisplay(size_t index) : m_index(index) {}
    const char* InterfaceName() const override { return "IADLXDisplay"; }
    int64_t DisplayNumber() const override { return static_cast<int64_t>(m_index); }

    Result __stdcall ManufacturerID(unsigned* manufacturerID) override
    {
        return Give("ManufacturerID", manufacturerID, 0x4C83u);
    }
    Result __stdcall DisplayType(int* displayType) override { return Give("DisplayType", displayType, 0); }
    Result __stdcall ConnectorType(int* connectType) override { return Give("ConnectorType", connectType, 0); }
    Result __stdcall Name(const char** displayName) override { return Give("Name", displayName, "Simulated panel"); }
    Result __stdcall EDID(const char** edid) override { return Give("EDID", edid, ""); }
    Result __stdcall NativeResolution(int* maxHResolution, int* maxVResolution) override
    {
        const Result width = Give("NativeResolution", maxHResolution, 2880);
        return width != kOk ? width : Give("NativeResolution", maxVResolution, 1800);
    }
    Result __stdcall RefreshRate(double* refreshRate) override { return Give("RefreshRate", refreshRate, 60.0); }
    Result __stdcall PixelClock(unsigned* pixelClock) override { return Give("PixelClock", pixelClock, 333000u); }
    Result __stdcall ScanType(int* scanType) override { return Give("ScanType", scanType, 0); }
    Result __stdcall GetGPU(void** ppGPU) override
    {
        if (Detached("GetGPU")) {
            return kTerminated;
        }
        if (ppGPU != nullptr) {
            *ppGPU = nullptr;
        }
        return kNotSupported;
    }
    // The display's position in the profile: how the display services know whose VariBright
    // is wanted.
    Result __stdcall UniqueId(size_t* uniqueId) override { return Give("UniqueId", uniqueId, m_index); }

    size_t Index() const { return m_index; }
    bool Released() const { return IsReleased(); }

private:
    template <class T, class V>
    Result Give(const char* call, T* out, V value)
    {
        if (Detached(call)) {
            return kTerminated;
        }
        if (IsReleased()) {
            return RefuseReleased(call);
        }
        if (out == nullptr) {
            return Refuse(call, kInvalidArgs, "no value to fill");
        }
        *out = static_cast<T>(value);
        return kOk;
    }
    size_t m_index;
};

// The display object behind a display interface a caller hands back, when this ADLX made it
// (live or released); null for anything else, which is never looked into.
FakeDisplay* FindDisplay(const Display* display)
{
    const auto matches = [display](Tracked* object) {
        const auto* fake = dynamic_cast<FakeDisplay*>(object);
        return fake != nullptr && static_cast<const Display*>(fake) == display;
    };
    for (Tracked* object : Tracked::Live()) {
        if (matches(object)) {
            return static_cast<FakeDisplay*>(object);
        }
    }
    for (Tracked* object : Tracked::Released()) {
        if (matches(object)) {
            return static_cast<FakeDisplay*>(object);
        }
    }
    return nullptr;
}

class FakeDisplayList final : public RefCounted<DisplayList> {
public:
    explicit FakeDisplayList(size_t count)
    {
        for (size_t i = 0; i < count; ++i) {
            m_items.push_back(new FakeDisplay(i));
        }
    }
    const char* InterfaceName() const override { return "IADLXDisplayList"; }

    unsigned __stdcall Size() override { return Detached("Size") ? 0 : static_cast<unsigned>(m_items.size()); }
    bool __stdcall Empty() override { return Detached("Empty") || m_items.empty(); }
    unsigned __stdcall Begin() override
    {
        // 0 either way; a late call is still logged.
        Detached("Begin");
        return 0;
    }
    unsigned __stdcall End() override { return Detached("End") ? 0 : static_cast<unsigned>(m_items.size()); }
    Result __stdcall At(const unsigned location, Interface** ppItem) override
    {
        Display* display = nullptr;
        const Result result = Take("At", location, ppItem != nullptr ? &display : nullptr);
        if (ppItem != nullptr) {
            *ppItem = display;
        }
        return result;
    }
    Result __stdcall Clear() override { return Detached("Clear") ? kTerminated : kNotSupported; }
    Result __stdcall Remove_Back() override { return Detached("Remove_Back") ? kTerminated : kNotSupported; }
    Result __stdcall Add_Back(Interface*) override { return Detached("Add_Back") ? kTerminated : kNotSupported; }
    Result __stdcall AtDisplay(const unsigned location, Display** ppItem) override
    {
        return Take("AtDisplay", location, ppItem);
    }
    Result __stdcall AddBackDisplay(Display*) override
    {
        return Detached("AddBackDisplay") ? kTerminated : kNotSupported;
    }

private:
    // The list lets go of its displays with its last reference.
    void OnLastRelease() override
    {
        for (FakeDisplay* display : m_items) {
            display->Release();
        }
    }

    Result Take(const char* call, unsigned location, Display** ppItem)
    {
        if (Detached(call)) {
            return kTerminated;
        }
        Record record("At");
        record.Int("index", location);
        if (ppItem != nullptr) {
            *ppItem = nullptr;
        }
        if (IsReleased()) {
            return record.Refused("a released IADLXDisplayList").Done(kInvalidObject);
        }
        if (ppItem == nullptr) {
            return record.Refused("no pointer to fill").Done(kInvalidArgs);
        }
        const Result result = WithFaultableState("At", [&](rapidjson::Document&) { return kOk; });
        if (result != kOk) {
            return record.Done(result);
        }
        if (location >= m_items.size()) {
            return record
                .Refused("index " + std::to_string(location) + " past the " + std::to_string(m_items.size()) +
                         " displays")
                .Done(kInvalidArgs);
        }
        m_items[location]->Acquire();
        *ppItem = m_items[location];
        return record.Done(kOk);
    }
    std::vector<FakeDisplay*> m_items;
};

// What a call came to: its result, and why it was refused when it was.
struct Outcome {
    Result result = kOk;
    std::string refused;
};

// Writes a record for a call that keeps none of its own, when it was refused.
Result Answer(const char* call, const Outcome& outcome)
{
    return outcome.refused.empty() ? outcome.result : Refuse(call, outcome.result, outcome.refused);
}

class FakeVariBright final : public RefCounted<DisplayVariBright> {
public:
    explicit FakeVariBright(size_t display) : m_display(display) {}
    const char* InterfaceName() const override { return "IADLXDisplayVariBright"; }
    int64_t DisplayNumber() const override { return static_cast<int64_t>(m_display); }

    Result __stdcall IsSupported(bool* supported) override
    {
        if (Detached("IsSupported")) {
            return kTerminated;
        }
        Record record("IsSupported");
        record.Int("display", DisplayNumber());
        const Outcome outcome = Read("IsSupported", supported, [](const rapidjson::Value& display) {
            return BoolMember(display, "varibrightSupported");
        });
        if (outcome.result == kOk) {
            record.Bool("supported", *supported);
        }
        return Done(record, outcome);
    }
    Result __stdcall IsEnabled(bool* enabled) override
    {
        if (Detached("IsEnabled")) {
            return kTerminated;
        }
        return Answer("IsEnabled", Read("IsEnabled", enabled, [](const rapidjson::Value& display) {
                          return BoolMember(display, "varibrightEnabled");
                      }));
    }
    Result __stdcall SetEnabled(bool enabled) override
    {
        if (Detached("SetEnabled")) {
            return kTerminated;
        }
        Record record("SetEnabled");
        record.Int("display", DisplayNumber()).Bool("value", enabled);
        return Done(record, Change("SetEnabled", [enabled](rapidjson::Document& state, rapidjson::Value& display) {
                        SetMember(state, display, "varibrightEnabled", rapidjson::Value(enabled));
                    }));
    }
    Result __stdcall IsCurrentMaximizeBrightness(bool* isCurrent) override
    {
        return IsMode("IsCurrentMaximizeBrightness", "maximizeBrightness", isCurrent);
    }
    Result __stdcall IsCurrentOptimizeBrightness(bool* isCurrent) override
    {
        return IsMode("IsCurrentOptimizeBrightness", "optimizeBrightness", isCurrent);
    }
    Result __stdcall IsCurrentBalanced(bool* isCurrent) override
    {
        return IsMode("IsCurrentBalanced", "balanced", isCurrent);
    }
    Result __stdcall IsCurrentOptimizeBattery(bool* isCurrent) override
    {
        return IsMode("IsCurrentOptimizeBattery", "optimizeBattery", isCurrent);
    }
    Result __stdcall IsCurrentMaximizeBattery(bool* isCurrent) override
    {
        return IsMode("IsCurrentMaximizeBattery", "maximizeBattery", isCurrent);
    }
    Result __stdcall SetMaximizeBrightness() override { return SetMode("SetMaximizeBrightness", "maximizeBrightness"); }
    Result __stdcall SetOptimizeBrightness() override { return SetMode("SetOptimizeBrightness", "optimizeBrightness"); }
    Result __stdcall SetBalanced() override { return SetMode("SetBalanced", "balanced"); }
    Result __stdcall SetOptimizeBattery() override { return SetMode("SetOptimizeBattery", "optimizeBattery"); }
    Result __stdcall SetMaximizeBattery() override { return SetMode("SetMaximizeBattery", "maximizeBattery"); }

private:
    static Result Done(Record& record, const Outcome& outcome)
    {
        if (!outcome.refused.empty()) {
            record.Refused(outcome.refused);
        }
        return record.Done(outcome.result);
    }
    rapidjson::Value* MyDisplay(rapidjson::Document& state) const
    {
        const auto displays = DisplayStates(state);
        return m_display < displays.size() ? displays[m_display] : nullptr;
    }
    // Runs `use` on this display's state unless the interface was released, a fault is
    // injected, or the display is gone from the profile.
    Outcome OnDisplay(const char* function, const std::function<Outcome(rapidjson::Document&, rapidjson::Value&)>& use)
    {
        if (IsReleased()) {
            return {kInvalidObject, "a released IADLXDisplayVariBright"};
        }
        Outcome outcome;
        outcome.result = WithFaultableState(function, [&](rapidjson::Document& state) {
            rapidjson::Value* display = MyDisplay(state);
            outcome = display != nullptr ? use(state, *display)
                                         : Outcome{kInvalidObject, "display " + std::to_string(m_display) + " is gone"};
            return outcome.result;
        });
        return outcome;
    }
    Outcome Read(const char* function, bool* out, const std::function<bool(const rapidjson::Value&)>& read)
    {
        if (out == nullptr && !IsReleased()) {
            return {kInvalidArgs, "no value to fill"};
        }
        return OnDisplay(function, [&](rapidjson::Document&, rapidjson::Value& display) {
            *out = read(display);
            return Outcome{};
        });
    }
    // A change is accepted only where VariBright is supported.
    Outcome Change(const char* function, const std::function<void(rapidjson::Document&, rapidjson::Value&)>& change)
    {
        return OnDisplay(function, [&](rapidjson::Document& state, rapidjson::Value& display) {
            if (!BoolMember(display, "varibrightSupported")) {
                return Outcome{kNotSupported, "VariBright is not supported on display " + std::to_string(m_display)};
            }
            change(state, display);
            return Outcome{};
        });
    }
    Result IsMode(const char* function, const char* mode, bool* isCurrent)
    {
        if (Detached(function)) {
            return kTerminated;
        }
        return Answer(function, Read(function, isCurrent, [mode](const rapidjson::Value& display) {
                          return display.HasMember("varibrightMode") && display["varibrightMode"].IsString() &&
                                 std::string(display["varibrightMode"].GetString()) == mode;
                      }));
    }
    Result SetMode(const char* function, const char* mode)
    {
        if (Detached(function)) {
            return kTerminated;
        }
        Record record(function);
        record.Int("display", DisplayNumber());
        return Done(record, Change(function, [mode](rapidjson::Document& state, rapidjson::Value& display) {
                        SetMember(state, display, "varibrightMode", rapidjson::Value(mode, state.GetAllocator()));
                    }));
    }
    size_t m_display;
};

class FakeDisplayServices final : public RefCounted<DisplayServices> {
public:
    const char* InterfaceName() const override { return "IADLXDisplayServices"; }

    Result __stdcall GetNumberOfDisplays(unsigned* numDisplays) override
    {
        if (Detached("GetNumberOfDisplays")) {
            return kTerminated;
        }
        if (IsReleased()) {
            return RefuseReleased("GetNumberOfDisplays");
        }
        if (numDisplays == nullptr) {
            return Refuse("GetNumberOfDisplays", kInvalidArgs, "no count to fill");
        }
        return WithFaultableState("GetNumberOfDisplays", [&](rapidjson::Document& state) {
            *numDisplays = static_cast<unsigned>(DisplayStates(state).size());
            return kOk;
        });
    }
    Result __stdcall GetDisplays(DisplayList** ppDisplays) override
    {
        if (Detached("GetDisplays")) {
            return kTerminated;
        }
        Record record("GetDisplays");
        if (IsReleased()) {
            return record.Refused("a released IADLXDisplayServices").Done(kInvalidObject);
        }
        if (ppDisplays == nullptr) {
            return record.Refused("no list pointer to fill").Done(kInvalidArgs);
        }
        *ppDisplays = nullptr;
        size_t count = 0;
        const Result result = WithFaultableState("GetDisplays", [&](rapidjson::Document& state) {
            count = DisplayStates(state).size();
            return kOk;
        });
        if (result == kOk) {
            *ppDisplays = new FakeDisplayList(count);
            record.Int("count", static_cast<int64_t>(count));
        }
        return record.Done(result);
    }
    Result __stdcall Get3DLUT(Display*, void** out) override { return None("Get3DLUT", out); }
    Result __stdcall GetGamut(Display*, void** out) override { return None("GetGamut", out); }
    Result __stdcall GetGamma(Display*, void** out) override { return None("GetGamma", out); }
    Result __stdcall GetDisplayChangedHandling(void** out) override { return None("GetDisplayChangedHandling", out); }
    Result __stdcall GetFreeSync(Display*, void** out) override { return None("GetFreeSync", out); }
    Result __stdcall GetVirtualSuperResolution(Display*, void** out) override
    {
        return None("GetVirtualSuperResolution", out);
    }
    Result __stdcall GetGPUScaling(Display*, void** out) override { return None("GetGPUScaling", out); }
    Result __stdcall GetScalingMode(Display*, void** out) override { return None("GetScalingMode", out); }
    Result __stdcall GetIntegerScaling(Display*, void** out) override { return None("GetIntegerScaling", out); }
    Result __stdcall GetColorDepth(Display*, void** out) override { return None("GetColorDepth", out); }
    Result __stdcall GetPixelFormat(Display*, void** out) override { return None("GetPixelFormat", out); }
    Result __stdcall GetCustomColor(Display*, void** out) override { return None("GetCustomColor", out); }
    Result __stdcall GetHDCP(Display*, void** out) override { return None("GetHDCP", out); }
    Result __stdcall GetCustomResolution(Display*, void** out) override { return None("GetCustomResolution", out); }
    // The display must be one this ADLX handed out and the caller still holds; anything else
    // is refused without being called.
    Result __stdcall GetVariBright(Display* pDisplay, DisplayVariBright** ppVariBright) override
    {
        if (Detached("GetVariBright")) {
            return kTerminated;
        }
        Record record("GetVariBright");
        if (ppVariBright != nullptr) {
            *ppVariBright = nullptr;
        }
        if (IsReleased()) {
            return record.Refused("a released IADLXDisplayServices").Done(kInvalidObject);
        }
        if (ppVariBright == nullptr || pDisplay == nullptr) {
            return record.Refused(pDisplay == nullptr ? "no display" : "no interface pointer to fill")
                .Done(kInvalidArgs);
        }
        const FakeDisplay* display = FindDisplay(pDisplay);
        if (display == nullptr) {
            return record.Refused("a display this ADLX did not hand out").Done(kInvalidObject);
        }
        record.Int("display", static_cast<int64_t>(display->Index()));
        if (display->Released()) {
            return record.Refused("a released IADLXDisplay").Done(kInvalidObject);
        }
        const Result result = WithFaultableState("GetVariBright", [](rapidjson::Document&) { return kOk; });
        if (result == kOk) {
            *ppVariBright = new FakeVariBright(display->Index());
        }
        return record.Done(result);
    }

private:
    template <class T>
    static Result None(const char* call, T** out)
    {
        if (Detached(call)) {
            return kTerminated;
        }
        if (out != nullptr) {
            *out = nullptr;
        }
        return kNotSupported;
    }
};

// Not reference counted, like ADLX's own: it lives from ADLXInitialize to ADLXTerminate.
class FakeSystem final : public System {
public:
    Result __stdcall HybridGraphicsType(int* hgType) override
    {
        if (Detached("HybridGraphicsType")) {
            return kTerminated;
        }
        if (hgType == nullptr) {
            return Refuse("HybridGraphicsType", kInvalidArgs, "no value to fill");
        }
        *hgType = 0;
        return kOk;
    }
    Result __stdcall GetGPUs(void** ppGPUs) override
    {
        if (Detached("GetGPUs")) {
            return kTerminated;
        }
        if (ppGPUs != nullptr) {
            *ppGPUs = nullptr;
        }
        return kNotSupported;
    }
    Result __stdcall QueryInterface(const wchar_t*, void** ppInterface) override
    {
        if (Detached("QueryInterface")) {
            return kTerminated;
        }
        if (ppInterface != nullptr) {
            *ppInterface = nullptr;
        }
        return kUnknownInterface;
    }
    Result __stdcall GetDisplaysServices(DisplayServices** ppDispServices) override
    {
        if (Detached("GetDisplaysServices")) {
            return kTerminated;
        }
        Record record("GetDisplaysServices");
        if (ppDispServices == nullptr) {
            return record.Refused("no pointer to fill").Done(kInvalidArgs);
        }
        *ppDispServices = nullptr;
        const Result result = WithFaultableState("GetDisplaysServices", [](rapidjson::Document&) { return kOk; });
        if (result == kOk) {
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

// The header version a caller was built against must be of this ADLX's major version and
// no newer than this ADLX: it cannot give what a later header promises.
std::string CheckVersion(uint64_t version)
{
    if (VersionMajor(version) != VersionMajor(kFakeFullVersion)) {
        return "version " + VersionHex(version) + ": major " + std::to_string(VersionMajor(version)) +
               " is not this ADLX's " + std::to_string(VersionMajor(kFakeFullVersion));
    }
    if (version > kFakeFullVersion) {
        return "version " + VersionHex(version) + " is newer than this ADLX's " + VersionHex(kFakeFullVersion);
    }
    return {};
}

Result Initialize(Record& record, const char* call, uint64_t version, System** ppSystem)
{
    record.Text("version", VersionHex(version));
    if (ppSystem == nullptr) {
        return record.Refused("no system pointer to fill").Done(kInvalidArgs);
    }
    *ppSystem = nullptr;
    const Result result = WithFaultableState(call, [](rapidjson::Document&) { return kOk; });
    if (result != kOk) {
        return record.Done(result);
    }
    if (const std::string refused = CheckVersion(version); !refused.empty()) {
        return record.Refused(refused).Done(kBadVersion);
    }
    if (g_system != nullptr) {
        *ppSystem = g_system;
        return record.Done(kAlreadyInitialized);
    }
    g_system = new FakeSystem();
    *ppSystem = g_system;
    SetInitialized(true);
    return record.Done(kOk);
}

// The two version queries: refused after the detach or without a place to fill; otherwise
// `value` is written there, unless the profile injects a fault.
template <class Value>
Result QueryVersion(const char* call, Value* out, Value value)
{
    if (Detached(call)) {
        return kTerminated;
    }
    Record record(call);
    if (out == nullptr) {
        return record.Refused("no version to fill").Done(kInvalidArgs);
    }
    return record.Done(WithFaultableState(call, [out, value](rapidjson::Document&) {
        *out = value;
        return kOk;
    }));
}

}  // namespace

extern "C" {

Result ADLXQueryFullVersion(uint64_t* fullVersion)
{
    return QueryVersion("ADLXQueryFullVersion", fullVersion, kFakeFullVersion);
}

Result ADLXQueryVersion(const char** version)
{
    return QueryVersion<const char*>("ADLXQueryVersion", version, kFakeVersion);
}

// The caller's ADL context and its way of freeing ADL's memory are both needed.
Result ADLXInitializeWithCallerAdl(uint64_t version, System** ppSystem, void** ppAdlMapping, void* adlContext,
                                   void (*adlMainMemoryFree)(void**))
{
    if (Detached("ADLXInitializeWithCallerAdl")) {
        return kTerminated;
    }
    Record record("ADLXInitializeWithCallerAdl");
    if (ppAdlMapping != nullptr) {
        *ppAdlMapping = nullptr;
    }
    if (ppAdlMapping == nullptr || adlContext == nullptr || adlMainMemoryFree == nullptr) {
        if (ppSystem != nullptr) {
            *ppSystem = nullptr;
        }
        return record
            .Refused(ppAdlMapping == nullptr ? "no ADL mapping pointer to fill"
                     : adlContext == nullptr ? "no ADL context"
                                             : "no ADL memory free function")
            .Done(kInvalidArgs);
    }
    return Initialize(record, "ADLXInitializeWithCallerAdl", version, ppSystem);
}

Result ADLXInitializeWithIncompatibleDriver(uint64_t version, System** ppSystem)
{
    if (Detached("ADLXInitializeWithIncompatibleDriver")) {
        return kTerminated;
    }
    Record record("ADLXInitializeWithIncompatibleDriver");
    return Initialize(record, "ADLXInitializeWithIncompatibleDriver", version, ppSystem);
}

Result ADLXInitialize(uint64_t version, System** ppSystem)
{
    if (Detached("ADLXInitialize")) {
        return kTerminated;
    }
    Record record("ADLXInitialize");
    return Initialize(record, "ADLXInitialize", version, ppSystem);
}

Result ADLXTerminate()
{
    if (Detached("ADLXTerminate")) {
        return kTerminated;
    }
    Record record("ADLXTerminate");
    const Result result = WithFaultableState("ADLXTerminate", [](rapidjson::Document&) { return kOk; });
    if (result != kOk) {
        return record.Done(result);
    }
    // What the caller still holds dies with ADLX.
    record.Int("orphans", static_cast<int64_t>(Tracked::DestroyAll()));
    const bool wasInitialized = g_system != nullptr;
    delete g_system;
    g_system = nullptr;
    if (wasInitialized) {
        SetInitialized(false);
    }
    return record.Done(kOk);
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    LumavenSim::NoteDetach(reason, reserved);
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(instance);
    }
    LumavenSim::CountLoadsAndUnloads("adlx", reason, reserved);
    return TRUE;
}

}  // extern "C"
