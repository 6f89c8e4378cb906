// The graphics vendor: the name matching on lists of controller names (Wine reports one
// controller only), and CheckVideoControllerType end to end through Wine's WMI and the
// simulated GPU.
#include "ComThread.h"
#include "LogCapture.h"
#include "ProcessRunner.h"
#include "SimGpu.h"
#include "SimMachine.h"
#include "SimState.h"

#include "inspect/PublicWmi.h"
#include "inspect/VendorDetection.h"
#include "service/LumavenService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <new>
#include <string>
#include <thread>
#include <vector>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::InstallGpu;
using LumavenTest::LogCapture;
using LumavenTest::ThreadIsOutsideCom;
using Xelto::Logging::Level;

// Allocation failure on demand, for the exception path: the next allocation made through
// operator new on the arming thread throws std::bad_alloc, once. Blocks come from malloc,
// as with the runtime's own operator new, so its operator delete still frees them.
namespace {
thread_local bool t_failNextAllocation = false;
}

void* operator new(std::size_t size)
{
    if (t_failNextAllocation) {
        t_failNextAllocation = false;
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(size != 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}

namespace {

constexpr wchar_t kInformation[] =
    L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::CheckVideoControllerType - The current video "
    L"controller is ";
constexpr wchar_t kFailure[] =
    L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::CheckVideoControllerType - Failed to retrieve video "
    L"controller information";

std::wstring Information(int32_t vendor)
{
    return kInformation + std::to_wstring(vendor);
}

size_t CountAtLevel(const LogCapture& capture, Level level)
{
    size_t count = 0;
    for (const auto& record : capture.Records()) {
        count += record.level == level ? 1 : 0;
    }
    return count;
}

}  // namespace

// ---- The name matching.

TEST(ControllerNames, AnEntryThatIsNotAStringCountsAsAnEmptyName)
{
    Document result;
    ASSERT_TRUE(ParseRequest(result, L"[1,\"AMD Radeon(TM) Graphics\",null,[\"Intel\"]]"));
    EXPECT_EQ(ControllerNames(result), (std::vector<std::wstring>{L"", L"AMD Radeon(TM) Graphics", L"", L""}));
}

TEST(VendorFromControllerNames, IntelWinsOverAmdInEitherOrder)
{
    EXPECT_EQ(VendorFromControllerNames({L"AMD Radeon(TM) Graphics", L"Intel(R) UHD Graphics"}), kVendorIntel);
    EXPECT_EQ(VendorFromControllerNames({L"Intel(R) UHD Graphics", L"AMD Radeon(TM) Graphics"}), kVendorIntel);
    EXPECT_EQ(VendorFromControllerNames({L"Radeon Pro", L"NVIDIA GeForce", L"Mobile Intel(R) 4 Series"}), kVendorIntel);
}

TEST(VendorFromControllerNames, AmdOrRadeonAloneIsAmd)
{
    EXPECT_EQ(VendorFromControllerNames({L"AMD Radeon RX 6600"}), kVendorAmd);
    EXPECT_EQ(VendorFromControllerNames({L"Radeon Pro"}), kVendorAmd);
    EXPECT_EQ(VendorFromControllerNames({L"AMD FirePro"}), kVendorAmd);
    EXPECT_EQ(VendorFromControllerNames({L"NVIDIA GeForce RTX 3050", L"AMD Radeon(TM) Graphics"}), kVendorAmd);
    EXPECT_EQ(VendorFromControllerNames({L"AMD Radeon(TM) Graphics", L"Microsoft Basic Display Adapter"}), kVendorAmd);
}

TEST(VendorFromControllerNames, WordsAreCaseSensitiveAndOtherNamesCountForNothing)
{
    EXPECT_EQ(VendorFromControllerNames({L"intel uhd"}), 0);
    EXPECT_EQ(VendorFromControllerNames({L"INTEL UHD"}), 0);
    EXPECT_EQ(VendorFromControllerNames({L"amd radeon"}), 0);
    EXPECT_EQ(VendorFromControllerNames({L"Microsoft Basic Display Adapter"}), 0);
    EXPECT_EQ(VendorFromControllerNames({L"VideoController1"}), 0);
    EXPECT_EQ(VendorFromControllerNames({L"", L"NVIDIA GeForce"}), 0);
    EXPECT_EQ(VendorFromControllerNames({}), 0);
}

// ---- From the WMI result to the list the matching reads. Wine reports one controller, so a
// machine with two is only seen here.

namespace {

std::vector<std::wstring> NamesOf(const wchar_t* wmiResult)
{
    Document document;
    document.Parse(wmiResult);
    EXPECT_FALSE(document.HasParseError());
    return ControllerNames(document[L"result"]);
}

}  // namespace

TEST(ControllerNames, EveryNameOfTheResultArrayInOrder)
{
    EXPECT_EQ(NamesOf(L"{\"result\":[\"AMD Radeon(TM) Graphics\",\"Intel(R) UHD Graphics\"]}"),
              (std::vector<std::wstring>{L"AMD Radeon(TM) Graphics", L"Intel(R) UHD Graphics"}));
    EXPECT_EQ(NamesOf(L"{\"result\":[\"NVIDIA GeForce RTX 3050\",\"Radeon Pro\"]}"),
              (std::vector<std::wstring>{L"NVIDIA GeForce RTX 3050", L"Radeon Pro"}));
    EXPECT_EQ(NamesOf(L"{\"result\":[7,\"Intel(R) UHD Graphics\",null]}"),
              (std::vector<std::wstring>{L"", L"Intel(R) UHD Graphics", L""}));
    EXPECT_TRUE(NamesOf(L"{\"result\":[]}").empty());
}

TEST(ControllerNames, TwoControllersGiveTheVendorWhateverTheirOrder)
{
    const auto vendor = [](const wchar_t* wmiResult) { return VendorFromControllerNames(NamesOf(wmiResult)); };
    EXPECT_EQ(vendor(L"{\"result\":[\"AMD Radeon(TM) Graphics\",\"Intel(R) UHD Graphics\"]}"), kVendorIntel);
    EXPECT_EQ(vendor(L"{\"result\":[\"Intel(R) UHD Graphics\",\"AMD Radeon(TM) Graphics\"]}"), kVendorIntel);
    EXPECT_EQ(vendor(L"{\"result\":[\"NVIDIA GeForce RTX 3050\",\"Radeon Pro\"]}"), kVendorAmd);
    EXPECT_EQ(vendor(L"{\"result\":[\"Microsoft Basic Display Adapter\",\"NVIDIA GeForce RTX 3050\"]}"), 0);
}

// ---- End to end: the simulated GPU, Wine's WMI, the helper and the matching.

struct NamedGpu {
    const char* gpuName;
    int32_t vendor;
};

class CheckVideoControllerTypeWithGpu : public testing::TestWithParam<NamedGpu> {};

TEST_P(CheckVideoControllerTypeWithGpu, GivesTheVendorAndLogsIt)
{
    InstallGpu(GetParam().gpuName);
    LogCapture capture;
    EXPECT_EQ(LumavenService::CheckVideoControllerType(), GetParam().vendor);
    const auto texts = capture.Texts();
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0], Information(GetParam().vendor));
    EXPECT_EQ(capture.Records()[0].level, Level::Info);
}

