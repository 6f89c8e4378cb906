// Reads a PE file from disk, the way a linker, a loader or a debugger sees it: the names it
// exports and the debug record that names its PDB; and the identity of a PDB.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LumavenTest {

// The names in the export directory, in the file's (sorted) order; empty when the file
// cannot be read or has no export directory.
std::vector<std::string> ExportedNames(const std::wstring& path);

// One import by name: the library as the file names it ("ADVAPI32.dll") and the function.
struct ImportedName {
    std::string library;
    std::string function;
};

// The functions the file imports by name, library by library in the file's order; empty when
// the file cannot be read or imports nothing.
std::vector<ImportedName> ImportedNames(const std::wstring& path);

// A CodeView (RSDS) record of the debug directory: the PDB's identity and the path the
// linker wrote for it. A debugger takes the PDB only when its GUID and age are these.
struct CodeViewRecord {
    std::array<uint8_t, 16> guid{};
    uint32_t age = 0;
    std::string pdbPath;
};

// The file's CodeView record; none when the file cannot be read or its debug directory holds
// no RSDS record.
std::optional<CodeViewRecord> ReadCodeViewRecord(const std::wstring& path);

// The identity a PDB holds in its info stream: what a debugger compares with the binary's
// CodeView record.
struct PdbIdentity {
    std::array<uint8_t, 16> guid{};
    uint32_t age = 0;
};

// The identity of the PDB file at `path`; none when it is not an MSF 7.00 PDB or is cut short.
std::optional<PdbIdentity> ReadPdbIdentity(const std::wstring& path);

}  // namespace LumavenTest
