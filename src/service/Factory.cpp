#include "panel/PanelIdentity.h"
#include "service/LumavenService.h"

#include "xelto/Logging.h"
#include "xelto/XeltoService.h"

#include <exception>

using Xelto::Spanlet::Server::Services::XeltoService;
using Xelto::Spanlet::Server::Services::Lumaven::GetPanelIndex;
using Xelto::Spanlet::Server::Services::Lumaven::kUnsupportedPanel;
using Xelto::Spanlet::Server::Services::Lumaven::LumavenService;

// The factory only gates on the panel; the vendor, the panel identity and the AUX table are
// gathered by the start-up task.
extern "C" XeltoService* XeltoCreateService()
{
    XeltoService* service = nullptr;
    try {
        service = new LumavenService();
        if (GetPanelIndex() == kUnsupportedPanel) {
            LogManager::GetLogger()->LogInfo(
                L"LumavenService cannot be initialized as it is running on unsupported platform");
            delete service;
            return nullptr;
        }
    } catch (const std::exception&) {
        // Only running out of memory gets here; the host sees the service as unavailable
        // rather than an exception across the module boundary.
        delete service;
        return nullptr;
    }
    return service;
}
