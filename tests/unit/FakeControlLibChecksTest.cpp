// The simulated Intel driver checks every record it is handed as a careful driver does: each
// wrong Size, Version, reserved field, enumeration value or count is refused with the driver's
// own code, nothing is changed, and the transaction log says why ("refused"). The records the
// service really sends, on every Intel command, are accepted.
#include "FakeControlLibFixture.h"
#include "Registry.h"
#include "XeltoClient.h"

#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::FakeControlLib;
namespace Intel = LumavenSim::Intel;

namespace {

constexpr uint32_t kInvalidArgument = 0x4000000B;
constexpr uint32_t kUnsupportedVersion = 0x40000009;
constexpr uint32_t kUnsupportedFeature = 0x4000000A;
constexpr uint32_t kNullPointer = 0x4000000E;

class FakeControlLibChecks : public FakeControlLib {
protected:
    // The call's answer was `code`, and the driver's last record of `function` says it refused
    // it for `reason` (the start of the text) with that code.
    static void ExpectRefused(const std::string& function, ctl_result_t answer, uint32_t code,
                              const std::string& reason)
    {
        EXPECT_EQ(static_cast<uint32_t>(answer), code) << function << " " << reason;
        const auto calls = Calls(function);
        ASSERT_FALSE(calls.empty()) << function;
        const auto& last = calls.back();
        ASSERT_TRUE(last.Refused()) << function << ": nothing refused";
        EXPECT_EQ(last.Refusal().rfind(reason, 0), 0u)
            << function << ": refused \"" << last.Refusal() << "\", expected \"" << reason << "...\"";
        EXPECT_EQ(last["result"].GetUint(), code) << function;
    }

    // The checks of the two fields every record starts with, on a record that `call` fills for
    // the attached display: one of another Size (a byte short or long) or of Version 1 is
    // refused, and so is no record at all. `size` is the record's size in the vendor's layout.
    template <class Record, class Function>
    void ExpectHeaderChecked(const std::string& function, Function call, Record& record, size_t size)
    {
        const auto refused = [&](uint32_t code, const std::string& reason) {
            ExpectRefused(function, call(Panel(), &record), code, reason);
        };
        const std::string expected = ", expected " + std::to_string(size);
        record.Size = sizeof record - 1;
        refused(kInvalidArgument, "Size " + std::to_string(size - 1) + expected);
        record.Size = sizeof record + 1;
        refused(kInvalidArgument, "Size " + std::to_string(size + 1) + expected);
        record.Size = sizeof record;
        record.Version = 1;
        refused(kUnsupportedVersion, "Version 1, expected 0");
        record.Version = 0;
        ExpectRefused(function, call(Panel(), nullptr), kNullPointer, "no record");
    }

    static ctl_power_optimization_settings_t OpstOn() { return Dpst(true, CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST); }

    // An AUX write of one byte to 0x4056, as the service fills it.
    static ctl_aux_access_args_t Write() { return Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {0x5A}); }

    ctl_result_t Access(ctl_aux_access_args_t args) { return ctlAUXAccess(Panel(), &args); }

    // An AUX write as the service fills it, changed by `change`, is refused.
    template <class Change>
    void ExpectAuxRefused(Change change, uint32_t code, const std::string& reason)
    {
        ctl_aux_access_args_t args = Write();
        change(args);
        ExpectRefused("ctlAUXAccess", Access(args), code, reason);
    }

    using SettingsCall = ctl_result_t(CTL_APICALL*)(ctl_display_output_handle_t, ctl_power_optimization_settings_t*);
    // The request to switch OPST on, changed by `change`, is refused by the getter and the
    // setter alike.
    template <class Change>
    void ExpectSettingsRefused(Change change, uint32_t code, const std::string& reason)
    {
        const std::pair<const char*, SettingsCall> calls[] = {
            {"ctlGetPowerOptimizationSetting", ctlGetPowerOptimizationSetting},
            {"ctlSetPowerOptimizationSetting", ctlSetPowerOptimizationSetting}};
        for (const auto& [function, call] : calls) {
            ctl_power_optimization_settings_t settings = OpstOn();
            change(settings);
            ExpectRefused(function, call(Panel(), &settings), code, reason);
        }
    }

    // The panel's register 0x4056 and OPST state: what a refused call must leave alone.
    static void ExpectPanelUntouched()
    {
        EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4056, 1), (std::vector<uint8_t>{0}));
        EXPECT_FALSE(Intel::OpstEnabled(1, 0));
    }
};

}  // namespace

