// The simulated AMD Display Library (atiadlxx.dll, or atiadlxy.dll when installed under that
// name): the ADL2 entry points the service uses, answering from the installed profile's
// "amd" section. The native AUX channel writes the register file of the display it is
// given, and every call that matters goes to the transaction log. Each entry point checks
// what it is handed as a careful driver does (record sizes, reserved fields, flags, buffer
// sizes against the adapter count, null pointers, contexts it did not create) and refuses
// with ADL's own code, saying why in the log's "refused" member. Variants leave chosen
// exports out through their module-definition files.
//
// Profile section (also the driver's state):
//   "amd": {"adapterCount": N (optional, overrides the number of adapters reported),
//           "adapters": [{"adapterIndex": N, "name": "...",
//                         "displays": [{"infoValue": 3, "logicalAdapterIndex": N,
//                                       "displayIndex": N (default: its position),
//                                       "panel": "4C836C41" | "edid": "00FFFF...",
//                                       "dpcd": {"0x402E": 192, ...}}]}],
//           "loads": N, "unloads": N}
#include "AdlRecords.h"
#include "DetachGuard.h"
#include "Installer.h"
#include "RecordChecks.h"
#include "SimState.h"
#include "Transaction.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace LumavenSim::AdlDriver;

namespace {

HMODULE g_self = nullptr;

// The native AUX channel's commands this driver implements.
constexpr int kAuxCommandWrite = 1;
constexpr int kAuxCommandRead = 2;
constexpr int kAmdVendorId = 0x1002;

struct FakeContext {
    AllocateCallback allocate = nullptr;
    int enumConnectedAdapters = 0;
};

// The contexts this library created and has not destroyed: anything else is not looked into.
std::set<Context>& LiveContexts()
{
    static std::set<Context> live;
    return live;
}

FakeContext* AsContext(Context handle)
{
    return LiveContexts().count(handle) != 0 ? static_cast<FakeContext*>(handle) : nullptr;
}

std::string LibraryName()
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(g_self, path, MAX_PATH);
    std::wstring wide(path, length);
    wide = wide.substr(wide.find_last_of(L"\\/") + 1);
    std::string name;
    for (const wchar_t c : wide) {
        name += static_cast<char>(c >= L'A' && c <= L'Z' ? c - L'A' + 'a' : (c < 0x80 ? c : '?'));
    }
    return name;
}

// One transaction record, tagged with the name this library was loaded as.
class Record : public LumavenSim::Transaction {
public:
    explicit Record(const char* call) : Transaction(LibraryName(), call) {}

    // Records why the call is refused and answers `code`.
    int Refuse(int code, const std::string& reason) { return Refused(reason).Done(code); }
    // The refusal of a context this library did not create, or of none.
    int RefuseContext(Context handle)
    {
        return Refuse(kNotInitialized, handle == nullptr ? "no context" : "a context this library did not create");
    }

    // The first checks of a call made on a context: a context this library created, and the
    // pointer the call fills or reads (`missing` says what is missing when it is null).
    // Answers the refusal's code, or nothing when the call goes on.
    std::optional<int> CheckContext(Context handle, const void* passed, const char* missing)
    {
        if (AsContext(handle) == nullptr) {
            return RefuseContext(handle);
        }
        if (passed == nullptr) {
            return Refuse(kNullPointer, missing);
        }
        return std::nullopt;
    }

    // Takes in a record that starts with its size, and logs the size: a record of another
    // size is refused before anything past iSize is read from it.
    template <class Data>
    std::optional<int> Receive(const Data* passed, Data& data)
    {
        std::memcpy(&data.iSize, passed, sizeof data.iSize);
        Int("size", data.iSize);
        if (data.iSize != static_cast<int>(sizeof data)) {
            return Refuse(kInvalidParameter,
                          "iSize " + std::to_string(data.iSize) + ", expected " + std::to_string(sizeof data));
        }
        std::memcpy(&data, passed, sizeof data);
        return std::nullopt;
    }
};

// After the library's detach nothing of it is left to answer from: the call is refused.
bool Detached(const char* call)
{
    return LumavenSim::RefusedAfterDetach(LibraryName(), call, kNotInitialized);
}

