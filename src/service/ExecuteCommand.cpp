#include "service/LumavenService.h"
#include "service/ResponseText.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// Responses are capped at this many wide characters, the terminator included.
constexpr size_t kMaxResponseChars = 0x10000;

enum class CommandLock { None, Main, Adlx };

using Invoker = uint32_t (*)(LumavenService& service, Document* request, Document* response, uint64_t contextWord,
                             uint64_t extra);

template <LumavenService::Handler handler>
uint32_t Invoke(LumavenService& service, Document* request, Document* response, uint64_t contextWord, uint64_t)
{
    return (service.*handler)(request, response, contextWord);
}

template <LumavenService::HandlerWithExtra handler>
uint32_t InvokeWithExtra(LumavenService& service, Document* request, Document* response, uint64_t contextWord,
                         uint64_t extra)
{
    return (service.*handler)(request, response, contextWord, extra);
}

// Command 9 goes to the vendor's ELP setter chosen at start-up; without one the command
// keeps the invalid-argument result.
uint32_t InvokeElpSetter(LumavenService& service, Document* request, Document* response, uint64_t contextWord,
                         uint64_t extra)
{
    if (service.m_setElp == nullptr) {
        return StatusInvalidArgument;
    }
    return (service.*service.m_setElp)(request, response, contextWord, extra);
}

struct CommandEntry {
    Invoker invoke;
    CommandLock lock;
};

// Index = command number. A handler that is not part of this build leaves its slot empty.
constexpr std::array<CommandEntry, 15> kCommands = {{
    {nullptr, CommandLock::None},                  // 0: not a command
    {nullptr, CommandLock::Main},                  // 1 _GetOpst
    {nullptr, CommandLock::Main},                  // 2 EnableOpst
    {nullptr, CommandLock::Main},                  // 3 DisableOpst
    {&Invoke<&LumavenService::GetIfSystemSupportsOled>, CommandLock::None},  // 4
    {nullptr, CommandLock::Main},                  // 5 EnableEd
    {nullptr, CommandLock::Main},                  // 6 DisableEd
    {&Invoke<&LumavenService::GetOledFromRegistry>, CommandLock::None},  // 7
    {nullptr, CommandLock::Main},                  // 8 _GetIfSystemSupportsOpst
    {&InvokeElpSetter, CommandLock::None},         // 9 SetIntelElp / SetAmdElp
    {nullptr, CommandLock::Main},                  // 10 _GetIfOLEDSupport
    {nullptr, CommandLock::None},                  // 11 _SetOLEDPowerSaveON
    {nullptr, CommandLock::None},                  // 12 _SetOLEDPowerSaveOFF
    {&Invoke<&LumavenService::_GetIfVaribrightSupport>, CommandLock::Adlx},  // 13 _GetIfVaribrightSupport
    {&Invoke<&LumavenService::_SetVaribright>, CommandLock::Adlx},           // 14 _SetVaribright
}};

const CommandEntry* FindCommand(uint32_t command)
{
    if (command == 0 || command >= kCommands.size() || kCommands[command].invoke == nullptr) {
        return nullptr;
    }
    return &kCommands[command];
}

}  // namespace

uint32_t CopyResponseText(const Document& response, wchar_t** outString)
{
    JsonText text;
    WriteCompact(response, text);
    const wchar_t* terminated = text.GetString();
    const size_t length = text.GetSize() / sizeof(wchar_t);
    if (length + 1 > kMaxResponseChars) {
        *outString = nullptr;
        return StatusInvalidArgument;
    }
    auto* copy = static_cast<wchar_t*>(std::malloc((length + 1) * sizeof(wchar_t)));
    if (copy != nullptr) {
        std::memcpy(copy, terminated, (length + 1) * sizeof(wchar_t));
    }
    *outString = copy;
    return StatusSuccess;
}

uint32_t LumavenService::ExecuteCommand(CallContext* context, uint32_t command, const wchar_t* message,
                                        wchar_t** outString, CommandCallback callback, uint64_t extra)
{
    // The callback is never called; it is released inside this call on every path.
    const CommandCallback released = std::move(callback);
    uint32_t result = StatusInvalidArgument;
    if (context == nullptr) {
        return result;
    }
    const uint64_t contextWord = context->contextWord;
    if (UtilHelper::NullChecker({{message, "message"}, {outString, "outString"}}, contextWord) != 0) {
        return result;
    }

    Document response;
    response.SetObject();
    Document request;
    if (!ParseRequest(request, message)) {
        *outString = nullptr;
        return StatusInvalidRequest;
    }

    if (const CommandEntry* entry = FindCommand(command)) {
        std::unique_lock<std::mutex> lock;
        if (entry->lock == CommandLock::Main) {
            lock = std::unique_lock(m_mutex);
        } else if (entry->lock == CommandLock::Adlx) {
            lock = std::unique_lock(m_adlxMutex);
        }
        result = entry->invoke(*this, &request, &response, contextWord, extra);
    } else {
        result = StatusUnsupportedCommand;
        m_logger->LogError(LoggingData{L"%S.%S - Unsupported Function call %d", contextWord, 0}, m_typeName,
                           "ExecuteCommand", command);
    }

    const uint32_t copied = CopyResponseText(response, outString);
    return copied == StatusSuccess ? result : copied;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
