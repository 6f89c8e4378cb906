#include "Report.h"

#include "IntelState.h"
#include "SimState.h"
#include "TransactionLog.h"

#include <cstdio>
#include <optional>
#include <sstream>

namespace LumavenSim {

namespace {

std::string Text(const rapidjson::Value& object, const char* name)
{
    return object.IsObject() && object.HasMember(name) && object[name].IsString() ? object[name].GetString() : "";
}

std::string AmdDescription(const rapidjson::Document& state)
{
    std::ostringstream out;
    if (state.HasMember("amd") && state["amd"].IsObject() && state["amd"].HasMember("adapters") &&
        state["amd"]["adapters"].IsArray()) {
        out << "amd display library:\n";
        const auto& adapters = state["amd"]["adapters"];
        for (rapidjson::SizeType a = 0; a < adapters.Size(); ++a) {
            if (!adapters[a].HasMember("displays") || !adapters[a]["displays"].IsArray()) {
                continue;
            }
            const auto& displays = adapters[a]["displays"];
            for (rapidjson::SizeType d = 0; d < displays.Size(); ++d) {
                out << "  adapter " << a << " display " << d << ": panel " << Text(displays[d], "panel") << "; DPCD";
                if (displays[d].HasMember("dpcd") && displays[d]["dpcd"].IsObject() &&
                    displays[d]["dpcd"].MemberCount() > 0) {
                    for (const auto& reg : displays[d]["dpcd"].GetObject()) {
                        char byte[8];
                        std::snprintf(byte, sizeof byte, "%02X", reg.value.IsInt() ? reg.value.GetInt() & 0xFF : 0);
                        out << " " << reg.name.GetString() << "=" << byte;
                    }
                } else {
                    out << " all registers 00";
                }
                out << "\n";
            }
        }
    }
    if (state.HasMember("adlx") && state["adlx"].IsObject() && state["adlx"].HasMember("displays") &&
        state["adlx"]["displays"].IsArray()) {
        out << "adlx:\n";
        const auto& displays = state["adlx"]["displays"];
        for (rapidjson::SizeType d = 0; d < displays.Size(); ++d) {
            const auto& display = displays[d];
            const auto flag = [&display](const char* name) {
                return display.HasMember(name) && display[name].IsBool() && display[name].GetBool();
            };
            out << "  display " << d << ": VariBright " << (flag("varibrightSupported") ? "supported" : "not supported")
                << ", " << (flag("varibrightEnabled") ? "on" : "off");
            if (!Text(display, "varibrightMode").empty()) {
                out << ", level " << Text(display, "varibrightMode");
            }
            out << "\n";
        }
    }
    return out.str();
}

}  // namespace

std::string DescribeDrivers()
{
    std::string text;
    WithState([&text](rapidjson::Document& state) {
        text = Intel::Describe(state) + AmdDescription(state);
        return false;
    });
    return text;
}

std::string DescribeTransactions(bool auxOnly)
{
    std::ostringstream out;
    for (const TransactionRecord& record : TransactionLog::Read().Records()) {
        if (!auxOnly) {
            out << "  " << record.Text() << "\n";
            continue;
        }
        const std::optional<AuxAccess> access = record.Aux();
        if (!access) {
            continue;
        }
        char address[16];
        std::snprintf(address, sizeof address, "%04X", access->address);
        if (access->driver == AuxAccess::Driver::Intel) {
            out << "  intel output " << access->output << " AUX " << record.String("op") << " " << address << ": "
                << record.String("data") << "\n";
        } else {
            out << "  amd adapter " << access->adapter << " display " << access->output << " AUX write " << address
                << ": " << record.String("bytes") << "\n";
        }
    }
    return out.str();
}

}  // namespace LumavenSim