// A call about one display of an adapter that is handed a record starting with its size
// (EDID, AUX): logged with both indices, refused after the detach, on a context this library
// did not create, without a record (`missing`) or with a record of another size; otherwise
// `body` goes on with the record taken in.
template <class Data, class Body>
int OnDisplayRecord(const char* call, Context handle, int adapter, int display, const Data* passed, const char* missing,
                    Body body)
{
    if (Detached(call)) {
        return kNotInitialized;
    }
    Record record(call);
    record.Int("adapter", adapter).Int("display", display);
    if (const auto refused = record.CheckContext(handle, passed, missing)) {
        return *refused;
    }
    Data data{};
    if (const auto refused = record.Receive(passed, data)) {
        return *refused;
    }
    return body(record, data);
}

rapidjson::Value& AmdSection(rapidjson::Document& state)
{
    return LumavenSim::Section(state, "amd");
}

std::vector<rapidjson::Value*> Adapters(rapidjson::Document& state)
{
    return LumavenSim::ObjectsIn(AmdSection(state), "adapters");
}

int IntMember(const rapidjson::Value& value, const char* name, int fallback)
{
    return value.IsObject() && value.HasMember(name) && value[name].IsInt() ? value[name].GetInt() : fallback;
}

int AdapterIndexOf(const rapidjson::Value& adapter, size_t position)
{
    return IntMember(adapter, "adapterIndex", static_cast<int>(position));
}

rapidjson::Value* FindAdapterByIndex(rapidjson::Document& state, int adapterIndex)
{
    const auto adapters = Adapters(state);
    for (size_t i = 0; i < adapters.size(); ++i) {
        if (AdapterIndexOf(*adapters[i], i) == adapterIndex) {
            return adapters[i];
        }
    }
    return nullptr;
}

std::vector<rapidjson::Value*> Displays(rapidjson::Value& adapter)
{
    std::vector<rapidjson::Value*> displays;
    if (adapter.HasMember("displays") && adapter["displays"].IsArray()) {
        for (auto& display : adapter["displays"].GetArray()) {
            if (display.IsObject()) {
                displays.push_back(&display);
            }
        }
    }
    return displays;
}

rapidjson::Value* FindDisplayByIndex(rapidjson::Value& adapter, int displayIndex)
{
    const auto displays = Displays(adapter);
    for (size_t j = 0; j < displays.size(); ++j) {
        if (IntMember(*displays[j], "displayIndex", static_cast<int>(j)) == displayIndex) {
            return displays[j];
        }
    }
    return nullptr;
}

std::vector<uint8_t> DisplayEdid(const rapidjson::Value& display)
{
    if (display.HasMember("edid") && display["edid"].IsString()) {
        return LumavenSim::HexToBytes(display["edid"].GetString());
    }
    const std::string panel =
        display.HasMember("panel") && display["panel"].IsString() ? display["panel"].GetString() : "00000000";
    return LumavenSim::MakeEdid(LumavenSim::HexToBytes(panel));
}

// Inside a state update: takes the fault of the profile that makes `function` fail on this
// call, if there is one, into `result`; true when there was.
bool TookFault(rapidjson::Document& state, const char* function, int& result)
{
    const auto fault = LumavenSim::TakeFault(state, function);
    if (fault) {
        result = static_cast<int>(*fault);
    }
    return fault.has_value();
}

// The code a fault of the profile makes `function` answer on this call, or kOk.
int InjectedFault(const char* function)
{
    int result = kOk;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        TookFault(state, function, result);
        return true;
    });
    return result;
}

// What an entry point's look at the machine decided: a fault of the profile (`result` its
// code), a refusal of the call with its reason (kInvalidParameter), or kOk.
struct StateAnswer {
    int result = kOk;
    std::string refused;
};

// Runs `look` on the machine's state, unless a fault of the profile takes this call of
// `function` first; `look` returns why it refuses the call, or an empty text.
template <class Look>
StateAnswer LookAtState(const char* function, Look&& look)
{
    StateAnswer answer;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (!TookFault(state, function, answer.result)) {
            answer.refused = look(state);
            if (!answer.refused.empty()) {
                answer.result = kInvalidParameter;
            }
        }
        return true;
    });
    return answer;
}

std::string RegisterName(uint32_t address)
{
    char name[16];
    std::snprintf(name, sizeof name, "0x%04X", address);
    return name;
}

