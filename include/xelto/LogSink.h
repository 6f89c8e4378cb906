// Sinks of the host logging library, for hosts and tests. Records always reach the sink set
// here (in the calling thread, in order) and, when the environment variable XELTO_LOG_FILE
// names a file, are appended to it as JSON lines:
//   {"level":"INFO|WARNING|ERROR","provider":...,"context":N,"text":...}
#pragma once

#include "xelto/Logging.h"

#include <cstdint>

namespace Xelto::Logging {

enum class Level : uint32_t { Info = 0, Warning = 1, Error = 2 };

// Receives one rendered record. `provider` is the name last given to SetProvider (UTF-8),
// `context` the record's context word (0 for formats without a LoggingData record).
using SinkFunction = void (*)(void* user, Level level, const char* provider, uint64_t context, const wchar_t* text);

// Installs the in-process sink (null removes it). Safe to call from any thread.
XELTOLOG_API void SetSink(SinkFunction sink, void* user);

// The level's name as the file sink writes it: "INFO", "WARNING" or "ERROR".
XELTOLOG_API const char* LevelName(Level level);

}  // namespace Xelto::Logging
