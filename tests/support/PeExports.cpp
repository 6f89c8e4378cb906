#include "PeExports.h"

#include <windows.h>

#include <cstring>
#include <fstream>
#include <iterator>

namespace LumavenTest {

namespace {

template <class T>
bool ReadAt(const std::vector<char>& file, size_t offset, T& out)
{
    if (offset + sizeof(T) > file.size()) {
        return false;
    }
    std::memcpy(&out, file.data() + offset, sizeof(T));
    return true;
}

// Maps a relative virtual address to a file offset through the section table.
bool RvaToOffset(const std::vector<char>& file, size_t sections, unsigned count, DWORD rva, size_t& offset)
{
    for (unsigned i = 0; i < count; ++i) {
        IMAGE_SECTION_HEADER section;
        if (!ReadAt(file, sections + i * sizeof(IMAGE_SECTION_HEADER), section)) {
            return false;
        }
        const DWORD size = std::max(section.Misc.VirtualSize, section.SizeOfRawData);
        if (rva >= section.VirtualAddress && rva < section.VirtualAddress + size) {
            offset = rva - section.VirtualAddress + section.PointerToRawData;
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<std::string> ExportedNames(const std::wstring& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    const std::vector<char> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS64 nt;
    if (!ReadAt(file, 0, dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || !ReadAt(file, dos.e_lfanew, nt) ||
        nt.Signature != IMAGE_NT_SIGNATURE || nt.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
        return {};
    }
    const size_t sections = dos.e_lfanew + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + nt.FileHeader.SizeOfOptionalHeader;
    const unsigned count = nt.FileHeader.NumberOfSections;
    const IMAGE_DATA_DIRECTORY& directory = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    size_t exportOffset = 0;
    IMAGE_EXPORT_DIRECTORY exports;
    if (directory.VirtualAddress == 0 || !RvaToOffset(file, sections, count, directory.VirtualAddress, exportOffset) ||
        !ReadAt(file, exportOffset, exports)) {
        return {};
    }
    size_t namesOffset = 0;
    if (!RvaToOffset(file, sections, count, exports.AddressOfNames, namesOffset)) {
        return {};
    }
    std::vector<std::string> names;
    for (DWORD i = 0; i < exports.NumberOfNames; ++i) {
        DWORD nameRva = 0;
        size_t nameOffset = 0;
        if (!ReadAt(file, namesOffset + i * sizeof(DWORD), nameRva) ||
            !RvaToOffset(file, sections, count, nameRva, nameOffset)) {
            return {};
        }
        names.emplace_back(file.data() + nameOffset, strnlen(file.data() + nameOffset, file.size() - nameOffset));
    }
    return names;
}

}  // namespace LumavenTest
