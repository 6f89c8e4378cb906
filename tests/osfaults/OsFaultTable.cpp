// The rows of the OS fault table. Each failure is one the real function reports (its return
// value and, where it sets one, its last error); the expected outcome is the one the service
// defines for that failure.
#include "OsFaultTable.h"

#include "ServiceAnswers.h"

#include <cwchar>

namespace LumavenOsFaults {

namespace {

using namespace LumavenTest::Answers;

using Lines = std::vector<std::wstring>;

// ---- What the functions answer when they fail -------------------------------------------------

// Registry and loader (Win32 error codes).
constexpr intptr_t kAccessDenied = ERROR_ACCESS_DENIED;
constexpr intptr_t kFileNotFound = ERROR_FILE_NOT_FOUND;
constexpr intptr_t kPathNotFound = ERROR_PATH_NOT_FOUND;
constexpr intptr_t kInvalidHandle = ERROR_INVALID_HANDLE;
// Functions answering a handle or a BOOL: the value of the failed call, the code in the last error.
constexpr intptr_t kNull = 0;
constexpr intptr_t kBoolFalse = FALSE;
constexpr intptr_t kInvalidHandleValue = -1;
constexpr DWORD kModuleNotFound = ERROR_MOD_NOT_FOUND;
constexpr DWORD kProcedureNotFound = ERROR_PROC_NOT_FOUND;
constexpr DWORD kNotEnoughMemory = ERROR_NOT_ENOUGH_MEMORY;
constexpr DWORD kNoMoreItems = ERROR_NO_MORE_ITEMS;
constexpr DWORD kInvalidHandleError = ERROR_INVALID_HANDLE;
constexpr DWORD kKeyDoesNotExist = 0xE0000204;  // SetupAPI's ERROR_KEY_DOES_NOT_EXIST

// COM and WMI (HRESULTs, as the signed values the functions return).
constexpr intptr_t Hr(uint32_t value)
{
    return static_cast<int32_t>(value);
}
constexpr uint32_t kOutOfMemory = 0x8007000E;
constexpr uint32_t kTooLate = 0x80010119;  // security already set in this process
constexpr uint32_t kChangedMode = 0x80010106;
constexpr uint32_t kClassNotRegistered = 0x80040154;
constexpr uint32_t kComAccessDenied = 0x80070005;
constexpr uint32_t kUnexpected = 0x8000FFFF;
constexpr uint32_t kBadIndex = 0x8002000B;
constexpr uint32_t kBadVariantType = 0x80020008;
constexpr uint32_t kWbemNotFound = 0x80041002;
constexpr uint32_t kWbemAccessDenied = 0x80041003;
constexpr uint32_t kWbemInvalidNamespace = 0x8004100E;
constexpr uint32_t kWbemInvalidClass = 0x80041010;
constexpr uint32_t kWbemTransportFailure = 0x80041015;
constexpr uint32_t kWbemInvalidQuery = 0x80041017;

Failure Every(intptr_t value, DWORD lastError = 0)
{
    return Failure{1, true, value, lastError};
}
Failure Nth(int nth, intptr_t value, DWORD lastError = 0)
{
    return Failure{nth, false, value, lastError};
}

// ---- Statuses and texts ----------------------------------------------------------------------------

const wchar_t kOledOne[] = L"{\"result\":1}";
const wchar_t kOledZero[] = L"{\"result\":0}";

const std::wstring kVendorDetection =
    L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::CheckVideoControllerType";
const std::wstring kStartupLine = L"I:Opening startup_task in LumavenService\n";
const std::wstring kNoVendorList = L"E:" + kVendorDetection + L" - Failed to retrieve video controller information";
const std::wstring kUnsupported = L"I:LumavenService cannot be initialized as it is running on unsupported platform";

std::wstring Vendor(int vendor)
{
    return L"I:" + kVendorDetection + L" - The current video controller is " + std::to_wstring(vendor);
}

std::wstring WmiWarning(const wchar_t* operation, const wchar_t* label, uint32_t result)
{
    return std::wstring(L"W:class Xelto::Spanlet::Server::Shared::WMI::PublicWmi.") + operation +
           L" - failed on function " + label + L" with HRESULT 0x" + Hex(result, true);
}

// The start-up's lines: the opening line, what vendor detection logged, its answer.
Lines Startup(const Lines& detection, int vendor)
{
    Lines lines{kStartupLine};
    lines.insert(lines.end(), detection.begin(), detection.end());
    lines.push_back(Vendor(vendor));
    return lines;
}

// The OPST probe's line for each display it asks on the Intel laptop: the attached output
// supports OPST, the other one does not. The switches ask both, the support query only the
// attached one.
const std::wstring kOpstSupported = L"I:OPST is supported";
const std::wstring kOpstNotSupported = L"I:OPST is not supported";

std::wstring OpenFailed(uint32_t status)
{
    return L"E:Something is wrong. Could not Open or Create the Key: " + std::to_wstring(status);
}
std::wstring SetFailed(uint32_t status)
{
    return L"E:Not able to set the Registry Value: " + std::to_wstring(status);
}

// The event's lines for one delivery while "OLED" is 1, display off then on.
const std::wstring kEventEnter =
    L"I:Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task::PEXelto::Enter";
const std::wstring kEventEntered = L"I:LumavenService - OledEventCalled entered";
const Lines kEventOffOn = {kEventEnter,
                           kEventEntered,
                           L"I:LumavenService - OledEventCalled OLED ON",
                           L"I:LumavenService - OledEventCalled PrevDisplay ON",
                           kEventEnter,
                           kEventEntered,
                           L"I:LumavenService - OledEventCalled OLED ON",
                           L"I:LumavenService - OledEventCalled PrevDisplay OFF"};

Lines operator+(Lines a, const Lines& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<OsFaultRow> MakeRows()
{
    return {
        // ---- Registry: the settings store -------------------------------------------------------
        {.function = "RegOpenKeyExW",
         .failure = Every(kAccessDenied),
         .command = 7,
         .before = Oled::One,
         .status = kRegistryError,
         .response = kOledZero,
         .logs = {OpenFailed(5)},
         .after = Oled::One},
        {.function = "RegOpenKeyExW",
         .failure = Every(kAccessDenied),
         .command = 9,
         .request = L"{\"BValue\":true}",
         .before = Oled::Zero,
         .status = kOk,
         .response = kTrue,
         .logs = {OpenFailed(5), SetFailed(6)},
         .after = Oled::Zero},
        {.function = "RegCreateKeyExW",
         .failure = Every(kAccessDenied),
         .command = 7,
         .before = Oled::Absent,
         .status = kRegistryError,
         .response = kOledZero,
         .logs = {OpenFailed(5)},
         .after = Oled::Absent},
        {.function = "RegCreateKeyExW",
         .failure = Every(kAccessDenied),
         .command = 5,
         .before = Oled::Absent,
         .status = kOk,
         .response = kTrue,
         .logs = {OpenFailed(5), SetFailed(6)},
         .after = Oled::Absent},
        {.function = "RegQueryValueExW",
         .failure = Nth(1, kAccessDenied),
         .command = 7,
         .before = Oled::One,
         .status = kRegistryError,
         .response = kOledZero,
         .after = Oled::One},
        // Only a missing value is a normal "off"; the code next to it is a failure like any other.
        {.function = "RegQueryValueExW",
         .failure = Nth(1, kPathNotFound),
         .command = 7,
         .before = Oled::One,
         .status = kRegistryError,
         .response = kOledZero,
         .after = Oled::One},
        {.function = "RegQueryValueExW",
         .failure = Every(kAccessDenied),
         .run = Entry::Event,
         .before = Oled::One,
         .status = kOk,
         .response = nullptr,
         .logs = {kEventEnter, kEventEntered, kEventEnter, kEventEntered},
         .after = Oled::One},
        {.function = "RegSetValueExW",
         .failure = Every(kAccessDenied),
         .command = 2,
         .before = Oled::Zero,
         .status = kOk,
         .response = kTrue,
         .logs = {kOpstSupported, kOpstNotSupported, SetFailed(5)},
         .after = Oled::Zero},
        {.function = "RegCloseKey",
         .failure = Every(kInvalidHandle),
         .command = 7,
         .before = Oled::One,
         .status = kOk,
         .response = kOledOne,
         .after = Oled::One},

        // ---- Registry and SetupAPI: the panel check ----------------------------------------------
        // The factory walks the monitors; with no supported panel found it refuses.
        {.function = "SetupDiClassGuidsFromNameW",
         .failure = Nth(1, kBoolFalse, kNotEnoughMemory),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "SetupDiClassGuidsFromNameW",
         .failure = Nth(2, kBoolFalse, kNotEnoughMemory),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        // A class list no machine has is the driver's failure, not a reason to allocate it.
        {.function = "SetupDiClassGuidsFromNameW",
         .classGuidCount = 1000000,
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "SetupDiGetClassDevsW",
         .failure = Every(kInvalidHandleValue, kNotEnoughMemory),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "SetupDiEnumDeviceInfo",
         .failure = Nth(1, kBoolFalse, kNoMoreItems),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "SetupDiOpenDevRegKey",
         .failure = Every(kInvalidHandleValue, kKeyDoesNotExist),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "RegQueryValueExW",
         .failure = Every(kFileNotFound),
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
        {.function = "SetupDiDestroyDeviceInfoList",
         .failure = Every(kBoolFalse, kInvalidHandleError),
         .run = Entry::Factory},
        {.function = "RegCloseKey", .failure = Every(kInvalidHandle), .run = Entry::Factory},
        // The same walk inside commands: the panel support query, and the Intel writer, which
        // looks the panel up afresh.
        {.function = "SetupDiEnumDeviceInfo",
         .failure = Nth(1, kBoolFalse, kNoMoreItems),
         .command = 4,
         .response = kFalse},
        {.function = "SetupDiGetClassDevsW",
         .failure = Every(kInvalidHandleValue, kNotEnoughMemory),
         .command = 5,
         .before = Oled::Zero,
         .response = kFalse,
         .logs = {L"E:Can't find the Pid Vid"},
         .after = Oled::Zero},

        // ---- COM, WMI and OLE Automation: vendor detection at start-up ---------------------------
        {.function = "CoInitializeEx",
         .failure = Every(Hr(kChangedMode)),
         .run = Entry::Startup,
         .apartment = Apartment::JoinedOnce,
         .logs = Startup({WmiWarning(L"GetPropertyValue", L"CoInitializeEx", kChangedMode)}, 1)},
        {.function = "CoUninitialize", .counted = "CoInitializeEx", .run = Entry::Startup, .logs = Startup({}, 1)},
        {.function = "CoInitializeSecurity",
         .failure = Every(Hr(kOutOfMemory)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"ConnectToWmi", L"CoInitializeSecurity", kOutOfMemory)}, 1)},
        {.function = "CoInitializeSecurity",
         .failure = Every(Hr(kTooLate)),
         .run = Entry::Startup,
         .logs = Startup({}, 1)},
        {.function = "CoCreateInstance",
         .failure = Every(Hr(kClassNotRegistered)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"ConnectToWmi", L"CoCreateInstance", kClassNotRegistered), kNoVendorList}, 0)},
        {.function = "IWbemLocator::ConnectServer",
         .failure = Every(Hr(kWbemInvalidNamespace)),
         .run = Entry::Startup,
         .logs =
             Startup({WmiWarning(L"ConnectToWmi", L"IWbemLocator->ConnectServer(WmiNamespace)", kWbemInvalidNamespace),
                      kNoVendorList},
                     0)},
        {.function = "IWbemLocator::ConnectServer",
         .failure = Every(Hr(kWbemAccessDenied)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"ConnectToWmi", L"IWbemLocator->ConnectServer(WmiNamespace)", kWbemAccessDenied),
                          kNoVendorList},
                         0)},
        {.function = "CoSetProxyBlanket",
         .failure = Every(Hr(kComAccessDenied)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"ConnectToWmi", L"CoSetProxyBlanket", kComAccessDenied), kNoVendorList}, 0)},
        {.function = "IWbemServices::ExecQuery",
         .failure = Every(Hr(kWbemInvalidQuery)),
         .run = Entry::Startup,
         .logs = Startup(
             {WmiWarning(L"EnumClassObject", L"IWbemServices->ExecQuery", kWbemInvalidQuery), kNoVendorList}, 0)},
        {.function = "IEnumWbemClassObject::Next",
         .failure = Nth(1, Hr(kWbemInvalidClass)),
         .run = Entry::Startup,
         .logs = Startup(
             {WmiWarning(L"GetPropertyValue", L"IEnumWbemClassObject->Next", kWbemInvalidClass), kNoVendorList}, 0)},
        // After the one controller: the name was read, but a query that ends in a failure adds
        // no list, so the vendor stays unknown without the error line.
        {.function = "IEnumWbemClassObject::Next",
         .failure = Nth(2, Hr(kWbemTransportFailure)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"GetPropertyValue", L"IEnumWbemClassObject->Next", kWbemTransportFailure)}, 0)},
        {.function = "IWbemClassObject::Get",
         .failure = Every(Hr(kWbemNotFound)),
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"GetPropertyValue", L"IWbemClassObject->Get", kWbemNotFound), kNoVendorList}, 0)},
        {.function = "SysAllocStringLen",
         .failure = Nth(1, kNull),
         .run = Entry::Startup,
         .thrown = "_com_error(E_OUTOFMEMORY)",
         .logs = {kStartupLine}},
        {.function = "SysFreeString", .counted = "SysAllocStringLen", .run = Entry::Startup, .logs = Startup({}, 1)},
        {.function = "VariantClear",
         .failure = Every(Hr(kBadVariantType)),
         .run = Entry::Startup,
         .logs = Startup({}, 1)},
        {.function = "VariantInit", .counted = "VariantClear", .run = Entry::Startup, .logs = Startup({}, 1)},
        // A controller name answered as an array of names: its elements are lists, not names,
        // so no vendor is found, but each array call is reached.
        {.function = "SafeArrayAccessData",
         .failure = Every(Hr(kUnexpected)),
         .propertyAsArray = true,
         .run = Entry::Startup,
         .logs = Startup(
             {WmiWarning(L"GetSafeArrayData", L"SafeArrayAccessData(VT_ARRAY | VT_UI1)", kUnexpected), kNoVendorList},
             0)},
        {.function = "SafeArrayGetElement",
         .failure = Every(Hr(kBadIndex)),
         .propertyAsArray = true,
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"GetSafeArrayData", L"SafeArrayGetElement", kBadIndex), kNoVendorList}, 0)},
        {.function = "SafeArrayUnaccessData",
         .failure = Every(Hr(kUnexpected)),
         .propertyAsArray = true,
         .run = Entry::Startup,
         .logs = Startup({WmiWarning(L"GetSafeArrayData", L"SafeArrayUnaccessData", kUnexpected)}, 0)},

        // ---- The loader: the vendor libraries ---------------------------------------------------
        {.function = "LoadLibraryExW",
         .failure = Every(kNull, kModuleNotFound),
         .command = 1,
         .status = kDeviceError,
         .response = kEmpty},
        // Without its entry points the control library is loaded but no session can be opened.
        {.function = "GetProcAddress",
         .failure = Every(kNull, kProcedureNotFound),
         .command = 1,
         .status = kDeviceError,
         .response = kEmpty},
        {.function = "FreeLibrary",
         .failure = Every(kBoolFalse, kInvalidHandleError),
         .command = 8,
         .response = kTrue,
         .logs = {kOpstSupported}},
        {.function = "LoadLibraryExW",
         .failure = Every(kNull, kModuleNotFound),
         .run = Entry::Event,
         .before = Oled::One,
         .status = kOk,
         .response = nullptr,
         .logs = kEventOffOn,
         .after = Oled::One},
        {.function = "LoadLibraryExW",
         .failure = Every(kNull, kModuleNotFound),
         .laptop = Laptop::Amd,
         .command = 10,
         .response = kFalse},
        {.function = "LoadLibraryW",
         .failure = Every(kNull, kModuleNotFound),
         .laptop = Laptop::Amd,
         .command = 9,
         .request = L"{\"BValue\":true}",
         .response = kFalse,
         .logs = {L"I:ADL library not found!"}},
        {.function = "GetProcAddress",
         .failure = Every(kNull, kProcedureNotFound),
         .laptop = Laptop::Amd,
         .command = 9,
         .request = L"{\"BValue\":true}",
         .response = kFalse,
         .logs = {L"I:ADL2's API is missing!"}},
        {.function = "LoadLibraryW",
         .failure = Every(kNull, kModuleNotFound),
         .laptop = Laptop::Amd,
         .run = Entry::Event,
         .before = Oled::One,
         .response = nullptr,
         .logs = kEventOffOn + Lines{L"I:ADL library not found!"},
         .after = Oled::One},

        // ---- SetupAPI: the largest class list a name may stand for ---------------------------
        // 256 class GUIDs under one name are still taken (the monitors of the first are listed);
        // one more is the call failing.
        {.function = "SetupDiClassGuidsFromNameW", .classGuidCount = 256, .run = Entry::Factory},
        {.function = "SetupDiClassGuidsFromNameW",
         .classGuidCount = 257,
         .run = Entry::Factory,
         .created = false,
         .logs = {kUnsupported}},
    };
}

}  // namespace

const std::vector<OsFaultRow>& OsFaultTable()
{
    static const std::vector<OsFaultRow> rows = MakeRows();
    return rows;
}

}  // namespace LumavenOsFaults