TEST_F(FakeControlLibChecks, InitArgumentsOfAnotherSizeVersionApiOrFlagsAreRefused)
{
    Open();
    // The library is loaded now, so each call below reaches its ctlInit unchanged.
    ctl_init_args_t args = InitArgs(0x00010000);
    args.Size = sizeof args - 1;
    ctl_api_handle_t api = nullptr;
    ExpectRefused("ctlInit", ctlInit(&args, &api), kInvalidArgument, "Size 35, expected 36");
    EXPECT_EQ(api, nullptr);
    args = InitArgs(0x00010000);
    args.Version = 1;
    ExpectRefused("ctlInit", ctlInit(&args, &api), kUnsupportedVersion, "Version 1, expected 0");
    args = InitArgs(0x00020000);
    ExpectRefused("ctlInit", ctlInit(&args, &api), kUnsupportedVersion, "AppVersion 0x20000, major 2");
    args = InitArgs(0x00000001);
    ExpectRefused("ctlInit", ctlInit(&args, &api), kUnsupportedVersion, "AppVersion 0x1, major 0");
    args = InitArgs(0x00010000);
    args.flags = 0x1;
    ExpectRefused("ctlInit", ctlInit(&args, &api), kInvalidArgument, "flags 0x1");
    EXPECT_EQ(api, nullptr);
    ExpectRefused("ctlInit", ctlInit(nullptr, &api), kNullPointer, "no init arguments");
    args = InitArgs(0x00010000);
    ExpectRefused("ctlInit", ctlInit(&args, nullptr), kNullPointer, "no handle to fill");

    // Any minor version of API 1 is fine, and the driver says which it supports.
    args = InitArgs(0x0001FFFF);
    EXPECT_EQ(ctlInit(&args, &api), CTL_RESULT_SUCCESS);
    EXPECT_EQ(api, m_api);
    EXPECT_EQ(args.SupportedVersion, 0x00010001u);
    EXPECT_FALSE(Calls("ctlInit").back().Refused());
}

TEST_F(FakeControlLibChecks, RuntimePathArgumentsAreChecked)
{
    Open();
    wchar_t path[] = L"C:\\drivers\\ControlLib.dll";
    ctl_runtime_path_args_t args{};
    args.Size = sizeof args - 1;
    args.pRuntimePath = path;
    ExpectRefused("ctlSetRuntimePath", ctlSetRuntimePath(&args), kInvalidArgument, "Size 39, expected 40");
    args.Size = sizeof args;
    args.Version = 2;
    ExpectRefused("ctlSetRuntimePath", ctlSetRuntimePath(&args), kUnsupportedVersion, "Version 2");
    args.Version = 0;
    args.pRuntimePath = nullptr;
    ExpectRefused("ctlSetRuntimePath", ctlSetRuntimePath(&args), kNullPointer, "no runtime path");
    args.pRuntimePath = path;
    EXPECT_EQ(ctlSetRuntimePath(&args), CTL_RESULT_SUCCESS);
}

TEST_F(FakeControlLibChecks, DisplayPropertiesOfAnotherSizeOrWithReservedFieldsSetAreRefused)
{
    Open();
    ctl_display_properties_t properties{};
    properties.DisplayConfigFlags = 0xAB;
    ExpectHeaderChecked("ctlGetDisplayProperties", ctlGetDisplayProperties, properties, 200);
    properties.ReservedFields[15] = 1;
    ExpectRefused("ctlGetDisplayProperties", ctlGetDisplayProperties(Panel(), &properties), kInvalidArgument,
                  "ReservedFields[15] is not zero");
    properties.ReservedFields[15] = 0;
    properties.ReservedFields[0] = 7;
    ExpectRefused("ctlGetDisplayProperties", ctlGetDisplayProperties(Panel(), &properties), kInvalidArgument,
                  "ReservedFields[0] is not zero");
    EXPECT_EQ(properties.DisplayConfigFlags, 0xABu) << "a refused record is not filled";
}

TEST_F(FakeControlLibChecks, AuxRecordOfAnotherSizeOrVersionIsRefused)
{
    Open();
    ExpectAuxRefused([](auto& args) { args.Size = sizeof args - 1; }, kInvalidArgument, "Size 175, expected 176");
    ExpectAuxRefused([](auto& args) { args.Version = 1; }, kUnsupportedVersion, "Version 1, expected 0");
    ExpectPanelUntouched();
}

