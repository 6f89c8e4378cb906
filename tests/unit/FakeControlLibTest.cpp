// The simulated Intel driver, driven through the client layer as the service drives it: the
// adapters and outputs of the profile, the panels' DPCD registers behind AUX, the DPST/OPST
// state, injected faults, load counters, its export tables and how the installer places and
// shows it.
#include "ControlLibProof.h"
#include "FakeControlLibFixture.h"
#include "PeFile.h"
#include "ProcessRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::FakeControlLib;
using LumavenTest::TwoAdapters;
namespace Intel = LumavenSim::Intel;

TEST_F(FakeControlLib, EnumerationReportsTheCountThenFillsAnArrayThatHoldsThem)
{
    Open();
    EXPECT_EQ(DeviceCount(), 2u);
    const auto filled = FillDevices(5);
    ASSERT_EQ(filled.result, CTL_RESULT_SUCCESS);
    EXPECT_EQ(filled.count, 2u);
    const auto& devices = filled.devices;
    EXPECT_NE(devices[0], nullptr);
    EXPECT_NE(devices[1], nullptr);
    EXPECT_NE(devices[0], devices[1]);
    EXPECT_EQ(devices[2], nullptr);
    // An array too small for them: nothing written, and the count says how many there are.
    const auto tooSmall = FillDevices(1);
    EXPECT_EQ(tooSmall.result, CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(tooSmall.count, 2u);
    EXPECT_EQ(tooSmall.devices[0], nullptr);
    EXPECT_EQ(Calls("ctlEnumerateDevices").back()["refused"].GetString(), std::string("an array of 1 for 2 handles"));

    EXPECT_TRUE(Outputs(devices[0]).empty());
    const auto outputs = Outputs(devices[1]);
    ASSERT_EQ(outputs.size(), 2u);
    EXPECT_NE(outputs[0], outputs[1]);
    const auto calls = Calls("ctlEnumerateDisplayOutputs");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back()["adapter"].GetUint(), 1u);
    EXPECT_EQ(calls.back()["count"].GetUint(), 2u);
    EXPECT_TRUE(calls.back()["filled"].GetBool());
}

// The profile's "counts" make the count call, or the fill call, find another number than the
// machine has; the fill still writes nothing into an array too small for what it finds.
TEST_F(FakeControlLib, CountsOfTheProfileAnswerTheCountAndTheFillCallApart)
{
    // Counted from the install: the session's opening does not enumerate.
    Open(TwoAdapters(), {},
         {{.function = "ctlEnumerateDevices", .call = "count", .answer = 4294967295, .nth = 1},
          {.function = "ctlEnumerateDevices", .call = "fill", .answer = 1, .nth = 2},
          {.function = "ctlEnumerateDevices", .call = "fill", .answer = 3, .nth = 3}});
    EXPECT_EQ(DeviceCount(), 0xFFFFFFFFu);
    const auto found = FillDevices(2);
    ASSERT_EQ(found.result, CTL_RESULT_SUCCESS);
    EXPECT_EQ(found.count, 1u);
    EXPECT_NE(found.devices[0], nullptr);
    EXPECT_EQ(found.devices[1], nullptr);
    const auto again = FillDevices(2);
    EXPECT_EQ(again.result, CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(again.count, 3u);
    EXPECT_EQ(again.devices[0], nullptr);
    // Past the profile's counts: the machine's own again.
    EXPECT_EQ(DeviceCount(), 2u);
}

TEST_F(FakeControlLib, HandlesItDidNotGiveOutAreRefused)
{
    Open();
    uint32_t count = 0;
    EXPECT_EQ(ctlEnumerateDevices(reinterpret_cast<ctl_api_handle_t>(0x1234), &count, nullptr),
              CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ctlEnumerateDevices(m_api, nullptr, nullptr), CTL_RESULT_ERROR_INVALID_NULL_POINTER);
    EXPECT_EQ(ctlEnumerateDisplayOutputs(reinterpret_cast<ctl_device_adapter_handle_t>(0x1234), &count, nullptr),
              CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ctlEnumerateDisplayOutputs(nullptr, &count, nullptr), CTL_RESULT_ERROR_INVALID_NULL_POINTER);
    ctl_display_properties_t properties{};
    EXPECT_EQ(ctlGetDisplayProperties(nullptr, &properties), CTL_RESULT_ERROR_INVALID_NULL_POINTER);
    EXPECT_EQ(ctlAUXAccess(Panel(), nullptr), CTL_RESULT_ERROR_INVALID_NULL_POINTER);
    EXPECT_EQ(ctlClose(reinterpret_cast<ctl_api_handle_t>(0x1234)), CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_NE(controlLibModule, nullptr);
}

TEST_F(FakeControlLib, DisplayPropertiesSayWhetherTheOutputIsAttached)
{
    Open();
    ctl_display_properties_t properties{};
    properties.Size = sizeof properties;
    ASSERT_EQ(ctlGetDisplayProperties(Panel(0), &properties), CTL_RESULT_SUCCESS);
    EXPECT_EQ(properties.DisplayConfigFlags,
              CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ATTACHED | CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ACTIVE);
    properties = {};
    properties.Size = sizeof properties;
    ASSERT_EQ(ctlGetDisplayProperties(Panel(1), &properties), CTL_RESULT_SUCCESS);
    EXPECT_EQ(properties.DisplayConfigFlags, 0u);
    const auto calls = Calls("ctlGetDisplayProperties");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1]["adapter"].GetUint(), 1u);
    EXPECT_EQ(calls[1]["output"].GetUint(), 1u);
    EXPECT_EQ(calls[1]["flags"].GetUint(), 0u);
}

