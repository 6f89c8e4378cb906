// The benchmark's table: times every command (1 to 14 and an unsupported number), a display-power
// event and the start-up on the running service against the bare work each cannot avoid
// (bench/CommandFloors.h), measured in the same run, and prints a row each: both medians and
// the median ratio of the paired rounds.
#pragma once

#include "XeltoClient.h"

#include <string>

namespace LumavenBench {

// `only`, when not empty, picks the rows whose name starts with it and a blank: a command
// number, "event" or "start-up".
int RunBench(XeltoClient::LoadedService& host, unsigned rounds, const std::wstring& only);

}  // namespace LumavenBench
