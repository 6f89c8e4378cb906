#include "XeltoClient.h"

#include <utility>

namespace XeltoClient {

namespace {

using Xelto::Spanlet::Server::Services::CallContext;
using Xelto::Spanlet::Server::Services::CommandCallback;

// Stands in *outString before the call, so that a service that leaves it alone is told from
// one that stores null; never dereferenced.
wchar_t* const kUntouched = reinterpret_cast<wchar_t*>(static_cast<uintptr_t>(0x5EA1ED00));

}  // namespace

Reply Execute(Xelto::Spanlet::Server::Services::XeltoService& service, const Call& call)
{
    Reply reply;
    CallContext context{call.contextWord};
    wchar_t* response = kUntouched;
    CommandCallback callback;
    if (call.withCallback) {
        callback = [&reply](uint32_t, const wchar_t*) { ++reply.callbackCalls; };
    }
    reply.status = service.ExecuteCommand(call.withContext ? &context : nullptr, call.command, call.request,
                                          call.withOutString ? &response : nullptr, std::move(callback), call.extra);
    reply.outStringWritten = response != kUntouched;
    if (reply.outStringWritten && response != nullptr) {
        reply.hasResponse = true;
        reply.response = response;
        service.FreeBuffer(response);
    }
    return reply;
}

Reply RunCommand(Xelto::Spanlet::Server::Services::XeltoService& service, uint32_t command, const wchar_t* request,
                 uint64_t contextWord)
{
    return Execute(service, Call{.command = command, .request = request, .contextWord = contextWord});
}

}  // namespace XeltoClient
