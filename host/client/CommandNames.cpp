#include "CommandNames.h"

#include <cwctype>

namespace XeltoClient {

namespace {

constexpr const char* kCommandNames[] = {
    nullptr,
    "_GetOpst",
    "EnableOpst",
    "DisableOpst",
    "GetIfSystemSupportsOled",
    "EnableEd",
    "DisableEd",
    "GetOledFromRegistry",
    "_GetIfSystemSupportsOpst",
    "SetElp",
    "_GetIfOLEDSupport",
    "_SetOLEDPowerSaveON",
    "_SetOLEDPowerSaveOFF",
    "_GetIfVaribrightSupport",
    "_SetVaribright",
};

std::wstring Folded(const std::wstring& text)
{
    std::wstring folded;
    for (const wchar_t c : text) {
        if (c != L'_') {
            folded += static_cast<wchar_t>(std::towlower(c));
        }
    }
    return folded;
}

std::wstring Widen(const char* text)
{
    std::wstring wide;
    for (; *text != '\0'; ++text) {
        wide += static_cast<wchar_t>(*text);
    }
    return wide;
}

}  // namespace

std::optional<uint32_t> ParseCommand(const std::wstring& text)
{
    if (!text.empty() && text.find_first_not_of(L"0123456789") == std::wstring::npos && text.size() < 10) {
        return static_cast<uint32_t>(std::stoul(text));
    }
    const std::wstring wanted = Folded(text);
    for (uint32_t command = 1; command < std::size(kCommandNames); ++command) {
        if (Folded(Widen(kCommandNames[command])) == wanted) {
            return command;
        }
    }
    if (wanted == L"setintelelp" || wanted == L"setamdelp") {
        return 9;
    }
    return std::nullopt;
}

const char* CommandName(uint32_t command)
{
    return command >= 1 && command < std::size(kCommandNames) ? kCommandNames[command] : "unknown";
}

const char* StatusName(uint32_t status)
{
    switch (status) {
    case 0: return "StatusSuccess";
    case 0x20000001: return "StatusUnsupportedCommand";
    case 0x20000002: return "StatusInvalidArgument";
    case 0x20000003: return "StatusInvalidRequest";
    case 0x20000004: return "StatusRegistryError";
    case 0x20000005: return "StatusDeviceError";
    case 0x20000006: return "StatusException";
    default: return "unknown status";
    }
}

std::optional<PowerEvent> ParsePowerEvent(const std::wstring& text)
{
    if (text == L"display-off") return PowerEvent::DisplayOff;
    if (text == L"display-on") return PowerEvent::DisplayOn;
    if (text == L"lid-closed") return PowerEvent::LidClosed;
    if (text == L"lid-open") return PowerEvent::LidOpen;
    return std::nullopt;
}

}  // namespace XeltoClient
