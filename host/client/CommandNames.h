// The names hosts print and accept for command numbers, status codes and power events.
#pragma once

#include "XeltoClient.h"

#include <cstdint>
#include <optional>
#include <string>

namespace XeltoClient {

// "7", "GetOledFromRegistry" or "_GetOledFromRegistry" (any case) -> 7.
std::optional<uint32_t> ParseCommand(const std::wstring& text);
// The handler's name for commands 1..14, "unknown" otherwise.
const char* CommandName(uint32_t command);
// "StatusSuccess", ..., or "unknown status".
const char* StatusName(uint32_t status);

std::optional<PowerEvent> ParsePowerEvent(const std::wstring& text);

}  // namespace XeltoClient
