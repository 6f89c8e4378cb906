// The simulated AMD Display Library (atiadlxx.dll, or atiadlxy.dll when installed under that
// name): the ADL2 entry points the service uses, answering from the installed profile's
// "amd" section. The native AUX channel writes the register file of the display it is
// given, and every call that matters goes to the transaction log. Variants leave chosen
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
#include "Installer.h"
#include "SimState.h"
#include "Transaction.h"

#include "amd/AdlTypes.h"

#include <rapidjson/document.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace Adl;

namespace {

HMODULE g_self = nullptr;

constexpr unsigned kContextMagic = 0x41444C32;  // "ADL2"
// The one command of the native AUX channel that writes; any other reads.
constexpr int kAuxCommandWrite = 1;
constexpr int kAmdVendorId = 0x1002;

struct FakeContext {
    unsigned magic = kContextMagic;
    ADL_MAIN_MALLOC_CALLBACK allocate = nullptr;
    int enumConnectedAdapters = 0;
};

FakeContext* AsContext(ADL_CONTEXT_HANDLE handle)
{
    auto* context = static_cast<FakeContext*>(handle);
    return context != nullptr && context->magic == kContextMagic ? context : nullptr;
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
};

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
    const std::string panel = display.HasMember("panel") && display["panel"].IsString() ? display["panel"].GetString()
                                                                                          : "00000000";
    return LumavenSim::MakeEdid(LumavenSim::HexToBytes(panel));
}

// The code a fault of the profile makes `function` answer on this call, or ADL_OK.
int InjectedFault(const char* function)
{
    int result = ADL_OK;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, function)) {
            result = static_cast<int>(*fault);
        }
        return true;
    });
    return result;
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

}  // namespace

extern "C" {

int ADL2_Main_Control_Create(ADL_MAIN_MALLOC_CALLBACK callback, int iEnumConnectedAdapters,
                             ADL_CONTEXT_HANDLE* context)
{
    Record record("ADL2_Main_Control_Create");
    record.Int("enumConnectedAdapters", iEnumConnectedAdapters);
    if (const int fault = InjectedFault("ADL2_Main_Control_Create")) {
        return record.Done(fault);
    }
    if (callback == nullptr || context == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    *context = new FakeContext{kContextMagic, callback, iEnumConnectedAdapters};
    return record.Done(ADL_OK);
}

int ADL2_Main_Control_Destroy(ADL_CONTEXT_HANDLE handle)
{
    Record record("ADL2_Main_Control_Destroy");
    if (const int fault = InjectedFault("ADL2_Main_Control_Destroy")) {
        return record.Done(fault);
    }
    FakeContext* context = AsContext(handle);
    if (context == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    context->magic = 0;
    delete context;
    return record.Done(ADL_OK);
}

int ADL2_Adapter_NumberOfAdapters_Get(ADL_CONTEXT_HANDLE handle, int* lpNumAdapters)
{
    Record record("ADL2_Adapter_NumberOfAdapters_Get");
    if (AsContext(handle) == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    if (lpNumAdapters == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    int result = ADL_OK;
    int count = 0;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, "ADL2_Adapter_NumberOfAdapters_Get")) {
            result = static_cast<int>(*fault);
            return true;
        }
        count = IntMember(AmdSection(state), "adapterCount", static_cast<int>(Adapters(state).size()));
        return true;
    });
    if (result == ADL_OK) {
        *lpNumAdapters = count;
        record.Int("count", count);
    }
    return record.Done(result);
}

int ADL2_Adapter_AdapterInfo_Get(ADL_CONTEXT_HANDLE handle, AdapterInfo* lpInfo, int iInputSize)
{
    Record record("ADL2_Adapter_AdapterInfo_Get");
    record.Int("inputSize", iInputSize);
    if (AsContext(handle) == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    if (lpInfo == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    int result = ADL_OK;
    int filled = 0;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, "ADL2_Adapter_AdapterInfo_Get")) {
            result = static_cast<int>(*fault);
            return true;
        }
        const auto adapters = Adapters(state);
        const size_t room = iInputSize > 0 ? static_cast<size_t>(iInputSize) / sizeof(AdapterInfo) : 0;
        for (size_t i = 0; i < adapters.size() && i < room; ++i) {
            AdapterInfo& info = lpInfo[i];
            std::memset(&info, 0, sizeof info);
            info.iSize = sizeof info;
            info.iAdapterIndex = AdapterIndexOf(*adapters[i], i);
            const rapidjson::Value& adapter = *adapters[i];
            const std::string name = adapter.HasMember("name") && adapter["name"].IsString() ? adapter["name"].GetString()
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
        if (room < adapters.size()) {
            result = ADL_ERR_INVALID_PARAM;
        }
        return true;
    });
    record.Int("filled", filled);
    return record.Done(result);
}

