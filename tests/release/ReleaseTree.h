// Where the release tests find what they check: the build tree's binaries and the install
// tree that the install_tree fixture lays out with `cmake --install` beside the build tree's
// bin folder.
#pragma once

#include <string>

namespace LumavenTest {

// build\install-tree, as `cmake --install build --prefix build/install-tree` made it.
std::wstring InstallTree();

// A program's output with Windows line ends made plain.
std::string WithoutCarriageReturns(const std::string& text);

}  // namespace LumavenTest
