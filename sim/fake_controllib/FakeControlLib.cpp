// The simulated Intel driver's ControlLib.dll. It exports the entry points of the project's
// table (which of them depends on the module-definition file it is linked with) and acts like
// the driver for everything the service uses: adapters and display outputs from the machine
// profile, each output's panel with a DPCD register file reached through AUX, and the
// DPST/OPST power-optimisation state. Every other entry point records its arguments and answers
// the code the profile chooses, so that forwarding can be proven for each one.
//
// Every call first counts itself and answers an injected fault before it touches an argument.
// The entry points it acts on then check each record as a careful driver does (Size, Version,
// reserved fields, enumerations, counts against the record's buffer) and refuse what they do
// not accept with the driver's own code, saying why in the log's "refused" member. Every call
// goes into the transaction log with its raw arguments (pointers as integers,
// doubles with their exact bits) and, for handles this library gave out, the adapter and output
// indices. The state lives in LumavenSim's shared state, so it survives this library being
// loaded and unloaded on every command.
#include "intel/ControlLibFunctions.h"

#include "DetachGuard.h"
#include "DriverRecords.h"
#include "IntelState.h"
#include "RecordChecks.h"
#include "SimState.h"
#include "Transaction.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace {

namespace Intel = LumavenSim::Intel;
namespace Driver = LumavenSim::IntelDriver;
using Document = rapidjson::Document;

// Handles are tagged integers that carry the indices; the service never dereferences them.
constexpr uintptr_t kTagMask = 0xFFFFFFFF00000000ull;
constexpr uintptr_t kApiHandle = 0x00007A1C00000001ull;
constexpr uintptr_t kAdapterTag = 0x00007AD000000000ull;
constexpr uintptr_t kOutputTag = 0x00007D0000000000ull;

ctl_api_handle_t ApiHandle()
{
    return reinterpret_cast<ctl_api_handle_t>(kApiHandle);
}

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
class Call : public LumavenSim::Transaction {
public:
    explicit Call(const char* function) : Transaction("ControlLib", function) { WithArguments(); }

    const char* Function() const { return Transaction::Call(); }

    // Records why the driver does not accept the call, and answers `code`.
    ctl_result_t Refuse(uint32_t code, const std::string& reason)
    {
        Refused(reason);
        return static_cast<ctl_result_t>(code);
    }
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
        call.Unsigned("adapter", static_cast<uint32_t>(*adapter));
    }
    Encode<_ctl_device_adapter_handle_t>(call, handle);
}

void Encode(Call& call, ctl_display_output_handle_t handle)
{
    if (const auto indices = OutputOf(handle)) {
        call.Unsigned("adapter", static_cast<uint32_t>(indices->first));
        call.Unsigned("output", static_cast<uint32_t>(indices->second));
    }
    Encode<_ctl_display_output_handle_t>(call, handle);
}

void Encode(Call& call, uint32_t value)
{
    call.Argument(rapidjson::Value(value));
}
void Encode(Call& call, ctl_fan_speed_units_t value)
{
    call.Argument(rapidjson::Value(static_cast<uint32_t>(value)));
}

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

void Encode(Call& call, double value)
{
    call.Argument(DoubleValue(call, value));
}

