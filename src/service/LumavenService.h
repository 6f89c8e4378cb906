// The Lumaven service object: the host's XeltoService, its command handlers and the state
// they share.
#pragma once

#include "panel/AuxDataTable.h"
#include "panel/PanelIdentity.h"
#include "service/HandlerCatalog.h"
#include "service/Json.h"
#include "service/Status.h"
#include "service/UtilHelper.h"

#include "xelto/Logging.h"
#include "xelto/XeltoService.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Graphics vendors as the start-up task records them; anything else is unsupported.
inline constexpr int32_t kVendorIntel = 1;
inline constexpr int32_t kVendorAmd = 2;

class LumavenService : public XeltoService {
public:
    using CommandHandler = uint32_t (LumavenService::*)(Document* request, Document* response, uint64_t contextWord);
    using CommandHandlerWithExtra = uint32_t (LumavenService::*)(Document* request, Document* response,
                                                                 uint64_t contextWord, uint64_t extra);

    LumavenService();
    ~LumavenService() override;
    LumavenService(const LumavenService&) = delete;
    LumavenService& operator=(const LumavenService&) = delete;

    uint32_t CreateString(const wchar_t* text, wchar_t*** holder) override;
    uint32_t ReleaseString(wchar_t*** holder) override;
    uint32_t ExecuteCommand(CallContext* context, uint32_t command, const wchar_t* message, wchar_t** outString,
                            CommandCallback callback, uint64_t extra) override;
    void startup_task() override;
    uint32_t oled_power_event_task(void* reserved, const POWERBROADCAST_SETTING* eventData) override;

    // Command handlers, by command number.
    uint32_t _GetOpst(Document* request, Document* response, uint64_t contextWord);                              // 1
    uint32_t EnableOpst(Document* request, Document* response, uint64_t contextWord);                            // 2
    uint32_t DisableOpst(Document* request, Document* response, uint64_t contextWord);                           // 3
    uint32_t GetIfSystemSupportsOled(Document* request, Document* response, uint64_t contextWord);               // 4
    uint32_t EnableEd(Document* request, Document* response, uint64_t contextWord);                              // 5
    uint32_t DisableEd(Document* request, Document* response, uint64_t contextWord);                             // 6
    uint32_t GetOledFromRegistry(Document* request, Document* response, uint64_t contextWord);                   // 7
    uint32_t _GetIfSystemSupportsOpst(Document* request, Document* response, uint64_t contextWord);              // 8
    uint32_t SetIntelElp(Document* request, Document* response, uint64_t contextWord, uint64_t extra);           // 9
    uint32_t SetAmdElp(Document* request, Document* response, uint64_t contextWord, uint64_t extra);             // 9
    uint32_t _GetIfOLEDSupport(Document* request, Document* response, uint64_t contextWord);                     // 10
    uint32_t _SetOLEDPowerSaveON(Document* request, Document* response, uint64_t contextWord, uint64_t extra);   // 11
    uint32_t _SetOLEDPowerSaveOFF(Document* request, Document* response, uint64_t contextWord, uint64_t extra);  // 12
    uint32_t _GetIfVaribrightSupport(Document* request, Document* response, uint64_t contextWord);               // 13
    uint32_t _SetVaribright(Document* request, Document* response, uint64_t contextWord);                        // 14

    // Commands 11 and 12 in one: power saving on or off through the vendor's finer handlers.
    uint32_t SwitchPowerSaving(bool on, Document* request, Document* response, uint64_t contextWord, uint64_t extra);

    // The graphics vendor: kVendorIntel, kVendorAmd, or 0 when neither was found.
    static int32_t CheckVideoControllerType();

    // The display-power event handler behind oled_power_event_task.
    uint32_t OledEventCalled(const POWERBROADCAST_SETTING* eventData);
    // Writes the panel's "on" sequence again through the vendor's path, after a short wait.
    void ReapplyPanelState();

    // The members are shared by handlers that live in the files of their subsystems.
    TraceLogger* m_logger = nullptr;
    std::string m_typeName;
    std::unique_ptr<AuxDataMap> m_auxData;
    int32_t m_videoController = 0;
    PanelId m_panelId = 0;
    std::mutex m_mutex;
    std::mutex m_adlxMutex;
    CommandHandlerWithExtra m_setElp = nullptr;

    // The handler pattern: the request/response check every handler starts with, and the
    // guard that turns a caught std::exception into StatusException with the handler's line.
    bool RequestOrResponseMissing(const Document* request, const Document* response, uint64_t contextWord) const;
    template <class Work>
    uint32_t Guarded(const HandlerIdentity& handler, Work&& work)
    {
        try {
            return work();
        } catch (const std::exception& caught) {
            LogCaught(handler, caught);
            return StatusException;
        }
    }
    void LogCaught(const HandlerIdentity& handler, const std::exception& caught) const;
    // Both steps together, for the handlers that start with the request/response check.
    template <class Work>
    uint32_t RunHandler(const HandlerIdentity& handler, const Document* request, const Document* response,
                        uint64_t contextWord, Work&& work)
    {
        if (RequestOrResponseMissing(request, response, contextWord)) {
            return StatusInvalidArgument;
        }
        return Guarded(handler, std::forward<Work>(work));
    }
};

// The process-wide, non-owning view of the AUX table that the Intel path reads; set by the
// start-up task on Intel machines only.
extern AuxDataMap* g_auxData;

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
