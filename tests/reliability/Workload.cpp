#include "Workload.h"

#include <cstring>

namespace LumavenReliability {

bool IsDisplayOrLid(const GUID& setting)
{
    return std::memcmp(&setting, &kDisplayState, sizeof setting) == 0 ||
           std::memcmp(&setting, &kLidSwitch, sizeof setting) == 0;
}

Workload::Workload(uint64_t seed, WorkloadMix mix, uint64_t displayOnBudget)
    : m_fuzzer(DeriveSeed(seed, 1)), m_rng(DeriveSeed(seed, 2)), m_mix(mix), m_displayOnBudget(displayOnBudget)
{
}

Operation Workload::Next()
{
    const uint64_t draw = m_rng.Below(m_mix.fuzzed + m_mix.vendor + m_mix.events);
    if (draw < m_mix.events) {
        return NextEvent();
    }
    if (draw < m_mix.events + m_mix.vendor) {
        Operation operation;
        operation.request = m_fuzzer.Make(RequestShape::VendorPath);
        return operation;
    }
    return NextCommand();
}

Operation Workload::NextCommand()
{
    Operation operation;
    operation.request = m_fuzzer.Next();
    return operation;
}

Operation Workload::NextEvent()
{
    constexpr size_t kUnrelated = sizeof kUnrelatedSettings / sizeof kUnrelatedSettings[0];
    Operation operation;
    operation.isEvent = true;
    const uint64_t which = m_rng.Below(100);
    operation.setting = which < 35   ? kDisplayState
                        : which < 60 ? kLidSwitch
                                     : kUnrelatedSettings[m_rng.Below(kUnrelated)];
    const uint64_t data = m_rng.Below(100);
    operation.data = data < 45 ? 0 : data < 90 ? 1 : static_cast<uint8_t>(m_rng.Between(2, 255));
    if (operation.data == 1 && IsDisplayOrLid(operation.setting)) {
        if (m_displayOnBudget == 0) {
            operation.setting = kUnrelatedSettings[m_rng.Below(kUnrelated)];
        } else {
            --m_displayOnBudget;
        }
    }
    return operation;
}

}  // namespace LumavenReliability
