#include "CommandFloors.h"

namespace LumavenBench {

using Xelto::Spanlet::Server::Services::Lumaven::BuildAuxDataMap;

namespace {

// The commands that are one session of Intel's control library in the mode of their number:
// the OPST queries and switches and the Ed switches.
bool IsIntelSession(uint32_t command)
{
    return command == 1 || command == 2 || command == 3 || command == 5 || command == 6 || command == 8;
}

}  // namespace

Vendor VendorOf(const std::vector<std::wstring>& names)
{
    Vendor vendor = Vendor::Other;
    for (const std::wstring& name : names) {
        if (name.find(L"Intel") != std::wstring::npos) {
            return Vendor::Intel;
        }
        if (name.find(L"AMD") != std::wstring::npos || name.find(L"Radeon") != std::wstring::npos) {
            vendor = Vendor::Amd;
        }
    }
    return vendor;
}

CommandFloors::CommandFloors()
    : m_vendor(VendorOf(VideoControllerNames())), m_table(BuildAuxDataMap()), m_panel(FittedPanel(m_table)),
      m_controlLibrary(ControlLibraryPresent())
{
}

bool CommandFloors::Command(uint32_t command, bool on)
{
    if (IsIntelSession(command)) {
        return Intel(command);
    }
    switch (command) {
    case 4: MonitorPanelIds(); return true;
    case 7: ReadOled(); return true;
    case 9: return Elp(on);
    case 10: OledSupport(); return true;
    case 11: return PowerSave(true);
    case 12: return PowerSave(false);
    // ADLX calls once an AMD OLED command has initialised it; none before.
    case 13: m_adlx.IsSupported(); return true;
    case 14: m_adlx.SetEnabled(on); return true;
    default: return false;
    }
}

std::string CommandFloors::Text(uint32_t command, bool on) const
{
    if (IsIntelSession(command)) {
        return IntelText(command);
    }
    const bool intel = m_vendor == Vendor::Intel;
    switch (command) {
    case 4: return "EDID walk";
    case 7: return "reg read";
    case 9: return intel ? IntelText(on ? 5 : 6) : "ADL load + AUX write + reg write";
    case 10: return intel ? IntelText(8) + " + EDID walk" : "ADLX re-init + IsSupported";
    case 11:
        return intel ? "2 ctl sessions: OPST on, AUX on + reg writes"
                     : "ADLX re-init + VariBright on, battery + ADL AUX";
    case 12:
        return intel ? "2 ctl sessions: OPST off, AUX off + reg writes" : "ADLX re-init + VariBright off + ADL AUX";
    case 13: return m_adlx.Loaded() ? "GetVariBright + IsSupported" : "(no vendor call)";
    case 14: return m_adlx.Loaded() ? "GetVariBright + SetEnabled" : "(no vendor call)";
    default: return "(nothing)";
    }
}

void CommandFloors::StartUp()
{
    VideoControllerNames();
    MonitorPanelIds();
    MonitorPanelIds();
    BuildAuxDataMap();
}

bool CommandFloors::Intel(uint32_t mode)
{
    if (mode == 6) {
        WriteOled(0);  // Ed off records the state before touching the panel
    }
    const IntelOutcome outcome = IntelSession(mode, m_table);
    // GetOpst records what it read; the switches and Ed on record only a switch that took.
    if (outcome.opened && (mode == 1 || (outcome.value && (mode == 2 || mode == 3 || mode == 5)))) {
        WriteOled(mode == 3 || !outcome.value ? 0 : 1);
    }
    return outcome.opened;
}

std::string CommandFloors::IntelText(uint32_t mode) const
{
    static const char* const kModeWork[] = {
        "", "OPST query", "OPST on", "OPST off", "", "EDID walk + AUX on", "EDID walk + AUX off", "", "OPST probe"};
    if (!m_controlLibrary) {
        return mode == 6 ? "reg write + ControlLib.dll load (absent)" : "ControlLib.dll load (absent)";
    }
    const std::string session = std::string("ctl session: ") + kModeWork[mode];
    return mode == 6 ? "reg write + " + session : mode == 8 ? session : session + " + reg write";
}

bool CommandFloors::Elp(bool on)
{
    if (m_panel == 0) {
        return false;
    }
    if (m_vendor == Vendor::Intel) {
        return Intel(on ? 5 : 6);
    }
    if (m_vendor == Vendor::Amd) {
        if (AdlAuxWrite(m_panel, SequenceFor(m_table, m_panel, on))) {
            WriteOled(on ? 1 : 0);
        }
        return true;
    }
    return false;
}

void CommandFloors::OledSupport()
{
    if (m_vendor == Vendor::Intel) {
        if (Intel(8)) {
            MonitorPanelIds();
        }
    } else if (m_vendor == Vendor::Amd) {
        m_adlx.InitializeDisplay();
        m_adlx.IsSupported();
    }
}

bool CommandFloors::PowerSave(bool on)
{
    if (m_vendor == Vendor::Intel) {
        const bool opened = Intel(on ? 2 : 3);
        if (opened) {
            Intel(on ? 5 : 6);
        }
        return opened;
    }
    if (m_vendor == Vendor::Amd) {
        m_adlx.InitializeDisplay();
        if (m_adlx.SetEnabled(on) && on) {
            m_adlx.SetMaximizeBattery();
        }
        return Elp(on) || !on;  // switching off answers the VariBright result itself
    }
    return false;
}

}  // namespace LumavenBench
