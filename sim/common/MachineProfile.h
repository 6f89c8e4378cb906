// A machine profile as typed values: the laptop's monitors, GPU, vendor libraries, the Intel
// and AMD drivers' adapters, outputs, panels and DPCD registers, and the faults to inject.
// Json() writes the profile `lumaven-sim install` reads (sim/README*.md describe each member),
// so that no test types a profile's JSON by hand. Every member left unset is left out of the
// JSON, where the simulated driver's own default applies.
#pragma once

#include "Panels.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace LumavenSim::Profile {

struct Monitor {
    std::optional<PanelIdentity> panel = {};
    std::string model = {};
    std::string edid = {};  // the whole EDID in hex, instead of one made around the panel
    std::optional<unsigned> edidLength = {};
};

// The named entry point answers `code` on its `nth` call since the install (every call when 0).
struct Fault {
    std::string function;
    int64_t code = 0;
    int nth = 0;
};

// The named enumeration finds `answer` entries on its "count" or "fill" call, on its `nth` call
// (every such call when 0).
struct Count {
    std::string function;
    std::string call;
    int64_t answer = 0;
    int nth = 0;
};

struct IntelOutput {
    std::optional<bool> attached = {};
    std::optional<bool> active = {};
    std::map<std::string, std::string> dpcd = {};  // hex address -> hex bytes from there on
    std::optional<bool> dpstSupported = {};
    std::optional<bool> opstSupported = {};
    std::optional<uint32_t> dpstFeatures = {};
    std::optional<uint32_t> dpstEnabled = {};
};

struct IntelAdapter {
    std::vector<IntelOutput> outputs = {};
};

struct Intel {
    std::vector<IntelAdapter> adapters = {};
    std::map<std::string, int64_t> results = {};  // entry point -> the code it answers
};

struct AmdDisplay {
    std::optional<int> infoValue = {};
    std::optional<int> logicalAdapterIndex = {};
    std::optional<int> displayIndex = {};
    std::optional<PanelIdentity> panel = {};
    std::map<std::string, int> dpcd = {};  // "0x045A" -> the register's byte
};

struct AmdAdapter {
    std::optional<int> adapterIndex = {};
    std::vector<AmdDisplay> displays = {};
};

struct Amd {
    std::vector<AmdAdapter> adapters = {};
    std::optional<int> adapterCount = {};
};

struct AdlxDisplay {
    std::optional<bool> varibrightSupported = {};
    std::optional<bool> varibrightEnabled = {};
    std::string varibrightMode = {};
};

struct Adlx {
    std::vector<AdlxDisplay> displays = {};
};

struct Machine {
    std::vector<Monitor> monitors = {};
    std::string gpuName = {};
    std::string gpuVendorId = {};  // hex, "8086"
    std::string gpuDeviceId = {};
    std::map<std::string, std::string> libraries = {};  // system32 name -> file in bin\sim
    std::optional<Intel> intel = {};
    std::optional<Amd> amd = {};
    std::optional<Adlx> adlx = {};
    std::vector<Fault> faults = {};
    std::vector<Count> counts = {};

    std::string Json() const;
};

inline constexpr char kIntelGpuName[] = "Intel(R) Iris(R) Xe Graphics";
inline constexpr char kAmdGpuName[] = "AMD Radeon(TM) Graphics";

// The two laptops most machines start from. Intel: the panel as the monitor, the Intel GPU,
// dxgi.dll and ControlLib.dll, and these adapters.
Machine IntelLaptop(PanelIdentity panel, std::vector<IntelAdapter> adapters);
// AMD: the panel as the monitor and as ADL's adapter 0, display 0 (connected and mapped), the
// AMD GPU, dxgi.dll and atiadlxx.dll; no ADLX.
Machine AmdLaptop(PanelIdentity panel);

// Gives the installed machine these faults and counts in place of its own, and counts every
// function's calls from now on: for a test that arranges the machine first and arms the
// faults for what follows.
void Arm(const std::vector<Fault>& faults, const std::vector<Count>& counts = {});

}  // namespace LumavenSim::Profile
