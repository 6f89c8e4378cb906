#include "service/ModuleLifetime.h"

#include <windows.h>

#include <atomic>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

constinit std::atomic<bool> g_processEnding{false};

}  // namespace

bool ProcessIsEnding()
{
    return g_processEnding.load();
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven

// Not exported (the module-definition file lists every export). Only the ending of the process
// is recorded; everything else is the C runtime's business.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_DETACH && reserved != nullptr) {
        Xelto::Spanlet::Server::Services::Lumaven::g_processEnding.store(true);
    }
    return TRUE;
}
