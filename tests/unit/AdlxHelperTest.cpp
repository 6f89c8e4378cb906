// ADLXHelper and the VariBright operations against the simulated ADLX: loading and
// initialising, the display services and first display kept process-wide, termination when
// the display services cannot be had, and VariBright read and switched through the fake
// driver's state and transaction log. Each test terminates ADLX before and after itself, so
// no test depends on another's leftovers.
#include "AdlSimSupport.h"
#include "ServiceProcessState.h"
#include "SimMachine.h"

#include "amd/ADLXHelper.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <string>

using namespace LumavenTest::Amd;
using LumavenTest::InstallProfile;

namespace {

namespace Profile = LumavenSim::Profile;

// A laptop whose ADLX displays have these VariBright settings, with this ADLX library (none
// when empty) and these faults.
Profile::Machine Laptop(std::vector<Profile::AdlxDisplay> displays = {{.varibrightSupported = true,
                                                                       .varibrightEnabled = false}},
                        const std::string& adlxFile = "amdadlx64.dll", std::vector<Profile::Fault> faults = {})
{
    Profile::Machine machine{.monitors = {{.panel = LumavenSim::Panels::kSdc416C}},
                             .adlx = Profile::Adlx{.displays = std::move(displays)},
                             .faults = std::move(faults)};
    if (!adlxFile.empty()) {
        machine.libraries["amdadlx64.dll"] = adlxFile;
    }
    return machine;
}

bool DisplayFlag(size_t display, const char* name)
{
    const rapidjson::Document state = State();
    return Flag(state["adlx"]["displays"][static_cast<rapidjson::SizeType>(display)], name);
}

std::string DisplayMode(size_t display)
{
    const rapidjson::Document state = State();
    return Text(state["adlx"]["displays"][static_cast<rapidjson::SizeType>(display)], "varibrightMode");
}

bool Initialized()
{
    const rapidjson::Document state = State();
    return state.HasMember("adlx") && Flag(state["adlx"], "initialized");
}

class AdlxHelper : public testing::Test {
protected:
    void SetUp() override { LumavenTest::ResetServiceProcessState(); }
    void TearDown() override { LumavenTest::ResetServiceProcessState(); }
};

}  // namespace

TEST_F(AdlxHelper, MissingLibraryFailsWith3AndChangesNothing)
{
    InstallProfile(Laptop({{.varibrightSupported = true}}, ""));
    adlx::IADLXDisplayServices* const servicesBefore = adlxDisplayServices.get();
    adlx::IADLXDisplay* const displayBefore = adlxDisplay.get();
    EXPECT_EQ(g_ADLXHelp.Initialize(), ADLX_FAIL);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    InitializeAdlxDisplay();
    EXPECT_EQ(adlxDisplayServices.get(), servicesBefore);
    EXPECT_EQ(adlxDisplay.get(), displayBefore);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_TRUE(Calls().empty());
}

