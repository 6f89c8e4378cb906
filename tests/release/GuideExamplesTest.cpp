// The integration guide's Windows examples, run as the guide shows them. The command examples
// (```cmd blocks: "> " lines are commands, run in the install tree's bin folder as a host
// vendor would run them from the unpacked package; the lines after one are its output, where
// a line "..." stands for any number of lines) are run in order on a clean simulated machine.
// The guide's C++ host code (```cpp blocks) is compiled into this program and run here. The
// guide's Linux walkthrough of the simulated laptop (```sh blocks) is run from the zip itself,
// in a new Wine prefix, by guide-walkthrough.py.
#include "ProcessRunner.h"
#include "Registry.h"
#include "ReleaseTree.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// The guide's host code.
bool AskService(const wchar_t* dllPath, uint32_t command, const wchar_t* request, uint32_t& status,
                std::wstring& response);

namespace {

using LumavenTest::InstallTree;

struct Example {
    int line = 0;  // in the guide
    std::string command;
    std::vector<std::string> expected;
};

std::vector<Example> ReadExamples(const std::wstring& guidePath)
{
    std::ifstream in(guidePath.c_str());
    EXPECT_TRUE(in.good()) << "cannot read the installed guide " << testing::PrintToString(guidePath);
    std::vector<Example> examples;
    bool inBlock = false;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!inBlock) {
            inBlock = line == "```cmd";
            continue;
        }
        if (line == "```") {
            inBlock = false;
        } else if (line.rfind("> ", 0) == 0) {
            examples.push_back({number, line.substr(2), {}});
        } else if (examples.empty()) {
            ADD_FAILURE() << "guide line " << number << ": output before the first command";
        } else {
            examples.back().expected.push_back(line);
        }
    }
    EXPECT_FALSE(inBlock) << "the guide ends inside a ```cmd block";
    return examples;
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(LumavenTest::WithoutCarriageReturns(text));
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// `expected` against `actual`, where an expected line "..." matches any number of lines.
bool Matches(const std::vector<std::string>& expected, size_t e, const std::vector<std::string>& actual, size_t a)
{
    if (e == expected.size()) {
        return a == actual.size();
    }
    if (expected[e] == "...") {
        for (size_t skip = a; skip <= actual.size(); ++skip) {
            if (Matches(expected, e + 1, actual, skip)) {
                return true;
            }
        }
        return false;
    }
    return a < actual.size() && expected[e] == actual[a] && Matches(expected, e + 1, actual, a + 1);
}

std::string Joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

// The program a command line names, as cmd.exe finds it: relative to the current folder,
// ".exe" added when the name has no extension.
std::wstring ProgramPath(const std::wstring& folder, const std::string& command)
{
    std::string program = command.substr(0, command.find(' '));
    const size_t nameStart = program.find_last_of('\\') + 1;  // 0 when there is no folder
    if (program.find('.', nameStart) == std::string::npos) {
        program += ".exe";
    }
    return folder + L"\\" + std::wstring(program.begin(), program.end());
}

TEST(GuideExamples, CommandLinesPrintWhatTheGuideShows)
{
    const std::wstring bin = InstallTree() + L"\\bin";
    const std::vector<Example> examples = ReadExamples(InstallTree() + L"\\share\\lumaven\\integration.md");
    // The guide shows at least `xelto-host --version`; none found means its blocks were not
    // recognised.
    ASSERT_GE(examples.size(), 1u);
    // The examples start from a machine where "OLED" was never stored.
    LumavenTest::DeleteSettingsKey();
    for (const Example& example : examples) {
        const std::wstring commandLine(example.command.begin(), example.command.end());
        const auto result = LumavenTest::RunProgramIn(bin, ProgramPath(bin, example.command), commandLine);
        const std::vector<std::string> actual = Lines(result.output);
        EXPECT_TRUE(Matches(example.expected, 0, actual, 0))
            << "guide line " << example.line << ": > " << example.command << "\nexpected:\n"
            << Joined(example.expected) << "got:\n"
            << Joined(actual);
    }
}

TEST(GuideExamples, HostCodeAsksTheInstalledService)
{
    const std::wstring dll = InstallTree() + L"\\bin\\LumavenService.dll";
    LumavenTest::InstallShippedProfile("intel-laptop");
    LumavenTest::SetOledDword(1);
    uint32_t status = ~0u;
    std::wstring response;
    ASSERT_TRUE(AskService(dll.c_str(), 7, L"{}", status, response));
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(response, L"{\"result\":1}");

    LumavenTest::InstallShippedProfile("desktop");
    EXPECT_FALSE(AskService(dll.c_str(), 7, L"{}", status, response)) << "the factory must refuse a desktop";
}

}  // namespace
