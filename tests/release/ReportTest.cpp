// xelto-host report: one JSON document with the versions, the service's vendor, the read-only
// queries and where the vendor libraries load from; it switches nothing and never writes
// the stored "OLED" value.
#include "ProcessRunner.h"
#include "Registry.h"
#include "ReleaseTree.h"
#include "SimMachine.h"

#include "Report.h"
#include "SimState.h"

#include <gtest/gtest.h>

#include "LumavenRapidJson.h"

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using LumavenTest::InstallShippedProfile;
using LumavenTest::RunProgram;

// What the simulated drivers hold (panel registers, OPST, VariBright), without the library
// load counters, which the report's own library probe moves.
std::string PanelState()
{
    std::istringstream lines(LumavenSim::DescribeDrivers());
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" times") == std::string::npos) {
            kept += line + "\n";
        }
    }
    return kept;
}

struct ReportRun {
    unsigned long exitCode = 0;
    std::string output;
    rapidjson::Document report;
};

ReportRun RunReport()
{
    ReportRun run;
    const auto result = RunProgram(L"xelto-host.exe report");
    run.exitCode = result.exitCode;
    run.output = LumavenTest::WithoutCarriageReturns(result.output);
    run.report.Parse(run.output.c_str());
    return run;
}

std::string Member(const rapidjson::Value& object, const char* name)
{
    if (!object.IsObject() || !object.HasMember(name)) {
        return "(missing)";
    }
    const rapidjson::Value& value = object[name];
    return value.IsString() ? value.GetString() : value.IsNull() ? "null" : "(not a string)";
}

const rapidjson::Value* Library(const rapidjson::Document& report, const char* name)
{
    for (const auto& library : report["libraries"].GetArray()) {
        if (Member(library, "name") == name) {
            return &library;
        }
    }
    return nullptr;
}

void ExpectLoadedFromSystem32(const rapidjson::Document& report, const char* name)
{
    const rapidjson::Value* library = Library(report, name);
    ASSERT_NE(library, nullptr) << name << " is not in the report";
    EXPECT_TRUE((*library)["loaded"].GetBool()) << name;
    const std::string path = Member(*library, "path");
    EXPECT_EQ(path, std::string("C:\\windows\\system32\\") + name);
}

void ExpectNotLoaded(const rapidjson::Document& report, const char* name)
{
    const rapidjson::Value* library = Library(report, name);
    ASSERT_NE(library, nullptr) << name << " is not in the report";
    EXPECT_FALSE((*library)["loaded"].GetBool()) << name;
    EXPECT_EQ(Member(*library, "path"), "null") << name;
    EXPECT_EQ((*library)["error"].GetUint(), 126u) << name << ": ERROR_MOD_NOT_FOUND expected";
}

struct Laptop {
    const char* profile;
    unsigned vendor;
    const char* vendorName;
    // The read-only queries' statuses and responses (compact JSON), in the order 4, 7, 8, 10, 13.
    std::vector<unsigned> statuses;
    std::vector<std::string> responses;
};

void PrintTo(const Laptop& laptop, std::ostream* out)
{
    *out << laptop.profile;
}

std::string Compact(const rapidjson::Value& value)
{
    if (value.IsNull()) {
        return "null";
    }
    std::string text = "{";
    for (auto member = value.MemberBegin(); member != value.MemberEnd(); ++member) {
        text += (text.size() > 1 ? ",\"" : "\"") + std::string(member->name.GetString()) + "\":";
        text += member->value.IsBool() ? (member->value.GetBool() ? "true" : "false")
                                       : std::to_string(member->value.GetInt());
    }
    return text + "}";
}

class FieldReport : public testing::TestWithParam<Laptop> {};