INSTANTIATE_TEST_SUITE_P(VendorDetection, CheckVideoControllerTypeWithGpu,
                         testing::Values(NamedGpu{"Intel(R) Iris(R) Xe Graphics", 1},
                                         NamedGpu{"Intel(R) UHD Graphics", 1}, NamedGpu{"AMD Radeon(TM) Graphics", 2},
                                         NamedGpu{"AMD Radeon RX 6600", 2}, NamedGpu{"Radeon Pro", 2},
                                         NamedGpu{"intel uhd", 0}, NamedGpu{"Microsoft Basic Display Adapter", 0}));

TEST(CheckVideoControllerType, ShippedProfiles)
{
    for (const auto& [profile, vendor] :
         std::vector<std::pair<std::string, int32_t>>{{"intel-laptop", 1}, {"amd-laptop", 2}, {"desktop", 0}}) {
        LumavenTest::InstallShippedProfile(profile);
        LogCapture capture;
        EXPECT_EQ(LumavenService::CheckVideoControllerType(), vendor) << profile;
        EXPECT_EQ(capture.Count(Information(vendor)), 1u) << profile;
    }
}

TEST(CheckVideoControllerType, ProfileWithoutAGpuLibraryLeavesWinesOwnController)
{
    // No dxgi.dll in the profile: the installer puts Wine's own back, and Wine's WMI reports
    // its one default controller. Without a display Wine's DXGI has no adapter and the
    // controller is called "VideoController1" (with a display it would carry the host's
    // GPU). A fake dxgi.dll loaded earlier in this process answers the same way.
    LumavenTest::InstallProfile(LumavenSim::Profile::Machine{.gpuName = "Intel(R) Iris(R) Xe Graphics"});
    Xelto::Spanlet::Server::Shared::WMI::PublicWmi wmi;
    Document response;
    response.SetObject();
    ASSERT_EQ(wmi.GetPropertyValue(L"Win32_VideoController", L"Name", response), StatusSuccess);
    ASSERT_EQ(response[L"result"].Size(), 1u);
    char display[8];
    if (GetEnvironmentVariableA("DISPLAY", display, sizeof display) == 0) {
        EXPECT_EQ(std::wstring(response[L"result"][0].GetString()), L"VideoController1");
        EXPECT_EQ(LumavenService::CheckVideoControllerType(), 0);
    }
    EXPECT_THAT(LumavenTest::DescribedAdapters(), testing::IsEmpty());
}

