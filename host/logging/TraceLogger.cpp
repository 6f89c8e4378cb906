#include "LogHub.h"
#include "Render.h"

#include "xelto/Logging.h"

#include <cstdarg>

using Xelto::Logging::Level;
using Xelto::Logging::Publish;
using Xelto::Logging::RenderNarrow;
using Xelto::Logging::RenderWide;

// Rendering can only fail by running out of memory; a logger never throws into its caller,
// so such a record is dropped. A record nobody would receive is not rendered at all.
#define XELTO_RENDER_AND_PUBLISH(level, context, render, format) \
    do {                                                         \
        if (!Xelto::Logging::AnyoneListening()) {                \
            break;                                               \
        }                                                        \
        va_list args;                                            \
        va_start(args, format);                                  \
        try {                                                    \
            Publish(level, context, render);                     \
        } catch (...) {                                          \
        }                                                        \
        va_end(args);                                            \
    } while (0)

void TraceLogger::LogInfo(const wchar_t* fmt, ...)
{
    XELTO_RENDER_AND_PUBLISH(Level::Info, 0, RenderWide(fmt, args), fmt);
}

void TraceLogger::LogError(const char* fmt, ...)
{
    XELTO_RENDER_AND_PUBLISH(Level::Error, 0, RenderNarrow(fmt, args), fmt);
}

void TraceLogger::LogError(const wchar_t* fmt, ...)
{
    XELTO_RENDER_AND_PUBLISH(Level::Error, 0, RenderWide(fmt, args), fmt);
}

void TraceLogger::LogError(LoggingData data, ...)
{
    XELTO_RENDER_AND_PUBLISH(Level::Error, data.context, RenderWide(data.format, args), data);
}

void TraceLogger::LogWarning(LoggingData data, ...)
{
    XELTO_RENDER_AND_PUBLISH(Level::Warning, data.context, RenderWide(data.format, args), data);
}

void LogManager::SetProvider(const char* name)
{
    Xelto::Logging::SetProviderName(name);
}

TraceLogger* LogManager::GetLogger()
{
    static TraceLogger logger;
    return &logger;
}