rapidjson::Value& RegisterFile(rapidjson::Document& state, rapidjson::Value& display)
{
    if (!display.HasMember("dpcd") || !display["dpcd"].IsObject()) {
        display.RemoveMember("dpcd");
        display.AddMember("dpcd", rapidjson::Value(rapidjson::kObjectType), state.GetAllocator());
    }
    return display["dpcd"];
}

// What an AUX record of the right size must hold before it reaches the panel; empty when it
// is fine.
std::string CheckAux(const AuxChannelData& data)
{
    if (data.iCommand != kAuxCommandWrite && data.iCommand != kAuxCommandRead) {
        return "iCommand " + std::to_string(data.iCommand) + " is neither write (1) nor read (2)";
    }
    if (data.iDataSize <= 0 || data.iDataSize > kMaxAuxData) {
        return "iDataSize " + std::to_string(data.iDataSize) + " is not 1 to " + std::to_string(kMaxAuxData);
    }
    if (data.iAddress < 0 || data.iAddress > kDpcdSpace - data.iDataSize) {
        return "iAddress " + std::to_string(data.iAddress) + " with " + std::to_string(data.iDataSize) +
               " bytes leaves the DPCD space";
    }
    if (data.iCommand == kAuxCommandWrite) {
        if (const auto unused = LumavenSim::FirstNonZero(data.cData, static_cast<size_t>(data.iDataSize))) {
            return "cData[" + std::to_string(*unused) + "] beyond iDataSize is not zero";
        }
    }
    return {};
}

}  // namespace

extern "C" {

int ADL2_Main_Control_Create(AllocateCallback callback, int iEnumConnectedAdapters, Context* context)
{
    if (Detached("ADL2_Main_Control_Create")) {
        return kNotInitialized;
    }
    Record record("ADL2_Main_Control_Create");
    record.Int("enumConnectedAdapters", iEnumConnectedAdapters);
    if (const int fault = InjectedFault("ADL2_Main_Control_Create")) {
        return record.Done(fault);
    }
    if (callback == nullptr || context == nullptr) {
        return record.Refuse(kNullPointer, callback == nullptr ? "no allocation callback" : "no context to fill");
    }
    // A flag: 1 lists only the connected adapters, 0 all of them.
    if (iEnumConnectedAdapters != 0 && iEnumConnectedAdapters != 1) {
        return record.Refuse(kInvalidParameter, "iEnumConnectedAdapters " + std::to_string(iEnumConnectedAdapters) +
                                                    " is neither 0 nor 1");
    }
    *context = new FakeContext{callback, iEnumConnectedAdapters};
    LiveContexts().insert(*context);
    return record.Done(kOk);
}

int ADL2_Main_Control_Destroy(Context handle)
{
    if (Detached("ADL2_Main_Control_Destroy")) {
        return kNotInitialized;
    }
    Record record("ADL2_Main_Control_Destroy");
    if (const int fault = InjectedFault("ADL2_Main_Control_Destroy")) {
        return record.Done(fault);
    }
    FakeContext* context = AsContext(handle);
    if (context == nullptr) {
        return record.RefuseContext(handle);
    }
    LiveContexts().erase(handle);
    delete context;
    return record.Done(kOk);
}

// How many adapters this driver reports: the profile's "adapterCount", else its adapters.
int ReportedAdapterCount(rapidjson::Document& state)
{
    return IntMember(AmdSection(state), "adapterCount", static_cast<int>(Adapters(state).size()));
}

int ADL2_Adapter_NumberOfAdapters_Get(Context handle, int* lpNumAdapters)
{
    if (Detached("ADL2_Adapter_NumberOfAdapters_Get")) {
        return kNotInitialized;
    }
    Record record("ADL2_Adapter_NumberOfAdapters_Get");
    if (const auto refused = record.CheckContext(handle, lpNumAdapters, "no count to fill")) {
        return *refused;
    }
    int result = kOk;
    int count = 0;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (TookFault(state, "ADL2_Adapter_NumberOfAdapters_Get", result)) {
            return true;
        }
        count = static_cast<int>(LumavenSim::CountAnswer(state, "ADL2_Adapter_NumberOfAdapters_Get", "count")
                                     .value_or(ReportedAdapterCount(state)));
        return true;
    });
    if (result == kOk) {
        *lpNumAdapters = count;
        record.Int("count", count);
    }
    return record.Done(result);
}

