// Runs another program of the build (the reference host, the installer) and collects what
// it printed.
#pragma once

#include <string>

namespace LumavenTest {

struct ProcessResult {
    unsigned long exitCode = 0;
    std::string output;  // stdout and stderr together
};

// `commandLine` is the full command line; the program is looked up in the test's directory.
// A program that called into a simulated vendor library after the loader had detached it (at
// its exit) fails the calling test: the driver logged the call as refused.
ProcessResult RunProgram(const std::wstring& commandLine);
// Runs `program` (a full path) with `commandLine` as its whole command line (the program's
// name first, as a shell passes it), in `directory`.
ProcessResult RunProgramIn(const std::wstring& directory, const std::wstring& program, const std::wstring& commandLine);

}  // namespace LumavenTest
