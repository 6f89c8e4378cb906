// The service loads and frees the Intel and ADL libraries on every call, so the simulated
// drivers must survive thousands of loads in one process: each load must give back what it
// takes, the TLS slots of its runtime included (sim/common/RuntimeTlsRelease.cpp).
#include "ProcessFigures.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

TEST(SimulatedDrivers, GiveBackTheirTlsSlotsWhenFreed)
{
    LumavenTest::InstallShippedProfile("amd-laptop");
    for (const wchar_t* file : {L"ControlLib.dll", L"atiadlxx.dll", L"amdadlx64.dll", L"dxgi.dll"}) {
        const std::wstring path = LumavenTest::ExecutableDirectory() + L"\\sim\\" + file;
        const uint32_t before = LumavenReliability::SampleProcess().tlsIndex;
        for (int i = 0; i < 20; ++i) {
            const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
            ASSERT_NE(module, nullptr) << "loading " << std::string(path.begin(), path.end());
            FreeLibrary(module);
        }
        EXPECT_EQ(LumavenReliability::SampleProcess().tlsIndex, before)
            << "20 loads of " << std::string(path.begin(), path.end()) << " kept TLS slots";
    }
}
