// Runs every row of the injected-fault table on the simulated laptop and prints how many fault
// points the passing rows cover. Each row starts from a process and a machine in a known state:
// no vendor library left loaded, the process-wide state of the vendor paths reset, the machine's
// profile installed, the registry arranged, and only then the faults armed, so that a fault's
// "nth" counts the calls of the action itself.
//
// Trace tokens, in the order of the fake drivers' transaction log ("!" = the call answered
// non-zero; records of Release are left out):
//   Intel  Init Dev Out Props Caps Get Set Close, and for ctlAUXAccess W<addr>=<bytes> (write),
//          R<addr>=<bytes read> (read-back), Aux (a call that failed before looking at its record)
//   ADL    Create Count Adapters Disp Edid Destroy, W<addr>=<bytes> for the native AUX channel
//   ADLX   FullVer Ver XInit Services Displays At VB IsSup En=<0|1> MaxBat XTerm
// A library loaded under a name other than its usual one prefixes its tokens ("atiadlxy.dll:Create").
#include "FaultRow.h"

// The readers of the simulated drivers' state that the AMD unit suites use.
#include "../unit/AdlSimSupport.h"
#include "../unit/ServiceProcessState.h"
#include "LogCapture.h"
#include "XeltoClient.h"
#include "SimMachine.h"

#include "IntelState.h"
#include "SimState.h"

#include "amd/ADLXHelper.h"
#include "oled/SettingsStore.h"
#include "service/LumavenService.h"
#include "util/UniqueHandles.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <windows.h>
#include <sddl.h>

#include <cctype>
#include <cstdio>
#include <cwctype>
#include <map>
#include <memory>
#include <set>
#include <sstream>

