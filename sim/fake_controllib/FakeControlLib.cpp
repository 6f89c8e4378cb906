// The simulated Intel driver's ControlLib.dll. It exports the entry points of the project's
// table (which of them depends on the module-definition file it is linked with) and acts like
// the driver for everything the service uses: adapters and display outputs from the machine
// profile, each output's panel with a DPCD register file reached through AUX, and the
// DPST/OPST power-optimisation state. Every other entry point records its arguments and answers
// the code the profile chooses, so that forwarding can be proven for each one.
//
// Every call first counts itself and answers an injected fault before it touches an argument,
// and every call goes into the transaction log with its raw arguments (pointers as integers,
// doubles with their exact bits) and, for handles this library gave out, the adapter and output
// indices. The state lives in LumavenSim's shared state, so it survives this library being
// loaded and unloaded on every command.
#include "intel/ControlLibFunctions.h"

#include "IntelState.h"
#include "SimState.h"

#include <rapidjson/document.h>

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

namespace {

namespace Intel = LumavenSim::Intel;
using Document = rapidjson::Document;

// Handles are tagged integers that carry the indices; the service never dereferences them.
constexpr uintptr_t kTagMask = 0xFFFFFFFF00000000ull;
constexpr uintptr_t kApiHandle = 0x00007A1C00000001ull;
constexpr uintptr_t kAdapterTag = 0x00007AD000000000ull;
constexpr uintptr_t kOutputTag = 0x00007D0000000000ull;

ctl_api_handle_t ApiHandle() { return reinterpret_cast<ctl_api_handle_t>(kApiHandle); }

ctl_device_adapter_handle_t AdapterHandle(size_t adapter)
{
    return reinterpret_cast<ctl_device_adapter_handle_t>(kAdapterTag | (adapter + 1));
}

ctl_display_output_handle_t OutputHandle(size_t adapter, size_t output)
{
    return reinterpret_cast<ctl_display_output_handle_t>(kOutputTag | (adapter + 1) << 16 | (output + 1));
}

std::optional<size_t> AdapterOf(ctl_device_adapter_handle_t handle)
{
    const uintptr_t value = reinterpret_cast<uintptr_t>(handle);
    if ((value & kTagMask) != kAdapterTag || (value & 0xFFFFFFFF) == 0) {
        return std::nullopt;
    }
    return (value & 0xFFFFFFFF) - 1;
}

std::optional<std::pair<size_t, size_t>> OutputOf(ctl_display_output_handle_t handle)
{
    const uintptr_t value = reinterpret_cast<uintptr_t>(handle);
    const uintptr_t adapter = (value >> 16) & 0xFFFF;
    const uintptr_t output = value & 0xFFFF;
    if ((value & kTagMask) != kOutputTag || adapter == 0 || output == 0) {
        return std::nullopt;
    }
    return std::make_pair(adapter - 1, output - 1);
}

std::string Utf8(const wchar_t* text)
{
    const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (length <= 1) {
        return {};
    }
    std::string narrow(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), length, nullptr, nullptr);
    narrow.resize(static_cast<size_t>(length - 1));
    return narrow;
}

// One call's transaction record: {"lib", "call", indices and what the call did, "args", "result"}.
class Call {
public:
    explicit Call(const char* function) : m_function(function)
    {
        m_record.SetObject();
        Add("lib", "ControlLib");
        Add("call", function);
    }

    const char* Function() const { return m_function; }
    rapidjson::Document::AllocatorType& Allocator() { return m_record.GetAllocator(); }

    void Add(const char* name, rapidjson::Value value)
    {
        m_record.RemoveMember(name);
        m_record.AddMember(rapidjson::StringRef(name), value, Allocator());
    }
    void Add(const char* name, const char* text) { Add(name, rapidjson::Value(text, Allocator())); }
    void Add(const char* name, const std::string& text) { Add(name, text.c_str()); }
    void Add(const char* name, uint32_t number) { Add(name, rapidjson::Value(number)); }
    void Add(const char* name, uint64_t number) { Add(name, rapidjson::Value(number)); }
    void Add(const char* name, bool flag) { Add(name, rapidjson::Value(flag)); }

    void Argument(rapidjson::Value value) { m_args.PushBack(value, Allocator()); }

    void Finish(ctl_result_t result)
    {
        m_record.AddMember("args", m_args, Allocator());
        m_record.AddMember("result", rapidjson::Value(static_cast<uint32_t>(result)), Allocator());
        LumavenSim::AppendTransaction(m_record);
    }

private:
    const char* m_function;
    rapidjson::Document m_record;
    rapidjson::Value m_args{rapidjson::kArrayType};
};

// How each parameter type is written into the record's "args".
template <class T>
void Encode(Call& call, T* pointer)
{
    call.Argument(rapidjson::Value(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer))));
}

