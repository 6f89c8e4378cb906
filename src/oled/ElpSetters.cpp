#include "amd/AdlAuxChannel.h"
#include "oled/SettingsStore.h"
#include "service/LumavenService.h"

#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Command 9 takes no lock in the dispatcher: each setter holds m_mutex for its whole run,
// the nested Ed handler or the AUX write included.

uint32_t LumavenService::SetIntelElp(Document* request, Document* response, uint64_t contextWord, uint64_t)
{
    return Guarded(Handler::SetIntelElp, [&] {
        const std::lock_guard lock(m_mutex);
        if (request == nullptr) {
            return StatusInvalidArgument;
        }
        const BValue value = ReadBValue(*request);
        if (value == BValue::Missing) {
            m_logger->LogInfo(L"SetIntelElp() check data failed\n\n");
            return StatusInvalidArgument;
        }
        if (m_panelId == 0) {
            return StatusDeviceError;
        }
        return value == BValue::On ? EnableEd(request, response, contextWord) : DisableEd(request, response, contextWord);
    });
}

uint32_t LumavenService::SetAmdElp(Document* request, Document* response, uint64_t, uint64_t)
{
    return Guarded(Handler::SetAmdElp, [&] {
        const std::lock_guard lock(m_mutex);
        if (request == nullptr) {
            return StatusInvalidArgument;
        }
        const BValue value = ReadBValue(*request);
        if (value == BValue::Missing) {
            m_logger->LogInfo(L"SetAmdElp() check data failed\n\n");
            return StatusInvalidArgument;
        }
        const bool on = value == BValue::On;
        if (m_panelId == 0 || !m_auxData) {
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