namespace LumavenFaults {

namespace {

using namespace Xelto::Spanlet::Server::Services::Lumaven;

// Where the service keeps its setting; the parent key is the service's alone.
constexpr wchar_t kSettingsParent[] = L"SOFTWARE\\Xelto";
constexpr wchar_t kKeyPath[] = L"SOFTWARE\\Xelto\\Xelto Lumaven";
constexpr wchar_t kValueName[] = L"OLED";

// ---- The machines ----------------------------------------------------------------------------

namespace Profile = LumavenSim::Profile;

struct MachineSetup {
    const char* serviceKey;  // machines that start the same service share one
    int32_t vendor;
    Profile::Machine profile;
};

Profile::IntelOutput IntelOutput(uint32_t dpstEnabled, std::map<std::string, std::string> dpcd = {})
{
    return {.attached = true,
            .dpcd = std::move(dpcd),
            .dpstSupported = true,
            .opstSupported = true,
            .dpstEnabled = dpstEnabled};
}

Profile::Machine IntelProfile(LumavenSim::PanelIdentity panel, std::vector<Profile::IntelAdapter> adapters)
{
    Profile::Machine machine = Profile::IntelLaptop(panel, std::move(adapters));
    machine.gpuVendorId = "8086";
    machine.gpuDeviceId = "9A49";
    return machine;
}

Profile::Machine AmdProfile(bool panelOn)
{
    Profile::Machine machine = Profile::AmdLaptop(LumavenSim::Panels::kSdc416C);
    machine.gpuVendorId = "1002";
    machine.gpuDeviceId = "1638";
    machine.libraries["amdadlx64.dll"] = "amdadlx64.dll";
    Profile::AmdDisplay& display = machine.amd->adapters[0].displays[0];
    display.logicalAdapterIndex = 0;
    display.dpcd = {{"0x045A", panelOn ? 192 : 0}};
    machine.adlx = Profile::Adlx{
        .displays = {{.varibrightSupported = true, .varibrightEnabled = panelOn, .varibrightMode = "balanced"}}};
    return machine;
}

MachineSetup Setup(Machine machine)
{
    using LumavenSim::Panels::kSdc4160;
    const Profile::IntelAdapter adapter{.outputs = {IntelOutput(0)}};
    switch (machine) {
    case Machine::IntelOpstOff: return {"intel-4160", kVendorIntel, IntelProfile(kSdc4160, {adapter})};
    case Machine::IntelOpstOn:
        return {"intel-4160", kVendorIntel, IntelProfile(kSdc4160, {{.outputs = {IntelOutput(4)}}})};
    case Machine::IntelTwoAdapters: return {"intel-4160", kVendorIntel, IntelProfile(kSdc4160, {adapter, adapter})};
    case Machine::IntelPanel4174:
        return {"intel-4174", kVendorIntel,
                IntelProfile(LumavenSim::Panels::kSdc4174, {{.outputs = {IntelOutput(0, {{"4027", "00"}})}}})};
    case Machine::IntelNoAdapters: return {"intel-4160", kVendorIntel, IntelProfile(kSdc4160, {})};
    case Machine::AmdPanelOff: return {"amd-416C", kVendorAmd, AmdProfile(false)};
    case Machine::AmdPanelOn: return {"amd-416C", kVendorAmd, AmdProfile(true)};
    }
    return {};
}

std::vector<std::string> Words(const std::string& text)
{
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

Profile::Machine ProfileOf(const FaultRow& row)
{
    MachineSetup setup = Setup(row.machine);
    for (const std::string& change : Words(row.drivers)) {
        const size_t equals = change.find('=');
        const std::string name = change.substr(0, equals);
        const std::string file = equals == std::string::npos ? "" : change.substr(equals + 1);
        if (file.empty()) {
            setup.profile.libraries.erase(name);
        } else {
            setup.profile.libraries[name] = file;
        }
    }
    return setup.profile;
}

// ---- The process and the registry between rows --------------------------------------------------

std::map<std::string, std::unique_ptr<LumavenService>>& Services()
{
    static std::map<std::string, std::unique_ptr<LumavenService>> services;
    return services;
}

struct RawValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
    bool operator==(const RawValue&) const = default;
};

RawValue Arranged(Oled oled)
{
    switch (oled) {
    case Oled::Zero: return {REG_DWORD, {0, 0, 0, 0}};
    case Oled::One:
    case Oled::DenyWrite: return {REG_DWORD, {1, 0, 0, 0}};
    case Oled::Sz1: return {REG_SZ, {'1', 0, 0, 0}};
    case Oled::Sz10: return {REG_SZ, {'1', 0, '0', 0, 0, 0}};
    case Oled::Binary1: return {REG_BINARY, {1, 0, 0, 0}};
    case Oled::Dword8: return {REG_DWORD, {1, 0, 0, 0, 0, 0, 0, 0}};
    case Oled::Qword1: return {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}};
    case Oled::Absent:
    case Oled::VolatileParent: break;
    }
    return {};
}

using LumavenUtil::UniqueHkey;

UniqueHkey OpenSettingsKey(REGSAM access)
{
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKeyPath, 0, access, &key);
    return UniqueHkey(key);
}

bool SetKeySecurity(const wchar_t* sddl)
{
    const UniqueHkey key = OpenSettingsKey(WRITE_DAC);
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!key || !ConvertStringSecurityDescriptorToSecurityDescriptorW(sddl, SDDL_REVISION_1, &descriptor, nullptr)) {
        return false;
    }
    const LSTATUS status = RegSetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, descriptor);
    LocalFree(descriptor);
    return status == ERROR_SUCCESS;
}

void ClearRegistry()
{
    // A key left refusing writes by the previous row is opened up before it goes.
    SetKeySecurity(L"D:(A;;KA;;;WD)");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kSettingsParent);
}

void ArrangeRegistry(Oled oled)
{
    ClearRegistry();
    if (oled == Oled::Absent) {
        return;
    }
    const bool volatileParent = oled == Oled::VolatileParent;
    HKEY created = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, volatileParent ? kSettingsParent : kKeyPath, 0, nullptr,
                              volatileParent ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                              &created, nullptr),
              ERROR_SUCCESS);
    const UniqueHkey key(created);
    if (volatileParent) {
        return;
    }
    const RawValue value = Arranged(oled);
    ASSERT_EQ(RegSetValueExW(key.get(), kValueName, 0, value.type, value.bytes.data(),
                             static_cast<DWORD>(value.bytes.size())),
              ERROR_SUCCESS);
    if (oled == Oled::DenyWrite) {
        // Everyone may read the key but not set a value in it.
        ASSERT_TRUE(SetKeySecurity(L"D:P(D;;0x2;;;WD)(A;;KA;;;WD)"));
    }
}

