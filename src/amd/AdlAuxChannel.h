// The panel's AUX sequences on AMD graphics: ADL's native AUX channel, loaded and released
// within each call.
#pragma once

#include "panel/AuxDataTable.h"
#include "panel/PanelIdentity.h"

#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Loads ADL, finds every mapped display whose EDID carries `panelId` and sends it the whole
// list of writes (through adapter 0, display 0), then unloads ADL. True when at least one
// display matched. Callers hold a service mutex: the binding's state is process-wide and
// unguarded.
bool WriteAuxDataAmd(PanelId panelId, const std::vector<AuxWrite>& writes);

// Releases what an interrupted WriteAuxDataAmd left of the process-wide ADL binding (the
// library, its context and entry points); does nothing when ADL is not loaded. The service's
// destructor calls it.
void ReleaseAdlBinding();

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