TEST_F(FakeControlLibChecks, AuxOperationAndFlagsMustNameOneKnownChannel)
{
    Open();
    for (const uint32_t op : {0u, 3u}) {
        ExpectAuxRefused([op](auto& args) { args.OpType = static_cast<ctl_operation_type_t>(op); }, kInvalidArgument,
                         "OpType " + std::to_string(op) + " is neither read nor write");
    }
    for (const uint32_t flags : {0x0u, 0x3u, 0x5u, 0x4u, 0x8u, 0x9u}) {
        ExpectAuxRefused([flags](auto& args) { args.Flags = flags; }, kInvalidArgument, "Flags 0x");
    }
    for (const uint32_t flags : {CTL_AUX_FLAG_I2C_AUX, CTL_AUX_FLAG_I2C_AUX | CTL_AUX_FLAG_I2C_AUX_MOT}) {
        ExpectAuxRefused([flags](auto& args) { args.Flags = flags; }, kUnsupportedFeature, "Flags 0x");
    }
    ExpectPanelUntouched();
}

TEST_F(FakeControlLibChecks, AuxToAnotherPortOrBranchIsRefused)
{
    Open();
    ExpectAuxRefused([](auto& args) { args.RAD = 1; }, kInvalidArgument, "RAD 0x1 is not zero");
    ExpectAuxRefused([](auto& args) { args.PortID = 2; }, kInvalidArgument, "PortID 2 is not zero");
    ExpectPanelUntouched();
}

TEST_F(FakeControlLibChecks, AuxCountsMustFitTheDataBufferAndTheDpcdSpace)
{
    Open();
    ctl_aux_access_args_t args = Write();
    args.DataSize = 0;
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "DataSize 0 is not 1 to 132");
    args.DataSize = CTL_AUX_MAX_DATA_SIZE + 1;
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "DataSize 133 is not 1 to 132");
    args = Aux(CTL_OPERATION_TYPE_READ, 0xFFFFF, {0, 0});
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "Address 0xFFFFF with 2 bytes leaves");
    args = Aux(CTL_OPERATION_TYPE_READ, 0x100000, {0});
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "Address 0x100000 with 1 bytes leaves");
    // Bytes of Data past DataSize belong to no write.
    args = Aux(CTL_OPERATION_TYPE_WRITE, 0x4056, {0x5A, 0x5B, 0x5C});
    args.Data[3] = 0x01;
    args.DataSize = 3;
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "Data[3] beyond DataSize is not zero");
    args.Data[3] = 0;
    args.Data[CTL_AUX_MAX_DATA_SIZE - 1] = 0x01;
    ExpectRefused("ctlAUXAccess", Access(args), kInvalidArgument, "Data[131] beyond DataSize is not zero");
    ExpectPanelUntouched();

    // The edges themselves are fine: the last DPCD byte, and all 132 bytes.
    EXPECT_EQ(Access(Aux(CTL_OPERATION_TYPE_READ, 0xFFFFF, {0})), CTL_RESULT_SUCCESS);
    EXPECT_EQ(Access(Aux(CTL_OPERATION_TYPE_WRITE, 0x5000, std::vector<uint8_t>(CTL_AUX_MAX_DATA_SIZE, 1))),
              CTL_RESULT_SUCCESS);
}

TEST_F(FakeControlLibChecks, PowerCapsOfAnotherSizeOrVersionAreRefused)
{
    Open();
    ctl_power_optimization_caps_t caps{};
    caps.SupportedFeatures = 0xEE;
    ExpectHeaderChecked("ctlGetPowerOptimizationCaps", ctlGetPowerOptimizationCaps, caps, 12);
    EXPECT_EQ(caps.SupportedFeatures, 0xEEu) << "a refused record is not filled";
}

TEST_F(FakeControlLibChecks, PowerSettingsOfAnotherSizeOrVersionAreRefused)
{
    Open();
    ExpectSettingsRefused([](auto& settings) { settings.Size = sizeof settings - 1; }, kInvalidArgument,
                          "Size 43, expected 44");
    ExpectSettingsRefused([](auto& settings) { settings.Version = 1; }, kUnsupportedVersion, "Version 1, expected 0");
    ExpectPanelUntouched();
}