// "OLED" as it is, without the reading rule of the service; type REG_NONE when missing.
RawValue StoredOled()
{
    RawValue value;
    const UniqueHkey key = OpenSettingsKey(KEY_QUERY_VALUE);
    DWORD size = 0;
    if (!key || RegQueryValueExW(key.get(), kValueName, nullptr, &value.type, nullptr, &size) != ERROR_SUCCESS) {
        return {};
    }
    value.bytes.resize(size);
    RegQueryValueExW(key.get(), kValueName, nullptr, &value.type, value.bytes.data(), &size);
    value.bytes.resize(size);
    return value;
}

std::string Describe(const RawValue& value)
{
    if (value.type == REG_NONE) {
        return "absent";
    }
    return "type " + std::to_string(value.type) + " bytes " +
           LumavenSim::BytesToHex(value.bytes.data(), value.bytes.size());
}

// ---- The service and the action ------------------------------------------------------------------

LumavenService& ServiceFor(Machine machine)
{
    const MachineSetup setup = Setup(machine);
    auto& service = Services()[setup.serviceKey];
    if (!service) {
        // Started once on the first row of its machine: the vendor and panel it finds do not
        // change with the faults a row injects.
        service = std::make_unique<LumavenService>();
        service->startup_task();
    }
    return *service;
}

XeltoClient::Reply Run(LumavenService& service, const Action& action)
{
    XeltoClient::Reply outcome;
    switch (action.kind) {
    case Act::Command: outcome = XeltoClient::RunCommand(service, action.command, action.request); break;
    case Act::Event: outcome.status = XeltoClient::Deliver(service, XeltoClient::PowerEvent::DisplayOn); break;
    case Act::SetOnReadOnlyKey: {
        const UniqueHkey key = OpenSettingsKey(KEY_READ);
        outcome.status = SetSettingsDword(key.get(), kValueName, 0) ? 1 : 0;
        break;
    }
    case Act::OpenUnusablePath: {
        // A leading separator makes the path one that no key can have.
        const UniqueHkey key = OpenOrCreateSettingsKey(L"\\SOFTWARE\\Xelto\\Xelto Lumaven");
        outcome.status = key ? 1 : 0;
        break;
    }
    }
    return outcome;
}

void Arm(const std::vector<Fault>& faults)
{
    std::vector<LumavenSim::Profile::Fault> failures;
    std::vector<LumavenSim::Profile::Count> counts;
    for (const Fault& fault : faults) {
        // "name#count" / "name#fill": the count the enumeration finds, not a failure.
        const std::string function = fault.function;
        const size_t hash = function.find('#');
        if (hash == std::string::npos) {
            failures.push_back({.function = function, .code = fault.code, .nth = fault.nth});
        } else {
            counts.push_back({.function = function.substr(0, hash),
                              .call = function.substr(hash + 1),
                              .answer = fault.code,
                              .nth = fault.nth});
        }
    }
    LumavenSim::Profile::Arm(failures, counts);
    LumavenSim::ClearTransactions();
}

// ---- What the row found ----------------------------------------------------------------------------

std::string Hex4(int64_t address)
{
    char text[16];
    std::snprintf(text, sizeof text, "%04llX", static_cast<long long>(address));
    return text;
}

std::string Text(const rapidjson::Value& record, const char* name)
{
    return record.HasMember(name) && record[name].IsString() ? record[name].GetString() : "";
}