int ADL2_Display_DisplayInfo_Get(ADL_CONTEXT_HANDLE handle, int iAdapterIndex, int* lpNumDisplays,
                                 ADLDisplayInfo** lppInfo, int iForceDetect)
{
    Record record("ADL2_Display_DisplayInfo_Get");
    record.Int("adapter", iAdapterIndex).Int("forceDetect", iForceDetect);
    FakeContext* context = AsContext(handle);
    if (context == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    if (lpNumDisplays == nullptr || lppInfo == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    int result = ADL_OK;
    std::vector<ADLDisplayInfo> infos;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, "ADL2_Display_DisplayInfo_Get")) {
            result = static_cast<int>(*fault);
            return true;
        }
        rapidjson::Value* adapter = FindAdapterByIndex(state, iAdapterIndex);
        if (adapter == nullptr) {
            result = ADL_ERR_INVALID_PARAM;
            return true;
        }
        const auto displays = Displays(*adapter);
        for (size_t j = 0; j < displays.size(); ++j) {
            const rapidjson::Value& display = *displays[j];
            ADLDisplayInfo info;
            std::memset(&info, 0, sizeof info);
            info.displayID.iDisplayLogicalIndex = IntMember(display, "displayIndex", static_cast<int>(j));
            info.displayID.iDisplayPhysicalIndex = info.displayID.iDisplayLogicalIndex;
            info.displayID.iDisplayLogicalAdapterIndex = IntMember(display, "logicalAdapterIndex", iAdapterIndex);
            info.displayID.iDisplayPhysicalAdapterIndex = info.displayID.iDisplayLogicalAdapterIndex;
            info.iDisplayControllerIndex = static_cast<int>(j);
            std::snprintf(info.strDisplayName, sizeof info.strDisplayName, "Simulated display %zu", j);
            std::snprintf(info.strDisplayManufacturerName, sizeof info.strDisplayManufacturerName, "SDC");
            info.iDisplayInfoMask = ADL_DISPLAY_DISPLAYINFO_DISPLAYCONNECTED | ADL_DISPLAY_DISPLAYINFO_DISPLAYMAPPED;
            info.iDisplayInfoValue = IntMember(display, "infoValue", info.iDisplayInfoMask);
            infos.push_back(info);
        }
        return true;
    });
    if (result != ADL_OK) {
        return record.Done(result);
    }
    // Like ADL: the list comes from the caller's allocation callback and the caller frees it.
    ADLDisplayInfo* list = nullptr;
    if (!infos.empty()) {
        list = static_cast<ADLDisplayInfo*>(context->allocate(static_cast<int>(infos.size() * sizeof(ADLDisplayInfo))));
        if (list == nullptr) {
            return record.Done(ADL_ERR);
        }
        std::memcpy(list, infos.data(), infos.size() * sizeof(ADLDisplayInfo));
    }
    *lpNumDisplays = static_cast<int>(infos.size());
    *lppInfo = list;
    record.Int("count", static_cast<int64_t>(infos.size()));
    return record.Done(ADL_OK);
}