TEST_F(FakeControlLib, AuxWritesAndReadsThePanelRegisters)
{
    Open();
    ctl_aux_access_args_t write = Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {0x17, 0x56, 0xFE});
    ASSERT_EQ(ctlAUXAccess(Panel(), &write), CTL_RESULT_SUCCESS);
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4056, 3), (std::vector<uint8_t>{0x17, 0x56, 0xFE}));
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x404B, 3), (std::vector<uint8_t>{0x7C, 0x84, 0xCC}));
    EXPECT_EQ(Intel::ReadRegisters(1, 1, 0x4056, 3), (std::vector<uint8_t>{0, 0, 0}));

    const auto writes = Calls("ctlAUXAccess");
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0]["adapter"].GetUint(), 1u);
    EXPECT_EQ(writes[0]["output"].GetUint(), 0u);
    EXPECT_STREQ(writes[0]["op"].GetString(), "write");
    EXPECT_EQ(writes[0]["address"].GetUint(), 0x4056u);
    EXPECT_STREQ(writes[0]["data"].GetString(), "1756FE");
    EXPECT_EQ(writes[0]["result"].GetUint(), 0u);

    ctl_aux_access_args_t read = Aux(CTL_OPERATION_TYPE_READ, 0x404B, {0xEE, 0xEE, 0xEE});
    ASSERT_EQ(ctlAUXAccess(Panel(), &read), CTL_RESULT_SUCCESS);
    EXPECT_EQ(read.Data[0], 0x7C);
    EXPECT_EQ(read.Data[1], 0x84);
    EXPECT_EQ(read.Data[2], 0xCC);
    EXPECT_EQ(Last("ctlAUXAccess", "op"), "read");
    EXPECT_EQ(Last("ctlAUXAccess", "data"), "7C84CC");

    // Registers never written read 0.
    ctl_aux_access_args_t unset = Aux(CTL_OPERATION_TYPE_READ, 0x4100, {0xEE, 0xEE});
    ASSERT_EQ(ctlAUXAccess(Panel(), &unset), CTL_RESULT_SUCCESS);
    EXPECT_EQ(unset.Data[0], 0);
    EXPECT_EQ(unset.Data[1], 0);
}

