#include "service/LumavenService.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Display-power events are accepted and answered with 0; re-applying the panel's OLED mode
// on display-on arrives with the event task.
uint32_t LumavenService::OledEventCalled(const POWERBROADCAST_SETTING* eventData)
{
    (void)eventData;
    return 0;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
