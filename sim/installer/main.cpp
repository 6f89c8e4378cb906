// lumaven-sim: installs a simulated laptop into the current Wine prefix and shows its state.
#include "Installer.h"
#include "Report.h"
#include "SimState.h"

#include <cstdio>
#include <cwchar>

namespace {

void Usage()
{
    std::printf(
        "usage: lumaven-sim install PROFILE.json   install the profile's monitors, fake drivers and state\n"
        "       lumaven-sim show                   print monitors, libraries, driver state and transactions\n"
        "       lumaven-sim drivers                print what the simulated drivers hold (panel registers, OPST, "
        "VariBright)\n"
        "       lumaven-sim log [--aux]            print the transaction log (--aux: only panel AUX transactions)\n"
        "       lumaven-sim clear-log              empty the transaction log\n"
        "       lumaven-sim --version              print the version\n"
        "Runs only under Wine and writes only into the current prefix.\n");
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc < 2 || std::wcscmp(argv[1], L"--help") == 0 || std::wcscmp(argv[1], L"-h") == 0) {
        Usage();
        return argc < 2 ? 2 : 0;
    }
    if (std::wcscmp(argv[1], L"--version") == 0) {
        std::printf("lumaven-sim %s\n", LUMAVEN_VERSION);
        return 0;
    }
    if (!LumavenSim::RunningUnderWine()) {
        std::fprintf(stderr, "lumaven-sim: refusing to run outside Wine: the fake drivers carry real driver names\n");
        return 3;
    }
    const std::wstring verb = argv[1];
    if (verb == L"install" && argc == 3) {
        const LumavenSim::InstallResult result = LumavenSim::InstallProfileFile(argv[2]);
        if (!result.ok) {
            std::fprintf(stderr, "lumaven-sim: %s\n", result.error.c_str());
            return 1;
        }
        std::printf("installed %ls\n", argv[2]);
        return 0;
    }
    if (verb == L"show" && argc == 2) {
        std::fputs(LumavenSim::Describe().c_str(), stdout);
        return 0;
    }
    if (verb == L"drivers" && argc == 2) {
        std::fputs(LumavenSim::DescribeDrivers().c_str(), stdout);
        return 0;
    }
    if (verb == L"log" && (argc == 2 || (argc == 3 && std::wcscmp(argv[2], L"--aux") == 0))) {
        std::fputs(LumavenSim::DescribeTransactions(argc == 3).c_str(), stdout);
        return 0;
    }
    if (verb == L"clear-log" && argc == 2) {
        LumavenSim::ClearTransactions();
        return 0;
    }
    std::fprintf(stderr, "lumaven-sim: unknown arguments (see lumaven-sim --help)\n");
    return 2;
}
