// Every entry point of the service, as the suites that run each of them on both shipped
// laptops list them.
#pragma once

#include "EntryRun.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>

namespace LumavenOsFaults {

struct EntryPoint {
    const char* name;
    Entry kind;
    uint32_t command = 0;
    const wchar_t* request = L"{}";
};

inline const EntryPoint kEntryPoints[] = {
    {"factory", Entry::Factory},
    {"startup", Entry::Startup},
    {"cmd1", Entry::Command, 1},
    {"cmd2", Entry::Command, 2},
    {"cmd3", Entry::Command, 3},
    {"cmd4", Entry::Command, 4},
    {"cmd5", Entry::Command, 5},
    {"cmd6", Entry::Command, 6},
    {"cmd7", Entry::Command, 7},
    {"cmd8", Entry::Command, 8},
    {"cmd9", Entry::Command, 9, L"{\"BValue\":true}"},
    {"cmd10", Entry::Command, 10},
    {"cmd11", Entry::Command, 11},
    {"cmd12", Entry::Command, 12},
    {"cmd13", Entry::Command, 13},
    {"cmd14", Entry::Command, 14, L"{\"BValue\":true}"},
    {"event", Entry::Event},
};

// Each entry point on the Intel and the AMD laptop, by the name of the shipped profile.
using OnLaptop = std::tuple<const char*, EntryPoint>;
inline const auto kOnShippedLaptops =
    ::testing::Combine(::testing::Values("intel-laptop", "amd-laptop"), ::testing::ValuesIn(kEntryPoints));

inline bool OnAmd(const char* laptop)
{
    return std::string(laptop).find("amd") != std::string::npos;
}

// A service ready for the entry point; for the event, with power saving stored on, the only
// state in which the event re-writes the panel.
inline std::unique_ptr<LumavenTest::HostedService> PreparedFor(const EntryPoint& entry)
{
    std::unique_ptr<LumavenTest::HostedService> hosted = Prepared(entry.kind);
    if (entry.kind == Entry::Event) {
        EXPECT_EQ(hosted->Run(9, L"{\"BValue\":true}").status, 0u);
    }
    return hosted;
}

// "Amd_cmd9", "Intel_event".
inline std::string NameOnLaptop(const ::testing::TestParamInfo<OnLaptop>& info)
{
    return std::string(OnAmd(std::get<0>(info.param)) ? "Amd_" : "Intel_") + std::get<1>(info.param).name;
}

}  // namespace LumavenOsFaults
