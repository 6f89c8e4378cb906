#include "IntelState.h"

#include "SimState.h"

#include <cstdio>
#include <sstream>

namespace LumavenSim::Intel {

namespace {

const rapidjson::Value* ConstSection(const rapidjson::Document& state)
{
    return state.IsObject() && state.HasMember("intel") && state["intel"].IsObject() ? &state["intel"] : nullptr;
}

const rapidjson::Value* Adapters(const rapidjson::Document& state)
{
    const rapidjson::Value* section = ConstSection(state);
    return section != nullptr && section->HasMember("adapters") && (*section)["adapters"].IsArray()
               ? &(*section)["adapters"]
               : nullptr;
}

const rapidjson::Value* Outputs(const rapidjson::Document& state, size_t adapter)
{
    const rapidjson::Value* adapters = Adapters(state);
    if (adapters == nullptr || adapter >= adapters->Size() || !(*adapters)[adapter].IsObject()) {
        return nullptr;
    }
    const rapidjson::Value& object = (*adapters)[adapter];
    return object.HasMember("outputs") && object["outputs"].IsArray() ? &object["outputs"] : nullptr;
}

uint32_t UintField(const rapidjson::Value& object, const char* name, uint32_t fallback)
{
    return object.IsObject() && object.HasMember(name) && object[name].IsUint() ? object[name].GetUint() : fallback;
}

void SetMember(rapidjson::Document& state, rapidjson::Value& object, const char* name, rapidjson::Value value)
{
    if (object.HasMember(name)) {
        object[name] = value;
    } else {
        object.AddMember(rapidjson::Value(name, state.GetAllocator()), value, state.GetAllocator());
    }
}

std::string Hex32(uint32_t value, int digits)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, value);
    return text;
}

// The register file as runs of consecutive addresses.
std::vector<std::pair<uint32_t, std::vector<uint8_t>>> Runs(const RegisterFile& registers)
{
    std::vector<std::pair<uint32_t, std::vector<uint8_t>>> runs;
    for (const auto& [address, byte] : registers) {
        if (runs.empty() || runs.back().first + runs.back().second.size() != address) {
            runs.emplace_back(address, std::vector<uint8_t>());
        }
        runs.back().second.push_back(byte);
    }
    return runs;
}

}  // namespace

rapidjson::Value& Section(rapidjson::Document& state)
{
    if (!state.IsObject()) {
        state.SetObject();
    }
    if (!state.HasMember("intel") || !state["intel"].IsObject()) {
        state.RemoveMember("intel");
        state.AddMember("intel", rapidjson::Value(rapidjson::kObjectType), state.GetAllocator());
    }
    return state["intel"];
}

size_t AdapterCount(const rapidjson::Document& state)
{
    const rapidjson::Value* adapters = Adapters(state);
    return adapters != nullptr ? adapters->Size() : 0;
}

size_t OutputCount(const rapidjson::Document& state, size_t adapter)
{
    const rapidjson::Value* outputs = Outputs(state, adapter);
    return outputs != nullptr ? outputs->Size() : 0;
}

const rapidjson::Value* Output(const rapidjson::Document& state, size_t adapter, size_t output)
{
    const rapidjson::Value* outputs = Outputs(state, adapter);
    if (outputs == nullptr || output >= outputs->Size() || !(*outputs)[output].IsObject()) {
        return nullptr;
    }
    return &(*outputs)[output];
}

rapidjson::Value* Output(rapidjson::Document& state, size_t adapter, size_t output)
{
    return const_cast<rapidjson::Value*>(Output(static_cast<const rapidjson::Document&>(state), adapter, output));
}

bool OutputFlag(const rapidjson::Value& output, const char* name, bool fallback)
{
    return output.HasMember(name) && output[name].IsBool() ? output[name].GetBool() : fallback;
}

bool Attached(const rapidjson::Value& output)
{
    return OutputFlag(output, "attached", true);
}
bool Active(const rapidjson::Value& output)
{
    return OutputFlag(output, "active", Attached(output));
}
bool DpstSupported(const rapidjson::Value& output)
{
    return OutputFlag(output, "dpstSupported", true);
}

uint32_t DpstSupportedFeatures(const rapidjson::Value& output)
{
    uint32_t features = UintField(output, "dpstFeatures", 0) | DpstEnabledFeatures(output);
    if (OutputFlag(output, "opstSupported", true)) {
        features |= kOpst;
    } else {
        features &= ~kOpst;
    }
    return features;
}

uint32_t DpstEnabledFeatures(const rapidjson::Value& output)
{
    return UintField(output, "dpstEnabled", 0);
}

void SetDpstEnabledFeatures(rapidjson::Document& state, rapidjson::Value& output, uint32_t features)
{
    SetMember(state, output, "dpstEnabled", rapidjson::Value(features));
}