int ADL2_Adapter_AdapterInfo_Get(Context handle, AdapterInfo* lpInfo, int iInputSize)
{
    if (Detached("ADL2_Adapter_AdapterInfo_Get")) {
        return kNotInitialized;
    }
    Record record("ADL2_Adapter_AdapterInfo_Get");
    record.Int("inputSize", iInputSize);
    if (const auto refused = record.CheckContext(handle, lpInfo, "no adapter buffer")) {
        return *refused;
    }
    int filled = 0;
    const StateAnswer answer = LookAtState("ADL2_Adapter_AdapterInfo_Get", [&](rapidjson::Document& state) {
        // The buffer must hold a record for every adapter reported; nothing is written into
        // one that is too small.
        const int64_t needed =
            static_cast<int64_t>(ReportedAdapterCount(state)) * static_cast<int64_t>(sizeof(AdapterInfo));
        if (iInputSize <= 0 || iInputSize < needed) {
            return "iInputSize " + std::to_string(iInputSize) + " is below the " + std::to_string(needed) +
                   " bytes of the adapters reported";
        }
        const auto adapters = Adapters(state);
        const size_t room = static_cast<size_t>(iInputSize) / sizeof(AdapterInfo);
        for (size_t i = 0; i < adapters.size() && i < room; ++i) {
            AdapterInfo& info = lpInfo[i];
            std::memset(&info, 0, sizeof info);
            info.iSize = sizeof info;
            info.iAdapterIndex = AdapterIndexOf(*adapters[i], i);
            const rapidjson::Value& adapter = *adapters[i];
            const std::string name = adapter.HasMember("name") && adapter["name"].IsString()
                                         ? adapter["name"].GetString()
                                         : "AMD Radeon(TM) Graphics";
            std::snprintf(info.strAdapterName, sizeof info.strAdapterName, "%s", name.c_str());
            std::snprintf(info.strDisplayName, sizeof info.strDisplayName, "\\\\.\\DISPLAY%zu", i + 1);
            std::snprintf(info.strUDID, sizeof info.strUDID, "PCI_VEN_1002&DEV_1681&SUBSYS_0000&REV_00_%zu", i);
            info.iBusNumber = 4 + static_cast<int>(i);
            info.iVendorID = kAmdVendorId;
            info.iPresent = 1;
            info.iExist = 1;
            info.iOSDisplayIndex = static_cast<int>(i);
            ++filled;
        }
        return std::string();
    });
    record.Int("filled", filled);
    if (!answer.refused.empty()) {
        return record.Refuse(answer.result, answer.refused);
    }
    return record.Done(answer.result);
}

