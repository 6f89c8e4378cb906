// Loads a service DLL and drives it through the host contract only.
#pragma once

#include "CommandNames.h"

#include "xelto/XeltoService.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace XeltoHost {

struct CommandOutcome {
    uint32_t status = 0;
    bool hasResponse = false;
    std::wstring response;
};

class ServiceHost {
public:
    ServiceHost() = default;
    ~ServiceHost();
    ServiceHost(const ServiceHost&) = delete;
    ServiceHost& operator=(const ServiceHost&) = delete;

    // Loads the DLL and calls its factory. False with a one-line reason when the DLL or its
    // factory is missing or the factory answers null.
    bool Create(const std::wstring& dllPath, std::string& reason);
    void Startup();
    CommandOutcome Run(uint32_t command, const wchar_t* request, uint64_t contextWord = 1);
    uint32_t Deliver(PowerEvent event);
    // Destroys the service (the DLL stays loaded until the host ends).
    void Destroy();

    Xelto::Spanlet::Server::Services::XeltoService* Service() const { return m_service; }
    // The DLL's factory, for hosts that create further instances (the start-up benchmark).
    XeltoCreateServiceFunction Factory() const { return m_factory; }

private:
    HMODULE m_module = nullptr;
    XeltoCreateServiceFunction m_factory = nullptr;
    Xelto::Spanlet::Server::Services::XeltoService* m_service = nullptr;
};

// The POWERBROADCAST_SETTING the system sends for the event (GUID, DataLength 4, one DWORD).
struct PowerSettingRecord {
    POWERBROADCAST_SETTING header;
    BYTE rest[3];
};
PowerSettingRecord MakePowerSetting(PowerEvent event);

}  // namespace XeltoHost
