#include "LogHub.h"

#include "JsonLine.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>

namespace Xelto::Logging {

namespace {

struct Hub {
    std::mutex lock;
    std::string provider;
    SinkFunction sink = nullptr;
    void* sinkUser = nullptr;
    std::atomic<bool> hasSink{false};
};

// At namespace scope, and constant-initialized (every member has a constant constructor), so
// that it exists before any call: a function-local static would be built on the first record,
// behind a first-use guard whose runtime allocates, and the first record of a process may well
// come from an error path that is logging because memory ran short.
Hub g_hub;

// The file is named afresh for every record, so a host may switch it while running, and
// opened in append mode, so several processes can share one log.
void AppendToLogFile(Level level, const std::string& provider, uint64_t context, const std::wstring& text)
{
    wchar_t path[MAX_PATH * 2];
    const DWORD length = GetEnvironmentVariableW(L"XELTO_LOG_FILE", path, MAX_PATH * 2);
    if (length == 0 || length >= MAX_PATH * 2) {
        return;
    }
    const std::string line = JsonLine(level, provider, context, text);
    HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return;
    }
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
}

}  // namespace

void SetProviderName(const char* name)
{
    try {
        Hub& hub = g_hub;
        std::lock_guard guard(hub.lock);
        hub.provider = name != nullptr ? name : "";
    } catch (...) {
    }
}

bool AnyoneListening() noexcept
{
    return g_hub.hasSink.load() || GetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr, 0) > 0;
}

void Publish(Level level, uint64_t context, const std::wstring& text) noexcept
{
    try {
        Hub& hub = g_hub;
        std::lock_guard guard(hub.lock);
        if (hub.sink != nullptr) {
            hub.sink(hub.sinkUser, level, hub.provider.c_str(), context, text.c_str());
        }
        AppendToLogFile(level, hub.provider, context, text);
    } catch (...) {
    }
}

void SetSink(SinkFunction sink, void* user)
{
    try {
        Hub& hub = g_hub;
        std::lock_guard guard(hub.lock);
        hub.sink = sink;
        hub.sinkUser = user;
        hub.hasSink = sink != nullptr;
    } catch (...) {
    }
}

const char* LevelName(Level level)
{
    switch (level) {
    case Level::Warning: return "WARNING";
    case Level::Error: return "ERROR";
    case Level::Info: break;
    }
    return "INFO";
}

}  // namespace Xelto::Logging
