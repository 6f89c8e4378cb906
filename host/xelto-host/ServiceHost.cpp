#include "ServiceHost.h"

namespace XeltoHost {

ServiceHost::~ServiceHost()
{
    Destroy();
}

bool ServiceHost::Create(const std::wstring& dllPath, std::string& reason)
{
    m_module = LoadLibraryW(dllPath.c_str());
    if (m_module == nullptr) {
        reason = "cannot load the service DLL (error " + std::to_string(GetLastError()) + ")";
        return false;
    }
    m_factory = reinterpret_cast<XeltoCreateServiceFunction>(
        reinterpret_cast<void*>(GetProcAddress(m_module, "XeltoCreateService")));
    if (m_factory == nullptr) {
        reason = "the DLL does not export XeltoCreateService";
        return false;
    }
    m_service = m_factory();
    if (m_service == nullptr) {
        reason = "the service is unavailable on this machine (XeltoCreateService returned null)";
        return false;
    }
    return true;
}

void ServiceHost::Startup()
{
    m_service->startup_task();
}

CommandOutcome ServiceHost::Run(uint32_t command, const wchar_t* request, uint64_t contextWord)
{
    Xelto::Spanlet::Server::Services::CallContext context{contextWord};
    wchar_t* response = nullptr;
    CommandOutcome outcome;
    outcome.status = m_service->ExecuteCommand(&context, command, request, &response, nullptr, 0);
    if (response != nullptr) {
        outcome.hasResponse = true;
        outcome.response = response;
        m_service->FreeBuffer(response);
    }
    return outcome;
}

uint32_t ServiceHost::Deliver(PowerEvent event)
{
    const PowerSettingRecord record = MakePowerSetting(event);
    return m_service->oled_power_event_task(nullptr, &record.header);
}

void ServiceHost::Destroy()
{
    delete m_service;
    m_service = nullptr;
}

PowerSettingRecord MakePowerSetting(PowerEvent event)
{
    PowerSettingRecord record{};
    const bool lid = event == PowerEvent::LidClosed || event == PowerEvent::LidOpen;
    record.header.PowerSetting = lid ? GUID_LIDSWITCH_STATE_CHANGE : GUID_CONSOLE_DISPLAY_STATE;
    record.header.DataLength = sizeof(DWORD);
    record.header.Data[0] = (event == PowerEvent::DisplayOn || event == PowerEvent::LidOpen) ? 1 : 0;
    return record;
}

}  // namespace XeltoHost
