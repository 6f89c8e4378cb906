#include "LogCapture.h"

#include <algorithm>

namespace LumavenTest {

LogCapture::LogCapture()
    : m_listener([this](const XeltoClient::LogLine& line) {
          std::lock_guard guard(m_lock);
          m_records.push_back({line.level, line.provider, line.context, line.text});
      })
{
}

LogCapture::~LogCapture() = default;

std::vector<LogRecord> LogCapture::Records() const
{
    std::lock_guard guard(m_lock);
    return m_records;
}

std::vector<std::wstring> LogCapture::Texts() const
{
    std::lock_guard guard(m_lock);
    std::vector<std::wstring> texts;
    for (const LogRecord& record : m_records) {
        texts.push_back(record.text);
    }
    return texts;
}

size_t LogCapture::Count(const std::wstring& text) const
{
    std::lock_guard guard(m_lock);
    return static_cast<size_t>(std::count_if(m_records.begin(), m_records.end(),
                                             [&](const LogRecord& record) { return record.text == text; }));
}

void LogCapture::Clear()
{
    std::lock_guard guard(m_lock);
    m_records.clear();
}

}  // namespace LumavenTest
