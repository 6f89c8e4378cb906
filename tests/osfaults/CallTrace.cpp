#include "CallTrace.h"

#include <objbase.h>

#include <atomic>
#include <cstdint>
#include <cwchar>
#include <mutex>

namespace LumavenOsFaults {

namespace {

// The DLL's threads and the test's thread reach the trace at once. Every hooked call asks
// whether the trace is on, so that question takes no lock.
struct Trace {
    std::mutex lock;
    std::atomic<bool> on = false;
    std::vector<std::wstring> calls;
};

Trace& TheTrace()
{
    static Trace trace;
    return trace;
}

}  // namespace

void TraceCalls(bool on)
{
    Trace& trace = TheTrace();
    const std::lock_guard guard(trace.lock);
    trace.on = on;
    trace.calls.clear();
}

std::vector<std::wstring> TracedCalls()
{
    Trace& trace = TheTrace();
    const std::lock_guard guard(trace.lock);
    return trace.calls;
}

namespace CallTrace {

bool On()
{
    return TheTrace().on;
}

void Add(std::wstring call)
{
    Trace& trace = TheTrace();
    const std::lock_guard guard(trace.lock);
    if (trace.on) {
        trace.calls.push_back(std::move(call));
    }
}

std::wstring Text(const wchar_t* text)
{
    return text != nullptr ? L"\"" + std::wstring(text) + L"\"" : L"null";
}

std::wstring Text(const char* text)
{
    if (text == nullptr) {
        return L"null";
    }
    // GetProcAddress takes an ordinal in the low word of the pointer in place of a name.
    const auto value = reinterpret_cast<uintptr_t>(text);
    if (value <= 0xFFFF) {
        return L"#" + std::to_wstring(value);
    }
    return L"\"" + std::wstring(text, text + std::strlen(text)) + L"\"";
}

std::wstring Text(CountedText counted)
{
    if (counted.text == nullptr) {
        return L"null";
    }
    std::wstring text = L"\"";
    const UINT length = SysStringLen(const_cast<BSTR>(counted.text));
    for (UINT i = 0; i < length; ++i) {
        text += counted.text[i] != L'\0' ? std::wstring(1, counted.text[i]) : std::wstring(L"\\0");
    }
    return text + L"\"";
}

std::wstring Text(const GUID& guid)
{
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return text;
}

std::wstring Text(HMODULE module)
{
    if (module == nullptr) {
        return L"null";
    }
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(module, path, MAX_PATH);
    const wchar_t* const slash = std::wcsrchr(path, L'\\');
    return slash != nullptr ? slash + 1 : path;
}

}  // namespace CallTrace

}  // namespace LumavenOsFaults
