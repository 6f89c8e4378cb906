// The service as a host sees it: LumavenService.dll loaded by name, created through its
// factory, started, driven through the contract header only, destroyed and unloaded.
#pragma once

#include "ServiceCall.h"

#include "xelto/XeltoService.h"

#include <windows.h>

#include <chrono>
#include <string>

namespace LumavenTest {

class HostedService {
public:
    explicit HostedService(bool startup = true)
    {
        m_module = LoadLibraryW(L"LumavenService.dll");
        if (m_module == nullptr) {
            return;
        }
        const auto create = reinterpret_cast<XeltoCreateServiceFunction>(
            reinterpret_cast<void*>(GetProcAddress(m_module, "XeltoCreateService")));
        m_service = create != nullptr ? create() : nullptr;
        if (m_service != nullptr && startup) {
            m_service->startup_task();
        }
    }
    ~HostedService()
    {
        delete m_service;
        // Unloading ends what the service keeps for the process (ADLX) like a host's exit does.
        if (m_module != nullptr) {
            FreeLibrary(m_module);
        }
    }
    HostedService(const HostedService&) = delete;
    HostedService& operator=(const HostedService&) = delete;

    bool Created() const { return m_service != nullptr; }
    // The contract object itself, for callers that pass what a well-behaved host never would.
    Xelto::Spanlet::Server::Services::XeltoService& Service() { return *m_service; }
    CallResult Run(uint32_t command, const wchar_t* request = L"{}") { return Call(*m_service, command, request); }

    // Delivers a display or lid notification as Windows does, returning how long it took.
    std::chrono::milliseconds Deliver(const GUID& setting, uint8_t data)
    {
        struct {
            POWERBROADCAST_SETTING header;
            BYTE rest[3];
        } record{};
        record.header.PowerSetting = setting;
        record.header.DataLength = sizeof(DWORD);
        record.header.Data[0] = data;
        const auto start = std::chrono::steady_clock::now();
        m_service->oled_power_event_task(nullptr, &record.header);
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    }

private:
    HMODULE m_module = nullptr;
    Xelto::Spanlet::Server::Services::XeltoService* m_service = nullptr;
};

}  // namespace LumavenTest
