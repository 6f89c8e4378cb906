// OPST, the OLED sub-feature of Intel's DPST display power saving, per display output.
#pragma once

#include "intel/ControlLibClient.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

// The settings record every probe and read-back fills. It is process-wide and unguarded:
// the service's command lock keeps two sessions from using it at once.
extern ctl_power_optimization_settings_t g_opstSettings;

// Whether the display supports DPST with its OPST sub-feature. An unsupported display sets
// `status` to the unsupported-feature error, so it never counts as a succeeded display.
bool IsOpstSupported(ctl_display_output_handle_t display, ctl_result_t& status);
// Supported, and OPST is the only DPST feature enabled.
bool IsOpstEnabled(ctl_display_output_handle_t display, ctl_result_t& status);
// Switches OPST and reads it back; true when the display is now in the requested state.
bool SwitchOpst(ctl_display_output_handle_t display, ctl_result_t& status, bool enable);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