std::string Token(const LumavenSim::TransactionRecord& record)
{
    static const std::map<std::string, std::string> names = {
        {"ctlInit", "Init"},
        {"ctlClose", "Close"},
        {"ctlEnumerateDevices", "Dev"},
        {"ctlEnumerateDisplayOutputs", "Out"},
        {"ctlGetDisplayProperties", "Props"},
        {"ctlGetPowerOptimizationCaps", "Caps"},
        {"ctlGetPowerOptimizationSetting", "Get"},
        {"ctlSetPowerOptimizationSetting", "Set"},
        {"ADL2_Main_Control_Create", "Create"},
        {"ADL2_Main_Control_Destroy", "Destroy"},
        {"ADL2_Adapter_NumberOfAdapters_Get", "Count"},
        {"ADL2_Adapter_AdapterInfo_Get", "Adapters"},
        {"ADL2_Display_DisplayInfo_Get", "Disp"},
        {"ADL2_Display_EdidData_Get", "Edid"},
        {"ADLXQueryFullVersion", "FullVer"},
        {"ADLXQueryVersion", "Ver"},
        {"ADLXInitialize", "XInit"},
        {"ADLXTerminate", "XTerm"},
        {"GetDisplaysServices", "Services"},
        {"GetDisplays", "Displays"},
        {"At", "At"},
        {"GetVariBright", "VB"},
        {"IsSupported", "IsSup"},
        {"SetMaximizeBattery", "MaxBat"},
    };
    const std::string call = record.Call();
    std::string token;
    if (call == "ctlAUXAccess") {
        const std::string op = record.String("op");
        token = op == "write" ? "W" : op == "read" ? "R" : "Aux";
        if (!op.empty()) {
            token += Hex4(record.Number("address", 0));
        }
        if (record.Has("data")) {
            token += "=" + record.String("data");
        }
    } else if (call == "ADL2_Display_NativeAUXChannel_Access") {
        token = (record.Number("command", 0) == 1 ? "W" : "R") + Hex4(record.Number("address", 0)) + "=" +
                record.String("bytes");
    } else if (call == "SetEnabled") {
        token = std::string("En=") + (record.Flag("value") ? "1" : "0");
    } else {
        const auto found = names.find(call);
        token = found != names.end() ? found->second : call;
    }
    static const std::set<std::string> usualLibraries = {"ControlLib", "atiadlxx.dll", "amdadlx64.dll"};
    const std::string lib = record.Library();
    if (usualLibraries.count(lib) == 0) {
        token = lib + ":" + token;
    }
    if (record.Number("result", 0) != 0) {
        token += "!";
    }
    return token;
}

std::string Trace()
{
    std::string trace;
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        if (record.Call() == "Release") {
            continue;
        }
        trace += (trace.empty() ? "" : " ") + Token(record);
    }
    return trace;
}

const rapidjson::Value* Path(const rapidjson::Value& root, std::initializer_list<const char*> names,
                             std::initializer_list<size_t> indices = {})
{
    // names and indices alternate: section, list, index, list, index...
    const rapidjson::Value* node = &root;
    auto index = indices.begin();
    for (const char* name : names) {
        if (!node->IsObject() || !node->HasMember(name)) {
            return nullptr;
        }
        node = &(*node)[name];
        if (node->IsArray()) {
            if (index == indices.end() || *index >= node->Size()) {
                return nullptr;
            }
            node = &(*node)[static_cast<rapidjson::SizeType>(*index++)];
        }
    }
    return node;
}

