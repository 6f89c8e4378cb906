// A command's short session with the Intel control library: load it, find the display
// outputs of the first adapter that has any, run one operation over them, close it again.
#pragma once

#include "intel/ControlLibClient.h"

#include <cstdint>
#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// What ApplyToTargetDisplays does for each display output.
enum IntelMode : uint32_t {
    kModeGetOpst = 1,
    kModeEnableOpst = 2,
    kModeDisableOpst = 3,
    kModeEdOn = 5,
    kModeEdOff = 6,
    kModeOpstSupport = 8,
};

// The arguments every session passes to ctlInit: API version 1.0, nothing else.
ctl_init_args_t SessionInitArgs();

// The per-display loop. The result is the value of the last display whose own status was 0;
// `status` ends 0 when any display succeeded, else holds the last display's status.
uint8_t ApplyToTargetDisplays(ctl_display_output_handle_t* displays, uint32_t displayCount, ctl_result_t& status,
                              uint32_t mode);
// Finds the first adapter with display outputs and runs ApplyToTargetDisplays over them.
uint8_t EnumerateTargetDisplays(uint32_t deviceCount, ctl_device_adapter_handle_t* devices, ctl_result_t& status,
                                uint32_t mode);

// An open session: ctlInit done and the adapters listed. Closing is the owner's decision,
// since the event path deliberately leaves a failed session open.
struct IntelSession {
    ctl_api_handle_t api = nullptr;
    std::vector<ctl_device_adapter_handle_t> devices;
};

// ctlInit, then ctlEnumerateDevices for the count and again for the list. False when any
// step fails; `session.api` then holds whatever ctlInit returned.
bool OpenIntelSession(IntelSession& session);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
