// Writes a panel's AUX sequence over the native DisplayPort AUX channel of the Intel control
// library and reads its first write back.
#pragma once

#include "intel/ControlLibClient.h"
#include "panel/AuxDataTable.h"

#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// The whole operation for one display: the sequence of the fitted panel for `on`, written
// and its first entry verified.
bool SetPanelAuxState(ctl_display_output_handle_t display, ctl_result_t& status, bool on);
// Every entry in order; stops at the first failed write, undoing nothing.
bool WriteAuxData(ctl_result_t& status, ctl_display_output_handle_t display, const std::vector<AuxWrite>& writes);
// Reads back the first entry only and compares it byte by byte.
bool VerifyAuxData(ctl_result_t& status, ctl_display_output_handle_t display, const std::vector<AuxWrite>& writes);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