TEST_P(FieldReport, ReadsOnlyAndDescribesTheLaptop)
{
    const Laptop& laptop = GetParam();
    InstallShippedProfile(laptop.profile);
    // No stored value at all: any write of "OLED" by the report would leave one.
    LumavenTest::DeleteSettingsKey();
    LumavenSim::ClearTransactions();
    const std::string panelBefore = PanelState();

    const ReportRun run = RunReport();
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    ASSERT_FALSE(run.report.HasParseError()) << "not one JSON document:\n" << run.output;
    const rapidjson::Document& report = run.report;

    EXPECT_FALSE(LumavenTest::OledDword().has_value()) << "the report wrote \"OLED\"";
    EXPECT_EQ(PanelState(), panelBefore);
    EXPECT_EQ(LumavenSim::DescribeTransactions(true), "") << "the report wrote to the panel";

    EXPECT_EQ(Member(report["host"], "version"), LUMAVEN_TEST_VERSION);
    EXPECT_EQ(Member(report["service"], "version"), LUMAVEN_TEST_VERSION);
    EXPECT_TRUE(report["service"]["created"].GetBool());
    EXPECT_EQ(Member(report["service"], "reason"), "null");
    ASSERT_TRUE(report["graphicsVendor"].IsObject()) << run.output;
    EXPECT_EQ(report["graphicsVendor"]["id"].GetUint(), laptop.vendor);
    EXPECT_EQ(Member(report["graphicsVendor"], "name"), laptop.vendorName);
    EXPECT_EQ(Member(report, "panelId"), "null") << "the read-only commands log no panel identity";

    const std::vector<unsigned> expectedCommands = {4, 7, 8, 10, 13};
    ASSERT_EQ(report["queries"].Size(), expectedCommands.size()) << run.output;
    for (rapidjson::SizeType i = 0; i < report["queries"].Size(); ++i) {
        const rapidjson::Value& query = report["queries"][i];
        EXPECT_EQ(query["command"].GetUint(), expectedCommands[i]);
        EXPECT_EQ(query["status"].GetUint(), laptop.statuses[i]) << "command " << expectedCommands[i];
        EXPECT_EQ(Member(query, "statusName"), laptop.statuses[i] == 0 ? "StatusSuccess" : "StatusDeviceError");
        EXPECT_EQ(Compact(query["response"]), laptop.responses[i]) << "command " << expectedCommands[i];
    }

    if (laptop.vendor == 1) {
        ExpectLoadedFromSystem32(report, "ControlLib.dll");
        ExpectNotLoaded(report, "atiadlxx.dll");
        ExpectNotLoaded(report, "amdadlx64.dll");
    } else {
        ExpectNotLoaded(report, "ControlLib.dll");
        ExpectLoadedFromSystem32(report, "atiadlxx.dll");
        ExpectLoadedFromSystem32(report, "amdadlx64.dll");
    }
    EXPECT_GT(report["log"].Size(), 0u);
    EXPECT_EQ(Member(report["log"][0], "text"), "Opening startup_task in LumavenService\n");
}

INSTANTIATE_TEST_SUITE_P(Laptops, FieldReport,
                         testing::Values(Laptop{"intel-laptop",
                                                1,
                                                "Intel",
                                                {0, 0, 0, 0, 0},
                                                {"{\"result\":true}", "{\"result\":0}", "{\"result\":true}",
                                                 "{\"result\":true,\"result\":true}", "{\"result\":false}"}},
                                         // No Intel library: the OPST probe (8) cannot set up its session.
                                         Laptop{"amd-laptop",
                                                2,
                                                "AMD",
                                                {0, 0, 0x20000005, 0, 0},
                                                {"{\"result\":true}", "{\"result\":0}", "{}", "{\"result\":true}",
                                                 "{\"result\":true}"}}),
                         [](const testing::TestParamInfo<Laptop>& info) {
                             std::string name = info.param.profile;
                             name.erase(name.find('-'), 1);
                             return name;
                         });

TEST(FieldReportOnADesktop, SaysTheServiceWasNotCreated)
{
    InstallShippedProfile("desktop");
    const ReportRun run = RunReport();
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    ASSERT_FALSE(run.report.HasParseError()) << run.output;
    EXPECT_FALSE(run.report["service"]["created"].GetBool());
    EXPECT_EQ(Member(run.report["service"], "reason"),
              "the service is unavailable on this machine (XeltoCreateService returned null)");
    EXPECT_EQ(run.report["queries"].Size(), 0u);
    EXPECT_EQ(Member(run.report, "graphicsVendor"), "null");
    ASSERT_EQ(run.report["log"].Size(), 1u);
    EXPECT_EQ(Member(run.report["log"][0], "text"),
              "LumavenService cannot be initialized as it is running on unsupported platform");
}

}  // namespace
