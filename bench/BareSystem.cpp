// The OS side of the floors: JSON, the log line, the registry value, the monitor walk, WMI.
#include "BareCalls.h"

#include "xelto/Logging.h"

#include "LumavenRapidJson.h"

#include <setupapi.h>
#include <wbemidl.h>
#include <wrl/client.h>

#include <cstdlib>
#include <cstring>

namespace LumavenBench {

namespace {

using Utf16 = rapidjson::UTF16<wchar_t>;
using Document = rapidjson::GenericDocument<Utf16>;
using Buffer = rapidjson::GenericStringBuffer<Utf16>;
using Microsoft::WRL::ComPtr;

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Xelto\\Xelto Lumaven";
constexpr wchar_t kOledValue[] = L"OLED";
constexpr DWORD kEdidBufferBytes = 256;

// Opens the settings key as the service does (all access, no view flag); null when missing.
HKEY OpenSettingsKey()
{
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, KEY_ALL_ACCESS, &key);
    return key;
}

class Bstr {
public:
    explicit Bstr(const wchar_t* text) : m_text(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(m_text); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    BSTR get() const { return m_text; }

private:
    BSTR m_text;
};

void CollectNames(IEnumWbemClassObject& enumerator, std::vector<std::wstring>& names)
{
    for (;;) {
        ComPtr<IWbemClassObject> object;
        ULONG returned = 0;
        if (FAILED(enumerator.Next(WBEM_INFINITE, 1, &object, &returned)) || returned == 0) {
            return;
        }
        VARIANT value;
        VariantInit(&value);
        if (SUCCEEDED(object->Get(L"Name", 0, &value, nullptr, nullptr)) && value.vt == VT_BSTR) {
            names.emplace_back(value.bstrVal, SysStringLen(value.bstrVal));
        }
        VariantClear(&value);
    }
}

}  // namespace

void Json(const wchar_t* request, bool withResult)
{
    Document parsed;
    parsed.Parse<rapidjson::kParseIterativeFlag>(request);
    Document response;
    response.SetObject();
    if (withResult) {
        response.AddMember(L"result", true, response.GetAllocator());
    }
    Buffer text;
    rapidjson::Writer<Buffer, Utf16, Utf16> writer(text);
    response.Accept(writer);
    const size_t bytes = text.GetSize() + sizeof(wchar_t);
    void* copy = std::malloc(bytes);
    std::memcpy(copy, text.GetString(), bytes);
    std::free(copy);
}

void UnsupportedLine(uint32_t command)
{
    LogManager::GetLogger()->LogError(LoggingData{L"%S.%S - Unsupported Function call %d", 1, 0},
                                      "class Xelto::Spanlet::Server::Services::Lumaven::LumavenService",
                                      "ExecuteCommand", command);
}

void ReadOled()
{
    const HKEY key = OpenSettingsKey();
    DWORD type = REG_DWORD;
    DWORD data = 0;
    DWORD size = sizeof data;
    RegQueryValueExW(key, kOledValue, nullptr, &type, reinterpret_cast<BYTE*>(&data), &size);
    RegCloseKey(key);
}

void WriteOled(DWORD value)
{
    const HKEY key = OpenSettingsKey();
    RegSetValueExW(key, kOledValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    RegCloseKey(key);
}

std::vector<PanelId> MonitorPanelIds()
{
    std::vector<PanelId> panels;
    DWORD count = 0;
    SetupDiClassGuidsFromNameW(L"Monitor", nullptr, 0, &count);
    std::vector<GUID> guids(count);
    if (count == 0 || !SetupDiClassGuidsFromNameW(L"Monitor", guids.data(), count, &count)) {
        return panels;
    }
    const HDEVINFO devices = SetupDiGetClassDevsW(&guids[0], nullptr, nullptr, DIGCF_PRESENT);
    if (devices == INVALID_HANDLE_VALUE) {
        return panels;
    }
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(devices, index, &device); ++index) {
        const HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
        if (key == INVALID_HANDLE_VALUE) {
            continue;
        }
        BYTE edid[kEdidBufferBytes] = {};
        DWORD size = sizeof edid;
        if (RegQueryValueExW(key, L"EDID", nullptr, nullptr, edid, &size) == ERROR_SUCCESS) {
            panels.push_back(edid[8] | edid[9] << 8 | edid[10] << 16 | static_cast<PanelId>(edid[11]) << 24);
        }
        RegCloseKey(key);
    }
    SetupDiDestroyDeviceInfoList(devices);
    return panels;
}

PanelId FittedPanel(const AuxDataMap& table)
{
    for (const PanelId panel : MonitorPanelIds()) {
        if (table.count({panel, true}) != 0) {
            return panel;
        }
    }
    return 0;
}

const std::vector<AuxWrite>& SequenceFor(const AuxDataMap& table, PanelId panel, bool on)
{
    static const std::vector<AuxWrite> none;
    const auto found = table.find({panel, on});
    return found != table.end() ? found->second : none;
}

std::vector<std::wstring> VideoControllerNames()
{
    std::vector<std::wstring> names;
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    // Only the first call in a process sets the security; the service makes it every time.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                         EOAC_NONE, nullptr);
    {
        ComPtr<IWbemLocator> locator;
        ComPtr<IWbemServices> services;
        ComPtr<IEnumWbemClassObject> enumerator;
        const Bstr wmiNamespace(L"ROOT\\CIMV2");
        const Bstr language(L"WQL");
        const Bstr query(L"SELECT * FROM Win32_VideoController");
        if (SUCCEEDED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &locator)) &&
            SUCCEEDED(locator->ConnectServer(wmiNamespace.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                             &services)) &&
            SUCCEEDED(CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                        RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE)) &&
            SUCCEEDED(services->ExecQuery(language.get(), query.get(),
                                          WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                          &enumerator))) {
            CollectNames(*enumerator.Get(), names);
        }
    }
    CoUninitialize();
    return names;
}

}  // namespace LumavenBench
