#include "XeltoClient.h"

#include <cstring>

namespace XeltoClient {

PowerSettingRecord MakePowerSetting(const GUID& setting, DWORD data)
{
    PowerSettingRecord record{};
    record.header.PowerSetting = setting;
    record.header.DataLength = sizeof(DWORD);
    std::memcpy(record.header.Data, &data, sizeof data);
    return record;
}

PowerSettingRecord MakePowerSetting(PowerEvent event)
{
    const bool lid = event == PowerEvent::LidClosed || event == PowerEvent::LidOpen;
    const bool on = event == PowerEvent::DisplayOn || event == PowerEvent::LidOpen;
    return MakePowerSetting(lid ? kLidSwitchStateChange : kConsoleDisplayState, on ? 1 : 0);
}

uint32_t Deliver(Xelto::Spanlet::Server::Services::XeltoService& service, const GUID& setting, DWORD data)
{
    const PowerSettingRecord record = MakePowerSetting(setting, data);
    return service.oled_power_event_task(nullptr, &record.header);
}

uint32_t Deliver(Xelto::Spanlet::Server::Services::XeltoService& service, PowerEvent event)
{
    const PowerSettingRecord record = MakePowerSetting(event);
    return service.oled_power_event_task(nullptr, &record.header);
}

}  // namespace XeltoClient
