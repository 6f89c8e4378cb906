#include "Watchdog.h"

#include "RunSettings.h"

#include <windows.h>

#include <cstdio>

namespace LumavenReliability {

Watchdog::Watchdog(std::chrono::milliseconds bound, std::string what)
    : m_bound(bound), m_what(std::move(what)), m_thread([this] { Watch(); })
{
}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard guard(m_lock);
        m_done = true;
    }
    m_finished.notify_one();
    m_thread.join();
}

void Watchdog::Watch()
{
    std::unique_lock guard(m_lock);
    if (m_finished.wait_for(guard, m_bound, [this] { return m_done; })) {
        return;
    }
    PrintSummary("watchdog", Format("%s did not finish within %lld s: hangs=1", m_what.c_str(),
                                    static_cast<long long>(m_bound.count() / 1000)));
    std::fprintf(stderr, "watchdog: %s hung; ending the test process\n", m_what.c_str());
    std::fflush(stderr);
    // The hung threads may hold locks that an orderly exit would wait for.
    TerminateProcess(GetCurrentProcess(), kHangExitCode);
}

}  // namespace LumavenReliability
