// The service as a host sees it: LumavenService.dll loaded by name, created through its
// factory, started, driven through the host's client, destroyed and unloaded.
#pragma once

#include "XeltoClient.h"

#include <string>

namespace LumavenTest {

class HostedService : public XeltoClient::LoadedService {
public:
    explicit HostedService(bool startup = true)
    {
        std::string reason;
        if (Create(L"LumavenService.dll", reason) && startup) {
            Startup();
        }
    }
};

}  // namespace LumavenTest
