// One log record as a JSON line of the file sink.
#pragma once

#include "xelto/LogSink.h"

#include <string>

namespace Xelto::Logging {

std::string JsonLine(Level level, const std::string& provider, uint64_t context, const std::wstring& text);

}  // namespace Xelto::Logging