void Encode(Call& call, ctl_device_adapter_handle_t handle)
{
    if (const auto adapter = AdapterOf(handle)) {
        call.Add("adapter", static_cast<uint32_t>(*adapter));
    }
    Encode<_ctl_device_adapter_handle_t>(call, handle);
}

void Encode(Call& call, ctl_display_output_handle_t handle)
{
    if (const auto indices = OutputOf(handle)) {
        call.Add("adapter", static_cast<uint32_t>(indices->first));
        call.Add("output", static_cast<uint32_t>(indices->second));
    }
    Encode<_ctl_display_output_handle_t>(call, handle);
}

void Encode(Call& call, uint32_t value) { call.Argument(rapidjson::Value(value)); }
void Encode(Call& call, ctl_fan_speed_units_t value) { call.Argument(rapidjson::Value(static_cast<uint32_t>(value))); }

rapidjson::Value DoubleValue(Call& call, double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const uint8_t bytes[8] = {static_cast<uint8_t>(bits >> 56), static_cast<uint8_t>(bits >> 48),
                              static_cast<uint8_t>(bits >> 40), static_cast<uint8_t>(bits >> 32),
                              static_cast<uint8_t>(bits >> 24), static_cast<uint8_t>(bits >> 16),
                              static_cast<uint8_t>(bits >> 8),  static_cast<uint8_t>(bits)};
    rapidjson::Value object(rapidjson::kObjectType);
    if (std::isfinite(value)) {
        object.AddMember("double", rapidjson::Value(value), call.Allocator());
    }
    object.AddMember("bits", rapidjson::Value(LumavenSim::BytesToHex(bytes, 8).c_str(), call.Allocator()),
                     call.Allocator());
    return object;
}

void Encode(Call& call, double value) { call.Argument(DoubleValue(call, value)); }

void Encode(Call& call, ctl_oc_vf_pair_t pair)
{
    rapidjson::Value object(rapidjson::kObjectType);
    object.AddMember("Size", rapidjson::Value(pair.Size), call.Allocator());
    object.AddMember("Version", rapidjson::Value(static_cast<uint32_t>(pair.Version)), call.Allocator());
    object.AddMember("Voltage", DoubleValue(call, pair.Voltage), call.Allocator());
    object.AddMember("Frequency", DoubleValue(call, pair.Frequency), call.Allocator());
    call.Argument(std::move(object));
}

// What the driver does, per entry point, when no fault is injected. Entry points without
// their own overload below answer the profile's chosen code.
#define LUMAVEN_FAKE_ID(name, ...) name,
enum class Fn { LUMAVEN_CTL_FUNCTIONS(LUMAVEN_FAKE_ID, LUMAVEN_FAKE_ID) };
#undef LUMAVEN_FAKE_ID
template <Fn>
struct Tag {};

template <Fn id, class... Args>
ctl_result_t Act(Tag<id>, Call& call, Document& state, Args...)
{
    return static_cast<ctl_result_t>(Intel::ChosenResult(state, call.Function()).value_or(CTL_RESULT_ERROR_NOT_IMPLEMENTED));
}

ctl_result_t Act(Tag<Fn::ctlInit>, Call& call, Document&, ctl_init_args_t* args, ctl_api_handle_t* handle)
{
    if (args == nullptr || handle == nullptr) {
        return CTL_RESULT_ERROR_INVALID_NULL_POINTER;
    }
    call.Add("appVersion", args->AppVersion);
    args->SupportedVersion = 0x00010001;
    *handle = ApiHandle();
    return CTL_RESULT_SUCCESS;
}

ctl_result_t Act(Tag<Fn::ctlClose>, Call&, Document&, ctl_api_handle_t handle)
{
    if (handle == nullptr) {
        return CTL_RESULT_ERROR_INVALID_NULL_POINTER;
    }
    return handle == ApiHandle() ? CTL_RESULT_SUCCESS : CTL_RESULT_ERROR_INVALID_ARGUMENT;
}

ctl_result_t Act(Tag<Fn::ctlSetRuntimePath>, Call& call, Document&, ctl_runtime_path_args_t* args)
{
    if (args == nullptr) {
        return CTL_RESULT_ERROR_INVALID_NULL_POINTER;
    }
    if (args->pRuntimePath != nullptr) {
        call.Add("path", Utf8(args->pRuntimePath));
    }
    return CTL_RESULT_SUCCESS;
}

// The count-then-fill protocol: without an array (or with a count of 0) the call reports how
// many there are; with one it fills at most *count handles and says how many it filled.
template <class Handle, class MakeHandle>
ctl_result_t Enumerate(Call& call, size_t available, uint32_t* count, Handle* handles, MakeHandle make)
{
    if (count == nullptr) {
        return CTL_RESULT_ERROR_INVALID_NULL_POINTER;
    }
    if (handles == nullptr || *count == 0) {
        *count = static_cast<uint32_t>(available);
    } else {
        *count = static_cast<uint32_t>(std::min<size_t>(*count, available));
        for (uint32_t i = 0; i < *count; ++i) {
            handles[i] = make(i);
        }
    }
    call.Add("count", *count);
    call.Add("filled", handles != nullptr);
    return CTL_RESULT_SUCCESS;
}

