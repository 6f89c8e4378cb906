#include "intel/IntelCommand.h"
#include "intel/IntelSession.h"
#include "service/LumavenService.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

// GetOpst records what it read; the switches record only a switch that took.
uint32_t LumavenService::_GetOpst(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetOpst, request, response, contextWord, [&] {
        return RunIntelCommand(kModeGetOpst, *response, {1, 0});
    });
}

uint32_t LumavenService::EnableOpst(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::EnableOpst, request, response, contextWord, [&] {
        return RunIntelCommand(kModeEnableOpst, *response, {1, std::nullopt});
    });
}

uint32_t LumavenService::DisableOpst(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::DisableOpst, request, response, contextWord, [&] {
        return RunIntelCommand(kModeDisableOpst, *response, {0, std::nullopt});
    });
}

uint32_t LumavenService::_GetIfSystemSupportsOpst(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetIfSystemSupportsOpst, request, response, contextWord,
                      [&] { return RunIntelCommand(kModeOpstSupport, *response); });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
