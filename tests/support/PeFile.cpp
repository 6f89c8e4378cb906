#include "PeFile.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
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

// The headers of a 64-bit PE file read whole into memory.
struct PeImage {
    std::vector<char> file;
    size_t sections = 0;
    unsigned count = 0;
    IMAGE_NT_HEADERS64 nt{};

    bool Load(const std::wstring& path)
    {
        std::ifstream in(path.c_str(), std::ios::binary);
        file.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        IMAGE_DOS_HEADER dos;
        if (!ReadAt(file, 0, dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || !ReadAt(file, dos.e_lfanew, nt) ||
            nt.Signature != IMAGE_NT_SIGNATURE || nt.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
            return false;
        }
        sections = dos.e_lfanew + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + nt.FileHeader.SizeOfOptionalHeader;
        count = nt.FileHeader.NumberOfSections;
        return true;
    }

    bool ToOffset(DWORD rva, size_t& offset) const { return RvaToOffset(file, sections, count, rva, offset); }

    // The file offset and size of data directory `index`; false when the file has none.
    bool Directory(unsigned index, size_t& offset, DWORD& size) const
    {
        const IMAGE_DATA_DIRECTORY& directory = nt.OptionalHeader.DataDirectory[index];
        size = directory.Size;
        return directory.VirtualAddress != 0 && ToOffset(directory.VirtualAddress, offset);
    }

    // The NUL-terminated text at file offset `at`, cut at the end of the file.
    std::string TextAt(size_t at) const
    {
        return std::string(file.data() + at, strnlen(file.data() + at, file.size() - at));
    }
};

// A PE file read whole, and where one of its data directories lies in it.
struct PeDirectory {
    PeImage image;
    size_t offset = 0;
    DWORD size = 0;
};

// Nothing when the file is not a 64-bit PE file or has no such directory.
std::optional<PeDirectory> LoadDirectory(const std::wstring& path, unsigned index)
{
    PeDirectory found;
    if (!found.image.Load(path) || !found.image.Directory(index, found.offset, found.size)) {
        return std::nullopt;
    }
    return found;
}

}  // namespace

std::vector<std::string> ExportedNames(const std::wstring& path)
{
    const auto found = LoadDirectory(path, IMAGE_DIRECTORY_ENTRY_EXPORT);
    IMAGE_EXPORT_DIRECTORY exports;
    size_t namesOffset = 0;
    if (!found || !ReadAt(found->image.file, found->offset, exports) ||
        !found->image.ToOffset(exports.AddressOfNames, namesOffset)) {
        return {};
    }
    const PeImage& image = found->image;
    std::vector<std::string> names;
    for (DWORD i = 0; i < exports.NumberOfNames; ++i) {
        DWORD nameRva = 0;
        size_t nameOffset = 0;
        if (!ReadAt(image.file, namesOffset + i * sizeof(DWORD), nameRva) || !image.ToOffset(nameRva, nameOffset)) {
            return {};
        }
        names.push_back(image.TextAt(nameOffset));
    }
    return names;
}

