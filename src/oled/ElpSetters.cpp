#include "amd/AdlAuxChannel.h"
#include "oled/SettingsStore.h"
#include "service/LumavenService.h"

#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Command 9 takes no lock in the dispatcher: each setter holds m_mutex for its whole run,
// the nested Ed handler or the AUX write included.

namespace {

// What both setters check first, in this order: a request, a usable "BValue" (refused with
// the setter's own log line), a supported panel.
struct ElpRequest {
    uint32_t refusal = StatusSuccess;
    bool on = false;
};

ElpRequest CheckElpRequest(const Document* request, PanelId panel, TraceLogger& log, const wchar_t* checkFailed)
{
    if (request == nullptr) {
        return {StatusInvalidArgument};
    }
    const BValue value = ReadBValue(*request);
    if (value == BValue::Missing) {
        log.LogInfo(checkFailed);
        return {StatusInvalidArgument};
    }
    if (panel == 0) {
        return {StatusDeviceError};
    }
    return {StatusSuccess, value == BValue::On};
}

}  // namespace

uint32_t LumavenService::SetIntelElp(Document* request, Document* response, uint64_t contextWord, uint64_t)
{
    return Guarded(Handler::SetIntelElp, [&] {
        const std::lock_guard lock(m_mutex);
        const ElpRequest checked =
            CheckElpRequest(request, m_panelId, *m_logger, L"SetIntelElp() check data failed\n\n");
        if (checked.refusal != StatusSuccess) {
            return checked.refusal;
        }
        return checked.on ? EnableEd(request, response, contextWord) : DisableEd(request, response, contextWord);
    });
}

uint32_t LumavenService::SetAmdElp(Document* request, Document* response, uint64_t, uint64_t)
{
    return Guarded(Handler::SetAmdElp, [&] {
        const std::lock_guard lock(m_mutex);
        const ElpRequest checked = CheckElpRequest(request, m_panelId, *m_logger, L"SetAmdElp() check data failed\n\n");
        if (checked.refusal != StatusSuccess) {
            return checked.refusal;
        }
        const bool on = checked.on;
        if (!m_auxData) {
            return StatusDeviceError;
        }
        const auto found = m_auxData->find({m_panelId, on});
        if (found == m_auxData->end()) {
            return StatusDeviceError;
        }
        const bool written = WriteAuxDataAmd(m_panelId, found->second);
        if (response != nullptr) {
            AddBool(*response, L"result", written);
        }
        if (written) {
            StoreOledSetting(on ? 1 : 0);
        }
        return StatusSuccess;
    });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