TEST_F(FakeControlLib, AuxRefusesWhatTheNativeChannelCannotCarry)
{
    Open();
    ctl_aux_access_args_t tooLong = Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {1});
    tooLong.DataSize = CTL_AUX_MAX_DATA_SIZE + 1;
    EXPECT_EQ(ctlAUXAccess(Panel(), &tooLong), CTL_RESULT_ERROR_INVALID_ARGUMENT);
    ctl_aux_access_args_t i2c = Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {1});
    i2c.Flags = CTL_AUX_FLAG_I2C_AUX;
    EXPECT_EQ(ctlAUXAccess(Panel(), &i2c), CTL_RESULT_ERROR_UNSUPPORTED_FEATURE);
    ctl_aux_access_args_t unknown = Aux(static_cast<ctl_operation_type_t>(3), 0x4056, {1});
    EXPECT_EQ(ctlAUXAccess(Panel(), &unknown), CTL_RESULT_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4056, 1), (std::vector<uint8_t>{0}));
}

TEST_F(FakeControlLib, PowerSettingsReadAndSwitchOpst)
{
    Open();
    ctl_power_optimization_caps_t caps{};
    caps.Size = sizeof caps;
    ASSERT_EQ(ctlGetPowerOptimizationCaps(Panel(), &caps), CTL_RESULT_SUCCESS);
    EXPECT_EQ(caps.SupportedFeatures, CTL_POWER_OPTIMIZATION_FLAG_DPST);

    ctl_power_optimization_settings_t current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(Panel(), &current), CTL_RESULT_SUCCESS);
    EXPECT_NE(current.FeatureSpecificData.DPSTInfo.SupportedFeatures & CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST, 0u);
    EXPECT_EQ(current.FeatureSpecificData.DPSTInfo.EnabledFeatures, 0u);
    EXPECT_FALSE(current.Enable);

    ctl_power_optimization_settings_t on = Dpst(true, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);
    ASSERT_EQ(ctlSetPowerOptimizationSetting(Panel(), &on), CTL_RESULT_SUCCESS);
    EXPECT_TRUE(Intel::OpstEnabled(1, 0));
    EXPECT_EQ(Last("ctlSetPowerOptimizationSetting", "opst"), "true");
    current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(Panel(), &current), CTL_RESULT_SUCCESS);
    EXPECT_TRUE(current.Enable);
    EXPECT_EQ(current.FeatureSpecificData.DPSTInfo.EnabledFeatures, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);

    ctl_power_optimization_settings_t off = Dpst(false, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);
    ASSERT_EQ(ctlSetPowerOptimizationSetting(Panel(), &off), CTL_RESULT_SUCCESS);
    EXPECT_FALSE(Intel::OpstEnabled(1, 0));
    current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(Panel(), &current), CTL_RESULT_SUCCESS);
    EXPECT_FALSE(current.Enable);
}

TEST_F(FakeControlLib, OtherDpstFeaturesStayAsTheyAreWhenOpstIsSwitched)
{
    Open({.adapters = {{.outputs = {{.dpstEnabled = 5}}}}});
    const auto outputs = Outputs(Devices().at(0));
    ASSERT_EQ(outputs.size(), 1u);
    ctl_power_optimization_settings_t current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(outputs[0], &current), CTL_RESULT_SUCCESS);
    EXPECT_EQ(current.FeatureSpecificData.DPSTInfo.EnabledFeatures, 5u);
    ctl_power_optimization_settings_t off = Dpst(false, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);
    ASSERT_EQ(ctlSetPowerOptimizationSetting(outputs[0], &off), CTL_RESULT_SUCCESS);
    current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(outputs[0], &current), CTL_RESULT_SUCCESS);
    EXPECT_EQ(current.FeatureSpecificData.DPSTInfo.EnabledFeatures, CTL_POWER_OPTIMIZATION_DPST_FLAG_BKLT);
    EXPECT_TRUE(current.Enable);
    EXPECT_FALSE(Intel::OpstEnabled(0, 0));
}

