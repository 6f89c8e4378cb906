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

// A command's session with the control library: the API handle ctlInit gave and the adapters
// it listed. Once ctlInit has been called, the session is closed with ctlClose when its owner's
// scope ends, on every way out, an exception included: otherwise the library and its handle
// would stay open until the next command. An owner closes it earlier where what follows must
// come after the close, or leaves it open on purpose.
class IntelSession {
public:
    IntelSession() = default;
    IntelSession(const IntelSession&) = delete;
    IntelSession& operator=(const IntelSession&) = delete;
    IntelSession(IntelSession&&) = delete;
    IntelSession& operator=(IntelSession&&) = delete;
    ~IntelSession() { Close(); }

    // ctlInit, then ctlEnumerateDevices for the count and again for the list. False when any
    // step fails, an adapter count no machine has included; the session then holds whatever
    // handle ctlInit returned, and is closed all the same unless its owner leaves it open.
    bool Open();
    // ctlClose on the handle ctlInit gave, once; nothing when ctlInit was never called.
    void Close() noexcept;
    // Forgets the session without closing it: the library stays loaded, and the next
    // session's ctlInit finds it so.
    void LeaveOpen() noexcept { m_initCalled = false; }

    // The adapters in the order the library listed them; empty unless Open succeeded.
    std::vector<ctl_device_adapter_handle_t>& Devices() { return m_devices; }

private:
    ctl_api_handle_t m_api = nullptr;
    std::vector<ctl_device_adapter_handle_t> m_devices;
    bool m_initCalled = false;
};

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
