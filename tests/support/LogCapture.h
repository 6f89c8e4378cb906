// Collects the records of the host logging library, heard through the client's LogListener.
#pragma once

#include "LogListener.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace LumavenTest {

struct LogRecord {
    Xelto::Logging::Level level;
    std::string provider;
    uint64_t context;
    std::wstring text;
};

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogRecord> Records() const;
    std::vector<std::wstring> Texts() const;
    // How many records carry exactly this text.
    size_t Count(const std::wstring& text) const;
    void Clear();

private:
    mutable std::mutex m_lock;
    std::vector<LogRecord> m_records;
    // Last: it stops hearing before the records go.
    XeltoClient::LogListener m_listener;
};

}  // namespace LumavenTest
