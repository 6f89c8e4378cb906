// The floor of every command on the machine at hand: the bare calls of the vendor's path
// (BareCalls.h) plus the registry writes the command makes, without the JSON work. What the
// service learns at start-up (vendor, panel, AUX table) is learnt here the same way, once.
#pragma once

#include "BareCalls.h"

#include <cstdint>
#include <string>

namespace LumavenBench {

enum class Vendor { Other, Intel, Amd };

// The vendor as the start-up task decides it from the controllers' names.
Vendor VendorOf(const std::vector<std::wstring>& names);

class CommandFloors {
public:
    CommandFloors();

    Vendor vendor() const { return m_vendor; }
    PanelId panel() const { return m_panel; }

    // The calls of command 1..14; `on` is the request's "BValue" for 9 and 14. Any other
    // command makes none. True when the command's response holds a "result".
    bool Command(uint32_t command, bool on);
    // What Command makes on this machine, in a few words.
    std::string Text(uint32_t command, bool on) const;

    // The factory's panel check and the start-up task: WMI, two walks (the index, then the
    // identity), the table.
    void StartUp();

private:
    // Commands 1, 2, 3, 5, 6 and 8: one session and the "OLED" writes the command makes. True
    // when the session was set up, which is when the command answers success.
    bool Intel(uint32_t mode);
    std::string IntelText(uint32_t mode) const;
    // Command 9 and the AMD half of 11 and 12.
    bool Elp(bool on);
    // Command 10.
    void OledSupport();
    // Commands 11 and 12.
    bool PowerSave(bool on);

    Vendor m_vendor;
    AuxDataMap m_table;
    PanelId m_panel;
    bool m_controlLibrary;
    Adlx m_adlx;
};

}  // namespace LumavenBench
