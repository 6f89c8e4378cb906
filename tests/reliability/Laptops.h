// The two shipped simulated laptops the suites run on, and the power-setting notifications
// a host forwards.
#pragma once

#include "Panels.h"
#include "XeltoClient.h"

#include <windows.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace LumavenReliability {

enum class AuxChannel {
    IntelControlLib,  // ctlAUXAccess records, each sequence read back once
    AmdAdl,           // ADL2_Display_NativeAUXChannel_Access records
};

struct Laptop {
    const char* name;     // test name
    const char* profile;  // bin\profiles\<profile>.json
    uint32_t panelId;     // the fitted panel, EDID bytes 8..11 little-endian
    AuxChannel channel;
};

inline constexpr Laptop kIntelLaptop{"IntelLaptop", "intel-laptop", LumavenSim::Panels::kSdc4174.id,
                                     AuxChannel::IntelControlLib};
inline constexpr Laptop kAmdLaptop{"AmdLaptop", "amd-laptop", LumavenSim::Panels::kSdc416C.id, AuxChannel::AmdAdl};

inline bool IsAmd(const Laptop& laptop)
{
    return laptop.channel == AuxChannel::AmdAdl;
}

// How GoogleTest prints a laptop parameter.
inline void PrintTo(const Laptop& laptop, std::ostream* out)
{
    *out << laptop.profile;
}

// Names parameterised tests after the laptop.
struct LaptopTestName {
    template <class ParamInfo>
    std::string operator()(const ParamInfo& info) const
    {
        return info.param.name;
    }
};

// The display-state and lid-switch settings, the two the service acts on.
inline constexpr const GUID& kDisplayState = XeltoClient::kConsoleDisplayState;
inline constexpr const GUID& kLidSwitch = XeltoClient::kLidSwitchStateChange;
// Notifications the service must leave alone when their first byte is 1: AC/DC power source,
// battery percentage, the older monitor-power setting, session display status.
inline constexpr GUID kUnrelatedSettings[] = {
    {0x5D3E9A59, 0xE9D5, 0x4B00, {0xA6, 0xBD, 0xFF, 0x34, 0xFF, 0x51, 0x65, 0x48}},
    {0xA7AD8041, 0xB45A, 0x4CAE, {0x87, 0xA3, 0xEE, 0xCB, 0xB4, 0x68, 0xA9, 0xE1}},
    {0x02731015, 0x4510, 0x4526, {0x99, 0xE6, 0xE5, 0xA1, 0x7E, 0xBD, 0x1A, 0xEA}},
    {0x2B84C20E, 0xAD23, 0x4DDF, {0x93, 0xDB, 0x05, 0xFF, 0xBD, 0x7E, 0xFC, 0xA5}},
};

}  // namespace LumavenReliability
