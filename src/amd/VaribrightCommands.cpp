// Commands 13 and 14: AMD VariBright of the built-in display, through the process-wide ADLX
// helper. Both run under m_adlxMutex, taken by ExecuteCommand. Neither initialises ADLX:
// until an AMD OLED command has done so there are no display services and the answer is
// false.
#include "amd/ADLXHelper.h"
#include "service/LumavenService.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

uint32_t LumavenService::_GetIfVaribrightSupport(Document* request, Document* response, uint64_t contextWord)
{
    return RunHandler(Handler::GetIfVaribrightSupport, request, response, contextWord, [&] {
        AddBool(*response, L"result", IsVaribrightSupported());
        return StatusSuccess;
    });
}

uint32_t LumavenService::_SetVaribright(Document* request, Document* response, uint64_t contextWord)
{
    if (request == nullptr) {
        return StatusInvalidArgument;
    }
    return Guarded(Handler::SetVaribright, [&] {
        const BValue wanted = ReadBValue(*request);
        if (wanted == BValue::Missing) {
            m_logger->LogInfo(L"SetVaribright() check data failed\n\n");
            return StatusInvalidArgument;
        }
        if (RequestOrResponseMissing(request, response, contextWord)) {
            return StatusInvalidArgument;
        }
        AddBool(*response, L"result", SetVaribrightEnabled(wanted == BValue::On));
        return StatusSuccess;
    });
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
