// The simulated GPU: a profile whose fake dxgi.dll reports one adapter with the given name,
// which Wine's WMI then shows as the machine's video controller.
#pragma once

#include "SimMachine.h"

#include <string>
#include <vector>

namespace LumavenTest {

inline Profile::Machine GpuProfile(const std::string& gpuName, std::vector<Profile::Fault> faults = {})
{
    return {.gpuName = gpuName, .libraries = {{"dxgi.dll", "dxgi.dll"}}, .faults = std::move(faults)};
}

inline void InstallGpu(const std::string& gpuName, std::vector<Profile::Fault> faults = {})
{
    InstallProfile(GpuProfile(gpuName, std::move(faults)));
}

// The descriptions the fake dxgi.dll handed out since the profile was installed, in order.
inline std::vector<std::string> DescribedAdapters()
{
    std::vector<std::string> descriptions;
    for (const auto& record :
         LumavenSim::TransactionLog::Read().Select({.lib = "dxgi.dll", .call = "IDXGIAdapter::GetDesc"})) {
        if (record.Has("description")) {
            descriptions.push_back(record.String("description"));
        }
    }
    return descriptions;
}

}  // namespace LumavenTest
