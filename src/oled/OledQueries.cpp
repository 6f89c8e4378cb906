#include "oled/SettingsStore.h"
#include "panel/PanelIdentity.h"
#include "service/LumavenService.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

uint32_t LumavenService::GetIfSystemSupportsOled(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetIfSystemSupportsOled, request, response, contextWord, [&] {
        AddBool(*response, L"result", GetPanelIndex() != kUnsupportedPanel);
        return StatusSuccess;
    });
}

uint32_t LumavenService::GetOledFromRegistry(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetOledFromRegistry, request, response, contextWord, [&] {
        const OledSetting setting = ReadOledSetting();
        AddInt(*response, L"result", setting.On() ? 1 : setting.Off() ? 0 : -1);
        return setting.Failed() ? StatusRegistryError : StatusSuccess;
    });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
