#include "RunSettings.h"

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace LumavenReliability {

namespace {

std::string Environment(const char* name)
{
    char value[64];
    const DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
    return length > 0 && length < sizeof value ? std::string(value, length) : std::string();
}

uint64_t DrawSeed()
{
    const std::string given = Environment("LUMAVEN_SEED");
    if (!given.empty()) {
        return std::strtoull(given.c_str(), nullptr, 0);
    }
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    // Counter and process id differ from run to run; the value only has to be printed.
    return (static_cast<uint64_t>(counter.QuadPart) * 0x9E3779B97F4A7C15ull) ^ GetCurrentProcessId();
}

}  // namespace

bool FullRun()
{
    return Environment("LUMAVEN_FULL") == "1";
}

uint64_t RunSeed()
{
    static const uint64_t seed = DrawSeed() % 1000000000000ull;
    return seed;
}

uint64_t ChosenCount(uint64_t bounded, uint64_t full, const char* overrideName)
{
    const std::string given = overrideName != nullptr ? Environment(overrideName) : std::string();
    if (!given.empty()) {
        return std::strtoull(given.c_str(), nullptr, 0);
    }
    return FullRun() ? full : bounded;
}

void PrintSummary(const std::string& suite, const std::string& figures)
{
    std::printf("[reliability] %s %s\n", suite.c_str(), figures.c_str());
    std::fflush(stdout);
}

std::string JoinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += "\n  " + line;
    }
    return text;
}

std::string Format(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    char buffer[1024];
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return length < 0 ? std::string() : std::string(buffer, std::min<size_t>(length, sizeof buffer - 1));
}

}  // namespace LumavenReliability
