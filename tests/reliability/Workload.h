// The operations a busy host sends: fuzzed requests (mostly cheap), well-formed commands
// that reach the vendor paths, and display-power notifications.
#pragma once

#include "Laptops.h"
#include "RequestFuzzer.h"
#include "Rng.h"

#include <cstdint>

namespace LumavenReliability {

struct Operation {
    bool isEvent = false;
    FuzzRequest request;  // a command
    GUID setting{};       // an event: the power setting
    uint8_t data = 0;     // ... and its first data byte
};

// Shares per 1,000 operations.
struct WorkloadMix {
    uint32_t fuzzed;
    uint32_t vendor;
    uint32_t events;
};

class Workload {
public:
    // `displayOnBudget` limits the display- and lid-on notifications (first byte 1), the only
    // ones that can make the service re-apply the panel state, which takes half a second;
    // beyond it they become unrelated settings with the same byte.
    Workload(uint64_t seed, WorkloadMix mix, uint64_t displayOnBudget);

    Operation Next();
    Operation NextCommand();
    Operation NextEvent();

private:
    RequestFuzzer m_fuzzer;
    Rng m_rng;
    WorkloadMix m_mix;
    uint64_t m_displayOnBudget;
};

bool IsDisplayOrLid(const GUID& setting);

}  // namespace LumavenReliability
