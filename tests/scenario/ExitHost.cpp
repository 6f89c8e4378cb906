// A host whose process ends with the service still alive: it loads LumavenService.dll, creates
// the service, runs its start-up task and the commands given on its command line, and then
// returns from main without destroying the service or unloading the DLL. The loader then
// detaches every library of the process, the vendor libraries the service loaded before the
// service itself. The scenario tests read the simulated drivers' log afterwards.
//   lumaven-exit-host COMMAND[=REQUEST] ...   e.g. lumaven-exit-host 10 13 "9={\"BValue\":true}"
#include "XeltoClient.h"

#include <cstdio>
#include <cwchar>
#include <string>

int wmain(int argc, wchar_t** argv)
{
    // The service and its module are deliberately never released: the client is never
    // destroyed, so the process ends with them.
    auto* const client = new XeltoClient::LoadedService;
    std::string reason;
    if (!client->Create(L"LumavenService.dll", reason, XeltoClient::LoadedService::AtEnd::KeepLoaded)) {
        std::printf("no service\n");
        return 3;
    }
    client->Startup();
    for (int i = 1; i < argc; ++i) {
        const std::wstring word = argv[i];
        const size_t equals = word.find(L'=');
        const std::wstring request = equals == std::wstring::npos ? L"{}" : word.substr(equals + 1);
        const auto command = static_cast<uint32_t>(std::wcstoul(word.c_str(), nullptr, 10));
        const XeltoClient::Reply result = client->Run(command, request.c_str());
        std::printf("command %u: status 0x%X %ls\n", command, result.status, result.response.c_str());
    }
    std::fflush(stdout);
    return 0;
}
