// The control library client layer's loader: ctlInit, ctlClose and ctlSetRuntimePath, walked
// through their cases one by one on the simulated driver, whose load counters and transaction
// log say what really happened.
#include "ControlLibFixture.h"
#include "ServiceAnswers.h"

#include <gtest/gtest.h>

#include <string>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
namespace Intel = LumavenSim::Intel;
namespace IntelResults = LumavenTest::IntelResults;

namespace {

ctl_runtime_path_args_t RuntimePathArgs(wchar_t* path)
{
    ctl_runtime_path_args_t args{};
    args.Size = sizeof args;
    args.pRuntimePath = path;
    return args;
}

class ControlLibClient : public LumavenTest::ControlLibTest {
protected:
    // ctlClose of `api` answers `result` and leaves `module` as the library's module, the
    // driver's unload counter at `unloads`.
    static void ExpectClosed(ctl_api_handle_t api, uint32_t result, HMODULE module, int unloads)
    {
        EXPECT_EQ(ctlClose(api), result);
        EXPECT_EQ(controlLibModule, module) << "after ctlClose";
        EXPECT_EQ(Intel::Counter("unloads"), unloads) << "after ctlClose";
    }
};

}  // namespace

TEST_F(ControlLibClient, InitLoadsControlLibFromSystem32AndCloseUnloadsIt)
{
    InstallIntel("ControlLib.dll");
    ctl_init_args_t args = InitArgs(0x00010000);
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(ctlInit(&args, &api), CTL_RESULT_SUCCESS);
    ASSERT_NE(controlLibModule, nullptr);
    EXPECT_TRUE(SameFile(ModulePath(controlLibModule), System32Dll(L"ControlLib.dll")));
    EXPECT_NE(api, nullptr);
    EXPECT_EQ(Intel::Counter("loads"), 1);

    const auto inits = Calls("ctlInit");
    ASSERT_EQ(inits.size(), 1u);
    EXPECT_EQ(inits[0]["appVersion"].GetUint(), 0x00010000u);
    EXPECT_EQ(inits[0]["args"][0].GetUint64(), Address(&args));
    EXPECT_EQ(inits[0]["args"][1].GetUint64(), Address(&api));

    ExpectClosed(api, CTL_RESULT_SUCCESS, nullptr, 1);
    const auto closes = Calls("ctlClose");
    ASSERT_EQ(closes.size(), 1u);
    EXPECT_EQ(closes[0]["args"][0].GetUint64(), Address(api));
}

TEST_F(ControlLibClient, InitOnALoadedLibraryForwardsWithoutLoadingAgain)
{
    InstallIntel("ControlLib.dll", {}, {{.function = "ctlInit", .code = 1073741835, .nth = 2}});
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    const HMODULE first = controlLibModule;
    // The library's own answer comes back, whatever it is.
    EXPECT_EQ(Init(&api), IntelResults::kInvalidArgument);
    EXPECT_EQ(controlLibModule, first);
    EXPECT_EQ(Intel::Counter("loads"), 1);
    EXPECT_EQ(Calls("ctlInit").size(), 2u);
}

TEST_F(ControlLibClient, FailingLibraryInitStillLeavesTheLibraryLoaded)
{
    InstallIntel("ControlLib.dll", {}, {{.function = "ctlInit", .code = 1073741835}});
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api), IntelResults::kInvalidArgument);
    EXPECT_NE(controlLibModule, nullptr);
    EXPECT_EQ(api, nullptr);
}

TEST_F(ControlLibClient, MajorVersion2WithoutRuntimePathIsRefusedAndLoadsNothing)
{
    InstallIntel("ControlLib.dll");
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api, 0x00020000), IntelResults::kUnsupportedVersion);
    EXPECT_EQ(controlLibModule, nullptr);
    EXPECT_EQ(api, nullptr);
    EXPECT_EQ(Intel::Counter("loads"), 0);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(ControlLibClient, MinorVersionsOfMajor1AreAccepted)
{
    InstallIntel("ControlLib.dll");
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api, 0x0001FFFF), CTL_RESULT_SUCCESS);
    EXPECT_NE(controlLibModule, nullptr);
}

TEST_F(ControlLibClient, RuntimePathSkipsTheVersionCheckAndLoadsTheNamedLibrary)
{
    InstallIntel("");  // nothing in system32: only the named library can be found
    std::wstring path = SimDll(L"ControlLib.dll");
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path.data());
    ASSERT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    EXPECT_EQ(runtimePathArgs, &runtime);

    // Loaded all the same; the version is the library's business, and this one implements
    // API 1 only.
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api, 0x00020000), IntelResults::kUnsupportedVersion);
    ASSERT_NE(controlLibModule, nullptr);
    EXPECT_TRUE(SameFile(ModulePath(controlLibModule), path));

    // The library is told the runtime path (the caller's record itself) before its ctlInit.
    const auto records = LumavenSim::TransactionLog::Read().Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_STREQ(records[0]["call"].GetString(), "ctlSetRuntimePath");
    EXPECT_EQ(records[0]["args"][0].GetUint64(), Address(&runtime));
    EXPECT_EQ(std::string(records[0]["path"].GetString()), std::string(path.begin(), path.end()));
    EXPECT_STREQ(records[1]["call"].GetString(), "ctlInit");
    EXPECT_EQ(records[1]["appVersion"].GetUint(), 0x00020000u);
    EXPECT_TRUE(records[1].Refused());

    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    EXPECT_EQ(ctlClose(api), CTL_RESULT_SUCCESS);
    EXPECT_EQ(runtimePathArgs, nullptr);
    EXPECT_EQ(controlLibModule, nullptr);
}

