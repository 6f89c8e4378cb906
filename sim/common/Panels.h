// The panels a simulated machine can be fitted with, by name, from one table shared by the
// simulator and the tests. A panel is known by EDID bytes 8..11: the manufacturer (two bytes,
// big-endian, three letters of five bits each: 4C83 is "SDC", Samsung Display) and the product
// code (two bytes, little-endian). Profiles carry those four bytes as hex ("4C836C41"); the
// service reads them as one little-endian number (0x416C834C), which is how the table keeps
// them, so a test compares with either without spelling the bytes out again.
#pragma once

#include <cstdint>
#include <string>

namespace LumavenSim {

struct PanelIdentity {
    const char* name;  // manufacturer and product code, "SDC 416C"
    uint32_t id;       // EDID bytes 8..11 read little-endian

    // EDID bytes 8..11 in hex, as a profile's "panel" member has them.
    std::string EdidHex() const;
};

namespace Panels {

// The eleven OLED panels the service supports.
inline constexpr PanelIdentity kSdc4160{"SDC 4160", 0x4160834C};
inline constexpr PanelIdentity kSdc4166{"SDC 4166", 0x4166834C};
inline constexpr PanelIdentity kSdc416C{"SDC 416C", 0x416C834C};
inline constexpr PanelIdentity kSdc4170{"SDC 4170", 0x4170834C};
inline constexpr PanelIdentity kSdc4174{"SDC 4174", 0x4174834C};
inline constexpr PanelIdentity kSdc417C{"SDC 417C", 0x417C834C};
inline constexpr PanelIdentity kSdc417D{"SDC 417D", 0x417D834C};
inline constexpr PanelIdentity kSdc4197{"SDC 4197", 0x4197834C};
inline constexpr PanelIdentity kSdc41A6{"SDC 41A6", 0x41A6834C};
inline constexpr PanelIdentity kSdc41AA{"SDC 41AA", 0x41AA834C};
inline constexpr PanelIdentity kSdc41AC{"SDC 41AC", 0x41AC834C};
// Panels it does not support: another panel of the same maker, and a desktop monitor (Dell).
inline constexpr PanelIdentity kSdc4199{"SDC 4199", 0x4199834C};
inline constexpr PanelIdentity kDel40F5{"DEL 40F5", 0x40F5AC10};

inline constexpr PanelIdentity kTable[] = {kSdc4160, kSdc4166, kSdc416C, kSdc4170, kSdc4174, kSdc417C, kSdc417D,
                                           kSdc4197, kSdc41A6, kSdc41AA, kSdc41AC, kSdc4199, kDel40F5};

}  // namespace Panels

}  // namespace LumavenSim
