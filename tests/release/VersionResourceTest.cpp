// Every shipped binary carries the project's version in its VERSIONINFO resource, in the
// build tree and, stripped, in the install tree; the host and the installer print it.
#include "ProcessRunner.h"
#include "ReleaseTree.h"
#include "SimMachine.h"
#include "VersionResource.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace {

using LumavenTest::InstallTree;
using LumavenTest::RunProgram;
using LumavenTest::RunProgramIn;

const std::wstring kVersion = L"" LUMAVEN_TEST_VERSION;

struct Binary {
    const char* label;
    bool installed;                // in the install tree, else in the build tree's bin
    const wchar_t* installFolder;  // below the install tree
    const wchar_t* fileName;
};

const Binary kBinaries[] = {
    {"build_LumavenService", false, L"", L"LumavenService.dll"},
    {"build_XeltoLog", false, L"", L"XeltoLog.dll"},
    {"build_xelto_host", false, L"", L"xelto-host.exe"},
    {"build_lumaven_sim", false, L"", L"lumaven-sim.exe"},
    {"installed_LumavenService", true, L"\\bin", L"LumavenService.dll"},
    {"installed_XeltoLog", true, L"\\bin", L"XeltoLog.dll"},
    {"installed_xelto_host", true, L"\\bin", L"xelto-host.exe"},
    {"installed_lumaven_sim", true, L"\\share\\lumaven\\sim", L"lumaven-sim.exe"},
};

void PrintTo(const Binary& binary, std::ostream* out)
{
    *out << binary.label;
}

class VersionResource : public testing::TestWithParam<Binary> {
protected:
    std::wstring Path() const
    {
        const Binary& binary = GetParam();
        const std::wstring folder =
            binary.installed ? InstallTree() + binary.installFolder : LumavenTest::ExecutableDirectory();
        return folder + L"\\" + binary.fileName;
    }
};

TEST_P(VersionResource, CarriesTheProjectVersion)
{
    const std::wstring path = Path();
    const XeltoClient::VersionResource resource(path);
    ASSERT_TRUE(resource.Loaded()) << "GetFileVersionInfoW(" << testing::PrintToString(path) << ") failed, error "
                                   << GetLastError();
    const VS_FIXEDFILEINFO* const fixed = resource.Fixed();
    ASSERT_NE(fixed, nullptr) << "VerQueryValueW(\\) found no fixed part";
    EXPECT_EQ(fixed->dwSignature, 0xFEEF04BDu);
    const DWORD versionHigh = (LUMAVEN_TEST_VERSION_MAJOR << 16) | LUMAVEN_TEST_VERSION_MINOR;
    const DWORD versionLow = LUMAVEN_TEST_VERSION_PATCH << 16;
    EXPECT_EQ(fixed->dwFileVersionMS, versionHigh) << std::hex << "got 0x" << fixed->dwFileVersionMS;
    EXPECT_EQ(fixed->dwFileVersionLS, versionLow) << std::hex << "got 0x" << fixed->dwFileVersionLS;
    EXPECT_EQ(fixed->dwProductVersionMS, versionHigh) << std::hex << "got 0x" << fixed->dwProductVersionMS;
    EXPECT_EQ(fixed->dwProductVersionLS, versionLow) << std::hex << "got 0x" << fixed->dwProductVersionLS;
    const bool isDll = std::wstring(GetParam().fileName).ends_with(L".dll");
    EXPECT_EQ(fixed->dwFileType, isDll ? static_cast<DWORD>(VFT_DLL) : static_cast<DWORD>(VFT_APP));

    EXPECT_EQ(resource.String(L"ProductVersion"), kVersion);
    EXPECT_EQ(resource.String(L"FileVersion"), kVersion);
    EXPECT_EQ(resource.String(L"ProductName"), L"Lumaven");
    EXPECT_EQ(resource.String(L"OriginalFilename"), GetParam().fileName);
    EXPECT_NE(resource.String(L"FileDescription"), std::nullopt) << "absent or empty";
}

INSTANTIATE_TEST_SUITE_P(ShippedBinaries, VersionResource, testing::ValuesIn(kBinaries),
                         [](const testing::TestParamInfo<Binary>& info) { return info.param.label; });

std::string ExpectedVersions()
{
    const std::string version = LUMAVEN_TEST_VERSION;
    return "xelto-host " + version + "\nLumavenService.dll " + version + "\nXeltoLog.dll " + version + "\n";
}

TEST(VersionOption, HostPrintsItsVersionAndTheResourcesOfTheDllsBesideIt)
{
    const auto built = RunProgram(L"xelto-host.exe --version");
    EXPECT_EQ(built.exitCode, 0u);
    EXPECT_EQ(LumavenTest::WithoutCarriageReturns(built.output), ExpectedVersions());

    const std::wstring bin = InstallTree() + L"\\bin";
    const auto installed = RunProgramIn(bin, bin + L"\\xelto-host.exe", L"xelto-host --version");
    EXPECT_EQ(installed.exitCode, 0u);
    EXPECT_EQ(LumavenTest::WithoutCarriageReturns(installed.output), ExpectedVersions());
}

TEST(VersionOption, HostNamesAServiceDllWithoutAVersionResource)
{
    const auto result = RunProgram(L"xelto-host.exe --dll C:\\nowhere\\LumavenService.dll --version");
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_NE(result.output.find("LumavenService.dll: no version resource in 'C:\\nowhere\\LumavenService.dll'"),
              std::string::npos)
        << result.output;
}

TEST(VersionOption, InstallerPrintsItsVersion)
{
    const auto result = RunProgram(L"lumaven-sim.exe --version");
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_EQ(LumavenTest::WithoutCarriageReturns(result.output), "lumaven-sim " LUMAVEN_TEST_VERSION "\n");
}

}  // namespace
