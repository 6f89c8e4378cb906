// The injected-fault table. Each row fails one vendor call (or meets one registry condition)
// on one command path and states everything the service must show for it. The list of fault
// points at the top is the total the report counts against.
#include "FaultRow.h"
#include "ServiceAnswers.h"

#include <cstdio>

namespace LumavenFaults {

namespace {

using namespace LumavenTest::Answers;

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

Action Cmd(uint32_t command, const wchar_t* request = L"{}")
{
    return {Act::Command, command, request};
}
const Action kOn9 = Cmd(9, L"{\"BValue\":true}");
const Action kOff9 = Cmd(9, L"{\"BValue\":false}");
const Action kOn14 = Cmd(14, L"{\"BValue\":true}");
const Action kEvent{Act::Event, 0, nullptr};

const wchar_t* const kNoResponse = nullptr;
const wchar_t kTrueTrue[] = L"{\"result\":true,\"result\":true}";
const wchar_t kTrueFalse[] = L"{\"result\":true,\"result\":false}";
const wchar_t kFalseTrue[] = L"{\"result\":false,\"result\":true}";
const wchar_t kFalseFalse[] = L"{\"result\":false,\"result\":false}";

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
        {.point = "cmd1|ControlLib.dll|missing", .machine = kIntelOn, .drivers = kNoControlLib, .before = Oled::Absent,
         .action = Cmd(1), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd1|ctlInit|missing", .machine = kIntelOn, .drivers = kNoInit, .before = Oled::Absent,
         .action = Cmd(1), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Absent,
         .trace = "Dev! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd1|forwarded entry points|missing", .machine = kIntelOn, .drivers = kInitOnly,
         .before = Oled::Absent, .action = Cmd(1), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Absent, .trace = "Init", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd1|ctlInit|error", .machine = kIntelOn, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::Absent, .action = Cmd(1), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Absent, .trace = "Init! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd1|ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "Init Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd1|ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "Init Dev Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd1|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        // The list call failed: the probe runs on the unfilled (null) handle and the library refuses it.
        {.point = "cmd1|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kOk, .response = kFalse,
         .logs = {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out Out! Caps! Get! Close", .panel = "OPST=1",
         .loaded = kCtlUnloaded},
        {.point = "cmd1|ctlGetPowerOptimizationCaps|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps! Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd1|ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::Absent, .action = Cmd(1),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps Get! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        // A close that fails keeps the library loaded; the command is done all the same.
        {.point = "cmd1|ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::Absent, .action = Cmd(1), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpen + " Caps Get Close!", .panel = "OPST=1", .loaded = kCtlLoaded},

        // ---- 2 EnableOpst: records 1 only when the switch took.
        {.point = "cmd2|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib, .before = Oled::Zero,
         .action = Cmd(2), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "",
         .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::Zero,
         .action = Cmd(2), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Dev! Close!", .panel = "OPST=0", .loaded = kCtlLoaded},
        {.point = "cmd2|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::Zero, .action = Cmd(2), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init", .panel = "OPST=0", .loaded = kCtlLoaded},
        {.point = "cmd2|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::Zero, .action = Cmd(2), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init! Close!", .panel = "OPST=0", .loaded = kCtlLoaded},
        {.point = "cmd2|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev! Close",
         .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close",
         .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse,
         .logs = {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out Out! Caps! Get! Close", .panel = "OPST=0",
         .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlGetPowerOptimizationCaps|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps! Get Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps Get! Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        // The set fails, the read-back answers: the panel is not in the requested state, and the
        // status the read-back left is 0.
        {.point = "cmd2|ctlSetPowerOptimizationSetting|error", .machine = kIntelOff,
         .faults = {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {kOpstSupported}, .after = Oled::Zero,
         .trace = kOpen + " Caps Get Set! Get Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        // The switch took but the read-back failed: the record still holds the probe's "off".
        {.point = "cmd2|ctlGetPowerOptimizationSetting#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {kOpstSupported, SessionFailed(kNotImplemented)},
         .after = Oled::Zero, .trace = kOpen + " Caps Get Set Get! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::Zero, .action = Cmd(2), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpen + " " + kSwitch + " Close!", .panel = "OPST=1", .loaded = kCtlLoaded},

        // ---- 3 DisableOpst: records 0 only when the switch took.
        {.point = "cmd3|ControlLib.dll|missing", .machine = kIntelOn, .drivers = kNoControlLib, .before = Oled::One,
         .action = Cmd(3), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlInit|missing", .machine = kIntelOn, .drivers = kNoInit, .before = Oled::One,
         .action = Cmd(3), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One,
         .trace = "Dev! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd3|forwarded entry points|missing", .machine = kIntelOn, .drivers = kInitOnly, .before = Oled::One,
         .action = Cmd(3), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init",
         .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd3|ctlInit|error", .machine = kIntelOn, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = Cmd(3), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::One, .trace = "Init! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd3|ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = Cmd(3),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = Cmd(3),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::One, .trace = "Init Dev Dev Out! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse,
         .logs = {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = "Init Dev Dev Out Out! Caps! Get! Close", .panel = "OPST=1",
         .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlGetPowerOptimizationCaps|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Caps! Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Caps Get! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlSetPowerOptimizationSetting|error", .machine = kIntelOn,
         .faults = {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpen + " Caps Get Set! Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlGetPowerOptimizationSetting#read-back|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {kOpstSupported, SessionFailed(kNotImplemented)},
         .after = Oled::One, .trace = kOpen + " Caps Get Set Get! Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = Cmd(3), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::Zero, .trace = kOpen + " " + kSwitch + " Close!", .panel = "OPST=0", .loaded = kCtlLoaded},

        // ---- 8 GetIfSystemSupportsOpst: attached displays only, records nothing.
        {.point = "cmd8|ControlLib.dll|missing", .machine = kIntelOn, .drivers = kNoControlLib, .before = Oled::One,
         .action = Cmd(8), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlInit|missing", .machine = kIntelOn, .drivers = kNoInit, .before = Oled::One,
         .action = Cmd(8), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One,
         .trace = "Dev! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd8|forwarded entry points|missing", .machine = kIntelOn, .drivers = kInitOnly, .before = Oled::One,
         .action = Cmd(8), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init",
         .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd8|ctlInit|error", .machine = kIntelOn, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = Cmd(8), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::One, .trace = "Init! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd8|ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = Cmd(8),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = Cmd(8),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev Dev! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::One, .trace = "Init Dev Dev Out! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        // The null handle's properties cannot be read: not attached, not probed, no failure left.
        {.point = "cmd8|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlGetDisplayProperties|error", .machine = kIntelOn,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::One, .trace = kOpen + " Props! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlGetPowerOptimizationCaps|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::One, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Props Caps! Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::One, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Props Caps Get! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = Cmd(8), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpen + " Props Caps Get Close!", .panel = "OPST=1", .loaded = kCtlLoaded},

        // ---- 10 GetIfOLEDSupport on Intel: the OPST support query, then the panel. A failing
        // query counts as supported and adds nothing; otherwise its answer comes first.
        {.point = "cmd10-intel|ControlLib.dll|missing", .machine = kIntelOn, .drivers = kNoControlLib,
         .before = Oled::One, .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = "", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlInit|missing", .machine = kIntelOn, .drivers = kNoInit, .before = Oled::One,
         .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One, .trace = "Dev! Close!",
         .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd10-intel|forwarded entry points|missing", .machine = kIntelOn, .drivers = kInitOnly,
         .before = Oled::One, .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = "Init", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd10-intel|ctlInit|error", .machine = kIntelOn, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = "Init! Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
        {.point = "cmd10-intel|ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = Cmd(10), .status = kOk,
         .response = kTrue, .logs = {}, .after = Oled::One, .trace = "Init Dev! Close", .panel = "OPST=1",
         .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = Cmd(10), .status = kOk,
         .response = kTrue, .logs = {}, .after = Oled::One, .trace = "Init Dev Dev! Close", .panel = "OPST=1",
         .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(10),
         .status = kOk, .response = kFalseTrue,
         .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(10),
         .status = kOk, .response = kFalseTrue, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlGetDisplayProperties|error", .machine = kIntelOn,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(10),
         .status = kOk, .response = kFalseTrue, .logs = {}, .after = Oled::One, .trace = kOpen + " Props! Close",
         .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlGetPowerOptimizationCaps|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::One, .action = Cmd(10),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Props Caps! Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::One, .action = Cmd(10),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Props Caps Get! Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = Cmd(10), .status = kOk, .response = kTrueTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpen + " Props Caps Get Close!", .panel = "OPST=1", .loaded = kCtlLoaded},
    };
}

// Commands 5 and 6, command 9 on Intel (the same handlers under the ELP setter) and the
// display-power event on Intel: the AUX session, mode 5 or 6. A write that fails stops the
// sequence where it is; the writes before it stay in the panel.
std::vector<FaultRow> EdRows()
{
    return {
        // ---- 5 EnableEd: records 1 only after the panel was written and read back.
        {.point = "cmd5|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib, .before = Oled::Zero,
         .action = Cmd(5), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::Zero,
         .action = Cmd(5), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Dev! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd5|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::Zero, .action = Cmd(5), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd5|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd5|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        // Properties that cannot be read leave the display unattached: nothing is written.
        {.point = "cmd5|ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = kOpen + " Props! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW1 + " Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW2 + " Close", .panel = kFirstOnly, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnW3 + " Close", .panel = kOnTwo, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnW4 + " Close", .panel = kOnThree, .loaded = kCtlUnloaded},
        // Every write went in; the failed read-back compares zeros with 7C 84 CC.
        {.point = "cmd5|ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = {kVerifyFailed, SessionFailed(kUninitialized)}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnR + " Close", .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = kOpen + " " + kEdOn + " Close!", .panel = kPanelOn, .loaded = kCtlLoaded},

        // ---- 6 DisableEd: records 0 first, whatever the panel does afterwards.
        {.point = "cmd6|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib, .before = Oled::One,
         .action = Cmd(6), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::One,
         .action = Cmd(6), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Dev! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd6|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::One, .action = Cmd(6), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd6|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = Cmd(6), .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd6|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = Cmd(6),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = Cmd(6),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(6),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(6),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(6),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = kOpen + " Props! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(6), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW1 + " Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(6), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW2 + " Close", .panel = kFirstOnly, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::One, .action = Cmd(6), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffW3 + " Close", .panel = kOffTwo, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::One, .action = Cmd(6), .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffW4 + " Close", .panel = kOffThree, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::One, .action = Cmd(6), .status = kOk,
         .response = kFalse, .logs = {kVerifyFailed, SessionFailed(kUninitialized)}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffR + " Close", .panel = kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = Cmd(6), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOff + " Close!", .panel = kPanelOff, .loaded = kCtlLoaded},

        // ---- 9 SetIntelElp, "BValue": true: EnableEd under the setter's lock.
        {.point = "cmd9-intel-on|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib,
         .before = Oled::Zero, .action = kOn9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::Zero,
         .action = kOn9, .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Dev! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-on|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::Zero, .action = kOn9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-on|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::Zero, .action = kOn9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-on|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::Zero, .action = kOn9,
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = kOpen + " Props! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW1 + " Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW2 + " Close", .panel = kFirstOnly, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnW3 + " Close", .panel = kOnTwo, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnW4 + " Close", .panel = kOnThree, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = {kVerifyFailed, SessionFailed(kUninitialized)}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOnR + " Close", .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = kOpen + " " + kEdOn + " Close!", .panel = kPanelOn, .loaded = kCtlLoaded},

        // ---- 9 SetIntelElp, "BValue": false: DisableEd under the setter's lock.
        {.point = "cmd9-intel-off|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib,
         .before = Oled::One, .action = kOff9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::One,
         .action = kOff9, .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Dev! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-off|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::One, .action = kOff9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-off|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = kOff9, .status = kDeviceError, .response = kEmpty, .logs = {},
         .after = Oled::Zero, .trace = "Init! Close!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd9-intel-off|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = kOff9,
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = kOff9,
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = kOpen + " Props! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW1 + " Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdW2 + " Close", .panel = kFirstOnly, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffW3 + " Close", .panel = kOffTwo, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffW4 + " Close", .panel = kOffThree, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = {kVerifyFailed, SessionFailed(kUninitialized)}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOffR + " Close", .panel = kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = kOff9, .status = kOk, .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = kOpen + " " + kEdOff + " Close!", .panel = kPanelOff, .loaded = kCtlLoaded},

        // ---- Display on, "OLED" = 1: EnableEdForEvent. Its session is not closed when it
        // cannot be opened; it answers and stores nothing.
        {.point = "event-intel|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn,
         .after = Oled::One, .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::One,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn, .after = Oled::One,
         .trace = "Dev!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "event-intel|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn,
         .after = Oled::One, .trace = "Init", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "event-intel|ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 1}},
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn,
         .after = Oled::One, .trace = "Init!", .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "event-intel|ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn, .after = Oled::One, .trace = "Init Dev!", .panel = kUntouched,
         .loaded = kCtlLoaded},
        {.point = "event-intel|ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn, .after = Oled::One, .trace = "Init Dev Dev!", .panel = kUntouched,
         .loaded = kCtlLoaded},
        {.point = "event-intel|ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse,
         .logs = kEventOn + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + Lines{OutputsFailed(kInvalidArgument)},
         .after = Oled::One, .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched,
         .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn, .after = Oled::One, .trace = kOpen + " Props! Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpen + " " + kEdW1 + " Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpen + " " + kEdW2 + " Close", .panel = kFirstOnly, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpen + " " + kEdOnW3 + " Close", .panel = kOnTwo, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpen + " " + kEdOnW4 + " Close", .panel = kOnThree, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + Lines{kVerifyFailed, SessionFailed(kUninitialized)},
         .after = Oled::One, .trace = kOpen + " " + kEdOnR + " Close", .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn,
         .after = Oled::One, .trace = kOpen + " " + kEdOn + " Close!", .panel = kPanelOn, .loaded = kCtlLoaded},
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
        {.point = "cmd11-intel|ControlLib.dll|missing", .machine = kIntelOff, .drivers = kNoControlLib,
         .before = Oled::Absent, .action = Cmd(11), .status = kOk, .response = kEmpty, .logs = {},
         .after = Oled::Absent, .trace = "", .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ctlInit|missing", .machine = kIntelOff, .drivers = kNoInit, .before = Oled::Absent,
         .action = Cmd(11), .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::Absent,
         .trace = "Dev! Close!", .panel = "OPST=0 " + kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd11-intel|forwarded entry points|missing", .machine = kIntelOff, .drivers = kInitOnly,
         .before = Oled::Absent, .action = Cmd(11), .status = kOk, .response = kEmpty, .logs = {},
         .after = Oled::Absent, .trace = "Init", .panel = "OPST=0 " + kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd11-intel|opst:ctlInit|error", .machine = kIntelOff,
         .faults = {{"ctlInit", kUnsupportedVersion, 1}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "Init! Close!",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd11-intel|opst:ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "Init Dev! Close",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::Absent, .trace = "Init Dev Dev! Close",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kFalseTrue,
         .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out! Close " + kEdOnDone, .panel = "OPST=0 " + kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kFalseTrue,
         .logs = {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = "Init Dev Dev Out Out! Caps! Get! Close " + kEdOnDone,
         .panel = "OPST=0 " + kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlGetPowerOptimizationCaps|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Caps! Get Close " + kEdOnDone, .panel = "OPST=0 " + kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::One, .trace = kOpen + " Caps Get! Close " + kEdOnDone, .panel = "OPST=0 " + kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlSetPowerOptimizationSetting|error", .machine = kIntelOff,
         .faults = {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, .before = Oled::Absent,
         .action = Cmd(11), .status = kOk, .response = kFalseTrue, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpen + " Caps Get Set! Get Close " + kEdOnDone, .panel = "OPST=0 " + kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|opst:ctlGetPowerOptimizationSetting#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstSupported, SessionFailed(kNotImplemented)},
         .after = Oled::One, .trace = kOpen + " Caps Get Set Get! Close " + kEdOnDone, .panel = "OPST=1 " + kPanelOn,
         .loaded = kCtlUnloaded},
        // The first session's library stays loaded; the second reuses it and unloads it.
        {.point = "cmd11-intel|opst:ctlClose|error", .machine = kIntelOff,
         .faults = {{"ctlClose", kInvalidArgument, 1}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueTrue, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpen + " " + kSwitch + " Close! " + kEdOnDone, .panel = "OPST=1 " + kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlInit|error", .machine = kIntelOff, .faults = {{"ctlInit", kUnsupportedVersion, 2}},
         .before = Oled::Absent, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpstDone + " Init! Close!", .panel = "OPST=1 " + kUntouched,
         .loaded = kCtlLoaded},
        {.point = "cmd11-intel|ed:ctlEnumerateDevices#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 3}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpstDone + " Init Dev! Close", .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlEnumerateDevices#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 4}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpstDone + " Init Dev Dev! Close", .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 3}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kTrueFalse,
         .logs = {kOpstSupported, OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = kOpstDone + " Init Dev Dev Out! Close", .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 4}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kTrueFalse, .logs = {kOpstSupported, OutputsFailed(kInvalidArgument)},
         .after = Oled::One, .trace = kOpstDone + " Init Dev Dev Out Out! Props! Close",
         .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlGetDisplayProperties|error", .machine = kIntelOff,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::Absent, .action = Cmd(11),
         .status = kOk, .response = kTrueFalse, .logs = {kOpstSupported}, .after = Oled::One,
         .trace = kOpstDone + " " + kOpen + " Props! Close", .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlAUXAccess#write1|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpstDone + " " + kOpen + " " + kEdW1 + " Close", .panel = "OPST=1 " + kUntouched,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlAUXAccess#write2|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpstDone + " " + kOpen + " " + kEdW2 + " Close", .panel = "OPST=1 " + kFirstOnly,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlAUXAccess#write3|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpstDone + " " + kOpen + " " + kEdOnW3 + " Close", .panel = "OPST=1 " + kOnTwo,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlAUXAccess#write4|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::One,
         .trace = kOpstDone + " " + kOpen + " " + kEdOnW4 + " Close", .panel = "OPST=1 " + kOnThree,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlAUXAccess#read-back|error", .machine = kIntelOff,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::Absent, .action = Cmd(11), .status = kOk,
         .response = kTrueFalse, .logs = {kOpstSupported, kVerifyFailed, SessionFailed(kUninitialized)},
         .after = Oled::One, .trace = kOpstDone + " " + kOpen + " " + kEdOnR + " Close", .panel = "OPST=1 " + kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ed:ctlClose|error", .machine = kIntelOff, .faults = {{"ctlClose", kInvalidArgument, 2}},
         .before = Oled::Absent, .action = Cmd(11), .status = kOk, .response = kTrueTrue, .logs = {kOpstSupported},
         .after = Oled::One, .trace = kOpstDone + " " + kOpen + " " + kEdOn + " Close!", .panel = "OPST=1 " + kPanelOn,
         .loaded = kCtlLoaded},

        // ---- 12 SetOLEDPowerSaveOFF: DisableOpst, then DisableEd (which records 0 first).
        {.point = "cmd12-intel|ControlLib.dll|missing", .machine = kIntelOn, .drivers = kNoControlLib,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::One,
         .trace = "", .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ctlInit|missing", .machine = kIntelOn, .drivers = kNoInit, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Dev! Close!",
         .panel = "OPST=1 " + kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd12-intel|forwarded entry points|missing", .machine = kIntelOn, .drivers = kInitOnly,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kEmpty, .logs = {}, .after = Oled::One,
         .trace = "Init", .panel = "OPST=1 " + kUntouched, .loaded = kCtlLoaded},
        {.point = "cmd12-intel|opst:ctlInit|error", .machine = kIntelOn,
         .faults = {{"ctlInit", kUnsupportedVersion, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init! Close!", .panel = "OPST=1 " + kUntouched,
         .loaded = kCtlLoaded},
        {.point = "cmd12-intel|opst:ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev! Close",
         .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 2}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kEmpty, .logs = {}, .after = Oled::One, .trace = "Init Dev Dev! Close",
         .panel = "OPST=1 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue,
         .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out! Close " + kEdOffDone, .panel = "OPST=1 " + kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue,
         .logs = {OutputsFailed(kInvalidArgument), kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out Out! Caps! Get! Close " + kEdOffDone,
         .panel = "OPST=1 " + kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlGetPowerOptimizationCaps|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationCaps", kNullPointer, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps! Get Close " + kEdOffDone, .panel = "OPST=1 " + kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlGetPowerOptimizationSetting#probe|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstNotSupported, SessionFailed(kUnsupportedFeature)},
         .after = Oled::Zero, .trace = kOpen + " Caps Get! Close " + kEdOffDone, .panel = "OPST=1 " + kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlSetPowerOptimizationSetting|error", .machine = kIntelOn,
         .faults = {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstSupported}, .after = Oled::Zero,
         .trace = kOpen + " Caps Get Set! Get Close " + kEdOffDone, .panel = "OPST=1 " + kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlGetPowerOptimizationSetting#read-back|error", .machine = kIntelOn,
         .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 2}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = {kOpstSupported, SessionFailed(kNotImplemented)},
         .after = Oled::Zero, .trace = kOpen + " Caps Get Set Get! Close " + kEdOffDone, .panel = "OPST=0 " + kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|opst:ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 1}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueTrue, .logs = {kOpstSupported},
         .after = Oled::Zero, .trace = kOpen + " " + kSwitch + " Close! " + kEdOffDone, .panel = "OPST=0 " + kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlInit|error", .machine = kIntelOn, .faults = {{"ctlInit", kUnsupportedVersion, 2}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::Zero, .trace = kOpstDone + " Init! Close!", .panel = "OPST=0 " + kUntouched,
         .loaded = kCtlLoaded},
        {.point = "cmd12-intel|ed:ctlEnumerateDevices#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 3}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrue, .logs = {kOpstSupported}, .after = Oled::Zero, .trace = kOpstDone + " Init Dev! Close",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlEnumerateDevices#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDevices", kUninitialized, 4}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrue, .logs = {kOpstSupported}, .after = Oled::Zero, .trace = kOpstDone + " Init Dev Dev! Close",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlEnumerateDisplayOutputs#count|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 3}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse,
         .logs = {kOpstSupported, OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = kOpstDone + " Init Dev Dev Out! Close", .panel = "OPST=0 " + kUntouched,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlEnumerateDisplayOutputs#list|error", .machine = kIntelOn,
         .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 4}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = {kOpstSupported, OutputsFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = kOpstDone + " Init Dev Dev Out Out! Props! Close",
         .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlGetDisplayProperties|error", .machine = kIntelOn,
         .faults = {{"ctlGetDisplayProperties", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = {kOpstSupported}, .after = Oled::Zero,
         .trace = kOpstDone + " " + kOpen + " Props! Close", .panel = "OPST=0 " + kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlAUXAccess#write1|error", .machine = kIntelOn,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpstDone + " " + kOpen + " " + kEdW1 + " Close", .panel = "OPST=0 " + kUntouched,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlAUXAccess#write2|error", .machine = kIntelOn,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 2}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpstDone + " " + kOpen + " " + kEdW2 + " Close", .panel = "OPST=0 " + kFirstOnly,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlAUXAccess#write3|error", .machine = kIntelOn,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 3}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpstDone + " " + kOpen + " " + kEdOffW3 + " Close", .panel = "OPST=0 " + kOffTwo,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlAUXAccess#write4|error", .machine = kIntelOn,
         .faults = {{"ctlAUXAccess", kInvalidArgument, 4}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = Lines{kOpstSupported} + AuxWriteFailed(kInvalidArgument), .after = Oled::Zero,
         .trace = kOpstDone + " " + kOpen + " " + kEdOffW4 + " Close", .panel = "OPST=0 " + kOffThree,
         .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlAUXAccess#read-back|error", .machine = kIntelOn,
         .faults = {{"ctlAUXAccess", kUninitialized, 5}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = {kOpstSupported, kVerifyFailed, SessionFailed(kUninitialized)},
         .after = Oled::Zero, .trace = kOpstDone + " " + kOpen + " " + kEdOffR + " Close",
         .panel = "OPST=0 " + kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ed:ctlClose|error", .machine = kIntelOn, .faults = {{"ctlClose", kInvalidArgument, 2}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueTrue, .logs = {kOpstSupported},
         .after = Oled::Zero, .trace = kOpstDone + " " + kOpen + " " + kEdOff + " Close!",
         .panel = "OPST=0 " + kPanelOff, .loaded = kCtlLoaded},
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
        {.point = "cmd9-amd-on|atiadlxx.dll+atiadlxy.dll|missing", .machine = kAmdM, .drivers = kNoAdl,
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlNotFound,
         .after = Oled::Zero, .trace = "", .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|atiadlxx.dll|missing", .machine = kAmdM, .drivers = kAdlFallback, .before = Oled::Zero,
         .action = kOn9, .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = kAdlOnFallback, .panel = kAmdOn, .loaded = "-atiadlxy.dll -amdadlx64.dll"},
        {.point = "cmd9-amd-on|ADL2_Display_DisplayInfo_Get|missing", .machine = kAmdM, .drivers = kAdlNoDisplayInfo,
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlApiMissing,
         .after = Oled::Zero, .trace = "", .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Display_NativeAUXChannel_Access|missing", .machine = kAmdM, .drivers = kAdlNoAux,
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlAuxMissing,
         .after = Oled::Zero, .trace = "", .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Display_EdidData_Get|missing", .machine = kAmdM, .drivers = kAdlNoEdid,
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlNoEdidApi,
         .after = Oled::Zero, .trace = kAdlWithoutEdid, .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Main_Control_Create|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = kAdlInitError, .after = Oled::Zero, .trace = "Create!", .panel = kAmdUntouchedOff,
         .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Main_Control_Create|warning", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlWarning, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = kAdlInitError, .after = Oled::Zero, .trace = "Create!", .panel = kAmdUntouchedOff,
         .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::Zero, .trace = "Create Count!",
         .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::Zero, .trace = "Create Count!",
         .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "cmd9-amd-on|ADL2_Adapter_AdapterInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One, .trace = kAdlOnAdaptersFailed,
         .panel = kAmdOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Display_DisplayInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::Zero, .trace = kAdlDispFailed,
         .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Display_DisplayInfo_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::Zero, .trace = kAdlDispFailed,
         .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Display_EdidData_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = kAdlListed, .after = Oled::Zero, .trace = kAdlEdidFailed,
         .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Display_EdidData_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kFalse, .logs = kAdlListed, .after = Oled::Zero, .trace = kAdlEdidFailed,
         .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Display_NativeAUXChannel_Access|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, .before = Oled::Zero, .action = kOn9,
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One, .trace = kAdlOnAux4Failed,
         .panel = kAmdOnMissed4, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Main_Control_Destroy|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Destroy", kAdlError, 1}}, .before = Oled::Zero, .action = kOn9, .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::One, .trace = kAdlOnDestroyFailed, .panel = kAmdOn,
         .loaded = kAdlUnloaded},

        // ---- 9 SetAmdElp, "BValue": false: records 0 only when a display of the panel was written.
        {.point = "cmd9-amd-off|atiadlxx.dll+atiadlxy.dll|missing", .machine = kAmdOnM, .drivers = kNoAdl,
         .before = Oled::One, .action = kOff9, .status = kOk, .response = kFalse, .logs = kAdlNotFound,
         .after = Oled::One, .trace = "", .panel = kAmdUntouchedOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|atiadlxx.dll|missing", .machine = kAmdOnM, .drivers = kAdlFallback, .before = Oled::One,
         .action = kOff9, .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = kAdlOffFallback, .panel = kAmdOff, .loaded = "-atiadlxy.dll -amdadlx64.dll"},
        {.point = "cmd9-amd-off|ADL2_Display_DisplayInfo_Get|missing", .machine = kAmdOnM, .drivers = kAdlNoDisplayInfo,
         .before = Oled::One, .action = kOff9, .status = kOk, .response = kFalse, .logs = kAdlApiMissing,
         .after = Oled::One, .trace = "", .panel = kAmdUntouchedOn, .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Display_NativeAUXChannel_Access|missing", .machine = kAmdOnM, .drivers = kAdlNoAux,
         .before = Oled::One, .action = kOff9, .status = kOk, .response = kFalse, .logs = kAdlAuxMissing,
         .after = Oled::One, .trace = "", .panel = kAmdUntouchedOn, .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Display_EdidData_Get|missing", .machine = kAmdOnM, .drivers = kAdlNoEdid,
         .before = Oled::One, .action = kOff9, .status = kOk, .response = kFalse, .logs = kAdlNoEdidApi,
         .after = Oled::One, .trace = kAdlWithoutEdid, .panel = kAmdUntouchedOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Main_Control_Create|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Create", kAdlError, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = kAdlInitError, .after = Oled::One, .trace = "Create!", .panel = kAmdUntouchedOn,
         .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Main_Control_Create|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Create", kAdlWarning, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = kAdlInitError, .after = Oled::One, .trace = "Create!", .panel = kAmdUntouchedOn,
         .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Adapter_NumberOfAdapters_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::One, .trace = "Create Count!",
         .panel = kAmdUntouchedOn, .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Adapter_NumberOfAdapters_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::One, .trace = "Create Count!",
         .panel = kAmdUntouchedOn, .loaded = kAdlStopped},
        {.point = "cmd9-amd-off|ADL2_Adapter_AdapterInfo_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlOffAdaptersFailed,
         .panel = kAmdOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Display_DisplayInfo_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::One, .trace = kAdlDispFailed,
         .panel = kAmdUntouchedOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Display_DisplayInfo_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::One, .trace = kAdlDispFailed,
         .panel = kAmdUntouchedOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Display_EdidData_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlError, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = kAdlListed, .after = Oled::One, .trace = kAdlEdidFailed, .panel = kAmdUntouchedOn,
         .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Display_EdidData_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kFalse, .logs = kAdlListed, .after = Oled::One, .trace = kAdlEdidFailed, .panel = kAmdUntouchedOn,
         .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Display_NativeAUXChannel_Access|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, .before = Oled::One, .action = kOff9,
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlOffAux4Failed,
         .panel = kAmdOffMissed4, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|ADL2_Main_Control_Destroy|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Destroy", kAdlError, 1}}, .before = Oled::One, .action = kOff9, .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlOffDestroyFailed, .panel = kAmdOff,
         .loaded = kAdlUnloaded},

        // ---- 11 SetOLEDPowerSaveON on AMD, its ADL half: VariBright went on in maximise-battery
        // mode; only SetAmdElp's "result" is in the response.
        {.point = "cmd11-amd|atiadlxx.dll+atiadlxy.dll|missing", .machine = kAmdM, .drivers = kNoAdl,
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kFalse, .logs = kAdlNotFound,
         .after = Oled::Zero, .trace = kAdlxOn, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|atiadlxx.dll|missing", .machine = kAmdM, .drivers = kAdlFallback, .before = Oled::Zero,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = kAdlxOn + " " + kAdlOnFallback, .panel = kAmdOn + " VB=1 MODE=maximizeBattery",
         .loaded = "+amdadlx64.dll -atiadlxy.dll"},
        {.point = "cmd11-amd|ADL2_Display_DisplayInfo_Get|missing", .machine = kAmdM, .drivers = kAdlNoDisplayInfo,
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kFalse, .logs = kAdlApiMissing,
         .after = Oled::Zero, .trace = kAdlxOn, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Display_NativeAUXChannel_Access|missing", .machine = kAmdM, .drivers = kAdlNoAux,
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kFalse, .logs = kAdlAuxMissing,
         .after = Oled::Zero, .trace = kAdlxOn, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Display_EdidData_Get|missing", .machine = kAmdM, .drivers = kAdlNoEdid,
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kFalse, .logs = kAdlNoEdidApi,
         .after = Oled::Zero, .trace = kAdlxOn + " " + kAdlWithoutEdid,
         .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Main_Control_Create|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11), .status = kOk,
         .response = kFalse, .logs = kAdlInitError, .after = Oled::Zero, .trace = kAdlxOn + " Create!",
         .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Main_Control_Create|warning", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlWarning, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlInitError, .after = Oled::Zero, .trace = kAdlxOn + " Create!",
         .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery", .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Adapter_NumberOfAdapters_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::Zero,
         .trace = kAdlxOn + " Create Count!", .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlNoCount, .after = Oled::Zero,
         .trace = kAdlxOn + " Create Count!", .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = "+amdadlx64.dll"},
        {.point = "cmd11-amd|ADL2_Adapter_AdapterInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = kAdlxOn + " " + kAdlOnAdaptersFailed, .panel = kAmdOn + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Display_DisplayInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::Zero,
         .trace = kAdlxOn + " " + kAdlDispFailed, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Display_DisplayInfo_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::Zero,
         .trace = kAdlxOn + " " + kAdlDispFailed, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Display_EdidData_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlListed, .after = Oled::Zero,
         .trace = kAdlxOn + " " + kAdlEdidFailed, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Display_EdidData_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kFalse, .logs = kAdlListed, .after = Oled::Zero,
         .trace = kAdlxOn + " " + kAdlEdidFailed, .panel = kAmdUntouchedOff + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Display_NativeAUXChannel_Access|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = kAdlxOn + " " + kAdlOnAux4Failed, .panel = kAmdOnMissed4 + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADL2_Main_Control_Destroy|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Destroy", kAdlError, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = kAdlxOn + " " + kAdlOnDestroyFailed, .panel = kAmdOn + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},

        // ---- 12 SetOLEDPowerSaveOFF on AMD, its ADL half: VariBright went off; the response holds
        // this handler's "result": true, then SetAmdElp's.
        {.point = "cmd12-amd|atiadlxx.dll+atiadlxy.dll|missing", .machine = kAmdOnM, .drivers = kNoAdl,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueFalse, .logs = kAdlNotFound,
         .after = Oled::One, .trace = kAdlxOff, .panel = kAmdUntouchedOn + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|atiadlxx.dll|missing", .machine = kAmdOnM, .drivers = kAdlFallback, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = kAdlxOff + " " + kAdlOffFallback, .panel = kAmdOff + " VB=0",
         .loaded = "+amdadlx64.dll -atiadlxy.dll"},
        {.point = "cmd12-amd|ADL2_Display_DisplayInfo_Get|missing", .machine = kAmdOnM, .drivers = kAdlNoDisplayInfo,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueFalse, .logs = kAdlApiMissing,
         .after = Oled::One, .trace = kAdlxOff, .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Display_NativeAUXChannel_Access|missing", .machine = kAmdOnM, .drivers = kAdlNoAux,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueFalse, .logs = kAdlAuxMissing,
         .after = Oled::One, .trace = kAdlxOff, .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Display_EdidData_Get|missing", .machine = kAmdOnM, .drivers = kAdlNoEdid,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueFalse, .logs = kAdlNoEdidApi,
         .after = Oled::One, .trace = kAdlxOff + " " + kAdlWithoutEdid, .panel = kAmdUntouchedOn + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Main_Control_Create|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Create", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = kAdlInitError, .after = Oled::One, .trace = kAdlxOff + " Create!",
         .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Main_Control_Create|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Create", kAdlWarning, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlInitError, .after = Oled::One,
         .trace = kAdlxOff + " Create!", .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Adapter_NumberOfAdapters_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlNoCount, .after = Oled::One,
         .trace = kAdlxOff + " Create Count!", .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlNoCount, .after = Oled::One,
         .trace = kAdlxOff + " Create Count!", .panel = kAmdUntouchedOn + " VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd12-amd|ADL2_Adapter_AdapterInfo_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = kAdlxOff + " " + kAdlOffAdaptersFailed, .panel = kAmdOff + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Display_DisplayInfo_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlCounted, .after = Oled::One,
         .trace = kAdlxOff + " " + kAdlDispFailed, .panel = kAmdUntouchedOn + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Display_DisplayInfo_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlCounted, .after = Oled::One,
         .trace = kAdlxOff + " " + kAdlDispFailed, .panel = kAmdUntouchedOn + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Display_EdidData_Get|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueFalse, .logs = kAdlListed, .after = Oled::One, .trace = kAdlxOff + " " + kAdlEdidFailed,
         .panel = kAmdUntouchedOn + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Display_EdidData_Get|warning", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueFalse, .logs = kAdlListed, .after = Oled::One,
         .trace = kAdlxOff + " " + kAdlEdidFailed, .panel = kAmdUntouchedOn + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Display_NativeAUXChannel_Access|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = kAdlxOff + " " + kAdlOffAux4Failed, .panel = kAmdOffMissed4 + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADL2_Main_Control_Destroy|error", .machine = kAmdOnM,
         .faults = {{"ADL2_Main_Control_Destroy", kAdlError, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlxOff + " " + kAdlOffDestroyFailed,
         .panel = kAmdOff + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},

        // ---- Display on, "OLED" = 1, on AMD: the "on" list re-sent; nothing stored either way.
        {.point = "event-amd|atiadlxx.dll+atiadlxy.dll|missing", .machine = kAmdM, .drivers = kNoAdl,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlNotFound,
         .after = Oled::One, .trace = "", .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "event-amd|atiadlxx.dll|missing", .machine = kAmdM, .drivers = kAdlFallback, .before = Oled::One,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlWrote, .after = Oled::One,
         .trace = kAdlOnFallback, .panel = kAmdOn, .loaded = "-atiadlxy.dll -amdadlx64.dll"},
        {.point = "event-amd|ADL2_Display_DisplayInfo_Get|missing", .machine = kAmdM, .drivers = kAdlNoDisplayInfo,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse,
         .logs = kEventOn + kAdlApiMissing, .after = Oled::One, .trace = "", .panel = kAmdUntouchedOff,
         .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Display_NativeAUXChannel_Access|missing", .machine = kAmdM, .drivers = kAdlNoAux,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse,
         .logs = kEventOn + kAdlAuxMissing, .after = Oled::One, .trace = "", .panel = kAmdUntouchedOff,
         .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Display_EdidData_Get|missing", .machine = kAmdM, .drivers = kAdlNoEdid,
         .before = Oled::One, .action = kEvent, .status = kOk, .response = kNoResponse,
         .logs = kEventOn + kAdlNoEdidApi, .after = Oled::One, .trace = kAdlWithoutEdid, .panel = kAmdUntouchedOff,
         .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Main_Control_Create|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlError, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + kAdlInitError, .after = Oled::One, .trace = "Create!",
         .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Main_Control_Create|warning", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Create", kAdlWarning, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + kAdlInitError, .after = Oled::One, .trace = "Create!",
         .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Adapter_NumberOfAdapters_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlError, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlNoCount, .after = Oled::One,
         .trace = "Create Count!", .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Adapter_NumberOfAdapters_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlNoCount, .after = Oled::One,
         .trace = "Create Count!", .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Adapter_AdapterInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_AdapterInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlWrote, .after = Oled::One,
         .trace = kAdlOnAdaptersFailed, .panel = kAmdOn, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Display_DisplayInfo_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlError, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlCounted, .after = Oled::One,
         .trace = kAdlDispFailed, .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Display_DisplayInfo_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlCounted, .after = Oled::One,
         .trace = kAdlDispFailed, .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Display_EdidData_Get|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlError, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + kAdlListed, .after = Oled::One, .trace = kAdlEdidFailed,
         .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Display_EdidData_Get|warning", .machine = kAmdM,
         .faults = {{"ADL2_Display_EdidData_Get", kAdlWarning, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlListed, .after = Oled::One,
         .trace = kAdlEdidFailed, .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Display_NativeAUXChannel_Access|error", .machine = kAmdM,
         .faults = {{"ADL2_Display_NativeAUXChannel_Access", kAdlError, 4}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlWrote, .after = Oled::One,
         .trace = kAdlOnAux4Failed, .panel = kAmdOnMissed4, .loaded = kAdlUnloaded},
        {.point = "event-amd|ADL2_Main_Control_Destroy|error", .machine = kAmdM,
         .faults = {{"ADL2_Main_Control_Destroy", kAdlError, 1}}, .before = Oled::One, .action = kEvent, .status = kOk,
         .response = kNoResponse, .logs = kEventOn + kAdlWrote, .after = Oled::One, .trace = kAdlOnDestroyFailed,
         .panel = kAmdOn, .loaded = kAdlUnloaded},
    };
}

// ADLX: command 10 on AMD, the ADLX half of commands 11 and 12 on AMD, and commands 13 and 14
// (which never initialise ADLX themselves: their rows start with it initialised by command
// 10). ADLX stays loaded after a command unless its display services could not be had.
std::vector<FaultRow> AdlxRows()
{
    return {
        // ---- 10 GetIfOLEDSupport on AMD: initialise, take the first display, ask VariBright.
        {.point = "cmd10-amd|amdadlx64.dll|missing", .machine = kAmdM, .drivers = kNoAdlx, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "",
         .panel = "VB=0", .loaded = "-amdadlx64.dll"},
        // A library without one of the six exports counts as no ADLX, and stays loaded.
        {.point = "cmd10-amd|ADLXInitializeWithIncompatibleDriver|missing", .machine = kAmdM,
         .drivers = kAdlxNoIncompat, .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kFalse,
         .logs = {}, .after = Oled::Zero, .trace = "", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|ADLXQueryFullVersion|error", .machine = kAmdM,
         .faults = {{"ADLXQueryFullVersion", kAdlxFail, 1}}, .before = Oled::Zero, .action = Cmd(10), .status = kOk,
         .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer! Ver XInit Services Displays At VB IsSup", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|ADLXQueryVersion|error", .machine = kAmdM, .faults = {{"ADLXQueryVersion", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver! XInit Services Displays At VB IsSup", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|ADLXInitialize|error", .machine = kAmdM, .faults = {{"ADLXInitialize", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|ADLXInitialize|already-initialized", .machine = kAmdM, .arrange = kAdlxReady,
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit! Services Displays At VB IsSup", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        // Without display services ADLX is terminated and unloaded.
        {.point = "cmd10-amd|GetDisplaysServices|error", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}}, .before = Oled::Zero, .action = Cmd(10), .status = kOk,
         .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "FullVer Ver XInit Services! XTerm",
         .panel = "VB=0", .loaded = "-amdadlx64.dll"},
        {.point = "cmd10-amd|GetDisplaysServices|success-code", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(10),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services! XTerm", .panel = "VB=0", .loaded = "-amdadlx64.dll"},
        {.point = "cmd10-amd|ADLXTerminate|error", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services! XTerm!", .panel = "VB=0", .loaded = "-amdadlx64.dll"},
        // No list, no display: VariBright is asked for a null display and refused.
        {.point = "cmd10-amd|GetDisplays|error", .machine = kAmdM, .faults = {{"GetDisplays", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays! VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|GetDisplays|success-code", .machine = kAmdM,
         .faults = {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(10),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays! VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|At|error", .machine = kAmdM, .faults = {{"At", kAdlxFail, 1}}, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays At! VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|GetVariBright|error", .machine = kAmdM, .faults = {{"GetVariBright", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays At VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd10-amd|GetVariBright|success-code", .machine = kAmdM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(10),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays At VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        // The answer the call did not give stays false.
        {.point = "cmd10-amd|IsSupported|error", .machine = kAmdM, .faults = {{"IsSupported", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = kAdlxQuery + "!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},

        // ---- 11 SetOLEDPowerSaveON on AMD, its ADLX half: a failure skips the ADLX calls after
        // it, and SetAmdElp writes the panel all the same.
        {.point = "cmd11-amd|amdadlx64.dll|missing", .machine = kAmdM, .drivers = kNoAdlx, .before = Oled::Zero,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One, .trace = kAdlOn,
         .panel = kAmdOn + " VB=0 MODE=balanced", .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXInitializeWithIncompatibleDriver|missing", .machine = kAmdM,
         .drivers = kAdlxNoIncompat, .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue,
         .logs = kAdlWrote, .after = Oled::One, .trace = kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXQueryFullVersion|error", .machine = kAmdM,
         .faults = {{"ADLXQueryFullVersion", kAdlxFail, 1}}, .before = Oled::Zero, .action = Cmd(11), .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer! Ver XInit Services Displays At VB En=1 VB MaxBat " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=maximizeBattery", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXQueryVersion|error", .machine = kAmdM, .faults = {{"ADLXQueryVersion", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver! XInit Services Displays At VB En=1 VB MaxBat " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=maximizeBattery", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXInitialize|error", .machine = kAmdM, .faults = {{"ADLXInitialize", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit! " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXInitialize|already-initialized", .machine = kAmdM, .arrange = kAdlxReady,
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit! Services Displays At VB En=1 VB MaxBat " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=maximizeBattery", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetDisplaysServices|error", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}}, .before = Oled::Zero, .action = Cmd(11), .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services! XTerm " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd11-amd|GetDisplaysServices|success-code", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services! XTerm " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd11-amd|ADLXTerminate|error", .machine = kAmdM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, .before = Oled::Zero,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services! XTerm! " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd11-amd|GetDisplays|error", .machine = kAmdM, .faults = {{"GetDisplays", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit Services Displays! VB! " + kAdlOn,
         .panel = kAmdOn + " VB=0 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetDisplays|success-code", .machine = kAmdM,
         .faults = {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services Displays! VB! " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|At|error", .machine = kAmdM, .faults = {{"At", kAdlxFail, 1}}, .before = Oled::Zero,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services Displays At! VB! " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetVariBright|error", .machine = kAmdM, .faults = {{"GetVariBright", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit Services Displays At VB! " + kAdlOn,
         .panel = kAmdOn + " VB=0 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetVariBright|success-code", .machine = kAmdM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services Displays At VB! " + kAdlOn, .panel = kAmdOn + " VB=0 MODE=balanced",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|SetEnabled|error", .machine = kAmdM, .faults = {{"SetEnabled", kAdlxFail, 1}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit Services Displays At VB En=1! " + kAdlOn,
         .panel = kAmdOn + " VB=0 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},
        // "Already enabled" is a success: the battery mode is chosen next.
        {.point = "cmd11-amd|SetEnabled|success-code", .machine = kAmdM,
         .faults = {{"SetEnabled", kAdlxAlreadyEnabled, 1}}, .before = Oled::Zero, .action = Cmd(11), .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services Displays At VB En=1! VB MaxBat " + kAdlOn,
         .panel = kAmdOn + " VB=0 MODE=maximizeBattery", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetVariBright#2|error", .machine = kAmdM, .faults = {{"GetVariBright", kAdlxFail, 2}},
         .before = Oled::Zero, .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote,
         .after = Oled::One, .trace = "FullVer Ver XInit Services Displays At VB En=1 VB! " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|GetVariBright#2|success-code", .machine = kAmdM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 2}}, .before = Oled::Zero, .action = Cmd(11),
         .status = kOk, .response = kTrue, .logs = kAdlWrote, .after = Oled::One,
         .trace = "FullVer Ver XInit Services Displays At VB En=1 VB! " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|SetMaximizeBattery|error", .machine = kAmdM,
         .faults = {{"SetMaximizeBattery", kAdlxFail, 1}}, .before = Oled::Zero, .action = Cmd(11), .status = kOk,
         .response = kTrue, .logs = kAdlWrote, .after = Oled::One, .trace = kAdlxOn + "! " + kAdlOn,
         .panel = kAmdOn + " VB=1 MODE=balanced", .loaded = kAdlxLoadedAdlUnloaded},

        // ---- 12 SetOLEDPowerSaveOFF on AMD, its ADLX half: this handler's "result" says whether
        // VariBright went off; SetAmdElp's follows.
        {.point = "cmd12-amd|amdadlx64.dll|missing", .machine = kAmdOnM, .drivers = kNoAdlx, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = kAdlOff, .panel = kAmdOff + " VB=1", .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXInitializeWithIncompatibleDriver|missing", .machine = kAmdOnM,
         .drivers = kAdlxNoIncompat, .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kFalseTrue,
         .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXQueryFullVersion|error", .machine = kAmdOnM,
         .faults = {{"ADLXQueryFullVersion", kAdlxFail, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer! Ver XInit Services Displays At VB En=0 " + kAdlOff, .panel = kAmdOff + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXQueryVersion|error", .machine = kAmdOnM,
         .faults = {{"ADLXQueryVersion", kAdlxFail, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver! XInit Services Displays At VB En=0 " + kAdlOff, .panel = kAmdOff + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXInitialize|error", .machine = kAmdOnM, .faults = {{"ADLXInitialize", kAdlxFail, 1}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote,
         .after = Oled::Zero, .trace = "FullVer Ver XInit! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXInitialize|already-initialized", .machine = kAmdOnM, .arrange = kAdlxReady,
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kTrueTrue, .logs = kAdlWrote,
         .after = Oled::Zero, .trace = "FullVer Ver XInit! Services Displays At VB En=0 " + kAdlOff,
         .panel = kAmdOff + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|GetDisplaysServices|error", .machine = kAmdOnM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services! XTerm " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd12-amd|GetDisplaysServices|success-code", .machine = kAmdOnM,
         .faults = {{"GetDisplaysServices", kAdlxAlreadyInitialized, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services! XTerm " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd12-amd|ADLXTerminate|error", .machine = kAmdOnM,
         .faults = {{"GetDisplaysServices", kAdlxFail, 1}, {"ADLXTerminate", kAdlxFail, 1}}, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services! XTerm! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxUnloadedAdlUnloaded},
        {.point = "cmd12-amd|GetDisplays|error", .machine = kAmdOnM, .faults = {{"GetDisplays", kAdlxFail, 1}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote,
         .after = Oled::Zero, .trace = "FullVer Ver XInit Services Displays! VB! " + kAdlOff,
         .panel = kAmdOff + " VB=1", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|GetDisplays|success-code", .machine = kAmdOnM,
         .faults = {{"GetDisplays", kAdlxAlreadyInitialized, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays! VB! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|At|error", .machine = kAmdOnM, .faults = {{"At", kAdlxFail, 1}}, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays At! VB! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|GetVariBright|error", .machine = kAmdOnM, .faults = {{"GetVariBright", kAdlxFail, 1}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote,
         .after = Oled::Zero, .trace = "FullVer Ver XInit Services Displays At VB! " + kAdlOff,
         .panel = kAmdOff + " VB=1", .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|GetVariBright|success-code", .machine = kAmdOnM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, .before = Oled::One, .action = Cmd(12),
         .status = kOk, .response = kFalseTrue, .logs = kAdlWrote, .after = Oled::Zero,
         .trace = "FullVer Ver XInit Services Displays At VB! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|SetEnabled|error", .machine = kAmdOnM, .faults = {{"SetEnabled", kAdlxFail, 1}},
         .before = Oled::One, .action = Cmd(12), .status = kOk, .response = kFalseTrue, .logs = kAdlWrote,
         .after = Oled::Zero, .trace = kAdlxOff + "! " + kAdlOff, .panel = kAmdOff + " VB=1",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|SetEnabled|success-code", .machine = kAmdOnM,
         .faults = {{"SetEnabled", kAdlxAlreadyEnabled, 1}}, .before = Oled::One, .action = Cmd(12), .status = kOk,
         .response = kTrueTrue, .logs = kAdlWrote, .after = Oled::Zero, .trace = kAdlxOff + "! " + kAdlOff,
         .panel = kAmdOff + " VB=1", .loaded = kAdlxLoadedAdlUnloaded},

        // ---- 13 GetIfVaribrightSupport and 14 SetVaribright, ADLX initialised beforehand.
        {.point = "cmd13|GetVariBright|error", .machine = kAmdM, .faults = {{"GetVariBright", kAdlxFail, 1}},
         .arrange = kAdlxReady, .before = Oled::Zero, .action = Cmd(13), .status = kOk, .response = kFalse, .logs = {},
         .after = Oled::Zero, .trace = "VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd13|GetVariBright|success-code", .machine = kAmdM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, .arrange = kAdlxReady, .before = Oled::Zero,
         .action = Cmd(13), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "VB!",
         .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd13|IsSupported|error", .machine = kAmdM, .faults = {{"IsSupported", kAdlxFail, 1}},
         .arrange = kAdlxReady, .before = Oled::Zero, .action = Cmd(13), .status = kOk, .response = kFalse, .logs = {},
         .after = Oled::Zero, .trace = "VB IsSup!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd14|GetVariBright|error", .machine = kAmdM, .faults = {{"GetVariBright", kAdlxFail, 1}},
         .arrange = kAdlxReady, .before = Oled::Zero, .action = kOn14, .status = kOk, .response = kFalse, .logs = {},
         .after = Oled::Zero, .trace = "VB!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd14|GetVariBright|success-code", .machine = kAmdM,
         .faults = {{"GetVariBright", kAdlxAlreadyInitialized, 1}}, .arrange = kAdlxReady, .before = Oled::Zero,
         .action = kOn14, .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "VB!",
         .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd14|SetEnabled|error", .machine = kAmdM, .faults = {{"SetEnabled", kAdlxFail, 1}},
         .arrange = kAdlxReady, .before = Oled::Zero, .action = kOn14, .status = kOk, .response = kFalse, .logs = {},
         .after = Oled::Zero, .trace = "VB En=1!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
        {.point = "cmd14|SetEnabled|success-code", .machine = kAmdM, .faults = {{"SetEnabled", kAdlxAlreadyEnabled, 1}},
         .arrange = kAdlxReady, .before = Oled::Zero, .action = kOn14, .status = kOk, .response = kTrue, .logs = {},
         .after = Oled::Zero, .trace = "VB En=1!", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
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
        {.point = "cmd1|RegOpenKeyExW|access-denied", .machine = kIntelOn, .before = Oled::DenyWrite, .action = Cmd(1),
         .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kOpen + " Caps Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd1|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOn, .before = Oled::VolatileParent,
         .action = Cmd(1), .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"1021"),
         .after = Oled::Absent, .trace = kOpen + " Caps Get Close", .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd2|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite, .action = Cmd(2),
         .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kOpstDone, .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd2|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff, .before = Oled::VolatileParent,
         .action = Cmd(2), .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"1021"),
         .after = Oled::Absent, .trace = kOpstDone, .panel = "OPST=1", .loaded = kCtlUnloaded},
        {.point = "cmd3|RegOpenKeyExW|access-denied", .machine = kIntelOn, .before = Oled::DenyWrite, .action = Cmd(3),
         .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kOpstDone, .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd3|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOn, .before = Oled::VolatileParent,
         .action = Cmd(3), .status = kOk, .response = kTrue, .logs = Lines{kOpstSupported} + RegistryFailed(L"1021"),
         .after = Oled::Absent, .trace = kOpstDone, .panel = "OPST=0", .loaded = kCtlUnloaded},
        {.point = "cmd5|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite, .action = Cmd(5),
         .status = kOk, .response = kTrue, .logs = RegistryFailed(L"5"), .after = Oled::DenyWrite, .trace = kEdOnDone,
         .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd5|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff, .before = Oled::VolatileParent,
         .action = Cmd(5), .status = kOk, .response = kTrue, .logs = RegistryFailed(L"1021"), .after = Oled::Absent,
         .trace = kEdOnDone, .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd6|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite, .action = Cmd(6),
         .status = kOk, .response = kTrue, .logs = RegistryFailed(L"5"), .after = Oled::DenyWrite, .trace = kEdOffDone,
         .panel = kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd6|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff, .before = Oled::VolatileParent,
         .action = Cmd(6), .status = kOk, .response = kTrue, .logs = RegistryFailed(L"1021"), .after = Oled::Absent,
         .trace = kEdOffDone, .panel = kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite,
         .action = kOn9, .status = kOk, .response = kTrue, .logs = RegistryFailed(L"5"), .after = Oled::DenyWrite,
         .trace = kEdOnDone, .panel = kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff,
         .before = Oled::VolatileParent, .action = kOn9, .status = kOk, .response = kTrue,
         .logs = RegistryFailed(L"1021"), .after = Oled::Absent, .trace = kEdOnDone, .panel = kPanelOn,
         .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite,
         .action = kOff9, .status = kOk, .response = kTrue, .logs = RegistryFailed(L"5"), .after = Oled::DenyWrite,
         .trace = kEdOffDone, .panel = kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff,
         .before = Oled::VolatileParent, .action = kOff9, .status = kOk, .response = kTrue,
         .logs = RegistryFailed(L"1021"), .after = Oled::Absent, .trace = kEdOffDone, .panel = kPanelOff,
         .loaded = kCtlUnloaded},
        {.point = "cmd9-amd-on|RegOpenKeyExW|access-denied", .machine = kAmdM, .before = Oled::DenyWrite,
         .action = kOn9, .status = kOk, .response = kTrue, .logs = kAdlWrote + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kAdlOn, .panel = kAmdOn, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-on|RegCreateKeyExW|child-must-be-volatile", .machine = kAmdM,
         .before = Oled::VolatileParent, .action = kOn9, .status = kOk, .response = kTrue,
         .logs = kAdlWrote + RegistryFailed(L"1021"), .after = Oled::Absent, .trace = kAdlOn, .panel = kAmdOn,
         .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|RegOpenKeyExW|access-denied", .machine = kAmdOnM, .before = Oled::DenyWrite,
         .action = kOff9, .status = kOk, .response = kTrue, .logs = kAdlWrote + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kAdlOff, .panel = kAmdOff, .loaded = kAdlUnloaded},
        {.point = "cmd9-amd-off|RegCreateKeyExW|child-must-be-volatile", .machine = kAmdOnM,
         .before = Oled::VolatileParent, .action = kOff9, .status = kOk, .response = kTrue,
         .logs = kAdlWrote + RegistryFailed(L"1021"), .after = Oled::Absent, .trace = kAdlOff, .panel = kAmdOff,
         .loaded = kAdlUnloaded},
        // Both inner handlers write, and both writes fail.
        {.point = "cmd11-intel|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite,
         .action = Cmd(11), .status = kOk, .response = kTrueTrue,
         .logs = Lines{kOpstSupported} + RegistryFailed(L"5") + RegistryFailed(L"5"), .after = Oled::DenyWrite,
         .trace = kOpstDone + " " + kEdOnDone, .panel = "OPST=1 " + kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff,
         .before = Oled::VolatileParent, .action = Cmd(11), .status = kOk, .response = kTrueTrue,
         .logs = Lines{kOpstSupported} + RegistryFailed(L"1021") + RegistryFailed(L"1021"), .after = Oled::Absent,
         .trace = kOpstDone + " " + kEdOnDone, .panel = "OPST=1 " + kPanelOn, .loaded = kCtlUnloaded},
        {.point = "cmd11-amd|RegOpenKeyExW|access-denied", .machine = kAmdM, .before = Oled::DenyWrite,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kAdlxOn + " " + kAdlOn, .panel = kAmdOn + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd11-amd|RegCreateKeyExW|child-must-be-volatile", .machine = kAmdM, .before = Oled::VolatileParent,
         .action = Cmd(11), .status = kOk, .response = kTrue, .logs = kAdlWrote + RegistryFailed(L"1021"),
         .after = Oled::Absent, .trace = kAdlxOn + " " + kAdlOn, .panel = kAmdOn + " VB=1 MODE=maximizeBattery",
         .loaded = kAdlxLoadedAdlUnloaded},
        // DisableOpst records after its session; DisableEd records before its own.
        {.point = "cmd12-intel|RegOpenKeyExW|access-denied", .machine = kIntelOn, .before = Oled::DenyWrite,
         .action = Cmd(12), .status = kOk, .response = kTrueTrue,
         .logs = Lines{kOpstSupported} + RegistryFailed(L"5") + RegistryFailed(L"5"), .after = Oled::DenyWrite,
         .trace = kOpstDone + " " + kEdOffDone, .panel = "OPST=0 " + kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOn,
         .before = Oled::VolatileParent, .action = Cmd(12), .status = kOk, .response = kTrueTrue,
         .logs = Lines{kOpstSupported} + RegistryFailed(L"1021") + RegistryFailed(L"1021"), .after = Oled::Absent,
         .trace = kOpstDone + " " + kEdOffDone, .panel = "OPST=0 " + kPanelOff, .loaded = kCtlUnloaded},
        {.point = "cmd12-amd|RegOpenKeyExW|access-denied", .machine = kAmdOnM, .before = Oled::DenyWrite,
         .action = Cmd(12), .status = kOk, .response = kTrueTrue, .logs = kAdlWrote + RegistryFailed(L"5"),
         .after = Oled::DenyWrite, .trace = kAdlxOff + " " + kAdlOff, .panel = kAmdOff + " VB=0",
         .loaded = kAdlxLoadedAdlUnloaded},
        {.point = "cmd12-amd|RegCreateKeyExW|child-must-be-volatile", .machine = kAmdOnM,
         .before = Oled::VolatileParent, .action = Cmd(12), .status = kOk, .response = kTrueTrue,
         .logs = kAdlWrote + RegistryFailed(L"1021"), .after = Oled::Absent, .trace = kAdlxOff + " " + kAdlOff,
         .panel = kAmdOff + " VB=0", .loaded = kAdlxLoadedAdlUnloaded},

        // ---- Command 7: any failed read answers 0 with StatusRegistryError; the value stays.
        {.point = "cmd7|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite, .action = Cmd(7),
         .status = kRegistryError, .response = L"{\"result\":0}", .logs = {kOpenFailed + L"5"},
         .after = Oled::DenyWrite, .trace = "", .panel = "", .loaded = ""},
        {.point = "cmd7|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff, .before = Oled::VolatileParent,
         .action = Cmd(7), .status = kRegistryError, .response = L"{\"result\":0}", .logs = {kOpenFailed + L"1021"},
         .after = Oled::Absent, .trace = "", .panel = "", .loaded = ""},
        {.point = "cmd7|RegQueryValueExW|REG_SZ-1", .machine = kIntelOff, .before = Oled::Sz1, .action = Cmd(7),
         .status = kRegistryError, .response = L"{\"result\":0}", .logs = {}, .after = Oled::Sz1, .trace = "",
         .panel = "", .loaded = ""},
        {.point = "cmd7|RegQueryValueExW|REG_SZ-10", .machine = kIntelOff, .before = Oled::Sz10, .action = Cmd(7),
         .status = kRegistryError, .response = L"{\"result\":0}", .logs = {}, .after = Oled::Sz10, .trace = "",
         .panel = "", .loaded = ""},
        {.point = "cmd7|RegQueryValueExW|REG_BINARY", .machine = kIntelOff, .before = Oled::Binary1, .action = Cmd(7),
         .status = kRegistryError, .response = L"{\"result\":0}", .logs = {}, .after = Oled::Binary1, .trace = "",
         .panel = "", .loaded = ""},
        {.point = "cmd7|RegQueryValueExW|REG_DWORD-8-bytes", .machine = kIntelOff, .before = Oled::Dword8,
         .action = Cmd(7), .status = kRegistryError, .response = L"{\"result\":0}", .logs = {}, .after = Oled::Dword8,
         .trace = "", .panel = "", .loaded = ""},
        {.point = "cmd7|RegQueryValueExW|REG_QWORD", .machine = kIntelOff, .before = Oled::Qword1, .action = Cmd(7),
         .status = kRegistryError, .response = L"{\"result\":0}", .logs = {}, .after = Oled::Qword1, .trace = "",
         .panel = "", .loaded = ""},

        // ---- The display-power event: a failed read is "0", and the event only logs its entry.
        {.point = "event|RegOpenKeyExW|access-denied", .machine = kIntelOff, .before = Oled::DenyWrite,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventEntered + Lines{kOpenFailed + L"5"},
         .after = Oled::DenyWrite, .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegCreateKeyExW|child-must-be-volatile", .machine = kIntelOff, .before = Oled::VolatileParent,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventEntered + Lines{kOpenFailed + L"1021"},
         .after = Oled::Absent, .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegQueryValueExW|REG_SZ-1", .machine = kIntelOff, .before = Oled::Sz1, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventEntered, .after = Oled::Sz1, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegQueryValueExW|REG_SZ-10", .machine = kIntelOff, .before = Oled::Sz10, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventEntered, .after = Oled::Sz10, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegQueryValueExW|REG_BINARY", .machine = kIntelOff, .before = Oled::Binary1, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventEntered, .after = Oled::Binary1, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegQueryValueExW|REG_DWORD-8-bytes", .machine = kIntelOff, .before = Oled::Dword8,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventEntered, .after = Oled::Dword8,
         .trace = "", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "event|RegQueryValueExW|REG_QWORD", .machine = kIntelOff, .before = Oled::Qword1, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventEntered, .after = Oled::Qword1, .trace = "",
         .panel = kUntouched, .loaded = kCtlUnloaded},

        // ---- The store's two operations on their own (status: SetSettingsDword's result, or
        // whether OpenOrCreateSettingsKey handed back a key).
        {.point = "settings-store|RegSetValueExW|access-denied", .machine = kIntelOff, .before = Oled::One,
         .action = {Act::SetOnReadOnlyKey, 0, nullptr}, .status = 0, .response = kNoResponse,
         .logs = {kSetFailed + L"5"}, .after = Oled::One, .trace = "", .panel = "", .loaded = ""},
        {.point = "settings-store|RegOpenKeyExW|bad-pathname", .machine = kIntelOff, .before = Oled::Absent,
         .action = {Act::OpenUnusablePath, 0, nullptr}, .status = 0, .response = kNoResponse,
         .logs = {kOpenFailed + L"161"}, .after = Oled::Absent, .trace = "", .panel = "", .loaded = ""},
    };
}

// Further cases of points counted above: other machines and histories that change the outcome.
std::vector<FaultRow> FurtherRows()
{
    return {
        // The first adapter's outputs cannot be counted: one line, and the second adapter is used.
        {.machine = Machine::IntelTwoAdapters, .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kOk, .response = kTrue,
         .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out! Out Out " + kEdOn + " Close",
         .panel = "I1:404B=7C84CC I1:4056=1756FE I1:404E=0C0003 I1:4054=02 " + kUntouched, .loaded = kCtlUnloaded},
        // A one-byte "on" sequence whose read-back fails compares 00 with C0.
        {.machine = Machine::IntelPanel4174, .faults = {{"ctlAUXAccess", kUninitialized, 2}}, .before = Oled::Zero,
         .action = Cmd(5), .status = kOk, .response = kFalse, .logs = {kVerifyFailed, SessionFailed(kUninitialized)},
         .after = Oled::Zero, .trace = kOpen + " Props W4027=C0 Aux! Close", .panel = "I4027=C0",
         .loaded = kCtlUnloaded},
        // The "off" byte is 00: the failed read-back matches it, but its status still makes the
        // display count as failed.
        {.machine = Machine::IntelPanel4174, .faults = {{"ctlAUXAccess", kUninitialized, 2}}, .before = Oled::One,
         .action = Cmd(6), .status = kOk, .response = kFalse, .logs = {SessionFailed(kUninitialized)},
         .after = Oled::Zero, .trace = kOpen + " Props W4027=00 Aux! Close", .panel = "I4027=00",
         .loaded = kCtlUnloaded},
        // The probe's read fails after command 8 filled the shared record: the record still says
        // OPST is supported, and the switch goes ahead.
        {.machine = kIntelOff, .faults = {{"ctlGetPowerOptimizationSetting", kNotImplemented, 1}},
         .arrange = Arrange::OpstRecordFilled, .before = Oled::Zero, .action = Cmd(2), .status = kOk, .response = kTrue,
         .logs = {kOpstSupported}, .after = Oled::One, .trace = kOpen + " Caps Get! Set Get Close", .panel = "OPST=1",
         .loaded = kCtlUnloaded},
        // The set fails on a panel already off: the read-back shows the requested state.
        {.machine = kIntelOff, .faults = {{"ctlSetPowerOptimizationSetting", kUnsupportedFeature, 1}},
         .before = Oled::One, .action = Cmd(3), .status = kOk, .response = kTrue, .logs = {kOpstSupported},
         .after = Oled::Zero, .trace = kOpen + " Caps Get Set! Get Close", .panel = "OPST=0", .loaded = kCtlUnloaded},
        // DisableEd records 0 before its session: the store's lines come before the session's.
        {.machine = kIntelOff, .faults = {{"ctlEnumerateDisplayOutputs", kInvalidArgument, 1}},
         .before = Oled::DenyWrite, .action = Cmd(6), .status = kOk, .response = kFalse,
         .logs = RegistryFailed(L"5") + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::DenyWrite, .trace = "Init Dev Dev Out! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        // A success code from the initialisation without a system object: nothing to ask for
        // display services, so ADLX is terminated again.
        {.machine = kAmdM, .faults = {{"ADLXInitialize", kAdlxAlreadyInitialized, 1}}, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit! XTerm", .panel = "VB=0", .loaded = "-amdadlx64.dll"},
        // No new display list: the display taken by the earlier initialisation is kept.
        {.machine = kAmdM, .faults = {{"GetDisplays", kAdlxFail, 1}}, .arrange = kAdlxReady, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::Zero,
         .trace = "FullVer Ver XInit! Services Displays! VB IsSup", .panel = "VB=0", .loaded = "+amdadlx64.dll"},
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
        {.point = "cmd5|ctlEnumerateDevices#count|implausible", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices#count", kIntelTooMany, 1}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Close",
         .panel = kUntouched, .loaded = kCtlUnloaded},
        {.machine = kIntelOff, .faults = {{"ctlEnumerateDevices#count", kMostACountSays, 1}}, .before = Oled::Zero,
         .action = Cmd(5), .status = kDeviceError, .response = kEmpty, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlEnumerateDisplayOutputs#count|implausible", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs#count", kIntelTooMany, 1}}, .before = Oled::Zero, .action = Cmd(5),
         .status = kOk, .response = kFalse, .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)},
         .after = Oled::Zero, .trace = "Init Dev Dev Out Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.machine = kIntelOff, .faults = {{"ctlEnumerateDisplayOutputs#count", kMostACountSays, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kOk, .response = kFalse,
         .logs = {OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        // As after any failure of the count, the walk goes on to the next adapter.
        {.machine = Machine::IntelTwoAdapters, .faults = {{"ctlEnumerateDisplayOutputs#count", kIntelTooMany, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kOk, .response = kTrue,
         .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out Out Out " + kEdOn + " Close",
         .panel = "I1:404B=7C84CC I1:4056=1756FE I1:404E=0C0003 I1:4054=02 " + kUntouched, .loaded = kCtlUnloaded},
        // The event leaves a session it could not open as it is, as after a failed count.
        {.point = "event-intel|ctlEnumerateDevices#count|implausible", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices#count", kMostACountSays, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse, .logs = kEventOn, .after = Oled::One, .trace = "Init Dev",
         .panel = kUntouched, .loaded = kCtlLoaded},
        {.point = "event-intel|ctlEnumerateDisplayOutputs#count|implausible", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs#count", kMostACountSays, 1}}, .before = Oled::One, .action = kEvent,
         .status = kOk, .response = kNoResponse,
         .logs = kEventOn + Lines{OutputsFailed(kInvalidArgument), SessionFailed(kInvalidArgument)}, .after = Oled::One,
         .trace = "Init Dev Dev Out Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        {.point = "cmd9-amd-on|ADL2_Adapter_NumberOfAdapters_Get|implausible", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get#count", kAdlAdaptersTooMany, 1}}, .before = Oled::Zero,
         .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlTooManyAdapters, .after = Oled::Zero,
         .trace = kCreateCount, .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.machine = kAmdM, .faults = {{"ADL2_Adapter_NumberOfAdapters_Get#count", 0x7FFFFFFF, 1}}, .before = Oled::Zero,
         .action = kOn9, .status = kOk, .response = kFalse,
         .logs = {L"I:nAdapter count=2147483647", L"I:lpAdapterInfo buffer size overflow"}, .after = Oled::Zero,
         .trace = kCreateCount, .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        {.point = "event-amd|ADL2_Adapter_NumberOfAdapters_Get|implausible", .machine = kAmdM,
         .faults = {{"ADL2_Adapter_NumberOfAdapters_Get#count", kAdlAdaptersTooMany, 1}}, .before = Oled::One,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn + kAdlTooManyAdapters,
         .after = Oled::One, .trace = kCreateCount, .panel = kAmdUntouchedOff, .loaded = kAdlStopped},
        // The adapter's display list is passed over, as when ADL fails to give it.
        {.point = "cmd9-amd-on|ADL2_Display_DisplayInfo_Get|implausible", .machine = kAmdM,
         .faults = {{"ADL2_Display_DisplayInfo_Get#count", kAdlDisplaysTooMany, 1}}, .before = Oled::Zero,
         .action = kOn9, .status = kOk, .response = kFalse, .logs = kAdlCounted, .after = Oled::Zero,
         .trace = "Create Count Adapters Disp Destroy", .panel = kAmdUntouchedOff, .loaded = kAdlUnloaded},
        // The most displays an adapter may report, 256, is still a list like any other: the first,
        // the panel, is written; the others are neither connected nor mapped.
        {.machine = kAmdM, .faults = {{"ADL2_Display_DisplayInfo_Get#count", kAdlDisplaysTooMany - 1, 1}},
         .before = Oled::Zero, .action = kOn9, .status = kOk, .response = kTrue,
         .logs = {L"I:nAdapter count=1", L"I:display count=256", L"I:Write AUX data"}, .after = Oled::One,
         .trace = kAdlOn, .panel = kAmdOn, .loaded = kAdlUnloaded},
        // Likewise 256 adapters on the Intel side, the most the service takes.
        {.machine = kIntelOff, .faults = {{"ctlEnumerateDevices#count", kIntelTooMany - 1, 1}}, .before = Oled::Zero,
         .action = Cmd(5), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One, .trace = kEdOnDone,
         .panel = kPanelOn, .loaded = kCtlUnloaded},

        // ---- The fill call finds another number than the count call said.
        {.point = "cmd5|ctlEnumerateDevices#list|more", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDevices#fill", 2, 2}}, .before = Oled::Zero, .action = Cmd(5), .status = kDeviceError,
         .response = kEmpty, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev! Close", .panel = kUntouched,
         .loaded = kCtlUnloaded},
        // No adapter left: the two handles allocated are not used.
        {.point = "cmd5|ctlEnumerateDevices#list|fewer", .machine = kNoAdapters,
         .faults = {{"ctlEnumerateDevices#count", 2, 1}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        // Refused, with two outputs said: the loop still runs over the one handle allocated.
        {.point = "cmd5|ctlEnumerateDisplayOutputs#list|more", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs#fill", 2, 2}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kFalse, .logs = {OutputsFailed(kInvalidArgument)}, .after = Oled::Zero,
         .trace = "Init Dev Dev Out Out! Props! Close", .panel = kUntouched, .loaded = kCtlUnloaded},
        // Three said, one filled: only that one is looked at.
        {.point = "cmd5|ctlEnumerateDisplayOutputs#list|fewer", .machine = kIntelOff,
         .faults = {{"ctlEnumerateDisplayOutputs#count", 3, 1}}, .before = Oled::Zero, .action = Cmd(5), .status = kOk,
         .response = kTrue, .logs = {}, .after = Oled::One, .trace = kEdOnDone, .panel = kPanelOn,
         .loaded = kCtlUnloaded},
        // The most outputs an adapter may report, 256, is still a count like any other.
        {.machine = kIntelOff, .faults = {{"ctlEnumerateDisplayOutputs#count", kIntelTooMany - 1, 1}},
         .before = Oled::Zero, .action = Cmd(5), .status = kOk, .response = kTrue, .logs = {}, .after = Oled::One,
         .trace = kEdOnDone, .panel = kPanelOn, .loaded = kCtlUnloaded},

        // ---- No adapter at all: not a failure of the library, so every command answers 0 with
        // a false "result" (command 10 then asks the panel table), and records as for any false.
        {.point = "cmd1|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One, .action = Cmd(1),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd2|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero, .action = Cmd(2),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd3|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One, .action = Cmd(3),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::One, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd5|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero, .action = Cmd(5),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd6|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One, .action = Cmd(6),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd8|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero, .action = Cmd(8),
         .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero, .trace = "Init Dev Dev Close", .panel = "",
         .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-on|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero,
         .action = kOn9, .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
        {.point = "cmd9-intel-off|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One,
         .action = kOff9, .status = kOk, .response = kFalse, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
        {.point = "cmd10-intel|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero,
         .action = Cmd(10), .status = kOk, .response = kFalseTrue, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
        {.point = "cmd11-intel|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::Zero,
         .action = Cmd(11), .status = kOk, .response = kFalseFalse, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Dev Close Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
        {.point = "cmd12-intel|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One,
         .action = Cmd(12), .status = kOk, .response = kFalseFalse, .logs = {}, .after = Oled::Zero,
         .trace = "Init Dev Dev Close Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
        {.point = "event-intel|ctlEnumerateDevices#count|zero", .machine = kNoAdapters, .before = Oled::One,
         .action = kEvent, .status = kOk, .response = kNoResponse, .logs = kEventOn, .after = Oled::One,
         .trace = "Init Dev Dev Close", .panel = "", .loaded = kCtlUnloaded},
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