TEST_F(AdlxHelper, MissingLibraryAfterASuccessfulInitialisationChangesNothing)
{
    // The objects of an earlier initialisation, kept across the termination as always.
    InstallProfile(Laptop());
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    ASSERT_NE(adlxDisplay, nullptr);
    adlx::IADLXDisplayServices* const servicesBefore = adlxDisplayServices.get();
    adlx::IADLXDisplay* const displayBefore = adlxDisplay.get();
    ASSERT_EQ(g_ADLXHelp.Terminate(), ADLX_OK);

    InstallProfile(Laptop({{.varibrightSupported = true}}, ""));
    InitializeAdlxDisplay();
    EXPECT_EQ(adlxDisplayServices.get(), servicesBefore);
    EXPECT_EQ(adlxDisplay.get(), displayBefore);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(g_ADLXHelp.GetSystemServices(), nullptr);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(AdlxHelper, LibraryWithoutInitializeWithIncompatibleDriverFailsWith3)
{
    InstallProfile(Laptop({{.varibrightSupported = true}}, "amdadlx64_noincompat.dll"));
    EXPECT_EQ(g_ADLXHelp.Initialize(), ADLX_FAIL);
    EXPECT_TRUE(Calls().empty()) << "not even the version is asked for";
    EXPECT_EQ(g_ADLXHelp.GetSystemServices(), nullptr);
    InitializeAdlxDisplay();
    EXPECT_TRUE(Calls().empty());
    EXPECT_FALSE(Initialized());
    EXPECT_EQ(StateNumber("adlx", "loads"), 1);
    EXPECT_EQ(g_ADLXHelp.Terminate(), ADLX_OK);
    EXPECT_EQ(StateNumber("adlx", "unloads"), 1);
}

TEST_F(AdlxHelper, InitializeQueriesTheVersionsThenInitializesWithTheHeaderVersion)
{
    InstallProfile(Laptop());
    EXPECT_EQ(g_ADLXHelp.Initialize(), ADLX_OK);
    EXPECT_TRUE(g_ADLXHelp.IsLoaded());
    EXPECT_NE(g_ADLXHelp.GetSystemServices(), nullptr);
    EXPECT_EQ(Calls(), (std::vector<std::string>{"ADLXQueryFullVersion", "ADLXQueryVersion", "ADLXInitialize"}));
    EXPECT_EQ(Text(RecordsOf("ADLXInitialize")[0], "version"), "0x0001000200000048");
    EXPECT_EQ(g_ADLXHelp.QueryFullVersion(), 0x000100040000006EULL);
    EXPECT_STREQ(g_ADLXHelp.QueryVersion(), "1.4.0.110");
    EXPECT_TRUE(Initialized());
    EXPECT_EQ(StateNumber("adlx", "loads"), 1);
}

TEST_F(AdlxHelper, RepeatedInitializeReportsAlreadyInitializedWithoutLoadingAgain)
{
    InstallProfile(Laptop());
    EXPECT_EQ(g_ADLXHelp.Initialize(), ADLX_OK);
    adlx::IADLXSystem* const system = g_ADLXHelp.GetSystemServices();
    EXPECT_EQ(g_ADLXHelp.Initialize(), ADLX_ALREADY_INITIALIZED);
    EXPECT_TRUE(ADLX_SUCCEEDED(ADLX_ALREADY_INITIALIZED));
    EXPECT_EQ(g_ADLXHelp.GetSystemServices(), system);
    EXPECT_EQ(RecordsOf("ADLXQueryFullVersion").size(), 2u) << "the version queries run on every call";
    EXPECT_EQ(StateNumber("adlx", "loads"), 1);
}

TEST_F(AdlxHelper, TerminateClearsEverythingAndUnloads)
{
    InstallProfile(Laptop());
    ASSERT_EQ(g_ADLXHelp.Initialize(), ADLX_OK);
    EXPECT_EQ(g_ADLXHelp.Terminate(), ADLX_OK);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(g_ADLXHelp.GetSystemServices(), nullptr);
    EXPECT_EQ(g_ADLXHelp.QueryFullVersion(), 0u);
    EXPECT_EQ(g_ADLXHelp.QueryVersion(), nullptr);
    EXPECT_EQ(RecordsOf("ADLXTerminate").size(), 1u);
    EXPECT_FALSE(Initialized());
    EXPECT_EQ(StateNumber("adlx", "unloads"), 1);
    // Not loaded: nothing to do.
    EXPECT_EQ(g_ADLXHelp.Terminate(), ADLX_OK);
    EXPECT_EQ(RecordsOf("ADLXTerminate").size(), 1u);
}

TEST_F(AdlxHelper, TerminateAnswersWhatADLXTerminateAnswers)
{
    InstallProfile(
        Laptop({{.varibrightSupported = true}}, "amdadlx64.dll", {{.function = "ADLXTerminate", .code = 3}}));
    ASSERT_EQ(g_ADLXHelp.Initialize(), ADLX_OK);
    EXPECT_EQ(g_ADLXHelp.Terminate(), ADLX_FAIL);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded()) << "unloaded all the same";
}

TEST_F(AdlxHelper, HelperDestructorTerminates)
{
    InstallProfile(Laptop());
    {
        ADLXHelper helper;
        EXPECT_EQ(helper.Initialize(), ADLX_OK);
    }
    EXPECT_EQ(RecordsOf("ADLXTerminate").size(), 1u);
    EXPECT_EQ(StateNumber("adlx", "unloads"), 1);
}