ctl_result_t Act(Tag<Fn::ctlEnumerateDevices>, Call& call, Document& state, ctl_api_handle_t api, uint32_t* count,
                 ctl_device_adapter_handle_t* devices)
{
    if (api != ApiHandle()) {
        return api == nullptr ? CTL_RESULT_ERROR_INVALID_NULL_POINTER : CTL_RESULT_ERROR_INVALID_ARGUMENT;
    }
    return Enumerate(call, Intel::AdapterCount(state), count, devices, [](size_t i) { return AdapterHandle(i); });
}

ctl_result_t Act(Tag<Fn::ctlEnumerateDisplayOutputs>, Call& call, Document& state, ctl_device_adapter_handle_t device,
                 uint32_t* count, ctl_display_output_handle_t* outputs)
{
    const auto adapter = AdapterOf(device);
    if (!adapter || *adapter >= Intel::AdapterCount(state)) {
        return device == nullptr ? CTL_RESULT_ERROR_INVALID_NULL_POINTER : CTL_RESULT_ERROR_INVALID_ARGUMENT;
    }
    return Enumerate(call, Intel::OutputCount(state, *adapter), count, outputs,
                     [&](size_t i) { return OutputHandle(*adapter, i); });
}

// The output behind a display handle, or the error a driver gives for a bad handle or record.
template <class Record>
std::pair<rapidjson::Value*, ctl_result_t> Target(Document& state, ctl_display_output_handle_t display, Record* record)
{
    const auto indices = OutputOf(display);
    rapidjson::Value* output = indices ? Intel::Output(state, indices->first, indices->second) : nullptr;
    if (output == nullptr) {
        return {nullptr, display == nullptr ? CTL_RESULT_ERROR_INVALID_NULL_POINTER : CTL_RESULT_ERROR_INVALID_ARGUMENT};
    }
    if (record == nullptr) {
        return {nullptr, CTL_RESULT_ERROR_INVALID_NULL_POINTER};
    }
    return {output, CTL_RESULT_SUCCESS};
}

ctl_result_t Act(Tag<Fn::ctlGetDisplayProperties>, Call& call, Document& state, ctl_display_output_handle_t display,
                 ctl_display_properties_t* properties)
{
    const auto [output, error] = Target(state, display, properties);
    if (output == nullptr) {
        return error;
    }
    properties->DisplayConfigFlags = (Intel::Attached(*output) ? CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ATTACHED : 0) |
                                     (Intel::Active(*output) ? CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ACTIVE : 0);
    call.Add("flags", properties->DisplayConfigFlags);
    return CTL_RESULT_SUCCESS;
}

ctl_result_t Act(Tag<Fn::ctlAUXAccess>, Call& call, Document& state, ctl_display_output_handle_t display,
                 ctl_aux_access_args_t* args)
{
    const auto [output, error] = Target(state, display, args);
    if (output == nullptr) {
        return error;
    }
    const bool write = args->OpType == CTL_OPERATION_TYPE_WRITE;
    call.Add("op", args->OpType == CTL_OPERATION_TYPE_READ ? "read" : write ? "write" : "other");
    call.Add("flags", args->Flags);
    call.Add("address", args->Address);
    call.Add("size", args->DataSize);
    if ((args->OpType != CTL_OPERATION_TYPE_READ && !write) || args->DataSize > CTL_AUX_MAX_DATA_SIZE) {
        return CTL_RESULT_ERROR_INVALID_ARGUMENT;
    }
    // Only the native AUX channel reaches the panel's DPCD registers.
    if ((args->Flags & CTL_AUX_FLAG_NATIVE_AUX) == 0) {
        return CTL_RESULT_ERROR_UNSUPPORTED_FEATURE;
    }
    Intel::RegisterFile registers = Intel::Registers(*output);
    for (uint32_t i = 0; i < args->DataSize; ++i) {
        const uint32_t address = args->Address + i;
        if (write) {
            registers[address] = args->Data[i];
        } else {
            const auto found = registers.find(address);
            args->Data[i] = found != registers.end() ? found->second : 0;
        }
    }
    if (write) {
        Intel::StoreRegisters(state, *output, registers);
    }
    call.Add("data", LumavenSim::BytesToHex(args->Data, args->DataSize));
    return CTL_RESULT_SUCCESS;
}

