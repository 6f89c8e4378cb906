// The calls LumavenService.dll makes through its patched imports and through the COM methods
// the hooks replace, in order, each written with the arguments it was made with, while a test
// has the trace on. It shows how the service asks the system, where a working system answers
// the same whatever the flags, counts or names were:
//   L"RegSetValueExW(ptr, \"OLED\", 0, 4, ptr, 4)"
// Texts are quoted (a BSTR by its length), modules named by their file, GUIDs written in braces, numbers in decimal;
// any other pointer is "ptr" or "null" (a buffer to be filled is not read).
#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace LumavenOsFaults {

// Starts (or stops) tracing, emptying the trace either way. DisarmAll stops it.
void TraceCalls(bool on);
std::vector<std::wstring> TracedCalls();

namespace CallTrace {

bool On();
void Add(std::wstring call);

std::wstring Text(const wchar_t* text);
// A procedure name, or the ordinal that stands in its place ("#7").
std::wstring Text(const char* text);
std::wstring Text(const GUID& guid);
std::wstring Text(HMODULE module);

// A BSTR: the system reads it by its length prefix, not up to a terminator, so every character
// the prefix counts is written, a NUL among them as \0 ("WQL\0" for a text that counts its own
// terminator).
struct CountedText {
    const wchar_t* text;
};
std::wstring Text(CountedText counted);

template <class T>
std::wstring Text(const T& value)
{
    if constexpr (std::is_pointer_v<T> || std::is_null_pointer_v<T>) {
        return value != nullptr ? L"ptr" : L"null";
    } else if constexpr (std::is_enum_v<T>) {
        return std::to_wstring(static_cast<long long>(value));
    } else if constexpr (std::is_integral_v<T>) {
        return std::to_wstring(value);
    } else {
        return L"?";
    }
}

template <class... Arguments>
void Record(const char* function, const Arguments&... arguments)
{
    if (!On()) {
        return;
    }
    std::wstring call(function, function + std::strlen(function));
    call += L'(';
    [[maybe_unused]] const wchar_t* separator = L"";  // unused for a call without arguments
    ((call += separator + Text(arguments), separator = L", "), ...);
    call += L')';
    Add(std::move(call));
}

}  // namespace CallTrace

}  // namespace LumavenOsFaults
