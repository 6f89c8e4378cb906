#include "LogLineCounter.h"

namespace LumavenReliability {

LogLineCounter::LogLineCounter(std::vector<std::wstring> watched) : m_watched(std::move(watched))
{
    if (m_watched.size() > kMaxWatched) {
        m_watched.resize(kMaxWatched);
    }
    Xelto::Logging::SetSink(&LogLineCounter::Receive, this);
}

LogLineCounter::~LogLineCounter()
{
    Xelto::Logging::SetSink(nullptr, nullptr);
}

uint64_t LogLineCounter::Count(size_t watchedIndex) const
{
    return watchedIndex < kMaxWatched ? m_counts[watchedIndex].load() : 0;
}

uint64_t LogLineCounter::Lines() const
{
    return m_lines.load();
}

uint64_t LogLineCounter::Errors() const
{
    return m_errors.load();
}

void LogLineCounter::Receive(void* user, Xelto::Logging::Level level, const char*, uint64_t, const wchar_t* text)
{
    auto* self = static_cast<LogLineCounter*>(user);
    ++self->m_lines;
    if (level == Xelto::Logging::Level::Error) {
        ++self->m_errors;
    }
    for (size_t i = 0; i < self->m_watched.size(); ++i) {
        if (self->m_watched[i] == text) {
            ++self->m_counts[i];
        }
    }
}

}  // namespace LumavenReliability
