#include "oled/OledEvent.h"

#include "amd/AdlAuxChannel.h"
#include "intel/IntelCommand.h"
#include "intel/IntelSession.h"
#include "oled/EventGate.h"
#include "oled/SettingsStore.h"
#include "service/LumavenService.h"

#include <windows.h>

#include <cstring>
#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

int32_t g_prevDisplayState = -1;

namespace {

TraceLogger& Log()
{
    return *LogManager::GetLogger();
}

bool IsDisplayOrLidSetting(const GUID& setting)
{
    return std::memcmp(&setting, &GUID_CONSOLE_DISPLAY_STATE, sizeof setting) == 0 ||
           std::memcmp(&setting, &GUID_LIDSWITCH_STATE_CHANGE, sizeof setting) == 0;
}

}  // namespace

std::wstring GetOledFromRegistryForEvent()
{
    std::wstring result = L"-1";
    try {
        const OledSetting setting = ReadOledSetting();
        if (setting.Failed()) {
            result = L"0";
        }
        if (setting.On()) {
            result = L"1";
        } else if (setting.Off()) {
            result = L"0";
        }
        // GCOVR_EXCL_START: the read allocates nothing; only the host's logging library could throw
    } catch (const std::exception& caught) {
        Log().LogError(Handler::GetOledFromRegistryForEvent.catchText, caught.what());
        // GCOVR_EXCL_STOP
    }
    return result;
}

void EnableEdForEvent()
{
    try {
        RunIntelEventSession(kModeEdOn);
    } catch (const std::exception& caught) {
        Log().LogError(Handler::EnableEd.catchText, caught.what());
    }
}

uint32_t LumavenService::OledEventCalled(const POWERBROADCAST_SETTING* eventData)
{
    const std::lock_guard lock(m_mutex);
    try {
        Log().LogInfo(L"LumavenService - OledEventCalled entered");
        if (GetOledFromRegistryForEvent() != L"1") {
            return 0;
        }
        Log().LogInfo(L"LumavenService - OledEventCalled OLED ON");
        if (eventData == nullptr) {
            return 0;
        }
        const uint8_t data = eventData->Data[0];
        if (data == 0) {
            // Any power-setting event whose first byte is 0 counts as display off.
            Log().LogInfo(L"LumavenService - OledEventCalled PrevDisplay ON");
            g_prevDisplayState = 0;
            return 0;
        }
        if (data != 1 || !IsDisplayOrLidSetting(eventData->PowerSetting)) {
            return 0;
        }
        // Once per off-to-on cycle, and on the first display-on after start.
        if (static_cast<uint32_t>(g_prevDisplayState + 1) > 1) {
            return 0;
        }
        Log().LogInfo(L"LumavenService - OledEventCalled PrevDisplay OFF");
        g_prevDisplayState = 1;
        ReapplyPanelState();
    } catch (const std::exception& caught) {
        Log().LogError(Handler::OledEventCalled.catchText, caught.what());
    }
    return 0;
}

void LumavenService::ReapplyPanelState()
{
    EventGate gate;
    const bool taken = gate.TryTakeUntil(EventGate::OneSecondFromNow());
    // The panel gets half a second after the wake-up before it is written.
    Sleep(500);
    if (m_videoController == kVendorIntel) {
        EnableEdForEvent();
    } else if (m_videoController == kVendorAmd && m_auxData) {
        // Looked up with insertion: an absent key gains an empty list, which writes nothing.
        WriteAuxDataAmd(m_panelId, (*m_auxData)[{m_panelId, true}]);
    }
    if (taken) {
        gate.Release();
    }
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
