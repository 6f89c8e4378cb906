#include "service/LumavenService.h"
#include "service/ResponseText.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// Responses are capped at this many wide characters, the terminator included.
constexpr size_t kMaxResponseChars = 0x10000;

// The response's memory pool starts in a buffer of the call's own, large enough for the member
// tables of every response a command writes (the first table holds 16 members, the next 24).
// Adding a member then never allocates: when RapidJSON's AddMember fails to allocate, it
// leaves the object with a capacity it has no storage for, and a composite handler adds its
// own "result" after an inner one may have failed for want of memory.
constexpr size_t kResponsePoolBytes = 2048;

enum class CommandLock { None, Main, Adlx };

using Invoker = uint32_t (*)(LumavenService& service, Document* request, Document* response, uint64_t contextWord,
                             uint64_t extra);

template <LumavenService::CommandHandler handler>
uint32_t Invoke(LumavenService& service, Document* request, Document* response, uint64_t contextWord, uint64_t)
{
    return (service.*handler)(request, response, contextWord);
}

template <LumavenService::CommandHandlerWithExtra handler>
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

// Index = command number, with the lock the dispatcher holds around the handler.
constexpr std::array<CommandEntry, 15> kCommands = {{
    {nullptr, CommandLock::None},                                                  // 0: not a command
    {&Invoke<&LumavenService::_GetOpst>, CommandLock::Main},                       // 1
    {&Invoke<&LumavenService::EnableOpst>, CommandLock::Main},                     // 2
    {&Invoke<&LumavenService::DisableOpst>, CommandLock::Main},                    // 3
    {&Invoke<&LumavenService::GetIfSystemSupportsOled>, CommandLock::None},        // 4
    {&Invoke<&LumavenService::EnableEd>, CommandLock::Main},                       // 5
    {&Invoke<&LumavenService::DisableEd>, CommandLock::Main},                      // 6
    {&Invoke<&LumavenService::GetOledFromRegistry>, CommandLock::None},            // 7
    {&Invoke<&LumavenService::_GetIfSystemSupportsOpst>, CommandLock::Main},       // 8
    {&InvokeElpSetter, CommandLock::None},                                         // 9: each setter locks
    {&Invoke<&LumavenService::_GetIfOLEDSupport>, CommandLock::Main},              // 10
    {&InvokeWithExtra<&LumavenService::_SetOLEDPowerSaveON>, CommandLock::None},   // 11: locks by vendor
    {&InvokeWithExtra<&LumavenService::_SetOLEDPowerSaveOFF>, CommandLock::None},  // 12: locks by vendor
    {&Invoke<&LumavenService::_GetIfVaribrightSupport>, CommandLock::Adlx},        // 13
    {&Invoke<&LumavenService::_SetVaribright>, CommandLock::Adlx},                 // 14
}};

// Every number from 1 up names a handler; 0 is the one row without.
constexpr bool EveryCommandHasAHandler()
{
    for (size_t command = 1; command < kCommands.size(); ++command) {
        if (kCommands[command].invoke == nullptr) {
            return false;
        }
    }
    return kCommands[0].invoke == nullptr;
}
static_assert(EveryCommandHasAHandler());

const CommandEntry* FindCommand(uint32_t command)
{
    if (command == 0 || command >= kCommands.size()) {
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

    alignas(std::max_align_t) std::array<char, kResponsePoolBytes> pool{};
    JsonAllocator responseAllocator(pool.data(), pool.size());
    Document response(&responseAllocator);
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
        m_logger->LogError(LoggingData{L"%S.%S - Unsupported Function call %d", contextWord, 0}, m_typeName.c_str(),
                           "ExecuteCommand", command);
    }

    const uint32_t copied = CopyResponseText(response, outString);
    return copied == StatusSuccess ? result : copied;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
