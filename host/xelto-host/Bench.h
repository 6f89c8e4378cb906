// xelto-host bench: times commands on the running service against the bare work they cannot
// avoid, measured in the same run, and prints medians and ratios.
#pragma once

#include "ServiceHost.h"

#include <string>

namespace XeltoHost {

// `only`, when not empty, picks the rows whose name starts with it and a blank: a command
// number, "event" or "start-up".
int RunBench(ServiceHost& host, unsigned rounds, const std::wstring& only);

}  // namespace XeltoHost