void Encode(Call& call, ctl_oc_vf_pair_t passed)
{
    Driver::VfPair pair{};
    static_assert(sizeof passed == sizeof pair);
    std::memcpy(&pair, &passed, sizeof pair);
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
struct Tag {
};

template <Fn id, class... Args>
ctl_result_t Act(Tag<id>, Call& call, Document& state, Args...)
{
    return static_cast<ctl_result_t>(Intel::ChosenResult(state, call.Function()).value_or(Driver::kNotImplemented));
}

constexpr ctl_result_t Result(uint32_t code)
{
    return static_cast<ctl_result_t>(code);
}

std::string Hex(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
    return text;
}

// Takes in the caller's record after checking the two fields every record starts with: a
// record of another size is not the one this driver knows (it reads no further than Size
// then), and a Version other than the one it implements is not understood.
template <class Record>
ctl_result_t Receive(Call& call, const void* from, Record& record)
{
    uint32_t size = 0;
    std::memcpy(&size, from, sizeof size);
    if (size != sizeof(Record)) {
        return call.Refuse(Driver::kInvalidArgument,
                           "Size " + std::to_string(size) + ", expected " + std::to_string(sizeof(Record)));
    }
    std::memcpy(&record, from, sizeof record);
    if (record.Version != Driver::kRecordVersion) {
        return call.Refuse(Driver::kUnsupportedVersion, "Version " + std::to_string(record.Version) + ", expected " +
                                                            std::to_string(Driver::kRecordVersion));
    }
    return Result(Driver::kSuccess);
}

// Hands a record the driver filled back to the caller.
template <class Record>
void Give(const Record& record, void* to)
{
    std::memcpy(to, &record, sizeof record);
}

ctl_result_t Act(Tag<Fn::ctlInit>, Call& call, Document&, ctl_init_args_t* passed, ctl_api_handle_t* handle)
{
    if (passed == nullptr || handle == nullptr) {
        return call.Refuse(Driver::kNullPointer, passed == nullptr ? "no init arguments" : "no handle to fill");
    }
    Driver::InitArgs args{};
    if (const ctl_result_t refused = Receive(call, passed, args)) {
        return refused;
    }
    call.Unsigned("appVersion", args.AppVersion);
    if ((args.AppVersion >> 16) != Driver::kApiMajor) {
        return call.Refuse(Driver::kUnsupportedVersion, "AppVersion " + Hex(args.AppVersion) + ", major " +
                                                            std::to_string(args.AppVersion >> 16) + " not implemented");
    }
    // None of the init flags (Level Zero, igsc, ...) is implemented here.
    if (args.flags != 0) {
        return call.Refuse(Driver::kInvalidArgument, "flags " + Hex(args.flags) + " not supported");
    }
    args.SupportedVersion = Driver::kSupportedVersion;
    Give(args, passed);
    *handle = ApiHandle();
    return Result(Driver::kSuccess);
}

ctl_result_t Act(Tag<Fn::ctlClose>, Call& call, Document&, ctl_api_handle_t handle)
{
    if (handle == nullptr) {
        return call.Refuse(Driver::kNullPointer, "no API handle");
    }
    return handle == ApiHandle() ? Result(Driver::kSuccess)
                                 : call.Refuse(Driver::kInvalidArgument, "an API handle this driver did not give out");
}

ctl_result_t Act(Tag<Fn::ctlSetRuntimePath>, Call& call, Document&, ctl_runtime_path_args_t* passed)
{
    if (passed == nullptr) {
        return call.Refuse(Driver::kNullPointer, "no runtime path arguments");
    }
    Driver::RuntimePathArgs args{};
    if (const ctl_result_t refused = Receive(call, passed, args)) {
        return refused;
    }
    if (args.pRuntimePath == nullptr) {
        return call.Refuse(Driver::kNullPointer, "no runtime path");
    }
    call.Text("path", Utf8(args.pRuntimePath));
    return Result(Driver::kSuccess);
}

// The count-then-fill protocol: without an array (or with a count of 0) the call reports how
// many there are; with one it fills them in and says how many it filled. An array too small for
// them is refused: nothing is written, and the count says how many there are. The profile's
// "counts" can make either call find another number than the machine has (a driver whose
// adapters or outputs change between the two calls, or one that reports nonsense); entries past
// the machine's own get handles that every later call refuses.
template <class Handle, class MakeHandle>
ctl_result_t Enumerate(Call& call, const Document& state, size_t available, uint32_t* count, Handle* handles,
                       MakeHandle make)
{
    if (count == nullptr) {
        return call.Refuse(Driver::kNullPointer, "no count");
    }
    const bool fill = handles != nullptr && *count != 0;
    call.Bool("filled", handles != nullptr);
    const std::optional<int64_t> answer = LumavenSim::CountAnswer(state, call.Function(), fill ? "fill" : "count");
    const uint32_t has = answer ? static_cast<uint32_t>(*answer) : static_cast<uint32_t>(available);
    if (!fill) {
        *count = has;
        call.Unsigned("count", *count);
        return Result(Driver::kSuccess);
    }
    const uint32_t room = *count;
    *count = has;
    call.Unsigned("count", *count);
    if (has > room) {
        return call.Refuse(Driver::kInvalidArgument,
                           "an array of " + std::to_string(room) + " for " + std::to_string(has) + " handles");
    }
    for (uint32_t i = 0; i < has; ++i) {
        handles[i] = make(i);
    }
    return Result(Driver::kSuccess);
}

ctl_result_t Act(Tag<Fn::ctlEnumerateDevices>, Call& call, Document& state, ctl_api_handle_t api, uint32_t* count,
                 ctl_device_adapter_handle_t* devices)
{
    if (api != ApiHandle()) {
        return api == nullptr ? call.Refuse(Driver::kNullPointer, "no API handle")
                              : call.Refuse(Driver::kInvalidArgument, "an API handle this driver did not give out");
    }
    return Enumerate(call, state, Intel::AdapterCount(state), count, devices,
                     [](size_t i) { return AdapterHandle(i); });
}

ctl_result_t Act(Tag<Fn::ctlEnumerateDisplayOutputs>, Call& call, Document& state, ctl_device_adapter_handle_t device,
                 uint32_t* count, ctl_display_output_handle_t* outputs)
{
    const auto adapter = AdapterOf(device);
    if (!adapter || *adapter >= Intel::AdapterCount(state)) {
        return device == nullptr
                   ? call.Refuse(Driver::kNullPointer, "no adapter handle")
                   : call.Refuse(Driver::kInvalidArgument, "an adapter handle this driver did not give out");
    }
    return Enumerate(call, state, Intel::OutputCount(state, *adapter), count, outputs,
                     [&](size_t i) { return OutputHandle(*adapter, i); });
}

// The output behind a display handle, and the caller's record taken in; or the driver's
// refusal of the handle or the record.
template <class Record>
std::pair<rapidjson::Value*, ctl_result_t> Target(Call& call, Document& state, ctl_display_output_handle_t display,
                                                  const void* passed, Record& record)
{
    const auto indices = OutputOf(display);
    rapidjson::Value* output = indices ? Intel::Output(state, indices->first, indices->second) : nullptr;
    if (output == nullptr) {
        return {nullptr, display == nullptr
                             ? call.Refuse(Driver::kNullPointer, "no display handle")
                             : call.Refuse(Driver::kInvalidArgument, "a display handle this driver did not give out")};
    }
    if (passed == nullptr) {
        return {nullptr, call.Refuse(Driver::kNullPointer, "no record")};
    }
    if (const ctl_result_t refused = Receive(call, passed, record)) {
        return {nullptr, refused};
    }
    return {output, Result(Driver::kSuccess)};
}

ctl_result_t Act(Tag<Fn::ctlGetDisplayProperties>, Call& call, Document& state, ctl_display_output_handle_t display,
                 ctl_display_properties_t* passed)
{
    Driver::DisplayProperties properties{};
    const auto [output, error] = Target(call, state, display, passed, properties);
    if (output == nullptr) {
        return error;
    }
    if (const auto reserved = LumavenSim::FirstNonZero(properties.ReservedFields)) {
        return call.Refuse(Driver::kInvalidArgument, "ReservedFields[" + std::to_string(*reserved) + "] is not zero");
    }
    properties.DisplayConfigFlags = (Intel::Attached(*output) ? Driver::kDisplayAttached : 0) |
                                    (Intel::Active(*output) ? Driver::kDisplayActive : 0);
    Give(properties, passed);
    call.Unsigned("flags", properties.DisplayConfigFlags);
    return Result(Driver::kSuccess);
}

// What a native AUX request must hold before it reaches the panel; empty when it is fine.
std::pair<uint32_t, std::string> CheckAux(const Driver::AuxAccessArgs& args)
{
    if (args.OpType != Driver::kAuxRead && args.OpType != Driver::kAuxWrite) {
        return {Driver::kInvalidArgument, "OpType " + std::to_string(args.OpType) + " is neither read nor write"};
    }
    constexpr uint32_t known = Driver::kAuxNative | Driver::kAuxI2c | Driver::kAuxI2cMot;
    if ((args.Flags & ~known) != 0 || args.Flags == 0 ||
        ((args.Flags & Driver::kAuxNative) != 0 && args.Flags != Driver::kAuxNative) ||
        args.Flags == Driver::kAuxI2cMot) {
        return {Driver::kInvalidArgument, "Flags " + Hex(args.Flags) + " name no one AUX channel"};
    }
    // Only the native AUX channel reaches the panel's DPCD registers.
    if (args.Flags != Driver::kAuxNative) {
        return {Driver::kUnsupportedFeature, "Flags " + Hex(args.Flags) + ": I2C over AUX is not supported"};
    }
    // The panel sits on the port itself: no branch device to address, no other port.
    if (args.RAD != 0) {
        return {Driver::kInvalidArgument, "RAD " + Hex(args.RAD) + " is not zero"};
    }
    if (args.PortID != 0) {
        return {Driver::kInvalidArgument, "PortID " + std::to_string(args.PortID) + " is not zero"};
    }
    if (args.DataSize == 0 || args.DataSize > Driver::kAuxMaxData) {
        return {Driver::kInvalidArgument,
                "DataSize " + std::to_string(args.DataSize) + " is not 1 to " + std::to_string(Driver::kAuxMaxData)};
    }
    if (args.Address >= Driver::kDpcdSpace || Driver::kDpcdSpace - args.Address < args.DataSize) {
        return {Driver::kInvalidArgument, "Address " + Hex(args.Address) + " with " + std::to_string(args.DataSize) +
                                              " bytes leaves the DPCD space"};
    }
    if (args.OpType == Driver::kAuxWrite) {
        if (const auto unused = LumavenSim::FirstNonZero(args.Data, args.DataSize)) {
            return {Driver::kInvalidArgument, "Data[" + std::to_string(*unused) + "] beyond DataSize is not zero"};
        }
    }
    return {Driver::kSuccess, {}};
}

ctl_result_t Act(Tag<Fn::ctlAUXAccess>, Call& call, Document& state, ctl_display_output_handle_t display,
                 ctl_aux_access_args_t* passed)
{
    Driver::AuxAccessArgs args{};
    const auto [output, error] = Target(call, state, display, passed, args);
    if (output == nullptr) {
        return error;
    }
    const bool write = args.OpType == Driver::kAuxWrite;
    call.Text("op", args.OpType == Driver::kAuxRead ? "read" : write ? "write" : "other");
    call.Unsigned("flags", args.Flags);
    call.Unsigned("address", args.Address);
    call.Unsigned("size", args.DataSize);
    if (const auto [code, reason] = CheckAux(args); code != Driver::kSuccess) {
        return call.Refuse(code, reason);
    }
    Intel::RegisterFile registers = Intel::Registers(*output);
    for (uint32_t i = 0; i < args.DataSize; ++i) {
        const uint32_t address = args.Address + i;
        if (write) {
            registers[address] = args.Data[i];
        } else {
            const auto found = registers.find(address);
            args.Data[i] = found != registers.end() ? found->second : 0;
        }
    }
    if (write) {
        Intel::StoreRegisters(state, *output, registers);
    } else {
        Give(args, passed);
    }
    call.Text("data", LumavenSim::BytesToHex(args.Data, args.DataSize));
    return Result(Driver::kSuccess);
}

ctl_result_t Act(Tag<Fn::ctlGetPowerOptimizationCaps>, Call& call, Document& state, ctl_display_output_handle_t display,
                 ctl_power_optimization_caps_t* passed)
{
    Driver::PowerCaps caps{};
    const auto [output, error] = Target(call, state, display, passed, caps);
    if (output == nullptr) {
        return error;
    }
    caps.SupportedFeatures = Intel::DpstSupported(*output) ? Driver::kFeatureDpst : 0;
    Give(caps, passed);
    call.Unsigned("supported", caps.SupportedFeatures);
    return Result(Driver::kSuccess);
}

// The plan, the feature and the power source of a settings record: each must be one the
// driver knows. Only DPST is modelled; asking a panel without it, or for another feature, is
// unsupported.
ctl_result_t CheckSettings(Call& call, const rapidjson::Value& output, const Driver::PowerSettings& settings)
{
    call.Unsigned("plan", settings.PowerOptimizationPlan)
        .Unsigned("feature", settings.PowerOptimizationFeature)
        .Unsigned("powerSource", settings.PowerSource);
    if (settings.PowerOptimizationPlan > Driver::kPlanPowerSaver) {
        return call.Refuse(Driver::kInvalidArgument,
                           "PowerOptimizationPlan " + std::to_string(settings.PowerOptimizationPlan) + " is unknown");
    }
    const uint32_t feature = settings.PowerOptimizationFeature;
    if (feature < Driver::kFeatureFbc || feature > Driver::kFeatureLace || (feature & (feature - 1)) != 0) {
        return call.Refuse(Driver::kInvalidArgument,
                           "PowerOptimizationFeature " + Hex(feature) + " is not one known feature");
    }
    if (settings.PowerSource > Driver::kPowerSourceDc) {
        return call.Refuse(Driver::kInvalidArgument,
                           "PowerSource " + std::to_string(settings.PowerSource) + " is neither AC nor DC");
    }
    if (feature != Driver::kFeatureDpst) {
        return call.Refuse(Driver::kUnsupportedFeature, "only DPST is implemented");
    }
    if (!Intel::DpstSupported(output)) {
        return call.Refuse(Driver::kUnsupportedFeature, "the panel has no DPST");
    }
    return Result(Driver::kSuccess);
}

ctl_result_t Act(Tag<Fn::ctlGetPowerOptimizationSetting>, Call& call, Document& state,
                 ctl_display_output_handle_t display, ctl_power_optimization_settings_t* passed)
{
    Driver::PowerSettings settings{};
    const auto [output, error] = Target(call, state, display, passed, settings);
    if (output == nullptr) {
        return error;
    }
    if (const ctl_result_t refused = CheckSettings(call, *output, settings)) {
        return refused;
    }
    Driver::DpstInfo& dpst = settings.FeatureSpecificData.DPSTInfo;
    dpst.SupportedFeatures = Intel::DpstSupportedFeatures(*output);
    dpst.EnabledFeatures = Intel::DpstEnabledFeatures(*output);
    settings.Enable = dpst.EnabledFeatures != 0 ? 1 : 0;
    Give(settings, passed);
    call.Bool("enable", settings.Enable != 0);
    call.Unsigned("supportedFeatures", dpst.SupportedFeatures);
    call.Unsigned("enabledFeatures", dpst.EnabledFeatures);
    return Result(Driver::kSuccess);
}

// Switches the requested DPST sub-features on or off, leaving the others as they are.
ctl_result_t Act(Tag<Fn::ctlSetPowerOptimizationSetting>, Call& call, Document& state,
                 ctl_display_output_handle_t display, ctl_power_optimization_settings_t* passed)
{
    Driver::PowerSettings settings{};
    const auto [output, error] = Target(call, state, display, passed, settings);
    if (output == nullptr) {
        return error;
    }
    const uint32_t requested = settings.FeatureSpecificData.DPSTInfo.EnabledFeatures;
    call.Bool("enable", settings.Enable != 0);
    call.Unsigned("features", requested);
    if (settings.Enable > 1) {
        return call.Refuse(Driver::kInvalidArgument, "Enable " + std::to_string(settings.Enable) + " is not a bool");
    }
    if (const ctl_result_t refused = CheckSettings(call, *output, settings)) {
        return refused;
    }
    // The union's bytes past the DPST record belong to no field of it.
    if (const auto unused = LumavenSim::FirstNonZero(settings.FeatureSpecificData.Bytes, sizeof(Driver::DpstInfo))) {
        return call.Refuse(Driver::kInvalidArgument,
                           "FeatureSpecificData byte " + std::to_string(*unused) + " past the DPST record is not zero");
    }
    if ((requested & ~Driver::kKnownDpstFeatures) != 0) {
        return call.Refuse(Driver::kInvalidArgument, "EnabledFeatures " + Hex(requested) + " has unknown bits");
    }
    if ((requested & ~Intel::DpstSupportedFeatures(*output)) != 0) {
        return call.Refuse(Driver::kUnsupportedFeature,
                           "EnabledFeatures " + Hex(requested) + " asks for what the panel does not support");
    }
    const uint32_t enabled = Intel::DpstEnabledFeatures(*output);
    Intel::SetDpstEnabledFeatures(state, *output, settings.Enable != 0 ? enabled | requested : enabled & ~requested);
    call.Bool("opst", (Intel::DpstEnabledFeatures(*output) & Intel::kOpst) != 0);
    return Result(Driver::kSuccess);
}

// One call: count it, answer an injected fault or act, record it.
template <Fn id, class... Args>
ctl_result_t Serve(const char* function, Args... args)
{
    if (LumavenSim::RefusedAfterDetach("ControlLib", function, Driver::kUninitialized)) {
        return static_cast<ctl_result_t>(Driver::kUninitialized);
    }
    Call call(function);
    (Encode(call, args), ...);
    ctl_result_t result = Result(Driver::kSuccess);
    LumavenSim::WithState([&](Document& state) {
        const std::optional<int64_t> fault = LumavenSim::TakeFault(state, function);
        result = fault ? static_cast<ctl_result_t>(*fault) : Act(Tag<id>{}, call, state, args...);
        return true;
    });
    return call.Done(result);
}

}  // namespace

#define LUMAVEN_FAKE_DEFINE(name, ...)                                        \
    extern "C" ctl_result_t CTL_APICALL name(LUMAVEN_CTL_PARAMS(__VA_ARGS__)) \
    {                                                                         \
        return Serve<Fn::name>(#name, LUMAVEN_CTL_ARGS(__VA_ARGS__));         \
    }
LUMAVEN_CTL_FUNCTIONS(LUMAVEN_FAKE_DEFINE, LUMAVEN_FAKE_DEFINE)
#undef LUMAVEN_FAKE_DEFINE

// Counts loads and unloads, so tests can tell how often the service loaded the library. An
// unload at process exit is not the service's doing and is not counted. After either kind of
// detach every call is refused.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    LumavenSim::NoteDetach(reason, reserved);
    if (reason == DLL_PROCESS_ATTACH || (reason == DLL_PROCESS_DETACH && reserved == nullptr)) {
        LumavenSim::WithState([reason](Document& state) {
            Intel::IncrementCounter(state, reason == DLL_PROCESS_ATTACH ? "loads" : "unloads");
            return true;
        });
    }
    return TRUE;
}
