// The hooks and the OS fault table cover the DLL's import list as the built file states it:
// every function that LumavenService.dll imports either has a hook (so that a test can fail
// it) and a row of the table that fails it, or is named below with the reason it has neither.
// A new import without a hook and a row fails this test.
#include "ImportHooks.h"
#include "OsFaultTable.h"
#include "PeFile.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <set>
#include <string>

namespace {

using namespace LumavenOsFaults;
using LumavenTest::ImportedName;

// Imports without a hook, by library, each group with its reason.
struct Unhooked {
    const char* library;
    std::set<std::string> functions;
    const char* reason;
};

const Unhooked kUnhooked[] = {
    {"KERNEL32.dll",
     {"AddVectoredExceptionHandler",
      "RemoveVectoredExceptionHandler",
      "RaiseException",
      "RtlCaptureContext",
      "RtlLookupFunctionEntry",
      "RtlUnwindEx",
      "RtlVirtualUnwind",
      "__C_specific_handler",
      "SetUnhandledExceptionFilter",
      "VirtualProtect",
      "VirtualQuery",
      "IsDebuggerPresent",
      "OutputDebugStringA",
      "FormatMessageA",
      "LocalFree",
      "MultiByteToWideChar",
      "WideCharToMultiByte",
      "IsDBCSLeadByteEx",
      "GetStartupInfoA",
      "TerminateProcess",
      "UnhandledExceptionFilter"},
     "the C and C++ runtime linked into the DLL: exception unwinding, relocation at load, messages of "
     "std::system_error; none is called by the service's own code"},
    {"KERNEL32.dll",
     {"CloseHandle",
      "CreateEventA",
      "CreateSemaphoreA",
      "DeleteCriticalSection",
      "DuplicateHandle",
      "EnterCriticalSection",
      "FileTimeToSystemTime",
      "GetCurrentProcess",
      "GetCurrentProcessId",
      "GetCurrentThread",
      "GetCurrentThreadId",
      "GetHandleInformation",
      "GetLastError",
      "GetModuleHandleA",
      "GetModuleHandleW",
      "GetProcessAffinityMask",
      "GetProcessTimes",
      "GetSystemTimeAdjustment",
      "GetSystemTimeAsFileTime",
      "GetThreadContext",
      "GetThreadPriority",
      "GetThreadTimes",
      "GetTickCount64",
      "InitializeCriticalSection",
      "LeaveCriticalSection",
      "OpenProcess",
      "QueryPerformanceCounter",
      "QueryPerformanceFrequency",
      "ReleaseSemaphore",
      "ResetEvent",
      "ResumeThread",
      "SetEvent",
      "SetLastError",
      "SetProcessAffinityMask",
      "SetSystemTime",
      "SetThreadContext",
      "SetThreadPriority",
      "SuspendThread",
      "TlsAlloc",
      "TlsFree",
      "TlsGetValue",
      "TlsSetValue",
      "TryEnterCriticalSection",
      "WaitForMultipleObjects",
      "WaitForSingleObject",
      "Sleep",
      "SleepEx",
      "GetSystemInfo",
      "InitializeCriticalSectionAndSpinCount",
      "CreateEventW",
      "CreateSemaphoreW",
      "GetModuleFileNameW"},
     "the threads library linked into the DLL (std::mutex, std::timed_mutex, thread-local storage): its failures "
     "reach the service as std::system_error, which the out-of-memory loop makes happen; Sleep has a hook for "
     "the loops' sake, counted, since it cannot fail"},
    {"msvcrt.dll",
     {"___lc_codepage_func",
      "___mb_cur_max_func",
      "__iob_func",
      "_amsg_exit",
      "_beginthreadex",
      "_endthreadex",
      "_errno",
      "_initterm",
      "_lock",
      "_setjmp",
      "_vsnwprintf",
      "_ultoa",
      "_unlock",
      "abort",
      "exit",
      "fprintf",
      "fputc",
      "fputs",
      "fwrite",
      "localeconv",
      "memchr",
      "memcmp",
      "memcpy",
      "memmove",
      "memset",
      "printf",
      "signal",
      "strcmp",
      "strerror",
      "strlen",
      "strncmp",
      "vfprintf",
      "wcscpy_s",
      "wcslen",
      "wcsncpy_s",
      "longjmp",
      "_read",
      "_close",
      "wcsnlen",
      "strnlen",
      "_onexit",
      "__dllonexit",
      "__setusermatherr",
      "calloc_crt",
      "_fmode",
      "__set_app_type",
      "__getmainargs",
      "_cexit",
      "_commode",
      "fflush",
      "setvbuf",
      "_iob",
      "_crt_atexit",
      "wcscmp",
      "wcsstr",
      "_wcsicmp",
      "_stricmp"},
     "the C runtime's string, memory, formatting and start-up functions: they cannot fail, or fail only on the "
     "caller's error"},
    {"msvcrt.dll",
     {"_assert", "_vsnprintf", "fgetwc", "getc", "getenv", "isspace", "sprintf", "strstr", "strtoul"},
     "a Debug build's runtime: assert() and libstdc++'s checks, and the runtime's own start-up reading; none is "
     "called by the service's own code"},
    {"ADVAPI32.dll",
     {"CryptAcquireContextA", "CryptGenRandom", "CryptReleaseContext"},
     "the stack protector's guard value (GCC's libssp, cmake/Hardening.cmake), drawn once as the DLL loads, "
     "before any of the service's code runs; the service's own code calls none"},
    {"msvcrt.dll",
     {"_exit", "_open", "_write"},
     "the stack protector's report of an overwritten guard (libssp): it writes the message and ends the "
     "process, and is reached only when a stack buffer has been overrun"},
    {"msvcrt.dll",
     {"_access", "_fdopen", "_getpid", "_locking", "_mkdir", "atoi", "fclose", "fopen", "fread", "fseek", "strcat",
      "strchr"},
     "gcov's runtime in the Debug tree (built with --coverage): it writes the counters into their files as the "
     "DLL unloads; the service's own code calls none"},
    {"XeltoLog.dll",
     {"_ZN10LogManager11SetProviderEPKc", "_ZN10LogManager9GetLoggerEv", "_ZN11TraceLogger10LogWarningE11LoggingDataz",
      "_ZN11TraceLogger7LogInfoEPKwz", "_ZN11TraceLogger8LogErrorE11LoggingDataz", "_ZN11TraceLogger8LogErrorEPKcz",
      "_ZN11TraceLogger8LogErrorEPKwz"},
     "the host's logging library: writing a record returns nothing and never throws"},
};

// Hooked imports that no row of the table fails, each with its reason.
struct Unfailed {
    std::set<std::string> functions;
    const char* reason;
};

const Unfailed kUnfailed[] = {
    {{"malloc", "calloc", "realloc", "_strdup"},
     "the allocation functions: the out-of-memory loop fails each call of every entry point in turn"},
    {{"free"}, "returns nothing; every row and every out-of-memory run counts the blocks it leaves"},
    {{"Sleep"}, "returns nothing and cannot fail; the rows skip it, so that the display-on re-write does not wait"},
    {{"SysStringLen"}, "answers a string's length and has no failure to report"},
};

bool HasRow(const std::string& function)
{
    const std::vector<LumavenOsFaults::OsFaultRow>& rows = LumavenOsFaults::OsFaultTable();
    return std::any_of(rows.begin(), rows.end(),
                       [&function](const LumavenOsFaults::OsFaultRow& row) { return function == row.function; });
}

bool HasReasonNotToFail(const std::string& function)
{
    return std::any_of(std::begin(kUnfailed), std::end(kUnfailed),
                       [&function](const auto& group) { return group.functions.count(function) != 0; });
}

bool SameLibrary(const std::string& a, const char* b)
{
    return _stricmp(a.c_str(), b) == 0;
}

const char* ReasonFor(const ImportedName& import)
{
    for (const Unhooked& group : kUnhooked) {
        if (SameLibrary(import.library, group.library) && group.functions.count(import.function) != 0) {
            return group.reason;
        }
    }
    return nullptr;
}

TEST(ImportCoverage, EveryImportOfTheDllHasAHookOrAReason)
{
    const std::vector<ImportedName> imports =
        LumavenTest::ImportedNames(LumavenTest::ExecutableDirectory() + L"\\LumavenService.dll");
    ASSERT_GT(imports.size(), 50u) << "the DLL's import list could not be read";
    size_t hooked = 0;
    for (const ImportedName& import : imports) {
        const Hook* hook = FindHook(import.function);
        if (hook != nullptr && SameLibrary(import.library, hook->Library())) {
            ++hooked;
            EXPECT_TRUE(HasRow(import.function) || HasReasonNotToFail(import.function))
                << import.library << "!" << import.function
                << ": a hooked import needs a row that fails it (tests/osfaults/OsFaultTable.cpp) or a reason here";
            continue;
        }
        EXPECT_NE(ReasonFor(import), nullptr) << import.library << "!" << import.function
                                              << ": a new import needs a hook (tests/osfaults/ImportHooks.cpp) "
                                              << "or a reason here";
    }
    std::printf("[imports] %zu imported functions, %zu with a hook\n", imports.size(), hooked);
}

TEST(ImportCoverage, EveryRowOfTheTableFailsAHookedFunction)
{
    size_t rows = 0;
    std::set<std::string> functions;
    for (const LumavenOsFaults::OsFaultRow& row : LumavenOsFaults::OsFaultTable()) {
        EXPECT_NE(FindHook(row.function), nullptr) << row.function << ": a row for a function without a hook";
        ++rows;
        functions.insert(row.function);
    }
    std::printf("[os-fault-table] %zu rows over %zu functions\n", rows, functions.size());
}

TEST(ImportCoverage, EveryHookOfAnImportIsPatchedIntoTheLoadedDll)
{
    const std::vector<ImportedName> imports =
        LumavenTest::ImportedNames(LumavenTest::ExecutableDirectory() + L"\\LumavenService.dll");
    const HMODULE module = LoadLibraryW(L"LumavenService.dll");
    ASSERT_NE(module, nullptr);
    {
        const PatchedImports patch(module);
        const std::set<std::string> patched(patch.Patched().begin(), patch.Patched().end());
        for (const Hook* hook : AllHooks()) {
            const bool imported = std::any_of(imports.begin(), imports.end(), [hook](const ImportedName& import) {
                return import.function == hook->Function() && SameLibrary(import.library, hook->Library());
            });
            if (!imported) {
                // The COM methods are reached through the objects the DLL receives.
                EXPECT_NE(std::string(hook->Function()).find("::"), std::string::npos)
                    << hook->Function() << ": a hook of a function the DLL does not import";
                continue;
            }
            const std::string suffix = std::string("!") + hook->Function();
            const bool found = std::any_of(patched.begin(), patched.end(), [&suffix](const std::string& name) {
                return name.size() > suffix.size() &&
                       name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
            });
            EXPECT_TRUE(found) << hook->Function() << " was not patched";
        }
    }
    FreeLibrary(module);
}

}  // namespace
