#include "oled/EventGate.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

bool EventGate::TryTakeUntil(std::chrono::steady_clock::time_point deadline)
{
    std::unique_lock lock(m_lock);
    if (!m_freed.wait_until(lock, deadline, [this] { return m_state == 0; })) {
        return false;
    }
    m_state = -1;
    return true;
}

void EventGate::Release()
{
    {
        const std::lock_guard lock(m_lock);
        m_state = 0;
    }
    m_freed.notify_one();
}

std::chrono::steady_clock::time_point EventGate::OneSecondFromNow()
{
    return OneSecondAfter(std::chrono::steady_clock::now());
}

std::chrono::steady_clock::time_point EventGate::OneSecondAfter(std::chrono::steady_clock::time_point from)
{
    using Clock = std::chrono::steady_clock;
    const auto oneSecond = std::chrono::duration_cast<Clock::duration>(std::chrono::seconds(1));
    if (from > Clock::time_point::max() - oneSecond) {
        return Clock::time_point::max();
    }
    return from + oneSecond;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
