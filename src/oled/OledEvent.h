// The display-power event path: re-applies the panel's OLED power-saving state when the
// display or the lid comes back on while power saving is stored as on.
#pragma once

#include <cstdint>
#include <string>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// -1 not yet known, 0 after a display-off event, 1 after a handled display-on event. Read
// and written only under the service's m_mutex.
extern int32_t g_prevDisplayState;

// The stored setting as the event path reads it: "1", "0" or "-1".
std::wstring GetOledFromRegistryForEvent();
// The Intel Ed-on write without request or response.
void EnableEdForEvent();

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
