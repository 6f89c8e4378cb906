// Renders a printf-style format with the Windows wide conventions (%s wide, %S narrow).
#pragma once

#include <cstdarg>
#include <string>

namespace Xelto::Logging {

std::wstring RenderWide(const wchar_t* format, va_list args);
// A narrow format is widened first, then rendered exactly like a wide one.
std::wstring RenderNarrow(const char* format, va_list args);

}  // namespace Xelto::Logging
