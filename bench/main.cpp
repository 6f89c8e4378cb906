// lumaven-bench: loads the service DLL, runs its start-up task and prints the benchmark's
// table (BenchTable.h). A development tool beside the reference host, not part of the
// package: its floors use the project's vendor declarations and the service's panel AUX
// table, which a host never sees.
//   lumaven-bench [--dll PATH] [ROUNDS] [ROW]
#include "BenchTable.h"

#include "XeltoClient.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

namespace {

using XeltoClient::kExitOk;
using XeltoClient::kExitUnavailable;
using XeltoClient::kExitUsage;
constexpr unsigned kDefaultRounds = 21;

void PrintUsage()
{
    std::printf("usage: lumaven-bench [--dll PATH] [ROUNDS] [ROW]\n"
                "Times every command, a display-power event and the start-up against the bare calls\n"
                "they cannot avoid (default 21 rounds; ROW: only the rows of one command number, event\n"
                "or start-up), and prints each median and the median ratio.\n"
                "  --dll PATH   the service DLL (default: LumavenService.dll beside this program)\n"
                "Exit code: 0 when the table ran, 2 for wrong arguments, 3 when the service is unavailable.\n");
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    std::vector<std::wstring> words(argv + 1, argv + argc);
    if (!words.empty() && (words[0] == L"--help" || words[0] == L"-h")) {
        PrintUsage();
        return kExitOk;
    }
    std::wstring dllPath = XeltoClient::BesideThisProgram(L"LumavenService.dll");
    if (words.size() >= 2 && words[0] == L"--dll") {
        dllPath = words[1];
        words.erase(words.begin(), words.begin() + 2);
    }
    const bool option =
        std::any_of(words.begin(), words.end(), [](const auto& word) { return word.rfind(L"--", 0) == 0; });
    if (words.size() > 2 || option) {
        std::fprintf(stderr, "lumaven-bench: wrong arguments (see --help)\n");
        return kExitUsage;
    }
    // Kept loaded to the end, as a host keeps it: the exit then detaches the vendor libraries
    // the service loaded before the service itself, which the bench's exit test checks.
    XeltoClient::LoadedService host;
    std::string reason;
    if (!host.Create(dllPath, reason, XeltoClient::LoadedService::AtEnd::KeepLoaded)) {
        std::fprintf(stderr, "lumaven-bench: %s\n", reason.c_str());
        return kExitUnavailable;
    }
    host.Startup();
    const unsigned rounds =
        words.empty() ? kDefaultRounds : static_cast<unsigned>(std::wcstoul(words[0].c_str(), nullptr, 10));
    const int code = LumavenBench::RunBench(host, rounds, words.size() > 1 ? words[1] : L"");
    host.Destroy();
    return code;
}
