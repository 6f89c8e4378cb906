#include "LogCapture.h"

#include <algorithm>

namespace LumavenTest {

LogCapture::LogCapture()
{
    Xelto::Logging::SetSink(&LogCapture::Receive, this);
}

LogCapture::~LogCapture()
{
    Xelto::Logging::SetSink(nullptr, nullptr);
}

void LogCapture::Receive(void* user, Xelto::Logging::Level level, const char* provider, uint64_t context,
                         const wchar_t* text)
{
    auto* self = static_cast<LogCapture*>(user);
    std::lock_guard guard(self->m_lock);
    self->m_records.push_back({level, provider, context, text});
}

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