ctl_result_t Act(Tag<Fn::ctlGetPowerOptimizationCaps>, Call& call, Document& state,
                 ctl_display_output_handle_t display, ctl_power_optimization_caps_t* caps)
{
    const auto [output, error] = Target(state, display, caps);
    if (output == nullptr) {
        return error;
    }
    caps->SupportedFeatures = Intel::DpstSupported(*output) ? CTL_POWER_OPTIMIZATION_FLAG_DPST : 0;
    call.Add("supported", caps->SupportedFeatures);
    return CTL_RESULT_SUCCESS;
}

// Only DPST is modelled; asking a panel without it, or for another feature, is unsupported.
ctl_result_t CheckDpst(Call& call, const rapidjson::Value& output, const ctl_power_optimization_settings_t& settings)
{
    call.Add("feature", settings.PowerOptimizationFeature);
    return settings.PowerOptimizationFeature == CTL_POWER_OPTIMIZATION_FLAG_DPST && Intel::DpstSupported(output)
               ? CTL_RESULT_SUCCESS
               : CTL_RESULT_ERROR_UNSUPPORTED_FEATURE;
}

ctl_result_t Act(Tag<Fn::ctlGetPowerOptimizationSetting>, Call& call, Document& state,
                 ctl_display_output_handle_t display, ctl_power_optimization_settings_t* settings)
{
    const auto [output, error] = Target(state, display, settings);
    if (output == nullptr) {
        return error;
    }
    if (const ctl_result_t unsupported = CheckDpst(call, *output, *settings)) {
        return unsupported;
    }
    ctl_power_optimization_dpst_t& dpst = settings->FeatureSpecificData.DPSTInfo;
    dpst.SupportedFeatures = Intel::DpstSupportedFeatures(*output);
    dpst.EnabledFeatures = Intel::DpstEnabledFeatures(*output);
    settings->Enable = dpst.EnabledFeatures != 0;
    call.Add("enable", settings->Enable);
    call.Add("supportedFeatures", dpst.SupportedFeatures);
    call.Add("enabledFeatures", dpst.EnabledFeatures);
    return CTL_RESULT_SUCCESS;
}

// Switches the requested DPST sub-features on or off, leaving the others as they are.
ctl_result_t Act(Tag<Fn::ctlSetPowerOptimizationSetting>, Call& call, Document& state,
                 ctl_display_output_handle_t display, ctl_power_optimization_settings_t* settings)
{
    const auto [output, error] = Target(state, display, settings);
    if (output == nullptr) {
        return error;
    }
    const uint32_t requested = settings->FeatureSpecificData.DPSTInfo.EnabledFeatures;
    call.Add("enable", settings->Enable);
    call.Add("features", requested);
    if (const ctl_result_t unsupported = CheckDpst(call, *output, *settings)) {
        return unsupported;
    }
    if ((requested & ~Intel::DpstSupportedFeatures(*output)) != 0) {
        return CTL_RESULT_ERROR_UNSUPPORTED_FEATURE;
    }
    const uint32_t enabled = Intel::DpstEnabledFeatures(*output);
    Intel::SetDpstEnabledFeatures(state, *output, settings->Enable ? enabled | requested : enabled & ~requested);
    call.Add("opst", (Intel::DpstEnabledFeatures(*output) & Intel::kOpst) != 0);
    return CTL_RESULT_SUCCESS;
}

// One call: count it, answer an injected fault or act, record it.
template <Fn id, class... Args>
ctl_result_t Serve(const char* function, Args... args)
{
    Call call(function);
    (Encode(call, args), ...);
    ctl_result_t result = CTL_RESULT_SUCCESS;
    LumavenSim::WithState([&](Document& state) {
        const std::optional<int64_t> fault = LumavenSim::TakeFault(state, function);
        result = fault ? static_cast<ctl_result_t>(*fault) : Act(Tag<id>{}, call, state, args...);
        return true;
    });
    call.Finish(result);
    return result;
}

}  // namespace

#define LUMAVEN_FAKE_DEFINE(name, ...)                                            \
    extern "C" ctl_result_t CTL_APICALL name(LUMAVEN_CTL_PARAMS(__VA_ARGS__))      \
    {                                                                             \
        return Serve<Fn::name>(#name, LUMAVEN_CTL_ARGS(__VA_ARGS__));             \
    }
LUMAVEN_CTL_FUNCTIONS(LUMAVEN_FAKE_DEFINE, LUMAVEN_FAKE_DEFINE)
#undef LUMAVEN_FAKE_DEFINE

// Counts loads and unloads, so tests can tell how often the service loaded the library. An
// unload at process exit is not the service's doing and is not counted.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH || (reason == DLL_PROCESS_DETACH && reserved == nullptr)) {
        LumavenSim::WithState([reason](Document& state) {
            Intel::IncrementCounter(state, reason == DLL_PROCESS_ATTACH ? "loads" : "unloads");
            return true;
        });
    }
    return TRUE;
}