TEST_F(AdlxHelper, InitializeAdlxDisplayTakesTheServicesAndTheFirstDisplay)
{
    InstallProfile(Laptop({{.varibrightSupported = true}, {.varibrightSupported = false}}));
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    ASSERT_NE(adlxDisplay, nullptr);
    EXPECT_EQ(Calls(),
              (std::vector<std::string>{"ADLXQueryFullVersion", "ADLXQueryVersion", "ADLXInitialize",
                                        "GetDisplaysServices", "GetDisplays", "At", "Release", "Release", "Release"}));
    // The list is given back once the first display is taken; it lets go of both displays, and
    // the first one lives on through the service's own reference.
    const auto releases = RecordsOf("Release");
    ASSERT_EQ(releases.size(), 3u);
    EXPECT_EQ(Text(releases[0], "interface"), "IADLXDisplayList");
    EXPECT_EQ(Number(releases[0], "refs"), 0);
    EXPECT_EQ(Number(releases[1], "display"), 0);
    EXPECT_EQ(Number(releases[1], "refs"), 1);
    EXPECT_EQ(Number(releases[2], "display"), 1);
    EXPECT_EQ(Number(releases[2], "refs"), 0);
    EXPECT_EQ(Number(RecordsOf("GetDisplays")[0], "count"), 2);
    EXPECT_EQ(Number(RecordsOf("At")[0], "index"), 0);
    adlx_size id = 99;
    EXPECT_EQ(adlxDisplay->UniqueId(&id), ADLX_OK);
    EXPECT_EQ(id, 0u);
}

TEST_F(AdlxHelper, SecondInitializeAdlxDisplayReleasesAndReplacesBoth)
{
    InstallProfile(Laptop());
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    LumavenSim::ClearTransactions();
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    ASSERT_NE(adlxDisplay, nullptr);
    EXPECT_EQ(Number(RecordsOf("ADLXInitialize")[0], "result"), ADLX_ALREADY_INITIALIZED);
    const auto releases = RecordsOf("Release");
    ASSERT_EQ(releases.size(), 4u);
    EXPECT_EQ(Text(releases[0], "interface"), "IADLXDisplayServices");
    EXPECT_EQ(Number(releases[0], "refs"), 0);
    EXPECT_EQ(Text(releases[1], "interface"), "IADLXDisplay");
    EXPECT_EQ(Number(releases[1], "refs"), 0) << "the first list was given back, so the old display goes";
    EXPECT_EQ(Text(releases[2], "interface"), "IADLXDisplayList");
    EXPECT_EQ(Number(releases[3], "refs"), 1) << "the new display lives on through the service's reference";
    EXPECT_EQ(Calls(),
              (std::vector<std::string>{"ADLXQueryFullVersion", "ADLXQueryVersion", "ADLXInitialize", "Release",
                                        "GetDisplaysServices", "GetDisplays", "Release", "At", "Release", "Release"}));
    EXPECT_TRUE(IsVaribrightSupported()) << "the new objects work";
    EXPECT_EQ(StateNumber("adlx", "loads"), 1);
}

TEST_F(AdlxHelper, FailingDisplayServicesTerminateAndTheNextCallLoadsAgain)
{
    InstallProfile(Laptop({{.varibrightSupported = true}}, "amdadlx64.dll",
                          {{.function = "GetDisplaysServices", .code = 3, .nth = 2}}));
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    adlx::IADLXDisplay* const firstDisplay = adlxDisplay.get();
    ASSERT_NE(firstDisplay, nullptr);

    LumavenSim::ClearTransactions();
    InitializeAdlxDisplay();
    EXPECT_EQ(adlxDisplayServices, nullptr);
    EXPECT_EQ(adlxDisplay.get(), firstDisplay) << "the display is left as it was";
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(Calls(), (std::vector<std::string>{"ADLXQueryFullVersion", "ADLXQueryVersion", "ADLXInitialize",
                                                 "Release", "GetDisplaysServices", "ADLXTerminate"}));
    EXPECT_EQ(Number(RecordsOf("GetDisplaysServices")[0], "result"), ADLX_FAIL);
    EXPECT_FALSE(Initialized());
    EXPECT_EQ(StateNumber("adlx", "unloads"), 1);
    EXPECT_FALSE(IsVaribrightSupported());
    EXPECT_FALSE(SetVaribrightEnabled(true));
    EXPECT_EQ(RecordsOf("GetVariBright").size(), 0u) << "no display services, nothing asked";

    LumavenSim::ClearTransactions();
    InitializeAdlxDisplay();
    EXPECT_TRUE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(StateNumber("adlx", "loads"), 2);
    EXPECT_EQ(Number(RecordsOf("ADLXInitialize")[0], "result"), ADLX_OK) << "a fresh initialisation";
    const auto calls = Calls();
    const auto taken = std::find(calls.begin(), calls.end(), "At");
    EXPECT_EQ(std::find(calls.begin(), taken, "Release"), taken)
        << "the display of the terminated ADLX is not released";
    ASSERT_NE(adlxDisplayServices, nullptr);
    EXPECT_TRUE(IsVaribrightSupported());
}

