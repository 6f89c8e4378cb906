// The built LumavenService.dll as a host sees it: its export table, and the reference host
// creating it on simulated machines.
#include "ControlLibProof.h"
#include "PeFile.h"
#include "ProcessRunner.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <algorithm>

using LumavenTest::ExecutableDirectory;
using LumavenTest::InstallShippedProfile;
using LumavenTest::RunProgram;

namespace {

std::vector<std::string> ServiceExports()
{
    return LumavenTest::ExportedNames(ExecutableDirectory() + L"\\LumavenService.dll");
}

size_t CountLines(const std::string& output, const std::string& prefix)
{
    size_t count = 0;
    size_t start = 0;
    while (start < output.size()) {
        const size_t end = output.find('\n', start);
        const std::string line = output.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (line.rfind(prefix, 0) == 0) {
            ++count;
        }
        start = end == std::string::npos ? output.size() : end + 1;
    }
    return count;
}

}  // namespace

TEST(HostContract, ServiceExportsExactlyTheFactoryAndThe93ControlLibraryFunctionsUndecorated)
{
    std::vector<std::string> names = ServiceExports();
    std::vector<std::string> expected = LumavenTest::ControlLibProof::EntryPointNames();
    expected.push_back("XeltoCreateService");
    std::sort(names.begin(), names.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names.size(), 94u);
    EXPECT_EQ(names, expected);
    // The library's own spelling, missing "t", is the name.
    EXPECT_TRUE(std::binary_search(names.begin(), names.end(), "ctlGetAdaperDisplayEncoderProperties"));
    for (const std::string& name : names) {
        EXPECT_EQ(name.find_first_of("?@$"), std::string::npos) << "decorated export " << name;
    }
}

TEST(HostContract, HostCreatesTheServiceOnTheIntelLaptop)
{
    InstallShippedProfile("intel-laptop");
    const auto result = RunProgram(L"xelto-host.exe create");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    EXPECT_NE(result.output.find("service created"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("service destroyed"), std::string::npos) << result.output;
}

TEST(HostContract, HostIsRefusedOnTheDesktopWithExactlyOneLogLine)
{
    InstallShippedProfile("desktop");
    const auto result = RunProgram(L"xelto-host.exe create");
    EXPECT_EQ(result.exitCode, 3u) << result.output;
    EXPECT_EQ(CountLines(result.output, "  log "), 1u) << result.output;
    EXPECT_NE(
        result.output.find("  log INFO: LumavenService cannot be initialized as it is running on unsupported platform"),
        std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("xelto-host: the service is unavailable"), std::string::npos) << result.output;
}

TEST(HostContract, HostRejectsWrongArgumentsWithAReason)
{
    const auto noAction = RunProgram(L"xelto-host.exe");
    EXPECT_EQ(noAction.exitCode, 2u);
    EXPECT_NE(noAction.output.find("no action"), std::string::npos) << noAction.output;
    const auto badOption = RunProgram(L"xelto-host.exe --frobnicate create");
    EXPECT_EQ(badOption.exitCode, 2u);
    const auto help = RunProgram(L"xelto-host.exe --help");
    EXPECT_EQ(help.exitCode, 0u);
    EXPECT_NE(help.output.find("usage: xelto-host"), std::string::npos);
}

TEST(HostContract, HostReportsAMissingServiceDll)
{
    const auto result = RunProgram(L"xelto-host.exe --dll C:\\nowhere\\LumavenService.dll create");
    EXPECT_EQ(result.exitCode, 3u);
    EXPECT_NE(result.output.find("cannot load the service DLL"), std::string::npos) << result.output;
}

TEST(HostContract, InstallerShowsTheInstalledMonitors)
{
    InstallShippedProfile("amd-laptop");
    const auto result = RunProgram(L"lumaven-sim.exe show");
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_NE(result.output.find("SDC416C: EDID 128 bytes, bytes 8..11 " + LumavenSim::Panels::kSdc416C.EdidHex()),
              std::string::npos)
        << result.output;
}

TEST(HostContract, InstallerReportsPanelRegistersAndAuxTransactions)
{
    InstallShippedProfile("intel-laptop");
    const auto ed = RunProgram(L"xelto-host.exe --quiet run EnableEd");
    EXPECT_NE(ed.output.find("command 5 EnableEd: StatusSuccess (0x00000000) {\"result\":true}"), std::string::npos)
        << ed.output;
    const auto drivers = RunProgram(L"lumaven-sim.exe drivers");
    EXPECT_NE(drivers.output.find("DPCD 4027: C0"), std::string::npos) << drivers.output;
    const auto log = RunProgram(L"lumaven-sim.exe log --aux");
    const size_t write = log.output.find("intel output 0 AUX write 4027: C0");
    ASSERT_NE(write, std::string::npos) << log.output;
    EXPECT_NE(log.output.find("intel output 0 AUX read 4027: C0", write), std::string::npos) << log.output;
}
