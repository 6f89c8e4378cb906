// A one-holder gate with a deadline, made afresh for each re-apply of the panel state.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Xelto::Spanlet::Server::Services::Lumaven {

class EventGate {
public:
    // Takes the gate, waiting until it is free or the deadline passes.
    bool TryTakeUntil(std::chrono::steady_clock::time_point deadline);
    void Release();

    // now + 1 s, saturating at the clock's largest time point.
    static std::chrono::steady_clock::time_point OneSecondFromNow();
    // `from` + 1 s, saturating likewise: a clock near its end must not wrap into the past.
    static std::chrono::steady_clock::time_point OneSecondAfter(std::chrono::steady_clock::time_point from);

private:
    std::mutex m_lock;
    std::condition_variable m_freed;
    int32_t m_state = 0;  // 0 free, -1 taken
};

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