TEST_F(AdlxHelper, DisplayServicesAlwaysFailingLeaveADLXUnloaded)
{
    InstallProfile(
        Laptop({{.varibrightSupported = true}}, "amdadlx64.dll", {{.function = "GetDisplaysServices", .code = 12}}));
    InitializeAdlxDisplay();
    InitializeAdlxDisplay();
    EXPECT_EQ(adlxDisplayServices, nullptr);
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(StateNumber("adlx", "loads"), 2);
    EXPECT_EQ(StateNumber("adlx", "unloads"), 2);
    EXPECT_EQ(RecordsOf("ADLXTerminate").size(), 2u);
}

TEST_F(AdlxHelper, FailedDisplayListKeepsThePreviousDisplay)
{
    InstallProfile(
        Laptop({{.varibrightSupported = true}}, "amdadlx64.dll", {{.function = "GetDisplays", .code = 3, .nth = 2}}));
    InitializeAdlxDisplay();
    adlx::IADLXDisplay* const firstDisplay = adlxDisplay.get();
    InitializeAdlxDisplay();
    EXPECT_NE(adlxDisplayServices, nullptr);
    EXPECT_EQ(adlxDisplay.get(), firstDisplay);
    EXPECT_TRUE(IsVaribrightSupported());
}

TEST_F(AdlxHelper, WithoutDisplayServicesVaribrightIsFalseAndNothingIsCalled)
{
    InstallProfile(Laptop());
    // Fresh from SetUp: ADLX is not loaded and whatever an earlier test left is gone with it.
    EXPECT_FALSE(IsVaribrightSupported());
    EXPECT_FALSE(SetVaribrightEnabled(true));
    adlx::IADLXDisplayVariBright* varibright = reinterpret_cast<adlx::IADLXDisplayVariBright*>(1);
    EXPECT_EQ(GetVariBright(&varibright), ADLX_FAIL);
    EXPECT_EQ(varibright, nullptr);
    EXPECT_TRUE(Calls().empty());
    EXPECT_FALSE(DisplayFlag(0, "varibrightEnabled"));
}

TEST_F(AdlxHelper, NullDisplayServicesCountAsFailureEvenWithADLXInitialized)
{
    InstallProfile(Laptop());
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    adlxDisplayServices.reset();
    LumavenSim::ClearTransactions();
    EXPECT_FALSE(IsVaribrightSupported());
    EXPECT_FALSE(SetVaribrightEnabled(true));
    EXPECT_TRUE(Calls().empty());
}

TEST_F(AdlxHelper, IsVaribrightSupportedAsksTheFirstDisplay)
{
    InstallProfile(Laptop({{.varibrightSupported = true}, {.varibrightSupported = false}}));
    InitializeAdlxDisplay();
    LumavenSim::ClearTransactions();
    EXPECT_TRUE(IsVaribrightSupported());
    EXPECT_EQ(Calls(), (std::vector<std::string>{"GetVariBright", "IsSupported", "Release"}));
    EXPECT_EQ(Number(RecordsOf("GetVariBright")[0], "display"), 0);
    EXPECT_TRUE(Flag(RecordsOf("IsSupported")[0], "supported"));
}

TEST_F(AdlxHelper, UnsupportedVaribrightAnswersFalse)
{
    InstallProfile(Laptop({{.varibrightSupported = false}, {.varibrightSupported = true}}));
    InitializeAdlxDisplay();
    EXPECT_FALSE(IsVaribrightSupported());
}

TEST_F(AdlxHelper, FailedIsSupportedOrGetVariBrightAnswersFalse)
{
    InstallProfile(Laptop(
        {{.varibrightSupported = true}}, "amdadlx64.dll",
        {{.function = "IsSupported", .code = 3, .nth = 1}, {.function = "GetVariBright", .code = 12, .nth = 2}}));
    InitializeAdlxDisplay();
    EXPECT_FALSE(IsVaribrightSupported()) << "IsSupported failed and set nothing";
    EXPECT_FALSE(IsVaribrightSupported()) << "GetVariBright failed";
    EXPECT_TRUE(IsVaribrightSupported());
}

TEST_F(AdlxHelper, DisplayListWithoutDisplaysLeavesNoDisplay)
{
    InstallProfile(Laptop({}));
    InitializeAdlxDisplay();
    EXPECT_NE(adlxDisplayServices, nullptr);
    EXPECT_EQ(adlxDisplay.get(), nullptr);
    EXPECT_EQ(Number(RecordsOf("At")[0], "result"), ADLX_INVALID_ARGS);
    EXPECT_FALSE(IsVaribrightSupported());
    EXPECT_EQ(Number(RecordsOf("GetVariBright")[0], "result"), ADLX_INVALID_ARGS);
}

