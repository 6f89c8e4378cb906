#include "LogListener.h"

#include <utility>

namespace XeltoClient {

LogListener::LogListener(Receiver receive) : m_receive(std::move(receive))
{
    Xelto::Logging::SetSink(&LogListener::Receive, this);
}

LogListener::~LogListener()
{
    Xelto::Logging::SetSink(nullptr, nullptr);
}

void LogListener::Receive(void* user, Xelto::Logging::Level level, const char* provider, uint64_t context,
                          const wchar_t* text)
{
    static_cast<LogListener*>(user)->m_receive(LogLine{level, provider, context, text});
}

}  // namespace XeltoClient
