// What the simulated panels received, read from the fake drivers' transaction log: the AUX
// writes must form consecutive, complete sequences of the fitted panel's table entries, and
// the vendor sessions that carry them must never overlap.
#pragma once

#include "Laptops.h"
#include "TransactionLog.h"

#include <cstdint>
#include <string>
#include <vector>

namespace LumavenReliability {

struct AuxWrite {
    uint32_t address;
    std::string bytes;  // upper-case hex
    bool operator==(const AuxWrite&) const = default;
};

struct PanelSequences {
    std::vector<AuxWrite> on;
    std::vector<AuxWrite> off;
};

// The panel's two sequences as the panel table has them; empty for a panel it does not list.
PanelSequences SequencesOf(uint32_t panelId);

struct AuxTally {
    uint64_t onSequences = 0;
    uint64_t offSequences = 0;
    uint64_t sessions = 0;  // IGCL (ctlInit..ctlClose) or ADL (Create..Destroy) sessions
    uint64_t violations = 0;
    std::vector<std::string> firstViolations;

    void Violation(const std::string& what);
    std::string Figures() const;  // "aux-on=.. aux-off=.. sessions=.. aux-violations=.."
};

// Checks one stretch of the log taken while no command was running, and adds to `tally`.
void CheckAuxLog(const LumavenSim::TransactionLog& log, uint32_t panelId, AuxChannel channel, AuxTally& tally);

// Reads the log, checks it and clears it.
void CheckAndClearAuxLog(const Laptop& laptop, AuxTally& tally);

}  // namespace LumavenReliability