TEST_F(AdlxHelper, SetVaribrightEnabledSwitchesTheFirstDisplay)
{
    InstallProfile(Laptop({{.varibrightSupported = true, .varibrightEnabled = false}, {.varibrightSupported = true}}));
    InitializeAdlxDisplay();
    LumavenSim::ClearTransactions();
    EXPECT_TRUE(SetVaribrightEnabled(true));
    EXPECT_TRUE(DisplayFlag(0, "varibrightEnabled"));
    EXPECT_FALSE(DisplayFlag(1, "varibrightEnabled"));
    EXPECT_EQ(Calls(), (std::vector<std::string>{"GetVariBright", "SetEnabled", "Release"}));
    EXPECT_TRUE(Flag(RecordsOf("SetEnabled")[0], "value"));
    EXPECT_TRUE(SetVaribrightEnabled(false));
    EXPECT_FALSE(DisplayFlag(0, "varibrightEnabled"));
    EXPECT_FALSE(Flag(RecordsOf("SetEnabled")[1], "value"));
}

TEST_F(AdlxHelper, SetVaribrightEnabledOnAnUnsupportedDisplayIsRefused)
{
    InstallProfile(Laptop({{.varibrightSupported = false, .varibrightEnabled = false}}));
    InitializeAdlxDisplay();
    EXPECT_FALSE(SetVaribrightEnabled(true));
    EXPECT_EQ(Number(RecordsOf("SetEnabled")[0], "result"), ADLX_NOT_SUPPORTED);
    EXPECT_FALSE(DisplayFlag(0, "varibrightEnabled"));
}

TEST_F(AdlxHelper, GetVariBrightGivesAnInterfaceForEnableAndMaximizeBattery)
{
    InstallProfile(Laptop({{.varibrightSupported = true, .varibrightEnabled = false, .varibrightMode = "balanced"}}));
    InitializeAdlxDisplay();
    LumavenSim::ClearTransactions();
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    ASSERT_EQ(GetVariBright(&varibright), ADLX_OK);
    ASSERT_NE(varibright, nullptr);
    EXPECT_EQ(varibright->SetEnabled(true), ADLX_OK);
    ASSERT_EQ(GetVariBright(&varibright), ADLX_OK);
    EXPECT_EQ(varibright->SetMaximizeBattery(), ADLX_OK);
    adlx_bool current = false;
    EXPECT_EQ(varibright->IsCurrentMaximizeBattery(&current), ADLX_OK);
    EXPECT_TRUE(current);
    EXPECT_TRUE(DisplayFlag(0, "varibrightEnabled"));
    EXPECT_EQ(DisplayMode(0), "maximizeBattery");
    EXPECT_EQ(Calls(),
              (std::vector<std::string>{"GetVariBright", "SetEnabled", "GetVariBright", "SetMaximizeBattery"}));
}

// An initialisation that answers with a success code but hands out no system (ADLX_ALREADY_
// ENABLED, 1) ends with ADLX terminated. The display services of the load before are given
// back first, while ADLX can still take them, and not left behind inside it; the display is
// kept, as on every failed initialisation.
TEST_F(AdlxHelper, ASuccessWithoutASystemGivesTheEarlierDisplayServicesBackBeforeTerminating)
{
    InstallProfile(Laptop({{.varibrightSupported = true}}, "amdadlx64.dll",
                          {{.function = "ADLXInitialize", .code = 1, .nth = 2}}));
    InitializeAdlxDisplay();
    ASSERT_NE(adlxDisplayServices, nullptr);
    ASSERT_NE(adlxDisplay, nullptr);
    InitializeAdlxDisplay();
    EXPECT_FALSE(g_ADLXHelp.IsLoaded());
    EXPECT_EQ(adlxDisplayServices, nullptr);
    const auto terminations = RecordsOf("ADLXTerminate");
    ASSERT_EQ(terminations.size(), 1u);
    EXPECT_EQ(Number(terminations[0], "orphans"), 1);
}

TEST_F(AdlxHelper, ObjectsLeftAtTerminationAreReportedAsOrphans)
{
    InstallProfile(Laptop());
    for (int call = 0; call < 10; ++call) {
        InitializeAdlxDisplay();
        EXPECT_TRUE(IsVaribrightSupported());
        EXPECT_TRUE(SetVaribrightEnabled(call % 2 == 0));
    }
    g_ADLXHelp.Terminate();
    // However many calls: display services and the display that the service holds; every
    // list and VariBright interface was given back after use.
    EXPECT_EQ(Number(RecordsOf("ADLXTerminate")[0], "orphans"), 2);
}