void CheckPanel(const std::string& expected, std::vector<std::string>& mismatches)
{
    const rapidjson::Document state = LumavenTest::Amd::State();
    const rapidjson::Value* amdDisplay = Path(state, {"amd", "adapters", "displays"}, {0, 0});
    const rapidjson::Value* adlxDisplay = Path(state, {"adlx", "displays"}, {0});
    for (const std::string& item : Words(expected)) {
        const size_t equals = item.find('=');
        const std::string name = item.substr(0, equals);
        const std::string want = item.substr(equals + 1);
        std::string got;
        if (name == "OPST") {
            got = LumavenSim::Intel::OpstEnabled(0, 0) ? "1" : "0";
        } else if (name == "VB") {
            got = adlxDisplay != nullptr && adlxDisplay->HasMember("varibrightEnabled") &&
                          (*adlxDisplay)["varibrightEnabled"].GetBool()
                      ? "1"
                      : "0";
        } else if (name == "MODE") {
            got = adlxDisplay != nullptr ? Text(*adlxDisplay, "varibrightMode") : "";
        } else if (name[0] == 'I') {
            const size_t colon = name.find(':');
            const size_t adapter = colon == std::string::npos ? 0 : std::stoul(name.substr(1, colon - 1));
            const uint32_t address = static_cast<uint32_t>(
                std::stoul(colon == std::string::npos ? name.substr(1) : name.substr(colon + 1), nullptr, 16));
            const auto bytes = LumavenSim::Intel::ReadRegisters(adapter, 0, address, want.size() / 2);
            got = LumavenSim::BytesToHex(bytes.data(), bytes.size());
        } else if (name[0] == 'A') {
            const uint32_t address = static_cast<uint32_t>(std::stoul(name.substr(1), nullptr, 16));
            std::vector<uint8_t> bytes;
            for (uint32_t i = 0; i < want.size() / 2; ++i) {
                const std::string registerName = "0x" + Hex4(address + i);
                const rapidjson::Value* dpcd =
                    amdDisplay != nullptr && amdDisplay->HasMember("dpcd") ? &(*amdDisplay)["dpcd"] : nullptr;
                bytes.push_back(dpcd != nullptr && dpcd->HasMember(registerName.c_str())
                                    ? static_cast<uint8_t>((*dpcd)[registerName.c_str()].GetUint())
                                    : 0);
            }
            got = LumavenSim::BytesToHex(bytes.data(), bytes.size());
        }
        if (got != want) {
            mismatches.push_back("panel " + name + ": expected " + want + ", got " + got);
        }
    }
}

void CheckLoaded(const std::string& expected, std::vector<std::string>& mismatches)
{
    for (const std::string& item : Words(expected)) {
        const std::string name = item.substr(1);
        const bool want = item[0] == '+';
        const bool got = GetModuleHandleA(name.c_str()) != nullptr;
        if (got != want) {
            mismatches.push_back(name + (want ? " should still be loaded" : " should not be loaded"));
        }
    }
}

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t c : text) {
        if (c == L'\n') {
            narrow += "\\n";
        } else {
            narrow += c < 0x80 ? static_cast<char>(c) : '?';
        }
    }
    return narrow;
}

// Matches one rendered line against its expectation; the addresses standing for {X}/{x} are
// collected.
bool MatchLine(const std::wstring& expected, const std::wstring& actual, std::vector<uint64_t>& addresses)
{
    size_t e = 0;
    size_t a = 0;
    while (e < expected.size()) {
        if (expected.compare(e, 3, L"{X}") == 0 || expected.compare(e, 3, L"{x}") == 0) {
            const bool upper = expected[e + 1] == L'X';
            const size_t start = a;
            while (a < actual.size() && (iswdigit(actual[a]) || (upper ? (actual[a] >= L'A' && actual[a] <= L'F')
                                                                       : (actual[a] >= L'a' && actual[a] <= L'f')))) {
                ++a;
            }
            if (a == start) {
                return false;
            }
            addresses.push_back(std::stoull(actual.substr(start, a - start), nullptr, 16));
            e += 3;
        } else {
            if (a >= actual.size() || actual[a] != expected[e]) {
                return false;
            }
            ++a;
            ++e;
        }
    }
    return a == actual.size();
}

