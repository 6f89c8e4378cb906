#include "ReleaseTree.h"

#include "SimMachine.h"

namespace LumavenTest {

std::wstring InstallTree()
{
    const std::wstring bin = ExecutableDirectory();
    return bin.substr(0, bin.find_last_of(L"\\/")) + L"\\install-tree";
}

std::string WithoutCarriageReturns(const std::string& text)
{
    std::string plain;
    for (const char c : text) {
        if (c != '\r') {
            plain += c;
        }
    }
    return plain;
}

}  // namespace LumavenTest