std::vector<ImportedName> ImportedNames(const std::wstring& path)
{
    const auto found = LoadDirectory(path, IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (!found) {
        return {};
    }
    const PeImage& image = found->image;
    std::vector<ImportedName> names;
    IMAGE_IMPORT_DESCRIPTOR descriptor;
    for (size_t entry = found->offset; ReadAt(image.file, entry, descriptor) && descriptor.Name != 0;
         entry += sizeof descriptor) {
        size_t libraryOffset = 0;
        size_t thunks = 0;
        const DWORD lookup = descriptor.OriginalFirstThunk != 0 ? descriptor.OriginalFirstThunk : descriptor.FirstThunk;
        if (!image.ToOffset(descriptor.Name, libraryOffset) || !image.ToOffset(lookup, thunks)) {
            return {};
        }
        const std::string library = image.TextAt(libraryOffset);
        uint64_t thunk = 0;
        for (size_t at = thunks; ReadAt(image.file, at, thunk) && thunk != 0; at += sizeof thunk) {
            size_t hintName = 0;
            if ((thunk & IMAGE_ORDINAL_FLAG64) != 0) {
                continue;  // by ordinal: no name to report
            }
            if (!image.ToOffset(static_cast<DWORD>(thunk), hintName)) {
                return {};
            }
            names.push_back({library, image.TextAt(hintName + sizeof(WORD))});
        }
    }
    return names;
}

std::optional<CodeViewRecord> ReadCodeViewRecord(const std::wstring& path)
{
    const auto found = LoadDirectory(path, IMAGE_DIRECTORY_ENTRY_DEBUG);
    if (!found) {
        return std::nullopt;
    }
    const std::vector<char>& file = found->image.file;
    for (size_t entry = 0; entry + sizeof(IMAGE_DEBUG_DIRECTORY) <= found->size;
         entry += sizeof(IMAGE_DEBUG_DIRECTORY)) {
        IMAGE_DEBUG_DIRECTORY debug;
        if (!ReadAt(file, found->offset + entry, debug)) {
            return std::nullopt;
        }
        // RSDS, the GUID, the age, then the PDB path up to its terminator.
        constexpr size_t kPathOffset = 4 + 16 + 4;
        const size_t record = debug.PointerToRawData;
        uint32_t signature = 0;
        if (debug.Type != IMAGE_DEBUG_TYPE_CODEVIEW || debug.SizeOfData <= kPathOffset ||
            record + debug.SizeOfData > file.size() || !ReadAt(file, record, signature) ||
            signature != 0x53445352) {  // "RSDS"
            continue;
        }
        CodeViewRecord codeView;
        std::memcpy(codeView.guid.data(), file.data() + record + 4, codeView.guid.size());
        ReadAt(file, record + 4 + 16, codeView.age);
        const char* pdbPath = file.data() + record + kPathOffset;
        codeView.pdbPath.assign(pdbPath, strnlen(pdbPath, debug.SizeOfData - kPathOffset));
        return codeView;
    }
    return std::nullopt;
}

// The MSF 7.00 container: a super block, then fixed-size blocks; the stream directory lists
// every stream's size and blocks, and its own blocks are listed in the block map.
std::optional<PdbIdentity> ReadPdbIdentity(const std::wstring& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    const std::vector<char> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    static constexpr char kMagic[] = "Microsoft C/C++ MSF 7.00\r\n\x1a"
                                     "DS\0\0";
    struct SuperBlock {
        char magic[32];
        uint32_t blockSize;
        uint32_t freeBlockMapBlock;
        uint32_t blockCount;
        uint32_t directoryBytes;
        uint32_t unknown;
        uint32_t blockMapAddress;
    } super{};
    if (!ReadAt(file, 0, super) || std::memcmp(super.magic, kMagic, sizeof(super.magic)) != 0 || super.blockSize == 0) {
        return std::nullopt;
    }
    const size_t blockSize = super.blockSize;
    // The stream directory, gathered from its blocks.
    std::vector<char> directory;
    const size_t directoryBlocks = (super.directoryBytes + blockSize - 1) / blockSize;
    for (size_t i = 0; i < directoryBlocks; ++i) {
        uint32_t block = 0;
        if (!ReadAt(file, super.blockMapAddress * blockSize + i * 4, block) || (block + 1) * blockSize > file.size()) {
            return std::nullopt;
        }
        directory.insert(directory.end(), file.begin() + block * blockSize, file.begin() + (block + 1) * blockSize);
    }
    uint32_t streams = 0;
    uint32_t infoSize = 0;
    if (!ReadAt(directory, 0, streams) || streams < 2 || !ReadAt(directory, 4 + 4, infoSize)) {
        return std::nullopt;
    }
    // Stream 1's first block follows the sizes and stream 0's block list.
    uint32_t streamZeroSize = 0;
    ReadAt(directory, 4, streamZeroSize);
    const size_t streamZeroBlocks = streamZeroSize == 0xFFFFFFFF ? 0 : (streamZeroSize + blockSize - 1) / blockSize;
    uint32_t infoBlock = 0;
    if (!ReadAt(directory, 4 + streams * 4 + streamZeroBlocks * 4, infoBlock)) {
        return std::nullopt;
    }
    // Version, signature (a time stamp), age, GUID.
    PdbIdentity identity;
    const size_t info = infoBlock * blockSize;
    if (infoSize < 28 || !ReadAt(file, info + 8, identity.age) || !ReadAt(file, info + 12, identity.guid)) {
        return std::nullopt;
    }
    return identity;
}

}  // namespace LumavenTest