void CheckLogs(const FaultRow& row, const std::vector<LumavenTest::LogRecord>& records,
               std::vector<std::string>& mismatches)
{
    static const std::map<Xelto::Logging::Level, wchar_t> levels = {{Xelto::Logging::Level::Info, L'I'},
                                                                    {Xelto::Logging::Level::Warning, L'W'},
                                                                    {Xelto::Logging::Level::Error, L'E'}};
    std::vector<std::wstring> actual;
    for (const auto& record : records) {
        actual.push_back(std::wstring(1, levels.at(record.level)) + L":" + record.text);
    }
    std::vector<uint64_t> addresses;
    bool same = actual.size() == row.logs.size();
    for (size_t i = 0; same && i < actual.size(); ++i) {
        same = MatchLine(row.logs[i], actual[i], addresses);
    }
    if (!same) {
        std::string text = "log lines differ; got:";
        for (const auto& line : actual) {
            text += "\n      \"" + Narrow(line) + "\"";
        }
        mismatches.push_back(text);
        return;
    }
    // The command ran on this thread, and the status word is a local of its session: the address
    // lies on this thread's stack.
    ULONG_PTR stackLow = 0;
    ULONG_PTR stackHigh = 0;
    GetCurrentThreadStackLimits(&stackLow, &stackHigh);
    for (const uint64_t address : addresses) {
        if (address != addresses.front()) {
            mismatches.push_back("the status word's address differs between lines");
        }
        if (address < stackLow || address >= stackHigh) {
            mismatches.push_back(
                "the status word's address does not lie on the stack of the thread that ran the command");
        }
        for (const Fault& fault : row.faults) {
            if (address == static_cast<uint64_t>(fault.code)) {
                mismatches.push_back("a line shows the injected code where the status word's address belongs");
            }
        }
    }
}

void CheckOled(const FaultRow& row, std::vector<std::string>& mismatches)
{
    RawValue want;
    switch (row.after) {
    case Oled::Absent:
    case Oled::VolatileParent: break;
    case Oled::DenyWrite: want = Arranged(Oled::One); break;
    default: want = Arranged(row.after); break;
    }
    const RawValue got = StoredOled();
    if (!(got == want)) {
        mismatches.push_back("\"OLED\": expected " + Describe(want) + ", got " + Describe(got));
    }
}

std::string Hex(uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

std::vector<std::string> RunRow(const FaultRow& row)
{
    std::vector<std::string> mismatches;
    // Nothing of an earlier row may linger: a library it left loaded (which would also stop
    // the installer from replacing it), the shared OPST record, the display state of the
    // event path.
    LumavenTest::ResetServiceProcessState();
    LumavenTest::InstallProfile(ProfileOf(row));
    LumavenService& service = ServiceFor(row.machine);
    if (service.m_videoController != Setup(row.machine).vendor) {
        mismatches.push_back("the service started for another vendor: " + std::to_string(service.m_videoController));
        return mismatches;
    }
    if (row.arrange != Arrange::None) {
        const uint32_t command = row.arrange == Arrange::AdlxInitialized ? 10 : 8;
        const auto arranged = XeltoClient::RunCommand(service, command);
        if (arranged.status != StatusSuccess || arranged.response.find(L"true") == std::wstring::npos) {
            mismatches.push_back("the arrangement (command " + std::to_string(command) + ") did not succeed");
            return mismatches;
        }
    }
    ArrangeRegistry(row.before);
    Arm(row.faults);

    XeltoClient::Reply outcome;
    std::vector<LumavenTest::LogRecord> records;
    {
        LumavenTest::LogCapture capture;
        outcome = Run(service, row.action);
        records = capture.Records();
    }

    if (outcome.status != row.status) {
        mismatches.push_back("status: expected " + Hex(row.status) + ", got " + Hex(outcome.status));
    }
    if (row.response == nullptr ? outcome.hasResponse : (!outcome.hasResponse || outcome.response != row.response)) {
        mismatches.push_back("response: expected " + (row.response ? Narrow(row.response) : std::string("none")) +
                             ", got " + (outcome.hasResponse ? Narrow(outcome.response) : std::string("none")));
    }
    CheckLogs(row, records, mismatches);
    CheckOled(row, mismatches);
    const std::string trace = Trace();
    if (trace != row.trace) {
        mismatches.push_back("vendor calls: expected \"" + row.trace + "\"\n      got      \"" + trace + "\"");
    }
    CheckPanel(row.panel, mismatches);
    CheckLoaded(row.loaded, mismatches);
    return mismatches;
}

// ---- The report -------------------------------------------------------------------------------

std::map<size_t, bool>& RowResults()
{
    static std::map<size_t, bool> results;
    return results;
}

class FaultReport : public ::testing::Environment {
public:
    void TearDown() override
    {
        LumavenTest::ResetServiceProcessState();
        Services().clear();
        ClearRegistry();

        std::set<std::string> covered;
        size_t failures = 0;
        for (const auto& [index, passed] : RowResults()) {
            if (passed) {
                covered.insert(FaultTable()[index].point);
            } else {
                ++failures;
            }
        }
        size_t coveredPoints = 0;
        for (const std::string& point : FaultPoints()) {
            coveredPoints += covered.count(point);
        }
        std::printf("[ faults   ] fault points covered: %zu/%zu, rows run: %zu, failures: %zu\n", coveredPoints,
                    FaultPoints().size(), RowResults().size(), failures);
        // Only a run of the whole table can tell which points nothing covers.
        if (RowResults().size() == FaultTable().size()) {
            for (const std::string& point : FaultPoints()) {
                if (covered.count(point) == 0) {
                    std::printf("[ faults   ] not covered: %s\n", point.c_str());
                }
            }
        }
    }
};

::testing::Environment* const kReport = ::testing::AddGlobalTestEnvironment(new FaultReport);

class FaultRowTest : public ::testing::TestWithParam<size_t> {};

std::string RowName(const ::testing::TestParamInfo<size_t>& info)
{
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, "r%03zu_", info.param);
    std::string name = prefix;
    const std::string& point = FaultTable()[info.param].point;
    for (const char c : point.empty() ? std::string("further_case") : point) {
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
}

}  // namespace

