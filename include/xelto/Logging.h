// The Xelto host logging library (XeltoLog.dll). Every format, narrow or wide, is rendered
// with the Windows wide conventions: %s is a wide string, %S a narrow one.
#pragma once

#include <cstdint>

#if defined(XELTOLOG_BUILD)
#define XELTOLOG_API __declspec(dllexport)
#else
#define XELTOLOG_API __declspec(dllimport)
#endif

struct LoggingData {
    const wchar_t* format;
    uint64_t context;
    uint64_t reserved;
};

class XELTOLOG_API TraceLogger {
public:
    void LogInfo(const wchar_t* fmt, ...);
    void LogError(const char* fmt, ...);
    void LogError(const wchar_t* fmt, ...);
    void LogError(LoggingData data, ...);
    void LogWarning(LoggingData data, ...);
};

class XELTOLOG_API LogManager {
public:
    static void SetProvider(const char* name);
    static TraceLogger* GetLogger();
};
