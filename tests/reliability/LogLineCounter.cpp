#include "LogLineCounter.h"

namespace LumavenReliability {

namespace {

std::vector<std::wstring> AtMost(std::vector<std::wstring> texts, size_t count)
{
    if (texts.size() > count) {
        texts.resize(count);
    }
    return texts;
}

}  // namespace

// The list is cut before the listener, the last member, starts hearing.
LogLineCounter::LogLineCounter(std::vector<std::wstring> watched) : m_watched(AtMost(std::move(watched), kMaxWatched))
{
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

void LogLineCounter::Receive(const XeltoClient::LogLine& line)
{
    ++m_lines;
    if (line.level == Xelto::Logging::Level::Error) {
        ++m_errors;
    }
    for (size_t i = 0; i < m_watched.size(); ++i) {
        if (m_watched[i] == line.text) {
            ++m_counts[i];
        }
    }
}

}  // namespace LumavenReliability
