// The work a command cannot avoid, done directly: the OS and vendor-library calls the service
// makes, with the same arguments and in the same order, without the service around them (no
// dispatch, locks, handler pattern, log lines or response members). The benchmark times every
// command against these in the same run. Each follows the service's path where the machine
// answers as the shipped laptops do; failure paths stop at the first failing call.
#pragma once

#include "amd/AdlxTypes.h"
#include "panel/AuxDataTable.h"
#include "panel/PanelIdentity.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace LumavenBench {

using Xelto::Spanlet::Server::Services::Lumaven::AuxDataMap;
using Xelto::Spanlet::Server::Services::Lumaven::AuxWrite;
using Xelto::Spanlet::Server::Services::Lumaven::PanelId;

// What every command does with its texts: parse the request, write the response (holding one
// "result" when the command answers one), hand out a malloc'ed copy (freed at once, as the
// host does).
void Json(const wchar_t* request, bool withResult);
// The error line an unsupported command writes.
void UnsupportedLine(uint32_t command);

// The settings value "OLED": open the key, query or set the value, close the key.
void ReadOled();
void WriteOled(DWORD value);

// The SetupAPI walk over the present monitors, reading each one's "EDID" value: the panel
// identity (EDID bytes 8..11) of every monitor whose EDID could be read, in walk order.
std::vector<PanelId> MonitorPanelIds();
// The first of them that the table knows (0 for none): what the service decides from a walk.
PanelId FittedPanel(const AuxDataMap& table);
// The table's sequence for the panel and state; empty when it has none.
const std::vector<AuxWrite>& SequenceFor(const AuxDataMap& table, PanelId panel, bool on);

// The WMI query of the start-up task: the names of the video controllers.
std::vector<std::wstring> VideoControllerNames();

// One Intel session of the given mode (the service's modes 1, 2, 3, 5, 6, 8): ControlLib.dll
// loaded from system32, ctlInit, the adapters and display outputs listed, the mode's calls on
// every display output (the AUX modes walk the EDIDs for the panel first), ctlClose, the
// library freed. Every ctl* function is looked up afresh, as the service's client layer does.
struct IntelOutcome {
    bool opened = false;  // the library loaded and the session was set up
    bool value = false;   // the mode's answer for the displays
};
IntelOutcome IntelSession(uint32_t mode, const AuxDataMap& table);
// Whether ControlLib.dll can be loaded from system32 at all.
bool ControlLibraryPresent();

// One ADL call of the AMD AUX writer: load atiadlxx.dll, bind its seven entry points, create a
// context, list the adapters and their displays, read the EDID of each mapped display, send the
// writes to every display of the panel, destroy the context, free the library. True when a
// display matched.
bool AdlAuxWrite(PanelId panel, const std::vector<AuxWrite>& writes);

// ADLX as the VariBright commands use it, with objects of its own: the library stays loaded
// and initialised for the object's life, as the service's helper keeps it.
class Adlx {
public:
    Adlx();
    ~Adlx();
    Adlx(const Adlx&) = delete;
    Adlx& operator=(const Adlx&) = delete;

    bool Loaded() const { return m_module != nullptr; }
    // The re-initialisation every AMD OLED command makes: the version queries, ADLXInitialize,
    // fresh display services and first display (the previous ones released).
    void InitializeDisplay();
    // GetVariBright and then the VariBright call; false when either fails.
    bool IsSupported();
    bool SetEnabled(bool enable);
    bool SetMaximizeBattery();

private:
    adlx::IADLXDisplayVariBright* VariBright();

    HMODULE m_module = nullptr;
    ADLXQueryFullVersion_Fn m_fullVersion = nullptr;
    ADLXQueryVersion_Fn m_version = nullptr;
    ADLXInitialize_Fn m_initialize = nullptr;
    adlx::IADLXSystem* m_system = nullptr;
    adlx::IADLXDisplayServices* m_services = nullptr;
    adlx::IADLXDisplay* m_display = nullptr;
};

}  // namespace LumavenBench
