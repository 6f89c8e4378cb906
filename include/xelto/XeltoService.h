// The Xelto host contract: the abstract service class a plug-in implements and the factory
// the host looks up. The order of the virtual operations is the binary interface between
// host and service and never changes.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <functional>

namespace Xelto::Spanlet::Server::Services {

struct CallContext {
    uint64_t contextWord;
    /* host data may follow */
};

using CommandCallback = std::function<void(uint32_t status, const wchar_t* response)>;

// Hosts hold the service by pointer only and never copy it; the class is the binary contract
// and declares nothing beyond its virtual operations.
class XeltoService {  // NOLINT(cppcoreguidelines-special-member-functions): the fixed host contract
public:
    virtual ~XeltoService() {}
    virtual uint32_t CreateString(const wchar_t* text, wchar_t*** holder) = 0;
    virtual uint32_t ReleaseString(wchar_t*** holder) = 0;
    virtual uint32_t ExecuteCommand(CallContext* context, uint32_t command, const wchar_t* message, wchar_t** outString,
                                    CommandCallback callback, uint64_t extra) = 0;
    virtual void FreeBuffer(void* buffer)
    {
        if (buffer != nullptr) {
            std::free(buffer);
        }
    }
    virtual void startup_task() {}
    virtual void ReservedHookA() {}
    virtual uint32_t oled_power_event_task(void* reserved, const POWERBROADCAST_SETTING* eventData)
    {
        (void)reserved;
        (void)eventData;
        return 0;
    }
    virtual bool ReservedQuery() { return true; }
    virtual void ReservedHookB() {}
    virtual void ReservedHookC() {}
};

}  // namespace Xelto::Spanlet::Server::Services

extern "C" Xelto::Spanlet::Server::Services::XeltoService* XeltoCreateService();

// The type of the factory as a host finds it with GetProcAddress.
using XeltoCreateServiceFunction = Xelto::Spanlet::Server::Services::XeltoService* (*)();
