// The one place every record passes through: the provider name, the in-process sink and
// the JSON-lines file sink, under one lock so records keep their order.
#pragma once

#include "xelto/LogSink.h"

#include <string>

namespace Xelto::Logging {

void SetProviderName(const char* name);
// Whether a record would reach anyone: an in-process sink is set or XELTO_LOG_FILE names a
// file. Records nobody receives are not rendered.
bool AnyoneListening() noexcept;
// Delivers one rendered record; never throws.
void Publish(Level level, uint64_t context, const std::wstring& text) noexcept;

}  // namespace Xelto::Logging