TEST_F(FakeControlLibChecks, PowerSettingsOutsideTheirEnumerationsAreRefused)
{
    Open();
    ExpectSettingsRefused([](auto& settings) { settings.PowerSource = static_cast<ctl_power_source_t>(2); },
                          kInvalidArgument, "PowerSource 2 is neither AC nor DC");
    ExpectSettingsRefused(
        [](auto& settings) { settings.PowerOptimizationPlan = static_cast<ctl_power_optimization_plan_t>(3); },
        kInvalidArgument, "PowerOptimizationPlan 3 is unknown");
    for (const uint32_t feature : {0x0u, 0x6u, 0x20u}) {
        ExpectSettingsRefused([feature](auto& settings) { settings.PowerOptimizationFeature = feature; },
                              kInvalidArgument, "PowerOptimizationFeature 0x");
    }
    // A known feature that this driver does not implement is another matter.
    ExpectSettingsRefused([](auto& settings) { settings.PowerOptimizationFeature = CTL_POWER_OPTIMIZATION_FLAG_PSR; },
                          kUnsupportedFeature, "only DPST is implemented");
    ExpectPanelUntouched();
    // Every plan and both power sources are fine.
    for (const uint32_t plan : {0u, 1u, 2u}) {
        for (const uint32_t source : {0u, 1u}) {
            ctl_power_optimization_settings_t settings = Dpst();
            settings.PowerOptimizationPlan = static_cast<ctl_power_optimization_plan_t>(plan);
            settings.PowerSource = static_cast<ctl_power_source_t>(source);
            EXPECT_EQ(ctlGetPowerOptimizationSetting(Panel(), &settings), CTL_RESULT_SUCCESS) << plan << " " << source;
        }
    }
}

TEST_F(FakeControlLibChecks, SwitchRequestsWithUnknownBitsOrStrayBytesAreRefused)
{
    Open();
    ctl_power_optimization_settings_t settings = OpstOn();
    const uint8_t notABool = 2;
    std::memcpy(&settings.Enable, &notABool, 1);
    ExpectRefused("ctlSetPowerOptimizationSetting", ctlSetPowerOptimizationSetting(Panel(), &settings),
                  kInvalidArgument, "Enable 2 is not a bool");
    settings = OpstOn();
    settings.FeatureSpecificData.DPSTInfo.EnabledFeatures = CTL_POWER_OPTIMIZATION_DPST_FLAG_OPST | 0x80;
    ExpectRefused("ctlSetPowerOptimizationSetting", ctlSetPowerOptimizationSetting(Panel(), &settings),
                  kInvalidArgument, "EnabledFeatures 0x84 has unknown bits");
    settings = OpstOn();
    settings.FeatureSpecificData.LargestMember[4] = 1;
    ExpectRefused("ctlSetPowerOptimizationSetting", ctlSetPowerOptimizationSetting(Panel(), &settings),
                  kInvalidArgument, "FeatureSpecificData byte 16 past the DPST record is not zero");
    ExpectPanelUntouched();
}

TEST_F(FakeControlLibChecks, RefusalsAreLoggedWithTheirArgumentsAndNothingElseIsRefused)
{
    Open();
    ctl_aux_access_args_t args = Write();
    args.PortID = 1;
    ASSERT_EQ(static_cast<uint32_t>(Access(args)), kInvalidArgument);
    ASSERT_EQ(Access(Write()), CTL_RESULT_SUCCESS);
    const auto calls = Calls("ctlAUXAccess");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["adapter"].GetUint(), 1u);
    EXPECT_EQ(calls[0]["address"].GetUint(), 0x4056u);
    EXPECT_STREQ(calls[0]["refused"].GetString(), "PortID 1 is not zero");
    EXPECT_FALSE(calls[1].Refused());
    EXPECT_EQ(Intel::ReadRegisters(1, 0, 0x4056, 1), (std::vector<uint8_t>{0x5A}));
}

// Every Intel command of the service, on a panel with OPST: not one record is refused.
TEST_F(FakeControlLibChecks, EveryRecordTheServiceSendsIsAccepted)
{
    LumavenTest::InstallProfile(LumavenSim::Profile::IntelLaptop(
        LumavenSim::Panels::kSdc4174,
        {{.outputs = {{.attached = true, .dpstSupported = true, .opstSupported = true, .dpstEnabled = 0}}}}));
    auto service = std::make_unique<LumavenService>();
    service->startup_task();
    ASSERT_EQ(service->m_videoController, kVendorIntel);
    LumavenSim::ClearTransactions();
    for (const uint32_t command : {8u, 2u, 1u, 3u, 5u, 6u}) {
        const auto result = XeltoClient::RunCommand(*service, command, L"{}");
        EXPECT_EQ(result.status, 0u) << command;
        EXPECT_EQ(result.response, L"{\"result\":true}") << command;
    }
    service.reset();
    size_t checked = 0;
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        ASSERT_TRUE(record.Has("call"));
        EXPECT_FALSE(record.Refused()) << record.Call() << " refused: " << record.Refusal();
        ++checked;
    }
    for (const char* function : {"ctlInit", "ctlGetDisplayProperties", "ctlAUXAccess", "ctlGetPowerOptimizationCaps",
                                 "ctlGetPowerOptimizationSetting", "ctlSetPowerOptimizationSetting", "ctlClose"}) {
        EXPECT_FALSE(Calls(function).empty()) << function << " was never called";
    }
    EXPECT_GT(checked, 0u);
}