TEST_F(ControlLibClient, WithoutControlLibInitAnswersTheLoadErrorAndStaysUnloaded)
{
    InstallIntel("");
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api), IntelResults::kLoad);
    EXPECT_EQ(controlLibModule, nullptr);
    EXPECT_EQ(api, nullptr);
    // Nothing is loaded, so the forwarders still answer the not-initialised error.
    EXPECT_EQ(ctlClose(api), IntelResults::kNotInitialized);
}

TEST_F(ControlLibClient, OnlySystem32IsSearchedForControlLib)
{
    InstallIntel("");
    // The ordinary search order would find bin\sim\ControlLib.dll in the current directory.
    wchar_t previous[MAX_PATH];
    ASSERT_GT(GetCurrentDirectoryW(MAX_PATH, previous), 0u);
    ASSERT_TRUE(SetCurrentDirectoryW((LumavenTest::ExecutableDirectory() + L"\\sim").c_str()));
    ctl_api_handle_t api = nullptr;
    const ctl_result_t result = Init(&api);
    SetCurrentDirectoryW(previous);
    EXPECT_EQ(result, IntelResults::kLoad);
    EXPECT_EQ(controlLibModule, nullptr);
}

TEST_F(ControlLibClient, ARuntimePathThatCannotBeLoadedAnswersTheLoadError)
{
    InstallIntel("ControlLib.dll");
    std::wstring path = SimDll(L"NoSuchControlLib.dll");
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path.data());
    ASSERT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    ctl_api_handle_t api = nullptr;
    // No file name is appended and system32 is not tried instead.
    EXPECT_EQ(Init(&api), IntelResults::kLoad);
    EXPECT_EQ(controlLibModule, nullptr);
    EXPECT_EQ(Intel::Counter("loads"), 0);
}

TEST_F(ControlLibClient, SetRuntimePathWithoutAPathBeforeLoadingRemembersNothing)
{
    InstallIntel("ControlLib.dll");
    ctl_runtime_path_args_t runtime = RuntimePathArgs(nullptr);
    EXPECT_EQ(ctlSetRuntimePath(&runtime), IntelResults::kNotInitialized);
    EXPECT_EQ(runtimePathArgs, nullptr);
    EXPECT_EQ(ctlSetRuntimePath(nullptr), IntelResults::kNotInitialized);
    EXPECT_EQ(runtimePathArgs, nullptr);
    // So the version is still checked.
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api, 0x00020000), IntelResults::kUnsupportedVersion);
    EXPECT_EQ(controlLibModule, nullptr);
}

TEST_F(ControlLibClient, SetRuntimePathOnALoadedLibraryForwardsItsAnswer)
{
    InstallIntel("ControlLib.dll", {}, {{.function = "ctlSetRuntimePath", .code = 1073741846, .nth = 2}});
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    wchar_t path[] = L"C:\\elsewhere\\ControlLib.dll";
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path);
    EXPECT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    EXPECT_EQ(static_cast<uint32_t>(ctlSetRuntimePath(&runtime)), 1073741846u);
    // Not remembered: a library is loaded already.
    EXPECT_EQ(runtimePathArgs, nullptr);
    const auto calls = Calls("ctlSetRuntimePath");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["args"][0].GetUint64(), Address(&runtime));
    EXPECT_STREQ(calls[0]["path"].GetString(), "C:\\elsewhere\\ControlLib.dll");
}

TEST_F(ControlLibClient, SetRuntimePathOnALoadedLibraryWithoutTheSymbolAnswersNotInitialized)
{
    InstallIntel("ControlLib-initonly.dll");
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    wchar_t path[] = L"C:\\elsewhere\\ControlLib.dll";
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path);
    EXPECT_EQ(ctlSetRuntimePath(&runtime), IntelResults::kNotInitialized);
    EXPECT_EQ(runtimePathArgs, nullptr);
}

