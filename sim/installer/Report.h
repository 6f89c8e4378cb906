// Short readable views of the simulated laptop for people: what the panels hold and which
// AUX transactions reached them.
#pragma once

#include <string>

namespace LumavenSim {

// The simulated drivers: Intel outputs with their OPST state and DPCD registers, AMD
// displays with their DPCD registers, and ADLX VariBright.
std::string DescribeDrivers();
// The transaction log, one line a call; with `auxOnly` just the panel AUX transactions.
std::string DescribeTransactions(bool auxOnly);

}  // namespace LumavenSim
