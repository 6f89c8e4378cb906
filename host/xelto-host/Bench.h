// xelto-host bench: times commands on the running service against the bare work they cannot
// avoid, measured in the same run, and prints medians and ratios.
#pragma once

#include "ServiceHost.h"

namespace XeltoHost {

int RunBench(ServiceHost& host, unsigned rounds);

}  // namespace XeltoHost
