// The injected-fault table. Each row fails one vendor call (or meets one registry condition)
// on one command path and states everything the service must show for it. The list of fault
// points at the top is the total the report counts against.
#include "FaultRow.h"

#include <cstdio>

namespace LumavenFaults {

namespace {

// ---- The fault points -------------------------------------------------------------------------

using Entries = std::vector<std::string>;
using Lines = std::vector<std::wstring>;

// Lists (of points, of log lines) are put together from named parts.
template <class T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Entries Prefixed(const std::string& prefix, const Entries& entries)
{
    Entries prefixed;
    for (const std::string& entry : entries) {
        prefixed.push_back(prefix + entry);
    }
    return prefixed;
}

// Intel: the library itself, then the calls of a session in the order a command makes them.
const Entries kIntelLibrary = {"ControlLib.dll|missing", "ctlInit|missing", "forwarded entry points|missing"};
const Entries kIntelSetup = {"ctlInit|error", "ctlEnumerateDevices#count|error", "ctlEnumerateDevices#list|error",
                             "ctlEnumerateDisplayOutputs#count|error", "ctlEnumerateDisplayOutputs#list|error"};
const Entries kIntelProbe = {"ctlGetPowerOptimizationCaps|error", "ctlGetPowerOptimizationSetting#probe|error"};
const Entries kIntelSwitch =
    kIntelProbe + Entries{"ctlSetPowerOptimizationSetting|error", "ctlGetPowerOptimizationSetting#read-back|error"};
const Entries kIntelSupport = Entries{"ctlGetDisplayProperties|error"} + kIntelProbe;
const Entries kIntelAux = {"ctlGetDisplayProperties|error", "ctlAUXAccess#write1|error",
                           "ctlAUXAccess#write2|error",     "ctlAUXAccess#write3|error",
                           "ctlAUXAccess#write4|error",     "ctlAUXAccess#read-back|error"};
const Entries kIntelClose = {"ctlClose|error"};
// Counts the library reports: one no machine has on a count call, and a fill call that finds
// more or fewer entries than the count call said. The session code is one for every Intel
// path, so one command covers each; the event covers the counts whose failure differs there.
const Entries kIntelCounts = {"ctlEnumerateDevices#count|implausible", "ctlEnumerateDisplayOutputs#count|implausible",
                              "ctlEnumerateDevices#list|more",         "ctlEnumerateDevices#list|fewer",
                              "ctlEnumerateDisplayOutputs#list|more",  "ctlEnumerateDisplayOutputs#list|fewer"};
const Entries kIntelEventCounts = {"ctlEnumerateDevices#count|implausible",
                                   "ctlEnumerateDisplayOutputs#count|implausible"};
// A library that lists no adapter at all: every Intel path answers.
const Entries kIntelNoAdapter = {"ctlEnumerateDevices#count|zero"};

// ADL within one WriteAuxDataAmd call. "warning" is a positive ADL result: not ADL_OK, so a
// failure for the calls whose result is tested.
const Entries kAdl = {"atiadlxx.dll+atiadlxy.dll|missing",
                      "atiadlxx.dll|missing",
                      "ADL2_Display_DisplayInfo_Get|missing",
                      "ADL2_Display_NativeAUXChannel_Access|missing",
                      "ADL2_Display_EdidData_Get|missing",
                      "ADL2_Main_Control_Create|error",
                      "ADL2_Main_Control_Create|warning",
                      "ADL2_Adapter_NumberOfAdapters_Get|error",
                      "ADL2_Adapter_NumberOfAdapters_Get|warning",
                      "ADL2_Adapter_AdapterInfo_Get|error",
                      "ADL2_Display_DisplayInfo_Get|error",
                      "ADL2_Display_DisplayInfo_Get|warning",
                      "ADL2_Display_EdidData_Get|error",
                      "ADL2_Display_EdidData_Get|warning",
                      "ADL2_Display_NativeAUXChannel_Access|error",
                      "ADL2_Main_Control_Destroy|error"};
// Counts ADL reports that no machine has.
const Entries kAdlCounts = {"ADL2_Adapter_NumberOfAdapters_Get|implausible",
                            "ADL2_Display_DisplayInfo_Get|implausible"};

// ADLX: a result of 3 or more fails; 1 and 2 count as success. "success-code" is 1 or 2 answered
// without the call's output; "already-initialized" the real repeated initialisation.
const Entries kAdlxInit = {"amdadlx64.dll|missing",      "ADLXInitializeWithIncompatibleDriver|missing",
                           "ADLXQueryFullVersion|error", "ADLXQueryVersion|error",
                           "ADLXInitialize|error",       "ADLXInitialize|already-initialized",
                           "GetDisplaysServices|error",  "GetDisplaysServices|success-code",
                           "ADLXTerminate|error",        "GetDisplays|error",
                           "GetDisplays|success-code",   "At|error"};
const Entries kAdlxVariBright = {"GetVariBright|error", "GetVariBright|success-code"};

// The settings store: the writers meet a key they cannot open, or cannot create; the readers
// also meet values of another type or size.
const Entries kRegistryWriter = {"RegOpenKeyExW|access-denied", "RegCreateKeyExW|child-must-be-volatile"};
const Entries kRegistryReader =
    kRegistryWriter + Entries{"RegQueryValueExW|REG_SZ-1", "RegQueryValueExW|REG_SZ-10", "RegQueryValueExW|REG_BINARY",
                              "RegQueryValueExW|REG_DWORD-8-bytes", "RegQueryValueExW|REG_QWORD"};

Entries AllPoints()
{
    const Entries intelEd = kIntelLibrary + kIntelSetup + kIntelAux + kIntelClose;
    const std::vector<std::pair<std::string, Entries>> paths = {
        {"cmd1", kIntelLibrary + kIntelSetup + kIntelProbe + kIntelClose + kRegistryWriter + kIntelNoAdapter},
        {"cmd2", kIntelLibrary + kIntelSetup + kIntelSwitch + kIntelClose + kRegistryWriter + kIntelNoAdapter},
        {"cmd3", kIntelLibrary + kIntelSetup + kIntelSwitch + kIntelClose + kRegistryWriter + kIntelNoAdapter},
        {"cmd5", intelEd + kRegistryWriter + kIntelNoAdapter + kIntelCounts},
        {"cmd6", intelEd + kRegistryWriter + kIntelNoAdapter},
        {"cmd8", kIntelLibrary + kIntelSetup + kIntelSupport + kIntelClose + kIntelNoAdapter},
        {"cmd9-intel-on", intelEd + kRegistryWriter + kIntelNoAdapter},
        {"cmd9-intel-off", intelEd + kRegistryWriter + kIntelNoAdapter},
        {"cmd10-intel", kIntelLibrary + kIntelSetup + kIntelSupport + kIntelClose + kIntelNoAdapter},
        {"cmd11-intel", kIntelLibrary + Prefixed("opst:", kIntelSetup + kIntelSwitch + kIntelClose) +
                            Prefixed("ed:", kIntelSetup + kIntelAux + kIntelClose) + kRegistryWriter + kIntelNoAdapter},
        {"cmd12-intel", kIntelLibrary + Prefixed("opst:", kIntelSetup + kIntelSwitch + kIntelClose) +
                            Prefixed("ed:", kIntelSetup + kIntelAux + kIntelClose) + kRegistryWriter + kIntelNoAdapter},
        {"event-intel", intelEd + kIntelNoAdapter + kIntelEventCounts},
        {"cmd9-amd-on", kAdl + kRegistryWriter + kAdlCounts},
        {"cmd9-amd-off", kAdl + kRegistryWriter},
        {"cmd10-amd", kAdlxInit + kAdlxVariBright + Entries{"IsSupported|error"}},
        {"cmd11-amd", kAdlxInit + kAdlxVariBright +
                          Entries{"SetEnabled|error", "SetEnabled|success-code", "GetVariBright#2|error",
                                  "GetVariBright#2|success-code", "SetMaximizeBattery|error"} +
                          kAdl + kRegistryWriter},
        {"cmd12-amd",
         kAdlxInit + kAdlxVariBright + Entries{"SetEnabled|error", "SetEnabled|success-code"} + kAdl + kRegistryWriter},
        {"cmd13", kAdlxVariBright + Entries{"IsSupported|error"}},
        {"cmd14", kAdlxVariBright + Entries{"SetEnabled|error", "SetEnabled|success-code"}},
        {"event-amd", kAdl + Entries{"ADL2_Adapter_NumberOfAdapters_Get|implausible"}},
        {"cmd7", kRegistryReader},
        {"event", kRegistryReader},
        {"settings-store", {"RegSetValueExW|access-denied", "RegOpenKeyExW|bad-pathname"}},
    };
    Entries points;
    for (const auto& [path, entries] : paths) {
        points = points + Prefixed(path + "|", entries);
    }
    return points;
}

// ---- Vocabulary of the rows --------------------------------------------------------------------

// IGCL codes the rows inject.
constexpr int64_t kUninitialized = 0x40000008;
constexpr int64_t kUnsupportedVersion = 0x40000009;
constexpr int64_t kUnsupportedFeature = 0x4000000A;
constexpr int64_t kInvalidArgument = 0x4000000B;
constexpr int64_t kNullPointer = 0x4000000E;
constexpr int64_t kNotImplemented = 0x40000015;
// ADL: the generic error, and a positive "OK with a warning".
constexpr int64_t kAdlError = -1;
constexpr int64_t kAdlWarning = 1;
// ADLX: the first failing result, the success codes.
constexpr int64_t kAdlxFail = 3;
constexpr int64_t kAdlxAlreadyEnabled = 1;
constexpr int64_t kAdlxAlreadyInitialized = 2;

// Statuses.
constexpr uint32_t kOk = 0;
constexpr uint32_t kRegistryError = 0x20000004;
constexpr uint32_t kDeviceError = 0x20000005;

Action Cmd(uint32_t command, const wchar_t* request = L"{}")
{
    return {Act::Command, command, request};
}
const Action kOn9 = Cmd(9, L"{\"BValue\":true}");
const Action kOff9 = Cmd(9, L"{\"BValue\":false}");
const Action kOn14 = Cmd(14, L"{\"BValue\":true}");
const Action kEvent{Act::Event, 0, nullptr};

const wchar_t* const kNoResponse = nullptr;
const wchar_t kEmpty[] = L"{}";
const wchar_t kTrue[] = L"{\"result\":true}";
const wchar_t kFalse[] = L"{\"result\":false}";
const wchar_t kTrueTrue[] = L"{\"result\":true,\"result\":true}";
const wchar_t kTrueFalse[] = L"{\"result\":true,\"result\":false}";
const wchar_t kFalseTrue[] = L"{\"result\":false,\"result\":true}";
const wchar_t kFalseFalse[] = L"{\"result\":false,\"result\":false}";

std::wstring Hex(int64_t code)
{
    wchar_t text[16];
    std::swprintf(text, 16, L"%llX", static_cast<unsigned long long>(code));
    return text;
}

std::wstring SessionFailed(int64_t code)
{
    return L"E:EnumerateTargetDisplays returned failure code: 0x" + Hex(code) + L"\n";
}
std::wstring OutputsFailed(int64_t code)
{
    return L"E:ctlEnumerateDisplayOutputs returned failure code: 0x" + Hex(code) + L"\n";
}
const std::wstring kAuxWriteFailed = L"E:ctlAUXAccess for Native Aux DPCD WRITE returned failure code: 0x{X}\n";
const std::wstring kWriteFailed = L"E:Write Aux data failed: {x}";
const std::wstring kVerifyFailed = L"E:Verify Aux data failed: {x}";
const std::wstring kOpstSupported = L"I:OPST is supported";
const std::wstring kOpstNotSupported = L"I:OPST is not supported";
const std::wstring kOpenFailed = L"E:Something is wrong. Could not Open or Create the Key: ";
const std::wstring kSetFailed = L"E:Not able to set the Registry Value: ";
const Lines kEventOn = {
    L"I:Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task::PEXelto::Enter",
    L"I:LumavenService - OledEventCalled entered", L"I:LumavenService - OledEventCalled OLED ON",
    L"I:LumavenService - OledEventCalled PrevDisplay OFF"};
const Lines kAdlWrote = {L"I:nAdapter count=1", L"I:display count=1", L"I:Write AUX data"};

Lines AuxWriteFailed(int64_t code)
{
    return {kAuxWriteFailed, kWriteFailed, SessionFailed(code)};
}
Lines RegistryFailed(const wchar_t* openStatus)
{
    return {kOpenFailed + openStatus, kSetFailed + L"6"};
}

// Intel sessions on panel 0x4160834C: the four writes of the "on" or "off" sequence, then the
// read-back of the first.
const std::string kOpen = "Init Dev Dev Out Out";
const std::string kSwitch = "Caps Get Set Get";
const std::string kEdOn = "Props W404B=7C84CC W4056=1756FE W404E=0C0003 W4054=02 R404B=7C84CC";
const std::string kEdOff = "Props W404B=7C84CC W4056=1756F0 W404E=0C0003 W4054=02 R404B=7C84CC";
// ... when the n-th AUX call fails (write 1 to 4, then the read-back).
const std::string kEdW1 = "Props Aux!";
const std::string kEdW2 = "Props W404B=7C84CC Aux!";
const std::string kEdOnW3 = "Props W404B=7C84CC W4056=1756FE Aux!";
const std::string kEdOnW4 = "Props W404B=7C84CC W4056=1756FE W404E=0C0003 Aux!";
const std::string kEdOnR = "Props W404B=7C84CC W4056=1756FE W404E=0C0003 W4054=02 Aux!";
const std::string kEdOffW3 = "Props W404B=7C84CC W4056=1756F0 Aux!";
const std::string kEdOffW4 = "Props W404B=7C84CC W4056=1756F0 W404E=0C0003 Aux!";
const std::string kEdOffR = "Props W404B=7C84CC W4056=1756F0 W404E=0C0003 W4054=02 Aux!";
// The panel's registers afterwards.
const std::string kUntouched = "I404B=000000 I4056=000000 I404E=000000 I4054=00";
const std::string kPanelOn = "I404B=7C84CC I4056=1756FE I404E=0C0003 I4054=02";
const std::string kPanelOff = "I404B=7C84CC I4056=1756F0 I404E=0C0003 I4054=02";
const std::string kFirstOnly = "I404B=7C84CC I4056=000000 I404E=000000 I4054=00";
const std::string kOnTwo = "I404B=7C84CC I4056=1756FE I404E=000000 I4054=00";
const std::string kOnThree = "I404B=7C84CC I4056=1756FE I404E=0C0003 I4054=00";
const std::string kOffTwo = "I404B=7C84CC I4056=1756F0 I404E=000000 I4054=00";
const std::string kOffThree = "I404B=7C84CC I4056=1756F0 I404E=0C0003 I4054=00";

// AMD on panel 0x416C834C: five one-byte writes through adapter 0, display 0.
const std::string kAdlOn = "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=C0 W045B=40 Destroy";
const std::string kAdlOff = "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=00 W045B=40 Destroy";
const std::string kAmdOn = "A045C=06 A0454=18 A0453=41 A045A=C0 A045B=40";
const std::string kAmdOff = "A045C=06 A0454=18 A0453=41 A045A=00 A045B=40";
const std::string kAmdUntouchedOff = "A045C=00 A0454=00 A0453=00 A045A=00 A045B=00";
const std::string kAmdUntouchedOn = "A045C=00 A0454=00 A0453=00 A045A=C0 A045B=00";
// The ADLX calls of an OLED power-save switch that go through.
const std::string kAdlxOn = "FullVer Ver XInit Services Displays At VB En=1 VB MaxBat";
const std::string kAdlxOff = "FullVer Ver XInit Services Displays At VB En=0";
const std::string kAdlxQuery = "FullVer Ver XInit Services Displays At VB IsSup";

const Machine kIntelOff = Machine::IntelOpstOff;
const Machine kIntelOn = Machine::IntelOpstOn;
const Machine kAmdM = Machine::AmdPanelOff;
const Machine kAmdOnM = Machine::AmdPanelOn;
const Arrange kNone = Arrange::None;
const Arrange kAdlxReady = Arrange::AdlxInitialized;

// Library variants of the machines.
const char kNoControlLib[] = "ControlLib.dll=";
const char kNoInit[] = "ControlLib.dll=ControlLib-noinit.dll";
const char kInitOnly[] = "ControlLib.dll=ControlLib-initonly.dll";
const char kNoAdl[] = "atiadlxx.dll=";
const char kAdlFallback[] = "atiadlxx.dll= atiadlxy.dll=atiadlxx.dll";
const char kAdlNoDisplayInfo[] = "atiadlxx.dll=atiadlxx_nodisplayinfo.dll";
const char kAdlNoAux[] = "atiadlxx.dll=atiadlxx_noaux.dll";
const char kAdlNoEdid[] = "atiadlxx.dll=atiadlxx_noedid.dll";
const char kNoAdlx[] = "amdadlx64.dll=";
const char kAdlxNoIncompat[] = "amdadlx64.dll=amdadlx64_noincompat.dll";

// Which vendor libraries a row leaves loaded.
const char kCtlLoaded[] = "+ControlLib.dll";
const char kCtlUnloaded[] = "-ControlLib.dll";
const char kAdlUnloaded[] = "-atiadlxx.dll -amdadlx64.dll";
// An ADL call that stops early may leave ADL loaded or not; only ADLX is looked at.
const char kAdlStopped[] = "-amdadlx64.dll";
const char kAdlxLoadedAdlUnloaded[] = "+amdadlx64.dll -atiadlxx.dll";
const char kAdlxUnloadedAdlUnloaded[] = "-amdadlx64.dll -atiadlxx.dll";

// The rows below stay as written, a few fields a line in the order of the legend: formatted one
// field a line, the table would no longer read as one.
// clang-format off
// ---- The rows ------------------------------------------------------------------------------------
// point, machine, drivers, faults, arrange, "OLED" before, action,
//   status, response, log lines, "OLED" after, vendor calls, panel, libraries loaded

// Commands 1, 2, 3, 8 and 10 on Intel: the OPST session. A set-up failure answers
// StatusDeviceError with nothing in the response and nothing stored; later failures answer
// "result": false and reach only the log.
std::vector<FaultRow> OpstRows()
{
    return {
        // ---- 1 GetOpst: records what it read, true or false, every time its session ran.
        {"cmd1|ControlLib.dll|missing", kIntelOn, kNoControlLib, {}, kNone, Oled::Absent, Cmd(1),
         kDeviceError, kEmpty, {}, Oled::Absent, "", "OPST=1", kCtlUnloaded},
        {"cmd1|ctlInit|missing", kIntelOn, kNoInit, {}, kNone, Oled::Absent, Cmd(1),
         kDeviceError, kEmpty, {}, Oled::Absent, "Dev! Close!", "OPST=1", kCtlLoaded},
        {"cmd1|forwarded entry points|missing", kIntelOn, kInitOnly, {}, kNone, Oled::Absent, Cmd(1),
         kDeviceError, kEmpty, {}, Oled::Absent, "Init", "OPST=1", kCtlLoaded},
        {"cmd1|ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::Absent, Cmd(1),
         kDeviceError, kEmpty, {}, Oled::Absent, "Init! Close!", "OPST=1", kCtlLoaded},
        {"cmd1|ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::Absent, Cmd(1), kDeviceError, kEmpty, {}, Oled::Absent, "Init Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd1|ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::Absent, Cmd(1), kDeviceError, kEmpty, {}, Oled::Absent, "Init Dev Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd1|ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Absent, Cmd(1),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", "OPST=1", kCtlUnloaded},
        // The list call failed: the probe runs on the unfilled (null) handle and the library refuses it.
        {"cmd1|ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::Absent, Cmd(1),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::Zero, "Init Dev Dev Out Out! Caps! Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd1|ctlGetPowerOptimizationCaps|error", kIntelOn, "", {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}},
         kNone, Oled::Absent, Cmd(1), kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::Zero, kOpen + " Caps! Get Close", "OPST=1", kCtlUnloaded},
        {"cmd1|ctlGetPowerOptimizationSetting#probe|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::Absent, Cmd(1),
         kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::Zero,
         kOpen + " Caps Get! Close", "OPST=1", kCtlUnloaded},
        // A close that fails keeps the library loaded; the command is done all the same.
        {"cmd1|ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::Absent, Cmd(1),
         kOk, kTrue, {kOpstSupported}, Oled::One, kOpen + " Caps Get Close!", "OPST=1", kCtlLoaded},

        // ---- 2 EnableOpst: records 1 only when the switch took.
        {"cmd2|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::Zero, Cmd(2),
         kDeviceError, kEmpty, {}, Oled::Zero, "", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::Zero, Cmd(2),
         kDeviceError, kEmpty, {}, Oled::Zero, "Dev! Close!", "OPST=0", kCtlLoaded},
        {"cmd2|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::Zero, Cmd(2),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init", "OPST=0", kCtlLoaded},
        {"cmd2|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::Zero, Cmd(2),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init! Close!", "OPST=0", kCtlLoaded},
        {"cmd2|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::Zero, Cmd(2), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev! Close", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::Zero, Cmd(2), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::Zero, "Init Dev Dev Out Out! Caps! Get! Close", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlGetPowerOptimizationCaps|error", kIntelOff, "", {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}},
         kNone, Oled::Zero, Cmd(2), kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::Zero, kOpen + " Caps! Get Close", "OPST=0", kCtlUnloaded},
        {"cmd2|ctlGetPowerOptimizationSetting#probe|error", kIntelOff, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::Zero,
         kOpen + " Caps Get! Close", "OPST=0", kCtlUnloaded},
        // The set fails, the read-back answers: the panel is not in the requested state, and the
        // status the read-back left is 0.
        {"cmd2|ctlSetPowerOptimizationSetting|error", kIntelOff, "",
         {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {kOpstSupported}, Oled::Zero, kOpen + " Caps Get Set! Get Close", "OPST=0", kCtlUnloaded},
        // The switch took but the read-back failed: the record still holds the probe's "off".
        {"cmd2|ctlGetPowerOptimizationSetting#read-back|error", kIntelOff, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {kOpstSupported, SessionFailed(kNotImplemented)}, Oled::Zero,
         kOpen + " Caps Get Set Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd2|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::Zero, Cmd(2),
         kOk, kTrue, {kOpstSupported}, Oled::One, kOpen + " " + kSwitch + " Close!", "OPST=1", kCtlLoaded},

        // ---- 3 DisableOpst: records 0 only when the switch took.
        {"cmd3|ControlLib.dll|missing", kIntelOn, kNoControlLib, {}, kNone, Oled::One, Cmd(3),
         kDeviceError, kEmpty, {}, Oled::One, "", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlInit|missing", kIntelOn, kNoInit, {}, kNone, Oled::One, Cmd(3),
         kDeviceError, kEmpty, {}, Oled::One, "Dev! Close!", "OPST=1", kCtlLoaded},
        {"cmd3|forwarded entry points|missing", kIntelOn, kInitOnly, {}, kNone, Oled::One, Cmd(3),
         kDeviceError, kEmpty, {}, Oled::One, "Init", "OPST=1", kCtlLoaded},
        {"cmd3|ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, Cmd(3),
         kDeviceError, kEmpty, {}, Oled::One, "Init! Close!", "OPST=1", kCtlLoaded},
        {"cmd3|ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::One, Cmd(3), kDeviceError, kEmpty, {}, Oled::One, "Init Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::One, Cmd(3), kDeviceError, kEmpty, {}, Oled::One, "Init Dev Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out! Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::One, "Init Dev Dev Out Out! Caps! Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlGetPowerOptimizationCaps|error", kIntelOn, "", {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}},
         kNone, Oled::One, Cmd(3), kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::One, kOpen + " Caps! Get Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlGetPowerOptimizationSetting#probe|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Caps Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlSetPowerOptimizationSetting|error", kIntelOn, "",
         {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {kOpstSupported}, Oled::One, kOpen + " Caps Get Set! Get Close", "OPST=1", kCtlUnloaded},
        {"cmd3|ctlGetPowerOptimizationSetting#read-back|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {kOpstSupported, SessionFailed(kNotImplemented)}, Oled::One,
         kOpen + " Caps Get Set Get! Close", "OPST=0", kCtlUnloaded},
        {"cmd3|ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(3),
         kOk, kTrue, {kOpstSupported}, Oled::Zero, kOpen + " " + kSwitch + " Close!", "OPST=0", kCtlLoaded},

        // ---- 8 GetIfSystemSupportsOpst: attached displays only, records nothing.
        {"cmd8|ControlLib.dll|missing", kIntelOn, kNoControlLib, {}, kNone, Oled::One, Cmd(8),
         kDeviceError, kEmpty, {}, Oled::One, "", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlInit|missing", kIntelOn, kNoInit, {}, kNone, Oled::One, Cmd(8),
         kDeviceError, kEmpty, {}, Oled::One, "Dev! Close!", "OPST=1", kCtlLoaded},
        {"cmd8|forwarded entry points|missing", kIntelOn, kInitOnly, {}, kNone, Oled::One, Cmd(8),
         kDeviceError, kEmpty, {}, Oled::One, "Init", "OPST=1", kCtlLoaded},
        {"cmd8|ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, Cmd(8),
         kDeviceError, kEmpty, {}, Oled::One, "Init! Close!", "OPST=1", kCtlLoaded},
        {"cmd8|ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::One, Cmd(8), kDeviceError, kEmpty, {}, Oled::One, "Init Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::One, Cmd(8), kDeviceError, kEmpty, {}, Oled::One, "Init Dev Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(8),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out! Close", "OPST=1", kCtlUnloaded},
        // The null handle's properties cannot be read: not attached, not probed, no failure left.
        {"cmd8|ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, Cmd(8),
         kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::One, "Init Dev Dev Out Out! Props! Close", "OPST=1",
         kCtlUnloaded},
        {"cmd8|ctlGetDisplayProperties|error", kIntelOn, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::One, Cmd(8), kOk, kFalse, {}, Oled::One, kOpen + " Props! Close", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlGetPowerOptimizationCaps|error", kIntelOn, "", {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}},
         kNone, Oled::One, Cmd(8), kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::One, kOpen + " Props Caps! Get Close", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlGetPowerOptimizationSetting#probe|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::One, Cmd(8),
         kOk, kFalse, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Props Caps Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd8|ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(8),
         kOk, kTrue, {kOpstSupported}, Oled::One, kOpen + " Props Caps Get Close!", "OPST=1", kCtlLoaded},

        // ---- 10 GetIfOLEDSupport on Intel: the OPST support query, then the panel. A failing
        // query counts as supported and adds nothing; otherwise its answer comes first.
        {"cmd10-intel|ControlLib.dll|missing", kIntelOn, kNoControlLib, {}, kNone, Oled::One, Cmd(10),
         kOk, kTrue, {}, Oled::One, "", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlInit|missing", kIntelOn, kNoInit, {}, kNone, Oled::One, Cmd(10),
         kOk, kTrue, {}, Oled::One, "Dev! Close!", "OPST=1", kCtlLoaded},
        {"cmd10-intel|forwarded entry points|missing", kIntelOn, kInitOnly, {}, kNone, Oled::One, Cmd(10),
         kOk, kTrue, {}, Oled::One, "Init", "OPST=1", kCtlLoaded},
        {"cmd10-intel|ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, Cmd(10),
         kOk, kTrue, {}, Oled::One, "Init! Close!", "OPST=1", kCtlLoaded},
        {"cmd10-intel|ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::One, Cmd(10), kOk, kTrue, {}, Oled::One, "Init Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::One, Cmd(10), kOk, kTrue, {}, Oled::One, "Init Dev Dev! Close", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(10),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out! Close", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, Cmd(10),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument)}, Oled::One, "Init Dev Dev Out Out! Props! Close",
         "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlGetDisplayProperties|error", kIntelOn, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::One, Cmd(10), kOk, kFalseTrue, {}, Oled::One, kOpen + " Props! Close", "OPST=1",
         kCtlUnloaded},
        {"cmd10-intel|ctlGetPowerOptimizationCaps|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, kNone, Oled::One, Cmd(10),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Props Caps! Get Close", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlGetPowerOptimizationSetting#probe|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::One, Cmd(10),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Props Caps Get! Close", "OPST=1", kCtlUnloaded},
        {"cmd10-intel|ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(10),
         kOk, kTrueTrue, {kOpstSupported}, Oled::One, kOpen + " Props Caps Get Close!", "OPST=1", kCtlLoaded},
    };
}

// Commands 5 and 6, command 9 on Intel (the same handlers under the ELP setter) and the
// display-power event on Intel: the AUX session, mode 5 or 6. A write that fails stops the
// sequence where it is; the writes before it stay in the panel.
std::vector<FaultRow> EdRows()
{
    return {
        // ---- 5 EnableEd: records 1 only after the panel was written and read back.
        {"cmd5|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::Zero, Cmd(5),
         kDeviceError, kEmpty, {}, Oled::Zero, "", kUntouched, kCtlUnloaded},
        {"cmd5|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::Zero, Cmd(5),
         kDeviceError, kEmpty, {}, Oled::Zero, "Dev! Close!", kUntouched, kCtlLoaded},
        {"cmd5|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::Zero, Cmd(5),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init", kUntouched, kCtlLoaded},
        {"cmd5|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::Zero, Cmd(5),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init! Close!", kUntouched, kCtlLoaded},
        {"cmd5|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::Zero, Cmd(5), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd5|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::Zero, Cmd(5), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd5|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        {"cmd5|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::Zero, "Init Dev Dev Out Out! Props! Close", kUntouched,
         kCtlUnloaded},
        // Properties that cannot be read leave the display unattached: nothing is written.
        {"cmd5|ctlGetDisplayProperties|error", kIntelOff, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::Zero, Cmd(5), kOk, kFalse, {}, Oled::Zero, kOpen + " Props! Close", kUntouched, kCtlUnloaded},
        {"cmd5|ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone, Oled::Zero,
         Cmd(5), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW1 + " Close",
         kUntouched, kCtlUnloaded},
        {"cmd5|ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone, Oled::Zero,
         Cmd(5), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW2 + " Close",
         kFirstOnly, kCtlUnloaded},
        {"cmd5|ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone, Oled::Zero,
         Cmd(5), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdOnW3 + " Close",
         kOnTwo, kCtlUnloaded},
        {"cmd5|ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone, Oled::Zero,
         Cmd(5), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdOnW4 + " Close",
         kOnThree, kCtlUnloaded},
        // Every write went in; the failed read-back compares zeros with 7C 84 CC.
        {"cmd5|ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone, Oled::Zero,
         Cmd(5), kOk, kFalse, {kVerifyFailed, SessionFailed(kUninitialized)}, Oled::Zero,
         kOpen + " " + kEdOnR + " Close", kPanelOn, kCtlUnloaded},
        {"cmd5|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::Zero, Cmd(5),
         kOk, kTrue, {}, Oled::One, kOpen + " " + kEdOn + " Close!", kPanelOn, kCtlLoaded},

        // ---- 6 DisableEd: records 0 first, whatever the panel does afterwards.
        {"cmd6|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::One, Cmd(6),
         kDeviceError, kEmpty, {}, Oled::Zero, "", kUntouched, kCtlUnloaded},
        {"cmd6|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::One, Cmd(6),
         kDeviceError, kEmpty, {}, Oled::Zero, "Dev! Close!", kUntouched, kCtlLoaded},
        {"cmd6|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::One, Cmd(6),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init", kUntouched, kCtlLoaded},
        {"cmd6|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, Cmd(6),
         kDeviceError, kEmpty, {}, Oled::Zero, "Init! Close!", kUntouched, kCtlLoaded},
        {"cmd6|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}}, kNone,
         Oled::One, Cmd(6), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd6|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}}, kNone,
         Oled::One, Cmd(6), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd6|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(6),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        {"cmd6|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, Cmd(6),
         kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::Zero, "Init Dev Dev Out Out! Props! Close", kUntouched,
         kCtlUnloaded},
        {"cmd6|ctlGetDisplayProperties|error", kIntelOff, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::One, Cmd(6), kOk, kFalse, {}, Oled::Zero, kOpen + " Props! Close", kUntouched, kCtlUnloaded},
        {"cmd6|ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone, Oled::One,
         Cmd(6), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW1 + " Close",
         kUntouched, kCtlUnloaded},
        {"cmd6|ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone, Oled::One,
         Cmd(6), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW2 + " Close",
         kFirstOnly, kCtlUnloaded},
        {"cmd6|ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone, Oled::One,
         Cmd(6), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdOffW3 + " Close",
         kOffTwo, kCtlUnloaded},
        {"cmd6|ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone, Oled::One,
         Cmd(6), kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdOffW4 + " Close",
         kOffThree, kCtlUnloaded},
        {"cmd6|ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone, Oled::One,
         Cmd(6), kOk, kFalse, {kVerifyFailed, SessionFailed(kUninitialized)}, Oled::Zero,
         kOpen + " " + kEdOffR + " Close", kPanelOff, kCtlUnloaded},
        {"cmd6|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(6),
         kOk, kTrue, {}, Oled::Zero, kOpen + " " + kEdOff + " Close!", kPanelOff, kCtlLoaded},

        // ---- 9 SetIntelElp, "BValue": true: EnableEd under the setter's lock.
        {"cmd9-intel-on|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::Zero, kOn9,
         kDeviceError, kEmpty, {}, Oled::Zero, "", kUntouched, kCtlUnloaded},
        {"cmd9-intel-on|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::Zero, kOn9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Dev! Close!", kUntouched, kCtlLoaded},
        {"cmd9-intel-on|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::Zero, kOn9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Init", kUntouched, kCtlLoaded},
        {"cmd9-intel-on|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::Zero, kOn9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Init! Close!", kUntouched, kCtlLoaded},
        {"cmd9-intel-on|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::Zero, kOn9, kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-on|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::Zero, kOn9, kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", kUntouched,
         kCtlUnloaded},
        {"cmd9-intel-on|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-on|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::Zero, "Init Dev Dev Out Out! Props! Close", kUntouched,
         kCtlUnloaded},
        {"cmd9-intel-on|ctlGetDisplayProperties|error", kIntelOff, "",
         {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, {}, Oled::Zero, kOpen + " Props! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-on|ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone,
         Oled::Zero, kOn9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW1 + " Close",
         kUntouched, kCtlUnloaded},
        {"cmd9-intel-on|ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone,
         Oled::Zero, kOn9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW2 + " Close",
         kFirstOnly, kCtlUnloaded},
        {"cmd9-intel-on|ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone,
         Oled::Zero, kOn9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpen + " " + kEdOnW3 + " Close", kOnTwo, kCtlUnloaded},
        {"cmd9-intel-on|ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone,
         Oled::Zero, kOn9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpen + " " + kEdOnW4 + " Close", kOnThree, kCtlUnloaded},
        {"cmd9-intel-on|ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone,
         Oled::Zero, kOn9, kOk, kFalse, {kVerifyFailed, SessionFailed(kUninitialized)}, Oled::Zero,
         kOpen + " " + kEdOnR + " Close", kPanelOn, kCtlUnloaded},
        {"cmd9-intel-on|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kTrue, {}, Oled::One, kOpen + " " + kEdOn + " Close!", kPanelOn, kCtlLoaded},

        // ---- 9 SetIntelElp, "BValue": false: DisableEd under the setter's lock.
        {"cmd9-intel-off|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::One, kOff9,
         kDeviceError, kEmpty, {}, Oled::Zero, "", kUntouched, kCtlUnloaded},
        {"cmd9-intel-off|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::One, kOff9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Dev! Close!", kUntouched, kCtlLoaded},
        {"cmd9-intel-off|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::One, kOff9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Init", kUntouched, kCtlLoaded},
        {"cmd9-intel-off|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, kOff9,
         kDeviceError, kEmpty, {}, Oled::Zero, "Init! Close!", kUntouched, kCtlLoaded},
        {"cmd9-intel-off|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::One, kOff9, kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-off|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::One, kOff9, kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", kUntouched,
         kCtlUnloaded},
        {"cmd9-intel-off|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-off|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, kOff9,
         kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::Zero, "Init Dev Dev Out Out! Props! Close", kUntouched,
         kCtlUnloaded},
        {"cmd9-intel-off|ctlGetDisplayProperties|error", kIntelOff, "",
         {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, {}, Oled::Zero, kOpen + " Props! Close", kUntouched, kCtlUnloaded},
        {"cmd9-intel-off|ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone,
         Oled::One, kOff9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW1 + " Close",
         kUntouched, kCtlUnloaded},
        {"cmd9-intel-off|ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone,
         Oled::One, kOff9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero, kOpen + " " + kEdW2 + " Close",
         kFirstOnly, kCtlUnloaded},
        {"cmd9-intel-off|ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone,
         Oled::One, kOff9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpen + " " + kEdOffW3 + " Close", kOffTwo, kCtlUnloaded},
        {"cmd9-intel-off|ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone,
         Oled::One, kOff9, kOk, kFalse, AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpen + " " + kEdOffW4 + " Close", kOffThree, kCtlUnloaded},
        {"cmd9-intel-off|ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone,
         Oled::One, kOff9, kOk, kFalse, {kVerifyFailed, SessionFailed(kUninitialized)}, Oled::Zero,
         kOpen + " " + kEdOffR + " Close", kPanelOff, kCtlUnloaded},
        {"cmd9-intel-off|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, kOff9,
         kOk, kTrue, {}, Oled::Zero, kOpen + " " + kEdOff + " Close!", kPanelOff, kCtlLoaded},

        // ---- Display on, "OLED" = 1: EnableEdForEvent. Its session is not closed when it
        // cannot be opened; it answers and stores nothing.
        {"event-intel|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "", kUntouched, kCtlUnloaded},
        {"event-intel|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "Dev!", kUntouched, kCtlLoaded},
        {"event-intel|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "Init", kUntouched, kCtlLoaded},
        {"event-intel|ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "Init!", kUntouched, kCtlLoaded},
        {"event-intel|ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn, Oled::One, "Init Dev!", kUntouched, kCtlLoaded},
        {"event-intel|ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn, Oled::One, "Init Dev Dev!", kUntouched, kCtlLoaded},
        {"event-intel|ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         Oled::One, "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        {"event-intel|ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + Lines{OutputsFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out Out! Props! Close", kUntouched, kCtlUnloaded},
        {"event-intel|ctlGetDisplayProperties|error", kIntelOff, "",
         {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, kOpen + " Props! Close", kUntouched, kCtlUnloaded},
        {"event-intel|ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone,
         Oled::One, kEvent, kOk, kNoResponse, kEventOn + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpen + " " + kEdW1 + " Close", kUntouched, kCtlUnloaded},
        {"event-intel|ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone,
         Oled::One, kEvent, kOk, kNoResponse, kEventOn + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpen + " " + kEdW2 + " Close", kFirstOnly, kCtlUnloaded},
        {"event-intel|ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone,
         Oled::One, kEvent, kOk, kNoResponse, kEventOn + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpen + " " + kEdOnW3 + " Close", kOnTwo, kCtlUnloaded},
        {"event-intel|ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone,
         Oled::One, kEvent, kOk, kNoResponse, kEventOn + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpen + " " + kEdOnW4 + " Close", kOnThree, kCtlUnloaded},
        {"event-intel|ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone,
         Oled::One, kEvent, kOk, kNoResponse, kEventOn + Lines{kVerifyFailed, SessionFailed(kUninitialized)},
         Oled::One, kOpen + " " + kEdOnR + " Close", kPanelOn, kCtlUnloaded},
        {"event-intel|ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, kOpen + " " + kEdOn + " Close!", kPanelOn, kCtlLoaded},
    };
}

// Commands 11 and 12 on Intel: the OPST switch, then (only when it did not fail to set up) the
// Ed switch, each with a session of its own. nth counts across both sessions.
const std::string kOpstDone = kOpen + " " + kSwitch + " Close";
const std::string kEdOnDone = kOpen + " " + kEdOn + " Close";
const std::string kEdOffDone = kOpen + " " + kEdOff + " Close";

std::vector<FaultRow> CompositeIntelRows()
{
    return {
        // ---- 11 SetOLEDPowerSaveON: EnableOpst, then EnableEd.
        {"cmd11-intel|ControlLib.dll|missing", kIntelOff, kNoControlLib, {}, kNone, Oled::Absent, Cmd(11),
         kOk, kEmpty, {}, Oled::Absent, "", "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ctlInit|missing", kIntelOff, kNoInit, {}, kNone, Oled::Absent, Cmd(11),
         kOk, kEmpty, {}, Oled::Absent, "Dev! Close!", "OPST=0 " + kUntouched, kCtlLoaded},
        {"cmd11-intel|forwarded entry points|missing", kIntelOff, kInitOnly, {}, kNone, Oled::Absent, Cmd(11),
         kOk, kEmpty, {}, Oled::Absent, "Init", "OPST=0 " + kUntouched, kCtlLoaded},
        {"cmd11-intel|opst:ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::Absent,
         Cmd(11), kOk, kEmpty, {}, Oled::Absent, "Init! Close!", "OPST=0 " + kUntouched, kCtlLoaded},
        {"cmd11-intel|opst:ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::Absent, Cmd(11), kOk, kEmpty, {}, Oled::Absent, "Init Dev! Close", "OPST=0 " + kUntouched,
         kCtlUnloaded},
        {"cmd11-intel|opst:ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::Absent, Cmd(11), kOk, kEmpty, {}, Oled::Absent, "Init Dev Dev! Close", "OPST=0 " + kUntouched,
         kCtlUnloaded},
        {"cmd11-intel|opst:ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out! Close " + kEdOnDone, "OPST=0 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|opst:ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::One, "Init Dev Dev Out Out! Caps! Get! Close " + kEdOnDone, "OPST=0 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|opst:ctlGetPowerOptimizationCaps|error", kIntelOff, "",
         {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Caps! Get Close " + kEdOnDone, "OPST=0 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|opst:ctlGetPowerOptimizationSetting#probe|error", kIntelOff, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::One,
         kOpen + " Caps Get! Close " + kEdOnDone, "OPST=0 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|opst:ctlSetPowerOptimizationSetting|error", kIntelOff, "",
         {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {kOpstSupported}, Oled::One, kOpen + " Caps Get Set! Get Close " + kEdOnDone,
         "OPST=0 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|opst:ctlGetPowerOptimizationSetting#read-back|error", kIntelOff, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, kNone, Oled::Absent, Cmd(11),
         kOk, kFalseTrue, {kOpstSupported, SessionFailed(kNotImplemented)}, Oled::One,
         kOpen + " Caps Get Set Get! Close " + kEdOnDone, "OPST=1 " + kPanelOn, kCtlUnloaded},
        // The first session's library stays loaded; the second reuses it and unloads it.
        {"cmd11-intel|opst:ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::Absent,
         Cmd(11), kOk, kTrueTrue, {kOpstSupported}, Oled::One, kOpen + " " + kSwitch + " Close! " + kEdOnDone,
         "OPST=1 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|ed:ctlInit|error", kIntelOff, "", {{"ctlInit", kUnsupportedVersion, 2}}, kNone, Oled::Absent,
         Cmd(11), kOk, kTrue, {kOpstSupported}, Oled::One, kOpstDone + " Init! Close!", "OPST=1 " + kUntouched,
         kCtlLoaded},
        {"cmd11-intel|ed:ctlEnumerateDevices#count|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 3}},
         kNone, Oled::Absent, Cmd(11), kOk, kTrue, {kOpstSupported}, Oled::One, kOpstDone + " Init Dev! Close",
         "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlEnumerateDevices#list|error", kIntelOff, "", {{"ctlEnumerateDevices", kUninitialized, 4}},
         kNone, Oled::Absent, Cmd(11), kOk, kTrue, {kOpstSupported}, Oled::One, kOpstDone + " Init Dev Dev! Close",
         "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlEnumerateDisplayOutputs#count|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 3}}, kNone, Oled::Absent, Cmd(11),
         kOk, kTrueFalse, {kOpstSupported, OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         Oled::One, kOpstDone + " Init Dev Dev Out! Close", "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlEnumerateDisplayOutputs#list|error", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 4}}, kNone, Oled::Absent, Cmd(11),
         kOk, kTrueFalse, {kOpstSupported, OutputsFailed(kInvalidArgument)}, Oled::One,
         kOpstDone + " Init Dev Dev Out Out! Props! Close", "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlGetDisplayProperties|error", kIntelOff, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::Absent, Cmd(11), kOk, kTrueFalse, {kOpstSupported}, Oled::One,
         kOpstDone + " " + kOpen + " Props! Close", "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlAUXAccess#write1|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone,
         Oled::Absent, Cmd(11), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpstDone + " " + kOpen + " " + kEdW1 + " Close", "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd11-intel|ed:ctlAUXAccess#write2|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone,
         Oled::Absent, Cmd(11), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpstDone + " " + kOpen + " " + kEdW2 + " Close", "OPST=1 " + kFirstOnly, kCtlUnloaded},
        {"cmd11-intel|ed:ctlAUXAccess#write3|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone,
         Oled::Absent, Cmd(11), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpstDone + " " + kOpen + " " + kEdOnW3 + " Close", "OPST=1 " + kOnTwo, kCtlUnloaded},
        {"cmd11-intel|ed:ctlAUXAccess#write4|error", kIntelOff, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone,
         Oled::Absent, Cmd(11), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::One,
         kOpstDone + " " + kOpen + " " + kEdOnW4 + " Close", "OPST=1 " + kOnThree, kCtlUnloaded},
        {"cmd11-intel|ed:ctlAUXAccess#read-back|error", kIntelOff, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone,
         Oled::Absent, Cmd(11), kOk, kTrueFalse, {kOpstSupported, kVerifyFailed, SessionFailed(kUninitialized)},
         Oled::One, kOpstDone + " " + kOpen + " " + kEdOnR + " Close", "OPST=1 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|ed:ctlClose|error", kIntelOff, "", {{"ctlClose", kInvalidArgument, 2}}, kNone, Oled::Absent,
         Cmd(11), kOk, kTrueTrue, {kOpstSupported}, Oled::One, kOpstDone + " " + kOpen + " " + kEdOn + " Close!",
         "OPST=1 " + kPanelOn, kCtlLoaded},

        // ---- 12 SetOLEDPowerSaveOFF: DisableOpst, then DisableEd (which records 0 first).
        {"cmd12-intel|ControlLib.dll|missing", kIntelOn, kNoControlLib, {}, kNone, Oled::One, Cmd(12),
         kOk, kEmpty, {}, Oled::One, "", "OPST=1 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ctlInit|missing", kIntelOn, kNoInit, {}, kNone, Oled::One, Cmd(12),
         kOk, kEmpty, {}, Oled::One, "Dev! Close!", "OPST=1 " + kUntouched, kCtlLoaded},
        {"cmd12-intel|forwarded entry points|missing", kIntelOn, kInitOnly, {}, kNone, Oled::One, Cmd(12),
         kOk, kEmpty, {}, Oled::One, "Init", "OPST=1 " + kUntouched, kCtlLoaded},
        {"cmd12-intel|opst:ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 1}}, kNone, Oled::One,
         Cmd(12), kOk, kEmpty, {}, Oled::One, "Init! Close!", "OPST=1 " + kUntouched, kCtlLoaded},
        {"cmd12-intel|opst:ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 1}},
         kNone, Oled::One, Cmd(12), kOk, kEmpty, {}, Oled::One, "Init Dev! Close", "OPST=1 " + kUntouched,
         kCtlUnloaded},
        {"cmd12-intel|opst:ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 2}},
         kNone, Oled::One, Cmd(12), kOk, kEmpty, {}, Oled::One, "Init Dev Dev! Close", "OPST=1 " + kUntouched,
         kCtlUnloaded},
        {"cmd12-intel|opst:ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out! Close " + kEdOffDone, "OPST=1 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         Oled::Zero, "Init Dev Dev Out Out! Caps! Get! Close " + kEdOffDone, "OPST=1 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlGetPowerOptimizationCaps|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::Zero,
         kOpen + " Caps! Get Close " + kEdOffDone, "OPST=1 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlGetPowerOptimizationSetting#probe|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {kOpstNotSupported, SessionFailed(kUnsupportedFeature)}, Oled::Zero,
         kOpen + " Caps Get! Close " + kEdOffDone, "OPST=1 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlSetPowerOptimizationSetting|error", kIntelOn, "",
         {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {kOpstSupported}, Oled::Zero, kOpen + " Caps Get Set! Get Close " + kEdOffDone,
         "OPST=1 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlGetPowerOptimizationSetting#read-back|error", kIntelOn, "",
         {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, {kOpstSupported, SessionFailed(kNotImplemented)}, Oled::Zero,
         kOpen + " Caps Get Set Get! Close " + kEdOffDone, "OPST=0 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|opst:ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 1}}, kNone, Oled::One,
         Cmd(12), kOk, kTrueTrue, {kOpstSupported}, Oled::Zero, kOpen + " " + kSwitch + " Close! " + kEdOffDone,
         "OPST=0 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|ed:ctlInit|error", kIntelOn, "", {{"ctlInit", kUnsupportedVersion, 2}}, kNone, Oled::One,
         Cmd(12), kOk, kTrue, {kOpstSupported}, Oled::Zero, kOpstDone + " Init! Close!", "OPST=0 " + kUntouched,
         kCtlLoaded},
        {"cmd12-intel|ed:ctlEnumerateDevices#count|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 3}},
         kNone, Oled::One, Cmd(12), kOk, kTrue, {kOpstSupported}, Oled::Zero, kOpstDone + " Init Dev! Close",
         "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlEnumerateDevices#list|error", kIntelOn, "", {{"ctlEnumerateDevices", kUninitialized, 4}},
         kNone, Oled::One, Cmd(12), kOk, kTrue, {kOpstSupported}, Oled::Zero, kOpstDone + " Init Dev Dev! Close",
         "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlEnumerateDisplayOutputs#count|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 3}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, {kOpstSupported, OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         Oled::Zero, kOpstDone + " Init Dev Dev Out! Close", "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlEnumerateDisplayOutputs#list|error", kIntelOn, "",
         {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 4}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, {kOpstSupported, OutputsFailed(kInvalidArgument)}, Oled::Zero,
         kOpstDone + " Init Dev Dev Out Out! Props! Close", "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlGetDisplayProperties|error", kIntelOn, "", {{"ctlGetDisplayProperties", kInvalidArgument, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueFalse, {kOpstSupported}, Oled::Zero,
         kOpstDone + " " + kOpen + " Props! Close", "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlAUXAccess#write1|error", kIntelOn, "", {{"ctlAUXAccess", kInvalidArgument, 1}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpstDone + " " + kOpen + " " + kEdW1 + " Close", "OPST=0 " + kUntouched, kCtlUnloaded},
        {"cmd12-intel|ed:ctlAUXAccess#write2|error", kIntelOn, "", {{"ctlAUXAccess", kInvalidArgument, 2}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpstDone + " " + kOpen + " " + kEdW2 + " Close", "OPST=0 " + kFirstOnly, kCtlUnloaded},
        {"cmd12-intel|ed:ctlAUXAccess#write3|error", kIntelOn, "", {{"ctlAUXAccess", kInvalidArgument, 3}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpstDone + " " + kOpen + " " + kEdOffW3 + " Close", "OPST=0 " + kOffTwo, kCtlUnloaded},
        {"cmd12-intel|ed:ctlAUXAccess#write4|error", kIntelOn, "", {{"ctlAUXAccess", kInvalidArgument, 4}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueFalse, Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), Oled::Zero,
         kOpstDone + " " + kOpen + " " + kEdOffW4 + " Close", "OPST=0 " + kOffThree, kCtlUnloaded},
        {"cmd12-intel|ed:ctlAUXAccess#read-back|error", kIntelOn, "", {{"ctlAUXAccess", kUninitialized, 5}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueFalse, {kOpstSupported, kVerifyFailed, SessionFailed(kUninitialized)},
         Oled::Zero, kOpstDone + " " + kOpen + " " + kEdOffR + " Close", "OPST=0 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|ed:ctlClose|error", kIntelOn, "", {{"ctlClose", kInvalidArgument, 2}}, kNone, Oled::One,
         Cmd(12), kOk, kTrueTrue, {kOpstSupported}, Oled::Zero, kOpstDone + " " + kOpen + " " + kEdOff + " Close!",
         "OPST=0 " + kPanelOff, kCtlLoaded},
    };
}

// ADL's native AUX channel, one WriteAuxDataAmd call: command 9 on AMD (SetAmdElp), the ADL half
// of commands 11 and 12 on AMD, and the display-power event on AMD. Every failure answers false
// with its own line, except the calls whose result is not looked at: a failed adapter list
// leaves zeroed records (adapter index 0, which is this machine's), a rejected AUX write or a
// failed destroy go unnoticed.
const Lines kAdlNotFound = {L"I:ADL library not found!"};
const Lines kAdlApiMissing = {L"I:ADL2's API is missing!"};
const Lines kAdlAuxMissing = {L"I:ADL2_Display_NativeAUXChannel_Access API is missing!"};
const Lines kAdlNoEdidApi = {L"I:nAdapter count=1", L"I:display count=1", L"I:EDID API is NULL"};
const Lines kAdlInitError = {L"I:ADL Initialization Error!"};
const Lines kAdlNoCount = {L"I:Cannot get the number of adapters!"};
const Lines kAdlCounted = {L"I:nAdapter count=1"};
const Lines kAdlListed = {L"I:nAdapter count=1", L"I:display count=1"};

const std::string kAdlOnFallback =
    "atiadlxy.dll:Create atiadlxy.dll:Count atiadlxy.dll:Adapters atiadlxy.dll:Disp atiadlxy.dll:Edid "
    "atiadlxy.dll:W045C=06 atiadlxy.dll:W0454=18 atiadlxy.dll:W0453=41 atiadlxy.dll:W045A=C0 atiadlxy.dll:W045B=40 "
    "atiadlxy.dll:Destroy";
const std::string kAdlOffFallback =
    "atiadlxy.dll:Create atiadlxy.dll:Count atiadlxy.dll:Adapters atiadlxy.dll:Disp atiadlxy.dll:Edid "
    "atiadlxy.dll:W045C=06 atiadlxy.dll:W0454=18 atiadlxy.dll:W0453=41 atiadlxy.dll:W045A=00 atiadlxy.dll:W045B=40 "
    "atiadlxy.dll:Destroy";
const std::string kAdlWithoutEdid = "Create Count Adapters Disp Destroy";
const std::string kAdlOnAdaptersFailed =
    "Create Count Adapters! Disp Edid W045C=06 W0454=18 W0453=41 W045A=C0 W045B=40 Destroy";
const std::string kAdlOffAdaptersFailed =
    "Create Count Adapters! Disp Edid W045C=06 W0454=18 W0453=41 W045A=00 W045B=40 Destroy";
const std::string kAdlDispFailed = "Create Count Adapters Disp! Destroy";
const std::string kAdlEdidFailed = "Create Count Adapters Disp Edid! Destroy";
const std::string kAdlOnAux4Failed = "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=C0! W045B=40 Destroy";
const std::string kAdlOffAux4Failed =
    "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=00! W045B=40 Destroy";
const std::string kAdlOnDestroyFailed =
    "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=C0 W045B=40 Destroy!";
const std::string kAdlOffDestroyFailed =
    "Create Count Adapters Disp Edid W045C=06 W0454=18 W0453=41 W045A=00 W045B=40 Destroy!";
// The fourth write (the one byte that differs between the states) was rejected.
const std::string kAmdOnMissed4 = "A045C=06 A0454=18 A0453=41 A045A=00 A045B=40";
const std::string kAmdOffMissed4 = "A045C=06 A0454=18 A0453=41 A045A=C0 A045B=40";

std::vector<FaultRow> AdlRows()
{
    return {
        // ---- 9 SetAmdElp, "BValue": true: records 1 only when a display of the panel was written.
        {"cmd9-amd-on|atiadlxx.dll+atiadlxy.dll|missing", kAmdM, kNoAdl, {}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlNotFound, Oled::Zero, "", kAmdUntouchedOff, kAdlUnloaded},
        {"cmd9-amd-on|atiadlxx.dll|missing", kAmdM, kAdlFallback, {}, kNone, Oled::Zero, kOn9,
         kOk, kTrue, kAdlWrote, Oled::One, kAdlOnFallback, kAmdOn, "-atiadlxy.dll -amdadlx64.dll"},
        {"cmd9-amd-on|ADL2_Display_DisplayInfo_Get|missing", kAmdM, kAdlNoDisplayInfo, {}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlApiMissing, Oled::Zero, "", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Display_NativeAUXChannel_Access|missing", kAmdM, kAdlNoAux, {}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlAuxMissing, Oled::Zero, "", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Display_EdidData_Get|missing", kAmdM, kAdlNoEdid, {}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlNoEdidApi, Oled::Zero, kAdlWithoutEdid, kAmdUntouchedOff, kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Main_Control_Create|error", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlError, 1}},
         kNone, Oled::Zero, kOn9, kOk, kFalse, kAdlInitError, Oled::Zero, "Create!", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Main_Control_Create|warning", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlWarning, 1}},
         kNone, Oled::Zero, kOn9, kOk, kFalse, kAdlInitError, Oled::Zero, "Create!", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|error", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlNoCount, Oled::Zero, "Create Count!", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|warning", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlNoCount, Oled::Zero, "Create Count!", kAmdUntouchedOff, kAdlStopped},
        {"cmd9-amd-on|ADL2_Adapter_AdapterInfo_Get|error", kAmdM, "",
         {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kTrue, kAdlWrote, Oled::One, kAdlOnAdaptersFailed, kAmdOn, kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Display_DisplayInfo_Get|error", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlCounted, Oled::Zero, kAdlDispFailed, kAmdUntouchedOff, kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Display_DisplayInfo_Get|warning", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlCounted, Oled::Zero, kAdlDispFailed, kAmdUntouchedOff, kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Display_EdidData_Get|error", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlError, 1}},
         kNone, Oled::Zero, kOn9, kOk, kFalse, kAdlListed, Oled::Zero, kAdlEdidFailed, kAmdUntouchedOff,
         kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Display_EdidData_Get|warning", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}},
         kNone, Oled::Zero, kOn9, kOk, kFalse, kAdlListed, Oled::Zero, kAdlEdidFailed, kAmdUntouchedOff,
         kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Display_NativeAUXChannel_Access|error", kAmdM, "",
         {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, kNone, Oled::Zero, kOn9,
         kOk, kTrue, kAdlWrote, Oled::One, kAdlOnAux4Failed, kAmdOnMissed4, kAdlUnloaded},
        {"cmd9-amd-on|ADL2_Main_Control_Destroy|error", kAmdM, "", {{"ADL2_Main_Control_Destroy", kAdlError, 1}},
         kNone, Oled::Zero, kOn9, kOk, kTrue, kAdlWrote, Oled::One, kAdlOnDestroyFailed, kAmdOn, kAdlUnloaded},

        // ---- 9 SetAmdElp, "BValue": false: records 0 only when a display of the panel was written.
        {"cmd9-amd-off|atiadlxx.dll+atiadlxy.dll|missing", kAmdOnM, kNoAdl, {}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlNotFound, Oled::One, "", kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|atiadlxx.dll|missing", kAmdOnM, kAdlFallback, {}, kNone, Oled::One, kOff9,
         kOk, kTrue, kAdlWrote, Oled::Zero, kAdlOffFallback, kAmdOff, "-atiadlxy.dll -amdadlx64.dll"},
        {"cmd9-amd-off|ADL2_Display_DisplayInfo_Get|missing", kAmdOnM, kAdlNoDisplayInfo, {}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlApiMissing, Oled::One, "", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Display_NativeAUXChannel_Access|missing", kAmdOnM, kAdlNoAux, {}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlAuxMissing, Oled::One, "", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Display_EdidData_Get|missing", kAmdOnM, kAdlNoEdid, {}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlNoEdidApi, Oled::One, kAdlWithoutEdid, kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Main_Control_Create|error", kAmdOnM, "", {{"ADL2_Main_Control_Create", kAdlError, 1}},
         kNone, Oled::One, kOff9, kOk, kFalse, kAdlInitError, Oled::One, "Create!", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Main_Control_Create|warning", kAmdOnM, "", {{"ADL2_Main_Control_Create", kAdlWarning, 1}},
         kNone, Oled::One, kOff9, kOk, kFalse, kAdlInitError, Oled::One, "Create!", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Adapter_NumberOfAdapters_Get|error", kAmdOnM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlNoCount, Oled::One, "Create Count!", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Adapter_NumberOfAdapters_Get|warning", kAmdOnM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlNoCount, Oled::One, "Create Count!", kAmdUntouchedOn, kAdlStopped},
        {"cmd9-amd-off|ADL2_Adapter_AdapterInfo_Get|error", kAmdOnM, "",
         {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, kNone, Oled::One, kOff9,
         kOk, kTrue, kAdlWrote, Oled::Zero, kAdlOffAdaptersFailed, kAmdOff, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Display_DisplayInfo_Get|error", kAmdOnM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlCounted, Oled::One, kAdlDispFailed, kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Display_DisplayInfo_Get|warning", kAmdOnM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, kNone, Oled::One, kOff9,
         kOk, kFalse, kAdlCounted, Oled::One, kAdlDispFailed, kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Display_EdidData_Get|error", kAmdOnM, "", {{"ADL2_Display_EdidData_Get", kAdlError, 1}},
         kNone, Oled::One, kOff9, kOk, kFalse, kAdlListed, Oled::One, kAdlEdidFailed, kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Display_EdidData_Get|warning", kAmdOnM, "", {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}},
         kNone, Oled::One, kOff9, kOk, kFalse, kAdlListed, Oled::One, kAdlEdidFailed, kAmdUntouchedOn, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Display_NativeAUXChannel_Access|error", kAmdOnM, "",
         {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, kNone, Oled::One, kOff9,
         kOk, kTrue, kAdlWrote, Oled::Zero, kAdlOffAux4Failed, kAmdOffMissed4, kAdlUnloaded},
        {"cmd9-amd-off|ADL2_Main_Control_Destroy|error", kAmdOnM, "", {{"ADL2_Main_Control_Destroy", kAdlError, 1}},
         kNone, Oled::One, kOff9, kOk, kTrue, kAdlWrote, Oled::Zero, kAdlOffDestroyFailed, kAmdOff, kAdlUnloaded},

        // ---- 11 SetOLEDPowerSaveON on AMD, its ADL half: VariBright went on in maximise-battery
        // mode; only SetAmdElp's "result" is in the response.
        {"cmd11-amd|atiadlxx.dll+atiadlxy.dll|missing", kAmdM, kNoAdl, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlNotFound, Oled::Zero, kAdlxOn, kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|atiadlxx.dll|missing", kAmdM, kAdlFallback, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, kAdlxOn + " " + kAdlOnFallback, kAmdOn + " VB=1 MODE=maximizeBattery",
         "+amdadlx64.dll -atiadlxy.dll"},
        {"cmd11-amd|ADL2_Display_DisplayInfo_Get|missing", kAmdM, kAdlNoDisplayInfo, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlApiMissing, Oled::Zero, kAdlxOn, kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Display_NativeAUXChannel_Access|missing", kAmdM, kAdlNoAux, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlAuxMissing, Oled::Zero, kAdlxOn, kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Display_EdidData_Get|missing", kAmdM, kAdlNoEdid, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlNoEdidApi, Oled::Zero, kAdlxOn + " " + kAdlWithoutEdid,
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Main_Control_Create|error", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlError, 1}},
         kNone, Oled::Zero, Cmd(11), kOk, kFalse, kAdlInitError, Oled::Zero, kAdlxOn + " Create!",
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Main_Control_Create|warning", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlWarning, 1}},
         kNone, Oled::Zero, Cmd(11), kOk, kFalse, kAdlInitError, Oled::Zero, kAdlxOn + " Create!",
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Adapter_NumberOfAdapters_Get|error", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlNoCount, Oled::Zero, kAdlxOn + " Create Count!",
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlNoCount, Oled::Zero, kAdlxOn + " Create Count!",
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", "+amdadlx64.dll"},
        {"cmd11-amd|ADL2_Adapter_AdapterInfo_Get|error", kAmdM, "",
         {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, kAdlxOn + " " + kAdlOnAdaptersFailed,
         kAmdOn + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Display_DisplayInfo_Get|error", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlCounted, Oled::Zero, kAdlxOn + " " + kAdlDispFailed,
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Display_DisplayInfo_Get|warning", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalse, kAdlCounted, Oled::Zero, kAdlxOn + " " + kAdlDispFailed,
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Display_EdidData_Get|error", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlError, 1}},
         kNone, Oled::Zero, Cmd(11), kOk, kFalse, kAdlListed, Oled::Zero, kAdlxOn + " " + kAdlEdidFailed,
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Display_EdidData_Get|warning", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}},
         kNone, Oled::Zero, Cmd(11), kOk, kFalse, kAdlListed, Oled::Zero, kAdlxOn + " " + kAdlEdidFailed,
         kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Display_NativeAUXChannel_Access|error", kAmdM, "",
         {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, kAdlxOn + " " + kAdlOnAux4Failed,
         kAmdOnMissed4 + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADL2_Main_Control_Destroy|error", kAmdM, "", {{"ADL2_Main_Control_Destroy", kAdlError, 1}},
         kNone, Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, kAdlxOn + " " + kAdlOnDestroyFailed,
         kAmdOn + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},

        // ---- 12 SetOLEDPowerSaveOFF on AMD, its ADL half: VariBright went off; the response holds
        // this handler's "result": true, then SetAmdElp's.
        {"cmd12-amd|atiadlxx.dll+atiadlxy.dll|missing", kAmdOnM, kNoAdl, {}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlNotFound, Oled::One, kAdlxOff, kAmdUntouchedOn + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|atiadlxx.dll|missing", kAmdOnM, kAdlFallback, {}, kNone, Oled::One, Cmd(12),
         kOk, kTrueTrue, kAdlWrote, Oled::Zero, kAdlxOff + " " + kAdlOffFallback, kAmdOff + " VB=0",
         "+amdadlx64.dll -atiadlxy.dll"},
        {"cmd12-amd|ADL2_Display_DisplayInfo_Get|missing", kAmdOnM, kAdlNoDisplayInfo, {}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlApiMissing, Oled::One, kAdlxOff, kAmdUntouchedOn + " VB=0", "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Display_NativeAUXChannel_Access|missing", kAmdOnM, kAdlNoAux, {}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlAuxMissing, Oled::One, kAdlxOff, kAmdUntouchedOn + " VB=0", "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Display_EdidData_Get|missing", kAmdOnM, kAdlNoEdid, {}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlNoEdidApi, Oled::One, kAdlxOff + " " + kAdlWithoutEdid, kAmdUntouchedOn + " VB=0",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Main_Control_Create|error", kAmdOnM, "", {{"ADL2_Main_Control_Create", kAdlError, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueFalse, kAdlInitError, Oled::One, kAdlxOff + " Create!",
         kAmdUntouchedOn + " VB=0", "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Main_Control_Create|warning", kAmdOnM, "", {{"ADL2_Main_Control_Create", kAdlWarning, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueFalse, kAdlInitError, Oled::One, kAdlxOff + " Create!",
         kAmdUntouchedOn + " VB=0", "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Adapter_NumberOfAdapters_Get|error", kAmdOnM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlNoCount, Oled::One, kAdlxOff + " Create Count!", kAmdUntouchedOn + " VB=0",
         "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", kAmdOnM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlNoCount, Oled::One, kAdlxOff + " Create Count!", kAmdUntouchedOn + " VB=0",
         "+amdadlx64.dll"},
        {"cmd12-amd|ADL2_Adapter_AdapterInfo_Get|error", kAmdOnM, "",
         {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueTrue, kAdlWrote, Oled::Zero, kAdlxOff + " " + kAdlOffAdaptersFailed, kAmdOff + " VB=0",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Display_DisplayInfo_Get|error", kAmdOnM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlCounted, Oled::One, kAdlxOff + " " + kAdlDispFailed, kAmdUntouchedOn + " VB=0",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Display_DisplayInfo_Get|warning", kAmdOnM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueFalse, kAdlCounted, Oled::One, kAdlxOff + " " + kAdlDispFailed, kAmdUntouchedOn + " VB=0",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Display_EdidData_Get|error", kAmdOnM, "", {{"ADL2_Display_EdidData_Get", kAdlError, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueFalse, kAdlListed, Oled::One, kAdlxOff + " " + kAdlEdidFailed,
         kAmdUntouchedOn + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Display_EdidData_Get|warning", kAmdOnM, "", {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueFalse, kAdlListed, Oled::One, kAdlxOff + " " + kAdlEdidFailed,
         kAmdUntouchedOn + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Display_NativeAUXChannel_Access|error", kAmdOnM, "",
         {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, kNone, Oled::One, Cmd(12),
         kOk, kTrueTrue, kAdlWrote, Oled::Zero, kAdlxOff + " " + kAdlOffAux4Failed, kAmdOffMissed4 + " VB=0",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADL2_Main_Control_Destroy|error", kAmdOnM, "", {{"ADL2_Main_Control_Destroy", kAdlError, 1}},
         kNone, Oled::One, Cmd(12), kOk, kTrueTrue, kAdlWrote, Oled::Zero, kAdlxOff + " " + kAdlOffDestroyFailed,
         kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},

        // ---- Display on, "OLED" = 1, on AMD: the "on" list re-sent; nothing stored either way.
        {"event-amd|atiadlxx.dll+atiadlxy.dll|missing", kAmdM, kNoAdl, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlNotFound, Oled::One, "", kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|atiadlxx.dll|missing", kAmdM, kAdlFallback, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlWrote, Oled::One, kAdlOnFallback, kAmdOn, "-atiadlxy.dll -amdadlx64.dll"},
        {"event-amd|ADL2_Display_DisplayInfo_Get|missing", kAmdM, kAdlNoDisplayInfo, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlApiMissing, Oled::One, "", kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Display_NativeAUXChannel_Access|missing", kAmdM, kAdlNoAux, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlAuxMissing, Oled::One, "", kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Display_EdidData_Get|missing", kAmdM, kAdlNoEdid, {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlNoEdidApi, Oled::One, kAdlWithoutEdid, kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|ADL2_Main_Control_Create|error", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlError, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlInitError, Oled::One, "Create!",
         kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Main_Control_Create|warning", kAmdM, "", {{"ADL2_Main_Control_Create", kAdlWarning, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlInitError, Oled::One, "Create!",
         kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Adapter_NumberOfAdapters_Get|error", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlNoCount, Oled::One, "Create Count!", kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlNoCount, Oled::One, "Create Count!", kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Adapter_AdapterInfo_Get|error", kAmdM, "", {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlWrote, Oled::One, kAdlOnAdaptersFailed, kAmdOn,
         kAdlUnloaded},
        {"event-amd|ADL2_Display_DisplayInfo_Get|error", kAmdM, "", {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlCounted, Oled::One, kAdlDispFailed,
         kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|ADL2_Display_DisplayInfo_Get|warning", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlCounted, Oled::One, kAdlDispFailed, kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|ADL2_Display_EdidData_Get|error", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlError, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlListed, Oled::One, kAdlEdidFailed,
         kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|ADL2_Display_EdidData_Get|warning", kAmdM, "", {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlListed, Oled::One, kAdlEdidFailed,
         kAmdUntouchedOff, kAdlUnloaded},
        {"event-amd|ADL2_Display_NativeAUXChannel_Access|error", kAmdM, "",
         {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlWrote, Oled::One, kAdlOnAux4Failed, kAmdOnMissed4, kAdlUnloaded},
        {"event-amd|ADL2_Main_Control_Destroy|error", kAmdM, "", {{"ADL2_Main_Control_Destroy", kAdlError, 1}},
         kNone, Oled::One, kEvent, kOk, kNoResponse, kEventOn + kAdlWrote, Oled::One, kAdlOnDestroyFailed, kAmdOn,
         kAdlUnloaded},
    };
}

// ADLX: command 10 on AMD, the ADLX half of commands 11 and 12 on AMD, and commands 13 and 14
// (which never initialise ADLX themselves: their rows start with it initialised by command
// 10). ADLX stays loaded after a command unless its display services could not be had.
std::vector<FaultRow> AdlxRows()
{
    return {
        // ---- 10 GetIfOLEDSupport on AMD: initialise, take the first display, ask VariBright.
        {"cmd10-amd|amdadlx64.dll|missing", kAmdM, kNoAdlx, {}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "", "VB=0", "-amdadlx64.dll"},
        // A library without one of the six exports counts as no ADLX, and stays loaded.
        {"cmd10-amd|ADLXInitializeWithIncompatibleDriver|missing", kAmdM, kAdlxNoIncompat, {}, kNone, Oled::Zero,
         Cmd(10), kOk, kFalse, {}, Oled::Zero, "", "VB=0", "+amdadlx64.dll"},
        {"cmd10-amd|ADLXQueryFullVersion|error", kAmdM, "", {{"ADLXQueryFullVersion", kAdlxFail, 1}}, kNone,
         Oled::Zero, Cmd(10), kOk, kTrue, {}, Oled::Zero, "FullVer! Ver XInit Services Displays At VB IsSup", "VB=0",
         "+amdadlx64.dll"},
        {"cmd10-amd|ADLXQueryVersion|error", kAmdM, "", {{"ADLXQueryVersion", kAdlxFail, 1}}, kNone, Oled::Zero,
         Cmd(10), kOk, kTrue, {}, Oled::Zero, "FullVer Ver! XInit Services Displays At VB IsSup", "VB=0",
         "+amdadlx64.dll"},
        {"cmd10-amd|ADLXInitialize|error", kAmdM, "", {{"ADLXInitialize", kAdlxFail, 1}}, kNone, Oled::Zero,
         Cmd(10), kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit!", "VB=0", "+amdadlx64.dll"},
        {"cmd10-amd|ADLXInitialize|already-initialized", kAmdM, "", {}, kAdlxReady, Oled::Zero, Cmd(10),
         kOk, kTrue, {}, Oled::Zero, "FullVer Ver XInit! Services Displays At VB IsSup", "VB=0", "+amdadlx64.dll"},
        // Without display services ADLX is terminated and unloaded.
        {"cmd10-amd|GetDisplaysServices|error", kAmdM, "", {{"GetDisplaysServices", kAdlxFail, 1}}, kNone,
         Oled::Zero, Cmd(10), kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services! XTerm", "VB=0",
         "-amdadlx64.dll"},
        {"cmd10-amd|GetDisplaysServices|success-code", kAmdM, "",
         {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services! XTerm", "VB=0", "-amdadlx64.dll"},
        {"cmd10-amd|ADLXTerminate|error", kAmdM, "",
         {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services! XTerm!", "VB=0", "-amdadlx64.dll"},
        // No list, no display: VariBright is asked for a null display and refused.
        {"cmd10-amd|GetDisplays|error", kAmdM, "", {{"GetDisplays", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services Displays! VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd10-amd|GetDisplays|success-code", kAmdM, "", {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::Zero, Cmd(10), kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services Displays! VB!", "VB=0",
         "+amdadlx64.dll"},
        {"cmd10-amd|At|error", kAmdM, "", {{"At", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services Displays At! VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd10-amd|GetVariBright|error", kAmdM, "", {{"GetVariBright", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services Displays At VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd10-amd|GetVariBright|success-code", kAmdM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::Zero, Cmd(10), kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit Services Displays At VB!", "VB=0",
         "+amdadlx64.dll"},
        // The answer the call did not give stays false.
        {"cmd10-amd|IsSupported|error", kAmdM, "", {{"IsSupported", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, kAdlxQuery + "!", "VB=0", "+amdadlx64.dll"},

        // ---- 11 SetOLEDPowerSaveON on AMD, its ADLX half: a failure skips the ADLX calls after
        // it, and SetAmdElp writes the panel all the same.
        {"cmd11-amd|amdadlx64.dll|missing", kAmdM, kNoAdlx, {}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, kAdlOn, kAmdOn + " VB=0 MODE=balanced", kAdlxUnloadedAdlUnloaded},
        {"cmd11-amd|ADLXInitializeWithIncompatibleDriver|missing", kAmdM, kAdlxNoIncompat, {}, kNone, Oled::Zero,
         Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, kAdlOn, kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADLXQueryFullVersion|error", kAmdM, "", {{"ADLXQueryFullVersion", kAdlxFail, 1}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One,
         "FullVer! Ver XInit Services Displays At VB En=1 VB MaxBat " + kAdlOn, kAmdOn + " VB=1 MODE=maximizeBattery",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADLXQueryVersion|error", kAmdM, "", {{"ADLXQueryVersion", kAdlxFail, 1}}, kNone, Oled::Zero,
         Cmd(11), kOk, kTrue, kAdlWrote, Oled::One,
         "FullVer Ver! XInit Services Displays At VB En=1 VB MaxBat " + kAdlOn, kAmdOn + " VB=1 MODE=maximizeBattery",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADLXInitialize|error", kAmdM, "", {{"ADLXInitialize", kAdlxFail, 1}}, kNone, Oled::Zero,
         Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit! " + kAdlOn, kAmdOn + " VB=0 MODE=balanced",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|ADLXInitialize|already-initialized", kAmdM, "", {}, kAdlxReady, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit! Services Displays At VB En=1 VB MaxBat " + kAdlOn,
         kAmdOn + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetDisplaysServices|error", kAmdM, "", {{"GetDisplaysServices", kAdlxFail, 1}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services! XTerm " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxUnloadedAdlUnloaded},
        {"cmd11-amd|GetDisplaysServices|success-code", kAmdM, "",
         {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services! XTerm " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxUnloadedAdlUnloaded},
        {"cmd11-amd|ADLXTerminate|error", kAmdM, "",
         {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services! XTerm! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxUnloadedAdlUnloaded},
        {"cmd11-amd|GetDisplays|error", kAmdM, "", {{"GetDisplays", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays! VB! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetDisplays|success-code", kAmdM, "", {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays! VB! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|At|error", kAmdM, "", {{"At", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays At! VB! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetVariBright|error", kAmdM, "", {{"GetVariBright", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays At VB! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetVariBright|success-code", kAmdM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays At VB! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|SetEnabled|error", kAmdM, "", {{"SetEnabled", kAdlxFail, 1}}, kNone, Oled::Zero, Cmd(11),
         kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays At VB En=1! " + kAdlOn,
         kAmdOn + " VB=0 MODE=balanced", kAdlxLoadedAdlUnloaded},
        // "Already enabled" is a success: the battery mode is chosen next.
        {"cmd11-amd|SetEnabled|success-code", kAmdM, "", {{"SetEnabled", kAdlxAlreadyEnabled, 1}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One,
         "FullVer Ver XInit Services Displays At VB En=1! VB MaxBat " + kAdlOn, kAmdOn + " VB=0 MODE=maximizeBattery",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetVariBright#2|error", kAmdM, "", {{"GetVariBright", kAdlxFail, 2}}, kNone, Oled::Zero,
         Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, "FullVer Ver XInit Services Displays At VB En=1 VB! " + kAdlOn,
         kAmdOn + " VB=1 MODE=balanced", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|GetVariBright#2|success-code", kAmdM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 2}}, kNone,
         Oled::Zero, Cmd(11), kOk, kTrue, kAdlWrote, Oled::One,
         "FullVer Ver XInit Services Displays At VB En=1 VB! " + kAdlOn, kAmdOn + " VB=1 MODE=balanced",
         kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|SetMaximizeBattery|error", kAmdM, "", {{"SetMaximizeBattery", kAdlxFail, 1}}, kNone, Oled::Zero,
         Cmd(11), kOk, kTrue, kAdlWrote, Oled::One, kAdlxOn + "! " + kAdlOn, kAmdOn + " VB=1 MODE=balanced",
         kAdlxLoadedAdlUnloaded},

        // ---- 12 SetOLEDPowerSaveOFF on AMD, its ADLX half: this handler's "result" says whether
        // VariBright went off; SetAmdElp's follows.
        {"cmd12-amd|amdadlx64.dll|missing", kAmdOnM, kNoAdlx, {}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, kAdlOff, kAmdOff + " VB=1", kAdlxUnloadedAdlUnloaded},
        {"cmd12-amd|ADLXInitializeWithIncompatibleDriver|missing", kAmdOnM, kAdlxNoIncompat, {}, kNone, Oled::One,
         Cmd(12), kOk, kFalseTrue, kAdlWrote, Oled::Zero, kAdlOff, kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADLXQueryFullVersion|error", kAmdOnM, "", {{"ADLXQueryFullVersion", kAdlxFail, 1}}, kNone,
         Oled::One, Cmd(12), kOk, kTrueTrue, kAdlWrote, Oled::Zero,
         "FullVer! Ver XInit Services Displays At VB En=0 " + kAdlOff, kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADLXQueryVersion|error", kAmdOnM, "", {{"ADLXQueryVersion", kAdlxFail, 1}}, kNone, Oled::One,
         Cmd(12), kOk, kTrueTrue, kAdlWrote, Oled::Zero, "FullVer Ver! XInit Services Displays At VB En=0 " + kAdlOff,
         kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADLXInitialize|error", kAmdOnM, "", {{"ADLXInitialize", kAdlxFail, 1}}, kNone, Oled::One,
         Cmd(12), kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit! " + kAdlOff, kAmdOff + " VB=1",
         kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|ADLXInitialize|already-initialized", kAmdOnM, "", {}, kAdlxReady, Oled::One, Cmd(12),
         kOk, kTrueTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit! Services Displays At VB En=0 " + kAdlOff,
         kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|GetDisplaysServices|error", kAmdOnM, "", {{"GetDisplaysServices", kAdlxFail, 1}}, kNone,
         Oled::One, Cmd(12), kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services! XTerm " + kAdlOff,
         kAmdOff + " VB=1", kAdlxUnloadedAdlUnloaded},
        {"cmd12-amd|GetDisplaysServices|success-code", kAmdOnM, "",
         {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services! XTerm " + kAdlOff, kAmdOff + " VB=1",
         kAdlxUnloadedAdlUnloaded},
        {"cmd12-amd|ADLXTerminate|error", kAmdOnM, "",
         {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services! XTerm! " + kAdlOff, kAmdOff + " VB=1",
         kAdlxUnloadedAdlUnloaded},
        {"cmd12-amd|GetDisplays|error", kAmdOnM, "", {{"GetDisplays", kAdlxFail, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services Displays! VB! " + kAdlOff,
         kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|GetDisplays|success-code", kAmdOnM, "", {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::One, Cmd(12), kOk, kFalseTrue, kAdlWrote, Oled::Zero,
         "FullVer Ver XInit Services Displays! VB! " + kAdlOff, kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|At|error", kAmdOnM, "", {{"At", kAdlxFail, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services Displays At! VB! " + kAdlOff,
         kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|GetVariBright|error", kAmdOnM, "", {{"GetVariBright", kAdlxFail, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, "FullVer Ver XInit Services Displays At VB! " + kAdlOff,
         kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|GetVariBright|success-code", kAmdOnM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, kNone,
         Oled::One, Cmd(12), kOk, kFalseTrue, kAdlWrote, Oled::Zero,
         "FullVer Ver XInit Services Displays At VB! " + kAdlOff, kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|SetEnabled|error", kAmdOnM, "", {{"SetEnabled", kAdlxFail, 1}}, kNone, Oled::One, Cmd(12),
         kOk, kFalseTrue, kAdlWrote, Oled::Zero, kAdlxOff + "! " + kAdlOff, kAmdOff + " VB=1", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|SetEnabled|success-code", kAmdOnM, "", {{"SetEnabled", kAdlxAlreadyEnabled, 1}}, kNone, Oled::One,
         Cmd(12), kOk, kTrueTrue, kAdlWrote, Oled::Zero, kAdlxOff + "! " + kAdlOff, kAmdOff + " VB=1",
         kAdlxLoadedAdlUnloaded},

        // ---- 13 GetIfVaribrightSupport and 14 SetVaribright, ADLX initialised beforehand.
        {"cmd13|GetVariBright|error", kAmdM, "", {{"GetVariBright", kAdlxFail, 1}}, kAdlxReady, Oled::Zero, Cmd(13),
         kOk, kFalse, {}, Oled::Zero, "VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd13|GetVariBright|success-code", kAmdM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, kAdlxReady,
         Oled::Zero, Cmd(13), kOk, kFalse, {}, Oled::Zero, "VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd13|IsSupported|error", kAmdM, "", {{"IsSupported", kAdlxFail, 1}}, kAdlxReady, Oled::Zero, Cmd(13),
         kOk, kFalse, {}, Oled::Zero, "VB IsSup!", "VB=0", "+amdadlx64.dll"},
        {"cmd14|GetVariBright|error", kAmdM, "", {{"GetVariBright", kAdlxFail, 1}}, kAdlxReady, Oled::Zero, kOn14,
         kOk, kFalse, {}, Oled::Zero, "VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd14|GetVariBright|success-code", kAmdM, "", {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, kAdlxReady,
         Oled::Zero, kOn14, kOk, kFalse, {}, Oled::Zero, "VB!", "VB=0", "+amdadlx64.dll"},
        {"cmd14|SetEnabled|error", kAmdM, "", {{"SetEnabled", kAdlxFail, 1}}, kAdlxReady, Oled::Zero, kOn14,
         kOk, kFalse, {}, Oled::Zero, "VB En=1!", "VB=0", "+amdadlx64.dll"},
        {"cmd14|SetEnabled|success-code", kAmdM, "", {{"SetEnabled", kAdlxAlreadyEnabled, 1}}, kAdlxReady,
         Oled::Zero, kOn14, kOk, kTrue, {}, Oled::Zero, "VB En=1!", "VB=0", "+amdadlx64.dll"},
    };
}

// The settings store. A writer that cannot open or create the key logs it, then logs the set
// on the null handle that fails too, and answers as if the value had been stored. A reader
// that cannot read a 4-byte DWORD reports off: command 7 with StatusRegistryError, the event
// by doing nothing.
const Lines kEventEntered = {kEventOn[0], kEventOn[1]};

std::vector<FaultRow> RegistryRows()
{
    return {
        // ---- Writers: a key that refuses KEY_SET_VALUE (so the KEY_ALL_ACCESS open fails), and a
        // key that cannot be created under a volatile parent.
        {"cmd1|RegOpenKeyExW|access-denied", kIntelOn, "", {}, kNone, Oled::DenyWrite, Cmd(1),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"5"), Oled::DenyWrite, kOpen + " Caps Get Close",
         "OPST=1", kCtlUnloaded},
        {"cmd1|RegCreateKeyExW|child-must-be-volatile", kIntelOn, "", {}, kNone, Oled::VolatileParent, Cmd(1),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"1021"), Oled::Absent, kOpen + " Caps Get Close",
         "OPST=1", kCtlUnloaded},
        {"cmd2|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, Cmd(2),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"5"), Oled::DenyWrite, kOpstDone, "OPST=1", kCtlUnloaded},
        {"cmd2|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, Cmd(2),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"1021"), Oled::Absent, kOpstDone, "OPST=1",
         kCtlUnloaded},
        {"cmd3|RegOpenKeyExW|access-denied", kIntelOn, "", {}, kNone, Oled::DenyWrite, Cmd(3),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"5"), Oled::DenyWrite, kOpstDone, "OPST=0", kCtlUnloaded},
        {"cmd3|RegCreateKeyExW|child-must-be-volatile", kIntelOn, "", {}, kNone, Oled::VolatileParent, Cmd(3),
         kOk, kTrue, Lines{kOpstSupported} + RegistryFailed(L"1021"), Oled::Absent, kOpstDone, "OPST=0",
         kCtlUnloaded},
        {"cmd5|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, Cmd(5),
         kOk, kTrue, RegistryFailed(L"5"), Oled::DenyWrite, kEdOnDone, kPanelOn, kCtlUnloaded},
        {"cmd5|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, Cmd(5),
         kOk, kTrue, RegistryFailed(L"1021"), Oled::Absent, kEdOnDone, kPanelOn, kCtlUnloaded},
        {"cmd6|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, Cmd(6),
         kOk, kTrue, RegistryFailed(L"5"), Oled::DenyWrite, kEdOffDone, kPanelOff, kCtlUnloaded},
        {"cmd6|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, Cmd(6),
         kOk, kTrue, RegistryFailed(L"1021"), Oled::Absent, kEdOffDone, kPanelOff, kCtlUnloaded},
        {"cmd9-intel-on|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, kOn9,
         kOk, kTrue, RegistryFailed(L"5"), Oled::DenyWrite, kEdOnDone, kPanelOn, kCtlUnloaded},
        {"cmd9-intel-on|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, kOn9,
         kOk, kTrue, RegistryFailed(L"1021"), Oled::Absent, kEdOnDone, kPanelOn, kCtlUnloaded},
        {"cmd9-intel-off|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, kOff9,
         kOk, kTrue, RegistryFailed(L"5"), Oled::DenyWrite, kEdOffDone, kPanelOff, kCtlUnloaded},
        {"cmd9-intel-off|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent,
         kOff9, kOk, kTrue, RegistryFailed(L"1021"), Oled::Absent, kEdOffDone, kPanelOff, kCtlUnloaded},
        {"cmd9-amd-on|RegOpenKeyExW|access-denied", kAmdM, "", {}, kNone, Oled::DenyWrite, kOn9,
         kOk, kTrue, kAdlWrote + RegistryFailed(L"5"), Oled::DenyWrite, kAdlOn, kAmdOn, kAdlUnloaded},
        {"cmd9-amd-on|RegCreateKeyExW|child-must-be-volatile", kAmdM, "", {}, kNone, Oled::VolatileParent, kOn9,
         kOk, kTrue, kAdlWrote + RegistryFailed(L"1021"), Oled::Absent, kAdlOn, kAmdOn, kAdlUnloaded},
        {"cmd9-amd-off|RegOpenKeyExW|access-denied", kAmdOnM, "", {}, kNone, Oled::DenyWrite, kOff9,
         kOk, kTrue, kAdlWrote + RegistryFailed(L"5"), Oled::DenyWrite, kAdlOff, kAmdOff, kAdlUnloaded},
        {"cmd9-amd-off|RegCreateKeyExW|child-must-be-volatile", kAmdOnM, "", {}, kNone, Oled::VolatileParent, kOff9,
         kOk, kTrue, kAdlWrote + RegistryFailed(L"1021"), Oled::Absent, kAdlOff, kAmdOff, kAdlUnloaded},
        // Both inner handlers write, and both writes fail.
        {"cmd11-intel|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, Cmd(11),
         kOk, kTrueTrue, Lines{kOpstSupported} + RegistryFailed(L"5") + RegistryFailed(L"5"), Oled::DenyWrite,
         kOpstDone + " " + kEdOnDone, "OPST=1 " + kPanelOn, kCtlUnloaded},
        {"cmd11-intel|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, Cmd(11),
         kOk, kTrueTrue, Lines{kOpstSupported} + RegistryFailed(L"1021") + RegistryFailed(L"1021"), Oled::Absent,
         kOpstDone + " " + kEdOnDone, "OPST=1 " + kPanelOn, kCtlUnloaded},
        {"cmd11-amd|RegOpenKeyExW|access-denied", kAmdM, "", {}, kNone, Oled::DenyWrite, Cmd(11),
         kOk, kTrue, kAdlWrote + RegistryFailed(L"5"), Oled::DenyWrite, kAdlxOn + " " + kAdlOn,
         kAmdOn + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        {"cmd11-amd|RegCreateKeyExW|child-must-be-volatile", kAmdM, "", {}, kNone, Oled::VolatileParent, Cmd(11),
         kOk, kTrue, kAdlWrote + RegistryFailed(L"1021"), Oled::Absent, kAdlxOn + " " + kAdlOn,
         kAmdOn + " VB=1 MODE=maximizeBattery", kAdlxLoadedAdlUnloaded},
        // DisableOpst records after its session; DisableEd records before its own.
        {"cmd12-intel|RegOpenKeyExW|access-denied", kIntelOn, "", {}, kNone, Oled::DenyWrite, Cmd(12),
         kOk, kTrueTrue, Lines{kOpstSupported} + RegistryFailed(L"5") + RegistryFailed(L"5"), Oled::DenyWrite,
         kOpstDone + " " + kEdOffDone, "OPST=0 " + kPanelOff, kCtlUnloaded},
        {"cmd12-intel|RegCreateKeyExW|child-must-be-volatile", kIntelOn, "", {}, kNone, Oled::VolatileParent, Cmd(12),
         kOk, kTrueTrue, Lines{kOpstSupported} + RegistryFailed(L"1021") + RegistryFailed(L"1021"), Oled::Absent,
         kOpstDone + " " + kEdOffDone, "OPST=0 " + kPanelOff, kCtlUnloaded},
        {"cmd12-amd|RegOpenKeyExW|access-denied", kAmdOnM, "", {}, kNone, Oled::DenyWrite, Cmd(12),
         kOk, kTrueTrue, kAdlWrote + RegistryFailed(L"5"), Oled::DenyWrite, kAdlxOff + " " + kAdlOff,
         kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},
        {"cmd12-amd|RegCreateKeyExW|child-must-be-volatile", kAmdOnM, "", {}, kNone, Oled::VolatileParent, Cmd(12),
         kOk, kTrueTrue, kAdlWrote + RegistryFailed(L"1021"), Oled::Absent, kAdlxOff + " " + kAdlOff,
         kAmdOff + " VB=0", kAdlxLoadedAdlUnloaded},

        // ---- Command 7: any failed read answers 0 with StatusRegistryError; the value stays.
        {"cmd7|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, Cmd(7),
         kRegistryError, L"{\"result\":0}", {kOpenFailed + L"5"}, Oled::DenyWrite, "", "", ""},
        {"cmd7|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, Cmd(7),
         kRegistryError, L"{\"result\":0}", {kOpenFailed + L"1021"}, Oled::Absent, "", "", ""},
        {"cmd7|RegQueryValueExW|REG_SZ-1", kIntelOff, "", {}, kNone, Oled::Sz1, Cmd(7),
         kRegistryError, L"{\"result\":0}", {}, Oled::Sz1, "", "", ""},
        {"cmd7|RegQueryValueExW|REG_SZ-10", kIntelOff, "", {}, kNone, Oled::Sz10, Cmd(7),
         kRegistryError, L"{\"result\":0}", {}, Oled::Sz10, "", "", ""},
        {"cmd7|RegQueryValueExW|REG_BINARY", kIntelOff, "", {}, kNone, Oled::Binary1, Cmd(7),
         kRegistryError, L"{\"result\":0}", {}, Oled::Binary1, "", "", ""},
        {"cmd7|RegQueryValueExW|REG_DWORD-8-bytes", kIntelOff, "", {}, kNone, Oled::Dword8, Cmd(7),
         kRegistryError, L"{\"result\":0}", {}, Oled::Dword8, "", "", ""},
        {"cmd7|RegQueryValueExW|REG_QWORD", kIntelOff, "", {}, kNone, Oled::Qword1, Cmd(7),
         kRegistryError, L"{\"result\":0}", {}, Oled::Qword1, "", "", ""},

        // ---- The display-power event: a failed read is "0", and the event only logs its entry.
        {"event|RegOpenKeyExW|access-denied", kIntelOff, "", {}, kNone, Oled::DenyWrite, kEvent,
         kOk, kNoResponse, kEventEntered + Lines{kOpenFailed + L"5"}, Oled::DenyWrite, "", kUntouched, kCtlUnloaded},
        {"event|RegCreateKeyExW|child-must-be-volatile", kIntelOff, "", {}, kNone, Oled::VolatileParent, kEvent,
         kOk, kNoResponse, kEventEntered + Lines{kOpenFailed + L"1021"}, Oled::Absent, "", kUntouched, kCtlUnloaded},
        {"event|RegQueryValueExW|REG_SZ-1", kIntelOff, "", {}, kNone, Oled::Sz1, kEvent,
         kOk, kNoResponse, kEventEntered, Oled::Sz1, "", kUntouched, kCtlUnloaded},
        {"event|RegQueryValueExW|REG_SZ-10", kIntelOff, "", {}, kNone, Oled::Sz10, kEvent,
         kOk, kNoResponse, kEventEntered, Oled::Sz10, "", kUntouched, kCtlUnloaded},
        {"event|RegQueryValueExW|REG_BINARY", kIntelOff, "", {}, kNone, Oled::Binary1, kEvent,
         kOk, kNoResponse, kEventEntered, Oled::Binary1, "", kUntouched, kCtlUnloaded},
        {"event|RegQueryValueExW|REG_DWORD-8-bytes", kIntelOff, "", {}, kNone, Oled::Dword8, kEvent,
         kOk, kNoResponse, kEventEntered, Oled::Dword8, "", kUntouched, kCtlUnloaded},
        {"event|RegQueryValueExW|REG_QWORD", kIntelOff, "", {}, kNone, Oled::Qword1, kEvent,
         kOk, kNoResponse, kEventEntered, Oled::Qword1, "", kUntouched, kCtlUnloaded},

        // ---- The store's two operations on their own (status: SetSettingsDword's result, or
        // whether OpenOrCreateSettingsKey handed back a key).
        {"settings-store|RegSetValueExW|access-denied", kIntelOff, "", {}, kNone, Oled::One,
         {Act::SetOnReadOnlyKey, 0, nullptr}, 0, kNoResponse, {kSetFailed + L"5"}, Oled::One, "", "", ""},
        {"settings-store|RegOpenKeyExW|bad-pathname", kIntelOff, "", {}, kNone, Oled::Absent,
         {Act::OpenUnusablePath, 0, nullptr}, 0, kNoResponse, {kOpenFailed + L"161"}, Oled::Absent, "", "", ""},
    };
}

// Further cases of points counted above: other machines and histories that change the outcome.
std::vector<FaultRow> FurtherRows()
{
    return {
        // The first adapter's outputs cannot be counted: one line, and the second adapter is used.
        {"", Machine::IntelTwoAdapters, "", {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::Zero,
         Cmd(5), kOk, kTrue, {OutputsFailed(kInvalidArgument)}, Oled::One, "Init Dev Dev Out! Out Out " + kEdOn + " Close",
         "I1:404B=7C84CC I1:4056=1756FE I1:404E=0C0003 I1:4054=02 " + kUntouched, kCtlUnloaded},
        // A one-byte "on" sequence whose read-back fails compares 00 with C0.
        {"", Machine::IntelPanel4174, "", {{"ctlAUXAccess", kUninitialized, 2}}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {kVerifyFailed, SessionFailed(kUninitialized)}, Oled::Zero,
         kOpen + " Props W4027=C0 Aux! Close", "I4027=C0", kCtlUnloaded},
        // The "off" byte is 00: the failed read-back matches it, but its status still makes the
        // display count as failed.
        {"", Machine::IntelPanel4174, "", {{"ctlAUXAccess", kUninitialized, 2}}, kNone, Oled::One, Cmd(6),
         kOk, kFalse, {SessionFailed(kUninitialized)}, Oled::Zero, kOpen + " Props W4027=00 Aux! Close", "I4027=00",
         kCtlUnloaded},
        // The probe's read fails after command 8 filled the shared record: the record still says
        // OPST is supported, and the switch goes ahead.
        {"", kIntelOff, "", {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, Arrange::OpstRecordFilled,
         Oled::Zero, Cmd(2), kOk, kTrue, {kOpstSupported}, Oled::One, kOpen + " Caps Get! Set Get Close", "OPST=1",
         kCtlUnloaded},
        // The set fails on a panel already off: the read-back shows the requested state.
        {"", kIntelOff, "", {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, kNone, Oled::One, Cmd(3),
         kOk, kTrue, {kOpstSupported}, Oled::Zero, kOpen + " Caps Get Set! Get Close", "OPST=0", kCtlUnloaded},
        // DisableEd records 0 before its session: the store's lines come before the session's.
        {"", kIntelOff, "", {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, kNone, Oled::DenyWrite, Cmd(6),
         kOk, kFalse,
         RegistryFailed(L"5") + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         Oled::DenyWrite, "Init Dev Dev Out! Close", kUntouched, kCtlUnloaded},
        // A success code from the initialisation without a system object: nothing to ask for
        // display services, so ADLX is terminated again.
        {"", kAmdM, "", {{"ADLXInitialize", kAdlxAlreadyInitialized, 1}}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalse, {}, Oled::Zero, "FullVer Ver XInit! XTerm", "VB=0", "-amdadlx64.dll"},
        // No new display list: the display taken by the earlier initialisation is kept.
        {"", kAmdM, "", {{"GetDisplays", kAdlxFail, 1}}, kAdlxReady, Oled::Zero, Cmd(10),
         kOk, kTrue, {}, Oled::Zero, "FullVer Ver XInit! Services Displays! VB IsSup", "VB=0", "+amdadlx64.dll"},
    };
}

// Counts a driver reports. The service takes at most 256 Intel adapters, 256 display outputs
// per adapter, 1024 ADL adapters and 256 ADL displays per adapter: each row answers one more
// (or the most a count can say), and the service answers as when that call fails, at once and
// without sizing anything from the count. A fill call that finds more entries than the count
// call said is refused by the library (nothing written, the count saying how many there are);
// one that finds fewer fills only those: the service goes on with no more than it allocated,
// and no more than the library filled.
constexpr int64_t kIntelTooMany = 257;
constexpr int64_t kMostACountSays = 0xFFFFFFFF;
constexpr int64_t kAdlAdaptersTooMany = 1025;
constexpr int64_t kAdlDisplaysTooMany = 257;
const Machine kNoAdapters = Machine::IntelNoAdapters;
const Lines kAdlTooManyAdapters = {L"I:nAdapter count=1025", L"I:lpAdapterInfo buffer size overflow"};
const std::string kCreateCount = "Create Count";

std::vector<FaultRow> CountRows()
{
    return {
        // ---- Counts no machine has: the count call's failure.
        {"cmd5|ctlEnumerateDevices#count|implausible", kIntelOff, "", {{"ctlEnumerateDevices#count", kIntelTooMany, 1}},
         kNone, Oled::Zero, Cmd(5), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Close", kUntouched, kCtlUnloaded},
        {"", kIntelOff, "", {{"ctlEnumerateDevices#count", kMostACountSays, 1}},
         kNone, Oled::Zero, Cmd(5), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Close", kUntouched, kCtlUnloaded},
        {"cmd5|ctlEnumerateDisplayOutputs#count|implausible", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs#count", kIntelTooMany, 1}}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out Close", kUntouched, kCtlUnloaded},
        {"", kIntelOff, "", {{"ctlEnumerateDisplayOutputs#count", kMostACountSays, 1}}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out Close", kUntouched, kCtlUnloaded},
        // As after any failure of the count, the walk goes on to the next adapter.
        {"", Machine::IntelTwoAdapters, "", {{"ctlEnumerateDisplayOutputs#count", kIntelTooMany, 1}}, kNone,
         Oled::Zero, Cmd(5), kOk, kTrue, {OutputsFailed(kInvalidArgument)}, Oled::One,
         "Init Dev Dev Out Out Out " + kEdOn + " Close",
         "I1:404B=7C84CC I1:4056=1756FE I1:404E=0C0003 I1:4054=02 " + kUntouched, kCtlUnloaded},
        // The event leaves a session it could not open as it is, as after a failed count.
        {"event-intel|ctlEnumerateDevices#count|implausible", kIntelOff, "",
         {{"ctlEnumerateDevices#count", kMostACountSays, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "Init Dev", kUntouched, kCtlLoaded},
        {"event-intel|ctlEnumerateDisplayOutputs#count|implausible", kIntelOff, "",
         {{"ctlEnumerateDisplayOutputs#count", kMostACountSays, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         Oled::One, "Init Dev Dev Out Close", kUntouched, kCtlUnloaded},
        {"cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|implausible", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get#count", kAdlAdaptersTooMany, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlTooManyAdapters, Oled::Zero, kCreateCount, kAmdUntouchedOff, kAdlStopped},
        {"", kAmdM, "", {{"ADL2_Adapter_NumberOfAdapters_Get#count", 0x7FFFFFFF, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, {L"I:nAdapter count=2147483647", L"I:lpAdapterInfo buffer size overflow"}, Oled::Zero,
         kCreateCount, kAmdUntouchedOff, kAdlStopped},
        {"event-amd|ADL2_Adapter_NumberOfAdapters_Get|implausible", kAmdM, "",
         {{"ADL2_Adapter_NumberOfAdapters_Get#count", kAdlAdaptersTooMany, 1}}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn + kAdlTooManyAdapters, Oled::One, kCreateCount, kAmdUntouchedOff, kAdlStopped},
        // The adapter's display list is passed over, as when ADL fails to give it.
        {"cmd9-amd-on|ADL2_Display_DisplayInfo_Get|implausible", kAmdM, "",
         {{"ADL2_Display_DisplayInfo_Get#count", kAdlDisplaysTooMany, 1}}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, kAdlCounted, Oled::Zero, "Create Count Adapters Disp Destroy", kAmdUntouchedOff,
         kAdlUnloaded},

        // ---- The fill call finds another number than the count call said.
        {"cmd5|ctlEnumerateDevices#list|more", kIntelOff, "", {{"ctlEnumerateDevices#fill", 2, 2}}, kNone,
         Oled::Zero, Cmd(5), kDeviceError, kEmpty, {}, Oled::Zero, "Init Dev Dev! Close", kUntouched, kCtlUnloaded},
        // No adapter left: the two handles allocated are not used.
        {"cmd5|ctlEnumerateDevices#list|fewer", kNoAdapters, "", {{"ctlEnumerateDevices#count", 2, 1}}, kNone,
         Oled::Zero, Cmd(5), kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        // Refused, with two outputs said: the loop still runs over the one handle allocated.
        {"cmd5|ctlEnumerateDisplayOutputs#list|more", kIntelOff, "", {{"ctlEnumerateDisplayOutputs#fill", 2, 2}},
         kNone, Oled::Zero, Cmd(5), kOk, kFalse, {OutputsFailed(kInvalidArgument)}, Oled::Zero,
         "Init Dev Dev Out Out! Props! Close", kUntouched, kCtlUnloaded},
        // Three said, one filled: only that one is looked at.
        {"cmd5|ctlEnumerateDisplayOutputs#list|fewer", kIntelOff, "", {{"ctlEnumerateDisplayOutputs#count", 3, 1}},
         kNone, Oled::Zero, Cmd(5), kOk, kTrue, {}, Oled::One, kEdOnDone, kPanelOn, kCtlUnloaded},

        // ---- No adapter at all: not a failure of the library, so every command answers 0 with
        // a false "result" (command 10 then asks the panel table), and records as for any false.
        {"cmd1|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, Cmd(1),
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd2|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, Cmd(2),
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd3|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, Cmd(3),
         kOk, kFalse, {}, Oled::One, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd5|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, Cmd(5),
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd6|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, Cmd(6),
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd8|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, Cmd(8),
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd9-intel-on|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, kOn9,
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd9-intel-off|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, kOff9,
         kOk, kFalse, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd10-intel|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, Cmd(10),
         kOk, kFalseTrue, {}, Oled::Zero, "Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd11-intel|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::Zero, Cmd(11),
         kOk, kFalseFalse, {}, Oled::Zero, "Init Dev Dev Close Init Dev Dev Close", "", kCtlUnloaded},
        {"cmd12-intel|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, Cmd(12),
         kOk, kFalseFalse, {}, Oled::Zero, "Init Dev Dev Close Init Dev Dev Close", "", kCtlUnloaded},
        {"event-intel|ctlEnumerateDevices#count|zero", kNoAdapters, "", {}, kNone, Oled::One, kEvent,
         kOk, kNoResponse, kEventOn, Oled::One, "Init Dev Dev Close", "", kCtlUnloaded},
    };
}

// clang-format on

std::vector<FaultRow> Rows()
{
    std::vector<FaultRow> rows;
    for (auto part : {OpstRows, EdRows, CompositeIntelRows, AdlRows, AdlxRows, RegistryRows, FurtherRows, CountRows}) {
        for (FaultRow& row : part()) {
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

}  // namespace

const std::vector<std::string>& FaultPoints()
{
    static const std::vector<std::string> points = AllPoints();
    return points;
}

const std::vector<FaultRow>& FaultTable()
{
    static const std::vector<FaultRow> rows = Rows();
    return rows;
}

}  // namespace LumavenFaults