// The adapter and display are taken as positions in the profile's lists: that is what the
// service passes here.
int ADL2_Display_EdidData_Get(ADL_CONTEXT_HANDLE handle, int iAdapterIndex, int iDisplayIndex,
                              ADLDisplayEDIDData* lpEDIDData)
{
    Record record("ADL2_Display_EdidData_Get");
    record.Int("adapter", iAdapterIndex).Int("display", iDisplayIndex);
    if (AsContext(handle) == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    if (lpEDIDData == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    record.Int("size", lpEDIDData->iSize);
    int result = ADL_OK;
    std::vector<uint8_t> edid;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, "ADL2_Display_EdidData_Get")) {
            result = static_cast<int>(*fault);
            return true;
        }
        const auto adapters = Adapters(state);
        if (iAdapterIndex < 0 || static_cast<size_t>(iAdapterIndex) >= adapters.size()) {
            result = ADL_ERR_INVALID_PARAM;
            return true;
        }
        const auto displays = Displays(*adapters[static_cast<size_t>(iAdapterIndex)]);
        if (iDisplayIndex < 0 || static_cast<size_t>(iDisplayIndex) >= displays.size()) {
            result = ADL_ERR_INVALID_PARAM;
            return true;
        }
        edid = DisplayEdid(*displays[static_cast<size_t>(iDisplayIndex)]);
        return true;
    });
    if (result != ADL_OK) {
        return record.Done(result);
    }
    const size_t block = static_cast<size_t>(std::max(lpEDIDData->iBlockIndex, 0)) * 128;
    const size_t available = block < edid.size() ? std::min<size_t>(edid.size() - block, 128) : 0;
    std::memset(lpEDIDData->cEDIDData, 0, sizeof lpEDIDData->cEDIDData);
    std::memcpy(lpEDIDData->cEDIDData, edid.data() + block, available);
    lpEDIDData->iEDIDSize = static_cast<int>(available);
    if (available >= 12) {
        record.Text("panel", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(lpEDIDData->cEDIDData) + 8, 4));
    }
    return record.Done(ADL_OK);
}

// Writes (command 1) or reads the register file of the display with this adapter index and
// display index, and logs the whole record as it arrived.
int ADL2_Display_NativeAUXChannel_Access(ADL_CONTEXT_HANDLE handle, int iAdapterIndex, int iDisplayIndex,
                                         ADLDisplayNativeAUXChannelData* lpData)
{
    Record record("ADL2_Display_NativeAUXChannel_Access");
    record.Int("adapter", iAdapterIndex).Int("display", iDisplayIndex);
    if (AsContext(handle) == nullptr) {
        return record.Done(ADL_ERR_NOT_INIT);
    }
    if (lpData == nullptr) {
        return record.Done(ADL_ERR_NULL_POINTER);
    }
    const size_t count = static_cast<size_t>(std::clamp(lpData->iDataSize, 0, ADL_MAX_NATIVEAUX_DATA_SIZE));
    record.Int("size", lpData->iSize)
        .Int("auxStatus", lpData->iAuxStatus)
        .Int("command", lpData->iCommand)
        .Int("address", lpData->iAddress)
        .Int("dataSize", lpData->iDataSize)
        .Text("data", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(lpData->cData), sizeof lpData->cData))
        .Text("bytes", LumavenSim::BytesToHex(reinterpret_cast<const uint8_t*>(lpData->cData), count));
    int result = ADL_OK;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const auto fault = LumavenSim::TakeFault(state, "ADL2_Display_NativeAUXChannel_Access")) {
            result = static_cast<int>(*fault);
            return true;
        }
        rapidjson::Value* adapter = FindAdapterByIndex(state, iAdapterIndex);
        rapidjson::Value* display = adapter != nullptr ? FindDisplayByIndex(*adapter, iDisplayIndex) : nullptr;
        if (display == nullptr || lpData->iSize != static_cast<int>(sizeof *lpData)) {
            result = ADL_ERR_INVALID_PARAM;
            return true;
        }
        rapidjson::Value& registers = RegisterFile(state, *display);
        for (size_t i = 0; i < count; ++i) {
            const std::string name = RegisterName(static_cast<uint32_t>(lpData->iAddress) + static_cast<uint32_t>(i));
            auto& data = reinterpret_cast<uint8_t(&)[ADL_MAX_NATIVEAUX_DATA_SIZE]>(lpData->cData);
            if (lpData->iCommand == kAuxCommandWrite) {
                registers.RemoveMember(name.c_str());
                registers.AddMember(rapidjson::Value(name.c_str(), state.GetAllocator()), rapidjson::Value(data[i]),
                                    state.GetAllocator());
            } else {
                data[i] = registers.HasMember(name.c_str()) && registers[name.c_str()].IsUint()
                              ? static_cast<uint8_t>(registers[name.c_str()].GetUint())
                              : 0;
            }
        }
        lpData->iAuxStatus = ADL_AUX_STATUS_SUCCESSFUL;
        return true;
    });
    if (result == ADL_OK) {
        record.Int("auxStatusOut", lpData->iAuxStatus);
    }
    return record.Done(result);
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH) {
        g_self = instance;
        DisableThreadLibraryCalls(instance);
    }
    LumavenSim::CountLoadsAndUnloads("amd", reason, reserved);
    return TRUE;
}

}  // extern "C"
