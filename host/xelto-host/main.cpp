// xelto-host: the reference host. Loads a service DLL, runs its start-up task, sends commands
// and display-power events, prints statuses, responses and log lines, and destroys it.
#include "CommandNames.h"
#include "FileVersion.h"
#include "LogListener.h"
#include "Report.h"
#include "XeltoClient.h"

#include "xelto/LogSink.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using XeltoClient::LoadedService;

using XeltoClient::kExitOk;
using XeltoClient::kExitUnavailable;
using XeltoClient::kExitUsage;

void PrintUsage()
{
    std::printf("usage: xelto-host [options] ACTION\n"
                "actions:\n"
                "  run COMMAND [REQUEST]   send one command; COMMAND is 1..14 or a handler name\n"
                "                          (GetOledFromRegistry, _SetVaribright, ...); REQUEST is JSON\n"
                "                          text or @FILE, default {}\n"
                "  event EVENT             deliver display-off, display-on, lid-closed or lid-open\n"
                "  script FILE             run FILE: one 'run ...' or 'event ...' per line, # comments\n"
                "  create                  only create the service (and run its start-up task)\n"
                "  report                  field report: the read-only commands (4, 7, 8, 10, 13), the\n"
                "                          versions, the vendor libraries found, the log; one JSON document\n"
                "options:\n"
                "  --dll PATH              the service DLL (default: LumavenService.dll beside this program)\n"
                "  --no-startup            do not run startup_task after creating the service\n"
                "  --quiet                 do not print the service's log lines\n"
                "  --version               the host's version and the version resources of the service DLL\n"
                "                          and XeltoLog.dll\n"
                "  --help                  this text\n"
                "Exit code: 0 when the action ran, 2 for wrong arguments, 3 when the service is unavailable.\n");
}

void PrintLogLine(const XeltoClient::LogLine& line)
{
    std::wstring shown = line.text;
    while (!shown.empty() && (shown.back() == L'\n' || shown.back() == L'\r')) {
        shown.pop_back();
    }
    std::printf("  log %s: %ls\n", Xelto::Logging::LevelName(line.level), shown.c_str());
    std::fflush(stdout);
}

void PrintFileVersion(const wchar_t* label, const std::wstring& path)
{
    const auto version = XeltoHost::FileProductVersion(path);
    if (version) {
        std::printf("%ls %ls\n", label, version->c_str());
    } else {
        std::printf("%ls: no version resource in '%ls'\n", label, path.c_str());
    }
}

void PrintVersions(const std::wstring& dllPath)
{
    std::printf("xelto-host %s\n", LUMAVEN_VERSION);
    PrintFileVersion(L"LumavenService.dll", dllPath);
    PrintFileVersion(L"XeltoLog.dll", XeltoHost::LoadedModulePath(L"XeltoLog.dll"));
}

bool ReadFileText(const std::wstring& path, std::wstring& text)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    if (!in) {
        return false;
    }
    std::ostringstream bytes;
    bytes << in.rdbuf();
    const std::string utf8 = bytes.str();
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    text.assign(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(), length);
    return true;
}

std::wstring Trim(const std::wstring& text)
{
    const size_t first = text.find_first_not_of(L" \t\r\n");
    if (first == std::wstring::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(L" \t\r\n") - first + 1);
}

// One action: the words of a command line or of a script line.
int RunAction(LoadedService& host, const std::wstring& verb, const std::wstring& target, const std::wstring& extra)
{
    if (verb == L"run") {
        const auto command = XeltoClient::ParseCommand(target);
        if (!command) {
            std::fprintf(stderr, "xelto-host: unknown command '%ls'\n", target.c_str());
            return kExitUsage;
        }
        std::wstring request = extra.empty() ? L"{}" : extra;
        if (!request.empty() && request[0] == L'@' && !ReadFileText(request.substr(1), request)) {
            std::fprintf(stderr, "xelto-host: cannot read the request file '%ls'\n", extra.c_str() + 1);
            return kExitUsage;
        }
        const XeltoClient::Reply outcome = host.Run(*command, request.c_str());
        std::printf("command %u %s: %s (0x%08X) %ls\n", *command, XeltoClient::CommandName(*command),
                    XeltoClient::StatusName(outcome.status), outcome.status,
                    outcome.hasResponse ? outcome.response.c_str() : L"(no response)");
        std::fflush(stdout);
        return kExitOk;
    }
    if (verb == L"event") {
        const auto event = XeltoClient::ParsePowerEvent(target);
        if (!event) {
            std::fprintf(stderr, "xelto-host: unknown event '%ls'\n", target.c_str());
            return kExitUsage;
        }
        const uint32_t result = host.Deliver(*event);
        std::printf("event %ls: %u\n", target.c_str(), result);
        std::fflush(stdout);
        return kExitOk;
    }
    std::fprintf(stderr, "xelto-host: unknown action '%ls'\n", verb.c_str());
    return kExitUsage;
}