TEST_F(FakeControlLib, APanelWithoutOpstCannotSwitchIt)
{
    Open();
    ctl_power_optimization_settings_t current = Dpst();
    ASSERT_EQ(ctlGetPowerOptimizationSetting(Panel(1), &current), CTL_RESULT_SUCCESS);
    EXPECT_EQ(current.FeatureSpecificData.DPSTInfo.SupportedFeatures & CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST, 0u);
    ctl_power_optimization_settings_t on = Dpst(true, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);
    EXPECT_EQ(ctlSetPowerOptimizationSetting(Panel(1), &on), CTL_RESULT_ERROR_UNSUPPORTED_FEATURE);
    EXPECT_FALSE(Intel::OpstEnabled(1, 1));
    // Only DPST is modelled.
    ctl_power_optimization_settings_t psr = Dpst();
    psr.PowerOptimizationFeature = CTL_POWER_OPTIMIZATION_FLAG_PSR;
    EXPECT_EQ(ctlGetPowerOptimizationSetting(Panel(0), &psr), CTL_RESULT_ERROR_UNSUPPORTED_FEATURE);
}

TEST_F(FakeControlLib, APanelWithoutDpstReportsNoCapability)
{
    Open({.adapters = {{.outputs = {{.dpstSupported = false}}}}});
    const auto outputs = Outputs(Devices().at(0));
    ASSERT_EQ(outputs.size(), 1u);
    ctl_power_optimization_caps_t caps{};
    caps.Size = sizeof caps;
    caps.SupportedFeatures = 0xFF;
    ASSERT_EQ(ctlGetPowerOptimizationCaps(outputs[0], &caps), CTL_RESULT_SUCCESS);
    EXPECT_EQ(caps.SupportedFeatures, 0u);
    ctl_power_optimization_settings_t current = Dpst();
    EXPECT_EQ(ctlGetPowerOptimizationSetting(outputs[0], &current), CTL_RESULT_ERROR_UNSUPPORTED_FEATURE);
}

TEST_F(FakeControlLib, AFaultOnTheNthCallFailsThatCallAlone)
{
    Open(TwoAdapters(), {{.function = "ctlAUXAccess", .code = 1073741845, .nth = 2}});
    ctl_aux_access_args_t first = Aux(CTL_OPERATION_TYPE_WRITE, 0x4027, {0xC0});
    ctl_aux_access_args_t second = Aux(CTL_OPERATION_TYPE_WRITE, 0x4028, {0xC1});
    ctl_aux_access_args_t third = Aux(CTL_OPERATION_TYPE_WRITE, 0x4029, {0xC2});
    EXPECT_EQ(ctlAUXAccess(Panel(), &first), CTL_RESULT_SUCCESS);
    EXPECT_EQ(ctlAUXAccess(Panel(), &second), CTL_RESULT_ERROR_NOT_IMPLEMENTED);
    EXPECT_EQ(ctlAUXAccess(Panel(), &third), CTL_RESULT_SUCCESS);
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4027, 3), (std::vector<uint8_t>{0xC0, 0x00, 0xC2}));
    const auto calls = Calls("ctlAUXAccess");
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1]["result"].GetUint(), 0x40000015u);
    EXPECT_EQ(calls[1]["adapter"].GetUint(), 1u);
}

TEST_F(FakeControlLib, AFaultOnEveryCallFailsEachOneWithoutTouchingTheRecord)
{
    Open(TwoAdapters(), {{.function = "ctlGetDisplayProperties", .code = 1073741835}});
    for (int i = 0; i < 2; ++i) {
        ctl_display_properties_t properties{};
        properties.DisplayConfigFlags = 0xAB;
        EXPECT_EQ(ctlGetDisplayProperties(Panel(), &properties), CTL_RESULT_ERROR_INVALID_ARGUMENT);
        EXPECT_EQ(properties.DisplayConfigFlags, 0xABu);
    }
    EXPECT_EQ(Calls("ctlGetDisplayProperties").size(), 2u);
}

TEST_F(FakeControlLib, OtherEntryPointsAnswerTheProfilesCodeOrNotImplemented)
{
    Open({.results = {{"ctlFanGetState", 0}}});
    int32_t speed = -1;
    const auto fan = reinterpret_cast<ctl_fan_handle_t>(0x7F00);
    EXPECT_EQ(ctlFanGetState(fan, CTL_FAN_SPEED_UNITS_PERCENT, &speed), CTL_RESULT_SUCCESS);
    const auto calls = Calls("ctlFanGetState");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0]["args"][0].GetUint64(), 0x7F00u);
    EXPECT_EQ(calls[0]["args"][1].GetUint(), 1u);
    EXPECT_EQ(calls[0]["args"][2].GetUint64(), Address(&speed));
    EXPECT_EQ(ctlOverclockWaiverSet(nullptr), CTL_RESULT_ERROR_NOT_IMPLEMENTED);
}

