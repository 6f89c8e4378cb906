#include "MachineProfile.h"

#include "SimState.h"

#include "LumavenRapidJson.h"

#include <cstdio>
#include <utility>

namespace LumavenSim {

std::string PanelIdentity::EdidHex() const
{
    char text[12];
    std::snprintf(text, sizeof text, "%02X%02X%02X%02X", static_cast<unsigned>(id & 0xFF),
                  static_cast<unsigned>(id >> 8 & 0xFF), static_cast<unsigned>(id >> 16 & 0xFF),
                  static_cast<unsigned>(id >> 24 & 0xFF));
    return text;
}

namespace Profile {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void Key(Writer& out, const char* name)
{
    out.Key(name);
}

void Text(Writer& out, const char* name, const std::string& value)
{
    if (!value.empty()) {
        Key(out, name);
        out.String(value.c_str());
    }
}

template <class Value>
void Optional(Writer& out, const char* name, const std::optional<Value>& value)
{
    if (!value) {
        return;
    }
    Key(out, name);
    if constexpr (std::is_same_v<Value, bool>) {
        out.Bool(*value);
    } else if constexpr (std::is_same_v<Value, PanelIdentity>) {
        out.String(value->EdidHex().c_str());
    } else if constexpr (std::is_signed_v<Value>) {
        out.Int64(*value);
    } else {
        out.Uint64(*value);
    }
}

template <class Map>
void Object(Writer& out, const char* name, const Map& map)
{
    if (map.empty()) {
        return;
    }
    Key(out, name);
    out.StartObject();
    for (const auto& [key, value] : map) {
        out.Key(key.c_str());
        if constexpr (std::is_same_v<typename Map::mapped_type, std::string>) {
            out.String(value.c_str());
        } else {
            out.Int64(value);
        }
    }
    out.EndObject();
}

template <class Item, class Write>
void Array(Writer& out, const char* name, const std::vector<Item>& items, Write write)
{
    Key(out, name);
    out.StartArray();
    for (const Item& item : items) {
        out.StartObject();
        write(item);
        out.EndObject();
    }
    out.EndArray();
}

void Write(Writer& out, const Intel& intel)
{
    out.StartObject();
    Array(out, "adapters", intel.adapters, [&out](const IntelAdapter& adapter) {
        Array(out, "outputs", adapter.outputs, [&out](const IntelOutput& output) {
            Optional(out, "attached", output.attached);
            Optional(out, "active", output.active);
            Object(out, "dpcd", output.dpcd);
            Optional(out, "dpstSupported", output.dpstSupported);
            Optional(out, "opstSupported", output.opstSupported);
            Optional(out, "dpstFeatures", output.dpstFeatures);
            Optional(out, "dpstEnabled", output.dpstEnabled);
        });
    });
    Object(out, "results", intel.results);
    out.EndObject();
}

void Write(Writer& out, const Amd& amd)
{
    out.StartObject();
    Array(out, "adapters", amd.adapters, [&out](const AmdAdapter& adapter) {
        Optional(out, "adapterIndex", adapter.adapterIndex);
        Array(out, "displays", adapter.displays, [&out](const AmdDisplay& display) {
            Optional(out, "infoValue", display.infoValue);
            Optional(out, "logicalAdapterIndex", display.logicalAdapterIndex);
            Optional(out, "displayIndex", display.displayIndex);
            Optional(out, "panel", display.panel);
            Object(out, "dpcd", display.dpcd);
        });
    });
    Optional(out, "adapterCount", amd.adapterCount);
    out.EndObject();
}

void Write(Writer& out, const Adlx& adlx)
{
    out.StartObject();
    Array(out, "displays", adlx.displays, [&out](const AdlxDisplay& display) {
        Optional(out, "varibrightSupported", display.varibrightSupported);
        Optional(out, "varibrightEnabled", display.varibrightEnabled);
        Text(out, "varibrightMode", display.varibrightMode);
    });
    out.EndObject();
}

template <class Part>
void Section(Writer& out, const char* name, const std::optional<Part>& section)
{
    if (section) {
        Key(out, name);
        Write(out, *section);
    }
}

}  // namespace

std::string Machine::Json() const
{
    rapidjson::StringBuffer text;
    Writer out(text);
    out.StartObject();
    Array(out, "monitors", monitors, [&out](const Monitor& monitor) {
        Text(out, "model", monitor.model);
        Optional(out, "panel", monitor.panel);
        Text(out, "edid", monitor.edid);
        Optional(out, "edidLength", monitor.edidLength);
    });
    Text(out, "gpuName", gpuName);
    Text(out, "gpuVendorId", gpuVendorId);
    Text(out, "gpuDeviceId", gpuDeviceId);
    Key(out, "libraries");
    out.StartObject();
    for (const auto& [name, file] : libraries) {
        out.Key(name.c_str());
        out.String(file.c_str());
    }
    out.EndObject();
    Section(out, "intel", intel);
    Section(out, "amd", amd);
    Section(out, "adlx", adlx);
    if (!faults.empty()) {
        Array(out, "faults", faults, [&out](const Fault& fault) {
            Text(out, "function", fault.function);
            Key(out, "code");
            out.Int64(fault.code);
            Key(out, "nth");
            out.Int(fault.nth);
        });
    }
    if (!counts.empty()) {
        Array(out, "counts", counts, [&out](const Count& count) {
            Text(out, "function", count.function);
            Text(out, "call", count.call);
            Key(out, "answer");
            out.Int64(count.answer);
            Key(out, "nth");
            out.Int(count.nth);
        });
    }
    out.EndObject();
    return text.GetString();
}

Machine IntelLaptop(PanelIdentity panel, std::vector<IntelAdapter> adapters)
{
    return {.monitors = {{.panel = panel}},
            .gpuName = kIntelGpuName,
            .libraries = {{"dxgi.dll", "dxgi.dll"}, {"ControlLib.dll", "ControlLib.dll"}},
            .intel = Intel{.adapters = std::move(adapters)}};
}

Machine AmdLaptop(PanelIdentity panel)
{
    return {.monitors = {{.panel = panel}},
            .gpuName = kAmdGpuName,
            .libraries = {{"dxgi.dll", "dxgi.dll"}, {"atiadlxx.dll", "atiadlxx.dll"}},
            .amd = Amd{.adapters = {{.adapterIndex = 0, .displays = {{.infoValue = 3, .panel = panel}}}}}};
}

void Arm(const std::vector<Fault>& faults, const std::vector<Count>& counts)
{
    rapidjson::Document armed;
    armed.Parse(Machine{.faults = faults, .counts = counts}.Json().c_str());
    WithState([&armed](rapidjson::Document& state) {
        auto& allocator = state.GetAllocator();
        for (const char* member : {"faults", "counts"}) {
            state.RemoveMember(member);
            state.AddMember(rapidjson::StringRef(member),
                            armed.HasMember(member) ? rapidjson::Value(armed[member], allocator)
                                                    : rapidjson::Value(rapidjson::kArrayType),
                            allocator);
        }
        state.RemoveMember("calls");
        state.AddMember("calls", rapidjson::Value(rapidjson::kObjectType), allocator);
        return true;
    });
}

}  // namespace Profile

}  // namespace LumavenSim
