// The simulated Intel driver driven directly through the client layer, as the service drives
// it: a machine installed and a session opened on it, the handles of its adapters and outputs,
// and records filled the way the service fills them.
#pragma once

#include "ControlLibFixture.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace LumavenTest {

// Adapter 0 has no outputs; adapter 1 has an attached panel with OPST and a detached output
// whose panel lacks it.
inline Profile::Intel TwoAdapters()
{
    return {.adapters = {{.outputs = {}},
                         {.outputs = {{.attached = true,
                                       .dpcd = {{"404B", "7C84CC"}},
                                       .dpstSupported = true,
                                       .opstSupported = true,
                                       .dpstEnabled = 0},
                                      {.attached = false, .dpstSupported = true, .opstSupported = false}}}}};
}

class FakeControlLib : public ControlLibTest {
protected:
    // Installs the machine and opens a session on it.
    void Open(Profile::Intel intel = TwoAdapters(), std::vector<Profile::Fault> faults = {},
              std::vector<Profile::Count> counts = {})
    {
        InstallIntel("ControlLib.dll", std::move(intel), std::move(faults), std::move(counts));
        ASSERT_EQ(Init(&m_api), CTL_RESULT_SUCCESS);
        ASSERT_NE(m_api, nullptr);
    }

    // The number of adapters a call without an array reports.
    uint32_t DeviceCount()
    {
        uint32_t count = 0;
        EXPECT_EQ(ctlEnumerateDevices(m_api, &count, nullptr), CTL_RESULT_SUCCESS);
        return count;
    }

    // One call that fills an array with room for `room` adapters: what it answered, the count
    // it left and the array as it left it.
    struct DeviceFill {
        ctl_result_t result;
        uint32_t count;
        std::vector<ctl_device_adapter_handle_t> devices;
    };
    DeviceFill FillDevices(uint32_t room)
    {
        DeviceFill fill{CTL_RESULT_SUCCESS, room, std::vector<ctl_device_adapter_handle_t>(room)};
        fill.result = ctlEnumerateDevices(m_api, &fill.count, fill.devices.data());
        return fill;
    }

    std::vector<ctl_device_adapter_handle_t> Devices()
    {
        uint32_t count = DeviceCount();
        std::vector<ctl_device_adapter_handle_t> devices(count);
        EXPECT_EQ(ctlEnumerateDevices(m_api, &count, devices.data()), CTL_RESULT_SUCCESS);
        devices.resize(count);
        return devices;
    }

    std::vector<ctl_display_output_handle_t> Outputs(ctl_device_adapter_handle_t device)
    {
        uint32_t count = 0;
        EXPECT_EQ(ctlEnumerateDisplayOutputs(device, &count, nullptr), CTL_RESULT_SUCCESS);
        std::vector<ctl_display_output_handle_t> outputs(count);
        if (count > 0) {
            EXPECT_EQ(ctlEnumerateDisplayOutputs(device, &count, outputs.data()), CTL_RESULT_SUCCESS);
        }
        outputs.resize(count);
        return outputs;
    }

    // The attached panel's output (adapter 1, output 0) and the detached one (output 1).
    ctl_display_output_handle_t Panel(size_t output = 0)
    {
        const auto outputs = Outputs(Devices().at(1));
        return outputs.at(output);
    }

    static ctl_aux_access_args_t Aux(ctl_operation_type_t op, uint32_t address, std::vector<uint8_t> data)
    {
        ctl_aux_access_args_t args{};
        args.Size = sizeof args;
        args.OpType = op;
        args.Flags = CTL_AUX_FLAG_NATIVE_AUX;
        args.Address = address;
        args.DataSize = static_cast<uint32_t>(data.size());
        std::copy(data.begin(), data.end(), args.Data);
        return args;
    }

    static ctl_power_optimization_settings_t Dpst(bool enable = false, uint32_t features = 0)
    {
        ctl_power_optimization_settings_t settings{};
        settings.Size = sizeof settings;
        settings.PowerOptimizationFeature = CTL_POWER_OPTIMIZATION_FLAG_DPST;
        settings.Enable = enable;
        settings.FeatureSpecificData.DPSTInfo.EnabledFeatures = features;
        settings.PowerSource = CTL_POWER_SOURCE_DC;
        return settings;
    }

    static std::string Last(const std::string& function, const char* member)
    {
        const auto calls = Calls(function);
        if (calls.empty() || !calls.back().Has(member)) {
            return "(none)";
        }
        const rapidjson::Value& value = calls.back()[member];
        return value.IsString() ? value.GetString()
               : value.IsBool() ? (value.GetBool() ? "true" : "false")
                                : std::to_string(value.GetUint64());
    }

    static std::string ReadFile(const std::wstring& path)
    {
        std::ifstream in(path.c_str(), std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    }

    ctl_api_handle_t m_api = nullptr;
};

}  // namespace LumavenTest