RegisterFile Registers(const rapidjson::Value& output)
{
    RegisterFile registers;
    if (!output.HasMember("dpcd") || !output["dpcd"].IsObject()) {
        return registers;
    }
    for (const auto& run : output["dpcd"].GetObject()) {
        if (!run.value.IsString()) {
            continue;
        }
        uint32_t address = static_cast<uint32_t>(std::stoul(run.name.GetString(), nullptr, 16));
        for (const uint8_t byte : HexToBytes(run.value.GetString())) {
            registers[address++] = byte;
        }
    }
    return registers;
}

// Kept as runs of consecutive registers ({"404B": "7C84CC"}), as a profile writes them.
void StoreRegisters(rapidjson::Document& state, rapidjson::Value& output, const RegisterFile& registers)
{
    rapidjson::Value dpcd(rapidjson::kObjectType);
    for (const auto& [start, bytes] : Runs(registers)) {
        dpcd.AddMember(rapidjson::Value(Hex32(start, 4).c_str(), state.GetAllocator()),
                       rapidjson::Value(BytesToHex(bytes.data(), bytes.size()).c_str(), state.GetAllocator()),
                       state.GetAllocator());
    }
    SetMember(state, output, "dpcd", std::move(dpcd));
}

std::optional<uint32_t> ChosenResult(const rapidjson::Document& state, const char* function)
{
    const rapidjson::Value* section = ConstSection(state);
    if (section == nullptr || !section->HasMember("results") || !(*section)["results"].IsObject()) {
        return std::nullopt;
    }
    const rapidjson::Value& results = (*section)["results"];
    if (!results.HasMember(function) || !results[function].IsUint()) {
        return std::nullopt;
    }
    return results[function].GetUint();
}

int64_t Counter(const rapidjson::Document& state, const char* name)
{
    const rapidjson::Value* section = ConstSection(state);
    return section != nullptr && section->HasMember(name) && (*section)[name].IsInt64() ? (*section)[name].GetInt64()
                                                                                        : 0;
}

void IncrementCounter(rapidjson::Document& state, const char* name)
{
    const int64_t count = Counter(state, name) + 1;
    SetMember(state, Section(state), name, rapidjson::Value(count));
}

std::vector<uint8_t> ReadRegisters(size_t adapter, size_t output, uint32_t address, size_t count)
{
    std::vector<uint8_t> bytes(count, 0);
    WithState([&](rapidjson::Document& state) {
        if (const rapidjson::Value* object = Output(static_cast<const rapidjson::Document&>(state), adapter, output)) {
            const RegisterFile registers = Registers(*object);
            for (size_t i = 0; i < count; ++i) {
                const auto found = registers.find(address + static_cast<uint32_t>(i));
                bytes[i] = found != registers.end() ? found->second : 0;
            }
        }
        return false;
    });
    return bytes;
}

bool OpstEnabled(size_t adapter, size_t output)
{
    bool enabled = false;
    WithState([&](rapidjson::Document& state) {
        if (const rapidjson::Value* object = Output(static_cast<const rapidjson::Document&>(state), adapter, output)) {
            enabled = (DpstEnabledFeatures(*object) & kOpst) != 0;
        }
        return false;
    });
    return enabled;
}

int64_t Counter(const char* name)
{
    int64_t count = 0;
    WithState([&](rapidjson::Document& state) {
        count = Counter(static_cast<const rapidjson::Document&>(state), name);
        return false;
    });
    return count;
}

std::string Describe(const rapidjson::Document& state)
{
    if (ConstSection(state) == nullptr) {
        return {};
    }
    std::ostringstream out;
    out << "intel driver: loaded " << Counter(state, "loads") << " times, unloaded " << Counter(state, "unloads")
        << " times\n";
    for (size_t adapter = 0; adapter < AdapterCount(state); ++adapter) {
        out << "  adapter " << adapter << ": " << OutputCount(state, adapter) << " display outputs\n";
        for (size_t index = 0; index < OutputCount(state, adapter); ++index) {
            const rapidjson::Value* output = Output(state, adapter, index);
            if (output == nullptr) {
                continue;
            }
            const uint32_t enabled = DpstEnabledFeatures(*output);
            out << "    output " << index << ": " << (Attached(*output) ? "attached" : "not attached")
                << (Active(*output) ? ", active" : "") << "; DPST "
                << (DpstSupported(*output) ? "supported" : "not supported") << ", OPST "
                << ((DpstSupportedFeatures(*output) & kOpst) != 0 ? "supported" : "not supported") << ", OPST "
                << ((enabled & kOpst) != 0 ? "on" : "off") << " (DPST features on 0x" << Hex32(enabled, 1) << ")\n";
            const auto runs = Runs(Registers(*output));
            if (runs.empty()) {
                out << "      DPCD: all registers 00\n";
            }
            for (const auto& [start, bytes] : runs) {
                out << "      DPCD " << Hex32(start, 4) << ": " << BytesToHex(bytes.data(), bytes.size()) << "\n";
            }
        }
    }
    return out.str();
}

}  // namespace LumavenSim::Intel