int ADL2_Display_DisplayInfo_Get(Context handle, int iAdapterIndex, int* lpNumDisplays, DisplayInfo** lppInfo,
                                 int iForceDetect)
{
    if (Detached("ADL2_Display_DisplayInfo_Get")) {
        return kNotInitialized;
    }
    Record record("ADL2_Display_DisplayInfo_Get");
    record.Int("adapter", iAdapterIndex).Int("forceDetect", iForceDetect);
    FakeContext* context = AsContext(handle);
    if (context == nullptr) {
        return record.RefuseContext(handle);
    }
    if (lpNumDisplays == nullptr || lppInfo == nullptr) {
        return record.Refuse(kNullPointer, lpNumDisplays == nullptr ? "no count to fill" : "no list pointer to fill");
    }
    if (iForceDetect != 0 && iForceDetect != 1) {
        return record.Refuse(kInvalidParameter, "iForceDetect " + std::to_string(iForceDetect) + " is neither 0 nor 1");
    }
    std::vector<DisplayInfo> infos;
    const StateAnswer answer = LookAtState("ADL2_Display_DisplayInfo_Get", [&](rapidjson::Document& state) {
        rapidjson::Value* adapter = FindAdapterByIndex(state, iAdapterIndex);
        if (adapter == nullptr) {
            return "no adapter has iAdapterIndex " + std::to_string(iAdapterIndex);
        }
        const auto displays = Displays(*adapter);
        // The profile's "counts" can make the adapter list another number of displays: the
        // first of its own, then as many that are neither connected nor mapped.
        const auto listed = LumavenSim::CountAnswer(state, "ADL2_Display_DisplayInfo_Get", "count");
        const size_t count = listed ? static_cast<size_t>(std::max<int64_t>(*listed, 0)) : displays.size();
        for (size_t j = 0; j < count; ++j) {
            DisplayInfo info;
            std::memset(&info, 0, sizeof info);
            if (j >= displays.size()) {
                info.displayID.iDisplayLogicalIndex = static_cast<int>(j);
                info.displayID.iDisplayLogicalAdapterIndex = iAdapterIndex;
                info.iDisplayInfoMask = kDisplayConnected | kDisplayMapped;
                infos.push_back(info);
                continue;
            }
            const rapidjson::Value& display = *displays[j];
            info.displayID.iDisplayLogicalIndex = IntMember(display, "displayIndex", static_cast<int>(j));
            info.displayID.iDisplayPhysicalIndex = info.displayID.iDisplayLogicalIndex;
            info.displayID.iDisplayLogicalAdapterIndex = IntMember(display, "logicalAdapterIndex", iAdapterIndex);
            info.displayID.iDisplayPhysicalAdapterIndex = info.displayID.iDisplayLogicalAdapterIndex;
            info.iDisplayControllerIndex = static_cast<int>(j);
            std::snprintf(info.strDisplayName, sizeof info.strDisplayName, "Simulated display %zu", j);
            std::snprintf(info.strDisplayManufacturerName, sizeof info.strDisplayManufacturerName, "SDC");
            info.iDisplayInfoMask = kDisplayConnected | kDisplayMapped;
            info.iDisplayInfoValue = IntMember(display, "infoValue", info.iDisplayInfoMask);
            infos.push_back(info);
        }
        return std::string();
    });
    if (!answer.refused.empty()) {
        return record.Refuse(answer.result, answer.refused);
    }
    if (answer.result != kOk) {
        return record.Done(answer.result);
    }
    // Like ADL: the list comes from the caller's allocation callback and the caller frees it.
    DisplayInfo* list = nullptr;
    if (!infos.empty()) {
        list = static_cast<DisplayInfo*>(context->allocate(static_cast<int>(infos.size() * sizeof(DisplayInfo))));
        if (list == nullptr) {
            return record.Refuse(kError, "the allocation callback gave nothing");
        }
        std::memcpy(list, infos.data(), infos.size() * sizeof(DisplayInfo));
    }
    *lpNumDisplays = static_cast<int>(infos.size());
    *lppInfo = list;
    record.Int("count", static_cast<int64_t>(infos.size()));
    return record.Done(kOk);
}

// The adapter and display are taken as positions in the profile's lists: that is what the
// service passes here.
int ADL2_Display_EdidData_Get(Context handle, int iAdapterIndex, int iDisplayIndex, EdidData* lpEDIDData)
{
    return OnDisplayRecord(
        "ADL2_Display_EdidData_Get", handle, iAdapterIndex, iDisplayIndex, lpEDIDData, "no EDID record",
        [&](Record& record, EdidData& edid) {
            if (edid.iFlag != 0) {
                return record.Refuse(kInvalidParameter, "iFlag " + std::to_string(edid.iFlag) + " is not zero");
            }
            if (const auto reserved = LumavenSim::FirstNonZero(edid.iReserved)) {
                return record.Refuse(kInvalidParameter, "iReserved[" + std::to_string(*reserved) + "] is not zero");
            }
            std::vector<uint8_t> bytes;
            const StateAnswer answer = LookAtState("ADL2_Display_EdidData_Get", [&](rapidjson::Document& state) {
                const auto adapters = Adapters(state);
                if (iAdapterIndex < 0 || static_cast<size_t>(iAdapterIndex) >= adapters.size()) {
                    return "no adapter " + std::to_string(iAdapterIndex);
                }
                const auto displays = Displays(*adapters[static_cast<size_t>(iAdapterIndex)]);
                if (iDisplayIndex < 0 || static_cast<size_t>(iDisplayIndex) >= displays.size()) {
                    return "no display " + std::to_string(iDisplayIndex) + " on adapter " +
                           std::to_string(iAdapterIndex);
                }
                bytes = DisplayEdid(*displays[static_cast<size_t>(iDisplayIndex)]);
                return std::string();
            });
            if (!answer.refused.empty()) {
                return record.Refuse(answer.result, answer.refused);
            }
            if (answer.result != kOk) {
                return record.Done(answer.result);
            }
            // One 128-byte block per call; a block past the EDID's end does not exist.
            const size_t block = static_cast<size_t>(edid.iBlockIndex) * 128;
            if (edid.iBlockIndex < 0 || block >= bytes.size()) {
                return record.Refuse(kInvalidParameter,
                                     "iBlockIndex " + std::to_string(edid.iBlockIndex) + " is not a block of the EDID");
            }
            const size_t available = std::min<size_t>(bytes.size() - block, 128);
            std::memset(edid.cEDIDData, 0, sizeof edid.cEDIDData);
            std::memcpy(edid.cEDIDData, bytes.data() + block, available);
            edid.iEDIDSize = static_cast<int>(available);
            std::memcpy(lpEDIDData, &edid, sizeof edid);
            if (available >= 12) {
                record.Text("panel", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(edid.cEDIDData) + 8, 4));
            }
            return record.Done(kOk);
        });
}

