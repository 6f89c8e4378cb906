#include "intel/IntelCommand.h"

#include "intel/IntelSession.h"
#include "oled/SettingsStore.h"
#include "service/Status.h"

#include "xelto/Logging.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

bool RunOverTargets(IntelSession& session, uint32_t mode, ctl_result_t& status)
{
    return EnumerateTargetDisplays(static_cast<uint32_t>(session.devices.size()), session.devices.data(), status,
                                   mode) != 0;
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
    if (!OpenIntelSession(session)) {
        ctlClose(session.api);
        return StatusDeviceError;
    }
    ctl_result_t status = CTL_RESULT_SUCCESS;
    const bool value = RunOverTargets(session, mode, status);
    AddBool(response, L"result", value);
    LogSessionStatus(status);
    ctlClose(session.api);
    if (const std::optional<uint32_t> setting = value ? record.whenTrue : record.whenFalse) {
        StoreOledSetting(*setting);
    }
    return StatusSuccess;
}

void RunIntelEventSession(uint32_t mode)
{
    IntelSession session;
    if (!OpenIntelSession(session)) {
        // Left open on purpose: the library stays loaded and the next session reuses it.
        return;
    }
    ctl_result_t status = CTL_RESULT_SUCCESS;
    RunOverTargets(session, mode, status);
    LogSessionStatus(status);
    ctlClose(session.api);
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
