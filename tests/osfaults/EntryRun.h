// Runs one entry point of the service the way a host does and keeps everything that came
// back: the service made or not, an exception that left, the command's status and text, and
// the lines the service logged meanwhile.
#pragma once

#include "HostedService.h"
#include "ImportHooks.h"
#include "XeltoClient.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace LumavenOsFaults {

enum class Entry {
    Factory,  // XeltoCreateService
    Startup,  // startup_task on a service just made
    Command,  // ExecuteCommand on a started service
    Event,    // oled_power_event_task: the display off, then on again
};

struct Outcome {
    bool created = true;   // the factory: a service came back
    bool returned = true;  // false: an exception left the entry point
    std::string thrown;    // its type, when one did
    XeltoClient::Reply call;
    // "I:", "W:" or "E:" and the rendered text, in order.
    std::vector<std::wstring> logs;

    // Status and text for a command, the exception for anything that threw.
    std::string Describe() const;
};

// A service ready for the entry point: none for the factory (it makes its own), a service not
// yet started for the start-up task, a started one otherwise.
std::unique_ptr<LumavenTest::HostedService> Prepared(Entry entry);

// Runs it once on `hosted`, which the factory replaces with the service it made.
Outcome RunEntry(Entry entry, uint32_t command, const wchar_t* request,
                 std::unique_ptr<LumavenTest::HostedService>& hosted);

std::string Narrow(const std::wstring& text);

// The shipped DLL loaded with its imports patched. Its runtime keeps a few blocks for as long
// as the thread or the process lives, made on first use: the first exception thrown on a
// thread makes its per-thread blocks. One failed factory call and one service made make them
// before anything is counted. (That first use failing for want of memory is FirstUse's case.)
class LoadedDll {
public:
    LoadedDll();
    ~LoadedDll() { Unload(); }
    LoadedDll(const LoadedDll&) = delete;
    LoadedDll& operator=(const LoadedDll&) = delete;

    bool Loaded() const { return m_module != nullptr; }
    // Unloaded with the hooks in place, so that what the DLL gives back as it goes is
    // counted; its import table goes with it.
    void Unload();

private:
    HMODULE m_module = nullptr;
    std::unique_ptr<PatchedImports> m_patch;
};

}  // namespace LumavenOsFaults
