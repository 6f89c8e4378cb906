// A build that writes PDBs gives every DLL and EXE a CodeView record naming its PDB, and the
// PDB beside the binary is the one the record identifies, in the build tree and for the
// product in the install tree, so that a Windows debugger finds the symbols of a crash dump.
#include "PeFile.h"
#include "ReleaseTree.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using LumavenTest::CodeViewRecord;
using LumavenTest::PdbIdentity;

std::wstring Wide(const std::string& text)
{
    return std::wstring(text.begin(), text.end());
}

// The DLLs and EXEs in `folder` (not below it).
std::vector<std::wstring> Modules(const std::wstring& folder)
{
    std::vector<std::wstring> names;
    for (const wchar_t* pattern : {L"\\*.dll", L"\\*.exe"}) {
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((folder + pattern).c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) {
            continue;
        }
        do {
            names.push_back(found.cFileName);
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    return names;
}

// The binary `folder\name` names NAME-without-extension.pdb, by file name only (the debugger
// looks beside the binary; no path of the build machine is shipped), and that file beside it
// is the PDB the record identifies.
void ExpectPdbBeside(const std::wstring& folder, const std::wstring& name)
{
    SCOPED_TRACE(testing::PrintToString(folder + L"\\" + name));
    const std::optional<CodeViewRecord> record = LumavenTest::ReadCodeViewRecord(folder + L"\\" + name);
    ASSERT_TRUE(record.has_value()) << "no CodeView (RSDS) record in the debug directory";
    const std::wstring pdbName = name.substr(0, name.find_last_of(L'.')) + L".pdb";
    EXPECT_EQ(Wide(record->pdbPath), pdbName);
    const std::optional<PdbIdentity> pdb = LumavenTest::ReadPdbIdentity(folder + L"\\" + pdbName);
    ASSERT_TRUE(pdb.has_value()) << "no readable PDB beside the binary";
    EXPECT_EQ(pdb->guid, record->guid) << "the PDB beside the binary is not the one it was linked with";
    EXPECT_EQ(pdb->age, record->age);
}

class DebugSymbols : public testing::Test {
protected:
    void SetUp() override
    {
#ifndef LUMAVEN_TEST_PDB
        GTEST_SKIP() << "this build writes no PDBs (its debug information is DWARF)";
#endif
    }
};

TEST_F(DebugSymbols, EveryBuiltDllAndExeHasItsPdbBesideIt)
{
    const std::wstring bin = LumavenTest::ExecutableDirectory();
    size_t checked = 0;
    for (const std::wstring& folder : {bin, bin + L"\\sim"}) {
        for (const std::wstring& name : Modules(folder)) {
            ExpectPdbBeside(folder, name);
            ++checked;
        }
    }
    // The service, the logging library, the host, the installer, the fake drivers, the tests.
    EXPECT_GE(checked, 20u);
}

TEST_F(DebugSymbols, InstalledProductHasItsPdbsBesideIt)
{
    const std::wstring bin = LumavenTest::InstallTree() + L"\\bin";
    for (const wchar_t* name : {L"LumavenService.dll", L"XeltoLog.dll", L"xelto-host.exe"}) {
        ExpectPdbBeside(bin, name);
    }
}

}  // namespace