// Writes (command 1) or reads (command 2) the register file of the display with this adapter
// index and display index, and logs the whole record as it arrived.
int ADL2_Display_NativeAUXChannel_Access(Context handle, int iAdapterIndex, int iDisplayIndex, AuxChannelData* lpData)
{
    return OnDisplayRecord(
        "ADL2_Display_NativeAUXChannel_Access", handle, iAdapterIndex, iDisplayIndex, lpData, "no AUX record",
        [&](Record& record, AuxChannelData& data) {
            const size_t count = static_cast<size_t>(std::clamp(data.iDataSize, 0, kMaxAuxData));
            record.Int("auxStatus", data.iAuxStatus)
                .Int("command", data.iCommand)
                .Int("address", data.iAddress)
                .Int("dataSize", data.iDataSize)
                .Text("data", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(data.cData), sizeof data.cData))
                .Text("bytes", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(data.cData), count));
            const StateAnswer answer =
                LookAtState("ADL2_Display_NativeAUXChannel_Access", [&](rapidjson::Document& state) {
                    if (std::string refused = CheckAux(data); !refused.empty()) {
                        return refused;
                    }
                    rapidjson::Value* adapter = FindAdapterByIndex(state, iAdapterIndex);
                    rapidjson::Value* display =
                        adapter != nullptr ? FindDisplayByIndex(*adapter, iDisplayIndex) : nullptr;
                    if (display == nullptr) {
                        return "no display " + std::to_string(iDisplayIndex) + " on adapter " +
                               std::to_string(iAdapterIndex);
                    }
                    rapidjson::Value& registers = RegisterFile(state, *display);
                    for (size_t i = 0; i < count; ++i) {
                        const std::string name =
                            RegisterName(static_cast<uint32_t>(data.iAddress) + static_cast<uint32_t>(i));
                        auto& bytes = reinterpret_cast<uint8_t(&)[kMaxAuxData]>(data.cData);
                        if (data.iCommand == kAuxCommandWrite) {
                            registers.RemoveMember(name.c_str());
                            registers.AddMember(rapidjson::Value(name.c_str(), state.GetAllocator()),
                                                rapidjson::Value(bytes[i]), state.GetAllocator());
                        } else {
                            bytes[i] = registers.HasMember(name.c_str()) && registers[name.c_str()].IsUint()
                                           ? static_cast<uint8_t>(registers[name.c_str()].GetUint())
                                           : 0;
                        }
                    }
                    data.iAuxStatus = kAuxStatusSuccessful;
                    return std::string();
                });
            if (!answer.refused.empty()) {
                return record.Refuse(answer.result, answer.refused);
            }
            if (answer.result == kOk) {
                std::memcpy(lpData, &data, sizeof data);
                record.Int("auxStatusOut", data.iAuxStatus);
            }
            return record.Done(answer.result);
        });
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    LumavenSim::NoteDetach(reason, reserved);
    if (reason == DLL_PROCESS_ATTACH) {
        g_self = instance;
        DisableThreadLibraryCalls(instance);
    }
    LumavenSim::CountLoadsAndUnloads("amd", reason, reserved);
    return TRUE;
}

}  // extern "C"