TEST_P(FaultRowTest, LeavesWhatIsDefined)
{
    const FaultRow& row = FaultTable()[GetParam()];
    const std::vector<std::string> mismatches = RunRow(row);
    RowResults()[GetParam()] = mismatches.empty() && !HasFailure();
    std::string text;
    for (const std::string& mismatch : mismatches) {
        text += "\n    " + mismatch;
    }
    EXPECT_TRUE(mismatches.empty()) << "row " << GetParam() << " (" << (row.point.empty() ? "further case" : row.point)
                                    << "):" << text;
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultRowTest, ::testing::Range<size_t>(0, FaultTable().size()), RowName);

// Every row names a point of the list (or none), and a row that injects into an entry point
// injects into that one.
TEST(FaultTable, RowsNameListedPointsAndInjectWhereTheyClaim)
{
    const std::set<std::string> points(FaultPoints().begin(), FaultPoints().end());
    EXPECT_EQ(points.size(), FaultPoints().size()) << "a point is listed twice";
    for (size_t i = 0; i < FaultTable().size(); ++i) {
        const FaultRow& row = FaultTable()[i];
        if (row.point.empty()) {
            continue;
        }
        EXPECT_EQ(points.count(row.point), 1u) << "row " << i << ": unknown point " << row.point;
        // "path|session:function#which|code"
        const size_t entryStart = row.point.find('|') + 1;
        const size_t codeStart = row.point.find('|', entryStart) + 1;
        std::string function = row.point.substr(entryStart, codeStart - 1 - entryStart);
        function = function.substr(function.find(':') + 1);  // npos + 1 == 0: no session prefix
        function = function.substr(0, function.find('#'));
        const std::string code = row.point.substr(codeStart);
        if (code == "implausible" || code == "more" || code == "fewer") {
            bool answered = false;
            for (const Fault& fault : row.faults) {
                const std::string answering = fault.function;
                answered = answered || answering.substr(0, answering.find('#')) == function;
            }
            EXPECT_TRUE(answered) << "row " << i << " claims " << row.point << " but no count of " << function
                                  << " is answered";
        }
        if (code == "error" || code == "warning" || code == "success-code") {
            bool injected = false;
            for (const Fault& fault : row.faults) {
                injected = injected || function == fault.function;
            }
            EXPECT_TRUE(injected) << "row " << i << " claims " << row.point << " but injects no fault into "
                                  << function;
        }
    }
}

}  // namespace LumavenFaults
