// The figures a long run must not grow: the process's private bytes, its handle count and
// the TLS slots in use.
#pragma once

#include <cstdint>
#include <string>

namespace LumavenReliability {

struct ProcessFigures {
    // PROCESS_MEMORY_COUNTERS_EX::PrivateUsage. Wine 8 leaves it 0 and reports the same
    // figure as PagefileUsage, which Windows defines to be equal to it; that one is taken then.
    uint64_t privateBytes = 0;
    // GetProcessHandleCount. Wine 8 answers 0; the process's entries of the system handle
    // list (NtQuerySystemInformation) are counted then.
    uint32_t handles = 0;
    // The lowest free TLS index: it rises when TLS slots leak.
    uint32_t tlsIndex = 0;
    const char* privateSource = "PrivateUsage";
    const char* handleSource = "GetProcessHandleCount";
};

ProcessFigures SampleProcess();
// "private=12345678 handles=123 tls=4"
std::string Describe(const ProcessFigures& figures);

}  // namespace LumavenReliability
