// Counts the service's log lines through the host logging library's in-process sink without
// keeping them, so that a run of hundreds of thousands of commands neither grows the process
// nor loses the lines it wants to count.
#pragma once

#include "LogListener.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace LumavenReliability {

class LogLineCounter {
public:
    // Starts listening; `watched` are exact rendered texts to count one by one.
    explicit LogLineCounter(std::vector<std::wstring> watched);
    LogLineCounter(const LogLineCounter&) = delete;
    LogLineCounter& operator=(const LogLineCounter&) = delete;

    uint64_t Count(size_t watchedIndex) const;
    uint64_t Lines() const;
    uint64_t Errors() const;

private:
    void Receive(const XeltoClient::LogLine& line);

    static constexpr size_t kMaxWatched = 4;
    std::vector<std::wstring> m_watched;
    std::atomic<uint64_t> m_counts[kMaxWatched] = {};
    std::atomic<uint64_t> m_lines{0};
    std::atomic<uint64_t> m_errors{0};
    // Last: it stops hearing before the counters go.
    XeltoClient::LogListener m_listener{[this](const XeltoClient::LogLine& line) { Receive(line); }};
};

// The line that marks one re-apply of the panel's "on" sequence after a display-on event.
inline constexpr wchar_t kReapplyLine[] = L"LumavenService - OledEventCalled PrevDisplay OFF";

}  // namespace LumavenReliability
