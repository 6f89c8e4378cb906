// Ends the whole test process when a piece of work does not finish in time. A hung host
// thread cannot be joined or cancelled, so the only way to turn a hang into a failing test
// rather than a test run that never ends is to stop the process with a failure code.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace LumavenReliability {

// The exit code of a process the watchdog ended; not 3, which is what abort() leaves.
inline constexpr unsigned kHangExitCode = 70;

class Watchdog {
public:
    // Armed at once; `what` names the work in the summary line printed on expiry.
    Watchdog(std::chrono::milliseconds bound, std::string what);
    // Disarms: the work finished in time.
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void Watch();

    std::chrono::milliseconds m_bound;
    std::string m_what;
    std::mutex m_lock;
    std::condition_variable m_finished;
    bool m_done = false;
    std::thread m_thread;
};

}  // namespace LumavenReliability
