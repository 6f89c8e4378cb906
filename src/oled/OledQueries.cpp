#include "amd/ADLXHelper.h"
#include "oled/SettingsStore.h"
#include "panel/PanelIdentity.h"
#include "service/LumavenService.h"

#include <mutex>

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

// Runs with m_mutex held by the dispatcher; the AMD branch takes m_adlxMutex inside it.
uint32_t LumavenService::_GetIfOLEDSupport(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetIfOLEDSupport, request, response, contextWord, [&] {
        bool supported = false;
        if (m_videoController == kVendorIntel) {
            // A failing OPST query counts as supported without asking the panel; it adds its
            // own "result" to the same response when it succeeds.
            const uint32_t opst = _GetIfSystemSupportsOpst(request, response, contextWord);
            supported = opst != StatusSuccess || GetPanelIndex() != kUnsupportedPanel;
        } else if (m_videoController == kVendorAmd) {
            const std::lock_guard lock(m_adlxMutex);
            InitializeAdlxDisplay();
            supported = IsVaribrightSupported();
        }
        AddBool(*response, L"result", supported);
        return StatusSuccess;
    });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
