// A DLL built on purpose without the hardening every shipped binary has (tests/release/
// CMakeLists.txt strips its flags), so that the binary check shows it can fail each rule it
// is expected to: no stack protection, no ASLR or high-entropy VA, no NX, a section both
// writable and executable, no version resource, the build machine's path inside and the
// link's time in its header.
#include <cstring>

// Writable and executable at once: what a careless JIT buffer or a hand-made section gives.
__asm__(".section .wxprobe,\"wx\"\n"
        ".byte 0xc3\n"
        ".text\n");

// __FILE__ without the build's prefix map is the source's absolute path.
extern "C" __declspec(dllexport) const char* ProbeSourceFile()
{
    return __FILE__;
}

// A local array whose address escapes: what stack protection would guard.
extern "C" __declspec(dllexport) unsigned ProbeCopy(const char* text, char* out)
{
    char buffer[64];
    std::strncpy(buffer, text, sizeof(buffer) - 1);
    buffer[sizeof(buffer) - 1] = '\0';
    std::memcpy(out, buffer, sizeof(buffer));
    return static_cast<unsigned>(std::strlen(buffer));
}
