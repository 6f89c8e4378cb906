#include "intel/IntelCommand.h"
#include "intel/IntelSession.h"
#include "oled/SettingsStore.h"
#include "service/LumavenService.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

uint32_t LumavenService::EnableEd(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::EnableEd, request, response, contextWord, [&] {
        return RunIntelCommand(kModeEdOn, *response, {1, std::nullopt});
    });
}

uint32_t LumavenService::DisableEd(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::DisableEd, request, response, contextWord, [&] {
        // Off is recorded before the panel is touched, whatever the write does afterwards.
        StoreOledSetting(0);
        return RunIntelCommand(kModeEdOff, *response);
    });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