int RunScript(LoadedService& host, const std::wstring& path)
{
    std::wstring text;
    if (!ReadFileText(path, text)) {
        std::fprintf(stderr, "xelto-host: cannot read the script '%ls'\n", path.c_str());
        return kExitUsage;
    }
    std::wistringstream lines(text);
    for (std::wstring line; std::getline(lines, line);) {
        line = Trim(line);
        if (line.empty() || line[0] == L'#') {
            continue;
        }
        const size_t verbEnd = line.find_first_of(L" \t");
        const std::wstring verb = line.substr(0, verbEnd);
        const std::wstring rest = verbEnd == std::wstring::npos ? L"" : Trim(line.substr(verbEnd));
        const size_t targetEnd = rest.find_first_of(L" \t");
        const std::wstring target = rest.substr(0, targetEnd);
        const std::wstring extra = targetEnd == std::wstring::npos ? L"" : Trim(rest.substr(targetEnd));
        const int code = RunAction(host, verb, target, extra);
        if (code != kExitOk) {
            return code;
        }
    }
    return kExitOk;
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    std::wstring dllPath = XeltoClient::BesideThisProgram(L"LumavenService.dll");
    bool startup = true;
    bool quiet = false;
    bool version = false;
    std::vector<std::wstring> words;
    for (int i = 1; i < argc; ++i) {
        const std::wstring arg = argv[i];
        if (arg == L"--help" || arg == L"-h") {
            PrintUsage();
            return kExitOk;
        } else if (arg == L"--dll" && i + 1 < argc) {
            dllPath = argv[++i];
        } else if (arg == L"--no-startup") {
            startup = false;
        } else if (arg == L"--quiet") {
            quiet = true;
        } else if (arg == L"--version") {
            version = true;
        } else if (arg.rfind(L"--", 0) == 0) {
            std::fprintf(stderr, "xelto-host: unknown option '%ls' (see --help)\n", arg.c_str());
            return kExitUsage;
        } else {
            words.push_back(arg);
        }
    }
    if (version) {
        PrintVersions(dllPath);
        return kExitOk;
    }
    if (words.empty()) {
        std::fprintf(stderr, "xelto-host: no action given (see --help)\n");
        return kExitUsage;
    }
    const std::wstring& verb = words[0];
    if (verb == L"report" && words.size() == 1) {
        return XeltoHost::RunReport(dllPath, startup);
    }
    const bool known = verb == L"create" || (verb == L"script" && words.size() == 2) ||
                       ((verb == L"run" || verb == L"event") && words.size() >= 2 && words.size() <= 3);
    if (!known) {
        std::fprintf(stderr, "xelto-host: wrong arguments for '%ls' (see --help)\n", verb.c_str());
        return kExitUsage;
    }
    // Heard until the host's end, the DLL's unloading included.
    std::optional<XeltoClient::LogListener> printer;
    if (!quiet) {
        printer.emplace(&PrintLogLine);
    }

    // The DLL stays loaded to the host's end, as the Xelto host keeps it.
    LoadedService host;
    std::string reason;
    if (!host.Create(dllPath, reason, LoadedService::AtEnd::KeepLoaded)) {
        std::fprintf(stderr, "xelto-host: %s\n", reason.c_str());
        return kExitUnavailable;
    }
    std::printf("service created\n");
    if (startup) {
        host.Startup();
        std::printf("startup_task done\n");
    }
    std::fflush(stdout);

    int code = kExitOk;
    if (verb == L"script") {
        code = RunScript(host, words[1]);
    } else if (verb != L"create") {
        code = RunAction(host, verb, words[1], words.size() > 2 ? words[2] : L"");
    }
    host.Destroy();
    std::printf("service destroyed\n");
    return code;
}
