#include "amd/ADLXHelper.h"
#include "service/LumavenService.h"

#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// Switching on also selects the battery-first VariBright level, through a fresh interface,
// given back at once like every VariBright interface the service asks for.
void SelectMaximizeBattery()
{
    adlx::IADLXDisplayVariBright* variBright = nullptr;
    if (GetVariBright(&variBright) < 3 && variBright != nullptr) {
        variBright->SetMaximizeBattery();
        variBright->Release();
    }
}

}  // namespace

// The one-step switches compose the finer commands. On AMD they hold m_adlxMutex while
// SetAmdElp takes m_mutex: the opposite order of command 10, kept as the host contract has it.

uint32_t LumavenService::_SetOLEDPowerSaveON(Document* request, Document* response, uint64_t contextWord,
                                             uint64_t extra)
{
    return RunHandler(Handler::SetOLEDPowerSaveON, request, response, contextWord,
                      [&] { return SwitchPowerSaving(true, request, response, contextWord, extra); });
}

uint32_t LumavenService::_SetOLEDPowerSaveOFF(Document* request, Document* response, uint64_t contextWord,
                                              uint64_t extra)
{
    return RunHandler(Handler::SetOLEDPowerSaveOFF, request, response, contextWord,
                      [&] { return SwitchPowerSaving(false, request, response, contextWord, extra); });
}

uint32_t LumavenService::SwitchPowerSaving(bool on, Document* request, Document* response, uint64_t contextWord,
                                           uint64_t extra)
{
    if (m_videoController == kVendorIntel) {
        const std::lock_guard lock(m_mutex);
        // The Ed switch follows only an OPST switch that succeeded.
        if (on && EnableOpst(request, response, contextWord) == StatusSuccess) {
            EnableEd(request, response, contextWord);
        } else if (!on && DisableOpst(request, response, contextWord) == StatusSuccess) {
            DisableEd(request, response, contextWord);
        }
    } else if (m_videoController == kVendorAmd) {
        const std::lock_guard lock(m_adlxMutex);
        InitializeAdlxDisplay();
        const bool variBrightSwitched = SetVaribrightEnabled(on);
        if (!on) {
            AddBool(*response, L"result", variBrightSwitched);
        } else if (variBrightSwitched) {
            // Switching on reports no "result" of its own (SetAmdElp adds one) and also selects
            // the battery-first VariBright level.
            SelectMaximizeBattery();
        }
        ResetToBValue(*request, on);
        SetAmdElp(request, response, contextWord, extra);
    }
    return StatusSuccess;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
