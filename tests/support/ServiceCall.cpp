#include "ServiceCall.h"

namespace LumavenTest {

CallResult Call(Xelto::Spanlet::Server::Services::XeltoService& service, uint32_t command, const wchar_t* request,
                uint64_t contextWord)
{
    Xelto::Spanlet::Server::Services::CallContext context{contextWord};
    wchar_t* response = nullptr;
    CallResult result;
    result.status = service.ExecuteCommand(&context, command, request, &response, nullptr, 0);
    if (response != nullptr) {
        result.hasResponse = true;
        result.response = response;
        service.FreeBuffer(response);
    }
    return result;
}

}  // namespace LumavenTest
