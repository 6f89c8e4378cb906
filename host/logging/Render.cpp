#include "Render.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>

namespace Xelto::Logging {

namespace {

// Records longer than this are cut; a log line of a megabyte is a bug elsewhere.
constexpr size_t kMaxRecordChars = 1 << 20;

}  // namespace

std::wstring RenderWide(const wchar_t* format, va_list args)
{
    if (format == nullptr) {
        return {};
    }
    // _vsnwprintf is the C runtime's own formatter: it keeps %s wide and %S narrow in a
    // wide format, which the ISO vswprintf of MinGW's C++ mode does not. Most records fit
    // the stack buffer; longer ones grow on the heap.
    wchar_t local[512];
    va_list first{};
    va_copy(first, args);
    const int fitted = _vsnwprintf(local, std::size(local), format, first);
    va_end(first);
    if (fitted >= 0 && static_cast<size_t>(fitted) < std::size(local)) {
        return std::wstring(local, static_cast<size_t>(fitted));
    }
    std::wstring text(std::size(local) * 4, L'\0');
    for (;;) {
        va_list attempt{};
        va_copy(attempt, args);
        const int written = _vsnwprintf(text.data(), text.size(), format, attempt);
        va_end(attempt);
        if (written >= 0 && static_cast<size_t>(written) < text.size()) {
            text.resize(static_cast<size_t>(written));
            return text;
        }
        if (text.size() >= kMaxRecordChars) {
            text.resize(kMaxRecordChars);
            return text;
        }
        text.resize(text.size() * 2);
    }
}

std::wstring RenderNarrow(const char* format, va_list args)
{
    if (format == nullptr) {
        return {};
    }
    // A format the code page cannot convert (length 0) stays one terminator: an empty record.
    const int length = MultiByteToWideChar(CP_ACP, 0, format, -1, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(length, 1)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, format, -1, wide.data(), length);
    return RenderWide(wide.c_str(), args);
}

}  // namespace Xelto::Logging
