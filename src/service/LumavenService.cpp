#include "service/LumavenService.h"

#include "amd/AdlAuxChannel.h"
#include "util/TypeName.h"

#include <cwchar>
#include <memory>

namespace Xelto::Spanlet::Server::Services::Lumaven {

AuxDataMap* g_auxData = nullptr;

namespace {

// Strings handed out by CreateString are short host labels.
constexpr size_t kMaxCreatedStringChars = 64;

}  // namespace

LumavenService::LumavenService() : m_typeName(LumavenUtil::TypeNameOf<LumavenService>())
{
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): the logger is asked for after the provider is set
    m_logger = LogManager::GetLogger();
}

LumavenService::~LumavenService()
{
    if (m_auxData) {
        // The Intel path's view must not outlive the table.
        if (g_auxData == m_auxData.get()) {
            g_auxData = nullptr;
        }
        m_auxData->clear();
        m_auxData.reset();
    }
    // The ADL binding is process-wide; a write that stopped early left it loaded.
    ReleaseAdlBinding();
    // The mutexes are destroyed after this body, m_adlxMutex first.
}

uint32_t LumavenService::CreateString(const wchar_t* text, wchar_t*** holder)
{
    if (holder == nullptr) {
        return 0;
    }
    const size_t length = text != nullptr ? wcsnlen(text, kMaxCreatedStringChars) : 0;
    // Owned here until both are made: the copy's allocation failing leaves the holder freed.
    auto box = std::make_unique<wchar_t*>(nullptr);
    auto* copy = new wchar_t[length + 1];
    // A longer text is the caller's error; the bounded copy reports it through the runtime's
    // invalid-parameter handling instead of truncating it.
    wcscpy_s(copy, length + 1, text != nullptr ? text : L"");
    *box = copy;
    *holder = box.release();
    return 0;
}

uint32_t LumavenService::ReleaseString(wchar_t*** holder)
{
    if (holder == nullptr || *holder == nullptr) {
        return 0;
    }
    delete[] * *holder;
    delete *holder;
    return 0;
}

uint32_t LumavenService::oled_power_event_task(void* reserved, const POWERBROADCAST_SETTING* eventData)
{
    (void)reserved;
    m_logger->LogInfo(L"%S::PEXelto::%S",
                      "Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task", "Enter");
    return OledEventCalled(eventData);
}

bool LumavenService::RequestOrResponseMissing(const Document* request, const Document* response,
                                              uint64_t contextWord) const
{
    return UtilHelper::NullChecker({{request, "request"}, {response, "response"}}, contextWord) != 0;
}

void LumavenService::LogCaught(const HandlerIdentity& handler, const std::exception& caught) const
{
    if (handler.qualifiedName != nullptr) {
        m_logger->LogError(handler.catchText, handler.qualifiedName, caught.what());
    } else {
        m_logger->LogError(handler.catchText, caught.what());
    }
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
