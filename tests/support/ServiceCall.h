// Calls ExecuteCommand the way a host does and keeps what came back.
#pragma once

#include "xelto/XeltoService.h"

#include <cstdint>
#include <string>

namespace LumavenTest {

struct CallResult {
    uint32_t status = 0;
    bool hasResponse = false;
    std::wstring response;
};

CallResult Call(Xelto::Spanlet::Server::Services::XeltoService& service, uint32_t command,
                const wchar_t* request = L"{}", uint64_t contextWord = 0x5151);

}  // namespace LumavenTest
