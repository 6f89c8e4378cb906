// Command 4: whether a supported panel is fitted, with the EDIDs read afresh each time.
#include "XeltoClient.h"
#include "SimMachine.h"

#include "service/LumavenService.h"

#include <gtest/gtest.h>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::InstallProfile;
using LumavenTest::MonitorsProfile;
namespace Panels = LumavenSim::Panels;
namespace Profile = LumavenSim::Profile;
using XeltoClient::RunCommand;

TEST(GetIfSystemSupportsOled, AnswersFromTheMonitorsPresentNow)
{
    LumavenService service;
    InstallProfile(MonitorsProfile({Panels::kSdc41AC}));
    EXPECT_EQ(RunCommand(service, 4).response, L"{\"result\":true}");
    InstallProfile(MonitorsProfile({Panels::kSdc4199}));
    const auto result = RunCommand(service, 4);
    EXPECT_EQ(result.status, StatusSuccess);
    EXPECT_EQ(result.response, L"{\"result\":false}");
    InstallProfile(MonitorsProfile({}));
    EXPECT_EQ(RunCommand(service, 4).response, L"{\"result\":false}");
}
