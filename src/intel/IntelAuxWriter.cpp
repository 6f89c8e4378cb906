#include "intel/IntelAuxWriter.h"
#include "intel/AuxRequest.h"

#include "panel/PanelIdentity.h"
#include "service/LumavenService.h"

#include "xelto/Logging.h"

#include <algorithm>
#include <cstring>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// Three of the writer's lines report where the status word lives rather than its value; the
// failing code itself reaches the log through the session's status line.
unsigned StatusWordAddress(const ctl_result_t& status)
{
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(&status));
}

TraceLogger& Log()
{
    return *LogManager::GetLogger();
}

}  // namespace

bool WriteAuxData(ctl_result_t& status, ctl_display_output_handle_t display, const std::vector<AuxWrite>& writes)
{
    status = CTL_RESULT_SUCCESS;
    for (const AuxWrite& entry : writes) {
        ctl_aux_access_args_t request = AuxRequest(CTL_OPERATION_TYPE_WRITE, entry);
        // The table's entries are at most three bytes, far below the record's capacity.
        std::memcpy(request.Data, entry.data.data(), std::min(entry.data.size(), sizeof request.Data));
        status = ctlAUXAccess(display, &request);
        if (status != 0) {
            Log().LogError("ctlAUXAccess for Native Aux DPCD WRITE returned failure code: 0x%X\n",
                           StatusWordAddress(status));
            return false;
        }
    }
    return true;
}

bool VerifyAuxData(ctl_result_t& status, ctl_display_output_handle_t display, const std::vector<AuxWrite>& writes)
{
    status = CTL_RESULT_SUCCESS;
    if (writes.empty()) {
        return false;
    }
    const AuxWrite& first = writes.front();
    ctl_aux_access_args_t request = AuxRequest(CTL_OPERATION_TYPE_READ, first);
    status = ctlAUXAccess(display, &request);
    // Compared whatever the read answered: a failed read leaves zeros in the record.
    const size_t count = std::min(first.data.size(), sizeof request.Data);
    return std::equal(first.data.begin(), first.data.begin() + static_cast<std::ptrdiff_t>(count), request.Data);
}

bool SetPanelAuxState(ctl_display_output_handle_t display, ctl_result_t& status, bool on)
{
    const PanelId panel = GetPanelId();
    if (panel == 0) {
        Log().LogError("Can't find the Pid Vid");
        return false;
    }
    if (g_auxData == nullptr) {
        Log().LogError("AuxDataMapPtr is not initialized");
        return false;
    }
    const auto found = g_auxData->find({panel, on});
    if (found == g_auxData->end()) {
        Log().LogError("Can't find the Aux data of Pid Vid: %x", panel);
        return false;
    }
    const std::vector<AuxWrite>& writes = found->second;
    if (!WriteAuxData(status, display, writes)) {
        Log().LogError("Write Aux data failed: %x", StatusWordAddress(status));
        return false;  // never read: the write failed with a status, and the display loop then skips the answer
    }
    const bool verified = VerifyAuxData(status, display, writes);
    if (!verified) {
        Log().LogError("Verify Aux data failed: %x", StatusWordAddress(status));
    }
    return verified;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