TEST_F(FakeControlLib, LoadsAndUnloadsAreCounted)
{
    InstallIntel("ControlLib.dll", TwoAdapters());
    for (int i = 0; i < 2; ++i) {
        ctl_api_handle_t api = nullptr;
        ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);
        ASSERT_EQ(ctlClose(api), CTL_RESULT_SUCCESS);
    }
    EXPECT_EQ(Intel::Counter("loads"), 2);
    EXPECT_EQ(Intel::Counter("unloads"), 2);
}

TEST_F(FakeControlLib, EachVariantExportsTheTableLessWhatItLeavesOut)
{
    namespace Proof = LumavenTest::ControlLibProof;
    const auto sorted = [](std::vector<std::string> names) {
        std::sort(names.begin(), names.end());
        return names;
    };
    const std::vector<std::string> all = sorted(Proof::EntryPointNames());
    ASSERT_EQ(all.size(), 93u);
    EXPECT_EQ(sorted(LumavenTest::ExportedNames(SimDll(L"ControlLib.dll"))), all);
    EXPECT_EQ(LumavenTest::ExportedNames(SimDll(L"ControlLib-initonly.dll")), std::vector<std::string>{"ctlInit"});
    std::vector<std::string> withoutInit = all;
    withoutInit.erase(std::find(withoutInit.begin(), withoutInit.end(), "ctlInit"));
    EXPECT_EQ(sorted(LumavenTest::ExportedNames(SimDll(L"ControlLib-noinit.dll"))), withoutInit);
}

TEST_F(FakeControlLib, InstallerPlacesTheChosenVariantInSystem32OrRemovesIt)
{
    InstallIntel("ControlLib-noinit.dll");
    const std::string installed = ReadFile(System32Dll(L"ControlLib.dll"));
    EXPECT_FALSE(installed.empty());
    EXPECT_EQ(installed, ReadFile(SimDll(L"ControlLib-noinit.dll")));
    InstallIntel("");
    EXPECT_EQ(GetFileAttributesW(System32Dll(L"ControlLib.dll").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(FakeControlLib, ShowPrintsPanelRegistersOpstStateAndTheLog)
{
    Open();
    ctl_aux_access_args_t write = Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {0x17, 0x56, 0xF0});
    ASSERT_EQ(ctlAUXAccess(Panel(), &write), CTL_RESULT_SUCCESS);
    ctl_power_optimization_settings_t on = Dpst(true, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST);
    ASSERT_EQ(ctlSetPowerOptimizationSetting(Panel(), &on), CTL_RESULT_SUCCESS);
    ASSERT_EQ(ctlClose(m_api), CTL_RESULT_SUCCESS);

    auto shown = LumavenTest::RunProgram(L"lumaven-sim.exe show");
    EXPECT_EQ(shown.exitCode, 0u) << shown.output;
    // The console's line ends do not matter here.
    shown.output.erase(std::remove(shown.output.begin(), shown.output.end(), '\r'), shown.output.end());
    EXPECT_NE(shown.output.find("intel driver: loaded 1 times, unloaded 1 times"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("  adapter 1: 2 display outputs"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("    output 0: attached, active; DPST supported, OPST supported, OPST on"),
              std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find("      DPCD 404B: 7C84CC\n"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("      DPCD 4056: 1756F0\n"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("    output 1: not attached; DPST supported, OPST not supported, OPST off"),
              std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find(R"({"lib":"ControlLib","call":"ctlAUXAccess","adapter":1,"output":0,"op":"write",)"
                                R"("flags":1,"address":16470,"size":3,"data":"1756F0",)"),
              std::string::npos)
        << shown.output;
}
