// The panel AUX sequences: for every supported panel and each of its two power states, the
// DPCD register writes that switch it, in the order they are sent.
#pragma once

#include "panel/PanelIdentity.h"

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

struct AuxWrite {
    uint32_t address;
    std::vector<uint8_t> data;  // one AUX transaction starting at address

    bool operator==(const AuxWrite&) const = default;
};

struct AuxDataKey {
    PanelId panelId;
    bool on;

    bool operator<(const AuxDataKey& other) const { return std::tie(panelId, on) < std::tie(other.panelId, other.on); }
};

using AuxDataMap = std::map<AuxDataKey, std::vector<AuxWrite>>;

// The sequences of all eleven panels.
AuxDataMap BuildAuxDataMap();

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
