#include "intel/IntelCommand.h"

#include "intel/IntelSession.h"
#include "oled/SettingsStore.h"
#include "service/Status.h"

#include "xelto/Logging.h"

#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

bool RunOverTargets(IntelSession& session, uint32_t mode, ctl_result_t& status)
{
    std::vector<ctl_device_adapter_handle_t>& devices = session.Devices();
    return EnumerateTargetDisplays(static_cast<uint32_t>(devices.size()), devices.data(), status, mode) != 0;
}

void LogSessionStatus(ctl_result_t status)
{
    if (status != 0) {
        LogManager::GetLogger()->LogError("EnumerateTargetDisplays returned failure code: 0x%X\n", status);
    }
}

}  // namespace

uint32_t RunIntelCommand(uint32_t mode, Document& response, OledRecord record)
{
    IntelSession session;
    if (!session.Open()) {
        return StatusDeviceError;  // closed on the way out, as on every path
    }
    ctl_result_t status = CTL_RESULT_SUCCESS;
    const bool value = RunOverTargets(session, mode, status);
    AddBool(response, L"result", value);
    LogSessionStatus(status);
    // The session ends before the setting is stored, so the store runs, and may fail, with
    // the library closed.
    session.Close();
    if (const std::optional<uint32_t> setting = value ? record.whenTrue : record.whenFalse) {
        StoreOledSetting(*setting);
    }
    return StatusSuccess;
}

void RunIntelEventSession(uint32_t mode)
{
    IntelSession session;
    if (!session.Open()) {
        // Left open on purpose: the library stays loaded and the next session reuses it. An
        // exception while opening still closes it.
        session.LeaveOpen();
        return;
    }
    ctl_result_t status = CTL_RESULT_SUCCESS;
    RunOverTargets(session, mode, status);
    LogSessionStatus(status);
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
