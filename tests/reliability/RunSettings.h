// What one run of the reliability suites does: bounded (the default, part of the ordinary
// test run) or full (LUMAVEN_FULL=1), the seed every random choice derives from, and the one
// summary line each suite prints.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace LumavenReliability {

// LUMAVEN_FULL=1 selects the long counts.
bool FullRun();
// LUMAVEN_SEED (decimal or 0x-hex) when set, otherwise one value drawn per process; every
// suite of the process uses the same seed and prints it, so a failing run can be repeated.
uint64_t RunSeed();
// The bounded or the full count, unless the environment variable `overrideName` gives one.
uint64_t ChosenCount(uint64_t bounded, uint64_t full, const char* overrideName);

// "[reliability] <suite> <figures>" on stdout, flushed at once.
void PrintSummary(const std::string& suite, const std::string& figures);

class Stopwatch {
public:
    Stopwatch() : m_start(std::chrono::steady_clock::now()) {}
    double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count(); }

private:
    std::chrono::steady_clock::time_point m_start;
};

// The lines, each on its own indented line, for failure messages.
std::string JoinLines(const std::vector<std::string>& lines);

// printf into a std::string.
std::string Format(const char* format, ...);

}  // namespace LumavenReliability
