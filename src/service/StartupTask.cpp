#include "panel/AuxDataTable.h"
#include "panel/PanelIdentity.h"
#include "service/LumavenService.h"

#include <memory>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Gathers what the commands rely on and what does not change while the service lives. The
// table is built on every machine; the vendor decides only the ELP setter and whether the
// Intel path's process-wide view of the table is set.
void LumavenService::startup_task()
{
    m_logger->LogInfo(L"Opening startup_task in LumavenService\n");
    m_videoController = CheckVideoControllerType();
    m_panelId = GetPanelId();
    m_auxData = std::make_unique<AuxDataMap>(BuildAuxDataMap());
    if (m_videoController == kVendorIntel) {
        m_setElp = &LumavenService::SetIntelElp;
        g_auxData = m_auxData.get();
    } else if (m_videoController == kVendorAmd) {
        m_setElp = &LumavenService::SetAmdElp;
    }
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
