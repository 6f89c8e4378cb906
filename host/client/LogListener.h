// How a host or a test hears the service's log: the host logging library renders every record
// and hands it to its one in-process sink; a LogListener is that sink for as long as it lives.
// xelto-host prints the lines, its report collects them, the tests capture or count them, all
// through this one door.
#pragma once

#include "xelto/LogSink.h"

#include <cstdint>
#include <functional>

namespace XeltoClient {

// One rendered record, valid for the call that receives it.
struct LogLine {
    Xelto::Logging::Level level;
    const char* provider;  // the name last given to LogManager::SetProvider
    uint64_t context;
    const wchar_t* text;
};

class LogListener {
public:
    using Receiver = std::function<void(const LogLine& line)>;

    // Becomes the library's sink: `receive` is called in the logging thread, once per record,
    // in order. The library has one sink, so the latest listener is the one that hears.
    explicit LogListener(Receiver receive);
    // Removes the sink; records from then on reach no one in the process.
    ~LogListener();
    LogListener(const LogListener&) = delete;
    LogListener& operator=(const LogListener&) = delete;

private:
    static void Receive(void* user, Xelto::Logging::Level level, const char* provider, uint64_t context,
                        const wchar_t* text);

    Receiver m_receive;
};

}  // namespace XeltoClient