TEST_F(ControlLibClient, FailedCloseKeepsTheLibraryLoadedButForgetsTheRuntimePath)
{
    InstallIntel("ControlLib.dll", {}, {{.function = "ctlClose", .code = 1073741835, .nth = 1}});
    std::wstring path = System32Dll(L"ControlLib.dll");
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path.data());
    ASSERT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    const HMODULE loaded = controlLibModule;

    ExpectClosed(api, IntelResults::kInvalidArgument, loaded, 0);
    EXPECT_EQ(runtimePathArgs, nullptr);

    // The next ctlInit reuses the library: no second load, and no runtime path to pass on.
    EXPECT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    EXPECT_EQ(controlLibModule, loaded);
    EXPECT_EQ(Intel::Counter("loads"), 1);
    EXPECT_EQ(Calls("ctlSetRuntimePath").size(), 1u);

    ExpectClosed(api, CTL_RESULT_SUCCESS, nullptr, 1);
}

TEST_F(ControlLibClient, OneCloseUnloadsHoweverManyInitsPrecededIt)
{
    InstallIntel("ControlLib.dll");
    ctl_api_handle_t api = nullptr;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    }
    ExpectClosed(api, CTL_RESULT_SUCCESS, nullptr, 1);
    EXPECT_EQ(Intel::Counter("loads"), 1);
}

TEST_F(ControlLibClient, CloseWithoutALibraryAnswersNotInitializedAndForgetsTheRuntimePath)
{
    InstallIntel("ControlLib.dll");
    wchar_t path[] = L"C:\\elsewhere\\ControlLib.dll";
    ctl_runtime_path_args_t runtime = RuntimePathArgs(path);
    ASSERT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    EXPECT_EQ(ctlClose(nullptr), IntelResults::kNotInitialized);
    EXPECT_EQ(runtimePathArgs, nullptr);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(ControlLibClient, CloseOnALibraryWithoutTheSymbolKeepsItLoaded)
{
    InstallIntel("ControlLib-initonly.dll");
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    const HMODULE loaded = controlLibModule;
    ExpectClosed(api, IntelResults::kNotInitialized, loaded, 0);
}

TEST_F(ControlLibClient, FreshlyLoadedLibraryWithoutCtlInitReportsSuccessButALoadedOneDoesNot)
{
    InstallIntel("ControlLib-noinit.dll");
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    ASSERT_NE(controlLibModule, nullptr);
    EXPECT_EQ(Init(&api), IntelResults::kNotInitialized);
    EXPECT_EQ(api, nullptr);
    EXPECT_EQ(Intel::Counter("loads"), 1);
    EXPECT_TRUE(Calls("ctlInit").empty());
}

TEST_F(ControlLibClient, RuntimePathOf600CharactersIsCutTo511)
{
    InstallIntel("");
    // 511 characters that name the simulated driver in bin\sim (padded with "." components),
    // then 89 more that would make it a different file. Only a cut after exactly 511
    // characters loads it: one fewer leaves "ControlLib.dl", one more "ControlLib.dllx".
    const std::wstring directory = LumavenTest::ExecutableDirectory() + L"\\sim\\";
    const std::wstring file = L"ControlLib.dll";
    std::wstring padding;
    size_t missing = 511 - directory.size() - file.size();
    if (missing % 2 != 0) {
        padding += L"x\\..\\";
        missing -= 5;
    }
    for (; missing > 0; missing -= 2) {
        padding += L".\\";
    }
    std::wstring path = directory + padding + file;
    ASSERT_EQ(path.size(), 511u);
    path += std::wstring(89, L'x');
    ASSERT_EQ(path.size(), 600u);

    ctl_runtime_path_args_t runtime = RuntimePathArgs(path.data());
    ASSERT_EQ(ctlSetRuntimePath(&runtime), CTL_RESULT_SUCCESS);
    ctl_api_handle_t api = nullptr;
    EXPECT_EQ(Init(&api), CTL_RESULT_SUCCESS);
    ASSERT_NE(controlLibModule, nullptr);
    EXPECT_TRUE(SameFile(ModulePath(controlLibModule), directory + file));
    // The caller's record itself is passed on, path uncut.
    const auto calls = Calls("ctlSetRuntimePath");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(std::string(calls[0]["path"].GetString()).size(), 600u);
}

TEST_F(ControlLibClient, FormattedLibraryNameKeepsAtMost255Characters)
{
    wchar_t path[kControlLibPathCapacity];
    FormatLibraryFileName(path, L"ControlLib");
    EXPECT_EQ(std::wstring(path), L"ControlLib.dll");
    // 512 bytes hold 255 characters and the terminator: a longer name is cut, ".dll" and all.
    const std::wstring base(300, L'n');
    FormatLibraryFileName(path, base.c_str());
    EXPECT_EQ(std::wstring(path), std::wstring(255, L'n'));
}

TEST_F(ControlLibClient, NullInitArgumentsReachTheLibraryWhichRefusesThem)
{
    InstallIntel("ControlLib.dll");
    EXPECT_EQ(ctlInit(nullptr, nullptr), IntelResults::kInvalidNullPointer);
    EXPECT_NE(controlLibModule, nullptr);
    const auto calls = Calls("ctlInit");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0]["args"][0].GetUint64(), 0u);
}
