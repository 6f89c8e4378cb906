#include "ProcessRunner.h"

#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <vector>

namespace LumavenTest {

ProcessResult RunProgram(const std::wstring& commandLine)
{
    ProcessResult result = RunProgramIn(ExecutableDirectory(), L"", commandLine);
    for (const std::string& call : CallsAfterDetach()) {
        ADD_FAILURE() << "a call reached a vendor library after its detach: " << call << "\n" << result.output;
    }
    return result;
}

ProcessResult RunProgramIn(const std::wstring& directory, const std::wstring& program, const std::wstring& commandLine)
{
    ProcessResult result;
    SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) {
        result.exitCode = ~0ul;
        return result;
    }
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    startup.hStdError = writeEnd;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    std::vector<wchar_t> line(commandLine.begin(), commandLine.end());
    line.push_back(L'\0');
    const BOOL started = CreateProcessW(program.empty() ? nullptr : program.c_str(), line.data(), nullptr, nullptr,
                                        TRUE, 0, nullptr, directory.c_str(), &startup, &process);
    CloseHandle(writeEnd);
    if (!started) {
        CloseHandle(readEnd);
        result.exitCode = ~0ul;
        result.output = "CreateProcess failed";
        return result;
    }
    char buffer[4096];
    DWORD read = 0;
    while (ReadFile(readEnd, buffer, sizeof buffer, &read, nullptr) && read > 0) {
        result.output.append(buffer, read);
    }
    CloseHandle(readEnd);
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result.exitCode);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return result;
}

}  // namespace LumavenTest