TEST(CheckVideoControllerType, FailingDriverLeavesWinesDefaultControllerAndGivesZero)
{
    // When DXGI cannot describe the adapter, Wine's WMI still reports its default controller.
    InstallGpu("Intel(R) Iris(R) Xe Graphics", {{.function = "IDXGIAdapter::GetDesc", .code = 2147500037}});  // E_FAIL
    LogCapture capture;
    EXPECT_EQ(LumavenService::CheckVideoControllerType(), 0);
    EXPECT_THAT(capture.Texts(), testing::ElementsAre(Information(0)));
    EXPECT_THAT(LumavenTest::DescribedAdapters(), testing::IsEmpty());
    int64_t calls = 0;
    LumavenSim::WithState([&calls](rapidjson::Document& current) {
        calls = LumavenSim::CallCount(current, "IDXGIAdapter::GetDesc");
        return false;
    });
    EXPECT_EQ(calls, 1);
}

TEST(CheckVideoControllerType, WmiUnavailableLogsTheFailureAndGivesZero)
{
    // Once a query has run, Wine's WMI provider stays loaded in the process; this case
    // needs a process where it was never loaded.
    if (GetModuleHandleW(L"wbemprox.dll") != nullptr) {
        const auto child = LumavenTest::RunProgram(
            L"unit_tests.exe --gtest_filter=CheckVideoControllerType.WmiUnavailableLogsTheFailureAndGivesZero");
        EXPECT_EQ(child.exitCode, 0u) << child.output;
        EXPECT_NE(child.output.find("[  PASSED  ] 1 test."), std::string::npos) << child.output;
        return;
    }
    // A broken driver installation: the fake dxgi.dll refuses to load, so Wine's WMI
    // provider, which imports it, cannot load either and the locator cannot be created.
    InstallGpu("Intel(R) Iris(R) Xe Graphics", {{.function = "DllMain", .code = 1}});
    LogCapture capture;
    EXPECT_EQ(LumavenService::CheckVideoControllerType(), 0);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 3u) << testing::PrintToString(capture.Texts());
    EXPECT_EQ(records[0].level, Level::Warning);
    EXPECT_EQ(
        records[0].text,
        L"class Xelto::Spanlet::Server::Shared::WMI::PublicWmi.ConnectToWmi - failed on function CoCreateInstance "
        L"with HRESULT 0x80070005");
    EXPECT_EQ(records[1].level, Level::Error);
    EXPECT_EQ(records[1].text, kFailure);
    EXPECT_EQ(records[2].level, Level::Info);
    EXPECT_EQ(records[2].text, Information(0));
}

TEST(CheckVideoControllerType, ExceptionIsCaughtLoggedAndGivesZeroWithoutTheInformationLine)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    std::thread([] {
        LogCapture capture;
        t_failNextAllocation = true;
        const int32_t vendor = LumavenService::CheckVideoControllerType();
        const bool allocationFailed = !t_failNextAllocation;
        t_failNextAllocation = false;
        ASSERT_TRUE(allocationFailed);
        EXPECT_EQ(vendor, 0);
        const auto texts = capture.Texts();
        ASSERT_EQ(texts.size(), 1u);
        EXPECT_EQ(texts[0], L"LumavenService - CheckVideoControllerType threw: std::bad_alloc");
        EXPECT_EQ(capture.Records()[0].level, Level::Error);
        EXPECT_EQ(CountAtLevel(capture, Level::Info), 0u);
        // The query was abandoned with everything released and the apartment left.
        EXPECT_TRUE(ThreadIsOutsideCom());
    }).join();
}
